#include "SavePanel.h"

#include "DialogRun.h"
#include "PlainMessage.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

/// Asks whether the file at `path` may be replaced, if there is one.
static bool mayBeWritten(QWidget* parent, const QString& path) {
    if (!QFileInfo::exists(path))
        return true;
    auto* box = new QMessageBox(parent);
    box->setObjectName(QStringLiteral("replaceQuestion"));
    PlainMessage::setSymbol(*box, QStringLiteral("exclamationmark.triangle"));
    PlainMessage::setText(
        *box, QStringLiteral("“%1” already exists. Do you want to replace it?").arg(QFileInfo(path).fileName()),
        QStringLiteral("Replacing it overwrites what it holds."));
    const QPushButton* replace = box->addButton(QStringLiteral("Replace"), QMessageBox::DestructiveRole);
    QPushButton* cancel = box->addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    box->setEscapeButton(cancel);
    box->setDefaultButton(cancel);
    const DialogRun run(box);
    return run.isDialogAlive() && box->clickedButton() == replace;
}

std::optional<QString> SavePanel::choose(QWidget* parent, const QString& suggestedPath) {
    const QPointer<QWidget> window(parent);
    QString path = suggestedPath;
    do {
        if (parent && !window)
            return std::nullopt; // it went while the question was asked
        auto* dialog = new QFileDialog(parent, QStringLiteral("Save As"));
        dialog->setObjectName(QStringLiteral("savePanel"));
        dialog->setAcceptMode(QFileDialog::AcceptSave);
        dialog->setNameFilter(QStringLiteral("PDF files (*.pdf)"));
        dialog->setDefaultSuffix(QStringLiteral("pdf"));
        // The desktop's dialog asks before the suffix is added, about another file.
        dialog->setOption(QFileDialog::DontConfirmOverwrite);
        dialog->selectFile(path);
        const DialogRun run(dialog);
        if (!run.isAccepted() || dialog->selectedFiles().isEmpty())
            return std::nullopt;
        path = dialog->selectedFiles().constFirst();
    } while (!mayBeWritten(parent, path));
    return path;
}
