#include "FormFields.h"

#include "AnnotationDictionary.h"
#include "FieldFont.h"
#include "FieldLook.h"
#include "FormFieldValues.h"
#include "FormTree.h"
#include "PageFont.h"
#include "PdfValues.h"

#include <algorithm>

namespace {

bool sameObject(QPDFObjectHandle a, QPDFObjectHandle b) {
    return a.isIndirect() ? a.getObjGen() == b.getObjGen() : a.isSameObjectAs(b);
}

/// Takes every reference to the object out of an array; false when there was none.
bool eraseFrom(QPDFObjectHandle array, QPDFObjectHandle object) {
    bool found = false;
    for (int i = array.isArray() ? array.getArrayNItems() - 1 : -1; i >= 0; --i) {
        if (!sameObject(array.getArrayItem(i), object))
            continue;
        array.eraseItem(i);
        found = true;
    }
    return found;
}

} // namespace

QPDFObjectHandle FormFields::form(bool make) {
    QPDFObjectHandle root = m_objects.root();
    if (!make && !root.getKey("/AcroForm").isDictionary())
        return QPDFObjectHandle::newNull();
    return m_objects.dictionaryAt(root, "/AcroForm");
}

std::set<QString>& FormFields::names() {
    if (!m_names) {
        m_names.emplace();
        QPDFObjectHandle fields = form(true).getKey("/Fields");
        if (fields.isArray())
            for (QPDFObjectHandle field : fields.aitems())
                if (field.isDictionary())
                    m_names->insert(PdfValues::toText(field.getKey("/T")));
    }
    return *m_names;
}

void FormFields::keepNamesOf(QPDFObjectHandle page) {
    QPDFObjectHandle annotations = page.getKey("/Annots");
    if (!annotations.isArray())
        return;
    for (const QPDFObjectHandle& annotation : annotations.aitems())
        if (PdfValues::entry(annotation, "/Subtype").isNameAndEquals("/Widget"))
            names().insert(PdfValues::toText(FormTree::chain(annotation).back().getKey("/T")));
}

QString FormFields::freeName(const QString& wished) {
    // A dot would say that the field is part of another.
    QString base = QString(wished).replace(QLatin1Char('.'), QLatin1Char('_'));
    if (base.isEmpty())
        base = QStringLiteral("field");
    QString name = base;
    for (int number = 2; !names().insert(name).second; ++number)
        name = base + QLatin1Char('_') + QString::number(number);
    return name;
}

QString FormFields::addTopField(QPDFObjectHandle field, const QString& name) {
    QPDFObjectHandle dictionary = form(true);
    QString own = freeName(name);
    field.replaceKey("/T", PdfValues::text(own));
    QPDFObjectHandle fields = dictionary.getKey("/Fields");
    if (!fields.isArray()) {
        fields = QPDFObjectHandle::newArray();
        dictionary.replaceKey("/Fields", fields);
    }
    fields.appendItem(field);
    m_objects.noteChange(fields.isIndirect() ? fields : dictionary);
    m_objects.noteChange(dictionary);
    return own;
}

void FormFields::addFonts(QPDFObjectHandle fonts) {
    QPDFObjectHandle resources = m_objects.dictionaryAt(form(true), "/DR");
    QPDFObjectHandle known = m_objects.dictionaryAt(resources, "/Font");
    for (const auto& [name, font] : fonts.ditems())
        if (!known.hasKey(name))
            m_objects.set(known, name, font);
}

void FormFields::add(QPDFObjectHandle widget, const PDFAnnotationValues& values) {
    static const std::map<PDFWidgetFieldType, const char*> types{{PDFWidgetFieldType::text, "Tx"},
                                                                 {PDFWidgetFieldType::button, "Btn"},
                                                                 {PDFWidgetFieldType::choice, "Ch"},
                                                                 {PDFWidgetFieldType::signature, "Sig"}};
    if (const auto type = types.find(values.field.type); type != types.end())
        widget.replaceKey("/FT", PdfValues::name(type->second));
    const bool isButton = values.field.type == PDFWidgetFieldType::button;
    int flags = values.field.flags;
    if (isButton && values.field.control == PDFWidgetControlType::radioButton)
        flags |= FormTree::radio;
    if (isButton && values.field.control == PDFWidgetControlType::pushButton)
        flags |= FormTree::pushButton;
    if (flags != 0)
        widget.replaceKey("/Ff", QPDFObjectHandle::newInteger(flags));

    QPDFObjectHandle fonts = QPDFObjectHandle::newDictionary();
    fonts.replaceKey("/Helv", FieldFont::standard("Helvetica"));
    fonts.replaceKey("/ZaDb", QPDFObjectHandle::parse("<< /Type /Font /Subtype /Type1 /BaseFont /ZapfDingbats >>"));
    addFonts(fonts);
    if (!form(true).hasKey("/DA"))
        m_objects.set(form(true), "/DA", QPDFObjectHandle::newString("/Helv 0 Tf 0 g"));

    const QFont font = values.text.font.value_or(QFont(QStringLiteral("Helvetica"), 12));
    const double size = isButton ? 0 : font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize();
    const QColor color = values.text.color.value_or(QColor(Qt::black));
    widget.replaceKey("/DA",
                      QPDFObjectHandle::newString(AnnotationDictionary::defaultAppearance(
                                                      isButton ? QByteArray("ZaDb") : standardFont(font), size, color)
                                                      .toStdString()));
    if (isButton && values.field.control != PDFWidgetControlType::pushButton) {
        QPDFObjectHandle look = widget.getKey("/MK");
        look = look.isDictionary() ? look : QPDFObjectHandle::newDictionary();
        const bool isRadio = values.field.control == PDFWidgetControlType::radioButton;
        look.replaceKey("/CA", QPDFObjectHandle::newString(isRadio ? "l" : "4")); // a dot, a check mark
        widget.replaceKey("/MK", look);
        const std::string state = values.field.state == PDFWidgetCellState::on ? "/Yes" : "/Off";
        widget.replaceKey("/V", QPDFObjectHandle::newName(state));
        widget.replaceKey("/AS", QPDFObjectHandle::newName(state));
    } else if (!values.field.string.isEmpty()) {
        widget.replaceKey("/V", PdfValues::text(values.field.string));
    }
    m_objects.noteChange(widget);
    addTopField(widget, values.field.name);
}

FormFields::Look FormFields::update(QPDFObjectHandle widget, const PDFAnnotationValues& now,
                                    const PDFAnnotationValues& before) {
    QPDFObjectHandle field = FormTree::fieldOf(widget);
    if (now.field.name != before.field.name && field.isIndirect())
        m_objects.set(field, "/T", PdfValues::text(now.field.name.section(QLatin1Char('.'), -1)));
    if (now.field.type == PDFWidgetFieldType::button) {
        if (now.field.state != before.field.state) {
            setButtonState(widget, now);
            dropOtherForm();
        }
        return Look::unchanged;
    }
    if (now.text.font != before.text.font || now.text.color != before.text.color)
        setFont(widget, now, before);
    if (now.field.string == before.field.string && now.field.chosen == before.field.chosen)
        return Look::unchanged;
    dropOtherForm();
    return setText(widget, now);
}

void FormFields::dropOtherForm() {
    QPDFObjectHandle dictionary = form(false);
    if (!dictionary.isDictionary() || !dictionary.hasKey("/XFA"))
        return;
    m_objects.remove(dictionary, "/XFA");
    if (m_objects.root().hasKey("/NeedsRendering"))
        m_objects.remove(m_objects.root(), "/NeedsRendering");
}

QByteArray FormFields::standardFont(const QFont& font) {
    const QByteArray standard = PageFont::standardName(font);
    QByteArray name = PageFont::shortName(standard);
    QPDFObjectHandle fonts = QPDFObjectHandle::newDictionary();
    fonts.replaceKey('/' + name.toStdString(), FieldFont::standard(standard));
    addFonts(fonts);
    return name;
}

void FormFields::setFont(QPDFObjectHandle widget, const PDFAnnotationValues& now, const PDFAnnotationValues& before) {
    const QFont font = now.text.font.value_or(QFont(QStringLiteral("Helvetica"), 12));
    const double size = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize();
    const bool isSame = before.text.font && before.text.font->family() == font.family() &&
                        before.text.font->bold() == font.bold() && before.text.font->italic() == font.italic();
    const QByteArray name = isSame ? FieldLook(widget, form(true)).fontName().mid(1) : standardFont(font);
    widget.replaceKey("/DA", QPDFObjectHandle::newString(AnnotationDictionary::defaultAppearance(
                                                             name, size, now.text.color.value_or(QColor(Qt::black)))
                                                             .toStdString()));
    m_objects.noteChange(widget);
}

void FormFields::setButtonState(QPDFObjectHandle widget, const PDFAnnotationValues& now) {
    QPDFObjectHandle field = FormTree::fieldOf(widget);
    const bool on = now.field.state == PDFWidgetCellState::on;
    const std::string state = FormTree::onState(widget);
    const bool wasOn = FormTree::inherited(field, "/V").isNameAndEquals(state);
    const bool isNoneOn = now.field.chosen.value(0, QStringLiteral("Off")) == QLatin1String("Off");
    if (!on && (!wasOn || !isNoneOn)) {
        // Another button of the group took the value over.
        m_objects.set(widget, "/AS", QPDFObjectHandle::newName("/Off"));
        return;
    }
    const std::string value = on ? state : "/Off";
    if (field.isIndirect())
        m_objects.set(field, "/V", QPDFObjectHandle::newName(value));
    const int flags = int(PdfValues::toNumber(FormTree::inherited(widget, "/Ff")));
    const bool together = !(flags & FormTree::radio) || (flags & FormTree::radiosInUnison);
    m_objects.set(widget, "/AS", QPDFObjectHandle::newName(value));
    const QStringList said{QString::fromStdString(value)};
    if (const auto [written, isNew] = m_written.try_emplace(field.getObjGen(), said); !isNew) {
        if (together && std::exchange(written->second, said) == said)
            return;
    }
    for (QPDFObjectHandle& button : FormTree::widgets(field)) {
        if (button.getObjGen() == widget.getObjGen())
            continue;
        const std::string own = FormTree::onState(button);
        if (button.isIndirect())
            m_objects.set(button, "/AS", QPDFObjectHandle::newName(own == value && together ? own : "/Off"));
    }
}

void FormFields::setChosen(QPDFObjectHandle field, const PDFAnnotationValues& now) {
    QStringList chosen = now.field.chosen;
    if (chosen.isEmpty()) {
        m_objects.remove(field, "/V");
    } else if (chosen.size() == 1) {
        m_objects.set(field, "/V", PdfValues::text(chosen[0]));
    } else {
        QPDFObjectHandle values = QPDFObjectHandle::newArray();
        for (const QString& each : chosen)
            values.appendItem(PdfValues::text(each));
        m_objects.set(field, "/V", values);
    }
    const bool isList = !(now.field.flags & FormTree::combo);
    if (!isList || chosen.isEmpty() || !now.field.inFile || !now.field.inFile->choices)
        return;
    QPDFObjectHandle indices = QPDFObjectHandle::newArray();
    const std::vector<PDFFormField::Choice>& choices = *now.field.inFile->choices;
    for (std::size_t i = 0; i < choices.size(); ++i)
        if (chosen.removeAll(choices[i].exportValue) > 0)
            indices.appendItem(QPDFObjectHandle::newInteger(int(i)));
    m_objects.set(field, "/I", indices);
}

FormFields::Look FormFields::setText(QPDFObjectHandle widget, const PDFAnnotationValues& now) {
    QPDFObjectHandle field = FormTree::fieldOf(widget);
    if (!field.isIndirect())
        return Look::unchanged;
    const QStringList value =
        now.field.type == PDFWidgetFieldType::choice ? now.field.chosen : QStringList{now.field.string};
    const auto [written, isNew] = m_written.try_emplace(field.getObjGen(), value);
    if (isNew || written->second != value) {
        written->second = value;
        writeValue(field, now);
    }
    if (m_unshown.erase(widget.getObjGen()) == 0)
        return Look::made;
    if (m_unshown.empty() && m_asksForAppearances)
        m_objects.remove(form(true), "/NeedAppearances");
    return Look::missing;
}

void FormFields::writeValue(QPDFObjectHandle field, const PDFAnnotationValues& now) {
    m_objects.remove(field, "/I");  // indices of the chosen options, which only repeat the value
    m_objects.remove(field, "/RV"); // the value once more, with styles
    if (now.field.type == PDFWidgetFieldType::choice)
        setChosen(field, now);
    else
        m_objects.set(field, "/V", PdfValues::text(now.field.string));
    for (QPDFObjectHandle& each : FormTree::widgets(field)) {
        if (!each.isIndirect())
            continue;
        if (each.getObjGen() != field.getObjGen() && each.hasKey("/V"))
            m_objects.remove(each, "/V");
        if (makeTextAppearance(each)) {
            m_unshown.erase(each.getObjGen());
            continue;
        }
        // Other widgets of the field may not be on a page that changed; other programs make their look then.
        m_unshown.insert(each.getObjGen());
        if (!form(true).getKey("/NeedAppearances").isBool() || !form(true).getKey("/NeedAppearances").getBoolValue()) {
            m_objects.set(form(true), "/NeedAppearances", QPDFObjectHandle::newBool(true));
            m_asksForAppearances = true;
        }
    }
}

bool FormFields::makeTextAppearance(QPDFObjectHandle widget, const std::optional<QColor>& background) {
    const FieldLook look(widget, form(true));
    if (look.isEmpty())
        return true;
    const QPDFObjectHandle made = look.make(m_objects, background);
    if (!made.isInitialized())
        return false;
    QPDFObjectHandle looks = QPDFObjectHandle::newDictionary();
    looks.replaceKey("/N", made);
    m_objects.set(widget, "/AP", looks);
    return true;
}

void FormFields::remove(QPDFObjectHandle widget) {
    QPDFObjectHandle dictionary = form(false);
    if (dictionary.isNull())
        return;
    const auto eraseAt = [this](QPDFObjectHandle owner, const char* key, QPDFObjectHandle gone) {
        QPDFObjectHandle array = owner.getKey(key);
        if (!eraseFrom(array, gone))
            return;
        if (array.isIndirect())
            m_objects.noteChange(array);
        if (owner.isIndirect())
            m_objects.noteChange(owner);
    };
    bool isField = false; // above the widget, which may stand elsewhere, too
    for (QPDFObjectHandle& gone : FormTree::chain(widget)) {
        eraseAt(dictionary, "/Fields", gone);
        eraseAt(dictionary, "/CO", gone);
        QPDFObjectHandle parent = gone.getKey("/Parent");
        if (parent.isDictionary())
            eraseAt(parent, "/Kids", gone);
        if (std::exchange(isField, true))
            m_objects.erase(gone); // actions may refer to it
        if (!parent.isDictionary())
            return;
        QPDFObjectHandle left = parent.getKey("/Kids");
        if (left.isArray() && left.getArrayNItems() > 0)
            return;
    }
}
