#include "PDFAnnotation.h"

#include "AccountName.h"
#include "AnnotationDrawing.h"
#include "AnnotationReader.h"
#include "DrawingPainter.h"
#include "FileAppearance.h"
#include "FormFieldValues.h"
#include "NoteIcon.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFPageGeometry.h"
#include "PDFSource.h"

#include <QPainter>

#include <algorithm>

namespace {

// Bits of the F key (ISO 32000-1, table 165).
constexpr int hiddenFlag = 1 << 1;
constexpr int noRotateFlag = 1 << 4;
constexpr int noViewFlag = 1 << 5;

/// As exact as a file can say it.
QDateTime now() {
    return QDateTime::fromSecsSinceEpoch(QDateTime::currentSecsSinceEpoch());
}

// Paths and fonts keep what they reckon while they are drawn in the data that their copies share, without a lock.

void separate(QPainterPath& path) {
    if (path.elementCount() > 0)
        path.setElementPositionAt(0, path.elementAt(0).x, path.elementAt(0).y);
    else
        path = QPainterPath();
}

void separate(QFont& font) {
    const uint mask = font.resolveMask();
    font.setKerning(!font.kerning());
    font.setKerning(!font.kerning());
    font.setResolveMask(mask);
}

using Values = PDFAnnotationValues;

} // namespace

PDFAnnotation::PDFAnnotation(const QRectF& bounds, const QString& type) {
    m_values.type = type;
    m_values.bounds = bounds.normalized();
    m_values.modificationDate = now();
    if (!PDFAnnotationSubtype::isMarkup(type))
        return;
    m_values.creationDate = m_values.modificationDate;
    m_values.userName = AccountName::current();
}

PDFAnnotation::PDFAnnotation(Values values, PDFAnnotationOrigin origin)
    : m_values(std::move(values)), m_origin(std::move(origin)) {}

PDFAnnotation::~PDFAnnotation() = default;

void PDFAnnotation::noteChange(const QRectF& area) {
    m_values.modificationDate = now();
    announceChange(area);
}

void PDFAnnotation::announceChange(const QRectF& area) {
    m_modified = true;
    m_fieldDrawing.reset();
    m_dateBeforeFilling.reset();
    if (const auto holder = page())
        holder->noteChange(area);
}

QRectF PDFAnnotation::drawnArea() const {
    const double width = m_values.border ? m_values.border->lineWidth : 2;
    const double lineReach = std::max(3.4 * width, 8.0) + width; // of the ends of lines
    if (m_values.type == PDFAnnotationSubtype::line) {
        // Its bounds may be those of the whole page.
        const PDFLineData& line = m_values.line;
        const double reach = lineReach + std::abs(line.leaderLength) + line.leaderExtension;
        const QRectF run = QRectF(line.startPoint, line.endPoint).normalized().adjusted(-reach, -reach, reach, reach);
        const auto drawing = line.hasCaption ? AnnotationDrawing::of(m_values) : std::nullopt;
        return drawing ? run | drawing->extent() : run;
    }
    QRectF area = m_values.bounds | m_values.vertices.boundingRect().translated(m_values.bounds.topLeft());
    for (const PDFQuad& quad : m_values.quads)
        area |= quad.boundingRect();
    constexpr double noteOverhang = 24; // the icon of a note is larger than many a rectangle of one
    area |= m_values.callout.boundingRect().translated(m_values.bounds.topLeft());
    const double overhang = m_values.type == PDFAnnotationSubtype::text       ? noteOverhang
                            : m_values.type == PDFAnnotationSubtype::polyLine ? lineReach
                                                                              : width + 2 + 8 * m_values.cloudiness;
    return area.adjusted(-overhang, -overhang, overhang, overhang);
}

bool PDFAnnotation::isAt(QPointF point, double reach) const {
    if (!drawnArea().adjusted(-reach, -reach, reach, reach).contains(point))
        return false;
    if (PDFAnnotationSubtype::marksText(m_values.type)) {
        const auto quads = quadrilateralPoints();
        return std::any_of(quads.begin(), quads.end(), [point](const PDFQuad& q) {
            return QPolygonF({q.upperLeft, q.upperRight, q.lowerRight, q.lowerLeft})
                .containsPoint(point, Qt::WindingFill);
        });
    }
    const bool isShape = m_values.type != PDFAnnotationSubtype::widget && !PDFAnnotationFrame::suits(m_values.type);
    const auto drawing = isShape ? AnnotationDrawing::of(m_values) : std::nullopt;
    return drawing && !drawing->extent().isEmpty() ? drawing->isAt(point, reach) : m_values.bounds.contains(point);
}

template <typename T, typename... Place>
void PDFAnnotation::set(const T& value, Place... place) {
    T& present = (m_values.*....*place);
    if (present == value)
        return;
    const QRectF before = drawnArea();
    present = value;
    noteChange(before | drawnArea());
}

void PDFAnnotation::setBounds(const QRectF& bounds) {
    set(bounds.normalized(), &Values::bounds);
}
void PDFAnnotation::setColor(const std::optional<QColor>& color) {
    set(color, &Values::color);
}
void PDFAnnotation::setInteriorColor(const std::optional<QColor>& color) {
    set(color, &Values::interiorColor);
}
void PDFAnnotation::setBorder(const std::optional<PDFBorder>& border) {
    set(border, &Values::border);
}
void PDFAnnotation::setContents(const QString& contents) {
    set(contents, &Values::contents);
}
void PDFAnnotation::setUserName(const QString& name) {
    set(name, &Values::userName);
}
void PDFAnnotation::setModificationDate(const QDateTime& date) {
    if (m_values.modificationDate == date)
        return;
    m_values.modificationDate = date;
    announceChange(drawnArea());
}
void PDFAnnotation::setProvenance(const PDFAnnotation& former) {
    setUserName(former.userName());
    set(former.creationDate(), &Values::creationDate);
}
void PDFAnnotation::setFont(const std::optional<QFont>& font) {
    m_values.text.sizeSuitsBox = m_values.text.sizeSuitsBox && font == m_values.text.font;
    set(font, &Values::text, &PDFTextStyle::font);
}
void PDFAnnotation::setFontColor(const std::optional<QColor>& color) {
    set(color, &Values::text, &PDFTextStyle::color);
}
void PDFAnnotation::setStartPoint(QPointF point) {
    set(point, &Values::line, &PDFLineData::startPoint);
}
void PDFAnnotation::setEndPoint(QPointF point) {
    set(point, &Values::line, &PDFLineData::endPoint);
}
void PDFAnnotation::setStartLineStyle(PDFLineStyle style) {
    set(style, &Values::line, &PDFLineData::startStyle);
}
void PDFAnnotation::setEndLineStyle(PDFLineStyle style) {
    set(style, &Values::line, &PDFLineData::endStyle);
}
void PDFAnnotation::setUrl(const QString& url) {
    set(url, &Values::link, &PDFLinkData::url);
}
void PDFAnnotation::setFieldName(const QString& name) {
    set(name, &Values::field, &PDFFieldData::name);
}
void PDFAnnotation::setWidgetFieldType(PDFWidgetFieldType type) {
    set(type, &Values::field, &PDFFieldData::type);
}
void PDFAnnotation::setWidgetControlType(PDFWidgetControlType type) {
    set(type, &Values::field, &PDFFieldData::control);
}
void PDFAnnotation::setButtonWidgetState(PDFWidgetCellState state) {
    const QString own = m_values.field.inFile ? m_values.field.inFile->onState : QStringLiteral("Yes");
    if (state == PDFWidgetCellState::on)
        m_values.field.chosen = {own};
    else if (m_values.field.chosen.value(0) == own)
        m_values.field.chosen = {QStringLiteral("Off")};
    set(state, &Values::field, &PDFFieldData::state);
}
void PDFAnnotation::setWidgetStringValue(const QString& value) {
    if (m_values.field.type == PDFWidgetFieldType::choice && value != m_values.field.string)
        m_values.field.chosen = value.isEmpty() ? QStringList() : QStringList{value};
    set(value, &Values::field, &PDFFieldData::string);
}

void PDFAnnotation::setWidgetRotation(int degrees) {
    set(degrees, &Values::field, &PDFFieldData::turn);
}

void PDFAnnotation::fill(const QString& string, const QStringList& chosen, PDFWidgetCellState state) {
    const bool isButton = m_values.field.type == PDFWidgetFieldType::button;
    const bool looksDifferent =
        isButton ? state != m_values.field.state : string != m_values.field.string || chosen != m_values.field.chosen;
    m_values.field.string = string;
    m_values.field.chosen = chosen;
    m_values.field.state = state;
    if (!looksDifferent)
        return;
    const bool wasUnchanged = m_origin && !m_modified;
    const std::optional<QDateTime> before = wasUnchanged ? m_values.modificationDate : m_dateBeforeFilling;
    noteChange(drawnArea());
    m_dateBeforeFilling = before;
    if (!before || !m_values.field.inFile)
        return;
    const bool isAsInFile = isButton
                                ? state == m_values.field.inFile->stateInFile
                                : (m_values.field.type == PDFWidgetFieldType::text ? QStringList{string} : chosen) ==
                                      m_values.field.inFile->valueInFile;
    if (!isAsInFile)
        return;
    m_values.modificationDate = *before;
    m_modified = false;
    m_dateBeforeFilling.reset();
    if (const auto holder = page())
        holder->m_hiddenFileAnnotations.reset(); // the file's own look is right again
}

void PDFAnnotation::add(const QPainterPath& path) {
    m_values.paths.push_back(path);
    noteChange(drawnArea());
}

void PDFAnnotation::setPaths(const QRectF& bounds, std::vector<QPainterPath> paths, const QRectF& changedArea) {
    m_values.bounds = bounds.normalized();
    m_values.paths = std::move(paths);
    noteChange(changedArea);
}

std::vector<PDFQuad> PDFAnnotation::quadrilateralPoints() const {
    return m_values.quads.empty() ? std::vector{PDFQuad::fromRect(m_values.bounds)} : m_values.quads;
}

void PDFAnnotation::setQuadrilateralPoints(const std::vector<PDFQuad>& quads) {
    set(quads, &Values::quads);
}

std::optional<PDFDestination> PDFAnnotation::destination() const {
    if (m_values.link.destination || !m_values.link.leadsInside)
        return m_values.link.destination;
    const auto holder = page();
    if (!holder || !holder->document() || !m_origin)
        return std::nullopt;
    const PDFPageContent& content = m_origin->content;
    return holder->document()->destination(
        AnnotationReader::target(content.source->engine(), content.pageNumber, m_origin->index), content.source);
}

void PDFAnnotation::setDestination(const std::optional<PDFDestination>& destination) {
    m_values.link.destination = destination;
    m_values.link.leadsInside = false;
    noteChange(drawnArea());
}

bool PDFAnnotation::coversPage() const {
    constexpr double rounding = 1; // page units, of boxes in files
    const auto holder = page();
    return holder && m_values.type == PDFAnnotationSubtype::stamp &&
           m_values.bounds.adjusted(-rounding, -rounding, rounding, rounding)
               .contains(holder->bounds(PDFDisplayBox::cropBox));
}

bool PDFAnnotation::shouldDisplay() const {
    return (m_values.flags & (hiddenFlag | noViewFlag)) == 0;
}

std::shared_ptr<PDFAnnotation> PDFAnnotation::copy() const {
    return copied(std::make_shared<PDFAnnotation>(m_values.bounds, m_values.type));
}

std::shared_ptr<PDFAnnotation> PDFAnnotation::copied(std::shared_ptr<PDFAnnotation> fresh) const {
    fresh->m_values = m_values;
    for (QPainterPath& path : fresh->m_values.paths)
        separate(path);
    if (fresh->m_values.text.font)
        separate(*fresh->m_values.text.font);
    fresh->m_origin = m_origin;
    fresh->m_modified = m_modified;
    fresh->m_dateBeforeFilling = m_dateBeforeFilling;
    return fresh;
}

QRectF PDFAnnotation::uprightBounds() const {
    return m_values.frame ? m_values.frame->upright(m_values.bounds) : m_values.bounds;
}

QTransform PDFAnnotation::uprightToPage() const {
    return m_values.frame ? m_values.frame->toPage(m_values.bounds) : QTransform();
}

void PDFAnnotation::standOn(const PDFPageGeometry& page) {
    if (m_values.frame || !PDFAnnotationFrame::suits(m_values.type))
        return;
    m_values.frame = {page.rotation, page.userUnit}; // which it keeps when the page is turned later
    if (page.rotation != 0 && m_values.type == PDFAnnotationSubtype::text)
        m_values.flags |= noRotateFlag; // for the signs of other programs
}

Values PDFAnnotation::uprightValues() const {
    Values upright = m_values;
    upright.bounds = uprightBounds();
    const QTransform fromPage = uprightToPage().inverted();
    upright.callout =
        fromPage.map(m_values.callout.translated(m_values.bounds.topLeft())).translated(-upright.bounds.topLeft());
    const QMarginsF& m = m_values.margins;
    if (const QRectF inner = m_values.bounds.adjusted(m.left(), m.bottom(), -m.right(), -m.top()); inner.isValid()) {
        const QRectF words = fromPage.mapRect(inner);
        upright.margins = {words.left() - upright.bounds.left(), upright.bounds.bottom() - words.bottom(),
                           upright.bounds.right() - words.right(), words.top() - upright.bounds.top()};
    }
    if (upright.border && upright.frame)
        upright.border->lineWidth *= upright.frame->userUnit;
    return upright;
}

void PDFAnnotation::draw(PDFDisplayBox /*box*/, QPainter& painter) const {
    if (drawFileState(*this, painter))
        return;
    const bool isUpright = m_values.frame.value_or(PDFAnnotationFrame()) == PDFAnnotationFrame();
    const std::optional<Values> upright = isUpright ? std::nullopt : std::optional(uprightValues());
    const Values& values = upright ? *upright : m_values;
    // Breaking a field's text into lines takes far longer than drawing them.
    std::shared_ptr<const AnnotationDrawing> drawing = m_fieldDrawing;
    if (!drawing)
        if (auto made = AnnotationDrawing::of(values))
            drawing = std::make_shared<const AnnotationDrawing>(std::move(*made));
    if (type() == PDFAnnotationSubtype::widget)
        m_fieldDrawing = drawing;
    if (drawing)
        DrawingPainter::paint(*drawing, painter);
    else if (type() == PDFAnnotationSubtype::text)
        NoteIcon::draw(values, painter);
    else if (m_origin && m_values.hasAppearance)
        drawFromFile(painter);
}

/// A look of the file is placed on the page by the file.
void PDFAnnotation::drawFromFile(QPainter& painter) const {
    painter.save();
    painter.setTransform(uprightToPage().inverted(), true);
    drawFileAppearance(*this, painter);
    painter.restore();
}

void PDFAnnotation::drawAll(std::span<const std::shared_ptr<PDFAnnotation>> annotations, PDFDisplayBox box,
                            QPainter& painter) {
    for (const std::shared_ptr<PDFAnnotation>& annotation : annotations) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setTransform(annotation->uprightToPage(), true);
        annotation->draw(box, painter);
        painter.restore();
    }
}
