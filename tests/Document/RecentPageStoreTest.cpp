#include "RecentPageStore.h"

#include "UserDefaults.h"

#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

static const QString key = QStringLiteral("RecentPageStore.pageIndexByPath");

TEST(RecentPageStore, remembersEachFileByItsPathInTheFileOfSettings) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("settings.ini"));
    const QUrl report = QUrl::fromLocalFile(QStringLiteral("/home/me/Größe, 100% = a/b.pdf"));
    const QUrl other = QUrl::fromLocalFile(QStringLiteral("/home/me/other.pdf"));
    {
        UserDefaults defaults(path);
        EXPECT_EQ(RecentPageStore::pageIndex(defaults, report), std::nullopt);
        RecentPageStore::setPageIndex(defaults, 41, report);
        RecentPageStore::setPageIndex(defaults, 7, other);
        RecentPageStore::setPageIndex(defaults, 0, other);
    }
    const UserDefaults defaults(path);
    EXPECT_EQ(RecentPageStore::pageIndex(defaults, report), 41);
    EXPECT_EQ(RecentPageStore::pageIndex(defaults, other), 0);
}

TEST(RecentPageStore, aStoreThatIsNoDictionaryOfNumbersCountsAsEmpty) {
    const QTemporaryDir folder;
    UserDefaults defaults(folder.filePath(QStringLiteral("settings.ini")));
    const QUrl url = QUrl::fromLocalFile(QStringLiteral("/a.pdf"));
    for (const QVariant& spoilt : {QVariant(QStringLiteral("4")), QVariant(1.5), QVariant(true)}) {
        defaults.setDictionary(key, {{QStringLiteral("/a.pdf"), 3}, {QStringLiteral("/b.pdf"), spoilt}});
        EXPECT_EQ(RecentPageStore::pageIndex(defaults, url), std::nullopt) << spoilt.typeName();
    }
    defaults.setString(key, QStringLiteral("nonsense"));
    EXPECT_EQ(RecentPageStore::pageIndex(defaults, url), std::nullopt);
    RecentPageStore::setPageIndex(defaults, 9, url);
    EXPECT_EQ(RecentPageStore::pageIndex(defaults, url), 9);
    // A number that no document can have as a page index is no reason to forget the other files.
    defaults.setDictionary(key, {{QStringLiteral("/a.pdf"), 3}, {QStringLiteral("/b.pdf"), qlonglong(1) << 40}});
    EXPECT_EQ(RecentPageStore::pageIndex(defaults, url), 3);
    EXPECT_EQ(RecentPageStore::pageIndex(defaults, QUrl::fromLocalFile(QStringLiteral("/b.pdf"))), std::nullopt);
}
