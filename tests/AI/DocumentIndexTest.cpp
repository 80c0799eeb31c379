#include "DocumentIndex.h"

#include "ChatTitle.h"
#include "DocumentText.h"
#include "PDFDocument.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PageStrings.h"
#include "PdfFixtures.h"
#include "UserCharacters.h"

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
    return match ? match->title : u"none"_qs;
}

} // namespace

TEST(DocumentIndexSearch, TakesTheFirstHitOfEachPageUpToTheLimit) {
    PdfFixture fixture;
    const QString filler(60, u'x');
    fixture.addPage({u"Needle at the start"_qs, u"of two lines, and a needle or more"_qs});
    fixture.addPage({});
    fixture.addPage({filler + u"NEEDLE"_qs + filler}, {2000, 792});
    fixture.addPage({u"one more needle"_qs});
    const auto document = PDFDocument::fromData(fixture.bytes());
    const std::vector<SearchMatch> expected{
        {1, u"Needle at the start of two lines, and a needle"_qs},
        {3, QString(40, u'x') + u"NEEDLE"_qs + QString(40, u'x')},
        {4, u"one more needle"_qs},
    };
    EXPECT_EQ(DocumentIndex::search(*document, u"nEEdle"_qs, 5), expected);
    EXPECT_EQ(DocumentIndex::search(*document, u"needle"_qs, 2).size(), 2U);
    EXPECT_EQ(DocumentIndex::search(*document, u"start\nof"_qs, 5).size(), 1U);
    for (const QString& nowhere : {QString(), u"no such"_qs, QString(1 << 20, u'n'), QString(QChar(0xD83D))})
        EXPECT_TRUE(DocumentIndex::search(*document, nowhere, 5).empty());
    EXPECT_TRUE(DocumentIndex::search(PDFDocument(), u"needle"_qs, 5).empty());
}

TEST(DocumentIndexSearch, ReadsNoPageBehindTheLastHitAndKeepsWhatItReadWithinTheLimit) {
    PdfFixture fixture;
    for (int i = 0; i < 4; ++i)
        fixture.addPage({u"needle %1"_qs.arg(i)});
    const auto document = PDFDocument::fromData(fixture.bytes());
    // A page put into the place of another is seen at once, whatever was kept.
    const auto strings = std::make_shared<PageStrings>(20); // two pages and a bit
    const auto pages = [&](const QString& query) {
        QStringList found;
        for (const SearchMatch& match : DocumentIndex::search(DocumentText(*document, strings), query, 5))
            found.append(QString::number(match.page));
        return found.join(u' ');
    };
    EXPECT_EQ(pages(u"needle"_qs), u"1 2 3 4"_qs);
    EXPECT_EQ(pages(u"needle"_qs), u"1 2 3 4"_qs);
    document->insert(document->removePage(3), 0);
    EXPECT_EQ(pages(u"needle 3"_qs), u"1"_qs);
    document->removePage(1);
    EXPECT_EQ(pages(u"needle 0"_qs), QString());

    std::stop_source stopped;
    stopped.request_stop();
    EXPECT_TRUE(DocumentIndex::search(DocumentText(*document, nullptr, stopped.get_token()), u"needle"_qs, 5).empty());
}

TEST(DocumentIndexOutline, ListsParentsFirstAndTheChildrenOfBlankItems) {
    PdfFixture fixture;
    fixture.addPage({});
    fixture.setOutline({{u"One"_qs, 0, {{u" \t"_qs, 0, {{u" Deep "_qs, 0}}}}}, {u"\n"_qs, 0}, {u"Two"_qs, 0}});
    QStringList titles;
    for (const auto& entry : DocumentIndex::flattenedOutline(*PDFDocument::fromData(fixture.bytes())))
        titles.append(entry.title);
    EXPECT_EQ(titles.size(), 4);
    EXPECT_EQ(titles.value(1), u" Deep "_qs);
    EXPECT_EQ(titles.value(3), u"Two"_qs);
    EXPECT_TRUE(DocumentIndex::flattenedOutline(PDFDocument()).empty());
}

TEST(DocumentIndexOutline, MatchesExactlyThenByContainmentThenByWords) {
    EXPECT_EQ(best(u"\t SETUP "_qs, {u"The setup guide"_qs, u"Setup"_qs}), u"Setup"_qs);
    EXPECT_EQ(best(u"setup"_qs, {u" Setup"_qs, u"x"_qs}), u" Setup"_qs);
    EXPECT_EQ(best(u"show me the setup please"_qs, {u"Intro"_qs, u"Setup"_qs}), u"Setup"_qs);
    EXPECT_EQ(best(u"guide of setup"_qs, {u"long setup"_qs, u"guide here"_qs}), u"long setup"_qs);
    EXPECT_EQ(best(u"fast setup guide"_qs, {u"a setup"_qs, u"guide to setup"_qs}), u"guide to setup"_qs);
    EXPECT_EQ(best(u"setup, now"_qs, {u"setup or"_qs}), u"none"_qs) << "punctuation stays on the words";
    EXPECT_EQ(best(u" \t "_qs, {u"a b"_qs}), u"none"_qs);
    EXPECT_EQ(best(u"x"_qs, {}), u"none"_qs);
}

TEST(UserCharactersTest, CountsClustersAlsoFarIntoALongText) {
    const QString family = u"👨‍👩‍👧"_qs;
    const QString accented = u"e\u0301"_qs;
    EXPECT_EQ(UserCharacters::count(family + accented + u"x"_qs), 3);
    QString text;
    for (int i = 0; i < 300; ++i)
        text += family;
    EXPECT_EQ(UserCharacters::endOfFirst(text, 250), 250 * family.size());
    EXPECT_EQ(UserCharacters::endOfFirst(text, 300), text.size());
    EXPECT_EQ(UserCharacters::before(text, text.size(), 250), 50 * family.size());
    EXPECT_EQ(UserCharacters::before(text, 2 * family.size(), 3), 0);
    EXPECT_EQ(UserCharacters::after(text, text.size() + 7, 3), text.size());
}

TEST(ChatTitleTest, CutsBetweenWords) {
    const QString word42(42, u'w');
    const struct {
        QString message;
        QString title;
    } cases[] = {
        {u"  two\nlines \n"_qs, u"two lines"_qs},
        {word42, word42},
        {word42 + u"w"_qs, word42 + u"…"_qs},
        {word42 + u" more"_qs, word42 + u"…"_qs},
        {u"What does the third chapter say about trees"_qs, u"What does the third chapter say about…"_qs},
        {u"é"_qs.normalized(QString::NormalizationForm_D).repeated(42),
         u"é"_qs.normalized(QString::NormalizationForm_D).repeated(42)},
        {QString(), QString()},
    };
    for (const auto& [message, title] : cases)
        EXPECT_EQ(ChatTitle::fromFirstMessage(message), title) << qPrintable(message);
}
