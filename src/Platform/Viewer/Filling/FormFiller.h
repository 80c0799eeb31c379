#pragma once

#include "ChoicePopup.h"
#include "FormListEditor.h"
#include "FormTextEditor.h"
#include "PageFields.h"

#include <QObject>
#include <QPointF>
#include <QRectF>

#include <memory>
#include <optional>

class PDFPage;
class PageSurface;
class PageColumn;
class QKeyEvent;
class QPainter;

/// Filling forms in a view: what pointer and keys do to the fields of its pages, and how fields look beyond what the
/// file shows. Points and rectangles are view points. Main thread only.
class FormFiller : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    FormFiller(PageSurface& view, PageColumn& column);
    ~FormFiller() override;

    [[nodiscard]] bool isEnabled() const { return m_isEnabled; }
    /// While it isn't enabled no field reacts; what was being edited is committed.
    void setEnabled(bool enabled);
    /// Another document: nothing is known, and what was being edited is given up.
    void reset();

    // What is known

    /// Reads the fields of the pages in sight and of their neighbours, so that they can be painted. Not for the middle
    /// of scrolling.
    void readFields();
    void noteChange(const PDFPage& page, const QRectF& area) { m_fields.noteChange(page, area); }
    void paint(QPainter& painter, const QRectF& exposed);

    // Pointer

    /// True for a press on a field, which is then the field's until the release.
    bool press(QPointF point);
    [[nodiscard]] bool isPressed() const { return m_pressed != nullptr; }
    /// Where the press was on a field and still is, the field does what a click on it does.
    void release(QPointF point, Qt::KeyboardModifiers modifiers);
    /// None where there is no field.
    [[nodiscard]] std::optional<Qt::CursorShape> cursor(QPointF point);
    void pointerLeft() { setHovered(nullptr); }
    struct ToolTip {
        QString text;
        QRectF rect;
    };
    [[nodiscard]] std::optional<ToolTip> toolTip(QPointF point);

    // Keyboard

    /// The widget of the field that has the keyboard, itself or its editor; null without one.
    [[nodiscard]] std::shared_ptr<PDFAnnotation> focused() const;
    /// Gives the keyboard to a fillable field; text fields and list boxes open their editor.
    void focus(const std::shared_ptr<PDFAnnotation>& widget);
    void clearFocus();
    /// True for a key that the field with the keyboard takes.
    bool pressKey(const QKeyEvent& key);
    /// The field with the keyboard in words: kind, name, and state.
    [[nodiscard]] QString description() const;

    // Editing

    [[nodiscard]] bool isEditing() const { return m_text.isOpen() || m_list.isOpen(); }
    void commit();
    /// Takes what was typed into the document; a field that is typed in stays open for more.
    void apply();

Q_SIGNALS:
    void changed(const PDFFormField& field, const QStringList& before);
    void editingChanged();
    /// Another field has the keyboard, or it is another in its words.
    void focusChanged();
    void leftByTab(bool forward);

private:
    [[nodiscard]] const PageFields::Entry* entryAt(QPointF point);
    [[nodiscard]] std::optional<PDFFormField> focusedField() const;
    /// Empty for a widget on no page of the view.
    [[nodiscard]] QRectF rectOf(const PDFAnnotation& widget) const;
    void editorOpened(bool isOpen);
    void setFocused(const std::shared_ptr<PDFAnnotation>& widget);
    void setHovered(const std::shared_ptr<PDFAnnotation>& widget);
    void update(const PDFAnnotation& widget);
    void activate(const PDFFormField& field, std::optional<QPointF> point);
    void edit(const PDFFormField& field, std::optional<QPointF> point);
    void openChoices(const QString& typed = {});
    void choose(const QString& exportValue, const QString& label);
    void toggle(const PDFFormField& field);
    void moveInGroup(const PDFFormField& field, int step);
    void setValue(PDFFormField field, const QStringList& value);

    PageSurface& m_view;
    PageColumn& m_column;
    PageFields m_fields;
    FormTextEditor m_text;
    FormListEditor m_list;
    ChoicePopup m_popup;
    std::weak_ptr<PDFAnnotation> m_focused;
    std::weak_ptr<PDFAnnotation> m_hovered;
    std::shared_ptr<PDFAnnotation> m_pressed;
    bool m_isEnabled = true;
};
