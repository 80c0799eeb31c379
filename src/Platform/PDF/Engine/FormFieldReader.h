#pragma once

#include "EngineContext.h"
#include "PDFAnnotationValues.h"
#include "PDFFormField.h"

#include <QFont>

#include <map>
#include <memory>
#include <optional>
#include <vector>

class SourceEngine;
struct FormFieldValues;

/// Reads what widgets say of their fields, with all that they inherit (ISO 32000-1, 12.7.3). Any thread, one at a time.
class FormFieldReader {
public:
    FormFieldReader(fz_context* context, pdf_document* document) : m_context(context), m_document(document) {}

    /// Fills in the part of a form field. `widget` is a resolved dictionary.
    void read(pdf_obj* widget, PDFAnnotationValues& values);

    /// The value of a key at the dictionary or the nearest one above that has it; null when none has.
    [[nodiscard]] pdf_obj* inherited(pdf_obj* dictionary, const char* key) const;

    /// The form's own dictionary, or null.
    [[nodiscard]] pdf_obj* form() const;

    /// The full name, parts joined with dots.
    [[nodiscard]] QString fullName(pdf_obj* field);

    /// The font that a default appearance names, as the form's resources describe it. That of a field is the one in
    /// which its new text is saved.
    [[nodiscard]] QFont font(const QString& name, double size, bool isField);

    /// The file gives a look that the engine draws: the frame of a link, or a normal appearance (AP, N) that counts. A
    /// form may ask for new ones of its text and choices, and a note without a size can't show one.
    [[nodiscard]] bool hasAppearance(pdf_obj* annotation) const;

    /// The Tabs key of a page (R, C, S, A or W); a null character without one.
    [[nodiscard]] static char tabOrder(SourceEngine& engine, int pageNumber);

private:
    using Choices = std::shared_ptr<const std::vector<PDFFormField::Choice>>;

    [[nodiscard]] pdf_obj* get(pdf_obj* dictionary, const char* path) const;
    [[nodiscard]] pdf_obj* item(pdf_obj* array, int index) const;
    /// A string, a name or a text stream, with "\n" for every break.
    [[nodiscard]] QString text(pdf_obj* object);
    [[nodiscard]] QString streamText(pdf_obj* stream) const;
    [[nodiscard]] Choices choices(pdf_obj* options);
    [[nodiscard]] QStringList chosen(pdf_obj* widget, const Choices& choices);
    void readButton(pdf_obj* widget, PDFAnnotationValues& values, FormFieldValues& field);

    fz_context* m_context;
    pdf_document* m_document;
    mutable std::optional<pdf_obj*> m_form;
    mutable std::optional<bool> m_wantsAppearances;
    std::map<std::pair<QString, bool>, QFont> m_fonts; // by name in the form's resources, of fields and others
    // What widgets inherit is read once and shared, however many of them a file makes.
    std::map<pdf_obj*, QString> m_texts;
    std::map<pdf_obj*, Choices> m_choices;
    std::map<std::pair<pdf_obj*, Choices>, QStringList> m_chosen;
};
