#include "PlainMessage.h"

#include "PlainText.h"
#include "SymbolIcon.h"

#include <QLabel>
#include <QList>
#include <QMessageBox>

static constexpr int symbolSide = 44;

void PlainMessage::setText(QMessageBox& box, const QString& text, const QString& informativeText) {
    box.setTextFormat(Qt::PlainText);
    box.setText(PlainText::paragraphs(text));
    box.setInformativeText(PlainText::paragraphs(informativeText));
    const QList<QLabel*> labels = box.findChildren<QLabel*>();
    for (QLabel* label : labels) // that of the informative text doesn't follow the box's format
        label->setTextFormat(Qt::PlainText);
}

void PlainMessage::setSymbol(QMessageBox& box, const QString& symbolName) {
    box.setWindowTitle(QStringLiteral("Quillo"));
    box.setIconPixmap(
        SymbolIcon::pixmap(symbolName, symbolSide, box.palette().color(QPalette::WindowText), box.devicePixelRatioF()));
}
