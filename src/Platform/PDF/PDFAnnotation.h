#pragma once

#include "PDFBorder.h"
#include "PDFDestination.h"
#include "PDFPageContent.h"
#include "PDFTypes.h"

#include <QColor>
#include <QDateTime>
#include <QFont>
#include <QPainterPath>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <span>
#include <vector>

class PDFPage;
struct AnnotationDrawing;
class QPainter;
struct FormFieldValues;

/// The values of FT of a form field.
enum class PDFWidgetFieldType { none, text, button, choice, signature };
/// The three kinds of button.
enum class PDFWidgetControlType { pushButton = 0, radioButton = 1, checkBox = 2 };
/// The state of a check box or radio button.
enum class PDFWidgetCellState { off = 0, on = 1, mixed = -1 };

/// The subtypes that the program makes itself, as `PDFAnnotation::type` gives them.
namespace PDFAnnotationSubtype {
inline const QString text = QStringLiteral("Text");
inline const QString link = QStringLiteral("Link");
inline const QString freeText = QStringLiteral("FreeText");
inline const QString line = QStringLiteral("Line");
inline const QString square = QStringLiteral("Square");
inline const QString circle = QStringLiteral("Circle");
inline const QString highlight = QStringLiteral("Highlight");
inline const QString underline = QStringLiteral("Underline");
inline const QString strikeOut = QStringLiteral("StrikeOut");
inline const QString ink = QStringLiteral("Ink");
inline const QString stamp = QStringLiteral("Stamp");
inline const QString popup = QStringLiteral("Popup");
inline const QString widget = QStringLiteral("Widget");
} // namespace PDFAnnotationSubtype

/// Where an annotation came from: the n-th entry of the Annots array of a page of a source.
struct PDFAnnotationOrigin {
    PDFPageContent content;
    int index = 0; ///< zero-based
    bool operator==(const PDFAnnotationOrigin&) const = default;
};

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
    /// The author (the T key of markup annotations).
    [[nodiscard]] QString userName() const { return m_values.userName; }
    void setUserName(const QString& name);
    /// When it was made or last changed, to the second; each change sets it. Invalid where a file doesn't say.
    [[nodiscard]] QDateTime modificationDate() const { return m_values.modificationDate; }
    void setModificationDate(const QDateTime& date);

    /// The font and colour of a free text or a text field; size in points.
    [[nodiscard]] std::optional<QFont> font() const { return m_values.font; }
    void setFont(const std::optional<QFont>& font);
    [[nodiscard]] std::optional<QColor> fontColor() const { return m_values.fontColor; }
    void setFontColor(const std::optional<QColor>& color);

    /// The ends of a line.
    [[nodiscard]] QPointF startPoint() const { return m_values.startPoint; }
    void setStartPoint(QPointF point);
    [[nodiscard]] QPointF endPoint() const { return m_values.endPoint; }
    void setEndPoint(QPointF point);
    [[nodiscard]] PDFLineStyle startLineStyle() const { return m_values.startLineStyle; }
    void setStartLineStyle(PDFLineStyle style);
    [[nodiscard]] PDFLineStyle endLineStyle() const { return m_values.endLineStyle; }
    void setEndLineStyle(PDFLineStyle style);

    /// The strokes of an ink annotation, relative to the lower left corner of `bounds`.
    [[nodiscard]] const std::vector<QPainterPath>& paths() const { return m_values.paths; }
    void add(const QPainterPath& path);
    void removeAllPaths();
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
    [[nodiscard]] QString url() const { return m_values.url; }
    void setUrl(const QString& url);

    // Form fields

    /// The full name of a field, parts joined with dots.
    [[nodiscard]] QString fieldName() const { return m_values.fieldName; }
    void setFieldName(const QString& name);
    [[nodiscard]] PDFWidgetFieldType widgetFieldType() const { return m_values.widgetFieldType; }
    void setWidgetFieldType(PDFWidgetFieldType type);
    [[nodiscard]] PDFWidgetControlType widgetControlType() const { return m_values.widgetControlType; }
    void setWidgetControlType(PDFWidgetControlType type);
    [[nodiscard]] PDFWidgetCellState buttonWidgetState() const { return m_values.buttonWidgetState; }
    void setButtonWidgetState(PDFWidgetCellState state);
    [[nodiscard]] QString widgetStringValue() const { return m_values.widgetStringValue; }
    void setWidgetStringValue(const QString& value);

    /// The flags of the F key.
    [[nodiscard]] bool shouldDisplay() const; ///< neither Hidden nor NoView
    [[nodiscard]] bool shouldPrint() const;
    void setShouldPrint(bool print);

    /// Draws into a painter that is set to page coordinates (y up). This base draws the plain standard subtypes; kinds
    /// with a look of their own override it. `box` is the display box that is being drawn.
    virtual void draw(PDFDisplayBox box, QPainter& painter) const;

    /// Draws annotations, the first lowest, with smooth edges. Each gets a state of the painter of its own, so that
    /// what one sets doesn't reach the next.
    static void drawAll(std::span<const std::shared_ptr<PDFAnnotation>> annotations, PDFDisplayBox box,
                        QPainter& painter);

    /// A rectangle around all that `draw` paints, the width of lines and the tips of arrows included.
    [[nodiscard]] QRectF drawnArea() const;

    /// True for a kind whose look must be recorded from `draw` when it is saved, since no hand-made appearance of the
    /// standard subtype would match it.
    [[nodiscard]] virtual bool hasCustomAppearance() const { return false; }

    /// A new annotation with the same values and origin, on no page. It shares nothing that drawing changes, so that
    /// the copy may be drawn on one thread while this one is drawn on another.
    [[nodiscard]] virtual std::shared_ptr<PDFAnnotation> copy() const;

    /// None for an annotation that was made here.
    [[nodiscard]] const std::optional<PDFAnnotationOrigin>& origin() const { return m_origin; }
    /// True when a value was changed since it was read from the file; a new one is always changed.
    [[nodiscard]] bool isModified() const { return !m_origin || m_modified; }

    /// True when the look comes from `draw` and not from an appearance in the file.
    [[nodiscard]] bool drawsItself() const { return isModified() || !m_values.hasAppearance; }

    /// All that a dictionary of a standard annotation says; the form in which readers and writers pass it on.
    struct Values {
        QString type;
        QRectF bounds;
        int flags = 4; ///< Print
        std::optional<QColor> color;
        std::optional<QColor> interiorColor;
        std::optional<PDFBorder> border;
        double defaultLineWidth = 1; ///< points, of lines where there is no border; files mean 1 by saying nothing
        QString contents;
        QString userName;
        QDateTime modificationDate;
        std::optional<QFont> font;
        std::optional<QColor> fontColor;
        bool fontSizeSuitsBox = false; ///< of a field: chosen so that the text fits, whatever `font` says
        QPointF startPoint;
        QPointF endPoint;
        PDFLineStyle startLineStyle = PDFLineStyle::none;
        PDFLineStyle endLineStyle = PDFLineStyle::none;
        std::vector<QPainterPath> paths;
        std::vector<PDFQuad> quads;
        std::optional<PDFDestination> destination;
        bool leadsInside = false; ///< a link of a file with a place there, which is looked up when it is asked for
        QString url;
        QString fieldName;
        PDFWidgetFieldType widgetFieldType = PDFWidgetFieldType::none;
        PDFWidgetControlType widgetControlType = PDFWidgetControlType::pushButton;
        PDFWidgetCellState buttonWidgetState = PDFWidgetCellState::off;
        QString widgetStringValue;
        /// The export values that are chosen in a choice field; of a check box or radio button the name of the state
        /// that its field is in, "Off" for none.
        QStringList chosenValues;
        std::shared_ptr<const FormFieldValues> form; ///< of a field of a file
        int fieldFlags = 0;                          ///< the Ff key
        bool hasAppearance = false;                  ///< the file gives a normal appearance (AP, N)
    };
    [[nodiscard]] const Values& values() const { return m_values; }

    /// For the reader of files: an annotation as the file has it.
    PDFAnnotation(Values values, PDFAnnotationOrigin origin);

protected:
    /// Tells the page that what it shows changed within `area` (page coordinates).
    void noteChange(const QRectF& area);
    /// Gives `fresh`, a new annotation of the same class, all that this one has, for overrides of `copy`.
    [[nodiscard]] std::shared_ptr<PDFAnnotation> copied(std::shared_ptr<PDFAnnotation> fresh) const;
    Values m_values;

private:
    friend class PDFPage;
    friend class PDFFormField;
    friend class DocumentFreezer;
    template <typename T>
    void set(T Values::*field, const T& value);
    void announceChange(const QRectF& area);
    /// Gives a widget its field's value; one that shows the same as before doesn't count as changed. With all that it
    /// had in the file it is unmodified again.
    void fill(const QString& string, const QStringList& chosen, PDFWidgetCellState state);

    std::weak_ptr<PDFPage> m_page;
    std::optional<PDFAnnotationOrigin> m_origin;
    bool m_modified = false;
    mutable std::shared_ptr<const AnnotationDrawing> m_fieldDrawing; // of a widget that was drawn as it is now
    /// When it was last changed before it was filled; set while its value is all that differs from the file.
    std::optional<QDateTime> m_dateBeforeFilling;
};
