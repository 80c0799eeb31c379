#pragma once

#include <qpdf/QPDF.hh>

#include <functional>
#include <map>
#include <string>

/// The names that a file gives to places in it, from its name tree and its old dictionary of names (ISO 32000-1,
/// 12.3.2.3). Read once, on first use.
class NamedDestinations {
public:
    explicit NamedDestinations(QPDF& pdf) : m_pdf(pdf) {}

    /// The array of an explicit destination, for a destination of any kind: an array, a dictionary with one, or a name
    /// as string or name object. A null object for a name that the file doesn't know.
    [[nodiscard]] QPDFObjectHandle explicitDestination(QPDFObjectHandle destination);

    /// Every name with what it stands for; of one that is in both places, that of the tree.
    void forEach(const std::function<void(const std::string& name, QPDFObjectHandle value)>& visit);

    /// The text of a name, without a slash, for a string or a name object.
    [[nodiscard]] static std::string text(QPDFObjectHandle name);

private:
    void read();

    QPDF& m_pdf;
    bool m_read = false;
    std::map<std::string, QPDFObjectHandle> m_byString;
    std::map<std::string, QPDFObjectHandle> m_byName;
};
