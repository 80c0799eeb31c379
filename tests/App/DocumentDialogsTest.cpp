#include "DocumentDialogs.h"

#include <QAbstractButton>
#include <QApplication>
#include <QListWidget>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <functional>
#include <optional>

#include <gtest/gtest.h>

using SaveAnswer = DocumentPresenter::SaveAnswer;
using OverwriteAnswer = DocumentPresenter::OverwriteAnswer;

/// Does `answer` to the dialog that is about to be asked. A dialog that doesn't come up fails the test.
static void whenAsked(std::function<void(QDialog& dialog)> answer) {
    QTimer::singleShot(0, [answer = std::move(answer)] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        const QPointer<QDialog> left(dialog);
        answer(*dialog);
        if (left && left->isVisible())
            left->reject();
    });
}

/// Presses a button, or one of these keys: "Return", "Escape".
static void press(QDialog& dialog, const QString& what) {
    if (what == u"Return" || what == u"Escape") {
        QTest::keyClick(&dialog, what == u"Return" ? Qt::Key_Return : Qt::Key_Escape);
        return;
    }
    for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>()) {
        if (button->text().remove(QLatin1Char('&')) == what) {
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
    }
    ADD_FAILURE() << "There is no button " << what.toStdString();
}

TEST(DocumentDialogs, questionsTakeTheAnswerThatLosesNothingAsUsual) {
    DocumentDialogs dialogs;
    const auto expect = [&dialogs](auto ask, const char* pressed, auto answer) {
        whenAsked([pressed](QDialog& dialog) { press(dialog, QString::fromUtf8(pressed)); });
        EXPECT_EQ((dialogs.*ask)(nullptr, QStringLiteral("a.pdf")), answer) << pressed;
    };
    expect(&DocumentDialogs::askToSave, "Don't Save", SaveAnswer::DontSave);
    expect(&DocumentDialogs::askToSave, "Cancel", SaveAnswer::Cancel);
    expect(&DocumentDialogs::askToSave, "Escape", SaveAnswer::Cancel);
    expect(&DocumentDialogs::askToSave, "Return", SaveAnswer::Save);
    expect(&DocumentDialogs::askAboutChangedFile, "Overwrite", OverwriteAnswer::Overwrite);
    expect(&DocumentDialogs::askAboutChangedFile, "Save As…", OverwriteAnswer::SaveAs);
    expect(&DocumentDialogs::askAboutChangedFile, "Cancel", OverwriteAnswer::Cancel);
    expect(&DocumentDialogs::askAboutChangedFile, "Return", OverwriteAnswer::SaveAs);
    expect(&DocumentDialogs::askAboutSignatures, "Save Anyway", OverwriteAnswer::Overwrite);
    expect(&DocumentDialogs::askToRevert, "Revert", true);
    expect(&DocumentDialogs::askToRevert, "Return", false);
    expect(&DocumentDialogs::askToReload, "Reload", true);
    expect(&DocumentDialogs::askToReload, "Return", false);
    whenAsked([](QDialog& dialog) { press(dialog, QStringLiteral("Save As…")); });
    EXPECT_TRUE(dialogs.offerSaveAs(nullptr, {}, {}));
}

TEST(DocumentDialogs, theQuestionAboutSeveralDocumentsSavesWhatIsChecked) {
    DocumentDialogs dialogs;
    const std::vector<UnsavedDocumentsDialog::Entry> documents = {
        {QStringLiteral("a.pdf"), QStringLiteral("/one")},
        {QStringLiteral("a.pdf"), QStringLiteral("/two")},
        {QStringLiteral("Untitled"), QStringLiteral("not in a file yet")}};
    const struct {
        std::vector<int> toggled;
        bool canSave;
        QString pressed;
        SaveAnswer answer;
        std::vector<bool> checked;
    } rows[] = {
        {{}, true, QStringLiteral("Return"), SaveAnswer::Save, {true, true, true}},
        {{1}, true, QStringLiteral("Save Selected"), SaveAnswer::Save, {true, false, true}},
        {{0, 1, 2}, false, QStringLiteral("Discard All"), SaveAnswer::DontSave, {false, false, false}},
        {{0, 1, 2, 2}, true, QStringLiteral("Cancel"), SaveAnswer::Cancel, {false, false, true}},
    };
    for (const auto& row : rows) {
        whenAsked([&row](QDialog& dialog) {
            auto* list = dialog.findChild<QListWidget*>(QStringLiteral("unsavedList"));
            ASSERT_EQ(list->count(), 3);
            EXPECT_NE(list->item(0)->text(), list->item(1)->text());
            for (const int toggled : row.toggled) {
                list->setCurrentRow(toggled);
                QTest::keyClick(list, Qt::Key_Space);
            }
            EXPECT_EQ(dialog.findChild<QPushButton*>(QStringLiteral("saveChecked"))->isEnabled(), row.canSave);
            press(dialog, row.pressed);
        });
        const DocumentDialogs::SaveAllAnswer reply = dialogs.askToSaveAll(nullptr, documents);
        EXPECT_EQ(reply.answer, row.answer) << row.pressed.toStdString();
        EXPECT_EQ(reply.checked, row.checked) << row.pressed.toStdString();
    }
}

TEST(DocumentDialogs, theOfferToBecomeTheDefaultViewerTakesNoKeyThatWasMeantForAnother) {
    DocumentDialogs dialogs;
    const auto shown = []() -> QMessageBox* {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == QLatin1String("defaultViewerQuestion") && widget->isVisible())
                return qobject_cast<QMessageBox*>(widget);
        return nullptr;
    };
    std::optional<bool> given;
    const auto answered = [&given](bool accepted) { given = accepted; };
    dialogs.askToBecomeDefault(nullptr, answered);
    ASSERT_NE(shown(), nullptr);
    press(*shown(), QStringLiteral("Not Now"));
    EXPECT_EQ(given, false);

    given.reset();
    dialogs.offerToBecomeDefault(answered);
    ASSERT_NE(shown(), nullptr);
    EXPECT_TRUE(shown()->testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    press(*shown(), QStringLiteral("Return")); // what ended a password a moment ago
    EXPECT_EQ(given, std::nullopt);
    ASSERT_NE(shown(), nullptr);
    press(*shown(), QStringLiteral("Set as Default"));
    EXPECT_EQ(given, true);
}

TEST(DocumentDialogs, aQuestionGoesWithItsWindowAsCancelled) {
    DocumentDialogs dialogs;
    const auto windowThatCloses = [] {
        auto* window = new QWidget;
        window->show();
        whenAsked([window](QDialog&) { delete window; });
        return window;
    };
    EXPECT_EQ(dialogs.askToSave(windowThatCloses(), QStringLiteral("a.pdf")), SaveAnswer::Cancel);
    EXPECT_EQ(dialogs.askPassword(windowThatCloses()), std::nullopt);
    EXPECT_EQ(dialogs.chooseSaveLocation(windowThatCloses(), QStringLiteral("/tmp/a.pdf")), std::nullopt);
    EXPECT_EQ(dialogs.askToSaveAll(windowThatCloses(), {{QStringLiteral("a.pdf"), {}}}).answer, SaveAnswer::Cancel);
}
