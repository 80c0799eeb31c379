// Run at device pixel ratios 1, 1.5 and 2: see CMakeLists.txt.

#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PageRenderer.h"
#include "ShownView.h"

#include <QFrame>
#include <QPainter>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

#include <gtest/gtest.h>

namespace {

/// Pages with text, thin lines and a grey of every shade, so that half a pixel shows.
std::shared_ptr<PDFDocument> detailedDocument() {
    PdfFixture fixture;
    for (int page = 0; page < 4; ++page) {
        QByteArray content = PdfFixture::textContent({QStringLiteral("Fine print and thin lines")});
        for (int i = 0; i < 60; ++i)
            content += QByteArray::number(i / 60.0) + " g " + QByteArray::number(40 + 9.3 * i) + " " +
                       QByteArray::number(100 + 7.7 * i) + " 5.3 140.9 re f 0 G 0.3 w 30 " +
                       QByteArray::number(20 + 11.1 * i) + " m 580 " + QByteArray::number(25 + 11.3 * i) + " l S\n";
        fixture.addPageWithContent(content, fixture.defaultResources());
        fixture.setPageKey(page, "/Rotate", page % 2 == 0 ? "0" : "90");
    }
    return documentOf(fixture);
}

/// The page as the engine draws it for the size that it has in the view.
QImage expected(const ShownView& view, int index) {
    const auto page = view.page(index);
    const double ratio = view.devicePixelRatioF();
    const QRectF rect = view.convertFromPage(page->bounds(PDFDisplayBox::cropBox), *page);
    const QSize pixels(qRound(rect.width() * ratio), qRound(rect.height() * ratio));
    const QSizeF points = page->displaySize(PDFDisplayBox::cropBox);
    PageRenderRequest request;
    request.content = page->content();
    request.hiddenAnnotations = page->hiddenFileAnnotations();
    request.pageToDevice = page->displayTransform(PDFDisplayBox::cropBox) *
                           QTransform::fromScale(pixels.width() / points.width(), pixels.height() / points.height());
    request.deviceRect = QRect(QPoint(0, 0), pixels);
    return PageRenderer::render(request);
}

/// Where the page is in a picture of the view, device pixels.
QPoint corner(const ShownView& view, int index) {
    const auto page = view.page(index);
    const QRectF rect = view.convertFromPage(page->bounds(PDFDisplayBox::cropBox), *page);
    return (rect.topLeft() * view.devicePixelRatioF()).toPoint();
}

/// The engine counts the shares of a pixel that a line covers in seventeenths, a little differently where a tile ends.
constexpr int fineness = 32;

/// Compares what the picture shows of the page, pixel by pixel.
int differentPixels(const QImage& picture, const QImage& page, QPoint at) {
    int different = 0;
    int compared = 0;
    for (int y = std::max(0, at.y()); y < std::min(picture.height(), at.y() + page.height()); ++y) {
        for (int x = std::max(0, at.x()); x < std::min(picture.width(), at.x() + page.width()); ++x) {
            ++compared;
            if (std::abs(qGray(picture.pixel(x, y)) - qGray(page.pixel(x - at.x(), y - at.y()))) > fineness)
                ++different;
        }
    }
    EXPECT_GT(compared, 1000) << at.x() << "," << at.y();
    return different;
}

} // namespace

TEST(SharpPages, areTheEnginesPixelsAtEveryScale) {
    ShownView view(detailedDocument());
    for (const double scale : {0.37, 1.0, 1.7321, 4.5}) {
        view.setScaleFactor(scale);
        for (const int index : {0, 1}) {
            view.goToPage(view.page(index));
            view.verticalScrollBar()->setValue(view.verticalScrollBar()->value() + 37);
            view.waitUntilSharp();
            EXPECT_EQ(differentPixels(view.picture(), expected(view, index), corner(view, index)), 0)
                << "page " << index << " at " << scale;
        }
    }
}

// At a ratio of 1.5 the view may begin between two pixels.
TEST(SharpPages, fallOnPixelsWhereverTheViewLies) {
    QFrame window;
    window.resize(720, 760);
    ShownView view(detailedDocument());
    view.setParent(&window);
    window.show();
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    for (const QPoint place : {QPoint(0, 0), QPoint(1, 3), QPoint(4, 7)}) {
        view.move(place);
        view.waitUntilSharp();
        const QImage whole = window.grab().toImage().convertToFormat(QImage::Format_RGB32);
        const double ratio = view.devicePixelRatioF();
        const QPointF begins = QPointF(view.viewport()->mapTo(&window, QPoint(0, 0))) * ratio;
        const QRect shown(begins.toPoint(), (QSizeF(view.viewport()->size()) * ratio).toSize() - QSize(2, 2));
        EXPECT_EQ(differentPixels(whole.copy(shown), expected(view, 0), corner(view, 0)), 0) << place.x();
    }
}

TEST(SharpPages, somethingIsShownBeforeTheyAreThere) {
    ShownView view(detailedDocument());
    view.waitUntilSharp();
    view.setScaleFactor(view.scaleFactor() * 1.1);
    EXPECT_FALSE(view.isSharp());
    // The tiles of the former scale stand in: no white page in between.
    const QImage standIn = view.picture();
    QImage white(standIn.size(), standIn.format());
    white.fill(Qt::white);
    const auto differs = [&](const QImage& shown) {
        return differentPixels(shown, expected(view, 0), corner(view, 0));
    };
    EXPECT_LT(differs(standIn), differs(white) / 2);
    view.waitUntilSharp();
}

TEST(SharpPages, tellWhenTheyAreFirstShown) {
    ShownView view(nullptr);
    QSignalSpy drawn(&view, &PDFView::pageDrawn);
    view.setDocument(detailedDocument());
    view.waitUntil([&] { return drawn.count() > 0; }, "a sharp painting");
    EXPECT_TRUE(drawn.first().first().toBool());
    drawn.clear();
    view.viewport()->update();
    view.waitUntil([&] { return drawn.count() > 0; }, "another painting");
    EXPECT_FALSE(drawn.first().first().toBool());
}

TEST(SharpPages, goWhileTheViewIsHidden) {
    ShownView view(sampleDocument(3));
    view.waitUntilSharp();
    const qint64 shown = view.tileCacheBytes();
    view.hide();
    EXPECT_LT(view.tileCacheBytes(), shown / 2);
    EXPECT_GT(view.tileCacheBytes(), 0); // what stands in until they are drawn again
    view.show();
    view.waitUntilSharp();
    EXPECT_GT(view.tileCacheBytes(), shown / 2);
}

TEST(SharpPages, liveAnnotationsAreDrawnOverThem) {
    const auto document = detailedDocument();
    ShownView view(document);
    view.waitUntilSharp();
    const QRectF bounds(100, 600, 80, 40);
    const QPoint middle = (view.convertFromPage(bounds.center(), *view.page(0)) * view.devicePixelRatioF()).toPoint();
    const QColor before = view.picture().pixelColor(middle);
    auto square = std::make_shared<PDFAnnotation>(bounds, PDFAnnotationSubtype::square);
    square->setInteriorColor(QColor(Qt::red));
    document->page(0)->addAnnotation(square);
    EXPECT_EQ(view.picture().pixelColor(middle), QColor(Qt::red)) << "no thread has to draw for it";
    document->page(0)->removeAnnotation(square);
    EXPECT_EQ(view.picture().pixelColor(middle), before);
}

TEST(SharpPages, highlightsLetTheTextShowThrough) {
    const auto document = detailedDocument();
    ShownView view(document);
    view.waitUntilSharp();
    const QImage before = view.picture();
    const QRectF line = QRectF(60, 700, 300, 60);
    auto highlight = std::make_shared<PDFAnnotation>(line, PDFAnnotationSubtype::highlight);
    highlight->setColor(QColor(Qt::yellow));
    document->page(0)->addAnnotation(highlight);
    const QImage after = view.picture();
    int black = 0;
    int yellow = 0;
    const QRect area = view.convertFromPage(line, *view.page(0)).toRect().adjusted(2, 2, -2, -2);
    const double ratio = view.devicePixelRatioF();
    for (int y = int(area.top() * ratio); y < int(area.bottom() * ratio); ++y) {
        for (int x = int(area.left() * ratio); x < int(area.right() * ratio); ++x) {
            black += qGray(before.pixel(x, y)) < 100 && qRed(after.pixel(x, y)) < 110;
            yellow += before.pixel(x, y) == QColor(Qt::white).rgb() && after.pixel(x, y) == QColor(Qt::yellow).rgb();
        }
    }
    EXPECT_GT(black, 20);
    EXPECT_GT(yellow, 1000);
}

TEST(SharpPages, aRemovedAnnotationOfTheFileLeavesThem) {
    PdfFixture fixture;
    fixture.addPage({QStringLiteral("text")});
    const QByteArray look =
        fixture.addStream("<< /Type /XObject /Subtype /Form /BBox [0 0 10 10] >>", "0 0 1 rg 0 0 10 10 re f");
    fixture.addAnnotation(0, "<< /Subtype /Square /Rect [100 400 300 600] /F 4 /AP << /N " + look + " >> >>");
    const auto document = documentOf(fixture);
    ShownView view(document);
    view.waitUntilSharp();
    const QPoint middle = (view.convertFromPage({200, 500}, *view.page(0)) * view.devicePixelRatioF()).toPoint();
    ASSERT_EQ(view.picture().pixelColor(middle), QColor(Qt::blue));
    ASSERT_EQ(document->page(0)->annotations().size(), 1U);
    document->page(0)->removeAnnotation(document->page(0)->annotations().front());
    EXPECT_FALSE(view.isSharp());
    view.waitUntilSharp();
    EXPECT_EQ(view.picture().pixelColor(middle), QColor(Qt::white));
}
