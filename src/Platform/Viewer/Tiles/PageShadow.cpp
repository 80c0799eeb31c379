#include "PageShadow.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

/// Device-independent pixels; less than the gap between two pages.
static constexpr double shadowReach = 7;
static constexpr double shadowDrop = 1; // how much further it reaches below the sheet than above
static constexpr double shadowDarkness = 0.2;

void PageShadow::make(int reach) {
    m_reach = reach;
    const int side = 2 * reach + 1;
    m_image = QImage(side, side, QImage::Format_ARGB32_Premultiplied);
    const double drop = shadowDrop * reach / shadowReach;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const double below = y > reach ? std::max(0.0, y - reach - drop) : y < reach ? y - reach - drop : 0.0;
            const double distance = std::hypot(x - reach, below);
            const double light = std::clamp(distance / reach, 0.0, 1.0);
            const double alpha = shadowDarkness * (1 - light) * (1 - light);
            m_image.setPixel(x, y, qRgba(0, 0, 0, static_cast<int>(std::round(alpha * 255))));
        }
    }
}

void PageShadow::paint(QPainter& painter, const QRectF& sheet, const QRectF& view, double devicePixelRatio) {
    const int reach = static_cast<int>(std::round(shadowReach * devicePixelRatio));
    if (reach != m_reach)
        make(reach);
    // A sheet may be millions of pixels large; what is out of sight casts no shadow into it.
    const QRectF rect = sheet & view.adjusted(-2 * reach, -2 * reach, 2 * reach, 2 * reach);
    if (rect.isEmpty())
        return;
    const double r = reach;
    const auto part = [&](const QRectF& target, const QRectF& source) { painter.drawImage(target, m_image, source); };
    part({rect.left() - r, rect.top() - r, r, r}, {0, 0, r, r});
    part({rect.left(), rect.top() - r, rect.width(), r}, {r, 0, 1, r});
    part({rect.right(), rect.top() - r, r, r}, {r + 1, 0, r, r});
    part({rect.left() - r, rect.top(), r, rect.height()}, {0, r, r, 1});
    part({rect.right(), rect.top(), r, rect.height()}, {r + 1, r, r, 1});
    part({rect.left() - r, rect.bottom(), r, r}, {0, r + 1, r, r});
    part({rect.left(), rect.bottom(), rect.width(), r}, {r, r + 1, 1, r});
    part({rect.right(), rect.bottom(), r, r}, {r + 1, r + 1, r, r});
}
