#pragma once

#include "PDFFileOutline.h"
#include "PDFPageGeometry.h"
#include "PageLabels.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <vector>

class HeldBytes;
class PageText;
class SourceEngine;

/// An immutable opened file: its bytes, and what is needed to read them on any number of threads. The engine that
/// draws and the writer that composes work on the same bytes. Thread-safe unless told otherwise.
class PDFSource {
public:
    /// Throws `PDFError`. A protected file opens; `needsPassword` tells whether it can be read yet. `fileName` is for
    /// those who are to know what it was.
    [[nodiscard]] static std::shared_ptr<PDFSource> open(const QByteArray& bytes, const QString& fileName = {});
    /// The same for a page that was made from pictures. It may be one of many, so its bytes wait on the disk.
    [[nodiscard]] static std::shared_ptr<PDFSource> openMadePage(const QByteArray& bytes);
    ~PDFSource();
    PDFSource(const PDFSource&) = delete;
    PDFSource& operator=(const PDFSource&) = delete;

    /// Valid as long as this.
    [[nodiscard]] QByteArrayView bytes() const;
    /// The same for whoever outlives this.
    [[nodiscard]] QByteArray sharedBytes() const;
    /// Without its folder; empty for bytes that came from no file.
    [[nodiscard]] const QString& fileName() const { return m_fileName; }

    [[nodiscard]] bool needsPassword() const;
    /// True when the password, the user's or the owner's, opens the file. Main thread, before any page is read.
    bool authenticate(const QString& password);
    /// The same with the password that opened another file.
    bool authenticateLike(const PDFSource& other);
    /// The password that opened it, as the bytes that the file's security handler takes; empty for none.
    [[nodiscard]] QByteArray password() const;

    [[nodiscard]] bool isEncrypted() const { return m_encrypted; }
    [[nodiscard]] bool wasRepaired() const;

    /// 0 while a password is needed. What the page tree claims, after a check that it can be true.
    [[nodiscard]] int pageCount() const;
    /// US Letter for a page that can't be read.
    [[nodiscard]] PDFPageGeometry geometry(int pageNumber) const;
    /// The number of the page's object in the file; 0 when the page can't be read.
    [[nodiscard]] int pageObjectNumber(int pageNumber) const;
    /// The zero-based page whose object has that number, or none.
    [[nodiscard]] std::optional<int> pageNumberOfObject(int objectNumber) const;
    /// What the file calls its pages, which aren't looked at for it. Read on first use; not while a password is needed.
    [[nodiscard]] const PageLabels& pageLabels() const;
    /// True when the page's object is that of another page, too.
    [[nodiscard]] bool isPageObjectShared(int pageNumber) const;
    /// The same for its outline, which takes its time for a file of a thousand pages.
    [[nodiscard]] const PDFFileOutline& outline() const;
    /// Never null; empty for a page that can't be read. The last pages asked for are kept. A page that asks for more
    /// work than takes some seconds has the text that was read by then. Once `stop` is requested the text may lack
    /// anything, and isn't kept.
    [[nodiscard]] std::shared_ptr<const PageText> text(int pageNumber, const std::stop_token& stop = {}) const;
    /// The same, past the cache: for reading a whole document once.
    [[nodiscard]] std::shared_ptr<const PageText> readText(int pageNumber, const std::stop_token& stop = {}) const;

    /// Whether the drawing engine follows references that lead nowhere for others. Looks at all bytes on first use.
    [[nodiscard]] bool hasLooseReferences() const;
    /// The file as the drawing engine has repaired it, for whoever can't read it as it came: its objects keep their
    /// numbers. Empty when that fails.
    [[nodiscard]] QByteArray repairedBytes() const;

    /// Memory is short: what the engine can read again of any open file is given up.
    static void releaseAllCaches();

    /// The pages, zero-based and ascending, on which an annotation has exactly these contents. Looks at all annotations
    /// of the file, once for the contents asked for last. Null when `stop` was requested before that was done; one that
    /// is stopped from the beginning costs nothing and tells whether it has been done.
    [[nodiscard]] std::shared_ptr<const std::vector<int>> pagesWithContents(const QString& contents,
                                                                            const std::stop_token& stop = {}) const;

    /// For the parts of this folder that talk to the drawing engine.
    [[nodiscard]] SourceEngine& engine() const { return *m_engine; }

private:
    PDFSource(std::unique_ptr<const HeldBytes> bytes, QString fileName);

    const std::unique_ptr<const HeldBytes> m_bytes;
    const QString m_fileName;
    std::unique_ptr<SourceEngine> m_engine;
    bool m_encrypted = false;
    mutable std::once_flag m_labelsRead;
    mutable PageLabels m_labels;
    mutable std::once_flag m_outlineRead;
    mutable PDFFileOutline m_outline;
    mutable std::once_flag m_referencesRead;
    mutable bool m_hasLooseReferences = false;
    mutable std::mutex m_searching;  // held for as long as a search for contents takes
    mutable std::mutex m_cacheMutex; // guards what follows
    mutable QString m_soughtContents;
    mutable std::shared_ptr<const std::vector<int>> m_pagesFound;                      // with these contents
    mutable std::vector<std::pair<int, std::shared_ptr<const PageText>>> m_recentText; // most recent last
};
