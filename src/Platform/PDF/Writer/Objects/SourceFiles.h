#pragma once

#include "NamedDestinations.h"
#include "ObjectCopier.h"
#include "SourceFile.h"

#include <future>
#include <map>
#include <memory>
#include <utility>
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

    /// Opening a large file takes as long as all else, so that several are opened at a time. Ends when all are open.
    class Ahead {
    public:
        /// Begins on a thread of its own to open the file and to find all its pages. Where `takesLinks` its links are
        /// texts.
        void open(const std::shared_ptr<PDFSource>& source, SourceFile::Base base, bool takesLinks);
        [[nodiscard]] int count() const { return int(m_opening.size()); }
        /// Waits for one that was begun, and opens any other. Throws what opening throws.
        [[nodiscard]] SourceFile take(const std::shared_ptr<PDFSource>& source, SourceFile::Base base, bool takesLinks);

    private:
        [[nodiscard]] static SourceFile opened(const std::shared_ptr<PDFSource>& source, SourceFile::Base base,
                                               bool takesLinks);

        std::map<PDFSource*, std::future<SourceFile>> m_opening;
    };

    /// `main` is the file whose objects `objects` changes; null when a new file is made.
    SourceFiles(ObjectStore& objects, SourceFile* main, SourceFile::Base base = SourceFile::Base::repaired,
                Ahead ahead = {})
        : m_objects(objects), m_main(main), m_base(base), m_ahead(std::move(ahead)) {}
    /// Frees the large files at the same time, which takes a while.
    ~SourceFiles();
    SourceFiles(const SourceFiles&) = delete;
    SourceFiles& operator=(const SourceFiles&) = delete;

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
    Ahead m_ahead;
    std::map<PDFSource*, std::unique_ptr<Foreign>> m_foreign;
};
