#include "AboutBox.h"

#include <QApplication>
#include <QIcon>
#include <QMessageBox>

void AboutBox::show(QWidget* parent) {
    auto* box = new QMessageBox(parent);
    box->setObjectName(QStringLiteral("about"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(QStringLiteral("About Quillo"));
    box->setIconPixmap(QApplication::windowIcon().pixmap(QSize(64, 64), box->devicePixelRatioF()));
    box->setText(QStringLiteral("Quillo %1").arg(QCoreApplication::applicationVersion()));
    box->setInformativeText(
        QStringLiteral("Highlight, draw, and ask AI about your PDFs.\n\nFree software under the GNU Affero "
                       "General Public License, version 3 or later."));
    box->addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
    box->open();
}
