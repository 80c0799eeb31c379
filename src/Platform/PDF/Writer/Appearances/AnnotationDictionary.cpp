#include "AnnotationDictionary.h"

#include "DefaultStyle.h"
#include "PDFAnnotationSubtype.h"
#include "PDFPage.h"
#include "PageFont.h"
#include "PathFlattening.h"
#include "PdfValues.h"

#include <QUrl>

#include <cmath>

namespace {

using Values = PDFAnnotationValues;
namespace Subtype = PDFAnnotationSubtype;

/// Points (1/72 inch) from one point of a flattened curve to the next; below what a printer shows.
constexpr double flattening = 1.0;
constexpr int longestCurve = 256; // pieces

/// Writes the keys for what differs; everything differs from nothing.
class Writer {
public:
    Writer(QPDFObjectHandle dictionary, const Values& now, const Values* before,
           const AnnotationDictionary::PageLookup& pages)
        : m_dictionary(dictionary), m_now(now), m_before(before), m_pages(pages) {}

    void write() {
        if (changed(&Values::bounds))
            set("/Rect", PdfValues::rect(m_now.bounds));
        if (changed(&Values::flags))
            set("/F", QPDFObjectHandle::newInteger(m_now.flags));
        if (changed(&Values::contents))
            set("/Contents", m_now.contents.isEmpty() ? QPDFObjectHandle::newNull() : PdfValues::text(m_now.contents));
        if (m_before && changed(&Values::contents)) // the old text once more, with styles
            set("/RC", QPDFObjectHandle::newNull());
        if (!m_before && m_now.type == Subtype::text)
            set("/Name", PdfValues::name("Note"));
        if (changed(&Values::modificationDate))
            set("/M", PdfValues::date(m_now.modificationDate));
        if (changed(&Values::creationDate) && m_now.creationDate.isValid())
            set("/CreationDate", PdfValues::date(m_now.creationDate));
        if (m_now.type != Subtype::widget && changed(&Values::userName))
            set("/T", m_now.userName.isEmpty() ? QPDFObjectHandle::newNull() : PdfValues::text(m_now.userName));
        writeColors();
        writeBorder();
        if (m_now.type == Subtype::freeText &&
            (changed(&Values::text, &PDFTextStyle::font) || changed(&Values::text, &PDFTextStyle::color)))
            writeFreeTextFont();
        if (m_now.type == Subtype::line || m_now.type == Subtype::polyLine)
            writeLine();
        if (m_now.type == Subtype::ink && (changed(&Values::paths) || changed(&Values::bounds)))
            writeInk();
        if (!m_now.vertices.isEmpty() && (changed(&Values::vertices) || changed(&Values::bounds)))
            set("/Vertices", pointsOnPage(m_now.vertices));
        if (!m_now.callout.isEmpty() && (changed(&Values::callout) || changed(&Values::bounds)))
            set("/CL", pointsOnPage(m_now.callout));
        writeQuads();
        if (m_now.type == Subtype::link)
            writeTarget();
    }

private:
    /// `place` leads to the value by pointers to members, from `Values` inwards.
    template <typename... Place>
    [[nodiscard]] bool changed(Place... place) const {
        return !m_before || (m_now.*....*place) != (*m_before.*....*place);
    }

    /// A null value removes the key.
    void set(const char* key, QPDFObjectHandle value) {
        if (value.isNull())
            m_dictionary.removeKey(key);
        else
            m_dictionary.replaceKey(key, value);
    }

    void writeColors() {
        if (changed(&Values::color))
            set("/C", PdfValues::color(m_now.color));
        if (m_now.type == Subtype::widget) {
            writeWidgetColors();
            return;
        }
        if (changed(&Values::interiorColor) && (m_before || m_now.interiorColor))
            set("/IC", PdfValues::color(m_now.interiorColor));
        if (changed(&Values::color) || changed(&Values::interiorColor))
            writeOpacity();
    }

    /// The key knows one opacity for the line and the interior.
    void writeOpacity() {
        const auto visible = [](const std::optional<QColor>& color) { return color && color->alpha() > 0; };
        const std::optional<QColor>& color = visible(m_now.color) ? m_now.color : m_now.interiorColor;
        const bool translucent = visible(color) && color->alpha() < 255;
        set("/CA", translucent ? PdfValues::number(double(color->alphaF())) : QPDFObjectHandle::newNull());
    }

    void writeWidgetColors() {
        QPDFObjectHandle look = m_dictionary.getKey("/MK");
        look = look.isDictionary() ? look.shallowCopy() : QPDFObjectHandle::newDictionary();
        const auto put = [&look](const char* key, const std::optional<QColor>& color) {
            if (color && color->alpha() > 0)
                look.replaceKey(key, PdfValues::color(color));
            else
                look.removeKey(key);
        };
        if (changed(&Values::color))
            put("/BC", m_now.color);
        if (changed(&Values::interiorColor)) {
            // The key knows no opacity, so the colour is what shows on white paper.
            std::optional<QColor> background = m_now.interiorColor;
            if (background && background->alpha() > 0) {
                const float alpha = background->alphaF();
                const auto onWhite = [alpha](float part) { return 1 - alpha + alpha * part; };
                background = QColor::fromRgbF(onWhite(background->redF()), onWhite(background->greenF()),
                                              onWhite(background->blueF()));
            }
            put("/BG", background);
        }
        if (m_before ? changed(&Values::field, &PDFFieldData::turn) : m_now.field.turn != 0)
            look.replaceKey("/R", QPDFObjectHandle::newInteger(m_now.field.turn));
        if (m_dictionary.hasKey("/MK") || !look.getKeys().empty())
            set("/MK", look);
    }

    void writeBorder() {
        if (!changed(&Values::border))
            return;
        std::optional<PDFBorder> border = m_now.border;
        if (!border && m_now.defaultLineWidth != PDFAnnotationValues().defaultLineWidth)
            border.emplace().lineWidth = m_now.defaultLineWidth;
        if (!border) {
            // A link without a border key would get a frame.
            set("/BS", QPDFObjectHandle::newNull());
            set("/Border", m_now.type == Subtype::link ? PdfValues::numbers({0, 0, 0}) : QPDFObjectHandle::newNull());
            return;
        }
        static const char* const names[] = {"S", "D", "B", "I", "U"};
        QPDFObjectHandle style = QPDFObjectHandle::newDictionary();
        style.replaceKey("/W", PdfValues::number(border->lineWidth));
        style.replaceKey("/S", PdfValues::name(names[int(border->style)]));
        QPDFObjectHandle array = PdfValues::numbers({0, 0, border->lineWidth});
        if (border->style == PDFBorderStyle::dashed) {
            style.replaceKey("/D", PdfValues::numbers(border->dashPattern));
            array.appendItem(PdfValues::numbers(border->dashPattern));
        }
        set("/BS", style);
        set("/Border", array);
    }

    void writeFreeTextFont() {
        QFont font = m_now.text.font.value_or(QFont(QStringLiteral("Helvetica"), 16));
        const QColor color = m_now.text.color.value_or(QColor(Qt::black));
        const double points = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize();
        const double size = points / m_now.frame.value_or(PDFAnnotationFrame()).userUnit; // the file means units
        font.setPointSizeF(size);
        set("/DA",
            QPDFObjectHandle::newString(
                AnnotationDictionary::defaultAppearance(PageFont::standardName(font), size, color).toStdString()));
        // The only place for a font that isn't one of the standard ones.
        set("/DS", PdfValues::text(DefaultStyle::of(font, color)));
        set("/RC", QPDFObjectHandle::newNull()); // has styles that would now be wrong
    }

    void writeLine() {
        if (m_now.type == Subtype::line &&
            (changed(&Values::line, &PDFLineData::startPoint) || changed(&Values::line, &PDFLineData::endPoint)))
            set("/L", PdfValues::numbers({m_now.line.startPoint.x(), m_now.line.startPoint.y(), m_now.line.endPoint.x(),
                                          m_now.line.endPoint.y()}));
        if (!changed(&Values::line, &PDFLineData::startStyle) && !changed(&Values::line, &PDFLineData::endStyle))
            return;
        static const char* const names[] = {"None", "Square", "Circle", "Diamond", "OpenArrow", "ClosedArrow"};
        set("/LE", QPDFObjectHandle::newArray({PdfValues::name(names[int(m_now.line.startStyle)]),
                                               PdfValues::name(names[int(m_now.line.endStyle)])}));
    }

    void writeInk() {
        QPDFObjectHandle strokes = QPDFObjectHandle::newArray();
        for (const QPainterPath& path : m_now.paths) {
            const QPainterPath onPage = path.translated(m_now.bounds.topLeft());
            for (const std::vector<QPointF>& stroke : PathFlattening::strokes(onPage, longestCurve, flattening)) {
                std::vector<double> numbers;
                for (const QPointF& point : stroke)
                    numbers.insert(numbers.end(), {point.x(), point.y()});
                strokes.appendItem(PdfValues::numbers(numbers));
            }
        }
        set("/InkList", strokes);
    }

    [[nodiscard]] QPDFObjectHandle pointsOnPage(const QPolygonF& points) const {
        std::vector<double> numbers;
        for (const QPointF& point : points.translated(m_now.bounds.topLeft()))
            numbers.insert(numbers.end(), {point.x(), point.y()});
        return PdfValues::numbers(numbers);
    }

    void writeQuads() {
        const bool isMarkup = Subtype::marksText(m_now.type);
        std::vector<PDFQuad> quads = m_now.quads;
        if (isMarkup && quads.empty() && (!m_before || changed(&Values::bounds) || changed(&Values::quads)))
            quads = {PDFQuad::fromRect(m_now.bounds)};
        else if (!changed(&Values::quads) || (quads.empty() && !m_before))
            return;
        // Upper corners first: what all readers expect, whatever the standard says about the order.
        std::vector<double> corners;
        for (const PDFQuad& quad : quads)
            for (const QPointF& corner : {quad.upperLeft, quad.upperRight, quad.lowerLeft, quad.lowerRight})
                corners.insert(corners.end(), {corner.x(), corner.y()});
        set("/QuadPoints", corners.empty() ? QPDFObjectHandle::newNull() : PdfValues::numbers(corners));
    }

    void writeTarget() {
        if (changed(&Values::link, &PDFLinkData::url) && !m_now.link.url.isEmpty()) {
            QPDFObjectHandle action = QPDFObjectHandle::newDictionary();
            action.replaceKey("/S", PdfValues::name("URI"));
            action.replaceKey("/URI", QPDFObjectHandle::newString(QUrl(m_now.link.url).toEncoded().toStdString()));
            set("/A", action);
            set("/Dest", QPDFObjectHandle::newNull());
            return;
        }
        const bool lostTarget = m_before && m_before->link.leadsInside && !m_now.link.leadsInside;
        if (changed(&Values::link, &PDFLinkData::url) || lostTarget || m_now.link.destination)
            set("/A", QPDFObjectHandle::newNull());
        if (lostTarget || m_now.link.destination)
            set("/Dest", m_now.link.destination ? AnnotationDictionary::destination(*m_now.link.destination, m_pages)
                                                : QPDFObjectHandle::newNull());
    }

    QPDFObjectHandle m_dictionary;
    const Values& m_now;
    const Values* m_before;
    const AnnotationDictionary::PageLookup& m_pages;
};

} // namespace

QPDFObjectHandle AnnotationDictionary::make(const Values& values, const PageLookup& pages) {
    QPDFObjectHandle dictionary = QPDFObjectHandle::newDictionary();
    dictionary.replaceKey("/Type", PdfValues::name("Annot"));
    dictionary.replaceKey("/Subtype", PdfValues::name(values.type.toUtf8().constData()));
    Writer(dictionary, values, nullptr, pages).write();
    return dictionary;
}

void AnnotationDictionary::update(QPDFObjectHandle dictionary, const Values& now, const Values& before,
                                  const PageLookup& pages) {
    Writer(dictionary, now, &before, pages).write();
}

bool AnnotationDictionary::looksDifferent(const Values& now, const Values& before) {
    const auto differs = [&](auto... place) { return (now.*....*place) != (before.*....*place); };
    if (differs(&Values::color) || differs(&Values::interiorColor) || differs(&Values::border) ||
        differs(&Values::text, &PDFTextStyle::font) || differs(&Values::text, &PDFTextStyle::color) ||
        differs(&Values::line, &PDFLineData::startPoint) || differs(&Values::line, &PDFLineData::endPoint) ||
        differs(&Values::line, &PDFLineData::startStyle) || differs(&Values::line, &PDFLineData::endStyle) ||
        differs(&Values::paths) || differs(&Values::vertices) || differs(&Values::quads) ||
        differs(&Values::field, &PDFFieldData::string) || differs(&Values::field, &PDFFieldData::turn))
        return true;
    if ((now.type == Subtype::freeText || (now.type == Subtype::line && now.line.hasCaption)) &&
        differs(&Values::contents))
        return true;
    // An appearance moves and scales with the rectangle. That suits a mere move; lines would change their width with
    // the size, and text markup is drawn from its corners.
    const bool ownCorners = Subtype::marksText(now.type) || now.type == Subtype::line;
    const QSizeF growth = now.bounds.size() - before.bounds.size();
    return std::abs(growth.width()) > 0.001 || std::abs(growth.height()) > 0.001 ||
           (ownCorners && differs(&Values::bounds));
}

QPDFObjectHandle AnnotationDictionary::destination(const PDFDestination& destination, const PageLookup& pages) {
    const std::shared_ptr<PDFPage> page = destination.page();
    QPDFObjectHandle object = page ? pages(*page) : QPDFObjectHandle::newNull();
    if (object.isNull())
        return object;
    const auto orNull = [](std::optional<double> value) {
        return value ? PdfValues::number(*value) : QPDFObjectHandle::newNull();
    };
    return QPDFObjectHandle::newArray(
        {object, PdfValues::name("XYZ"), orNull(destination.x()), orNull(destination.y()), orNull(destination.zoom())});
}

QByteArray AnnotationDictionary::defaultAppearance(const QByteArray& fontName, double size, const QColor& color) {
    const QColor rgb = color.toRgb();
    return '/' + fontName + ' ' + PdfValues::real(size) + " Tf " + PdfValues::real(rgb.redF()) + ' ' +
           PdfValues::real(rgb.greenF()) + ' ' + PdfValues::real(rgb.blueF()) + " rg";
}
