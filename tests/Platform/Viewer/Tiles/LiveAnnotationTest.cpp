#include "AnnotatedTiles.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PathCulling.h"
#include "ShownView.h"

#include <QPainter>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

#include <random>

namespace {

class Changes {
public:
    explicit Changes(std::shared_ptr<PDFPage> page) : m_page(std::move(page)) {}

    /// Adds, removes, moves or changes an annotation somewhere on the page.
    void makeOne() {
        const auto all = m_page->annotations();
        const int kind = pick(all.empty() ? 1 : 6);
        if (kind == 0 || all.empty()) {
            add();
            return;
        }
        const auto& chosen = all[std::size_t(pick(int(all.size())))];
        if (kind == 1)
            m_page->removeAnnotation(chosen);
        else if (kind == 2)
            chosen->setBounds(chosen->bounds().translated(pick(200) - 100, pick(200) - 100));
        else if (kind == 3)
            chosen->setColor(QColor::fromHsv(pick(360), 200, 220));
        else if (kind == 4)
            chosen->setEndPoint(somewhere());
        else if (m_page->removeAnnotation(chosen) >= 0)
            m_page->insertAnnotation(chosen, 0); // lowest now
    }

private:
    int pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }
    QPointF somewhere() { return {double(pick(600)), double(pick(780))}; }

    /// Relative to the corner of the bounds.
    QPointF within(const QRectF& bounds) {
        return {double(pick(int(bounds.width()))), double(pick(int(bounds.height())))};
    }

    void add() {
        static const QString types[] = {PDFAnnotationSubtype::square, PDFAnnotationSubtype::highlight,
                                        PDFAnnotationSubtype::line, PDFAnnotationSubtype::ink,
                                        PDFAnnotationSubtype::freeText};
        const auto made =
            std::make_shared<PDFAnnotation>(QRectF(somewhere(), QSizeF(20 + pick(200), 20 + pick(90))), types[pick(5)]);
        made->setColor(QColor::fromHsv(pick(360), 200, 220));
        made->setContents(QStringLiteral("words on the page"));
        made->setBorder(PDFBorder{double(1 + pick(9))});
        made->setStartPoint(somewhere());
        made->setEndPoint(somewhere());
        made->setEndLineStyle(PDFLineStyle::closedArrow);
        QPainterPath path;
        for (int i = 0; i < 12; ++i)
            path.quadTo(within(made->bounds()), within(made->bounds()));
        made->add(path);
        m_page->addAnnotation(made);
    }

    std::shared_ptr<PDFPage> m_page;
    std::mt19937 m_random{4711};
};

/// No channel of any pixel differs by more than `tolerance`.
void expectAlike(const QImage& one, const QImage& other, int tolerance) {
    ASSERT_EQ(one.size(), other.size());
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            ASSERT_LE(std::abs(qRed(a) - qRed(b)), tolerance) << x << ' ' << y;
            ASSERT_LE(std::abs(qGreen(a) - qGreen(b)), tolerance) << x << ' ' << y;
            ASSERT_LE(std::abs(qBlue(a) - qBlue(b)), tolerance) << x << ' ' << y;
        }
    }
}

} // namespace

TEST(LiveAnnotations, manyChangesLeaveThePictureOfAFreshView) {
    const auto document = sampleDocument(3);
    ShownView view(document);
    view.waitUntilSharp();
    Changes changes(view.page(0));
    for (int step = 1; step <= 120; ++step) {
        changes.makeOne();
        if (step % 3 == 0)
            (void)view.picture(); // so that later changes find pictures to mend
        if (step % 40 != 0)
            continue;
        view.setScaleFactor(0.6 + step / 100.0);
        view.waitUntilSharp();
        ShownView fresh(document);
        fresh.setScaleFactor(view.scaleFactor());
        fresh.verticalScrollBar()->setValue(view.verticalScrollBar()->value());
        fresh.horizontalScrollBar()->setValue(view.horizontalScrollBar()->value());
        fresh.waitUntilSharp();
        expectAlike(view.picture(), fresh.picture(), 2);
    }
}

TEST(LiveAnnotations, tilesThatNoneReachesAreForgottenWhenTheyAreOutOfSight) {
    const auto document = sampleDocument(1);
    const std::vector far{std::make_shared<PDFAnnotation>(QRectF(5000, 5000, 10, 10), PDFAnnotationSubtype::square)};
    PlacedPage placed;
    placed.page = document->page(0);
    QImage plain(100, 100, QImage::Format_RGB32);
    plain.fill(Qt::white);
    AnnotatedTiles tiles(1 << 20);
    for (int size = 100; size < 150; ++size) { // a scale after the other
        tiles.beginFrame();
        TileKey key;
        key.look.pixels = {size, size};
        EXPECT_EQ(tiles.picture(placed, key, plain, far).cacheKey(), plain.cacheKey());
    }
    EXPECT_LE(tiles.count(), 2U);
}

TEST(LiveAnnotations, aWindowOnALongStrokeShowsWhatTheWholeStrokeWould) {
    QPainterPath stroke(QPointF(20, 20));
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(0, 400);
    const auto point = [&] { return QPointF(place(random), place(random)); };
    for (int i = 0; i < 150; ++i)
        i % 7 == 0   ? stroke.moveTo(point())
        : i % 3 == 0 ? stroke.lineTo(point())
                     : stroke.cubicTo(point(), point(), point());
    for (const QRect& window : {QRect(0, 0, 40, 40), QRect(190, 130, 60, 30), QRect(395, 395, 5, 5)}) {
        const auto picture = [&](const QPainterPath& path) {
            QImage image(400, 400, QImage::Format_RGB32);
            image.fill(Qt::white);
            QPainter painter(&image);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setClipRect(window);
            painter.strokePath(path, QPen(Qt::black, 6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            return image.copy(window);
        };
        const QPainterPath within = PathCulling::strokeWithin(stroke, window, 6);
        EXPECT_LT(within.elementCount(), stroke.elementCount());
        expectAlike(picture(stroke), picture(within), 24);
    }
}
