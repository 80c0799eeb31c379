#include "WatermarkApplier.h"

#include "EditorTest.h"
#include "WatermarkAnnotation.h"

#include <cmath>
#include <utility>

namespace {

struct PageKind {
    const char* name;
    QSizeF seen; ///< points, as the page is shown
    std::vector<std::pair<const char*, const char*>> keys;
};
const PageKind pageKinds[] = {
    {"plain", {612, 792}, {}},
    {"turned", {792, 612}, {{"/Rotate", "90"}}},
    {"a box elsewhere", {400, 300}, {{"/MediaBox", "[-500 2000 -100 2300]"}}},
    {"cropped", {300, 500}, {{"/MediaBox", "[-50 20 562 812]"}, {"/CropBox", "[200 300 500 800]"}}},
    {"cropped and turned",
     {500, 300},
     {{"/MediaBox", "[-50 20 562 812]"}, {"/CropBox", "[200 300 500 800]"}, {"/Rotate", "270"}}},
    {"large units", {600, 400}, {{"/MediaBox", "[0 0 200 300]"}, {"/UserUnit", "2"}, {"/Rotate", "90"}}},
    {"no box", {612, 792}, {{"/MediaBox", "null"}}},
    {"small", {100, 100}, {{"/MediaBox", "[0 0 100 100]"}}},
};

/// Where the dark parts of a picture are, as shares of its sides, and how they run: below zero for what rises to the
/// right.
struct Mark {
    double pixels = 0;
    QPointF middle;
    double run = 0;

    static Mark in(const QImage& picture) {
        Mark mark;
        std::vector<QPointF> dark;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                if (qGray(picture.pixel(x, y)) < 200)
                    dark.emplace_back(x, y);
        mark.pixels = double(dark.size());
        for (const QPointF& point : dark)
            mark.middle += point / mark.pixels;
        for (const QPointF& point : dark)
            mark.run += (point.x() - mark.middle.x()) * (point.y() - mark.middle.y()) / mark.pixels;
        mark.middle = {mark.middle.x() / picture.width(), mark.middle.y() / picture.height()};
        return mark;
    }
};

/// A page as another program sees it, a pixel for a point; `number` from 1.
QImage seenBy(const QString& program, const QByteArray& file, int number) {
    const QString command = program == QLatin1String("mutool")
                                ? QStringLiteral("draw -r 72 -F ppm -o - FILE %1")
                                : QStringLiteral("-cropbox -r 72 -f %1 -l %1 -singlefile FILE");
    return QImage::fromData(PdfPrograms::run(program, command.arg(number).split(u' '), file).output, "PPM");
}

class WatermarkApplierTest : public EditorTest {};

} // namespace

TEST_F(WatermarkApplierTest, risesToTheRightInTheMiddleOfWhatIsSeenInEveryProgram) {
    PdfFixture fixture;
    for (int i = 0; i < int(std::size(pageKinds)); ++i) {
        fixture.addPageWithContent("", "<< >>", {612, 792});
        for (const auto& [key, value] : pageKinds[i].keys)
            fixture.setPageKey(i, key, value);
    }
    open(fixture.bytes());
    WatermarkApplier::apply(QStringLiteral("NÑM"), 1, m_document, nullptr);
    const QByteArray saved = pdf().dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(saved), "");
    for (int i = 0; i < int(std::size(pageKinds)); ++i) {
        const PageKind& kind = pageKinds[i];
        const QSizeF size = pdf().page(i)->displaySize(PDFDisplayBox::cropBox);
        ASSERT_EQ(size, kind.seen) << kind.name;
        const QImage here = pdf().page(i)->thumbnail(size.toSize(), PDFDisplayBox::cropBox);
        const double ours = Mark::in(here).pixels;
        EXPECT_GT(ours, std::pow(WatermarkAnnotation::fontSize(size), 2) * 0.5) << kind.name;
        for (const QString& program : {QStringLiteral("here"), QStringLiteral("mutool"), QStringLiteral("pdftoppm")}) {
            const QImage picture = program == QLatin1String("here") ? here : seenBy(program, saved, i + 1);
            const Mark mark = Mark::in(picture);
            const std::string where = kind.name + (", " + program.toStdString());
            const double scale = double(picture.width()) / here.width();
            EXPECT_TRUE(picture.size() == here.size() || qstrcmp(kind.name, "large units") == 0) << where;
            EXPECT_NEAR(mark.middle.x(), 0.5, 0.04) << where;
            EXPECT_NEAR(mark.middle.y(), 0.5, 0.04) << where;
            EXPECT_LT(mark.run, 0) << where;
            EXPECT_NEAR(std::sqrt(mark.pixels / ours), scale, 0.06) << where;
        }
    }
}

TEST_F(WatermarkApplierTest, pagesOfOneSizeShareOneLookThatIsPrinted) {
    constexpr int pageCount = 60;
    for (const auto& [packs, appends] : {std::pair(false, true), {true, true}, {true, false}}) {
        PdfFixture fixture;
        for (int i = 0; i < pageCount; ++i)
            fixture.addPage({QStringLiteral("Words")});
        fixture.addLink(0, {72, 600, 100, 20}, 9);
        fixture.setPageKey(3, "/Rotate", "90");
        fixture.setPageKey(4, "/MediaBox", "[0 0 300 300]");
        fixture.attach(QStringLiteral("much.bin"), QByteArray(100'000, 'x')); // small files are written anew
        const QByteArray before = fixture.bytes(packs ? PdfFixture::Style::objectStreams : PdfFixture::Style::classic);
        open(before);
        WatermarkApplier::apply(QStringLiteral("DRAFT"), 0.25, m_document, nullptr);
        EXPECT_FALSE(pdf().page(0)->annotationsLoaded()) << "that would take long for many pages";
        if (!appends)
            pdf().removePage(pageCount - 1);
        const QByteArray saved = pdf().dataRepresentation();
        EXPECT_EQ(PdfPrograms::complaints(saved), "");
        for (const auto& each : {m_document.pdfDocument(), PDFDocument::fromData(saved)}) {
            ASSERT_EQ(each->page(0)->annotations().size(), 2U);
            EXPECT_EQ(each->page(0)->annotations().front()->type(), PDFAnnotationSubtype::link) << "beneath";
        }
        const QByteArray all = PdfPrograms::unpacked(saved);
        EXPECT_EQ(all.count("/Subtype /Stamp"), pdf().pageCount());
        EXPECT_EQ(all.count("/F 4\n"), pdf().pageCount()) << "printed";
        EXPECT_EQ(all.count("/Subtype /Form"), 3) << "one for each size and turn";
        EXPECT_EQ(saved.startsWith(before), appends);
        EXPECT_TRUE(!packs || !appends || saved.size() - before.size() < pageCount * 200 + 3 * 4096) << saved.size();
    }
}

TEST_F(WatermarkApplierTest, allGoInOneStepAndARedoIsTheLastWord) {
    const auto apply = [this] { WatermarkApplier::apply(QStringLiteral(" DRAFT "), 0.25, m_document, &undoManager()); };
    const auto stamps = [this] { return pdf().page(2)->annotations().size(); };
    apply();
    EXPECT_FALSE(undoManager().canUndo()) << "there are no pages";
    open(pagesOf(QStringList(3, QStringLiteral("Words"))));
    const QByteArray before = pdf().dataRepresentation();
    for (const unsigned times : {1, 2}) {
        edit(apply, true);
        EXPECT_EQ(stamps(), times) << "a second one comes on top of the first";
    }
    undoManager().undo();
    undoManager().undo();
    EXPECT_EQ(pdf().dataRepresentation(), before);
    undoManager().redo();
    EXPECT_EQ(stamps(), 1U);
    EXPECT_EQ(m_told, 5);
    undoManager().undo();
    EXPECT_EQ(stamps(), 1U) << "no way back";
    const auto stamp = std::dynamic_pointer_cast<WatermarkAnnotation>(pdf().page(0)->annotations().front());
    ASSERT_TRUE(stamp);
    EXPECT_EQ(stamp->text(), QStringLiteral(" DRAFT "));
    EXPECT_EQ(pdf().page(0)->annotation({300, 400}), nullptr) << "a pointer means what is beneath";
    EXPECT_DOUBLE_EQ(WatermarkAnnotation::fontSize({612, 792}), 73.44);
}
