#pragma once

#include "ObjectStore.h"
#include "SourceFiles.h"

#include <map>
#include <set>
#include <string>

/// Brings the names that other files give to places on their pages, to files attached to them, and to their scripts,
/// into the name trees of the file that is being written (ISO 32000-1, 7.7.4). A name that is in use there gets the
/// first free number: "intro", "intro_2".
class NameImporter {
public:
    explicit NameImporter(ObjectStore& objects) : m_objects(objects) {}

    /// Takes the names of places on pages that the file's copier has replacements for, and `withAttachments` the files
    /// attached to it. Before anything is copied from the file. `pageNumbers` are zero-based, of all those pages.
    void announce(SourceFiles::Foreign& file, const std::set<int>& pageNumbers, bool withAttachments);

    /// What a destination of the file is to be once it is copied: by the new name, or by the page itself where it was
    /// given by its number. A null object when it can stay as it is.
    [[nodiscard]] QPDFObjectHandle renamed(QPDFObjectHandle destination, SourceFiles::Foreign& file) const;

    /// For a script of the file as a whole.
    void addScript(const std::string& name, QPDFObjectHandle action, SourceFiles::Foreign& file);

    /// Writes the trees that have new names. Once, when all files were announced.
    void write();

private:
    struct Added {
        QPDFObjectHandle value;
        SourceFiles::Foreign* file;
    };
    /// One name tree of the file that is being written.
    struct Tree {
        bool isRead = false;
        std::map<std::string, QPDFObjectHandle> present;
        std::map<std::string, Added> added;
    };
    /// The name under which the value is going to be there.
    std::string add(const char* tree, const std::string& name, QPDFObjectHandle value, SourceFiles::Foreign& file);
    void readPresent(const char* key, Tree& tree);

    ObjectStore& m_objects;
    std::map<std::string, Tree> m_trees;                                                // by their keys
    std::map<const SourceFiles::Foreign*, std::map<std::string, std::string>> m_places; // new names by old ones
};
