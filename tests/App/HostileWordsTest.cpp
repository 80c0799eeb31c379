#include "AppTest.h"

#include "AssistantViewModel.h"
#include "ChatHistoryStore.h"
#include "LandingView.h"
#include "PdfFixtures.h"
#include "RecentThumbnailCell.h"
#include "RecoveryWindow.h"
#include "ThumbnailSidebar.h"
#include "UnsavedDocumentsDialog.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMetaProperty>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <QTextDocumentFragment>
#include <QTextEdit>
#include <QTimer>
#include <QToolButton>
#include <QToolTip>
#include <QWindow>

namespace {

/// Shown as markup it is a picture and a fat "A"; "&B" would be a key, "[*]" the sign of changes and "%1" a place for
/// other words. Behind the line end a mark turns the direction.
const QString hostile = QStringLiteral("<img src=zq.png><b>A&B [*] %1\nzq\u202Etxt.exe");
/// As a reader sees it in one line.
const QString harmless = QStringLiteral("<img src=zq.png><b>A&B [*] %1 zqtxt.exe");

/// What a reader sees of a text whose format Qt guesses.
QString guessed(const QString& text) {
    return Qt::mightBeRichText(text) ? QTextDocumentFragment::fromHtml(text).toPlainText() : text;
}

QString withoutKeys(const QString& text) {
    QString seen;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'&' && ++i == text.size())
            break;
        seen += text[i];
    }
    return seen;
}

/// Whether the style draws its text, which makes keys of "&".
bool drawsKeys(const QWidget& widget) {
    return qobject_cast<const QPushButton*>(&widget) || qobject_cast<const QToolButton*>(&widget) ||
           qobject_cast<const QCheckBox*>(&widget) || qobject_cast<const QRadioButton*>(&widget) ||
           qobject_cast<const QGroupBox*>(&widget) || qobject_cast<const QMenu*>(&widget);
}

bool isEditor(const QWidget& widget) {
    return qobject_cast<const QLineEdit*>(&widget) || qobject_cast<const QTextEdit*>(&widget) ||
           qobject_cast<const QPlainTextEdit*>(&widget);
}

QString seenProperty(const QWidget& widget, const QString& name, const QString& value) {
    if (name == u"toolTip" || name == u"whatsThis")
        return guessed(value);
    if (name == u"windowTitle")
        return widget.windowHandle() ? widget.windowHandle()->title() : value;
    const auto* label = qobject_cast<const QLabel*>(&widget);
    if (label && name == u"text") {
        const QString words = label->textFormat() == Qt::PlainText ? value : guessed(value);
        return label->buddy() ? withoutKeys(words) : words;
    }
    return drawsKeys(widget) && (name == u"text" || name == u"title") ? withoutKeys(value) : value;
}

/// Other forms of what is visited, or nothing that is shown.
bool isShown(const QWidget& widget, const QString& name) {
    static const QSet<QString> others{QStringLiteral("objectName"),     QStringLiteral("accessibleName"),
                                      QStringLiteral("styleSheet"),     QStringLiteral("accessibleDescription"),
                                      QStringLiteral("windowFilePath"), QStringLiteral("windowIconText"),
                                      QStringLiteral("html"),           QStringLiteral("markdown")};
    return !others.contains(name) && !qobject_cast<const QMessageBox*>(&widget); // whose labels are met
}

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

    /// What the widget alone shows, found by its properties, entries and models, so that one that comes to be later is
    /// met as well.
    void lookAt(const QWidget& widget) {
        const QMetaObject& meta = *widget.metaObject();
        const auto show = [&](const char* what, const QString& seen) {
            look(QLatin1String(meta.className()) + u' ' + QLatin1String(what), seen, isEditor(widget));
        };
        for (int i = 0; i < meta.propertyCount(); ++i) {
            const QMetaProperty property = meta.property(i);
            const QString name = QLatin1String(property.name());
            if (property.typeId() == QMetaType::QString && isShown(widget, name))
                show(property.name(), seenProperty(widget, name, property.read(&widget).toString()));
        }
        for (const QAction* action : widget.actions()) {
            show("entry", withoutKeys(action->text()));
            show("tip of an entry", guessed(action->toolTip()));
        }
        const auto* tabs = qobject_cast<const QTabBar*>(&widget);
        for (int tab = 0; tabs && tab < tabs->count(); ++tab) {
            show("tab", withoutKeys(tabs->tabText(tab)));
            show("tip of a tab", guessed(tabs->tabToolTip(tab)));
        }
        const auto* view = qobject_cast<const QAbstractItemView*>(&widget);
        const auto* choice = qobject_cast<const QComboBox*>(&widget);
        const QAbstractItemModel* model = view ? view->model() : choice ? choice->model() : nullptr;
        constexpr int mostRows = 50;
        for (int row = 0; model && row < std::min(model->rowCount(), mostRows); ++row) {
            for (int column = 0; column < model->columnCount(); ++column) {
                const QModelIndex index = model->index(row, column);
                show("row", index.data().toString());
                show("tip of a row", guessed(index.data(Qt::ToolTipRole).toString()));
            }
        }
        const auto* button = qobject_cast<const QAbstractButton*>(&widget);
        EXPECT_FALSE(button && button->text().contains(u"zq") && !button->shortcut().isEmpty()) << meta.className();
    }

    void lookEverywhere() {
        for (const QWidget* widget : QApplication::allWidgets())
            lookAt(*widget);
    }

    /// Looks while the question that `ask` asks is on the screen, then gives no answer to it.
    void lookAtQuestion(const std::function<void()>& ask) {
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
        return writeHostile(".pdf", pdf.bytes());
    }

    /// A file of that name.
    QUrl writeHostile(const char* suffix, const QByteArray& bytes) { return write(hostile.toUtf8() + suffix, bytes); }

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
    open(file("other.pdf"));
    open(form);

    PDFView& view = *this->view();
    const auto page = document(1)->pdfDocument()->page(0);
    const QPoint point = view.convertFromPage(QPointF(200, 620), *page).toPoint();
    QHelpEvent help(QEvent::ToolTip, point, view.viewport()->mapToGlobal(point));
    QApplication::sendEvent(view.viewport(), &help);
    look(QStringLiteral("tip of a field"), guessed(QToolTip::text()));
    for (const QAction* title : window()->menuBar()->actions())
        Q_EMIT title->menu()->aboutToShow();
    LandingView landing(m_app->controller(), {});
    landing.show();
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return landing.findChild<RecentThumbnailCell*>(QStringLiteral("recent-") + form.toLocalFile()) != nullptr;
    }));
    PDFEditorWorkspaceView* workspace = this->workspace();
    workspace->setShowsAssistant(true);
    workspace->assistant()->attach(writeHostile(".txt", "words"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return workspace->assistant()->attachmentName().has_value(); }));
    workspace->notice().announce(hostile);
    const auto reading = m_app->presenter().showReading(hostile, [] {});
    DocumentDialogs dialogs;
    dialogs.presentError(window(), hostile, hostile);
    dialogs.presentPrinting(window(), {hostile}, [](bool) {});
    lookEverywhere();
    for (const char* sheet : {"editBookmarks", "editMetadata", "addWatermark", "compressDocument", "setPassword"})
        lookAtWindowOf(workspace->sidebar().findChild<QAction*>(QLatin1String(sheet)));
    lookAtWindowOf(command("print"));
    lookAtWindowOf(command("settings"));
    workspace->findChild<QAction*>(QStringLiteral("chatHistory"))->trigger();
    lookEverywhere();
    open(writeHostile(".xlsx", "no sheets"));
    lookEverywhere();
    const QString places = QStringLiteral(
        "QLabel text|ElidedLabel text|ElidedLabel toolTip|QMenu entry|QLineEdit text|"
        "SelectableText plainText|ChatHistoryRow text|ChatHistoryRow toolTip|RecentThumbnailCell text|QListWidget row|"
        "RecentThumbnailCell toolTip|tip of a field|DocumentWindow windowTitle|QTabBar tab|QTabBar tip of a tab|"
        "BookmarkList row|BookmarkList tip of a row|QMainWindow windowTitle|QPrintDialog windowTitle");
    for (const QString& place : places.split(u'|'))
        EXPECT_TRUE(m_places.contains(place)) << place.toStdString() << " wasn't seen";

    const auto lookAtQuestionAbout = [&](auto ask) { lookAtQuestion([&] { (dialogs.*ask)(nullptr, hostile); }); };
    lookAtQuestionAbout(&DocumentDialogs::askToSave);
    lookAtQuestionAbout(&DocumentDialogs::askAboutChangedFile);
    lookAtQuestionAbout(&DocumentDialogs::askAboutSignatures);
    lookAtQuestionAbout(&DocumentDialogs::askToReload);
    lookAtQuestionAbout(&DocumentDialogs::askToRevert);
    lookAtQuestion([&] { dialogs.offerSaveAs(nullptr, QStringLiteral("It failed."), hostile); });
}

} // namespace
