#include "DocumentDialogs.h"

#include "PasswordPrompt.h"
#include "SymbolIcon.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>
#include <array>

static constexpr int symbolSide = 44;

static QString warningSymbol() {
    return QStringLiteral("exclamationmark.triangle");
}

static QString infoSymbol() {
    return QStringLiteral("info.circle");
}

static void setContent(QMessageBox& box, const QString& symbolName, const QString& text,
                       const QString& informativeText) {
    box.setWindowTitle(QStringLiteral("Quillo"));
    box.setIconPixmap(
        SymbolIcon::pixmap(symbolName, symbolSide, box.palette().color(QPalette::WindowText), box.devicePixelRatioF()));
    // File names may hold what looks like markup.
    box.setTextFormat(Qt::PlainText);
    box.setText(text);
    box.setInformativeText(informativeText);
}

namespace {

struct Button {
    QString text;
    QMessageBox::ButtonRole role;
};

/// Which of the buttons was pressed, from 0. Return presses the one at `usual`, Escape the last.
std::size_t ask(QWidget* parent, const QString& name, const QString& symbolName, const QString& text,
                const QString& informativeText, const std::vector<Button>& buttons, std::size_t usual) {
    QMessageBox box(parent);
    box.setObjectName(name);
    setContent(box, symbolName, text, informativeText);
    std::vector<QPushButton*> shown;
    for (const Button& button : buttons)
        shown.push_back(box.addButton(button.text, button.role));
    box.setDefaultButton(shown.at(usual));
    box.setEscapeButton(shown.back());
    box.exec();
    const auto pressed = std::find(shown.begin(), shown.end(), box.clickedButton());
    return pressed == shown.end() ? shown.size() - 1 : static_cast<std::size_t>(pressed - shown.begin());
}

} // namespace

DocumentDialogs::~DocumentDialogs() = default;

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
    UnsavedDocumentsDialog dialog(documents, parent);
    dialog.exec();
    return {dialog.answer(), dialog.checked()};
}

DocumentPresenter::ChangedFileAnswer DocumentDialogs::askAboutChangedFile(QWidget* parent,
                                                                          const QString& documentName) {
    using Answer = DocumentPresenter::ChangedFileAnswer;
    const std::size_t pressed =
        ask(parent, QStringLiteral("changedFileQuestion"), warningSymbol(),
            QStringLiteral("“%1” has been changed by another program.").arg(documentName),
            QStringLiteral("If you overwrite it, the other program's changes are lost. Choose Save As to keep both."),
            {{QStringLiteral("Save As…"), QMessageBox::AcceptRole},
             {QStringLiteral("Overwrite"), QMessageBox::DestructiveRole},
             {QStringLiteral("Cancel"), QMessageBox::RejectRole}},
            0);
    return std::array{Answer::SaveAs, Answer::Overwrite, Answer::Cancel}.at(pressed);
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
    QFileDialog dialog(parent, QStringLiteral("Save As"));
    dialog.setObjectName(QStringLiteral("savePanel"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilter(QStringLiteral("PDF files (*.pdf)"));
    dialog.setDefaultSuffix(QStringLiteral("pdf"));
    dialog.selectFile(suggestedPath);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return dialog.selectedFiles().constFirst();
}

std::optional<QString> DocumentDialogs::askPassword(QWidget* parent) {
    return PasswordPrompt::ask(parent);
}

bool DocumentDialogs::askToBecomeDefault(QWidget* parent) {
    return ask(parent, QStringLiteral("defaultViewerQuestion"), infoSymbol(),
               QStringLiteral("Make Quillo Your Default PDF Viewer?"),
               QStringLiteral("PDFs will open in Quillo automatically when you double-click them in Finder, Mail, or "
                              "anywhere else."),
               {{QStringLiteral("Set as Default"), QMessageBox::AcceptRole},
                {QStringLiteral("Not Now"), QMessageBox::RejectRole}},
               0) == 0;
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
