#include "CGFont.h"

#include "FontError.h"
#include "GlyphNames.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QPainterPath>

#include <array>
#include <atomic>
#include <limits>
#include <mutex>
#include <type_traits>
#include <vector>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_ADVANCES_H
#include FT_OUTLINE_H

namespace {

/// Glyphs in font units, as they were designed.
constexpr FT_Int32 unscaled = FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP;

struct LibraryDeleter {
    void operator()(FT_Library library) const { FT_Done_FreeType(library); }
};
struct FaceDeleter {
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};
using LibraryPointer = std::unique_ptr<std::remove_pointer_t<FT_Library>, LibraryDeleter>;
using FacePointer = std::unique_ptr<std::remove_pointer_t<FT_Face>, FaceDeleter>;

/// A library of its own for each font: faces of one library must not be opened and closed at the same time.
LibraryPointer startedLibrary() {
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0)
        throw FontError(FontError::Kind::initFontError, QStringLiteral("The font engine could not be started."));
    return LibraryPointer(library);
}

FacePointer openedFace(FT_Library library, const QByteArray& bytes, const QString& name) {
    FT_Face face = nullptr;
    const auto* data = reinterpret_cast<const FT_Byte*>(bytes.constData());
    if (FT_New_Memory_Face(library, data, static_cast<FT_Long>(bytes.size()), 0, &face) != 0)
        throw FontError(FontError::Kind::invalidFontFile, QStringLiteral("“%1” is not a font file.").arg(name));
    FacePointer opened(face);
    constexpr FT_Long mostGlyphs = std::numeric_limits<CGGlyph>::max() + 1L;
    if (!FT_IS_SCALABLE(face) || face->units_per_EM == 0 || face->num_glyphs < 1 || face->num_glyphs > mostGlyphs) {
        throw FontError(FontError::Kind::invalidFontFile,
                        QStringLiteral("“%1” is not a font with outlines.").arg(name));
    }
    if (FT_Select_Charmap(face, FT_ENCODING_UNICODE) != 0) {
        throw FontError(FontError::Kind::registerFailed,
                        QStringLiteral("“%1” does not say which glyphs its characters have.").arg(name));
    }
    return opened;
}

GlyphNames namesOfGlyphs(FT_Face face) {
    std::vector<QString> names(static_cast<std::size_t>(face->num_glyphs));
    if (FT_HAS_GLYPH_NAMES(face)) {
        std::array<char, 256> buffer{};
        for (std::size_t glyph = 0; glyph < names.size(); ++glyph) {
            if (FT_Get_Glyph_Name(face, static_cast<FT_UInt>(glyph), buffer.data(), buffer.size()) == 0)
                names[glyph] = QString::fromLatin1(buffer.data());
        }
    }
    return GlyphNames(std::move(names));
}

QHash<char32_t, CGGlyph> glyphsOfCharacters(FT_Face face) {
    QHash<char32_t, CGGlyph> glyphs;
    FT_UInt glyph = 0;
    for (FT_ULong character = FT_Get_First_Char(face, &glyph); glyph != 0;
         character = FT_Get_Next_Char(face, character, &glyph)) {
        if (glyph < static_cast<FT_UInt>(face->num_glyphs))
            glyphs.insert(static_cast<char32_t>(character), static_cast<CGGlyph>(glyph));
    }
    return glyphs;
}

std::vector<int> advancesOfGlyphs(FT_Face face, const QString& name) {
    std::vector<FT_Fixed> advances(static_cast<std::size_t>(face->num_glyphs));
    if (FT_Get_Advances(face, 0, static_cast<FT_UInt>(advances.size()), unscaled, advances.data()) != 0) {
        throw FontError(FontError::Kind::invalidFontFile,
                        QStringLiteral("“%1” is damaged: its glyphs have no widths.").arg(name));
    }
    return {advances.begin(), advances.end()};
}

QPointF pointOf(const FT_Vector* vector) {
    return {static_cast<qreal>(vector->x), static_cast<qreal>(vector->y)};
}

/// Makes a path of an outline. Some fonts mark places by contours of one point: these are left out, as they draw
/// nothing and would count in the bounds.
class PathMaker {
public:
    static QPainterPath pathOf(FT_Outline& outline) {
        FT_Outline_Funcs drawing{};
        drawing.move_to = [](const FT_Vector* to, void* maker) {
            auto& self = *static_cast<PathMaker*>(maker);
            self.m_path.closeSubpath();
            self.m_start = pointOf(to);
            self.m_isStarted = false;
            return 0;
        };
        drawing.line_to = [](const FT_Vector* to, void* maker) {
            auto& self = *static_cast<PathMaker*>(maker);
            if (self.m_isStarted || pointOf(to) != self.m_start)
                self.startedPath().lineTo(pointOf(to));
            return 0;
        };
        drawing.conic_to = [](const FT_Vector* control, const FT_Vector* to, void* maker) {
            static_cast<PathMaker*>(maker)->startedPath().quadTo(pointOf(control), pointOf(to));
            return 0;
        };
        drawing.cubic_to = [](const FT_Vector* first, const FT_Vector* second, const FT_Vector* to, void* maker) {
            static_cast<PathMaker*>(maker)->startedPath().cubicTo(pointOf(first), pointOf(second), pointOf(to));
            return 0;
        };
        PathMaker maker;
        maker.m_path.setFillRule(Qt::WindingFill);
        if (FT_Outline_Decompose(&outline, &drawing, &maker) != 0)
            return {};
        maker.m_path.closeSubpath();
        return maker.m_path;
    }

private:
    QPainterPath& startedPath() {
        if (!m_isStarted)
            m_path.moveTo(m_start);
        m_isStarted = true;
        return m_path;
    }

    QPainterPath m_path;
    QPointF m_start;
    bool m_isStarted = false; ///< the contour has led somewhere
};

/// What there is to know of a glyph's look.
struct Drawing {
    Drawing() = default;
    explicit Drawing(const QPainterPath& outline) : path(outline) {
        const QRectF bounds = path.boundingRect();
        box = {bounds.left(), bounds.top(), bounds.right(), bounds.bottom()}; // y is up
    }

    QPainterPath path;
    GlyphBox box;
};

} // namespace

struct CGFont::Contents {
    Contents(const QByteArray& fontBytes, const QString& name)
        : bytes(fontBytes), library(startedLibrary()), face(openedFace(library.get(), bytes, name)),
          names(namesOfGlyphs(face.get())), glyphs(glyphsOfCharacters(face.get())),
          advances(advancesOfGlyphs(face.get(), name)), drawings(advances.size()) {}
    ~Contents() {
        for (const auto& drawing : drawings)
            delete drawing.load(std::memory_order_relaxed);
    }
    Contents(const Contents&) = delete;
    Contents& operator=(const Contents&) = delete;

    /// Kept from the first time on. It is published by its pointer, so a reader that finds it takes no lock. Empty for
    /// a glyph that can't be read.
    const Drawing& drawing(CGGlyph glyph) {
        const Drawing* kept = drawings[glyph].load(std::memory_order_acquire);
        if (kept == nullptr) {
            const std::lock_guard guard(faceLock);
            kept = drawings[glyph].load(std::memory_order_relaxed);
            if (kept == nullptr) {
                const bool isOutline =
                    FT_Load_Glyph(face.get(), glyph, unscaled) == 0 && face->glyph->format == FT_GLYPH_FORMAT_OUTLINE;
                kept = isOutline ? new Drawing(PathMaker::pathOf(face->glyph->outline)) : new Drawing;
                drawings[glyph].store(kept, std::memory_order_release);
            }
        }
        return *kept;
    }

    QByteArray bytes; ///< outlives the face
    LibraryPointer library;
    FacePointer face;
    std::mutex faceLock; ///< a face may be used by one thread at a time

    GlyphNames names;
    QHash<char32_t, CGGlyph> glyphs;
    std::vector<int> advances;
    std::vector<std::atomic<const Drawing*>> drawings; ///< owned
};

std::shared_ptr<const CGFont> CGFont::read(const QString& path) {
    QFile file(path);
    if (!QFileInfo(path).isFile())
        throw FontError(FontError::Kind::fontPathNotFound, QStringLiteral("The font “%1” is missing.").arg(path));
    if (!file.open(QIODevice::ReadOnly)) {
        throw FontError(FontError::Kind::invalidFontFile,
                        QStringLiteral("The font “%1” can't be read: %2.").arg(path, file.errorString()));
    }
    return std::make_shared<const CGFont>(file.readAll(), path);
}

CGFont::CGFont(const QByteArray& bytes, const QString& name) : m_contents(std::make_unique<Contents>(bytes, name)) {
    m_unitsPerEm = m_contents->face->units_per_EM;
    m_numberOfGlyphs = static_cast<int>(m_contents->face->num_glyphs);
}

CGFont::~CGFont() = default;

CGGlyph CGFont::glyph(char32_t character) const {
    return m_contents->glyphs.value(character, 0);
}

CGGlyph CGFont::glyphWithName(const QString& name) const {
    return m_contents->names.glyph(name);
}

const QString& CGFont::glyphName(CGGlyph glyph) const {
    return m_contents->names.name(known(glyph));
}

int CGFont::advance(CGGlyph glyph) const {
    return m_contents->advances[known(glyph)];
}

GlyphBox CGFont::boundingBox(CGGlyph glyph) const {
    return m_contents->drawing(known(glyph)).box;
}

const QPainterPath& CGFont::glyphPath(CGGlyph glyph) const {
    return m_contents->drawing(known(glyph)).path;
}
