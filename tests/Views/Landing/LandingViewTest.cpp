#include "LandingView.h"

#include "DroppedFile.h"
#include "FileOpenRouter.h"
#include "OpenDocumentCard.h"
#include "RecentThumbnailCell.h"
#include "ViewTest.h"

#include <QDropEvent>
#include <QFileDialog>
#include <QMimeData>
#include <QPushButton>

class LandingViewTest : public ViewTest {
protected:
    void TearDown() override { FileOpenRouter::setDestinations({}); }

    std::unique_ptr<LandingView> landingView() {
        return std::make_unique<LandingView>(m_controller, [this](const QUrl& url) { m_openedInPlace.append(url); });
    }

    static QList<RecentThumbnailCell*> cells(const LandingView& view) {
        QList<RecentThumbnailCell*> visible;
        for (auto* cell : view.findChildren<RecentThumbnailCell*>()) {
            if (cell->isVisible())
                visible.append(cell);
        }
        return visible;
    }

    /// What the window system does for a drag over the view and its end there.
    static void hover(LandingView& view, const QMimeData& data) {
        QDragEnterEvent enter(view.viewport()->rect().center(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view.viewport(), &enter);
    }
    static void drop(LandingView& view, const QMimeData& data) {
        QDropEvent event(view.viewport()->rect().center(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view.viewport(), &event);
    }

    QList<QUrl> m_openedInPlace;
};

TEST_F(LandingViewTest, recentsAreShownOnlyWhenThereAreAnyAndCanBeCleared) {
    const auto without = landingView();
    show(*without);
    EXPECT_FALSE(find<QWidget>(*without, QStringLiteral("recents"))->isVisible());

    opened(TestPdf().write(m_folder.path(), QStringLiteral("first.pdf")));
    opened(TestPdf().write(m_folder.path(), QStringLiteral("second part.pdf")));
    const auto view = landingView();
    show(*view);
    ASSERT_EQ(cells(*view).size(), 2);
    EXPECT_EQ(cells(*view).at(0)->text(), QStringLiteral("second part"));
    EXPECT_EQ(cells(*view).at(1)->text(), QStringLiteral("first"));

    const auto other = landingView(); // as of another window, in whose menu the same command is
    show(*other);
    QTest::mouseClick(find<QPushButton>(*view, QStringLiteral("clearRecents")), Qt::LeftButton);
    EXPECT_TRUE(cells(*view).isEmpty());
    EXPECT_TRUE(cells(*other).isEmpty());
    EXPECT_FALSE(find<QWidget>(*view, QStringLiteral("recents"))->isVisible());
    EXPECT_TRUE(m_controller.recentDocumentURLs().isEmpty());
}

TEST_F(LandingViewTest, aRecentFileShowsItsFirstPageAndOpensWithTheKeyboard) {
    const QUrl url = TestPdf().write(m_folder.path(), QStringLiteral("paper.pdf"));
    m_controller.noteNewRecentDocumentURL(url);
    QFile broken(m_folder.filePath(QStringLiteral("broken.pdf")));
    ASSERT_TRUE(broken.open(QFile::WriteOnly));
    broken.write("nothing");
    broken.close();
    m_controller.noteNewRecentDocumentURL(QUrl::fromLocalFile(broken.fileName()));

    const auto view = landingView();
    show(*view);
    ASSERT_EQ(cells(*view).size(), 2);
    RecentThumbnailCell* cell = cells(*view).at(1);
    ASSERT_TRUE(QTest::qWaitFor([cell] { return !cell->thumbnail().isNull(); }));
    EXPECT_EQ(cell->thumbnail().height(), 280);
    EXPECT_EQ(cell->thumbnail().width(), 216);
    EXPECT_TRUE(cells(*view).at(0)->thumbnail().isNull());
    EXPECT_FALSE(ThumbnailCache::image(ThumbnailCache::recentKey(url.toLocalFile())).isNull());

    // From the card's button the cells can be reached with Tab.
    find<QPushButton>(*view, QStringLiteral("selectFile"))->setFocus();
    for (int i = 0; i < 5 && !cell->hasFocus(); ++i)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    ASSERT_TRUE(cell->hasFocus());
    QTest::keyClick(cell, Qt::Key_Return);
    EXPECT_EQ(m_openedInPlace, QList<QUrl>{url});
}

TEST_F(LandingViewTest, withoutAWindowToFillTheControllerOpensTheFile) {
    const QUrl url = TestPdf().write(m_folder.path(), QStringLiteral("paper.pdf"));
    m_controller.noteNewRecentDocumentURL(url);
    LandingView view(m_controller, {});
    show(view);
    QTest::mouseClick(cells(view).constFirst(), Qt::LeftButton);
    ASSERT_EQ(m_presenter.shown.size(), 1U);
    EXPECT_EQ(m_presenter.shown.front()->fileURL(), url);
}

TEST_F(LandingViewTest, theOpenPanelGivesOneFile) {
    const QUrl url = TestPdf().write(m_folder.path(), QStringLiteral("chosen.pdf"));
    const auto view = landingView();
    show(*view);
    QTest::mouseClick(find<QPushButton>(*view, QStringLiteral("selectFile")), Qt::LeftButton);
    auto* panel = find<QFileDialog>(*view, QStringLiteral("openPanel"));
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->fileMode(), QFileDialog::ExistingFile);
    panel->selectFile(url.toLocalFile());
    ASSERT_TRUE(QMetaObject::invokeMethod(panel, "accept"));
    EXPECT_EQ(m_openedInPlace, QList<QUrl>{url});
}

TEST_F(LandingViewTest, aDropFromATemporaryFolderOpensACopyThatStays) {
    const QUrl dropped = TestPdf().write(m_folder.path(), QStringLiteral("Mail attachment.PDF"));
    const QUrl alsoDropped = TestPdf().write(m_folder.path(), QStringLiteral("second.pdf"));
    QMimeData data;
    data.setUrls({dropped, alsoDropped});
    const auto view = landingView();
    show(*view);
    const auto* card = find<OpenDocumentCard>(*view, QStringLiteral("openDocumentCard"));

    hover(*view, data);
    EXPECT_TRUE(card->isDropTargeted());
    drop(*view, data);
    EXPECT_FALSE(card->isDropTargeted());
    QFile::remove(dropped.toLocalFile());

    ASSERT_TRUE(QTest::qWaitFor([this] { return !m_openedInPlace.isEmpty(); }));
    ASSERT_EQ(m_openedInPlace.size(), 1) << "Of several files the first opens.";
    const QUrl copy = m_openedInPlace.constFirst();
    EXPECT_NE(copy, dropped);
    EXPECT_EQ(copy.fileName(), QStringLiteral("Mail attachment.PDF"));
    QFile file(copy.toLocalFile());
    ASSERT_TRUE(file.open(QFile::ReadOnly));
    EXPECT_EQ(file.readAll(), TestPdf().bytes());

    // A folder that others can look into was made for no drop, so its files are opened where they are.
    const QTemporaryDir shared(QStringLiteral("/var/tmp/quillo-test-XXXXXX"));
    const QUrl url = TestPdf().write(shared.path(), QStringLiteral("report.pdf"));
    EXPECT_NE(DroppedFile::keep(url), url);
    ASSERT_TRUE(QFile::setPermissions(shared.path(), QFile::permissions(shared.path()) | QFile::ReadGroup));
    EXPECT_EQ(DroppedFile::keep(url), url);
}

TEST_F(LandingViewTest, whatBecomesNoDocumentGoesToTheRouterAndWhatIsNoFileIsNotTaken) {
    QList<QUrl> previewed;
    FileOpenRouter::Destinations destinations;
    destinations.openPreview = [&previewed](const QUrl& url, bool) { previewed.append(url); };
    FileOpenRouter::setDestinations(std::move(destinations));
    QFile table(m_folder.filePath(QStringLiteral("table.xlsx")));
    ASSERT_TRUE(table.open(QFile::WriteOnly));
    table.close();
    const auto view = landingView();
    show(*view);

    QMimeData file;
    file.setUrls({QUrl::fromLocalFile(table.fileName())});
    hover(*view, file);
    drop(*view, file);
    ASSERT_TRUE(QTest::qWaitFor([&previewed] { return !previewed.isEmpty(); }));
    EXPECT_EQ(previewed.constFirst().fileName(), QStringLiteral("table.xlsx"));

    QMimeData address;
    address.setUrls({QUrl(QStringLiteral("https://example.org/a.pdf"))});
    hover(*view, address);
    EXPECT_FALSE(find<OpenDocumentCard>(*view, QStringLiteral("openDocumentCard"))->isDropTargeted());
    drop(*view, address);
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_openedInPlace.isEmpty());
    EXPECT_EQ(previewed.size(), 1);
}
