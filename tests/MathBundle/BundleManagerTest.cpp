#include "BundleManager.h"

#include "CTFont.h"
#include "MTException.h"
#include "MTFontMathTableV2.h"
#include "MTFontV2.h"
#include "MathFontFiles.h"
#include "MathFontsBundle.h"

#include <QPainterPath>
#include <QTemporaryDir>

#include <array>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

namespace {

/// Collects what is logged while it lives, from all threads.
class LogCollector {
public:
    LogCollector() : m_previous(qInstallMessageHandler(&LogCollector::take)) { lines().clear(); }
    ~LogCollector() { qInstallMessageHandler(m_previous); }
    LogCollector(const LogCollector&) = delete;
    LogCollector& operator=(const LogCollector&) = delete;

    static QStringList& lines() {
        static QStringList collected;
        return collected;
    }

private:
    static void take(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
        static std::mutex lock;
        const std::lock_guard guard(lock);
        EXPECT_EQ(type, QtDebugMsg) << message.toStdString();
        lines().append(message);
    }

    QtMessageHandler m_previous;
};

template <typename Work>
void onFourThreads(Work work) {
    std::array<std::thread, 4> threads;
    for (std::size_t index = 0; index < threads.size(); ++index)
        threads[index] = std::thread(work, index);
    for (auto& thread : threads)
        thread.join();
}

} // namespace

TEST(BundleManager, aFontIsRegisteredAtItsFirstUseAndOnce) {
    const LogCollector log;
    BundleManager manager(MathFontsBundle::folder());
    EXPECT_TRUE(LogCollector::lines().isEmpty());

    const auto table = manager.rawMathTable(MathFont::latinModernFont);
    const auto font = manager.cgFont(MathFont::latinModernFont);
    const auto sized = manager.ctFont(MathFont::latinModernFont, 20);
    EXPECT_EQ(sized->cgFont(), font);
    EXPECT_EQ(sized->size(), 20);
    EXPECT_EQ(manager.ctFont(MathFont::latinModernFont, 20), sized);
    EXPECT_NE(manager.ctFont(MathFont::latinModernFont, 20.5), sized);
    EXPECT_EQ(manager.rawMathTable(MathFont::latinModernFont), table);
    const QStringList expected{QStringLiteral("mathFonts bundle resource: latinmodern-math.plist registered on main.")};
    EXPECT_EQ(LogCollector::lines(), expected);
}

TEST(BundleManager, fourThreadsGetTheSameFont) {
    const LogCollector log;
    BundleManager manager(MathFontsBundle::folder());
    std::array<std::shared_ptr<const CTFont>, 4> fonts;
    onFourThreads([&](std::size_t index) { fonts[index] = manager.ctFont(MathFont::latinModernFont, 15); });
    for (const auto& font : fonts)
        EXPECT_EQ(font, fonts.front());
    const QStringList expected{
        QStringLiteral("mathFonts bundle resource: latinmodern-math.plist registered on global.")};
    EXPECT_EQ(LogCollector::lines(), expected);
}

TEST(BundleManager, missingAndDamagedFilesAreErrorsUntilTheyAreRepaired) {
    const LogCollector log;
    const QTemporaryDir folder;
    BundleManager manager(folder.path());
    const MathFont font = MathFont::garamondFont;
    const QString fontPath = MathFontsBundle::fontPath(folder.path(), fontName(font));
    const QString listPath = MathFontsBundle::propertyListPath(folder.path(), fontName(font));
    const auto error = [&] { return MathFontFiles::fontErrorOf([&] { return manager.ctFont(font, 20); }); };
    using Kind = FontError::Kind;

    EXPECT_EQ(error(), Kind::fontPathNotFound);
    MathFontFiles::write(fontPath, MathFontFiles::fontBytes().left(1000));
    EXPECT_EQ(error(), Kind::invalidFontFile);
    MathFontFiles::write(fontPath, MathFontFiles::fontBytes());
    EXPECT_EQ(error(), Kind::fontPathNotFound);
    EXPECT_EQ(MathFontFiles::fontErrorOf([&] { return manager.cgFont(font); }), Kind::fontPathNotFound);
    MathFontFiles::write(listPath, "<plist><dict><key>version</key>");
    EXPECT_EQ(MathFontFiles::fontErrorOf([&] { return manager.rawMathTable(font); }), Kind::invalidMathTable);
    MathFontFiles::write(listPath, "<plist><dict><key>version</key><string>1.3</string>"
                                   "<key>constants</key><integer>1</integer></dict></plist>");
    EXPECT_EQ(error(), Kind::invalidMathTable);
    MathFontFiles::write(listPath, "<plist><dict><key>version</key><string>2.0</string></dict></plist>");
    try {
        ADD_FAILURE() << "A table of another version was registered: " << manager.rawMathTable(font).get();
    } catch (const MTException& refused) {
        EXPECT_EQ(refused.reason(), QStringLiteral("Invalid version of math table plist: 2.0"));
    }
    EXPECT_THROW(MTFontV2(font, 20, manager), MTException);
    EXPECT_TRUE(LogCollector::lines().isEmpty());

    MathFontFiles::write(listPath, MathFontFiles::propertyListBytes());
    EXPECT_DOUBLE_EQ(MTFontV2(font, 20, manager).mathTable().axisHeight(), 5);
}

TEST(MTFontV2, measuresAsTheFontThatIsReadDirectly) {
    BundleManager manager(MathFontsBundle::folder());
    const MTFontV2 font(MathFont::latinModernFont, 15, manager);
    const MTFont direct(fontName(MathFont::latinModernFont), 15);
    EXPECT_EQ(font.size(), 15);
    EXPECT_EQ(font.unitsPerEm(), 1000);
    const CGGlyph glyph = font.ctFont()->glyph(U'\u222B');
    EXPECT_EQ(font.nameForGlyph(glyph), QStringLiteral("integral"));
    EXPECT_EQ(font.mathTable().getItalicCorrection(glyph), direct.mathTable().getItalicCorrection(glyph));
    EXPECT_EQ(font.mathTable().getLargerGlyph(glyph), direct.glyphWithName(QStringLiteral("integral.v1")));

    const std::shared_ptr<MTFont> copy = font.copy(30);
    ASSERT_NE(dynamic_cast<const MTFontV2*>(copy.get()), nullptr);
    EXPECT_EQ(copy->fontSize(), 30);
    EXPECT_DOUBLE_EQ(copy->mathTable().axisHeight(), 7.5);
    EXPECT_EQ(&copy->mathTable().font(), copy.get());
    EXPECT_EQ(copy->rawMathTable(), font.rawMathTable());
    EXPECT_EQ(dynamic_cast<const MTFontMathTableV2&>(copy->mathTable()).mathFont(), MathFont::latinModernFont);
}

// Each thread asks a font that nobody has used yet for all there is to know of a glyph, in an order of its own.
TEST(MTFontV2, fourThreadsMeasureWithOneFont) {
    BundleManager manager(MathFontsBundle::folder());
    BundleManager untouched(MathFontsBundle::folder());
    const MTFontV2 font(MathFont::latinModernFont, 20, manager);
    const MTFontV2 expected(MathFont::latinModernFont, 20, untouched);
    const int count = font.defaultCGFont()->numberOfGlyphs();
    std::array<std::vector<GlyphBox>, 4> boxes;
    std::array<std::vector<int>, 4> elements;
    std::array<const MTFontMathTable*, 4> tables{};
    onFourThreads([&](std::size_t thread) {
        // No factor in common with 4802, the number of glyphs, so that each order meets all of them.
        constexpr std::array steps{1, 5, 11, 13};
        tables[thread] = &font.mathTable();
        boxes[thread].resize(static_cast<std::size_t>(count));
        elements[thread].resize(static_cast<std::size_t>(count));
        for (int turn = 0; turn < count; ++turn) {
            const int glyph = turn * steps[thread] % count;
            const auto at = static_cast<std::size_t>(glyph);
            boxes[thread][at] = font.ctFont()->boundingBox(static_cast<CGGlyph>(glyph));
            elements[thread][at] = font.defaultCGFont()->glyphPath(static_cast<CGGlyph>(glyph)).elementCount();
        }
    });
    for (int glyph = 0; glyph < count; ++glyph) {
        const auto at = static_cast<std::size_t>(glyph);
        const GlyphBox box = expected.ctFont()->boundingBox(static_cast<CGGlyph>(glyph));
        const int elementCount = expected.defaultCGFont()->glyphPath(static_cast<CGGlyph>(glyph)).elementCount();
        for (std::size_t thread = 0; thread < boxes.size(); ++thread) {
            EXPECT_EQ(boxes[thread][at], box) << glyph;
            EXPECT_EQ(elements[thread][at], elementCount) << glyph;
        }
    }
    for (const MTFontMathTable* table : tables)
        EXPECT_EQ(table, &font.mathTable());
}
