#include "FormulaFitting.h"

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPoint>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextImageFormat>
#include <QTextList>
#include <QUrl>

#include <algorithm>
#include <vector>

static constexpr double smallestScale = 0.5; // letters of half the size can still be read
/// What is shown of a formula that isn't shown as it is: the name is that of the formula behind this.
static constexpr QLatin1String fittedPrefix("fitted:");
/// Of the bar below a part, in points of the formula's own size: as much as is clear below its ink.
static constexpr double barHeight = 3;

static QString wholeName(const QString& name) {
    return name.startsWith(fittedPrefix) ? name.sliced(fittedPrefix.size()) : name;
}

static QImage imageNamed(const QTextDocument& document, const QString& name) {
    return document.resource(QTextDocument::ImageResource, QUrl(name)).value<QImage>();
}

namespace {

/// Columns of the formula's image, in its pixels.
struct Part {
    int begin = 0;
    int width = 0;

    static QUrl url(const QString& whole) { return QLatin1String("part-of-") + whole; }
    /// The document keeps it.
    static Part of(const QTextDocument& document, const QString& whole) {
        const QPoint kept = document.resource(QTextDocument::UserResource, url(whole)).toPoint();
        return {kept.x(), kept.y()};
    }
};

/// Makes the picture of the part. Scaled here, and not when it is painted, no thin stroke of a sign is lost.
void show(QTextDocument& document, const QString& whole, Part part, double scale) {
    QImage image = imageNamed(document, whole);
    const double ratio = image.devicePixelRatio();
    image.setDevicePixelRatio(1);
    part.begin = std::clamp(part.begin, 0, image.width() - part.width);
    if (part.width < image.width()) {
        const double share = double(part.width) / image.width();
        const QRectF bar(part.begin * share, image.height() - barHeight * ratio, part.width * share, barHeight * ratio);
        image = image.copy(part.begin, 0, part.width, image.height());
        QPainter(&image).fillRect(bar, QColor(128, 128, 128, 190));
    }
    QImage fitted =
        image.scaled(std::max(1, qRound(image.width() * scale)), std::max(1, qRound(image.height() * scale)),
                     Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    fitted.setDevicePixelRatio(ratio);
    document.addResource(QTextDocument::ImageResource, QUrl(fittedPrefix + whole), fitted);
    document.addResource(QTextDocument::UserResource, Part::url(whole), QPoint(part.begin, part.width));
}

} // namespace

bool FormulaFitting::scroll(QTextDocument& document, const QString& name, double way) {
    if (!name.startsWith(fittedPrefix))
        return false;
    const QString whole = wholeName(name);
    const QImage image = imageNamed(document, whole);
    const Part before = Part::of(document, whole);
    if (before.width >= image.width())
        return false;
    const int pixels = qRound(way / smallestScale * image.devicePixelRatio());
    show(document, whole, {before.begin + pixels, before.width}, smallestScale);
    return Part::of(document, whole).begin != before.begin;
}

/// What the margins of a block leave of the document's width.
static double lineWidth(const QTextDocument& document, const QTextBlock& block, double width) {
    const QTextBlockFormat format = block.blockFormat();
    const int steps = format.indent() + (block.textList() ? block.textList()->format().indent() : 0);
    return width - 2 * document.documentMargin() - format.leftMargin() - format.rightMargin() -
           steps * document.indentWidth();
}

void FormulaFitting::fit(QTextDocument& document, double width) {
    struct Change {
        int position;
        QTextImageFormat format;
    };
    std::vector<Change> changes; // made afterwards: they would upset the walk
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto part = block.begin(); !part.atEnd(); ++part) {
            QTextImageFormat format = part.fragment().charFormat().toImageFormat();
            if (!format.isValid())
                continue;
            const QString whole = wholeName(format.name());
            const QImage image = imageNamed(document, whole);
            const QSizeF natural = image.deviceIndependentSize();
            const double room = lineWidth(document, block, width);
            if (natural.isEmpty())
                continue;
            const double scale = std::clamp(room / natural.width(), smallestScale, 1.0);
            const bool isPart = natural.width() * smallestScale > room;
            const double shownWidth = isPart ? std::max(1.0, room) : natural.width() * scale;
            if (format.width() == shownWidth || (scale == 1 && !format.hasProperty(QTextFormat::ImageWidth)))
                continue;
            if (scale < 1) {
                const int seen = static_cast<int>(shownWidth / scale * image.devicePixelRatio());
                const int columns = isPart ? std::clamp(seen, 1, image.width()) : image.width();
                show(document, whole, {Part::of(document, whole).begin, columns}, scale);
            }
            format.setName(scale < 1 ? fittedPrefix + whole : whole);
            format.setToolTip(isPart ? QStringLiteral("Turn the wheel with Shift to see the rest of this formula")
                                     : QString());
            format.setWidth(shownWidth);
            format.setHeight(natural.height() * scale);
            changes.push_back({part.fragment().position(), format});
        }
    }
    QTextCursor cursor(&document);
    for (const Change& change : changes) {
        cursor.setPosition(change.position);
        cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor);
        cursor.setCharFormat(change.format);
    }
}
