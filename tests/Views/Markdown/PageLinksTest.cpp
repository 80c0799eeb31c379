#include "PageLinks.h"

#include <QUrl>

#include <gtest/gtest.h>

/// The text with its mentions in brackets, and behind each the page that it leads to.
static std::string marked(const QString& text, int pageCount) {
    QString result = text;
    const auto mentions = PageLinks::find(text, pageCount);
    for (auto mention = mentions.rbegin(); mention != mentions.rend(); ++mention) {
        result.insert(mention->end, QStringLiteral("]%1").arg(mention->page));
        result.insert(mention->start, u'[');
    }
    return result.toStdString();
}

TEST(PageLinks, FindsThePagesThatATextNames) {
    const struct {
        QStringView text;
        const char* marked; ///< null where nothing is
    } cases[] = {
        {u"page 12 of 30", "[page 12]12 of 30"},
        {u"See Page 3.", "See [Page 3]3."},
        {u"(p. 7, PAGE\u00A02; p.30)", "([p. 7]7, [PAGE\u00A02]2; [p.30]30)"},
        {u"pages 3, 5 and 7", "[pages 3]3, [5]5 and [7]7"},
        {u"Pages 3 and 5, or 7, but not 8", "[Pages 3]3 and [5]5, or [7]7, but not 8"},
        {u"pages 1,2, & 3", "[pages 1]1,[2]2, & [3]3"},
        {u"pages 3 to 5 through 9", "[pages 3]3 to [5]5 through [9]9"},
        {u"page 3-5, pp. 3\u20135, pgs. 3 \u2014 5", "[page 3]3-[5]5, [pp. 3]3\u2013[5]5, [pgs. 3]3 \u2014 [5]5"},
        {u"pp. 23\u20135 and 4", "[pp. 23]23\u20135 and [4]4"},
        {u"pages 29, 31 and 30", "[pages 29]29, 31 and [30]30"},
        {u"pages 31, 2", "pages 31, [2]2"},
        {u"page 0 5, pages 0 and 1", "page 0 5, pages 0 and [1]1"},
        {u"on page 3, 5 people \u2014 and page 4 \u2014 6 of them, to 7",
         "on [page 3]3, 5 people \u2014 and [page 4]4 \u2014 6 of them, to 7"},
        {u"between page 3 and page 4's end", "between [page 3]3 and [page 4]4's end"},
        {u"pages 3, 5th, 6", "[pages 3]3, 5th, 6"},
        {u"12 pages, version 2, page two, pages, p.", nullptr},
        {u"page 1.5, page 1,5, pages 1,000, page 2nd, page 10%, page 3_a, page 3\u00E9", nullptr},
        {u"page 31, page -3, page  +3, page 99999999999999999999, page\n3", nullptr},
        {u"homepage 3, sub-page 3, a/page 3, x.page 3, \u00E9page 3, app. 3, page3, #page 3", nullptr},
        {u"page \u0663, page", nullptr},
    };
    for (const auto& each : cases) {
        const QString text = each.text.toString();
        EXPECT_EQ(marked(text, 30), each.marked ? each.marked : text.toStdString());
        EXPECT_TRUE(PageLinks::find(text, 0).empty());
    }
}

TEST(PageLinks, ReadsItsOwnAddressesOnly) {
    EXPECT_EQ(PageLinks::page(QUrl(PageLinks::address(12))), 12);
    for (const char* address :
         {"page:", "page:0", "page:-1", "page:1x", "page:99999999999", "http:12", "12", "page://12"})
        EXPECT_EQ(PageLinks::page(QUrl(QLatin1String(address))), std::nullopt) << address;
}
