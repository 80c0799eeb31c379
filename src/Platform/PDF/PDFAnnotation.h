#pragma once

#include "PDFAnnotationOrigin.h"
#include "PDFAnnotationSubtype.h"
#include "PDFAnnotationValues.h"

#include <QByteArray>

#include <memory>
#include <optional>
#include <span>
#include <vector>

class PDFPage;
struct AnnotationDrawing;
struct PDFPageGeometry;
class QPainter;

/// An annotation on a page: a live, shared object. Main thread only. All geometry is in page coordinates.
///
/// One that was read from a file remembers its place there, so that keys that this class doesn't know survive a save,
/// and the engine draws it by its own appearance until it is changed. A changed or a new one draws itself.
/// Setters do nothing when the value is the same.
class PDFAnnotation : public std::enable_shared_from_this<PDFAnnotation> {
public:
    PDFAnnotation(const QRectF& bounds, const QString& type);
    virtual ~PDFAnnotation();
    PDFAnnotation(const PDFAnnotation&) = delete;
    PDFAnnotation& operator=(const PDFAnnotation&) = delete;

    /// The subtype without the slash: "Ink", "Text".
    [[nodiscard]] QString type() const { return m_values.type; }
    /// Null while it is on no page.
    [[nodiscard]] std::shared_ptr<PDFPage> page() const { return m_page.lock(); }

    [[nodiscard]] QRectF bounds() const { return m_values.bounds; }
    void setBounds(const QRectF& bounds);
    /// The bounds as they are seen on the page that it was placed on: turned upright and in points. Kinds that are made
    /// of points on the page have them in page coordinates.
    [[nodiscard]] QRectF uprightBounds() const;
    [[nodiscard]] QTransform uprightToPage() const;
    /// The C key. None and a fully transparent colour write an empty array.
    [[nodiscard]] std::optional<QColor> color() const { return m_values.color; }
    void setColor(const std::optional<QColor>& color);
    /// IC for shapes, the background of a widget (MK, BG). None: not filled.
    [[nodiscard]] std::optional<QColor> interiorColor() const { return m_values.interiorColor; }
    void setInteriorColor(const std::optional<QColor>& color);
    [[nodiscard]] std::optional<QColor> backgroundColor() const { return interiorColor(); }
    void setBackgroundColor(const std::optional<QColor>& color) { setInteriorColor(color); }
    [[nodiscard]] std::optional<PDFBorder> border() const { return m_values.border; }
    void setBorder(const std::optional<PDFBorder>& border);
    [[nodiscard]] QString contents() const { return m_values.contents; }
    void setContents(const QString& contents);
    /// The author (the T key of markup annotations): at first the person who is logged in.
    [[nodiscard]] QString userName() const { return m_values.userName; }
    void setUserName(const QString& name);
    /// When it was made or last changed, to the second; each change sets it. Invalid where a file doesn't say.
    [[nodiscard]] QDateTime modificationDate() const { return m_values.modificationDate; }
    void setModificationDate(const QDateTime& date);
    /// When it was made, to the second. Invalid where a file doesn't say.
    [[nodiscard]] QDateTime creationDate() const { return m_values.creationDate; }
    /// Makes this a part of what another annotation was: with the same author and made at the same time.
    void setProvenance(const PDFAnnotation& former);

    /// The font and colour of a free text or a text field; size in points.
    [[nodiscard]] std::optional<QFont> font() const { return m_values.text.font; }
    void setFont(const std::optional<QFont>& font);
    [[nodiscard]] std::optional<QColor> fontColor() const { return m_values.text.color; }
    void setFontColor(const std::optional<QColor>& color);

    /// The ends of a line.
    [[nodiscard]] QPointF startPoint() const { return m_values.line.startPoint; }
    void setStartPoint(QPointF point);
    [[nodiscard]] QPointF endPoint() const { return m_values.line.endPoint; }
    void setEndPoint(QPointF point);
    [[nodiscard]] PDFLineStyle startLineStyle() const { return m_values.line.startStyle; }
    void setStartLineStyle(PDFLineStyle style);
    [[nodiscard]] PDFLineStyle endLineStyle() const { return m_values.line.endStyle; }
    void setEndLineStyle(PDFLineStyle style);

    /// The strokes of an ink annotation, relative to the lower left corner of `bounds`.
    [[nodiscard]] const std::vector<QPainterPath>& paths() const { return m_values.paths; }
    void add(const QPainterPath& path);
    /// Gives an ink annotation other strokes and the bounds that they are relative to, in one change. `changedArea`
    /// (page coordinates) is where it looks different from before, for those who repaint: a stroke that grows changes
    /// at its end only.
    void setPaths(const QRectF& bounds, std::vector<QPainterPath> paths, const QRectF& changedArea);

    /// The quadrilaterals of a markup annotation. None given: its bounds are the one quadrilateral.
    [[nodiscard]] std::vector<PDFQuad> quadrilateralPoints() const;
    void setQuadrilateralPoints(const std::vector<PDFQuad>& quads);

    // Links

    /// Where a link leads inside the document, or none. A link read from a file gets its page when it is asked.
    [[nodiscard]] std::optional<PDFDestination> destination() const;
    void setDestination(const std::optional<PDFDestination>& destination);
    /// The web address of a link; empty when it has none.
    [[nodiscard]] QString url() const { return m_values.link.url; }
    void setUrl(const QString& url);

    // Form fields

    /// The full name of a field, parts joined with dots.
    [[nodiscard]] QString fieldName() const { return m_values.field.name; }
    void setFieldName(const QString& name);
    [[nodiscard]] PDFWidgetFieldType widgetFieldType() const { return m_values.field.type; }
    void setWidgetFieldType(PDFWidgetFieldType type);
    [[nodiscard]] PDFWidgetControlType widgetControlType() const { return m_values.field.control; }
    void setWidgetControlType(PDFWidgetControlType type);
    [[nodiscard]] PDFWidgetCellState buttonWidgetState() const { return m_values.field.state; }
    void setButtonWidgetState(PDFWidgetCellState state);
    [[nodiscard]] QString widgetStringValue() const { return m_values.field.string; }
    void setWidgetStringValue(const QString& value);
    /// How far its look is turned against the page: 0, 90, 180 or 270 degrees anticlockwise. That of the page's
    /// rotation makes a field stand upright as the page is seen.
    [[nodiscard]] int widgetRotation() const { return m_values.field.turn; }
    void setWidgetRotation(int degrees);

    /// Neither hidden nor kept off the screen (the F key).
    [[nodiscard]] bool shouldDisplay() const;

    /// Draws into a painter that is set to upright coordinates (y up), see `uprightToPage`. This base draws the plain
    /// standard subtypes; kinds with a look of their own override it. `box` is the display box that is being drawn.
    virtual void draw(PDFDisplayBox box, QPainter& painter) const;

    /// Draws annotations, the first lowest, with smooth edges, through a painter in page coordinates. Each gets a state
    /// of the painter of its own, so that what one sets doesn't reach the next.
    static void drawAll(std::span<const std::shared_ptr<PDFAnnotation>> annotations, PDFDisplayBox box,
                        QPainter& painter);

    /// True when a point of the page lies on what can be seen of it: on its line, give or take `reach`, in the area
    /// that it fills, on the text that it marks, or on its sign.
    [[nodiscard]] bool isAt(QPointF point, double reach) const;

    /// A rectangle around all that `draw` paints, the width of lines and the tips of arrows included.
    [[nodiscard]] QRectF drawnArea() const;

    /// True for a kind whose look must be recorded from `draw` when it is saved, since no hand-made appearance of the
    /// standard subtype would match it.
    [[nodiscard]] virtual bool hasCustomAppearance() const { return false; }

    /// For a kind that is put on many pages: two of them with the same text here, which isn't empty, draw the same
    /// within bounds of the same size, and share one appearance in the file.
    [[nodiscard]] virtual QByteArray sharedLook() const { return {}; }

    /// True for a stamp over all that is seen of its page, such as a watermark: a pointer there means what is beneath.
    [[nodiscard]] bool coversPage() const;

    /// A new annotation with the same values and origin, on no page. It shares nothing that drawing changes, so that
    /// the copy may be drawn on one thread while this one is drawn on another.
    [[nodiscard]] virtual std::shared_ptr<PDFAnnotation> copy() const;

    /// None for an annotation that was made here.
    [[nodiscard]] const std::optional<PDFAnnotationOrigin>& origin() const { return m_origin; }
    /// True when a value was changed since it was read from the file; a new one is always changed.
    [[nodiscard]] bool isModified() const { return !m_origin || m_modified; }

    /// True when the look comes from `draw` and not from an appearance in the file.
    [[nodiscard]] bool drawsItself() const { return isModified() || !m_values.hasAppearance; }

    /// All that it says, in the form in which readers and writers of files pass it on.
    [[nodiscard]] const PDFAnnotationValues& values() const { return m_values; }

    // For the parts of this library

    /// An annotation as the file has it.
    PDFAnnotation(PDFAnnotationValues values, PDFAnnotationOrigin origin);
    /// Gives a widget its field's value; one that shows the same as before doesn't count as changed. With all that it
    /// had in the file it is unmodified again.
    void fill(const QString& string, const QStringList& chosen, PDFWidgetCellState state);
    /// Lets the link of a copy in a frozen document lead to the copy of its page, which doesn't count as a change.
    void leadTo(const PDFDestination& destination) { m_values.link.destination = destination; }

protected:
    /// Tells the page that what it shows changed within `area` (page coordinates).
    void noteChange(const QRectF& area);
    /// Gives `fresh`, a new annotation of the same class, all that this one has, for overrides of `copy`.
    [[nodiscard]] std::shared_ptr<PDFAnnotation> copied(std::shared_ptr<PDFAnnotation> fresh) const;
    PDFAnnotationValues m_values;

private:
    friend class PDFPage;
    /// `place` leads to the value by pointers to members, from `PDFAnnotationValues` inwards.
    template <typename T, typename... Place>
    void set(const T& value, Place... place);
    void announceChange(const QRectF& area);
    /// The first page that it comes on gives it its frame.
    void standOn(const PDFPageGeometry& page);
    [[nodiscard]] PDFAnnotationValues uprightValues() const;
    void drawFromFile(QPainter& painter) const;

    std::weak_ptr<PDFPage> m_page;
    std::optional<PDFAnnotationOrigin> m_origin;
    bool m_modified = false;
    mutable std::shared_ptr<const AnnotationDrawing> m_fieldDrawing; // of a widget that was drawn as it is now
    /// When it was last changed before it was filled; set while its value is all that differs from the file.
    std::optional<QDateTime> m_dateBeforeFilling;
};
