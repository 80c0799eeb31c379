#include "PDFAnnotation.h"
#include "PDFViewCoordinator.h"
#include "PageMimeData.h"
#include "Palette.h"
#include "PdfFixtures.h"
#include "SidebarTest.h"

#include <QAccessible>
#include <QDrag>
#include <QScrollBar>

using ThumbnailSidebarTest = SidebarTest;

TEST_F(ThumbnailSidebarTest, clicksAndKeysSelectPagesAndGoToThem) {
    openPages(8);
    m_list->setFocus();
    const Qt::KeyboardModifiers none, shift = Qt::ShiftModifier, ctrl = Qt::ControlModifier;
    const auto clicking = [this](int row, Qt::KeyboardModifiers modifiers) {
        return [=, this] { click(row, modifiers); };
    };
    const auto typing = [this](Qt::Key code, Qt::KeyboardModifiers modifiers) {
        return [=, this] { key(code, modifiers); };
    };
    const struct {
        std::function<void()> action;
        const char* selected;
        int shown;   ///< by the viewer
        int focused; ///< in the list
    } steps[] = {
        {clicking(2, shift), "", 2, 2}, // there is nothing yet to select from
        {clicking(4, ctrl), "4", 2, 4},
        {clicking(4, ctrl), "", 2, 4},
        {clicking(6, shift), "456", 2, 6},
        {clicking(3, shift), "3456", 2, 3},
        {clicking(5, ctrl), "346", 2, 5},
        {clicking(1, none), "", 1, 1},
        {typing(Qt::Key_Down, none), "", 1, 2},
        {typing(Qt::Key_Down, shift), "23", 1, 3},
        {typing(Qt::Key_Down, shift), "234", 1, 4},
        {typing(Qt::Key_Up, shift), "23", 1, 3},
        {typing(Qt::Key_Down, ctrl), "23", 1, 4},
        {typing(Qt::Key_Space, none), "234", 1, 4},
        {typing(Qt::Key_Return, none), "234", 4, 4},
        {typing(Qt::Key_Escape, none), "", 4, 4},
        {typing(Qt::Key_End, none), "", 4, 7},
        {typing(Qt::Key_PageUp, shift), "567", 4, 5},
        {typing(Qt::Key_Home, ctrl | shift), "01234567", 4, 0},
        {typing(Qt::Key_PageDown, none), "", 4, 2},
        {typing(Qt::Key_A, ctrl), "01234567", 4, 2},
    };
    for (const auto& step : steps) {
        step.action();
        SCOPED_TRACE(&step - steps);
        EXPECT_EQ(selected().toStdString(), step.selected);
        EXPECT_EQ(m_view->currentPageIndex(), step.shown);
        EXPECT_EQ(m_list->focusedRow(), step.focused);
        EXPECT_EQ(m_sidebar->findChild<QWidget*>(QStringLiteral("selectionBar"))->isVisible(), *step.selected != 0);
    }
    QAccessibleInterface* pages = QAccessible::queryAccessibleInterface(m_list);
    EXPECT_EQ(pages->child(4)->text(QAccessible::Name), QStringLiteral("Page 5, current page"));
    EXPECT_TRUE(pages->child(3)->state().selected);
}

TEST_F(ThumbnailSidebarTest, pagesMoveAndGoByKeysInOneStepAndKeepTheirSelection) {
    openPages(6);
    QString told;
    QObject::connect(m_sidebar, &ThumbnailSidebar::announced, [&told](const QString& sentence) { told = sentence; });
    click(1, Qt::ControlModifier);
    click(3, Qt::ControlModifier);
    key(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(order(), QStringLiteral("135246"));
    EXPECT_EQ(selected(), QStringLiteral("34"));
    EXPECT_EQ(told, QStringLiteral("2 pages moved: they are now pages 4 to 5"));
    EXPECT_EQ(m_workspace->coordinator().pageIndicator(), QStringLiteral("1 of 6"));
    undo();
    EXPECT_EQ(order(), QStringLiteral("123456"));
    EXPECT_EQ(selected(), QStringLiteral("13"));
    key(Qt::Key_Delete);
    EXPECT_EQ(order(), QStringLiteral("1356"));
    EXPECT_EQ(selected(), QString());
    EXPECT_EQ(m_workspace->coordinator().pageIndicator(), QStringLiteral("1 of 4"));
    key(Qt::Key_Home);
    key(Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(order(), QStringLiteral("1356"));
    key(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(order(), QStringLiteral("3156"));
    EXPECT_EQ(m_list->focusedRow(), 1);
    EXPECT_EQ(told, QStringLiteral("Page 1 is now page 2"));
    EXPECT_EQ(m_workspace->coordinator().pageIndicator(), QStringLiteral("2 of 4"));
}

TEST_F(ThumbnailSidebarTest, draggingMovesWhatIsSelectedAndEscapeGivesUp) {
    openPages(5);
    const auto mouse = [this](QEvent::Type type, QPoint at) {
        QMouseEvent event(type, at, m_list->viewport()->mapToGlobal(at), Qt::LeftButton, Qt::LeftButton, {});
        QApplication::sendEvent(m_list->viewport(), &event);
    };
    // The platform of tests ends a drag at once: what it would do is sent here, with what has been taken hold of.
    const auto take = [&](int row) {
        const QPoint from = middle(row);
        mouse(QEvent::MouseButtonPress, from);
        mouse(QEvent::MouseMove, from + QPoint(0, 30));
        const auto* drag = m_list->findChildren<QDrag*>().constLast(); // the last turn's may be there still
        EXPECT_EQ(drag->mimeData()->text(), QString::number(row));
        const std::vector<int> rows = PageMimeData::from(drag->mimeData())->indices();
        const QImage picture = drag->pixmap().toImage();
        bool hasCount = false;
        for (int x = 0; x < picture.width(); ++x)
            hasCount |= picture.pixelColor(x, 14) == Palette::systemRed;
        EXPECT_EQ(hasCount, rows.size() > 1);
        return std::make_unique<PageMimeData>(m_document, rows, row);
    };
    constexpr Qt::DropActions actions = Qt::MoveAction | Qt::CopyAction;
    const auto over = [&](const QMimeData& data, QPoint at) {
        QDragEnterEvent enter(at, actions, &data, Qt::LeftButton, {});
        QApplication::sendEvent(m_list->viewport(), &enter);
        QDragMoveEvent move(at, actions, &data, Qt::LeftButton, {});
        QApplication::sendEvent(m_list->viewport(), &move);
        EXPECT_EQ(move.dropAction(), Qt::MoveAction);
        return m_list->landingGap();
    };
    const auto letGo = [&](const QMimeData& data, QPoint at) {
        over(data, at);
        QDropEvent event(at, actions, &data, Qt::LeftButton, {});
        QApplication::sendEvent(m_list->viewport(), &event);
        EXPECT_EQ(m_list->landingGap(), std::nullopt);
    };
    click(2);
    const auto one = take(0);
    EXPECT_EQ(over(*one, gapPlace(1)), 1);
    EXPECT_EQ(over(*one, gapPlace(2) - QPoint(0, 9)), 2);
    QDragLeaveEvent leave; // Escape
    QApplication::sendEvent(m_list->viewport(), &leave);
    EXPECT_EQ(m_list->landingGap(), std::nullopt);
    EXPECT_EQ(order(), QStringLiteral("12345"));
    letGo(*one, gapPlace(2));
    EXPECT_EQ(order(), QStringLiteral("21345"));
    undo();
    click(0, Qt::ControlModifier);
    click(1, Qt::ControlModifier);
    const auto two = take(1);
    // Held at the lower edge, or below it, the list scrolls to its end.
    over(*two, {60, m_list->viewport()->height() - 2});
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_list->landingGap() == 5; }));
    m_list->verticalScrollBar()->setValue(0);
    const QPoint bar = m_sidebar->findChild<QWidget*>(QStringLiteral("selectionBar"))->geometry().center();
    QDragEnterEvent below(bar, actions, two.get(), Qt::LeftButton, {});
    QApplication::sendEvent(m_sidebar, &below);
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_list->landingGap() == 5; }));
    QDropEvent end(bar, actions, two.get(), Qt::LeftButton, {});
    QApplication::sendEvent(m_sidebar, &end);
    EXPECT_EQ(order(), QStringLiteral("34512"));
    EXPECT_EQ(selected(), QStringLiteral("34"));
    undo();
    EXPECT_EQ(order(), QStringLiteral("12345"));
    m_list->verticalScrollBar()->setValue(0);
    QTest::qWait(200);
    EXPECT_EQ(m_list->verticalScrollBar()->value(), 0) << "nothing is held at the edge any more";
}

TEST_F(ThumbnailSidebarTest, whatIsDroppedIsUnderstoodOrDoesNothing) {
    openPages(4);
    const auto other = opened(TestPdf{.pageCount = 9}.write(m_folder.path(), QStringLiteral("other.pdf")));
    const struct {
        const char* text;
        int gap;
        bool isTaken;
        const char* order;
    } texts[] = {{"0", 2, true, "2134"}, {"+3", 0, true, "4123"},  {"1", 1, true, "1234"},   {"-1", 0, true, "1234"},
                 {"9", 0, true, "1234"}, {"1x", 0, false, "1234"}, {" 1", 0, false, "1234"}, {"", 0, false, "1234"}};
    for (const auto& each : texts) {
        QMimeData data;
        data.setText(QString::fromLatin1(each.text));
        EXPECT_EQ(drop(data, each.gap), each.isTaken) << each.text;
        EXPECT_EQ(order().toStdString(), each.order) << each.text;
        undo();
        EXPECT_FALSE(m_document->isDocumentEdited());
    }
    PageMimeData pages(other, {6, 4}, 4);
    EXPECT_TRUE(drop(pages, 1));
    EXPECT_EQ(order(), QStringLiteral("157234"));
    EXPECT_EQ(order(*other->pdfDocument()), QStringLiteral("123456789"));
    undo();
    QMimeData files;
    files.setUrls(
        {QUrl::fromLocalFile(path(QStringLiteral("other.pdf"))), QUrl::fromLocalFile(QStringLiteral("/a.txt"))});
    EXPECT_TRUE(drop(files, 4));
    EXPECT_TRUE(QTest::qWaitFor([this] { return order() == QStringLiteral("1234123456789"); }))
        << order().toStdString();
    undo();
    EXPECT_EQ(order(), QStringLiteral("1234"));
}

TEST_F(ThumbnailSidebarTest, aThumbnailShowsItsPageHoweverPagesMoveAndChange) {
    PdfFixture fixture;
    const struct {
        char name;
        QByteArray color;
    } colors[] = {{'r', "1 0 0"}, {'g', "0 1 0"}, {'b', "0 0 1"}, {'y', "1 1 0"}, {'m', "1 0 1"}, {'c', "0 1 1"}};
    for (const auto& each : colors)
        fixture.addPageWithContent(each.color + " rg 0 0 400 200 re f", "<< >>", {400, 200});
    fixture.setRootKey("/PageLabels", "<< /Nums [0 << /S /r >> 2 << /S /D >> 4 << /S /D /St 5 >>] >>");
    fixture.setPageKey(0, "/Rotate", "90");
    fixture.setPageKey(1, "/CropBox", "[0 0 100 200]");
    QFile file(path(QStringLiteral("colors.pdf")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(fixture.bytes());
    file.close();
    m_document = opened(QUrl::fromLocalFile(file.fileName()));
    showWorkspace();
    adopt();
    m_workspace->resize(900, 2200);
    const auto pdf = m_document->pdfDocument();
    /// The colours of the thumbnails; "-" for one that isn't there yet.
    const auto shown = [&] {
        std::string names;
        for (int row = 0; row < m_list->model().rowCount(); ++row) {
            const QImage image = m_list->picture(row);
            names += '-';
            for (const auto& each : colors) {
                const QList<QByteArray> parts = each.color.split(' ');
                const QColor color = QColor::fromRgbF(parts[0].toFloat(), parts[1].toFloat(), parts[2].toFloat());
                if (!image.isNull() && image.pixelColor(image.rect().center()) == color)
                    names.back() = each.name;
            }
        }
        return names;
    };
    const auto drawn = [&] { return QTest::qWaitFor([&] { return m_list->isDrawn() && shown().find('-') > 99; }); };
    ASSERT_TRUE(drawn()) << shown();
    EXPECT_EQ(shown(), "rgbymc");
    EXPECT_EQ(m_list->picture(0).size(), QSize(180, 360)); // turned
    EXPECT_EQ(m_list->picture(1).size(), QSize(180, 360)); // cropped
    EXPECT_EQ(m_list->picture(2).size(), QSize(280, 140));

    QStringList labels;
    for (int row = 0; row < 6; ++row)
        labels.append(m_list->model().label(row));
    EXPECT_EQ(labels.join(u','), QStringLiteral("i,ii,1,2,,")); // the last are what the pages are numbered
    EXPECT_EQ(m_list->model().name(0), QStringLiteral("page 1, label i"));

    m_sidebar->movePages({0, 4}, 3);
    EXPECT_EQ(shown(), "gbrmyc"); // at once, without drawing
    QCoreApplication::processEvents();
    m_sidebar->deletePages({1, 2});
    EXPECT_EQ(shown(), "gmyc");
    undo();
    EXPECT_TRUE(drawn());
    EXPECT_EQ(shown(), "gbrmyc");
    // Also when somebody moves pages and forgets the cache.
    pdf->insert(pdf->removePage(0), 5);
    EXPECT_EQ(shown(), "brmycg");
    ThumbnailCache::removeAll();
    EXPECT_EQ(shown(), "brmycg");

    const auto mark = std::make_shared<PDFAnnotation>(QRectF(50, 20, 300, 160), PDFAnnotationSubtype::square);
    mark->setInteriorColor(Qt::magenta);
    mark->setColor(Qt::magenta);
    pdf->page(0)->addAnnotation(mark);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown() == "mrmycg"; })) << shown();
    pdf->page(0)->removeAnnotation(mark);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown() == "brmycg"; })) << shown();
    pdf->page(0)->setRotation(90);
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_list->picture(0).size() == QSize(180, 360); }));
    m_sidebar->deletePages({0, 1, 2, 3, 4, 5});
    EXPECT_EQ(shown(), "");
}

TEST_F(ThumbnailSidebarTest, theSidebarIsShownHiddenAndKeepsItsWidth) {
    openPages(3);
    EXPECT_TRUE(m_sidebar->isVisible());
    EXPECT_EQ(button(QStringLiteral("toggleSidebar"))->toolTip(), QStringLiteral("Toggle Page Sidebar (Ctrl+Alt+S)"));
    m_list->setFocus();
    QTest::keyClick(m_list, Qt::Key_S, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_FALSE(m_sidebar->isVisible());
    EXPECT_TRUE(m_view->hasFocus());
    press(QStringLiteral("toggleSidebar"));
    EXPECT_TRUE(m_sidebar->isVisible());
    m_workspace->setShowsAssistant(true);
    auto* ofPanel = m_workspace->findChildren<QToolButton*>(QStringLiteral("toggleSidebarButton")).constLast();
    QTest::mouseClick(ofPanel, Qt::LeftButton);
    EXPECT_FALSE(m_workspace->showsSidebar());
}
