#include "PaperLight.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace {

constexpr int tilesAcross = 24; // along the longer side
constexpr int smallestTile = 8; // pixels
/// Light changes slowly: a polynomial of second degree follows a lamp at one side, a shadow or a fold at an edge, and
/// nothing that is printed.
constexpr std::size_t termCount = 6;
/// The paper is the brightest that a part of a page shows, so what is darker than the surface counts this much less.
constexpr double weightOfDarkTile = 0.02;
constexpr int fittingRounds = 12;
/// Levels of brightness, 0-255: a tile this near to the surface is paper.
constexpr double paperTolerance = 16;
constexpr double leastPaperShare = 0.4;
/// Differences in light below this leave the text readable.
constexpr double leastUnevenness = 24;
/// Where the light seems to fall below this share of the brightest, that is no paper but something dark on it.
constexpr double leastLightShare = 0.3;
/// Keeps a division possible at the corners, where the surface may dip.
constexpr double darkestPaper = 20;

using Terms = std::array<double, termCount>;

/// What a tile of the picture shows, its place given from -1 to 1 across the picture.
struct Tile {
    Terms terms;
    double level;
};

Terms termsAt(double x, double y) {
    return {1, x, y, x * x, x * y, y * y};
}

double valueOf(const Terms& surface, const Terms& terms) {
    double value = 0;
    for (std::size_t i = 0; i < termCount; ++i)
        value += surface[i] * terms[i];
    return value;
}

/// The brightness that a tenth of the pixels reach: paper between letters, and not the noise on it.
double brightLevel(const QImage& gray, const QRect& tile) {
    std::array<int, 256> counts{};
    for (int y = tile.top(); y <= tile.bottom(); ++y) {
        const uchar* line = gray.constScanLine(y);
        for (int x = tile.left(); x <= tile.right(); ++x)
            ++counts[line[x]];
    }
    int left = tile.width() * tile.height() / 10;
    int level = 255;
    while (level > 0 && (left -= counts[static_cast<std::size_t>(level)]) > 0)
        --level;
    return level;
}

std::vector<Tile> tilesOf(const QImage& gray) {
    const int side = std::max(gray.width(), gray.height()) / tilesAcross;
    std::vector<Tile> tiles;
    if (side < smallestTile)
        return tiles;
    for (int y = 0; y + side <= gray.height(); y += side) {
        for (int x = 0; x + side <= gray.width(); x += side) {
            const double atX = 2 * (x + side / 2.0) / gray.width() - 1;
            const double atY = 2 * (y + side / 2.0) / gray.height() - 1;
            tiles.push_back({termsAt(atX, atY), brightLevel(gray, QRect(x, y, side, side))});
        }
    }
    return tiles;
}

/// Gaussian elimination with pivots; none when the equations don't determine the unknowns.
std::optional<Terms> solve(std::array<Terms, termCount> matrix, Terms right) {
    for (std::size_t column = 0; column < termCount; ++column) {
        std::size_t pivot = column;
        for (std::size_t row = column + 1; row < termCount; ++row)
            if (std::fabs(matrix[row][column]) > std::fabs(matrix[pivot][column]))
                pivot = row;
        if (std::fabs(matrix[pivot][column]) < 1e-9)
            return std::nullopt;
        std::swap(matrix[column], matrix[pivot]);
        std::swap(right[column], right[pivot]);
        for (std::size_t row = column + 1; row < termCount; ++row) {
            const double factor = matrix[row][column] / matrix[column][column];
            for (std::size_t i = column; i < termCount; ++i)
                matrix[row][i] -= factor * matrix[column][i];
            right[row] -= factor * right[column];
        }
    }
    Terms solution{};
    for (std::size_t row = termCount; row-- > 0;) {
        double value = right[row];
        for (std::size_t i = row + 1; i < termCount; ++i)
            value -= matrix[row][i] * solution[i];
        solution[row] = value / matrix[row][row];
    }
    return solution;
}

/// The surface that lies on the brightest tiles: least squares, in rounds that each count what lay below the last
/// surface less.
std::optional<Terms> fittedSurface(const std::vector<Tile>& tiles) {
    std::optional<Terms> surface;
    for (int round = 0; round < fittingRounds; ++round) {
        std::array<Terms, termCount> matrix{};
        Terms right{};
        for (const Tile& tile : tiles) {
            const bool isDark = surface && tile.level < valueOf(*surface, tile.terms);
            const double weight = isDark ? weightOfDarkTile : 1;
            for (std::size_t i = 0; i < termCount; ++i) {
                for (std::size_t j = 0; j < termCount; ++j)
                    matrix[i][j] += weight * tile.terms[i] * tile.terms[j];
                right[i] += weight * tile.terms[i] * tile.level;
            }
        }
        surface = solve(matrix, right);
        if (!surface)
            break;
    }
    return surface;
}

/// True when the surface is that of paper under uneven light.
bool needsEvening(const std::vector<Tile>& tiles, const Terms& surface) {
    double darkest = 255;
    double brightest = 0;
    std::size_t paperTiles = 0;
    for (const Tile& tile : tiles) {
        const double level = std::clamp(valueOf(surface, tile.terms), 0.0, 255.0);
        darkest = std::min(darkest, level);
        brightest = std::max(brightest, level);
        if (std::fabs(tile.level - level) <= paperTolerance)
            ++paperTiles;
    }
    return brightest - darkest >= leastUnevenness && darkest >= leastLightShare * brightest &&
           static_cast<double>(paperTiles) >= leastPaperShare * static_cast<double>(tiles.size());
}

} // namespace

QImage PaperLight::evenOut(const QImage& gray) {
    const std::vector<Tile> tiles = tilesOf(gray);
    const std::optional<Terms> surface = fittedSurface(tiles);
    if (!surface || !needsEvening(tiles, *surface))
        return gray;
    QImage even(gray.size(), QImage::Format_Grayscale8);
    if (even.isNull())
        return gray;
    for (int y = 0; y < gray.height(); ++y) {
        const double atY = 2 * (y + 0.5) / gray.height() - 1;
        const auto& [constant, byX, byY, byXX, byXY, byYY] = *surface;
        const double rowConstant = constant + byY * atY + byYY * atY * atY;
        const double rowByX = byX + byXY * atY;
        const uchar* from = gray.constScanLine(y);
        uchar* to = even.scanLine(y);
        for (int x = 0; x < gray.width(); ++x) {
            const double atX = 2 * (x + 0.5) / gray.width() - 1;
            const double paper = std::max(rowConstant + (rowByX + byXX * atX) * atX, darkestPaper);
            to[x] = static_cast<uchar>(std::min(from[x] * 255.0 / paper, 255.0));
        }
    }
    return even;
}
