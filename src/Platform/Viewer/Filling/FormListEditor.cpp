#include "FormListEditor.h"

#include "ChoiceList.h"
#include "FormFieldValues.h"
#include "PDFAnnotation.h"
#include "PageSurface.h"

#include <QCoreApplication>
#include <QMouseEvent>

#include <algorithm>
#include <utility>

FormListEditor::FormListEditor(PageSurface& view) : FormFieldEditor(view) {}

FormListEditor::~FormListEditor() = default;

QListWidget* FormListEditor::list() const {
    return static_cast<QListWidget*>(widget());
}

QWidget* FormListEditor::makeWidget() {
    auto* const made = new ChoiceList(field(), viewer().viewport());
    QPalette colors = made->palette();
    colors.setColor(QPalette::Text, textColor());
    colors.setColor(QPalette::Base, paper());
    made->setPalette(colors);
    m_isFresh = true;
    connect(made, &QListWidget::itemSelectionChanged, this, &PlacedEditor::typed);
    return made;
}

/// The rows lie where the field shows them without the editor.
void FormListEditor::layOut() {
    constexpr double rowHeight = 1.15; // in parts of the font's size
    const QFont rows = font();
    const double size = rows.pointSizeF() * viewer().logicalDpiY() / 72;
    list()->setFont(rows);
    for (int row = 0; row < list()->count(); ++row)
        list()->item(row)->setSizeHint({0, std::max(1, qRound(size * rowHeight))});
    static_cast<ChoiceList*>(list())->setInset(qRound(std::max(1.0, border()) * scale()));
    list()->setGeometry(frame().toAlignedRect());
    const auto form = field().widget()->values().field.inFile;
    if (std::exchange(m_isFresh, false) && form)
        list()->scrollToItem(list()->item(form->topIndex), QAbstractItemView::PositionAtTop);
}

void FormListEditor::click(QPointF point) {
    QWidget* const target = list()->viewport();
    const QPointF at = target->mapFrom(list(), point);
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const bool isPress = type == QEvent::MouseButtonPress;
        QMouseEvent event(type, at, target->mapToGlobal(at), Qt::LeftButton, isPress ? Qt::LeftButton : Qt::NoButton,
                          m_modifiers);
        QCoreApplication::sendEvent(target, &event);
    }
}

QStringList FormListEditor::value() const {
    QStringList chosen;
    for (int row = 0; row < list()->count(); ++row)
        if (list()->item(row)->isSelected())
            chosen.append(list()->item(row)->data(ChoiceList::exportValueRole).toString());
    return chosen;
}

bool FormListEditor::isChanged() const {
    return value() != field().value();
}
