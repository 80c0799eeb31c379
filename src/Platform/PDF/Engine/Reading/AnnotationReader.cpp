#include "AnnotationReader.h"

#include "DefaultStyle.h"
#include "DestinationReader.h"
#include "EngineValues.h"
#include "FormFieldReader.h"
#include "PDFAnnotationSubtype.h"
#include "PageObjects.h"
#include "SourceEngine.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>

namespace {

/// Of more on one page the last are read, which lie on top: what was added is among them.
constexpr int annotationLimit = 20000;

/// Reads one dictionary. Each step fetches inside `engineTry` and converts outside it, so that a broken key costs that
/// key alone.
class Reader {
public:
    Reader(fz_context* context, const PDFPageGeometry& page, pdf_obj* dictionary, FormFieldReader& fields)
        : m_context(context), m_page(page), m_dictionary(dictionary), m_fields(fields) {}

    std::optional<PDFAnnotationValues> read() {
        PDFAnnotationValues values;
        values.type = EngineValues::name(m_context, get("Subtype"));
        if (values.type.isEmpty())
            return std::nullopt;
        values.bounds = EngineValues::rect(m_context, get("Rect"));
        values.flags = integer(get("F"));
        values.hasAppearance = m_fields.hasAppearance(m_dictionary);
        if (PDFAnnotationFrame::suits(values.type))
            readFrame(values);
        if (values.type == PDFAnnotationSubtype::text && values.bounds.isEmpty() && !numbers(get("Rect")).empty())
            placeNote(values);
        readColors(values);
        values.contents = EngineValues::text(m_context, get("Contents"));
        values.modificationDate = EngineValues::date(EngineValues::text(m_context, get("M")));
        values.creationDate = EngineValues::date(EngineValues::text(m_context, get("CreationDate")));
        values.border = EngineValues::border(m_context, m_dictionary);
        if (values.type == PDFAnnotationSubtype::widget)
            m_fields.read(m_dictionary, values);
        else
            values.userName = EngineValues::text(m_context, get("T"));
        readDefaultAppearance(values);
        if (values.type == PDFAnnotationSubtype::line || values.type == PDFAnnotationSubtype::polyLine)
            readLine(values);
        if (values.type == PDFAnnotationSubtype::ink)
            readInk(values);
        if (values.type == PDFAnnotationSubtype::polygon || values.type == PDFAnnotationSubtype::polyLine)
            values.vertices = points("Vertices", values.bounds.topLeft());
        if (values.type == PDFAnnotationSubtype::freeText)
            readCallout(values);
        readShape(values);
        if (values.type == PDFAnnotationSubtype::link)
            readLink(values);
        readQuads(values);
        return values;
    }

private:
    /// Null for a key that is missing or broken.
    pdf_obj* get(const char* path) {
        pdf_obj* object = nullptr;
        engineTry(m_context,
                  [&] { object = pdf_resolve_indirect(m_context, pdf_dict_getp(m_context, m_dictionary, path)); });
        return object;
    }

    int integer(pdf_obj* object) const { return pdf_to_int(m_context, object); }

    std::vector<double> numbers(pdf_obj* array) const { return EngineValues::numbers(m_context, array); }

    /// A look that its file turns stays so when it is drawn anew. A note's sign is upright on every page.
    void readFrame(PDFAnnotationValues& values) {
        PDFAnnotationFrame& frame = values.frame.emplace();
        frame.userUnit = m_page.userUnit;
        if (!values.hasAppearance) {
            frame.turn = m_page.rotation;
            return;
        }
        const std::vector<double> matrix = numbers(get("AP/N/Matrix"));
        const double angle = matrix.size() < 4 ? 0 : std::atan2(matrix[1], matrix[0]);
        const int quarters = int(std::lround(angle / (std::numbers::pi / 2)));
        frame.turn = (quarters + 4) % 4 * 90;
    }

    /// The sign of a note whose rectangle is a mere point or line begins there, as far as it then is on the page.
    void placeNote(PDFAnnotationValues& values) const {
        constexpr double side = 20; // points, the usual size of the sign
        const QTransform toSeen = m_page.displayTransform(PDFDisplayBox::cropBox);
        QRectF seen(toSeen.mapRect(values.bounds).topLeft(), QSizeF(side, side));
        const QRectF page(QPointF(0, 0), m_page.displaySize(PDFDisplayBox::cropBox));
        if (page.adjusted(0, 0, 1, 1).contains(seen.topLeft())) {
            seen.moveRight(std::min(seen.right(), page.right()));
            seen.moveBottom(std::min(seen.bottom(), page.bottom()));
        }
        values.bounds = toSeen.inverted().mapRect(seen);
    }

    void readColors(PDFAnnotationValues& values) {
        values.color = EngineValues::color(m_context, get("C"));
        values.interiorColor = EngineValues::color(m_context, get("IC"));
        const double opacity = EngineValues::number(m_context, get("CA")).value_or(1.0);
        if (values.color)
            values.color->setAlphaF(float(std::clamp(opacity, 0.0, 1.0)));
        if (values.interiorColor)
            values.interiorColor->setAlphaF(float(std::clamp(opacity, 0.0, 1.0)));
    }

    void readDefaultAppearance(PDFAnnotationValues& values) {
        values.text.sizeSuitsBox = values.type == PDFAnnotationSubtype::widget; // unless a size is given
        pdf_obj* operators = m_fields.inherited(m_dictionary, "DA");
        if (!operators && values.type == PDFAnnotationSubtype::widget)
            engineTry(m_context, [&] { operators = pdf_dict_gets(m_context, m_fields.form(), "DA"); });
        const QString appearance = EngineValues::text(m_context, operators);
        if (appearance.isEmpty())
            return;
        static const QRegularExpression fontPattern(QStringLiteral(R"(/(\S+)\s+([-\d.]+)\s+Tf)"));
        static const QRegularExpression colorPattern(QStringLiteral(R"(((?:[-\d.]+\s+){1,4})(g|rg|k)\b)"));
        const QRegularExpressionMatch font = fontPattern.match(appearance);
        if (font.hasMatch()) {
            const double size = font.captured(2).toDouble();
            values.text.sizeSuitsBox = !(size > 0 && size < 1000);
            values.text.font = m_fields.font(font.captured(1), values.text.sizeSuitsBox ? 12.0 : size,
                                             values.type == PDFAnnotationSubtype::widget);
            if (values.type == PDFAnnotationSubtype::freeText) {
                DefaultStyle::apply(EngineValues::text(m_context, get("DS")), *values.text.font);
                values.text.font->setPointSizeF(values.text.font->pointSizeF() * m_page.userUnit);
            }
        }
        const QRegularExpressionMatch color = colorPattern.match(appearance);
        if (color.hasMatch()) {
            std::array<float, 4> part{};
            const QStringList parts = color.captured(1).split(QLatin1Char(' '), Qt::SkipEmptyParts);
            for (int i = 0; i < std::min<int>(4, int(parts.size())); ++i)
                part[std::size_t(i)] = std::clamp(parts[i].toFloat(), 0.0F, 1.0F);
            if (color.captured(2) == QLatin1String("g"))
                values.text.color = QColor::fromRgbF(part[0], part[0], part[0]);
            else if (color.captured(2) == QLatin1String("rg"))
                values.text.color = QColor::fromRgbF(part[0], part[1], part[2]);
            else
                values.text.color = QColor::fromCmykF(part[0], part[1], part[2], part[3]).toRgb();
        }
    }

    static PDFLineStyle lineStyle(const QString& name) {
        static const std::array<std::pair<QLatin1String, PDFLineStyle>, 5> styles{{
            {QLatin1String("Square"), PDFLineStyle::square},
            {QLatin1String("Circle"), PDFLineStyle::circle},
            {QLatin1String("Diamond"), PDFLineStyle::diamond},
            {QLatin1String("OpenArrow"), PDFLineStyle::openArrow},
            {QLatin1String("ClosedArrow"), PDFLineStyle::closedArrow},
        }};
        for (const auto& [known, style] : styles)
            if (name == known)
                return style;
        return PDFLineStyle::none;
    }

    void readLine(PDFAnnotationValues& values) {
        const std::vector<double> ends = numbers(get("L"));
        if (ends.size() >= 4) {
            values.line.startPoint = QPointF(ends[0], ends[1]);
            values.line.endPoint = QPointF(ends[2], ends[3]);
        }
        const auto length = [this](const char* key) {
            return std::clamp(EngineValues::number(m_context, get(key)).value_or(0.0), -10000.0, 10000.0);
        };
        values.line.leaderLength = length("LL");
        values.line.leaderExtension = std::max(length("LLE"), 0.0);
        values.line.leaderOffset = std::max(length("LLO"), 0.0);
        values.line.hasCaption = pdf_to_bool(m_context, get("Cap")) != 0;
        values.line.captionIsAbove = EngineValues::name(m_context, get("CP")) == QLatin1String("Top");
        pdf_obj* styles = get("LE");
        pdf_obj* start = nullptr;
        pdf_obj* end = nullptr;
        engineTry(m_context, [&] {
            start = pdf_array_get(m_context, styles, 0);
            end = pdf_array_get(m_context, styles, 1);
        });
        values.line.startStyle = lineStyle(EngineValues::name(m_context, start));
        values.line.endStyle = lineStyle(EngineValues::name(m_context, end));
    }

    QPolygonF points(const char* key, QPointF origin) {
        const std::vector<double> v = numbers(get(key));
        QPolygonF found;
        for (std::size_t i = 0; i + 1 < v.size(); i += 2)
            found.append(QPointF(v[i], v[i + 1]) - origin);
        return found;
    }

    void readCallout(PDFAnnotationValues& values) {
        values.callout = points("CL", values.bounds.topLeft());
        if (values.callout.size() != 2 && values.callout.size() != 3)
            values.callout.clear();
        values.line.startStyle = lineStyle(EngineValues::name(m_context, get("LE")));
    }

    void readShape(PDFAnnotationValues& values) {
        const std::vector<double> v = numbers(get("RD"));
        const double most = std::max(values.bounds.width(), values.bounds.height());
        if (v.size() >= 4)
            values.margins = {std::clamp(v[0], 0.0, most), std::clamp(v[1], 0.0, most), std::clamp(v[2], 0.0, most),
                              std::clamp(v[3], 0.0, most)};
        if (EngineValues::name(m_context, get("BE/S")) == QLatin1String("C"))
            values.cloudiness = std::clamp(EngineValues::number(m_context, get("BE/I")).value_or(0.0), 0.0, 10.0);
    }

    void readInk(PDFAnnotationValues& values) {
        pdf_obj* strokes = get("InkList");
        const int count = std::min(pdf_array_len(m_context, strokes), annotationLimit);
        for (int i = 0; i < count; ++i) {
            pdf_obj* stroke = nullptr;
            engineTry(m_context, [&] { stroke = pdf_array_get(m_context, strokes, i); });
            const std::vector<double> v = numbers(stroke);
            QPainterPath path;
            for (std::size_t at = 0; at + 1 < v.size(); at += 2) {
                const QPointF point = QPointF(v[at], v[at + 1]) - values.bounds.topLeft();
                if (at == 0)
                    path.moveTo(point);
                else
                    path.lineTo(point);
            }
            if (path.elementCount() > 0)
                values.paths.push_back(path);
        }
    }

    void readQuads(PDFAnnotationValues& values) {
        const std::vector<double> v = numbers(get("QuadPoints"));
        for (std::size_t i = 0; i + 7 < v.size(); i += 8)
            values.quads.push_back(
                {{v[i], v[i + 1]}, {v[i + 2], v[i + 3]}, {v[i + 4], v[i + 5]}, {v[i + 6], v[i + 7]}});
    }

    /// Looking up a place by its name costs more than all the rest of a page full of links, so it is left for later.
    void readLink(PDFAnnotationValues& values) {
        pdf_obj* uri = nullptr;
        engineTry(m_context, [&] {
            uri = DestinationReader::uriOf(m_context, m_dictionary);
            values.link.leadsInside = DestinationReader::hasTarget(m_context, m_dictionary);
        });
        values.link.url = EngineValues::text(m_context, uri);
    }

    fz_context* m_context;
    const PDFPageGeometry& m_page;
    pdf_obj* m_dictionary;
    FormFieldReader& m_fields;
};

pdf_obj* annotsOf(fz_context* context, pdf_document* document, int pageNumber) {
    pdf_obj* annots = nullptr;
    engineTry(context, [&] {
        annots = pdf_dict_get(context, pdf_lookup_page_obj(context, document, pageNumber), PDF_NAME(Annots));
    });
    return annots;
}

} // namespace

std::map<int, PDFAnnotationValues> AnnotationReader::read(SourceEngine& engine, int pageNumber) {
    std::map<int, PDFAnnotationValues> result;
    const SourceEngine::Lease borrowed = engine.lease();
    if (!borrowed || pageNumber < 0 || pageNumber >= engine.pageCount())
        return result;
    fz_context* context = borrowed.context();
    pdf_obj* annots = annotsOf(context, borrowed.document(), pageNumber);
    const int count = pdf_array_len(context, annots);
    if (count == 0)
        return result;
    PDFPageGeometry geometry;
    engineTry(context, [&] {
        PageObjects::readGeometry(context, pdf_lookup_page_obj(context, borrowed.document(), pageNumber), geometry);
    });
    FormFieldReader fields(context, borrowed.document());
    std::map<int, int> places;  // of the object with that number
    std::map<int, int> answers; // the number of the object that is answered, by place
    for (int i = std::max(0, count - annotationLimit); i < count; ++i) {
        pdf_obj* dictionary = nullptr;
        engineTry(context, [&] {
            dictionary = pdf_array_get(context, annots, i);
            places.emplace(pdf_to_num(context, dictionary), i);
            dictionary = pdf_resolve_indirect(context, dictionary);
            if (const int answered = pdf_to_num(context, pdf_dict_gets(context, dictionary, "IRT")); answered > 0)
                answers.emplace(i, answered);
        });
        if (!pdf_is_dict(context, dictionary))
            continue;
        if (auto values = Reader(context, geometry, dictionary, fields).read())
            result.emplace_hint(result.end(), i, std::move(*values));
    }
    for (const auto& [place, number] : answers)
        if (const auto found = places.find(number); found != places.end())
            if (const auto reply = result.find(place); reply != result.end())
                reply->second.repliesTo = found->second;
    return result;
}

QRectF AnnotationReader::bounds(SourceEngine& engine, int pageNumber, int index) {
    const SourceEngine::Lease borrowed = engine.lease();
    if (!borrowed)
        return {};
    fz_context* context = borrowed.context();
    pdf_obj* annots = annotsOf(context, borrowed.document(), pageNumber);
    fz_rect rect = fz_empty_rect;
    engineTry(context,
              [&] { rect = pdf_dict_get_rect(context, pdf_array_get(context, annots, index), PDF_NAME(Rect)); });
    return fromEngine(rect);
}

std::vector<int> AnnotationReader::pagesWithContents(SourceEngine& engine, const QString& contents,
                                                     const std::stop_token& stop) {
    std::vector<int> pages;
    const SourceEngine::Lease borrowed = engine.lease();
    if (!borrowed)
        return pages;
    fz_context* context = borrowed.context();
    const bool hasTree = engineTry(context, [&] { pdf_load_page_tree(context, borrowed.document()); });
    for (int page = 0; page < engine.pageCount() && !stop.stop_requested(); ++page) {
        pdf_obj* annots = annotsOf(context, borrowed.document(), page);
        const int count = pdf_array_len(context, annots);
        for (int i = std::max(0, count - annotationLimit); i < count; ++i) {
            pdf_obj* found = nullptr;
            engineTry(context, [&] {
                found = pdf_dict_get(context, pdf_array_get(context, annots, i), PDF_NAME(Contents));
                found = pdf_resolve_indirect(context, found);
            });
            if (found && EngineValues::text(context, found) == contents) {
                pages.push_back(page);
                break;
            }
        }
    }
    if (hasTree)
        engineTry(context, [&] { pdf_drop_page_tree(context, borrowed.document()); });
    return pages;
}

PDFFileDestination AnnotationReader::target(SourceEngine& engine, int pageNumber, int index) {
    PDFFileDestination target;
    const SourceEngine::Lease borrowed = engine.lease();
    if (!borrowed)
        return target;
    fz_context* context = borrowed.context();
    pdf_obj* annots = annotsOf(context, borrowed.document(), pageNumber);
    engineTry(context, [&] {
        DestinationReader::readTarget(context, borrowed.document(), pdf_array_get(context, annots, index), target);
    });
    return target;
}
