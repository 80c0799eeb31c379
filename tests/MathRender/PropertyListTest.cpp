#include "PropertyList.h"

#include <QByteArray>

#include <gtest/gtest.h>

TEST(PropertyList, whatIsWrittenIsReadAgain) {
    const QVariantMap list{
        {QStringLiteral("version"), QStringLiteral("1.3")},
        {QStringLiteral("a < b & \"c\" 𝑥"), QVariantMap{{QStringLiteral("empty"), QVariantMap()}}},
        {QStringLiteral("numbers"), QVariantList{-556LL, 0LL, 2.5, 1e-300}},
        {QStringLiteral("flags"), QVariantList{true, false}},
        {QStringLiteral("texts"), QVariantList{QString(), QStringLiteral(" spaces "), QVariantList()}},
    };
    const QByteArray xml = PropertyList::toXml(list);
    EXPECT_EQ(PropertyList::fromXml(xml), list);
    EXPECT_EQ(PropertyList::toXml(PropertyList::fromXml(xml)), xml);
}

TEST(PropertyList, listsOfOtherProgramsAreRead) {
    const QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<!DOCTYPE plist PUBLIC \"-//X//DTD PLIST 1.0//EN\" \"http://example.org/list.dtd\">\n"
                           "<plist version=\"1.0\">\n<!-- of a font -->\n<dict>\n"
                           "\t<key>one</key>\n\t<!-- the first -->\n\t<integer>1</integer>\n"
                           "\t<key>half</key>\n\t<real>0.5</real>\n\t<key>yes</key>\n\t<true></true>\n"
                           "</dict>\n</plist>\n";
    const QVariantMap expected{
        {QStringLiteral("one"), 1LL}, {QStringLiteral("half"), 0.5}, {QStringLiteral("yes"), true}};
    EXPECT_EQ(PropertyList::fromXml(xml), expected);
}

TEST(PropertyList, damageIsAnErrorWithItsLine) {
    const QByteArray nested = QByteArray("<plist><dict><key>a</key>") + QByteArray("<array>").repeated(100'000);
    const struct {
        const char* what;
        QByteArray xml;
    } damaged[] = {
        {"nothing", ""},
        {"another format", "{\"version\": \"1.3\"}"},
        {"another document", "<html><dict/></html>"},
        {"an array outermost", "<plist><array/></plist>"},
        {"an unfinished text", "<plist><dict><key>a</key><string>b"},
        {"a crossing", "<plist><dict><key>a</dict></key></plist>"},
        {"a value without a key", "<plist><dict><string>a</string></dict></plist>"},
        {"a key without a value", "<plist><dict><key>a</key></dict></plist>"},
        {"an unknown kind", "<plist><dict><key>a</key><date>2026</date></dict></plist>"},
        {"a number of letters", "<plist><dict><key>a</key><integer>ten</integer></dict></plist>"},
        {"a number out of range", "<plist><dict><key>a</key><integer>99999999999999999999</integer></dict></plist>"},
        {"an element in a text", "<plist><dict><key>a</key><string><b/></string></dict></plist>"},
        {"a second dictionary", "<plist><dict/><dict/></plist>"},
        {"something behind the end", "<plist><dict/></plist><plist/>"},
        {"deep nesting", nested},
    };
    for (const auto& sample : damaged) {
        try {
            const QVariantMap list = PropertyList::fromXml(sample.xml);
            ADD_FAILURE() << sample.what << " gave a list of " << list.size();
        } catch (const PropertyListError& error) {
            EXPECT_EQ(std::string(error.what()).rfind("line 1: ", 0), 0U) << sample.what << ": " << error.what();
        }
    }
    try {
        const QVariantMap list = PropertyList::fromXml("<plist>\n<dict>\n<key>a</key>\n<integer>x</integer></dict>");
        ADD_FAILURE() << list.size();
    } catch (const PropertyListError& error) {
        EXPECT_STREQ(error.what(), "line 4: x is not a number");
    }
}
