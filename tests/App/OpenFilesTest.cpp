#include "AppTest.h"

#include "PreviewWindowController.h"
#include "RecentPageStore.h"
#include "RecentScaleStore.h"

class OpenFilesTest : public AppTest {};

TEST_F(OpenFilesTest, whatCantBeOpenedGetsASentence) {
    const auto missing = [this](const char* name) { return QUrl::fromLocalFile(path(name)); };
    const std::pair<QUrl, const char*> rows[] = {
        {missing("missing.pdf"), "doesn't exist"},
        {missing("missing"), "There is no file “missing”."},
        {write("fake.pdf", QByteArray("no pdf ").repeated(500)), "“fake.pdf” couldn't be opened."},
        {write("notes.docx", "PK"), "Couldn't Open “notes.docx” This file couldn't be converted to a PDF."},
        {missing("gone.png"), "Couldn't Open “gone.png” The file doesn't"},
        {QUrl(QStringLiteral("https://example.org/a.pdf")), "Only files on this computer"},
        {QUrl(QStringLiteral("https://example.org/a")), "isn't a file on this computer"},
    };
    launch();
    for (const auto& [url, sentence] : rows) {
        open(url);
        const std::string told = m_dialogs->takeCalls();
        EXPECT_NE(told.find(sentence), std::string::npos) << told << ", not " << sentence;
    }
    EXPECT_TRUE(m_app->controller().documents().empty());
    EXPECT_TRUE(landingIsVisible());
}

TEST_F(OpenFilesTest, whatIsNotConvertedGetsAWindowOfItsOwn) {
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("papers.pdf")));
    launch({write("table.xlsx", "junk"), write("x.zip", "PK"), QUrl::fromLocalFile(path("papers.pdf"))});
    const auto& windows = PreviewWindowController::openControllers();
    ASSERT_EQ(windows.size(), 3U);
    EXPECT_EQ(windows[0]->window()->windowTitle(), QStringLiteral("table.xlsx"));
    for (std::size_t i = 0; i < 3; ++i) {
        const QWidget& window = *windows[i]->window();
        EXPECT_EQ(window.findChild<QWidget*>(QStringLiteral("previewAskButton")) != nullptr, i == 0) << i;
    }
    while (!windows.empty()) {
        EXPECT_FALSE(landingIsVisible());
        windows.front()->window()->close();
        settle();
    }
    EXPECT_TRUE(landingIsVisible());
    open(write("other.zip", "PK"));
    EXPECT_TRUE(landingIsVisible()); // it goes for documents only
}

TEST_F(OpenFilesTest, anotherStartHandsItsFilesOverWhateverTheirNamesAndABadOneBothersNone) {
    QStringList handedOver;
    for (const QUrl& url : {file("100% ä.pdf"), write("bad.pdf", "x"), file("a#1.pdf", {.isDamaged = true})})
        handedOver.append(url.toString(QUrl::FullyEncoded));
    m_app->openFromOtherStart(handedOver, {});
    launch();
    EXPECT_EQ(tabNames(), "100% ä.pdf, a#1.pdf");
    EXPECT_NE(m_dialogs->takeCalls(), "");
}

TEST_F(OpenFilesTest, clearingTheRecentFilesForgetsTheirPagesAndScales) {
    const QUrl url = file("a.pdf");
    launch({url});
    RecentPageStore::setPageIndex(m_app->defaults(), 1, url);
    RecentScaleStore::setScale(m_app->defaults(), 1.5, url);
    auto* const recents = window()->findChild<QMenu*>(QStringLiteral("openRecent"));
    Q_EMIT qobject_cast<QMenu*>(recents->parent())->aboutToShow();
    recents->actions().last()->trigger();
    EXPECT_TRUE(m_app->controller().recentDocumentURLs().isEmpty());
    EXPECT_EQ(RecentPageStore::pageIndex(m_app->defaults(), url), std::nullopt);
    EXPECT_EQ(RecentScaleStore::scale(m_app->defaults(), url), std::nullopt);
}
