#include "DocumentIndex.h"

#include "ChatTitle.h"
#include "DocumentText.h"
#include "PDFDocument.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PageStrings.h"
#include "PdfFixtures.h"

#include <gtest/gtest.h>

namespace {

using DocumentIndex::SearchMatch;

std::vector<DocumentIndex::OutlineEntry> entries(const QStringList& titles) {
    std::vector<DocumentIndex::OutlineEntry> list;
    for (const QString& title : titles)
        list.push_back({title, std::make_shared<PDFOutline>()});
    return list;
}

QString best(const QString& query, const QStringList& titles) {
    const auto match = DocumentIndex::bestMatch(query, entries(titles));
    return match ? match->title : QStringLiteral("none");
}

} // namespace

TEST(DocumentIndexSearch, TakesTheFirstHitOfEachPageUpToTheLimit) {
    PdfFixture fixture;
    const QString filler(60, u'x');
    fixture.addPage({QStringLiteral("Needle at the start"), QStringLiteral("of two lines, and a needle or more")});
    fixture.addPage({});
    fixture.addPage({filler + QStringLiteral("NEEDLE") + filler}, {2000, 792});
    fixture.addPage({QStringLiteral("one more needle")});
    const auto document = PDFDocument::fromData(fixture.bytes());
    const std::vector<SearchMatch> expected{
        {1, QStringLiteral("Needle at the start of two lines, and a needle")},
        {3, QString(40, u'x') + QStringLiteral("NEEDLE") + QString(40, u'x')},
        {4, QStringLiteral("one more needle")},
    };
    EXPECT_EQ(DocumentIndex::search(*document, QStringLiteral("nEEdle"), 5), expected);
    EXPECT_EQ(DocumentIndex::search(*document, QStringLiteral("needle"), 2).size(), 2U);
    EXPECT_EQ(DocumentIndex::search(*document, QStringLiteral("start\nof"), 5).size(), 1U);
    for (const QString& nowhere :
         {QString(), QStringLiteral("no such"), QString(1 << 20, u'n'), QString(QChar(0xD83D))})
        EXPECT_TRUE(DocumentIndex::search(*document, nowhere, 5).empty());
    EXPECT_TRUE(DocumentIndex::search(PDFDocument(), QStringLiteral("needle"), 5).empty());
}

TEST(DocumentIndexSearch, ReadsNoPageBehindTheLastHitAndKeepsWhatItReadWithinTheLimit) {
    PdfFixture fixture;
    for (int i = 0; i < 4; ++i)
        fixture.addPage({QStringLiteral("needle %1").arg(i)});
    const auto document = PDFDocument::fromData(fixture.bytes());
    // A page put into the place of another is seen at once, whatever was kept.
    const auto strings = std::make_shared<PageStrings>(20); // two pages and a bit
    const auto pages = [&](const QString& query) {
        QStringList found;
        for (const SearchMatch& match : DocumentIndex::search(DocumentText(*document, strings), query, 5))
            found.append(QString::number(match.page));
        return found.join(u' ');
    };
    EXPECT_EQ(pages(QStringLiteral("needle")), QStringLiteral("1 2 3 4"));
    EXPECT_EQ(pages(QStringLiteral("needle")), QStringLiteral("1 2 3 4"));
    document->insert(document->removePage(3), 0);
    EXPECT_EQ(pages(QStringLiteral("needle 3")), QStringLiteral("1"));
    document->removePage(1);
    EXPECT_EQ(pages(QStringLiteral("needle 0")), QString());

    std::stop_source stopped;
    stopped.request_stop();
    EXPECT_TRUE(
        DocumentIndex::search(DocumentText(*document, nullptr, stopped.get_token()), QStringLiteral("needle"), 5)
            .empty());
}

TEST(DocumentIndexOutline, ListsParentsFirstAndTheChildrenOfBlankItems) {
    PdfFixture fixture;
    fixture.addPage({});
    fixture.setOutline({{QStringLiteral("One"), 0, {{QStringLiteral(" \t"), 0, {{QStringLiteral(" Deep "), 0}}}}},
                        {QStringLiteral("\n"), 0},
                        {QStringLiteral("Two"), 0}});
    QStringList titles;
    for (const auto& entry : DocumentIndex::flattenedOutline(*PDFDocument::fromData(fixture.bytes())))
        titles.append(entry.title);
    EXPECT_EQ(titles.size(), 4);
    EXPECT_EQ(titles.value(1), QStringLiteral(" Deep "));
    EXPECT_EQ(titles.value(3), QStringLiteral("Two"));
    EXPECT_TRUE(DocumentIndex::flattenedOutline(PDFDocument()).empty());
}

TEST(DocumentIndexOutline, MatchesExactlyThenByContainmentThenByWords) {
    EXPECT_EQ(best(QStringLiteral("\t SETUP "), {QStringLiteral("The setup guide"), QStringLiteral("Setup")}),
              QStringLiteral("Setup"));
    EXPECT_EQ(best(QStringLiteral("setup"), {QStringLiteral(" Setup"), QStringLiteral("x")}), QStringLiteral(" Setup"));
    EXPECT_EQ(best(QStringLiteral("show me the setup please"), {QStringLiteral("Intro"), QStringLiteral("Setup")}),
              QStringLiteral("Setup"));
    EXPECT_EQ(best(QStringLiteral("guide of setup"), {QStringLiteral("long setup"), QStringLiteral("guide here")}),
              QStringLiteral("long setup"));
    EXPECT_EQ(best(QStringLiteral("fast setup guide"), {QStringLiteral("a setup"), QStringLiteral("guide to setup")}),
              QStringLiteral("guide to setup"));
    EXPECT_EQ(best(QStringLiteral("setup, now"), {QStringLiteral("setup or")}), QStringLiteral("none"))
        << "punctuation stays on the words";
    EXPECT_EQ(best(QStringLiteral(" \t "), {QStringLiteral("a b")}), QStringLiteral("none"));
    EXPECT_EQ(best(QStringLiteral("x"), {}), QStringLiteral("none"));
}

TEST(ChatTitleTest, CutsBetweenWords) {
    const QString word42(42, u'w');
    const struct {
        QString message;
        QString title;
    } cases[] = {
        {QStringLiteral("  two\nlines \n"), QStringLiteral("two lines")},
        {word42, word42},
        {word42 + QStringLiteral("w"), word42 + QStringLiteral("…")},
        {word42 + QStringLiteral(" more"), word42 + QStringLiteral("…")},
        {QStringLiteral("What does the third chapter say about trees"),
         QStringLiteral("What does the third chapter say about…")},
        {QStringLiteral("é").normalized(QString::NormalizationForm_D).repeated(42),
         QStringLiteral("é").normalized(QString::NormalizationForm_D).repeated(42)},
        {QString(), QString()},
    };
    for (const auto& [message, title] : cases)
        EXPECT_EQ(ChatTitle::fromFirstMessage(message), title) << qPrintable(message);
}
