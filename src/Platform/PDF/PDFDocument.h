#pragma once

#include "ImportedOutlines.h"
#include "PDFDestination.h"
#include "PDFFileDestination.h"
#include "PDFPageContent.h"
#include "PDFPageGeometry.h"
#include "PDFSelection.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <memory>
#include <optional>
#include <vector>

class PDFOrigin;
class PDFOutline;
class PDFPage;
class PDFSource;

/// How a document is written.
struct PDFWriteOptions {
    // Passwords for a protected copy. Empty strings leave that password out; both empty writes no protection. One that
    // is longer than `longestPassword` bytes fails, with `PDFError::Kind::unusablePassword`.
    QString userPassword;
    QString ownerPassword;
    /// Fail, with `PDFError::Kind::breaksSignatures`, rather than write a file in which a digital signature that the
    /// document's file has isn't valid any more.
    bool keepsSignatures = false;
};

/// An open document: an ordered list of live pages, with outline, attributes and lock state. Main thread only.
///
/// Opening reads what is shown first and no more; pages, outline and annotations are read when they are asked for.
class PDFDocument : public QObject {
    Q_OBJECT

public:
    /// An empty document without pages.
    PDFDocument();
    ~PDFDocument() override;

    /// Opens a file or its bytes; throws `PDFError`. A damaged file is repaired where that is possible, and
    /// `wasRepaired` tells so. A protected file opens locked, without pages to see.
    [[nodiscard]] static std::shared_ptr<PDFDocument> fromFile(const QString& path);
    [[nodiscard]] static std::shared_ptr<PDFDocument> fromData(const QByteArray& data);
    /// `fromFile` in two parts: the first takes as long as the disk and the file ask for, and is for any thread.
    [[nodiscard]] static std::shared_ptr<PDFSource> openSource(const QString& path);
    [[nodiscard]] static std::shared_ptr<PDFDocument> fromSource(const std::shared_ptr<PDFSource>& source);

    [[nodiscard]] bool isLocked() const { return m_locked; }
    /// True for a file that asks for a password or that limits what may be done with it.
    [[nodiscard]] bool isEncrypted() const;
    /// Takes the user's or the owner's password. True when the document is open afterwards. Throws `PDFError` when the
    /// password is right and what it opens is damaged beyond repair; the document stays locked then.
    bool unlock(const QString& password);
    /// The same with the password that another document was unlocked with.
    bool unlockLike(const PDFDocument& other);
    /// True when the file was damaged and had to be rebuilt to be read.
    [[nodiscard]] bool wasRepaired() const;

    // Pages

    /// 0 while locked.
    [[nodiscard]] int pageCount() const { return static_cast<int>(m_pages.size()); }
    /// Null when `index` (zero-based) is outside the document. The same object at each call.
    [[nodiscard]] std::shared_ptr<PDFPage> page(int index) const;
    /// The pages that somebody has asked for, in order: all that can hold anything that the source doesn't.
    [[nodiscard]] std::vector<std::shared_ptr<PDFPage>> knownPages() const;
    /// Zero-based; -1 when the page isn't in this document.
    [[nodiscard]] int index(const PDFPage* page) const;
    /// Takes a page out; it stays alive for whoever holds it. Null when `index` is outside the document.
    std::shared_ptr<PDFPage> removePage(int index);
    /// Puts a page that is in no document at `index`, clamped to the range. A page that is in a document already is
    /// refused. Copies of all pages of another document, put in one after the other, bring that one's outline as an
    /// entry of its own, which goes and comes back with them. In a new document, copies bring what their document says
    /// of them as a whole: a single one its outline and its attributes, several an entry each.
    void insert(const std::shared_ptr<PDFPage>& page, int index);
    /// Puts a page in the place of another, which is returned and leads nowhere any more: what led to it, outline and
    /// links, leads to `page`. Null, and nothing happens, when `index` is outside the document or `page` is in one.
    std::shared_ptr<PDFPage> replacePage(int index, const std::shared_ptr<PDFPage>& page);
    /// The page's geometry without making its page object; for layout.
    [[nodiscard]] PDFPageGeometry geometry(int index) const;
    /// What the page's file calls it (`PDFPage::label`), without making its page object.
    [[nodiscard]] QString label(int index) const;
    /// The immutable contents of all pages in order, for work on another thread (layout, search, text).
    [[nodiscard]] std::vector<PDFPageContent> pageContents() const;

    // Text

    /// The text of all pages, each ended by a form feed; read on several threads.
    [[nodiscard]] QString string() const;
    /// The text from a point on one page to a point on another, either order; none when that holds no character.
    [[nodiscard]] std::optional<PDFSelection> selection(const PDFPage& fromPage, QPointF from, const PDFPage& toPage,
                                                        QPointF to) const;

    // Destinations, outline and attributes

    /// The live place for a place of a file, on the first page here that came from the one it names; none when there is
    /// no such page.
    [[nodiscard]] std::optional<PDFDestination> destination(const PDFFileDestination& place,
                                                            const std::shared_ptr<PDFSource>& file) const;

    /// Null when the document has no outline. Read from the file on first use.
    [[nodiscard]] std::shared_ptr<PDFOutline> outlineRoot() const;
    /// Null removes the outline.
    void setOutlineRoot(const std::shared_ptr<PDFOutline>& root);
    /// True when the outline isn't (any more) that of the source.
    [[nodiscard]] bool hasChangedOutline() const;
    /// False until somebody asked for it.
    [[nodiscard]] bool hasReadOutline() const { return m_outlineLoaded; }

    /// The information dictionary: "Title", "Author", "Subject", "Creator", "Producer" and unknown keys as strings,
    /// "Keywords" as a string list, "CreationDate" and "ModDate" as QDateTime.
    [[nodiscard]] QVariantMap documentAttributes() const;
    /// Keys that the map lacks are removed from the file.
    void setDocumentAttributes(const QVariantMap& attributes);
    /// True once they were set to others than those of the source.
    [[nodiscard]] bool hasChangedAttributes() const { return m_attributesChanged; }

    // Copies

    /// What copies of its pages know it by.
    [[nodiscard]] std::shared_ptr<PDFOrigin> origin() const;
    /// The one document that all pages of a new document were copied from; null for any other.
    [[nodiscard]] std::shared_ptr<PDFOrigin> copiedFrom() const;
    /// Of the page at a place (`PDFPage::identity`), without making it: 0 for one that nobody has asked for.
    [[nodiscard]] quint64 identityOfPage(int index) const;
    /// The number that the page at a place has in the source; -1 for one that isn't from there.
    [[nodiscard]] int sourcePage(int index) const { return m_sourceNumbers.at(std::size_t(index)); }

    // Writing. A document that came from a protected file keeps that protection, unless options give passwords.

    /// The whole file as it would be saved; throws `PDFError`.
    [[nodiscard]] QByteArray dataRepresentation() const;
    /// Composes and stores a file, replacing one of that name only when the new one is complete; throws `PDFError`.
    void write(const QString& path) const;
    void write(const QString& path, const PDFWriteOptions& options) const;

    /// The file or bytes it was opened from; null for a new document.
    [[nodiscard]] const std::shared_ptr<PDFSource>& source() const { return m_source; }

Q_SIGNALS:
    /// Pages were inserted, removed or became known by unlocking.
    void pagesChanged();
    /// What the page shows beyond its content changed: an annotation, its order, the rotation. `area` is where, in page
    /// coordinates; null for the whole page, perhaps turned.
    void pageContentChanged(PDFPage* page, const QRectF& area);

private:
    friend class PDFPage;
    friend class DocumentFreezer;
    friend class ImportedOutlines;

    explicit PDFDocument(std::shared_ptr<PDFSource> source);
    bool unlocked(bool authenticated);
    void adoptPages();
    int indexOfReplacing(const PDFPageContent& place) const;
    std::shared_ptr<PDFPage> pageOfContent(const PDFPageContent& content) const;
    void followInOutline(PDFPage& page);
    /// The outline's root, made where there is none; without a claim that somebody set it.
    std::shared_ptr<PDFOutline> ownOutline();

    std::shared_ptr<PDFSource> m_source;
    bool m_locked = false;
    mutable std::vector<std::shared_ptr<PDFPage>> m_pages; // null until asked for
    std::vector<int> m_sourceNumbers; // the source's page number of each page; -1 for pages brought in
    mutable bool m_outlineLoaded = false;
    mutable std::shared_ptr<PDFOutline> m_outline;
    bool m_outlineChanged = false;
    mutable std::vector<std::weak_ptr<PDFPage>> m_formerPages; // that left before the outline was read
    mutable ImportedOutlines m_imported;
    mutable std::shared_ptr<PDFOrigin> m_origin; // null until a page is copied
    mutable std::optional<QVariantMap> m_attributes;
    bool m_attributesChanged = false;
};
