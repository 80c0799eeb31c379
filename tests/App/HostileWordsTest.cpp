#include "AppTest.h"

#include "AnnotatingPDFView.h"
#include "AttachmentChip.h"
#include "ChatHistoryRow.h"
#include "LandingView.h"
#include "NoteAnnotation.h"
#include "PDFEditorWorkspaceView.h"
#include "PdfFixtures.h"
#include "RecentThumbnailCell.h"
#include "RecoveryWindow.h"
#include "UnsavedDocumentsDialog.h"

#include <QAbstractButton>
#include <QAction>
#include <QFile>
#include <QHelpEvent>
#include <QLabel>
#include <QListWidget>
#include <QSet>
#include <QTabBar>
#include <QTextDocumentFragment>
#include <QTextEdit>
#include <QTimer>
#include <QToolTip>

#include <functional>

namespace {

/// Shown as markup it is a picture and a fat "A"; "&B" would be a key.
const QString hostile = QStringLiteral("<img src=zq.png><b>A&B");
const QString mark = QStringLiteral("zq.png");

/// Everything of the program that shows the hostile words.
class HostileWordsTest : public AppTest {
protected:
    /// What a reader sees of a text whose format Qt guesses.
    static QString guessed(const QString& text) {
        return Qt::mightBeRichText(text) ? QTextDocumentFragment::fromHtml(text).toPlainText() : text;
    }

    /// Words that `place` shows to a reader, as he sees them; those without any of a file or a document are no matter.
    void look(const char* place, const QString& seen, const QString& expected = hostile) {
        if (!seen.contains(QLatin1String("zq")) && !seen.contains(QLatin1String("A&B")))
            return;
        EXPECT_TRUE(seen.contains(expected)) << place << ": " << seen.toStdString();
        m_places.insert(QLatin1String(place));
    }

    void lookEverywhere() {
        const QString escaped = QString(hostile).replace(u'&', QStringLiteral("&&"));
        const QWidgetList widgets = QApplication::allWidgets();
        for (const QWidget* widget : widgets) {
            look("tip", guessed(widget->toolTip()));
            if (const auto* label = qobject_cast<const QLabel*>(widget))
                look("label", label->textFormat() == Qt::PlainText ? label->text() : guessed(label->text()));
            if (const auto* edit = qobject_cast<const QTextEdit*>(widget))
                look("editor", edit->toPlainText());
            const auto* button = qobject_cast<const QAbstractButton*>(widget);
            if (button && button->text().contains(mark)) {
                look("button", button->text());
                EXPECT_TRUE(button->shortcut().isEmpty()) << button->shortcut().toString().toStdString();
            }
            for (const QAction* action : widget->actions()) {
                look("entry", action->text(), escaped);
                look("tip of an entry", guessed(action->toolTip()));
            }
            if (const auto* tabs = qobject_cast<const QTabBar*>(widget)) {
                for (int tab = 0; tab < tabs->count(); ++tab) {
                    look("tab", tabs->tabText(tab), escaped);
                    look("tip of a tab", guessed(tabs->tabToolTip(tab)));
                }
            }
            if (const auto* list = qobject_cast<const QListWidget*>(widget)) {
                for (int row = 0; row < list->count(); ++row)
                    look("tip of a row", guessed(list->item(row)->toolTip()));
            }
        }
    }

    /// Looks while the question that `ask` asks is on the screen, then gives no answer to it.
    void lookAt(const std::function<void()>& ask) {
        QTimer::singleShot(0, [this] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            m_places.remove(QStringLiteral("label"));
            lookEverywhere();
            EXPECT_TRUE(m_places.contains(QStringLiteral("label"))) << dialog->objectName().toStdString();
            dialog->reject();
        });
        ask();
    }

    QSet<QString> m_places;
};

TEST_F(HostileWordsTest, areShownToTheLetterAndMarkNoKeys) {
    PdfFixture pdf;
    pdf.addPage({});
    pdf.addTextField(0, QStringLiteral("field"), QRectF(100, 600, 200, 40), {}, "/TU (" + hostile.toLatin1() + ")");
    const QUrl form = QUrl::fromLocalFile(m_folder.filePath(hostile + QStringLiteral(".pdf")));
    QFile file(form.toLocalFile());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(pdf.bytes());
    file.close();
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
    look("tip of a field", guessed(QToolTip::text()));
    const auto note = std::make_shared<NoteAnnotation>(QRectF(100, 300, 150, 150));
    note->setContents(hostile);
    page->addAnnotation(note);
    settle();
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, view.convertFromPage(QPointF(175, 375), *page).toPoint());
    for (const QAction* title : window()->menuBar()->actions())
        Q_EMIT title->menu()->aboutToShow();
    LandingView landing(m_app->controller(), {});
    landing.show();
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return landing.findChild<RecentThumbnailCell*>(QStringLiteral("recent-") + form.toLocalFile()) != nullptr;
    }));
    DocumentDialogs dialogs;
    dialogs.presentError(window(), hostile, hostile);
    dialogs.presentPrinting(window(), {hostile}, [](bool) {});
    lookEverywhere();
    for (const char* place : {"tip", "label", "editor", "button", "entry", "tip of an entry", "tab", "tip of a tab",
                              "tip of a row", "tip of a field"})
        EXPECT_TRUE(m_places.contains(QLatin1String(place))) << place;

    lookAt([&] { dialogs.askToSave(nullptr, hostile); });
    lookAt([&] { dialogs.askAboutChangedFile(nullptr, hostile); });
    lookAt([&] { dialogs.askAboutSignatures(nullptr, hostile); });
    lookAt([&] { dialogs.askToReload(nullptr, hostile); });
    lookAt([&] { dialogs.askToRevert(nullptr, hostile); });
    lookAt([&] { dialogs.offerSaveAs(nullptr, QStringLiteral("It failed."), hostile); });
}

} // namespace
