#include "SavePanel.h"

#include "DialogRun.h"
#include "FilePath.h"
#include "FileStamp.h"
#include "PlainMessage.h"
#include "UserDefaults.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QStandardPaths>
#include <QUrl>
#include <QWidget>

namespace {

QMessageBox* makeMessage(QWidget* parent, const QString& name, const QString& text, const QString& informativeText) {
    auto* box = new QMessageBox(parent);
    box->setObjectName(name);
    PlainMessage::setSymbol(*box, QStringLiteral("exclamationmark.triangle"));
    PlainMessage::setText(*box, text, informativeText);
    return box;
}

/// The file of the document in whose window it is, perhaps in a sheet of it. Empty for none.
QString documentFile(const QWidget* widget) {
    while (widget && widget->windowFilePath().isEmpty())
        widget = widget->parentWidget();
    return widget ? widget->windowFilePath() : QString();
}

/// By any of its names.
bool isSameFile(const QString& path, const QString& other) {
    const auto stamp = FileStamp::of(path);
    const auto otherStamp = FileStamp::of(other);
    if (stamp && otherStamp)
        return stamp->device == otherStamp->device && stamp->inode == otherStamp->inode;
    return FilePath::canonical(QUrl::fromLocalFile(path)) == FilePath::canonical(QUrl::fromLocalFile(other));
}

void refuseOwnFile(QWidget* parent, const QString& path) {
    QMessageBox* box =
        makeMessage(parent, QStringLiteral("ownFileRefusal"),
                    QStringLiteral("“%1” is the document that is open in this window.").arg(QFileInfo(path).fileName()),
                    QStringLiteral("A copy can't take its place. Choose another name or folder."));
    box->addButton(QMessageBox::Ok);
    const DialogRun run(box);
}

/// Asks whether the file at `path` may be replaced, if there is one.
bool mayBeReplaced(QWidget* parent, const QString& path) {
    if (!QFileInfo::exists(path))
        return true;
    QMessageBox* box =
        makeMessage(parent, QStringLiteral("replaceQuestion"),
                    QStringLiteral("“%1” already exists. Do you want to replace it?").arg(QFileInfo(path).fileName()),
                    QStringLiteral("Replacing it overwrites what it holds."));
    const QPushButton* replace = box->addButton(QStringLiteral("Replace"), QMessageBox::DestructiveRole);
    QPushButton* cancel = box->addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    box->setEscapeButton(cancel);
    box->setDefaultButton(cancel);
    const DialogRun run(box);
    return run.isDialogAlive() && box->clickedButton() == replace;
}

/// One panel, which may be answered with any file.
std::optional<QString> askOnce(QWidget* parent, const QString& suggestedPath) {
    const QString suffix = QStringLiteral(".pdf");
    auto* dialog = new QFileDialog(parent, QStringLiteral("Save As"));
    dialog->setObjectName(QStringLiteral("savePanel"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilter(QStringLiteral("PDF files (*.pdf)"));
    dialog->setDefaultSuffix(QStringLiteral("pdf"));
    // The desktop's dialog asks before the suffix is added, about another file.
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    dialog->selectFile(suggestedPath);
    const DialogRun run(dialog);
    if (!run.isAccepted() || dialog->selectedFiles().isEmpty())
        return std::nullopt;
    const QString path = dialog->selectedFiles().constFirst();
    // The dialog takes the end of "Report 2.1" for a suffix.
    return path.endsWith(suffix, Qt::CaseInsensitive) ? path : path + suffix;
}

std::optional<QString> ask(QWidget* parent, const QString& suggestedPath, const QString& ownFile) {
    const QPointer<QWidget> window(parent);
    std::optional<QString> path = suggestedPath;
    while (!parent || window) { // which may go while a question is asked
        path = askOnce(parent, *path);
        if (!path)
            break;
        if (!ownFile.isEmpty() && isSameFile(*path, ownFile)) {
            refuseOwnFile(parent, *path);
            path = suggestedPath;
        } else if (mayBeReplaced(parent, *path)) {
            return path;
        }
    }
    return std::nullopt;
}

/// Of the last copy.
struct LastFolder {
    static constexpr const char* key = "SavePanel.folder";

    QString path;
    QPointer<UserDefaults> defaults;

    static LastFolder& shared() {
        static LastFolder folder;
        return folder;
    }
};

} // namespace

std::optional<QString> SavePanel::choose(QWidget* parent, const QString& suggestedPath) {
    return ask(parent, suggestedPath, {});
}

std::optional<QString> SavePanel::chooseForCopy(QWidget* parent, const QString& suggestedName) {
    const QString& last = LastFolder::shared().path;
    const QString folder = QFileInfo(last).isDir() ? last : startFolder(parent);
    return ask(parent->window(), QDir(folder).filePath(suggestedName), documentFile(parent));
}

void SavePanel::noteCopy(const QString& path) {
    LastFolder& folder = LastFolder::shared();
    folder.path = QFileInfo(path).path();
    if (folder.defaults)
        folder.defaults->setString(QString::fromLatin1(LastFolder::key), folder.path);
}

void SavePanel::rememberIn(UserDefaults& defaults) {
    LastFolder::shared() = {defaults.stringForKey(QString::fromLatin1(LastFolder::key)).value_or(QString()), &defaults};
}

QString SavePanel::startFolder(const QWidget* parent) {
    const QString file = documentFile(parent);
    if (!file.isEmpty())
        return QFileInfo(file).path();
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}
