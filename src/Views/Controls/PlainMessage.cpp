#include "PlainMessage.h"

#include <QLabel>
#include <QList>
#include <QMessageBox>

void PlainMessage::setText(QMessageBox& box, const QString& text, const QString& informativeText) {
    box.setTextFormat(Qt::PlainText);
    box.setText(text);
    box.setInformativeText(informativeText);
    const QList<QLabel*> labels = box.findChildren<QLabel*>();
    for (QLabel* label : labels) // that of the informative text doesn't follow the box's format
        label->setTextFormat(Qt::PlainText);
}
