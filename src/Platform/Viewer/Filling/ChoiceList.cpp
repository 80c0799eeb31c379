#include "ChoiceList.h"

#include "PDFFormField.h"

#include <QKeyEvent>

ChoiceList::ChoiceList(const PDFFormField& field, QWidget* parent) : QListWidget(parent) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setUniformItemSizes(true);
    setMinimumSize(1, 1);
    setSelectionMode(field.allowsMultipleSelection() ? ExtendedSelection : SingleSelection);
    const QStringList chosen = field.value();
    for (const PDFFormField::Choice& choice : field.choices()) {
        auto* const item = new QListWidgetItem(choice.label, this);
        item->setData(exportValueRole, choice.exportValue);
        item->setSelected(chosen.contains(choice.exportValue));
        if (item->isSelected() && !currentItem())
            setCurrentItem(item, QItemSelectionModel::NoUpdate);
    }
}

ChoiceList::~ChoiceList() = default;

bool ChoiceList::event(QEvent* event) {
    // Letters search; they aren't the keys of commands meanwhile.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool types = (key->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == Qt::NoModifier;
        if (types && !key->text().isEmpty() && key->text().front().isPrint()) {
            event->accept();
            return true;
        }
    }
    return QListWidget::event(event);
}
