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

/// The best of the titles, which "|" parts.
std::string best(const char* query, const char* titles) {
    std::vector<DocumentIndex::OutlineEntry> entries;
    for (const QString& title : QString::fromUtf8(titles).split(u'|', Qt::SkipEmptyParts))
        entries.push_back({title, std::make_shared<PDFOutline>()});
    const auto match = DocumentIndex::bestMatch(QString::fromUtf8(query), entries);
    return match ? match->title.toStdString() : "none";
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
}

TEST(DocumentIndexSearch, ReadsNoPageBehindTheLastHitAndKeepsWhatItReadWithinTheLimit) {
    PdfFixture fixture;
    for (int i = 0; i < 4; ++i)
        fixture.addPage({QStringLiteral("needle %1").arg(i)});
    const auto document = PDFDocument::fromData(fixture.bytes());
    // A page put into the place of another is seen at once, whatever was kept.
    const auto strings = std::make_shared<PageStrings>(20); // two pages and a bit
    const auto found = [&](const char* query) {
        return DocumentIndex::search(DocumentText(*document, strings), QLatin1String(query), 5);
    };
    EXPECT_EQ(found("needle").size(), 4U);
    document->insert(document->removePage(3), 0);
    EXPECT_EQ(found("needle 3"), (std::vector<SearchMatch>{{1, QStringLiteral("needle 3")}}));
    document->removePage(1);
    EXPECT_TRUE(found("needle 0").empty());

    std::stop_source stopped;
    stopped.request_stop();
    EXPECT_TRUE(
        DocumentIndex::search(DocumentText(*document, nullptr, stopped.get_token()), QStringLiteral("needle"), 5)
            .empty());
}

TEST(DocumentIndexOutline, MatchesExactlyThenByContainmentThenByWords) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"\t SETUP ", "The setup guide|Setup", "Setup"},
        {"setup", " Setup|x", " Setup"},
        {"show me the setup please", "Intro|Setup", "Setup"},
        {"guide of setup", "long setup|guide here", "long setup"},
        {"fast setup guide", "a setup|guide to setup", "guide to setup"},
        {"setup, now", "setup or", "none"}, // punctuation stays on the words
        {" \t ", "a b", "none"},
    };
    for (const auto& [query, titles, title] : rows)
        EXPECT_EQ(best(query, titles), title) << query;
}

TEST(ChatTitleTest, CutsBetweenWords) {
    const QString word(42, u'w');
    const QString accented = QStringLiteral("é").normalized(QString::NormalizationForm_D).repeated(42);
    const std::pair<QString, QString> cases[] = {
        {QStringLiteral("  two\nlines \n"), QStringLiteral("two lines")},
        {word + u'w', word + u'…'},
        {word + QStringLiteral(" more"), word + u'…'},
        {QStringLiteral("What does the third chapter say about trees"),
         QStringLiteral("What does the third chapter say about…")},
        {accented, accented},
        {{}, {}},
    };
    for (const auto& [message, title] : cases)
        EXPECT_EQ(ChatTitle::fromFirstMessage(message), title) << qPrintable(message);
}
