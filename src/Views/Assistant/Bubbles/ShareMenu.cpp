#include "ShareMenu.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QMenu>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrl>

// A command line takes 128 KiB for one argument, and the address of a mail becomes one.
static constexpr qsizetype longestMailAddress = 120'000;

static void sendByMail(const QString& text, const std::function<void(const QString&)>& failed) {
    const QByteArray address = "mailto:?subject=" + QUrl::toPercentEncoding(QStringLiteral("From Quillo")) +
                               "&body=" + QUrl::toPercentEncoding(QString(text).replace(u'\n', QLatin1String("\r\n")));
    if (address.size() > longestMailAddress)
        failed(QStringLiteral("This is too long for a new e-mail. Save it as a text file and attach that."));
    else if (!QDesktopServices::openUrl(QUrl::fromEncoded(address)))
        failed(QStringLiteral("There is no mail program to send this with."));
}

static void save(const QString& text, const QString& path, const std::function<void(const QString&)>& failed) {
    QSaveFile file(path);
    if (!file.open(QFile::WriteOnly) || file.write(text.toUtf8() + '\n') < 0 || !file.commit())
        failed(QStringLiteral("“%1” could not be saved: %2.").arg(QFileInfo(path).fileName(), file.errorString()));
}

static void askWhereToSave(const QString& text, QWidget& anchor, const std::function<void(const QString&)>& failed) {
    auto* panel = new QFileDialog(anchor.window(), QStringLiteral("Save as Text File"));
    panel->setObjectName(QStringLiteral("savePanel"));
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setAcceptMode(QFileDialog::AcceptSave);
    panel->setNameFilter(QStringLiteral("Text files (*.txt *.md)"));
    panel->setDefaultSuffix(QStringLiteral("txt"));
    panel->setDirectory(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    panel->selectFile(QStringLiteral("Reply.txt"));
    QObject::connect(panel, &QFileDialog::fileSelected, &anchor,
                     [text, failed](const QString& path) { save(text, path, failed); });
    panel->open();
}

void ShareMenu::popUp(const QString& text, QWidget& anchor, std::function<void(const QString& sentence)> failed) {
    auto* menu = new QMenu(&anchor);
    menu->setObjectName(QStringLiteral("shareMenu"));
    menu->setAccessibleName(QStringLiteral("Share"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* mail = menu->addAction(QStringLiteral("Send by E-Mail"));
    mail->setObjectName(QStringLiteral("sendByMail"));
    QObject::connect(mail, &QAction::triggered, &anchor, [text, failed] { sendByMail(text, failed); });
    QAction* saveAs = menu->addAction(QStringLiteral("Save as Text File…"));
    saveAs->setObjectName(QStringLiteral("saveAsTextFile"));
    QObject::connect(saveAs, &QAction::triggered, &anchor,
                     [text, &anchor, failed = std::move(failed)] { askWhereToSave(text, anchor, failed); });
    menu->popup(anchor.mapToGlobal(QPoint(0, anchor.height())));
}
