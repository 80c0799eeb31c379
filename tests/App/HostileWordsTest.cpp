#include "AppTest.h"

#include "AnnotatingPDFView.h"
#include "AssistantViewModel.h"
#include "AttachmentChip.h"
#include "ChatHistoryRow.h"
#include "ChatHistoryStore.h"
#include "LandingView.h"
#include "NoteAnnotation.h"
#include "PDFEditorWorkspaceView.h"
#include "PassingNotice.h"
#include "PdfFixtures.h"
#include "RecentThumbnailCell.h"
#include "RecoveryWindow.h"
#include "ShownWords.h"
#include "ThumbnailSidebar.h"
#include "UnsavedDocumentsDialog.h"

#include <QAbstractButton>
#include <QAction>
#include <QFile>
#include <QHelpEvent>
#include <QSet>
#include <QTimer>
#include <QToolTip>

#include <algorithm>
#include <functional>

namespace {

/// Shown as markup it is a picture and a fat "A"; "&B" would be a key, "[*]" the sign of changes and "%1" a place for
/// other words. Behind the line end a mark turns the direction.
const QString hostile = QStringLiteral("<img src=zq.png><b>A&B [*] %1\nzq\u202Etxt.exe");
/// As a reader sees it in one line.
const QString harmless = QStringLiteral("<img src=zq.png><b>A&B [*] %1 zqtxt.exe");

/// Everything of the program that shows the hostile words.
class HostileWordsTest : public AppTest {
protected:
    /// Words that `place` shows to a reader; those without any of a file or a document are no matter.
    void look(const QString& place, QString seen, bool isEdited = false) {
        if (!seen.contains(u"zq"))
            return;
        seen.remove(QChar(0x200B)); // a place to break a long word
        seen.replace(u'\n', u' ').replace(QChar::LineSeparator, u' ');
        if (isEdited) // what is edited stays as it is
            seen.remove(QChar(0x202E));
        EXPECT_TRUE(seen.contains(harmless)) << place.toStdString() << ": " << seen.toStdString();
        m_places.insert(place);
    }

    void lookEverywhere() {
        ShownWords::visitAll(
            [this](const QString& place, const QString& seen, bool isEdited) { look(place, seen, isEdited); });
        for (const QWidget* widget : QApplication::allWidgets()) {
            const auto* button = qobject_cast<const QAbstractButton*>(widget);
            if (button && button->text().contains(u"zq")) {
                EXPECT_TRUE(button->shortcut().isEmpty()) << button->shortcut().toString().toStdString();
            }
        }
    }

    /// Looks while the question that `ask` asks is on the screen, then gives no answer to it.
    void lookAt(const std::function<void()>& ask) {
        QTimer::singleShot(0, [this] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            m_places.remove(QStringLiteral("QLabel text"));
            lookEverywhere();
            EXPECT_TRUE(m_places.contains(QStringLiteral("QLabel text"))) << dialog->objectName().toStdString();
            dialog->reject();
        });
        ask();
    }

    /// Shows a sheet or a window by a command, looks at it, and closes it.
    void lookAtWindowOf(QAction* action) {
        ASSERT_NE(action, nullptr);
        const QWidgetList before = QApplication::topLevelWidgets();
        action->trigger();
        settle();
        lookEverywhere();
        int opened = 0;
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (before.contains(window) || !window->isVisible())
                continue;
            ++opened;
            window->close();
        }
        EXPECT_EQ(opened, 1) << action->objectName().toStdString();
        settle();
    }

    /// A form whose file, outline, information, page labels and field have that name.
    QUrl hostileForm() {
        PdfFixture pdf;
        pdf.addPage({});
        pdf.addTextField(0, QStringLiteral("field"), QRectF(100, 600, 200, 40), {},
                         "/TU " + PdfFixture::textString(hostile));
        pdf.setOutline({{hostile, 0}});
        pdf.setInfo("/Title", hostile);
        pdf.setPageLabels("[0 << /P " + PdfFixture::textString(hostile) + " >>]");
        return write(QStringLiteral(".pdf"), pdf.bytes());
    }

    QUrl write(const QString& suffix, const QByteArray& bytes) {
        QFile file(m_folder.filePath(hostile + suffix));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return QUrl::fromLocalFile(file.fileName());
    }

    [[nodiscard]] std::string places() const { return m_places.values().join(u',').toStdString(); }

    QSet<QString> m_places;
};

TEST_F(HostileWordsTest, areShownToTheLetterAndMarkNoKeys) {
    const QUrl form = hostileForm();
    using Role = AssistantTurn::Role;
    ChatSession session;
    session.title = hostile;
    session.turns = {{QUuid::createUuid(), Role::user, hostile}, {QUuid::createUuid(), Role::error, hostile}};
    ChatHistoryStore::save({session}, form.toLocalFile());
    launch();
    LostDocument lost;
    lost.description.displayName = hostile;
    lost.description.originalPath = form.toLocalFile();
    RecoveryWindow recovery({lost});
    const UnsavedDocumentsDialog unsaved({{hostile, hostile}, {hostile, hostile}}, nullptr);
    const ChatHistoryRow chat(hostile, {}, false);
    AttachmentChip chip;
    chip.setName(hostile, false);
    open(this->file(QStringLiteral("other.pdf")));
    open(form);

    PDFView& view = *window()->currentContentView()->workspace()->pdfView();
    const auto page = document(1)->pdfDocument()->page(0);
    const QPoint point = view.convertFromPage(QPointF(200, 620), *page).toPoint();
    QHelpEvent help(QEvent::ToolTip, point, view.viewport()->mapToGlobal(point));
    QApplication::sendEvent(view.viewport(), &help);
    look(QStringLiteral("tip of a field"), ShownWords::guessed(QToolTip::text()));
    const auto note = std::make_shared<NoteAnnotation>(QRectF(100, 300, 150, 150));
    note->setContents(hostile);
    page->addAnnotation(note);
    settle();
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, view.convertFromPage(QPointF(175, 375), *page).toPoint());
    lookEverywhere(); // before the editor goes
    for (const QAction* title : window()->menuBar()->actions())
        Q_EMIT title->menu()->aboutToShow();
    LandingView landing(m_app->controller(), {});
    landing.show();
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return landing.findChild<RecentThumbnailCell*>(QStringLiteral("recent-") + form.toLocalFile()) != nullptr;
    }));
    PDFEditorWorkspaceView* workspace = window()->currentContentView()->workspace();
    workspace->setShowsAssistant(true);
    workspace->assistant()->attach(write(QStringLiteral(".txt"), "words"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return workspace->assistant()->attachmentName().has_value(); }));
    workspace->notice().announce(hostile);
    const auto reading = m_app->presenter().showReading(hostile, [] {});
    DocumentDialogs dialogs;
    dialogs.presentError(window(), hostile, hostile);
    dialogs.presentPrinting(window(), {hostile}, [](bool) {});
    lookEverywhere();
    for (const char* place :
         {"QLabel text", "ElidedLabel text", "ElidedLabel toolTip", "InlineFreeTextEditor plainText", "QMenu entry",
          "QMenu tip of an entry", "SelectableText plainText", "ChatHistoryRow text", "ChatHistoryRow toolTip",
          "RecentThumbnailCell text", "RecentThumbnailCell toolTip", "QListWidget row", "QListWidget tip of a row",
          "tip of a field", "DocumentWindow windowTitle"})
        EXPECT_TRUE(m_places.contains(QLatin1String(place))) << place << " is not among " << places();
    for (const char* place : {"tab", "tip of a tab"}) {
        EXPECT_TRUE(std::any_of(m_places.begin(), m_places.end(), [place](const QString& each) {
            return each.endsWith(u' ' + QLatin1String(place));
        })) << place;
    }

    for (const char* sheet : {"editBookmarks", "editMetadata", "addWatermark", "compressDocument", "setPassword"})
        lookAtWindowOf(workspace->sidebar().findChild<QAction*>(QLatin1String(sheet)));
    lookAtWindowOf(command(QStringLiteral("print")));
    lookAtWindowOf(command(QStringLiteral("settings")));
    workspace->findChild<QAction*>(QStringLiteral("chatHistory"))->trigger();
    lookEverywhere();
    open(write(QStringLiteral(".xlsx"), "no sheets"));
    lookEverywhere();
    for (const char* place : {"BookmarkList row", "BookmarkList tip of a row", "QLineEdit text",
                              "QMainWindow windowTitle", "QPrintDialog windowTitle"})
        EXPECT_TRUE(m_places.contains(QLatin1String(place))) << place << " is not among " << places();

    lookAt([&] { dialogs.askToSave(nullptr, hostile); });
    lookAt([&] { dialogs.askAboutChangedFile(nullptr, hostile); });
    lookAt([&] { dialogs.askAboutSignatures(nullptr, hostile); });
    lookAt([&] { dialogs.askToReload(nullptr, hostile); });
    lookAt([&] { dialogs.askToRevert(nullptr, hostile); });
    lookAt([&] { dialogs.offerSaveAs(nullptr, QStringLiteral("It failed."), hostile); });
}

} // namespace
