#include "SymbolIcon.h"

#include "QuilloAssert.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

// A resource of a static library is only linked in when something asks for it by name, outside of any namespace.
static void loadIconFiles() {
    Q_INIT_RESOURCE(icons);
}

namespace {

using SymbolIcon::Weight;

QString filePath(const QString& name) {
    static const bool loaded = (loadIconFiles(), true);
    Q_UNUSED(loaded);
    return QStringLiteral(":/icons/%1.svg").arg(name);
}

/// The drawing, whose files all have the same line width, in this colour and weight.
QByteArray svg(const QString& name, const QColor& color, Weight weight) {
    QFile file(filePath(name));
    QUILLO_ASSERT(file.open(QFile::ReadOnly), "Every symbol that is asked for has a file.");
    QByteArray drawing = file.readAll().replace("currentColor", color.name(QColor::HexRgb).toLatin1());
    if (weight == Weight::semibold)
        drawing.replace("stroke-width=\"1.75\"", "stroke-width=\"2.4\"");
    return drawing;
}

/// `size` in pixels; the symbol is drawn as large as fits, in the middle.
QPixmap drawn(const QString& name, QSize size, const QColor& color, Weight weight) {
    const QString key =
        QStringLiteral("symbol-%1-%2x%3-%4-%5")
            .arg(name, QString::number(size.width()), QString::number(size.height()), color.name(QColor::HexArgb))
            .arg(static_cast<int>(weight));
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;

    QSvgRenderer renderer(svg(name, color, weight));
    pixmap = QPixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setOpacity(color.alphaF());
    const int side = qMin(size.width(), size.height());
    renderer.render(&painter, QRectF((size.width() - side) / 2.0, (size.height() - side) / 2.0, side, side));
    painter.end();
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

class SymbolIconEngine : public QIconEngine {
public:
    explicit SymbolIconEngine(QString name) : m_name(std::move(name)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const qreal ratio = painter->device() ? painter->device()->devicePixelRatio() : 1.0;
        painter->drawPixmap(rect, scaledPixmap(rect.size() * ratio, mode, state, ratio));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1.0);
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal) override {
        const QPalette palette = QGuiApplication::palette();
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
        return drawn(m_name, size, palette.color(group, role), Weight::regular);
    }

    QIconEngine* clone() const override { return new SymbolIconEngine(m_name); }

private:
    QString m_name;
};

} // namespace

bool SymbolIcon::exists(const QString& name) {
    return QFile::exists(filePath(name));
}

QIcon SymbolIcon::icon(const QString& name) {
    return QIcon(new SymbolIconEngine(name));
}

QPixmap SymbolIcon::pixmap(const QString& name, int side, const QColor& color, qreal devicePixelRatio, Weight weight) {
    QPixmap pixmap = drawn(name, QSize(side, side) * devicePixelRatio, color, weight);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}
