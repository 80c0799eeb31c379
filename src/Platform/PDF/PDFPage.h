#pragma once

#include "PDFPageContent.h"
#include "PDFPageGeometry.h"
#include "PDFTypes.h"

#include <QImage>
#include <QSizeF>
#include <QString>
#include <QTransform>

#include <memory>
#include <optional>
#include <vector>

class PageText;
class PDFAnnotation;
class PDFDocument;
class PDFOrigin;
class PDFSelection;
class PDFSource;
class QFont;
class QPainter;
struct PDFImport;

/// A page: a live, shared object with an identity. Views, undo records and annotations hold it. Its content is fixed
/// for life; its annotations change. Main thread only, except where told.
///
/// Page coordinates are the default user space of the file: origin as the media box says (not always zero), y up,
/// not turned by `rotation`. One unit is `userUnit` points (1/72 inch), and almost always one point.
class PDFPage : public std::enable_shared_from_this<PDFPage> {
public:
    /// A page of an opened file. Fetch pages through `PDFDocument::page`.
    explicit PDFPage(PDFPageContent content);
    ~PDFPage();
    PDFPage(const PDFPage&) = delete;
    PDFPage& operator=(const PDFPage&) = delete;

    /// A page that shows one picture, as large as `size` (points), which is kept without loss. Null for a null picture
    /// or a size that isn't above zero.
    [[nodiscard]] static std::shared_ptr<PDFPage> fromImage(const QImage& image, QSizeF size);

    /// A picture of another page's media box that is to take that page's place: with the same boxes, rotation and
    /// label, and what leads to the other leads to it. Null for a null picture.
    [[nodiscard]] static std::shared_ptr<PDFPage> fromImage(const QImage& image, const PDFPage& replaced);

    /// The first page of a file, which is to take another page's place in the same way.
    [[nodiscard]] static std::shared_ptr<PDFPage> replacing(const PDFPage& replaced,
                                                            const std::shared_ptr<PDFSource>& source);

    /// A page that shows one picture, from the bytes of a JPEG file, which are stored as they are. Null when they are
    /// no JPEG.
    [[nodiscard]] static std::shared_ptr<PDFPage> fromJpeg(const QByteArray& jpeg, QSizeF size);

    /// A new page with the same content and copies of the annotations, in no document. Costs nothing while the
    /// annotations haven't been asked for.
    [[nodiscard]] std::shared_ptr<PDFPage> copy() const;

    /// A number of its own, which no other page has as long as the program runs.
    [[nodiscard]] quint64 identity() const { return m_identity; }
    /// The document that the page was copied from, and the identity that it has there; null and 0 for another page.
    [[nodiscard]] const std::shared_ptr<PDFOrigin>& origin() const { return m_origin; }
    [[nodiscard]] quint64 original() const { return m_original; }
    /// With which others it came into its document; for that one's outline.
    [[nodiscard]] const std::shared_ptr<PDFImport>& import() const { return m_import; }
    void setImport(const std::shared_ptr<PDFImport>& import) { m_import = import; }

    /// The document that holds the page; null while it is in none.
    [[nodiscard]] PDFDocument* document() const { return m_document; }

    [[nodiscard]] const PDFPageContent& content() const { return m_content; }
    /// What it is for those who lead to it: its content, or that of the page whose place it takes.
    [[nodiscard]] const PDFPageContent& place() const { return m_place ? *m_place : m_content; }
    [[nodiscard]] bool replacesAnother() const { return m_place.has_value(); }

    /// What its file calls the page: "iv", "12", "A-3". Empty where the file gives its pages no labels.
    [[nodiscard]] QString label() const;

    /// In page coordinates, not turned. A file without a sensible box gets US Letter (612 by 792).
    [[nodiscard]] QRectF bounds(PDFDisplayBox box) const;

    /// All boxes with the present rotation, as one value.
    [[nodiscard]] PDFPageGeometry geometry() const;

    /// 0, 90, 180 or 270: how far the page is turned clockwise when shown.
    [[nodiscard]] int rotation() const;
    /// Any multiple of 90; others are rounded to one.
    void setRotation(int degrees);

    /// Points in one unit of page coordinates; 1 unless the file says otherwise.
    [[nodiscard]] double userUnit() const;

    /// The size on paper in points as shown: turned by `rotation`, in user units.
    [[nodiscard]] QSizeF displaySize(PDFDisplayBox box) const;

    /// Maps page coordinates to the page as shown at 72 dpi: origin upper left of `box`, y down, turned, in points.
    [[nodiscard]] QTransform displayTransform(PDFDisplayBox box) const;

    // Text

    /// The text of the page as it was typed: lines joined with "\n", words over line ends whole (`FlowingText`), so
    /// offsets aren't those of `text`. Empty for a page without text. Parsed on first use and kept for as long as the
    /// source's cache of recent pages allows.
    [[nodiscard]] QString string() const;
    [[nodiscard]] std::shared_ptr<const PageText> text() const;

    /// The whole line of text at the point, or none.
    [[nodiscard]] std::optional<PDFSelection> selectionForLine(QPointF point) const;
    /// The text from one point to another in reading order; none when that holds no character.
    [[nodiscard]] std::optional<PDFSelection> selection(QPointF from, QPointF to) const;
    /// All text of the page; none when it has no text.
    [[nodiscard]] std::optional<PDFSelection> selectAll() const;
    /// The font of the first occurrence of the text on the page, in the family that comes nearest to it here and with
    /// its size on the page as point size; none when the page has no such text.
    [[nodiscard]] std::optional<QFont> font(const QString& text) const;

    // Annotations

    /// In drawing order, the first lowest. Read from the file on first use.
    [[nodiscard]] const std::vector<std::shared_ptr<PDFAnnotation>>& annotations() const;

    /// Adds on top. An annotation that is on a page already is left alone. One that is drawn upright and comes on its
    /// first page gets its frame from that.
    void addAnnotation(const std::shared_ptr<PDFAnnotation>& annotation);
    /// Adds at a place in the drawing order, clamped to its range.
    void insertAnnotation(const std::shared_ptr<PDFAnnotation>& annotation, int index);
    /// Does nothing when the annotation isn't on this page. Returns the place that it had, or -1.
    int removeAnnotation(const std::shared_ptr<PDFAnnotation>& annotation);
    /// `addAnnotation`, and `removeAnnotation` of what was added so, for many pages at once: those of the file are read
    /// no sooner than somebody asks for them.
    void putOnTop(const std::shared_ptr<PDFAnnotation>& annotation);
    void takeOff(const std::shared_ptr<PDFAnnotation>& annotation);
    /// The topmost annotation whose bounds hold the point and that neither is hidden nor covers the page; null when
    /// there is none.
    [[nodiscard]] std::shared_ptr<PDFAnnotation> annotation(QPointF point) const;

    /// True once annotations have been read, so that asking for them costs nothing.
    [[nodiscard]] bool annotationsLoaded() const { return m_annotationsLoaded; }
    /// False as long as they are certainly those of the file.
    [[nodiscard]] bool annotationsMayDiffer() const { return m_annotationsLoaded || !m_annotations.empty(); }
    /// True when annotations were added, removed, moved or changed since the file was opened, or the rotation was.
    [[nodiscard]] bool isModified() const;
    /// Counts changes of what the page shows.
    [[nodiscard]] quint64 revision() const { return m_revision; }
    /// Places in the file's own list of annotations that the engine must leave out, because the annotation was removed
    /// or is drawn by its live object; ascending. Without those for which the engine has nothing to draw.
    [[nodiscard]] std::vector<int> hiddenFileAnnotations() const;
    /// The annotations that draw themselves over what the engine draws, lowest first: new ones, changed ones, and those
    /// of the file that bring no appearance. The last are known once the page has been drawn.
    [[nodiscard]] std::vector<std::shared_ptr<PDFAnnotation>> liveAnnotations() const;

    // Drawing

    /// Draws the page with its annotations so that the lower left corner of `box` comes to the painter's origin with
    /// y upwards, one page unit for one unit of the painter. The page isn't turned by `rotation`, so page coordinates
    /// less the box's origin are the painter's. Blocks for as long as the drawing takes.
    void draw(PDFDisplayBox box, QPainter& painter) const;

    /// A picture of the page as shown (turned, annotations included) that fits into `size` pixels and keeps the page's
    /// ratio. Null when the page can't be drawn or the size is below one pixel.
    [[nodiscard]] QImage thumbnail(QSize size, PDFDisplayBox box) const;

private:
    friend class DocumentFreezer;
    friend class PDFAnnotation;
    friend class PDFDocument;

    /// A copy that knows nothing of where it comes from.
    [[nodiscard]] std::shared_ptr<PDFPage> plainCopy() const;
    void loadAnnotations() const;
    void put(const std::shared_ptr<PDFAnnotation>& annotation, int index);
    int takeOut(const std::shared_ptr<PDFAnnotation>& annotation);
    /// `area` in page coordinates; the whole page when it is null.
    void noteChange(const QRectF& area = {});
    [[nodiscard]] bool isFromHere(const PDFAnnotation& annotation) const;
    [[nodiscard]] std::optional<PDFSelection> selectionOf(int start, int end) const;

    const quint64 m_identity;
    std::shared_ptr<PDFOrigin> m_origin;
    quint64 m_original = 0;
    std::shared_ptr<PDFImport> m_import;
    PDFPageContent m_content;
    std::optional<PDFPageContent> m_place; // of the page that it replaces
    PDFDocument* m_document = nullptr;     // set and cleared by the document
    mutable bool m_annotationsLoaded = false;
    mutable std::vector<std::shared_ptr<PDFAnnotation>> m_annotations; // until loaded those on top of the file's
    mutable std::vector<int> m_fileAnnotations; // the readable places of the file's list, ascending
    mutable std::vector<int> m_fileLooks;       // of them those whose appearance the file brings
    mutable std::optional<std::vector<int>> m_hiddenFileAnnotations; // as of the last change
    std::optional<int> m_rotation;
    quint64 m_revision = 0;
};
