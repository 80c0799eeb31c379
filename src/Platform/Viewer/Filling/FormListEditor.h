#pragma once

#include "FormFieldEditor.h"

class QListWidget;

/// Chooses in a list box: a list over the field, in which the pointer, the arrows and the first letters of a choice
/// select; with Ctrl and Shift more than one where the field allows it. Main thread only.
class FormListEditor : public FormFieldEditor {
    Q_OBJECT

public:
    explicit FormListEditor(PageSurface& view);
    ~FormListEditor() override;

    /// With which the click that opens the list is taken.
    void setClickModifiers(Qt::KeyboardModifiers modifiers) { m_modifiers = modifiers; }

private:
    [[nodiscard]] QWidget* makeWidget() override;
    void click(QPointF point) override;
    [[nodiscard]] bool isChanged() const override;
    [[nodiscard]] QStringList value() const override;
    void layOut() override;
    [[nodiscard]] QListWidget* list() const;

    Qt::KeyboardModifiers m_modifiers;
    bool m_isFresh = false; // not yet scrolled to the row that the file has at the top
};
