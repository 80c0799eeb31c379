#pragma once

#include <QListWidget>

class PDFFormField;

/// The choices of a field, those of its value selected. Typing looks for a choice that begins so.
class ChoiceList : public QListWidget {
    Q_OBJECT

public:
    static constexpr int exportValueRole = Qt::UserRole;

    ChoiceList(const PDFFormField& field, QWidget* parent);
    ~ChoiceList() override;

    /// Free space around the choices, device-independent pixels.
    void setInset(int inset) { setViewportMargins(inset, inset, inset, inset); }

protected:
    bool event(QEvent* event) override;
};
