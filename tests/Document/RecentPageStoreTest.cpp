#include "RecentPageStore.h"

#include "FolderTest.h"
#include "UserDefaults.h"

namespace {

class RecentPageStoreTest : public FolderTest {};

TEST_F(RecentPageStoreTest, remembersEachFileByItsPathUnlessTheStoreIsNoDictionaryOfNumbers) {
    UserDefaults defaults(path("settings.ini"));
    const QString key = QStringLiteral("RecentPageStore.pageIndexByPath");
    const QString a = QStringLiteral("/home/me/Größe, 100% = a/b.pdf"), b = QStringLiteral("/b.pdf");
    const auto page = [&defaults](const QString& file) {
        return RecentPageStore::pageIndex(defaults, QUrl::fromLocalFile(file));
    };
    EXPECT_EQ(page(a), std::nullopt);
    for (const QVariant& spoilt : {QVariant(QStringLiteral("4")), QVariant(1.5), QVariant(true)}) {
        defaults.setDictionary(key, {{a, 3}, {b, spoilt}});
        EXPECT_EQ(page(a), std::nullopt) << spoilt.typeName();
    }
    defaults.setString(key, QStringLiteral("nonsense"));
    EXPECT_EQ(page(a), std::nullopt);
    RecentPageStore::setPageIndex(defaults, 9, QUrl::fromLocalFile(a));
    RecentPageStore::setPageIndex(defaults, 0, QUrl::fromLocalFile(b));
    EXPECT_EQ(page(a), 9);
    EXPECT_EQ(page(b), 0);
    // A number that no document can have as a page index is no reason to forget the other files.
    defaults.setDictionary(key, {{a, 3}, {b, qlonglong(1) << 40}});
    EXPECT_EQ(page(a), 3);
    EXPECT_EQ(page(b), std::nullopt);
}

} // namespace
