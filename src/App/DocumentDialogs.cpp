#include "DocumentDialogs.h"

#include "PasswordPrompt.h"
#include "SymbolIcon.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

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

DocumentDialogs::~DocumentDialogs() = default;

DocumentPresenter::SaveAnswer DocumentDialogs::askToSave(QWidget* parent, const QString& documentName) {
    QMessageBox box(parent);
    box.setObjectName(QStringLiteral("saveQuestion"));
    setContent(box, warningSymbol(), QStringLiteral("Do you want to save the changes to “%1”?").arg(documentName),
               QStringLiteral("The changes are lost if you don't save them."));
    auto* save = box.addButton(QStringLiteral("Save"), QMessageBox::AcceptRole);
    auto* dontSave = box.addButton(QStringLiteral("Don't Save"), QMessageBox::DestructiveRole);
    auto* cancel = box.addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    box.setDefaultButton(save);
    box.setEscapeButton(cancel);
    box.exec();
    if (box.clickedButton() == save)
        return DocumentPresenter::SaveAnswer::Save;
    return box.clickedButton() == dontSave ? DocumentPresenter::SaveAnswer::DontSave
                                           : DocumentPresenter::SaveAnswer::Cancel;
}

DocumentDialogs::SaveAllAnswer
DocumentDialogs::askToSaveAll(QWidget* parent, const std::vector<UnsavedDocumentsDialog::Entry>& documents) {
    UnsavedDocumentsDialog dialog(documents, parent);
    dialog.exec();
    return {dialog.answer(), dialog.checked()};
}

DocumentPresenter::ChangedFileAnswer DocumentDialogs::askAboutChangedFile(QWidget* parent,
                                                                          const QString& documentName) {
    QMessageBox box(parent);
    box.setObjectName(QStringLiteral("changedFileQuestion"));
    setContent(
        box, warningSymbol(), QStringLiteral("“%1” has been changed by another program.").arg(documentName),
        QStringLiteral("If you overwrite it, the other program's changes are lost. Choose Save As to keep both."));
    auto* saveAs = box.addButton(QStringLiteral("Save As…"), QMessageBox::AcceptRole);
    auto* overwrite = box.addButton(QStringLiteral("Overwrite"), QMessageBox::DestructiveRole);
    auto* cancel = box.addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    box.setDefaultButton(saveAs);
    box.setEscapeButton(cancel);
    box.exec();
    if (box.clickedButton() == overwrite)
        return DocumentPresenter::ChangedFileAnswer::Overwrite;
    return box.clickedButton() == saveAs ? DocumentPresenter::ChangedFileAnswer::SaveAs
                                         : DocumentPresenter::ChangedFileAnswer::Cancel;
}

bool DocumentDialogs::askToReload(QWidget* parent, const QString& documentName) {
    QMessageBox box(parent);
    box.setObjectName(QStringLiteral("reloadQuestion"));
    setContent(
        box, warningSymbol(), QStringLiteral("“%1” has been changed by another program.").arg(documentName),
        QStringLiteral("You have changes of your own that aren't saved. If you reload the file, they are lost. If "
                       "you keep them, saving replaces the other program's version."));
    auto* reload = box.addButton(QStringLiteral("Reload"), QMessageBox::DestructiveRole);
    auto* keep = box.addButton(QStringLiteral("Keep My Changes"), QMessageBox::RejectRole);
    box.setDefaultButton(keep);
    box.setEscapeButton(keep);
    box.exec();
    return box.clickedButton() == reload;
}

bool DocumentDialogs::askToRevert(QWidget* parent, const QString& documentName) {
    QMessageBox box(parent);
    box.setObjectName(QStringLiteral("revertQuestion"));
    setContent(box, warningSymbol(), QStringLiteral("Do you want to go back to the saved “%1”?").arg(documentName),
               QStringLiteral("All changes since it was last saved are lost. This can't be undone."));
    auto* revert = box.addButton(QStringLiteral("Revert"), QMessageBox::DestructiveRole);
    auto* cancel = box.addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    box.exec();
    return box.clickedButton() == revert;
}

bool DocumentDialogs::offerSaveAs(QWidget* parent, const QString& title, const QString& sentence) {
    QMessageBox box(parent);
    box.setObjectName(QStringLiteral("saveFailure"));
    setContent(box, warningSymbol(), title, sentence);
    auto* saveAs = box.addButton(QStringLiteral("Save As…"), QMessageBox::AcceptRole);
    auto* ok = box.addButton(QStringLiteral("OK"), QMessageBox::RejectRole);
    box.setDefaultButton(saveAs);
    box.setEscapeButton(ok);
    box.exec();
    return box.clickedButton() == saveAs;
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
    QMessageBox box(parent);
    box.setObjectName(QStringLiteral("defaultViewerQuestion"));
    setContent(box, infoSymbol(), QStringLiteral("Make Quillo Your Default PDF Viewer?"),
               QStringLiteral("PDFs will open in Quillo automatically when you double-click them in Finder, Mail, or "
                              "anywhere else."));
    auto* set = box.addButton(QStringLiteral("Set as Default"), QMessageBox::AcceptRole);
    auto* notNow = box.addButton(QStringLiteral("Not Now"), QMessageBox::RejectRole);
    box.setDefaultButton(set);
    box.setEscapeButton(notNow);
    box.exec();
    return box.clickedButton() == set;
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
    present(parent, u"message"_qs, infoSymbol(), title, sentence);
}

void DocumentDialogs::presentError(QWidget* parent, const QString& title, const QString& sentence) {
    present(parent, u"errorAlert"_qs, warningSymbol(), title, sentence);
}
