#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFDocumentSnapshot.h"
#include "PDFError.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <QFile>
#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>

namespace {

namespace Subtype = PDFAnnotationSubtype;
using Document = std::shared_ptr<PDFDocument>;
using Annotation = std::shared_ptr<PDFAnnotation>;

constexpr int pageCount = 40;

/// A kind that draws itself when it is saved.
class Label : public PDFAnnotation {
public:
    explicit Label(const QRectF& bounds) : PDFAnnotation(bounds, Subtype::stamp) {
        setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
    }
    bool hasCustomAppearance() const override { return true; }
    Annotation copy() const override { return copied(std::make_shared<Label>(bounds())); }
    void draw(PDFDisplayBox, QPainter& painter) const override {
        painter.setFont(*font());
        painter.drawText(bounds().topLeft(), contents());
    }
};

/// Large enough that changes are a small part of it, with a field, a link from page 1 to page 2, and an outline.
void fill(PdfFixture& fixture) {
    for (int i = 0; i < pageCount; ++i)
        fixture.addPage({QStringLiteral("This is page %1.").arg(i), QString(2000, QLatin1Char('x'))});
    fixture.addTextField(0, QStringLiteral("town"), {72, 600, 200, 20}, QStringLiteral("Here"));
    fixture.addLink(1, {72, 500, 100, 12}, 2);
    fixture.setOutline({{QStringLiteral("Old"), 7}});
}

const QByteArray& largeFile() {
    static const QByteArray file = [] {
        PdfFixture fixture;
        fill(fixture);
        return fixture.bytes();
    }();
    return file;
}

QByteArray protectedFile() {
    PdfFixture fixture;
    fill(fixture);
    return fixture.encrypted("user", "owner", PdfFixture::Encryption::aes256);
}

Annotation ink(int points) {
    auto annotation = std::make_shared<PDFAnnotation>(QRectF(0, 0, 612, 792), Subtype::ink);
    annotation->setColor(QColor(Qt::blue));
    QPainterPath path(QPointF(100, 100));
    for (int i = 1; i < points; ++i)
        path.lineTo(100 + i, 100 + (i * 37) % 200);
    annotation->add(path);
    return annotation;
}

void grow(PDFAnnotation& annotation) {
    std::vector<QPainterPath> paths = annotation.paths();
    const QPointF end = paths.front().currentPosition();
    paths.front().lineTo(end.x() + 1, 400 - end.y());
    annotation.setPaths(annotation.bounds(), paths, annotation.bounds());
}

Annotation link(const std::shared_ptr<PDFPage>& target) {
    auto annotation = std::make_shared<PDFAnnotation>(QRectF(72, 300, 100, 12), Subtype::link);
    annotation->setDestination(PDFDestination(target, QPointF(50, 700)));
    return annotation;
}

Annotation label(const QString& words) {
    auto annotation = std::make_shared<Label>(QRectF(300, 300, 120, 20));
    annotation->setContents(words);
    return annotation;
}

/// Has one of everything that a document keeps beside its source.
Document changedDocument() {
    auto document = PDFDocument::fromData(largeFile());
    document->page(0)->annotations()[0]->setWidgetStringValue(QStringLiteral("There"));
    document->page(3)->addAnnotation(ink(20));
    document->page(3)->addAnnotation(label(QStringLiteral("Seen")));
    document->page(3)->addAnnotation(link(document->page(3)));
    document->page(4)->addAnnotation(link(document->page(9)));
    document->page(5)->setRotation(90);
    document->page(6)->addAnnotation(document->page(1)->annotations()[0]->copy());
    auto root = std::make_shared<PDFOutline>();
    auto chapter = std::make_shared<PDFOutline>();
    auto section = std::make_shared<PDFOutline>();
    root->insertChild(chapter, 0);
    chapter->insertChild(section, 0);
    chapter->setLabel(QStringLiteral("Chapter"));
    chapter->setDestination(PDFDestination(document->page(10), QPointF(0, 700)));
    section->setLabel(QStringLiteral("Section"));
    section->setDestination(PDFDestination(document->page(3), QPointF(0, 300)));
    document->setOutlineRoot(root);
    QVariantMap attributes = document->documentAttributes();
    attributes.insert(QStringLiteral("Title"), QStringLiteral("Title"));
    document->setDocumentAttributes(attributes);
    return document;
}

int pageLedTo(const PDFDocument& document, const std::optional<PDFDestination>& destination) {
    return destination ? document.index(destination->page().get()) : -1;
}

void describe(const PDFDocument& document, const PDFOutline& item, QString& all) {
    for (int i = 0; i < item.numberOfChildren(); ++i) {
        const auto child = item.child(i);
        all += QStringLiteral("(%1 to %2").arg(child->label()).arg(pageLedTo(document, child->destination()));
        describe(document, *child, all);
        all += QLatin1Char(')');
    }
}

/// All that is changed here, in words.
QString described(const PDFDocument& document) {
    QString all = document.documentAttributes().value(QStringLiteral("Title")).toString();
    if (document.outlineRoot())
        describe(document, *document.outlineRoot(), all);
    for (int i = 0; i < document.pageCount(); ++i) {
        const auto page = document.page(i);
        all += QStringLiteral("\n%1, turned %2:").arg(page->string().section(QLatin1Char('\n'), 0, 0));
        all += QString::number(page->rotation());
        for (const auto& annotation : page->annotations()) {
            all += QStringLiteral(" %1 “%2” “%3” to %4")
                       .arg(annotation->type(), annotation->contents(), annotation->widgetStringValue())
                       .arg(pageLedTo(document, annotation->destination()));
            for (const QPainterPath& path : annotation->paths())
                all += QStringLiteral(" stroke of %1").arg(path.elementCount());
        }
    }
    return all;
}

PDFAnnotation& annotationOf(const Document& document, int page, std::size_t index = 0) {
    return *document->page(page)->annotations().at(index);
}

struct Change {
    const char* name;
    std::function<void(Document& document)> make;
};

const Change changes[] = {
    {"strokeGrows", [](Document& document) { grow(annotationOf(document, 3)); }},
    {"wordsChange", [](Document& document) { annotationOf(document, 3, 1).setContents(QStringLiteral("No")); }},
    {"fontChanges",
     [](Document& document) { annotationOf(document, 3, 1).setFont(QFont(QStringLiteral("DejaVu Serif"), 7)); }},
    {"annotationComes", [](Document& document) { document->page(20)->addAnnotation(ink(9)); }},
    {"annotationGoes",
     [](Document& document) { document->page(3)->removeAnnotation(document->page(3)->annotations()[0]); }},
    {"fieldChanges",
     [](Document& document) { annotationOf(document, 0).setWidgetStringValue(QStringLiteral("Away")); }},
    {"linkLeadsElsewhere",
     [](Document& document) {
         annotationOf(document, 4).setDestination(PDFDestination(document->page(1), QPointF()));
     }},
    {"pageTurns", [](Document& document) { document->page(5)->setRotation(180); }},
    {"pagesLedToGo",
     [](Document& document) {
         for (const int index : {10, 9, 3, 2})
             document->removePage(index);
     }},
    {"pagesMove", [](Document& document) { document->insert(document->removePage(9), 0); }},
    {"outlineItemChanges",
     [](Document& document) {
         document->outlineRoot()->child(0)->setLabel(QStringLiteral("Renamed"));
         document->outlineRoot()->child(0)->setDestination(std::nullopt);
     }},
    {"outlineItemGoes", [](Document& document) { document->outlineRoot()->child(0)->child(0)->removeFromParent(); }},
    {"outlineGoes", [](Document& document) { document->setOutlineRoot(nullptr); }},
    {"attributesGo", [](Document& document) { document->setDocumentAttributes({}); }},
    {"documentGoes", [](Document& document) { document.reset(); }},
};

} // namespace

TEST(SnapshotTest, LaterChangesLeaveItAsItWas) {
    for (const Change& change : changes)
        for (const bool rewrites : {false, true}) {
            SCOPED_TRACE(std::string(change.name) + (rewrites ? ", rewritten" : ", appended"));
            Document document = changedDocument();
            if (rewrites)
                document->removePage(pageCount - 1);
            const QString moment = described(*document);
            const auto snapshot = PDFDocumentSnapshot::of(*document);
            const QByteArray before = PDFDocumentSnapshot::of(*document)->dataRepresentation();
            EXPECT_EQ(before.startsWith(largeFile()), !rewrites);
            EXPECT_EQ(described(*PDFDocument::fromData(before)), moment);
            change.make(document);
            if (document) {
                EXPECT_NE(described(*document) == moment, change.name != std::string("fontChanges"));
            }
            EXPECT_TRUE(snapshot->dataRepresentation() == before);
        }
}

TEST(SnapshotTest, WorkersWriteItsMomentWhileTheDocumentChanges) {
    const Document document = changedDocument();
    int step = 0;
    const auto edit = [&] {
        ++step;
        const auto page = document->page(step % 5 + 11);
        page->addAnnotation(step % 3 == 0 ? ink(step % 50 + 2) : label(QString::number(step)));
        if (page->annotations().size() > 8)
            page->removeAnnotation(page->annotations()[std::size_t(step % 4)]);
        grow(*document->page(3)->annotations()[0]);
        document->page(3)->annotations()[1]->setContents(QString::number(step));
        document->page(0)->annotations()[0]->setWidgetStringValue(QString::number(step));
        document->page(5)->setRotation(step % 4 * 90);
        document->outlineRoot()->child(0)->setLabel(QString::number(step));
        document->insert(document->removePage(step % 3 + 20), 22);
        for (const int drawn : {3, step % 5 + 11})
            EXPECT_FALSE(document->page(drawn)->thumbnail({200, 200}, PDFDisplayBox::cropBox).isNull());
    };
    struct Work {
        QString moment;
        std::shared_ptr<const PDFDocumentSnapshot> snapshot;
        std::future<QByteArray> result;
    };
    for (int round = 0; round < 6; ++round) {
        std::vector<Work> works; // two at a time: to save, and to be safe
        for (int i = 0; i < 2; ++i) {
            edit();
            works.push_back({described(*document), PDFDocumentSnapshot::of(*document), {}});
        }
        works[0].result =
            std::async(std::launch::async, [work = works[0].snapshot] { return work->dataRepresentation(); });
        works[1].result = std::async(std::launch::async, [work = works[1].snapshot] {
            return work->sourceBytes() + work->update().value_or("none");
        });
        for (Work& work : works) {
            do
                edit();
            while (work.result.wait_for(std::chrono::seconds(0)) != std::future_status::ready);
            const QByteArray file = work.result.get();
            EXPECT_EQ(described(*PDFDocument::fromData(file)).toStdString(), work.moment.toStdString());
            EXPECT_EQ(PdfPrograms::complaints(file), "");
        }
    }
}

TEST(SnapshotTest, CopiesShareNothingThatDrawingChanges) {
    const Annotation stroke = ink(20);
    stroke->setFont(QFont(QStringLiteral("DejaVu Sans"), 9, QFont::Bold));
    const Annotation copy = stroke->copy();
    EXPECT_EQ(copy->paths(), stroke->paths());
    EXPECT_EQ(copy->font(), stroke->font());
    EXPECT_EQ(copy->font()->resolveMask(), stroke->font()->resolveMask());
    EXPECT_FALSE(copy->font()->isCopyOf(*stroke->font()));
}

TEST(SnapshotTest, UpdateIsWhatTheSourceLacks) {
    const QByteArray& file = largeFile();
    const auto updateOf = [](const QByteArray& bytes, const std::function<void(PDFDocument&)>& change) {
        const auto document = PDFDocument::fromData(bytes);
        document->unlock(QStringLiteral("owner"));
        change(*document);
        const auto snapshot = PDFDocumentSnapshot::of(*document);
        EXPECT_EQ(snapshot->sourceBytes(), bytes);
        std::optional<QByteArray> update = snapshot->update();
        if (update) {
            EXPECT_EQ(PdfPrograms::complaints(bytes + *update), "");
            EXPECT_EQ(described(*PDFDocument::fromData(bytes + *update)), described(*document));
        }
        return update;
    };
    const auto mark = [](PDFDocument& document) { document.page(8)->addAnnotation(ink(4)); };
    const auto markMuch = [](PDFDocument& document) {
        for (int i = 0; i < 500; ++i)
            document.page(8)->addAnnotation(label(QStringLiteral("label %1").arg(i)));
    };
    EXPECT_EQ(updateOf(file, [](PDFDocument&) {}), QByteArray());
    EXPECT_EQ(updateOf(file.chopped(1), mark)->left(1), "\n") << "on a line of its own";
    EXPECT_LT(updateOf(file, mark)->size(), 4000);
    EXPECT_TRUE(updateOf(file, [](PDFDocument& document) { document.insert(document.removePage(0), 5); }));
    EXPECT_GT(updateOf(file, markMuch)->size(), file.size()) << "however much it is";

    EXPECT_FALSE(updateOf(file, [](PDFDocument& document) { document.removePage(0); }));
    EXPECT_FALSE(updateOf(PdfFixture::damaged(file), mark));
    EXPECT_FALSE(updateOf(protectedFile(), mark));
    const auto fresh = PDFDocumentSnapshot::of(PDFDocument());
    EXPECT_EQ(fresh->sourceBytes(), QByteArray());
    EXPECT_FALSE(fresh->update());
    EXPECT_THROW((void)PDFDocumentSnapshot::of(*PDFDocument::fromData(protectedFile())), PDFError) << "locked";
}

TEST(SnapshotTest, WritesTheFileThatItGives) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.pdf"));
    const auto written = [&path](const PDFDocument& document) {
        const auto snapshot = PDFDocumentSnapshot::of(document);
        snapshot->write(path);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_TRUE(file.readAll() == snapshot->dataRepresentation());
        return file.size();
    };
    EXPECT_EQ(written(*PDFDocument::fromData(largeFile())), largeFile().size());
    const Document document = changedDocument();
    EXPECT_GT(written(*document), largeFile().size());
    // In several pieces.
    QImage noise(800, 800, QImage::Format_RGB32);
    quint32 random = 1;
    for (int y = 0; y < noise.height(); ++y)
        for (int x = 0; x < noise.width(); ++x)
            noise.setPixel(x, y, random = random * 1664525 + 1013904223);
    document->insert(PDFPage::fromImage(noise, {400, 400}), 1);
    EXPECT_GT(written(*document), 1'500'000);
    EXPECT_EQ(described(*PDFDocument::fromFile(path)), described(*document));
}
