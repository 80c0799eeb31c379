#pragma once

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>

#include <set>
#include <string>
#include <vector>

class UpdateObjects;

/// What the signers of a file let an update change without their signatures becoming invalid: the transform methods of
/// ISO 32000-1, 12.8.2. A signature that says nothing of it lets forms be filled and pages be annotated.
class SignatureTerms {
public:
    /// To be read before the file's objects are changed.
    explicit SignatureTerms(QPDF& pdf);

    /// What an update does to a file beside the objects that it brings.
    enum class Extent { annotationsAndFields, document };

    /// False when the update, which does that much, breaks somebody's signature.
    [[nodiscard]] bool allow(const UpdateObjects& objects, Extent extent) const;
    /// True when there is a signature at all.
    [[nodiscard]] bool areThere() const { return m_areThere; }

private:
    /// Fields that may not change any more.
    struct Lock {
        bool isOfThose = false; ///< the named fields are locked; otherwise all but those
        std::set<std::string> names;
    };
    void read(QPDFObjectHandle signature);
    [[nodiscard]] bool isLocked(QPDFObjectHandle field) const;

    // The access permissions of a certified document, table 254: no change, filling forms, annotating too.
    static constexpr int noChange = 1;
    static constexpr int filling = 2;
    static constexpr int annotating = 3;

    bool m_areThere = false;
    bool m_isCertified = false;
    int m_permission = annotating;
    std::vector<Lock> m_locks;
};
