#include "OpenPanel.h"

#include <QFileDialog>
#include <QFileInfo>

static QString panelName() {
    return QStringLiteral("openPanel");
}

void OpenPanel::show(QWidget* parent, const QStringList& nameFilters, std::function<void(const QUrl& url)> chosen) {
    QWidget* window = parent->window();
    if (auto* present = window->findChild<QFileDialog*>(panelName(), Qt::FindDirectChildrenOnly)) {
        present->raise();
        present->activateWindow();
        return;
    }
    auto* panel = new QFileDialog(window, QStringLiteral("Open"));
    panel->setObjectName(panelName());
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setFileMode(QFileDialog::ExistingFile);
    panel->setNameFilters(nameFilters);
    if (const QString file = window->windowFilePath(); !file.isEmpty())
        panel->setDirectory(QFileInfo(file).path());
    QObject::connect(panel, &QFileDialog::accepted, parent, [panel, chosen = std::move(chosen)] {
        if (const QList<QUrl> urls = panel->selectedUrls(); !urls.isEmpty())
            chosen(urls.constFirst());
    });
    panel->open();
}
