#include "SheetParts.h"

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

static constexpr int margin = 20;
static constexpr int spacing = 12;

QVBoxLayout* SheetParts::begin(QDialog& sheet, const QString& title) {
    sheet.setWindowTitle(title);
    auto* heading = new QLabel(title);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    auto* layout = new QVBoxLayout(&sheet);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(spacing);
    layout->addWidget(heading);
    return layout;
}

QPushButton* SheetParts::button(const QString& text, const QString& name) {
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    button->setAutoDefault(false);
    return button;
}
