#include "PageOperations.h"

#include "FrozenCopies.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"
#include "ThumbnailCache.h"
#include "UndoManager.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

/// A document of pages with a letter each.
std::shared_ptr<PDFDocument> pages(const QString& letters) {
    PdfFixture fixture;
    for (const QChar letter : letters)
        fixture.addPage({letter});
    return PDFDocument::fromData(fixture.bytes());
}

QString letters(const PDFDocument& document) {
    QString all;
    for (int i = 0; i < document.pageCount(); ++i)
        all += document.page(i)->string().trimmed();
    return all;
}

} // namespace

TEST(PageOperations, anEditIsToldAndUndoneAndRedoneAnyNumberOfTimes) {
    using Edit = std::function<void(PDFEditorDocument&, UndoManager*)>;
    const auto move = [](int from, int to) -> Edit {
        return [=](auto& document, UndoManager* undo) { PageOperations::movePage(document, from, to, undo); };
    };
    const auto moveAll = [](const PageIndices& indices, int gap) -> Edit {
        return [=](auto& document, UndoManager* undo) { PageOperations::movePages(document, indices, gap, undo); };
    };
    const auto remove = [](const PageIndices& indices) -> Edit {
        return [=](auto& document, UndoManager* undo) { PageOperations::deletePages(document, indices, undo); };
    };
    const auto merge = [](const QString& source, int index) -> Edit {
        return [=](auto& document, UndoManager* undo) { PageOperations::merge(document, *pages(source), index, undo); };
    };
    const struct {
        Edit edit;
        QString result;
        int steps = 1; ///< each of which is told
    } cases[] = {
        {move(0, 2), QStringLiteral("bcad")},
        {move(3, 0), QStringLiteral("dabc")},
        {move(1, 99), QStringLiteral("acdb")},
        {move(2, -7), QStringLiteral("cabd")},
        {move(1, 1), QStringLiteral("abcd")},
        {move(4, 0), QStringLiteral("abcd")},
        {moveAll({0, 3}, 2), QStringLiteral("badc"), 2},
        {moveAll({0, 1, 3}, 4), QStringLiteral("cabd"), 2},
        {moveAll({1, 2}, 2), QStringLiteral("abcd")},
        {remove({0, 3}), QStringLiteral("bc")},
        {remove({0, 1, 2, 3}), QString()},
        {remove({-1, 4}), QStringLiteral("abcd")},
        {merge(QStringLiteral("xy"), 1), QStringLiteral("axybcd")},
        {merge(QStringLiteral("xy"), 99), QStringLiteral("abcdxy")},
    };
    const QString before = QStringLiteral("abcd");
    for (const auto& each : cases) {
        PDFEditorDocument document;
        document.setPdfDocument(pages(before));
        int told = 0;
        QObject::connect(&document, &PDFEditorDocument::objectWillChange, [&told] { ++told; });
        const auto undo = document.undoManager();
        const int changes = each.result == before ? 0 : each.steps;
        QImage picture(1, 1, QImage::Format_RGB32);
        ThumbnailCache::insert(QStringLiteral("picture"), picture);
        each.edit(document, undo.get());
        QCoreApplication::processEvents(); // the step ends
        EXPECT_EQ(letters(*document.pdfDocument()), each.result);
        EXPECT_EQ(told, changes);
        EXPECT_EQ(document.isDocumentEdited(), changes > 0);
        EXPECT_EQ(ThumbnailCache::image(QStringLiteral("picture")).isNull(), changes > 0);
        for (int round = 0; round < 3; ++round) {
            undo->undo();
            EXPECT_EQ(letters(*document.pdfDocument()), before);
            EXPECT_FALSE(document.isDocumentEdited());
            undo->redo();
            EXPECT_EQ(letters(*document.pdfDocument()), each.result);
        }
        EXPECT_EQ(told, changes * 7);
        each.edit(document, nullptr);
    }
}

TEST(PageOperations, newDocumentsAreMadeOfCopies) {
    const auto first = pages(QStringLiteral("abcd"));
    const auto second = pages(QStringLiteral("xy"));
    const auto extracted = PageOperations::extractPages({3, 1}, *first);
    const auto merged = PageOperations::mergeFiles({second, first, second});
    const auto words = [](const PDFDocument& document) {
        return PdfPrograms::text(document.dataRepresentation()).simplified().remove(u' ');
    };
    EXPECT_EQ(words(*extracted), QStringLiteral("bd"));
    EXPECT_EQ(words(*merged), QStringLiteral("xyabcdxy"));
    EXPECT_EQ(PageOperations::mergeFiles({})->pageCount(), 0);
    EXPECT_EQ(letters(*first), QStringLiteral("abcd"));
    EXPECT_NE(extracted->page(0), first->page(1));

    // Files are written when all of them are complete, or none.
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("copy.pdf"));
    FrozenCopies copies;
    copies.add(*merged, path);
    merged->removePage(0);
    EXPECT_FALSE(copies.write([] { return false; }));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList());
    EXPECT_TRUE(copies.write([] { return true; }));
    EXPECT_EQ(letters(*PDFDocument::fromFile(path)), QStringLiteral("xyabcdxy"));
}
