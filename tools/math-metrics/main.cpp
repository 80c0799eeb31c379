// Measures formulas. Each line of the standard input is a JSON object:
//   {"latex": "\\frac{1}{2}", "style": "display", "size": 20}
// and comes back on the standard output as it was with "width", "ascent" and "descent" in points, or with
// "error": {"code": …, "message": …}. "style" is "display" (when left out) or "text", "size" is the font's size in
// points (20 when left out), and the font is Latin Modern Math. The code of a line that is no such object is 0.
// With "reply": true the formula is read as one that a model wrote, as replies are, and where a reply would show its
// source, the code is 0.
// With "image": "half.png" the formula is also drawn into that file, black on white, at 200 pixels to the inch.

#include "FormulaDialect.h"
#include "MTFont.h"
#include "MTFontManager.h"
#include "MTMathImage.h"
#include "MTMathList.h"
#include "MTMathListBuilder.h"
#include "MTTypesetter.h"

#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>

#include <cstdio>
#include <iostream>
#include <optional>
#include <string>

namespace {

QJsonObject errorOf(int code, const QString& message) {
    return {{QStringLiteral("code"), code}, {QStringLiteral("message"), message}};
}

/// None for a style that there isn't.
std::optional<MTLineStyle> styleOf(const QJsonObject& formula) {
    const QString style = formula.value(QLatin1String("style")).toString(QStringLiteral("display"));
    if (style == QLatin1String("display"))
        return MTLineStyle::display;
    if (style == QLatin1String("text"))
        return MTLineStyle::text;
    return std::nullopt;
}

/// False when there is nothing to draw or the file can't be written.
bool isDrawn(const QString& latex, MTLineStyle style, double size, const QString& file) {
    constexpr double pixelsPerPoint = 200 / 72.27;
    MTMathImage drawing;
    drawing.font = MTFontManager::fontManager().latinModernFont(size);
    drawing.fontSize = size;
    drawing.labelMode = style == MTLineStyle::text ? MTMathUILabelMode::text : MTMathUILabelMode::display;
    drawing.latex = latex;
    drawing.contentInsets = {size, size, size, size};
    const MTMathImageResult result = drawing.asImage(pixelsPerPoint);
    if (!result.image)
        return false;
    QImage paper(result.image->size(), QImage::Format_RGB32);
    paper.setDevicePixelRatio(pixelsPerPoint);
    paper.fill(Qt::white);
    QPainter(&paper).drawImage(0, 0, *result.image);
    return paper.save(file);
}

QJsonObject measured(QJsonObject formula) {
    const QString error = QStringLiteral("error");
    const QJsonValue latex = formula.value(QLatin1String("latex"));
    const std::optional<MTLineStyle> style = styleOf(formula);
    const double size = formula.value(QLatin1String("size")).toDouble(MTFontManager::kDefaultFontSize);
    if (!latex.isString() || !style || !(size > 0)) {
        formula[error] = errorOf(0, QStringLiteral("A formula has a “latex” that is text, a “style” that is “display” "
                                                   "or “text”, and a “size” above 0."));
        return formula;
    }
    const bool isReply = formula.value(QLatin1String("reply")).toBool();
    const std::optional<QString> source =
        isReply ? FormulaDialect::rewritten(latex.toString()) : std::optional(latex.toString());
    if (!source) {
        formula[error] = errorOf(0, QStringLiteral("A reply shows the source of this formula."));
        return formula;
    }
    std::optional<MTParseError> parseError;
    const auto list = MTMathListBuilder::build(*source, parseError);
    if (!list) {
        formula[error] = errorOf(static_cast<int>(parseError->code), parseError->message);
        return formula;
    }
    const auto display =
        MTTypesetter::createLineForMathList(*list, MTFontManager::fontManager().latinModernFont(size), *style);
    formula[QStringLiteral("width")] = display->width();
    formula[QStringLiteral("ascent")] = display->ascent();
    formula[QStringLiteral("descent")] = display->descent();
    const QJsonValue image = formula.value(QLatin1String("image"));
    if (image.isString() && !isDrawn(*source, *style, size, image.toString()))
        formula[error] = errorOf(0, QStringLiteral("The image could not be written."));
    return formula;
}

QJsonObject measuredLine(const std::string& line) {
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(line));
    if (!document.isObject())
        return {{QStringLiteral("error"), errorOf(0, QStringLiteral("A line is a JSON object."))}};
    return measured(document.object());
}

} // namespace

int main() {
    try {
        for (std::string line; std::getline(std::cin, line);) {
            if (!line.empty())
                std::cout << QJsonDocument(measuredLine(line)).toJson(QJsonDocument::Compact).constData() << '\n';
        }
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return 0;
}
