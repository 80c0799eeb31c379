#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

class PDFAnnotation;
class PDFDocument;
class PDFPage;
struct PDFDraft;

/// A field of a document's interactive form (ISO 32000-1, 12.7): one value, which one or more widgets show, on any
/// pages. A light handle that looks everything up at its widget; main thread only.
///
/// Scripts and actions of a field are kept in the file and never run.
class PDFFormField {
public:
    enum class Kind { text, checkBox, radioButtons, comboBox, listBox, pushButton, signature };
    enum class Alignment { left = 0, center = 1, right = 2 };

    /// An entry of a choice field.
    struct Choice {
        QString exportValue; ///< what the file stores
        QString label;       ///< what the user sees
        bool operator==(const Choice&) const = default;
    };

    /// The field that a widget shows; none for an annotation that is no widget, is on no page, or has no field type.
    [[nodiscard]] static std::optional<PDFFormField> of(const std::shared_ptr<PDFAnnotation>& widget);

    /// The widgets of a page that can be filled, in tab order (the page's Tabs key; without one rows from the top, each
    /// from the left). Hidden and read-only ones, push buttons and signatures are left out.
    [[nodiscard]] static std::vector<std::shared_ptr<PDFAnnotation>> fillableWidgets(const PDFPage& page);

    /// False for a page of which the file's form tells that it holds no field: that page isn't read for the answer. A
    /// file with widgets and no form that lists any tells nothing.
    [[nodiscard]] static bool mayBeOn(const PDFPage& page);

    /// The widget that the field was asked for at.
    [[nodiscard]] const std::shared_ptr<PDFAnnotation>& widget() const { return m_widget; }
    /// All widgets of the field in the document, this one included; reads pages that hold others.
    [[nodiscard]] std::vector<std::shared_ptr<PDFAnnotation>> widgets() const;

    [[nodiscard]] Kind kind() const;
    /// The full name, parts joined with dots.
    [[nodiscard]] QString name() const;
    /// What to call the field when talking to the user (TU); the name where the file gives none.
    [[nodiscard]] QString userName() const;
    [[nodiscard]] bool isReadOnly() const;
    [[nodiscard]] bool isRequired() const;
    /// True when `setValue` may be called by the user: a kind with a value that isn't read-only, on a widget that
    /// shows.
    [[nodiscard]] bool isFillable() const;

    // Text fields

    [[nodiscard]] bool isMultiline() const;
    [[nodiscard]] bool isPassword() const;
    /// In UTF-16 units, as files count; none without a limit.
    [[nodiscard]] std::optional<int> maximumLength() const;
    /// The text stands in `maximumLength` equal cells.
    [[nodiscard]] bool isComb() const;
    [[nodiscard]] bool doesNotScroll() const;
    /// How text stands in its box; text and choice fields have one, others say `left`.
    [[nodiscard]] Alignment alignment() const;

    // Buttons

    /// The name of the state in which this widget is on; "Yes" where the file has none.
    [[nodiscard]] QString onState() const;
    /// Radio buttons of which one must stay on.
    [[nodiscard]] bool noToggleToOff() const;

    // Choices

    [[nodiscard]] std::vector<Choice> choices() const;
    /// A combo box that takes other text than its choices.
    [[nodiscard]] bool isEditable() const;
    /// A list box with more than one selection.
    [[nodiscard]] bool allowsMultipleSelection() const;

    // Value

    /// Text: one string. Check boxes and radio buttons: the name of the state, "Off" when none is on. Choices: the
    /// export values of what is selected; for an editable combo box perhaps a text of its own.
    [[nodiscard]] QStringList value() const;
    /// Gives all widgets of the field the value and their look. A text is cut to `maximumLength`; what the field can't
    /// take (an unknown choice or state) changes nothing. Read-only fields aren't guarded here: undo must reach them.
    /// Returns true when the value changed. Setting the former `value` takes it back.
    bool setValue(const QStringList& value);
    /// Adds to the draft what `setValue` would do, and changes nothing.
    void addTo(PDFDraft& draft, const QStringList& value) const;

    bool operator==(const PDFFormField&) const = default;

private:
    explicit PDFFormField(std::shared_ptr<PDFAnnotation> widget);
    /// The value that is set when `value` is asked for; none when the field can't take it.
    [[nodiscard]] std::optional<QStringList> accepted(const QStringList& value,
                                                      const std::vector<std::shared_ptr<PDFAnnotation>>& all) const;

    /// Gives `targets`, which are the widgets `all` of the field or copies of them, a value that the field takes.
    void fill(const std::vector<std::shared_ptr<PDFAnnotation>>& targets,
              const std::vector<std::shared_ptr<PDFAnnotation>>& all, const QStringList& value) const;
    /// The one button that comes on with the value where others stay off; null where all of its state do.
    [[nodiscard]] const PDFAnnotation* singleButton(const std::vector<std::shared_ptr<PDFAnnotation>>& all,
                                                    const QStringList& value) const;

    std::shared_ptr<PDFAnnotation> m_widget;
};
