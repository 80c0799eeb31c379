#pragma once

#include "ObjectStore.h"
#include "PDFAnnotationValues.h"

#include <map>
#include <optional>
#include <set>
#include <string>

/// The interactive form of a file that is being written (ISO 32000-1, 12.7): new fields, changed values and removed
/// widgets. Widgets are indirect dictionaries.
class FormFields {
public:
    explicit FormFields(ObjectStore& objects) : m_objects(objects) {}

    /// Makes a new widget's dictionary a field as well and adds it to the form, under the field's name or, when that is
    /// taken, the name with the first free number: "text_1", "text_1_2".
    void add(QPDFObjectHandle widget, const PDFAnnotationValues& values);

    /// What became of a widget's appearance: left alone, made anew, or to be made by other means since the form's font
    /// lacks a character.
    enum class Look { unchanged, made, missing };

    /// Brings the field of a widget to its new value, with the look of all its widgets.
    Look update(QPDFObjectHandle widget, const PDFAnnotationValues& now, const PDFAnnotationValues& before);

    /// Makes the appearance of a text or choice field anew from its dictionary. False when the form's font lacks a
    /// character of the value, which leaves the appearance as it is. A given background takes the place of that in the
    /// dictionary, which can't say how opaque it is.
    bool makeTextAppearance(QPDFObjectHandle widget, const std::optional<QColor>& background = {});

    /// Takes a widget that left its page out of its field; a field without widgets goes too, and so do those above it
    /// that become empty.
    void remove(QPDFObjectHandle widget);

    /// Adds a field to the top of the form with a name of its own, which is returned.
    QString addTopField(QPDFObjectHandle field, const QString& name);

    /// Gives to no other field the names of those that a page shows, of which the form need not know.
    void keepNamesOf(QPDFObjectHandle page);

    /// Removes the form in XML (XFA) that may stand beside this one: it would go on showing the old fields and values.
    void dropOtherForm();

    /// Adds fonts that the form's default resources lack, for new fields or for those of another form.
    void addFonts(QPDFObjectHandle fonts);

    /// The form's dictionary, made when there is none. Null when there is none and `make` is false.
    [[nodiscard]] QPDFObjectHandle form(bool make);

private:
    std::set<QString>& names();
    QString freeName(const QString& wished);
    /// The name, in the form's resources, of the standard font that is nearest; added to them.
    QByteArray standardFont(const QFont& font);
    void setButtonState(QPDFObjectHandle widget, const PDFAnnotationValues& now);
    void setFont(QPDFObjectHandle widget, const PDFAnnotationValues& now, const PDFAnnotationValues& before);
    Look setText(QPDFObjectHandle widget, const PDFAnnotationValues& now);
    void setChosen(QPDFObjectHandle field, const PDFAnnotationValues& now);
    void writeValue(QPDFObjectHandle field, const PDFAnnotationValues& now);

    ObjectStore& m_objects;
    std::map<QPDFObjGen, QStringList> m_written; // values of fields whose widgets all show them
    std::set<QPDFObjGen> m_unshown;           // widgets whose look isn't made, since the form's font lacks a character
    bool m_asksForAppearances = false;        // of other programs, which the file itself doesn't
    std::optional<std::set<QString>> m_names; // of the fields at the top
};
