#include "NamedDestinations.h"

#include "NameTree.h"
#include "PdfValues.h"

void NamedDestinations::read() {
    m_read = true;
    QPDFObjectHandle root = m_pdf.getRoot();
    NameTree::forEach(PdfValues::entry(root.getKey("/Names"), "/Dests"), "/Names",
                      [this](QPDFObjectHandle key, QPDFObjectHandle value) {
                          if (key.isString())
                              m_byString.emplace(key.getStringValue(), value);
                      });
    QPDFObjectHandle old = root.getKey("/Dests");
    if (old.isDictionary())
        for (const auto& [name, value] : old.ditems())
            m_byName.emplace(name, value);
}

std::string NamedDestinations::text(QPDFObjectHandle name) {
    return name.isString() ? name.getStringValue() : name.getName().substr(1);
}

void NamedDestinations::forEach(const std::function<void(const std::string&, QPDFObjectHandle)>& visit) {
    if (!m_read)
        read();
    for (const auto& [name, value] : m_byString)
        visit(name, value);
    for (const auto& [name, value] : m_byName)
        if (m_byString.count(name.substr(1)) == 0)
            visit(name.substr(1), value);
}

QPDFObjectHandle NamedDestinations::explicitDestination(QPDFObjectHandle destination) {
    if (destination.isString() || destination.isName()) {
        if (!m_read)
            read();
        // Either kind of name is looked up in either place, as readers do.
        const std::string name = text(destination);
        QPDFObjectHandle found = QPDFObjectHandle::newNull();
        if (const auto place = m_byString.find(name); place != m_byString.end())
            found = place->second;
        else if (const auto old = m_byName.find("/" + name); old != m_byName.end())
            found = old->second;
        destination = found;
    }
    if (destination.isDictionary())
        destination = destination.getKey("/D");
    return destination.isArray() ? destination : QPDFObjectHandle::newNull();
}
