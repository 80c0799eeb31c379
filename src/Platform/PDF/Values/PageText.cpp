#include "PageText.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace {

double outside(double value, double low, double high) {
    return std::max({low - value, 0.0, value - high});
}

/// What each block of lines covers. A narrow block close to a wider one, as a formula between paragraphs, takes its
/// width: it is of the same column.
std::map<int, QRectF> columnsOf(const std::vector<PageText::Line>& lines) {
    std::map<int, QRectF> blocks;
    for (const PageText::Line& line : lines) {
        QRectF& block = blocks[line.block];
        block = block.isNull() ? line.bounds : block.united(line.bounds);
    }
    constexpr double closeBy = 36; // points, some lines
    std::map<int, QRectF> columns = blocks;
    for (auto& [block, column] : columns) {
        const QRectF own = column;
        for (const auto& [other, wider] : blocks) {
            const double gap = std::max(wider.top() - own.bottom(), own.top() - wider.bottom());
            if (gap < closeBy && wider.left() <= own.left() + 1 && wider.right() >= own.right() - 1) {
                column.setLeft(std::min(column.left(), wider.left()));
                column.setRight(std::max(column.right(), wider.right()));
            }
        }
    }
    return columns;
}

/// The line that a point beside all lines means: -1 for a page without text. The line at the point's height is meant
/// when the point is in its column or in the margin beside it; otherwise the nearest line of the point's own column.
int lineBeside(const std::vector<PageText::Line>& lines, QPointF point) {
    const std::map<int, QRectF> columns = columnsOf(lines);
    constexpr double marginShare = 0.25; // of the column's width
    struct Candidate {
        int line = -1;
        double distance = std::numeric_limits<double>::max();
        void offer(int other, double otherDistance) {
            if (otherDistance < distance) {
                line = other;
                distance = otherDistance;
            }
        }
    };
    Candidate atHeight;
    Candidate inColumn;
    Candidate nearest;
    bool inMargin = false;
    for (int i = 0; i < int(lines.size()); ++i) {
        const PageText::Line& line = lines[std::size_t(i)];
        const QRectF& column = columns.at(line.block);
        double along = outside(point.x(), column.left(), column.right());
        double across = outside(point.y(), line.bounds.top(), line.bounds.bottom());
        double width = column.width();
        if (std::fabs(line.direction.y()) > std::fabs(line.direction.x())) {
            along = outside(point.y(), column.top(), column.bottom());
            across = outside(point.x(), line.bounds.left(), line.bounds.right());
            width = column.height();
        }
        if (across == 0 && along < atHeight.distance) {
            atHeight.offer(i, along);
            inMargin = along <= marginShare * width;
        }
        if (along == 0)
            inColumn.offer(i, across);
        nearest.offer(i, std::hypot(along, across));
    }
    if (atHeight.line >= 0 && (inMargin || inColumn.line < 0))
        return atHeight.line;
    return inColumn.line >= 0 ? inColumn.line : nearest.line;
}

/// How far a point lies along a line's writing direction.
double along(QPointF point, QPointF direction) {
    return QPointF::dotProduct(point, direction);
}

bool isWordCharacter(QChar c) {
    return c.isLetterOrNumber() || c.isMark() || c.isSurrogate() || c == QLatin1Char('_') || c == QLatin1Char('\'') ||
           c == QChar(0x2019) || c == QChar(0x00AD);
}

} // namespace

int PageText::lineAt(int offset) const {
    const auto after = std::upper_bound(lines.begin(), lines.end(), offset,
                                        [](int value, const Line& line) { return value < line.start; });
    if (after == lines.begin())
        return -1;
    const auto line = after - 1;
    return offset <= line->end ? int(line - lines.begin()) : -1;
}

int PageText::lineContaining(QPointF point) const {
    // Boxes of neighbouring lines overlap: the one whose middle is nearest wins.
    int best = -1;
    double bestDistance = std::numeric_limits<double>::max();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (!lines[i].bounds.contains(point))
            continue;
        const QPointF across(-lines[i].direction.y(), lines[i].direction.x());
        const double distance = std::fabs(QPointF::dotProduct(point - lines[i].bounds.center(), across));
        if (distance < bestDistance) {
            bestDistance = distance;
            best = int(i);
        }
    }
    return best;
}

int PageText::gapNearest(QPointF point) const {
    int best = lineContaining(point);
    if (best < 0)
        best = lineBeside(lines, point);
    if (best < 0)
        return 0;
    const Line& line = lines[std::size_t(best)];
    const double place = along(point, line.direction);
    for (int i = line.start; i < line.end; ++i) {
        const PDFQuad& quad = glyphs[std::size_t(i)].quad;
        const double middle = (along(quad.lowerLeft, line.direction) + along(quad.lowerRight, line.direction)) / 2;
        if (place < middle)
            return i;
    }
    return line.end;
}

int PageText::characterAt(QPointF point) const {
    const int found = lineContaining(point);
    if (found < 0)
        return -1;
    const Line& line = lines[std::size_t(found)];
    for (int i = line.start; i < line.end; ++i)
        if (glyphs[std::size_t(i)].quad.boundingRect().contains(point))
            return i;
    return -1;
}

std::pair<int, int> PageText::wordAround(int offset) const {
    if (offset < 0 || offset >= string.size())
        return {offset, offset};
    if (!isWordCharacter(string.at(offset)))
        return {offset, offset + 1};
    int start = offset;
    int end = offset;
    while (start > 0 && isWordCharacter(string.at(start - 1)))
        --start;
    while (end < string.size() && isWordCharacter(string.at(end)))
        ++end;
    return {start, end};
}

std::vector<QRectF> PageText::lineRects(int start, int end) const {
    std::vector<QRectF> rects;
    for (int i = std::max(0, lineAt(start)); i < int(lines.size()) && lines[std::size_t(i)].start < end; ++i) {
        const Line& line = lines[std::size_t(i)];
        QRectF rect;
        for (int at = std::max(start, line.start); at < std::min(end, line.end); ++at) {
            const QRectF box = glyphs[std::size_t(at)].quad.boundingRect();
            rect = rect.isNull() ? box : rect.united(box);
        }
        if (!rect.isNull())
            rects.push_back(rect);
    }
    return rects;
}
