#pragma once

#include "NamedDestinations.h"
#include "ObjectCopier.h"
#include "SourceFile.h"

#include <map>
#include <memory>
#include <vector>

class PDFSource;

/// The files that pages and annotations of a document come from, apart from the one that is being changed. They stay
/// open as long as this lives, which must be until the new file is written.
class SourceFiles {
public:
    /// A file to bring objects over from.
    struct Foreign {
        SourceFile file;
        ObjectCopier copier;
        NamedDestinations names;
    };

    /// `main` is the file whose objects `objects` changes; null when a new file is made.
    SourceFiles(ObjectStore& objects, SourceFile* main, SourceFile::Base base = SourceFile::Base::repaired)
        : m_objects(objects), m_main(main), m_base(base) {}

    [[nodiscard]] SourceFile* main() const { return m_main; }
    /// True for the source of the file that is being changed.
    [[nodiscard]] bool isMain(const std::shared_ptr<PDFSource>& source) const;
    /// Opened on first use; the main source too, as a second file, for what is used a second time.
    [[nodiscard]] Foreign& foreign(const std::shared_ptr<PDFSource>& source);
    /// Null for one that wasn't asked for yet.
    [[nodiscard]] Foreign* known(const std::shared_ptr<PDFSource>& source) const;
    /// Those opened so far, apart from the main source's second opening.
    [[nodiscard]] std::vector<Foreign*> opened() const;

private:
    void shareWithMain(Foreign& second);

    ObjectStore& m_objects;
    SourceFile* m_main;
    SourceFile::Base m_base; // of the others
    std::map<PDFSource*, std::unique_ptr<Foreign>> m_foreign;
};
