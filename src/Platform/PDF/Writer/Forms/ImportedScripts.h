#pragma once

#include "FieldScripts.h"
#include "ObjectStore.h"

#include <qpdf/QPDF.hh>

#include <set>
#include <string>
#include <vector>

/// The scripts of whole files (ISO 32000-1, 7.7.4), which define what those of their fields use, for a file that fields
/// are brought into.
class ImportedScripts {
public:
    struct Script {
        std::string name; ///< in the name tree of its file
        QPDFObjectHandle action;
    };

    explicit ImportedScripts(ObjectStore& objects) { (void)take(objects.pdf(), {}); }

    /// What can come along from the file, and the names of the file's functions and variables that won't be here, or
    /// are others here.
    struct Taken {
        std::vector<Script> scripts;
        std::set<QString> missing;
    };
    /// Without those for which `isForeign` is true, those that define a name which another script has here, and those
    /// that are here word for word.
    [[nodiscard]] Taken take(QPDF& file, const FieldScripts::Test& isForeign);

private:
    std::set<QString> m_texts;
    std::set<QString> m_defined;
};
