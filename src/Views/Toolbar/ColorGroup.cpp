#include "ColorGroup.h"

#include "ColorSwatch.h"
#include "Palette.h"
#include "ToolState.h"
#include "ToolbarButton.h"

#include <QAction>
#include <QColorDialog>
#include <QPainter>

/// The names of `Palette::annotationPresets`, for those who can't see them.
static const QString& presetName(std::size_t index) {
    static const std::array<QString, Palette::annotationPresets.size()> names = {
        QStringLiteral("Amber"), QStringLiteral("Red"),    QStringLiteral("Blue"),
        QStringLiteral("Green"), QStringLiteral("Purple"), QStringLiteral("Black")};
    return names[index];
}

/// A disc in the colour inside of a ring in all colours: another colour can be chosen here.
static QIcon colorWellIcon(const QColor& color, qreal devicePixelRatio) {
    constexpr int side = ToolbarButton::symbolSide;
    QPixmap pixmap(QSize(side, side) * devicePixelRatio);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF center(side / 2.0, side / 2.0);
    QConicalGradient allColors(center, 0);
    for (int step = 0; step <= 6; ++step)
        allColors.setColorAt(step / 6.0, QColor::fromHsv(step * 60 % 360, 190, 235));
    painter.setPen(QPen(QBrush(allColors), 2.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(center, 8.5, 8.5);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(center, 5.5, 5.5);
    return pixmap;
}

ColorGroup::ColorGroup(std::shared_ptr<ToolState> toolState, QWidget* parent)
    : ToolbarGroup(QStringLiteral("Color"), 1, parent), m_toolState(std::move(toolState)) {
    for (std::size_t i = 0; i < Palette::annotationPresets.size(); ++i) {
        auto* swatch = new ColorSwatch(Palette::annotationPresets[i], presetName(i));
        swatch->setToolTip(QStringLiteral("Marker color presets"));
        connect(swatch, &ColorSwatch::clicked, this, [this, swatch] {
            m_toolState->setColor(swatch->color());
            showColor();
        });
        m_swatches.push_back(swatch);
        addWidget(swatch);
    }
    m_customColor = new QAction(QStringLiteral("Custom Color"), this);
    m_customColor->setObjectName(QStringLiteral("customColor"));
    m_customColor->setToolTip(QStringLiteral("Custom marker color"));
    connect(m_customColor, &QAction::triggered, this, &ColorGroup::chooseCustomColor);
    addButton(m_customColor);
    connect(m_toolState.get(), &ToolState::colorChanged, this, &ColorGroup::showColor);
    showColor();
}

ColorGroup::~ColorGroup() = default;

void ColorGroup::showColor() {
    for (ColorSwatch* swatch : m_swatches)
        swatch->setChecked(swatch->color() == m_toolState->color());
    m_customColor->setIcon(colorWellIcon(m_toolState->color(), devicePixelRatioF()));
}

void ColorGroup::chooseCustomColor() {
    auto* dialog = new QColorDialog(m_toolState->color(), window());
    dialog->setObjectName(QStringLiteral("customColorDialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QColorDialog::colorSelected, m_toolState.get(), &ToolState::setColor);
    dialog->open();
}
