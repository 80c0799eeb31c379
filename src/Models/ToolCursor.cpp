#include "ToolCursor.h"

#include "SymbolIcon.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <cmath>
#include <functional>
#include <vector>

static constexpr int symbolSide = 15;
static constexpr int letterSize = 15;
static constexpr qreal haloBlur = 2.5;
static constexpr qreal haloOpacity = 0.95;

/// The weights of a bell curve from its middle to where it fades out; together, with both sides, they make 1.
static std::vector<qreal> bellCurve(qreal deviation) {
    const int reach = static_cast<int>(std::ceil(3 * deviation));
    std::vector<qreal> weights;
    qreal sum = 0;
    for (int i = 0; i <= reach; ++i) {
        weights.push_back(std::exp(-i * i / (2 * deviation * deviation)));
        sum += (i == 0 ? 1 : 2) * weights.back();
    }
    for (qreal& weight : weights)
        weight /= sum;
    return weights;
}

/// The opacity of each pixel, row by row, blurred along the rows, and turned: blurring twice does both directions.
static std::vector<qreal> blurredAndTurned(const std::vector<qreal>& alpha, int width, int height,
                                           const std::vector<qreal>& weights) {
    const auto at = [](int row, int column, int columns) {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(column);
    };
    std::vector<qreal> result(alpha.size());
    const int reach = static_cast<int>(weights.size()) - 1;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            qreal sum = 0;
            for (int i = qMax(-reach, -x); i <= reach && x + i < width; ++i)
                sum += alpha[at(y, x + i, width)] * weights[static_cast<std::size_t>(std::abs(i))];
            result[at(x, y, height)] = sum;
        }
    }
    return result;
}

/// The shadow that a light right above the drawing would throw, in white.
static QImage haloOf(const QImage& drawing) {
    std::vector<qreal> alpha;
    for (int y = 0; y < drawing.height(); ++y) {
        for (int x = 0; x < drawing.width(); ++x)
            alpha.push_back(qAlpha(drawing.pixel(x, y)) / 255.0);
    }
    const std::vector<qreal> weights = bellCurve(haloBlur / 2 * drawing.devicePixelRatio());
    alpha = blurredAndTurned(alpha, drawing.width(), drawing.height(), weights);
    alpha = blurredAndTurned(alpha, drawing.height(), drawing.width(), weights);

    QImage halo(drawing.size(), QImage::Format_ARGB32);
    halo.setDevicePixelRatio(drawing.devicePixelRatio());
    auto value = alpha.cbegin();
    for (int y = 0; y < halo.height(); ++y) {
        for (int x = 0; x < halo.width(); ++x, ++value)
            halo.setPixel(x, y, qRgba(255, 255, 255, qRound(255 * haloOpacity * qMin(*value, 1.0))));
    }
    return halo;
}

/// Under X11, Qt 6.4 hands the hot spot on as it is, to be counted in the pixels of the picture; under Wayland it is
/// counted in device-independent ones.
static bool hotSpotIsInPixels() {
    return QGuiApplication::platformName() == QLatin1String("xcb");
}

static QCursor badge(QSize size, QPoint hotSpot, qreal devicePixelRatio, const std::function<void(QPainter&)>& draw) {
    const auto emptyImage = [&] {
        QImage image((QSizeF(size) * devicePixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(devicePixelRatio);
        image.fill(Qt::transparent);
        return image;
    };
    QImage drawing = emptyImage();
    {
        QPainter painter(&drawing);
        draw(painter);
    }
    QImage image = emptyImage();
    QPainter painter(&image);
    const QImage halo = haloOf(drawing);
    // Once is too faint for the thin lines of a symbol on a dark page.
    painter.drawImage(QPointF(), halo);
    painter.drawImage(QPointF(), halo);
    painter.drawImage(QPointF(), drawing);
    painter.end();
    const QPoint platformHotSpot = hotSpotIsInPixels() ? (QPointF(hotSpot) * devicePixelRatio).toPoint() : hotSpot;
    return QCursor(QPixmap::fromImage(image), platformHotSpot.x(), platformHotSpot.y());
}

QCursor ToolCursor::symbolBadge(const QString& symbolName, QPoint hotSpot, qreal devicePixelRatio) {
    if (!SymbolIcon::exists(symbolName))
        return Qt::ArrowCursor;
    // The symbol's own margin lies in that of the picture.
    constexpr int gridSide = symbolSide * SymbolIcon::gridSide / SymbolIcon::gridContentSide;
    const QSize size(symbolSide + 6, symbolSide + 6);
    return badge(size, hotSpot, devicePixelRatio, [&](QPainter& painter) {
        const QPixmap symbol =
            SymbolIcon::pixmap(symbolName, gridSide, Qt::black, devicePixelRatio, SymbolIcon::Weight::semibold);
        painter.drawPixmap(QPointF(size.width() - gridSide, size.height() - gridSide) / 2, symbol);
    });
}

QCursor ToolCursor::letterBadge(const QString& letter, QPoint hotSpot, qreal devicePixelRatio) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(letterSize);
    font.setBold(true);
    const QFontMetrics metrics(font);
    const QSize size(metrics.horizontalAdvance(letter) + 8, metrics.height() + 6);
    return badge(size, hotSpot, devicePixelRatio, [&](QPainter& painter) {
        painter.setFont(font);
        painter.setPen(Qt::black);
        painter.drawText(QRect(QPoint(), size), Qt::AlignCenter, letter);
    });
}

QCursor ToolCursor::cursor(AnnotationTool tool, qreal devicePixelRatio) {
    using enum AnnotationTool;
    const auto symbol = [&](QPoint hotSpot) { return symbolBadge(info(tool).symbolName, hotSpot, devicePixelRatio); };
    switch (tool) {
    case select:
        return Qt::ArrowCursor;
    case ink:
        return symbol({4, 4});
    case note:
    case signature:
        return symbol({4, 17});
    case eraser:
        return symbol({10, 10});
    case textBox:
        return letterBadge(QStringLiteral("T"), {10, 17}, devicePixelRatio);
    case rectangle:
    case oval:
    case line:
    case redact:
    case form:
        return Qt::CrossCursor;
    }
    return Qt::ArrowCursor;
}
