#include "DocumentDialogs.h"

#include "DialogRun.h"
#include "PasswordPrompt.h"
#include "PlainMessage.h"
#include "SavePanel.h"

#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

#include <algorithm>
#include <array>

static QString warningSymbol() {
    return QStringLiteral("exclamationmark.triangle");
}

static QString infoSymbol() {
    return QStringLiteral("info.circle");
}

static void setContent(QMessageBox& box, const QString& symbolName, const QString& text,
                       const QString& informativeText) {
    PlainMessage::setSymbol(box, symbolName);
    PlainMessage::setText(box, text, informativeText);
}

namespace {

struct Button {
    QString text;
    QMessageBox::ButtonRole role;
};

/// A question with its buttons; Escape presses the last.
struct Question {
    QMessageBox* box;
    std::vector<QPushButton*> buttons;

    /// Which of them was pressed, from 0.
    std::size_t pressed() const {
        const auto found = std::find(buttons.begin(), buttons.end(), box->clickedButton());
        return found == buttons.end() ? buttons.size() - 1 : static_cast<std::size_t>(found - buttons.begin());
    }
};

Question makeQuestion(QWidget* parent, const QString& name, const QString& symbolName, const QString& text,
                      const QString& informativeText, const std::vector<Button>& buttons) {
    Question question{new QMessageBox(parent), {}};
    question.box->setObjectName(name);
    setContent(*question.box, symbolName, text, informativeText);
    for (const Button& button : buttons)
        question.buttons.push_back(question.box->addButton(button.text, button.role));
    question.box->setEscapeButton(question.buttons.back());
    return question;
}

/// Which of the buttons was pressed, from 0; the last also when the question goes with its parent, which nested events
/// may close. Return presses the one at `usual`.
std::size_t ask(QWidget* parent, const QString& name, const QString& symbolName, const QString& text,
                const QString& informativeText, const std::vector<Button>& buttons, std::size_t usual) {
    const Question question = makeQuestion(parent, name, symbolName, text, informativeText, buttons);
    question.box->setDefaultButton(question.buttons.at(usual));
    const DialogRun run(question.box);
    return run.isDialogAlive() ? question.pressed() : buttons.size() - 1;
}

Question defaultViewerQuestion(QWidget* parent) {
    return makeQuestion(
        parent, QStringLiteral("defaultViewerQuestion"), infoSymbol(),
        QStringLiteral("Make Quillo Your Default PDF Viewer?"),
        QStringLiteral("PDFs will open in Quillo automatically when you double-click them in the file manager, in your "
                       "mail, or anywhere else."),
        {{QStringLiteral("Set as Default"), QMessageBox::AcceptRole},
         {QStringLiteral("Not Now"), QMessageBox::RejectRole}});
}

/// Hands on the answer when it is there; nothing when the question goes without one.
void whenAnswered(const Question& question, DocumentDialogs::Answered answered) {
    question.box->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(question.box, &QDialog::finished, question.box,
                     [question, answered = std::move(answered)] { answered(question.pressed() == 0); });
}

} // namespace

DocumentDialogs::~DocumentDialogs() {
    delete m_offer;
}

DocumentPresenter::SaveAnswer DocumentDialogs::askToSave(QWidget* parent, const QString& documentName) {
    using Answer = DocumentPresenter::SaveAnswer;
    const std::size_t pressed = ask(parent, QStringLiteral("saveQuestion"), warningSymbol(),
                                    QStringLiteral("Do you want to save the changes to “%1”?").arg(documentName),
                                    QStringLiteral("The changes are lost if you don't save them."),
                                    {{QStringLiteral("Save"), QMessageBox::AcceptRole},
                                     {QStringLiteral("Don't Save"), QMessageBox::DestructiveRole},
                                     {QStringLiteral("Cancel"), QMessageBox::RejectRole}},
                                    0);
    return std::array{Answer::Save, Answer::DontSave, Answer::Cancel}.at(pressed);
}

DocumentDialogs::SaveAllAnswer
DocumentDialogs::askToSaveAll(QWidget* parent, const std::vector<UnsavedDocumentsDialog::Entry>& documents) {
    auto* dialog = new UnsavedDocumentsDialog(documents, parent);
    const DialogRun run(dialog);
    if (!run.isDialogAlive())
        return {DocumentPresenter::SaveAnswer::Cancel, std::vector<bool>(documents.size())};
    return {dialog->answer(), dialog->checked()};
}

/// Whether to write over a file that holds what would be lost, which `overwrite` does.
static DocumentPresenter::OverwriteAnswer askToOverwrite(QWidget* parent, const QString& name, const QString& question,
                                                         const QString& advice, const QString& overwrite) {
    using Answer = DocumentPresenter::OverwriteAnswer;
    const std::size_t pressed = ask(parent, name, warningSymbol(), question, advice,
                                    {{QStringLiteral("Save As…"), QMessageBox::AcceptRole},
                                     {overwrite, QMessageBox::DestructiveRole},
                                     {QStringLiteral("Cancel"), QMessageBox::RejectRole}},
                                    0);
    return std::array{Answer::SaveAs, Answer::Overwrite, Answer::Cancel}.at(pressed);
}

DocumentPresenter::OverwriteAnswer DocumentDialogs::askAboutChangedFile(QWidget* parent, const QString& documentName) {
    return askToOverwrite(
        parent, QStringLiteral("changedFileQuestion"),
        QStringLiteral("“%1” has been changed by another program.").arg(documentName),
        QStringLiteral("If you overwrite it, the other program's changes are lost. Choose Save As to keep both."),
        QStringLiteral("Overwrite"));
}

DocumentPresenter::OverwriteAnswer DocumentDialogs::askAboutSignatures(QWidget* parent, const QString& documentName) {
    return askToOverwrite(
        parent, QStringLiteral("signatureQuestion"),
        QStringLiteral("Saving these changes breaks the digital signature of “%1”.").arg(documentName),
        QStringLiteral("Choose Save As to keep the signed file and put your version beside it."),
        QStringLiteral("Save Anyway"));
}

bool DocumentDialogs::askToReload(QWidget* parent, const QString& documentName) {
    return ask(parent, QStringLiteral("reloadQuestion"), warningSymbol(),
               QStringLiteral("“%1” has been changed by another program.").arg(documentName),
               QStringLiteral("You have changes of your own that aren't saved. If you reload the file, they are lost. "
                              "If you keep them, saving replaces the other program's version."),
               {{QStringLiteral("Reload"), QMessageBox::DestructiveRole},
                {QStringLiteral("Keep My Changes"), QMessageBox::RejectRole}},
               1) == 0;
}

bool DocumentDialogs::askToRevert(QWidget* parent, const QString& documentName) {
    return ask(parent, QStringLiteral("revertQuestion"), warningSymbol(),
               QStringLiteral("Do you want to go back to the saved “%1”?").arg(documentName),
               QStringLiteral("All changes since it was last saved are lost. This can't be undone."),
               {{QStringLiteral("Revert"), QMessageBox::DestructiveRole},
                {QStringLiteral("Cancel"), QMessageBox::RejectRole}},
               1) == 0;
}

bool DocumentDialogs::offerSaveAs(QWidget* parent, const QString& title, const QString& sentence) {
    return ask(parent, QStringLiteral("saveFailure"), warningSymbol(), title, sentence,
               {{QStringLiteral("Save As…"), QMessageBox::AcceptRole}, {QStringLiteral("OK"), QMessageBox::RejectRole}},
               0) == 0;
}

std::optional<QString> DocumentDialogs::chooseSaveLocation(QWidget* parent, const QString& suggestedPath) {
    return SavePanel::choose(parent, suggestedPath);
}

std::optional<QString> DocumentDialogs::askPassword(QWidget* parent) {
    return PasswordPrompt::ask(parent);
}

void DocumentDialogs::askToBecomeDefault(QWidget* parent, Answered answered) {
    const Question question = defaultViewerQuestion(parent);
    question.box->setDefaultButton(question.buttons.front());
    whenAnswered(question, std::move(answered));
    question.box->open();
}

void DocumentDialogs::offerToBecomeDefault(Answered answered) {
    const Question question = defaultViewerQuestion(nullptr); // any window may close meanwhile
    m_offer = question.box;
    m_offer->setAttribute(Qt::WA_ShowWithoutActivating);
    m_offer->setWindowModality(Qt::NonModal);
    for (QPushButton* button : question.buttons)
        button->setAutoDefault(false);
    question.buttons.back()->setFocus();
    whenAnswered(question, std::move(answered));
    m_offer->show();
    for (QPushButton* button : question.buttons)
        button->setDefault(false); // showing it has made the first the one for Return
}

QDialog* DocumentDialogs::presentPrinting(QWidget* parent, const QStringList& documentNames, Answered quitsNow) {
    const Question question = makeQuestion(
        parent, QStringLiteral("printingMessage"), infoSymbol(),
        documentNames.size() == 1 ? QStringLiteral("“%1” is still being printed.").arg(documentNames.constFirst())
                                  : QStringLiteral("%1 documents are still being printed.").arg(documentNames.size()),
        QStringLiteral("Quillo quits as soon as they are on their way. What you don't wait for isn't printed."),
        {{QStringLiteral("Quit Now"), QMessageBox::DestructiveRole},
         {QStringLiteral("Cancel"), QMessageBox::RejectRole}});
    question.box->setDefaultButton(question.buttons.back());
    whenAnswered(question, std::move(quitsNow));
    question.box->open();
    return question.box;
}

static void present(QWidget* parent, const QString& name, const QString& symbolName, const QString& title,
                    const QString& sentence) {
    auto* box = new QMessageBox(parent);
    box->setObjectName(name);
    box->setAttribute(Qt::WA_DeleteOnClose);
    setContent(*box, symbolName, title, sentence);
    box->addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
    box->open();
}

void DocumentDialogs::presentMessage(QWidget* parent, const QString& title, const QString& sentence) {
    present(parent, QStringLiteral("message"), infoSymbol(), title, sentence);
}

void DocumentDialogs::presentError(QWidget* parent, const QString& title, const QString& sentence) {
    present(parent, QStringLiteral("errorAlert"), warningSymbol(), title, sentence);
}
