#pragma once

#include "PDFFormField.h"
#include "PlacedEditor.h"

#include <QFont>
#include <QPointF>
#include <QStringList>

#include <optional>

class QColor;
class QRectF;

/// An editor of the value of a form field, over the field: at its place, with its font and colours. Tab commits and
/// leads on. What was not changed isn't committed, so that nothing is lost of a value that the editor can't show.
/// Main thread only.
class FormFieldEditor : public PlacedEditor {
    Q_OBJECT

public:
    ~FormFieldEditor() override;

    /// The field is fillable and of a kind that this edits. With a view point, the editor takes a click there.
    void start(const PDFFormField& field, std::optional<QPointF> viewPoint);
    void commit() override;
    void cancel() override { close(); }

    /// The widget that is being edited; null when none is.
    [[nodiscard]] std::shared_ptr<PDFAnnotation> subject() const;

Q_SIGNALS:
    /// The editor is closed already, unless it stays open for more.
    void committed(const PDFFormField& field, const QStringList& value);
    /// After the commit.
    void leftByTab(bool forward);

protected:
    explicit FormFieldEditor(PageSurface& view);

    /// A new child of the viewport that shows the value, without a place.
    [[nodiscard]] virtual QWidget* makeWidget() = 0;
    /// A click at a point of the widget, which is open.
    virtual void click(QPointF point) = 0;
    [[nodiscard]] virtual bool isChanged() const = 0;
    [[nodiscard]] virtual QStringList value() const = 0;
    /// Before a commit.
    virtual void finishComposing() {}

    void close() override;
    void addOpenTo(PDFDraft& draft) const override;
    [[nodiscard]] bool isSubjectThere() const override;
    [[nodiscard]] bool pressKey(QKeyEvent& key) override;

    /// While one is open, and in `makeWidget`.
    [[nodiscard]] const PDFFormField& field() const { return *m_field; }
    /// Where the editor belongs, view points: over the field, but upright where the field's text isn't.
    [[nodiscard]] QRectF frame() const;
    /// What the field's border takes at each side, in units of the page.
    [[nodiscard]] double border() const;
    /// Device-independent pixels in a unit of the page.
    [[nodiscard]] double scale() const;
    /// For the screen at the present scale; as large as suits `text` where the field leaves that open.
    [[nodiscard]] QFont font(const QString& text = {}) const;
    [[nodiscard]] QColor textColor() const;
    /// Opaque, since it covers what the field looks like without the editor.
    [[nodiscard]] QColor paper() const;

private:
    std::optional<PDFFormField> m_field;
};
