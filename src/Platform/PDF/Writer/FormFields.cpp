#include "FormFields.h"

#include "AnnotationDictionary.h"
#include "AppearanceStreams.h"
#include "FieldText.h"
#include "FormTree.h"
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

double borderWidth(QPDFObjectHandle widget) {
    QPDFObjectHandle border = widget.getKey("/Border");
    const double plain =
        border.isArray() && border.getArrayNItems() > 2 ? PdfValues::toNumber(border.getArrayItem(2), 1) : 1.0;
    const double width = PdfValues::toNumber(PdfValues::entry(widget.getKey("/BS"), "/W"), plain);
    return std::clamp(width, 0.0, 100.0);
}

/// What a choice field shows for its value: Opt gives pairs of the value and its label, or just labels.
QString choiceLabel(QPDFObjectHandle widget, const QString& value) {
    QPDFObjectHandle options = FormTree::inherited(widget, "/Opt");
    for (int i = 0; options.isArray() && i < options.getArrayNItems(); ++i) {
        QPDFObjectHandle option = options.getArrayItem(i);
        if (option.isArray() && option.getArrayNItems() == 2 && PdfValues::toText(option.getArrayItem(0)) == value)
            return PdfValues::toText(option.getArrayItem(1));
    }
    return value;
}

/// The last font, size and colour that a DA string sets.
struct DefaultAppearance {
    QByteArray fontName = "/Helv";
    double size = 0;
    QByteArray colorOperators = "0 g";

    explicit DefaultAppearance(const QByteArray& operators) {
        const QList<QByteArray> words = operators.simplified().split(' ');
        for (qsizetype i = 0; i < words.size(); ++i) {
            const QByteArray& word = words[i];
            if (word == "Tf" && i >= 2 && words[i - 2].startsWith('/')) {
                fontName = words[i - 2];
                size = std::clamp(words[i - 1].toDouble(), 0.0, 1000.0);
            }
            const int parts = word == "g" ? 1 : word == "rg" ? 3 : word == "k" ? 4 : 0;
            if (parts > 0 && i >= parts)
                colorOperators = words.mid(i - parts, parts + 1).join(' ');
        }
    }
};

} // namespace

QPDFObjectHandle FormFields::form(bool make) {
    QPDFObjectHandle root = m_objects.root();
    if (!make && !root.getKey("/AcroForm").isDictionary())
        return QPDFObjectHandle::newNull();
    return m_objects.dictionaryAt(root, "/AcroForm");
}

QString FormFields::freeName(const QString& wished) {
    if (!m_names) {
        m_names.emplace();
        QPDFObjectHandle fields = form(true).getKey("/Fields");
        if (fields.isArray())
            for (QPDFObjectHandle field : fields.aitems())
                if (field.isDictionary())
                    m_names->insert(PdfValues::toText(field.getKey("/T")));
    }
    // A dot would say that the field is part of another.
    QString base = QString(wished).replace(QLatin1Char('.'), QLatin1Char('_'));
    if (base.isEmpty())
        base = QStringLiteral("field");
    QString name = base;
    for (int number = 2; m_names->count(name) > 0; ++number)
        name = base + QLatin1Char('_') + QString::number(number);
    m_names->insert(name);
    return name;
}

void FormFields::addTopField(QPDFObjectHandle field, const QString& name) {
    QPDFObjectHandle dictionary = form(true);
    field.replaceKey("/T", PdfValues::text(freeName(name)));
    QPDFObjectHandle fields = dictionary.getKey("/Fields");
    if (!fields.isArray()) {
        fields = QPDFObjectHandle::newArray();
        dictionary.replaceKey("/Fields", fields);
    }
    fields.appendItem(field);
    m_objects.noteChange(fields.isIndirect() ? fields : dictionary);
    m_objects.noteChange(dictionary);
}

void FormFields::addFonts(QPDFObjectHandle fonts) {
    QPDFObjectHandle resources = m_objects.dictionaryAt(form(true), "/DR");
    QPDFObjectHandle known = m_objects.dictionaryAt(resources, "/Font");
    for (const auto& [name, font] : fonts.ditems())
        if (!known.hasKey(name))
            m_objects.set(known, name, font);
}

void FormFields::add(QPDFObjectHandle widget, const PDFAnnotation::Values& values) {
    static const std::map<PDFWidgetFieldType, const char*> types{{PDFWidgetFieldType::text, "Tx"},
                                                                 {PDFWidgetFieldType::button, "Btn"},
                                                                 {PDFWidgetFieldType::choice, "Ch"},
                                                                 {PDFWidgetFieldType::signature, "Sig"}};
    if (const auto type = types.find(values.widgetFieldType); type != types.end())
        widget.replaceKey("/FT", PdfValues::name(type->second));
    const bool isButton = values.widgetFieldType == PDFWidgetFieldType::button;
    int flags = values.fieldFlags;
    if (isButton && values.widgetControlType == PDFWidgetControlType::radioButton)
        flags |= FormTree::radio;
    if (isButton && values.widgetControlType == PDFWidgetControlType::pushButton)
        flags |= FormTree::pushButton;
    if (flags != 0)
        widget.replaceKey("/Ff", QPDFObjectHandle::newInteger(flags));

    QPDFObjectHandle fonts = QPDFObjectHandle::newDictionary();
    fonts.replaceKey("/Helv", FieldFont::helvetica());
    fonts.replaceKey("/ZaDb", QPDFObjectHandle::parse("<< /Type /Font /Subtype /Type1 /BaseFont /ZapfDingbats >>"));
    addFonts(fonts);
    if (!form(true).hasKey("/DA"))
        m_objects.set(form(true), "/DA", QPDFObjectHandle::newString("/Helv 0 Tf 0 g"));

    const QFont font = values.font.value_or(QFont(QStringLiteral("Helvetica"), 12));
    const double size = isButton ? 0 : font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize();
    const QColor color = values.fontColor.value_or(QColor(Qt::black));
    widget.replaceKey(
        "/DA", QPDFObjectHandle::newString(
                   AnnotationDictionary::defaultAppearance(isButton ? "ZaDb" : "Helv", size, color).toStdString()));
    if (isButton && values.widgetControlType != PDFWidgetControlType::pushButton) {
        QPDFObjectHandle look = widget.getKey("/MK");
        look = look.isDictionary() ? look : QPDFObjectHandle::newDictionary();
        const bool isRadio = values.widgetControlType == PDFWidgetControlType::radioButton;
        look.replaceKey("/CA", QPDFObjectHandle::newString(isRadio ? "l" : "4")); // a dot, a check mark
        widget.replaceKey("/MK", look);
        const std::string state = values.buttonWidgetState == PDFWidgetCellState::on ? "/Yes" : "/Off";
        widget.replaceKey("/V", QPDFObjectHandle::newName(state));
        widget.replaceKey("/AS", QPDFObjectHandle::newName(state));
    } else if (!values.widgetStringValue.isEmpty()) {
        widget.replaceKey("/V", PdfValues::text(values.widgetStringValue));
    }
    m_objects.noteChange(widget);
    addTopField(widget, values.fieldName);
}

FormFields::Look FormFields::update(QPDFObjectHandle widget, const PDFAnnotation::Values& now,
                                    const PDFAnnotation::Values& before) {
    QPDFObjectHandle field = FormTree::fieldOf(widget);
    if (now.fieldName != before.fieldName && field.isIndirect())
        m_objects.set(field, "/T", PdfValues::text(now.fieldName.section(QLatin1Char('.'), -1)));
    if (now.widgetFieldType == PDFWidgetFieldType::button) {
        if (now.buttonWidgetState != before.buttonWidgetState)
            setButtonState(widget, now.buttonWidgetState == PDFWidgetCellState::on);
        return Look::unchanged;
    }
    if (now.font != before.font || now.fontColor != before.fontColor)
        setFont(widget, now, before);
    return now.widgetStringValue == before.widgetStringValue ? Look::unchanged : setText(widget, now.widgetStringValue);
}

void FormFields::setFont(QPDFObjectHandle widget, const PDFAnnotation::Values& now,
                         const PDFAnnotation::Values& before) {
    const QFont font = now.font.value_or(QFont(QStringLiteral("Helvetica"), 12));
    const double size = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize();
    QByteArray name = "Helv";
    if (before.font && before.font->family() == font.family())
        name = DefaultAppearance(defaultAppearanceOf(widget)).fontName.mid(1);
    widget.replaceKey("/DA", QPDFObjectHandle::newString(AnnotationDictionary::defaultAppearance(
                                                             name, size, now.fontColor.value_or(QColor(Qt::black)))
                                                             .toStdString()));
    m_objects.noteChange(widget);
}

QByteArray FormFields::defaultAppearanceOf(QPDFObjectHandle widget) {
    QPDFObjectHandle operators = FormTree::inherited(widget, "/DA");
    if (operators.isNull())
        operators = form(true).getKey("/DA");
    return operators.isString() ? QByteArray::fromStdString(operators.getStringValue()) : QByteArray();
}

void FormFields::setButtonState(QPDFObjectHandle widget, bool on) {
    QPDFObjectHandle field = FormTree::fieldOf(widget);
    const std::string state = FormTree::onState(widget);
    const bool wasOn = FormTree::inherited(field, "/V").isNameAndEquals(state);
    if (!on && !wasOn) {
        // Another button of the group took the value over.
        m_objects.set(widget, "/AS", QPDFObjectHandle::newName("/Off"));
        return;
    }
    const std::string value = on ? state : "/Off";
    if (field.isIndirect())
        m_objects.set(field, "/V", QPDFObjectHandle::newName(value));
    for (QPDFObjectHandle& button : FormTree::widgets(field)) {
        const std::string own = FormTree::onState(button);
        if (button.isIndirect())
            m_objects.set(button, "/AS", QPDFObjectHandle::newName(own == value ? own : "/Off"));
    }
    m_objects.set(widget, "/AS", QPDFObjectHandle::newName(value));
}

FormFields::Look FormFields::setText(QPDFObjectHandle widget, const QString& value) {
    QPDFObjectHandle field = FormTree::fieldOf(widget);
    if (!field.isIndirect())
        return Look::unchanged;
    m_objects.set(field, "/V", PdfValues::text(value));
    m_objects.remove(field, "/I");  // indices of the chosen options, which only repeat the value
    m_objects.remove(field, "/RV"); // the value once more, with styles
    Look result = Look::made;
    for (QPDFObjectHandle& each : FormTree::widgets(field)) {
        if (!each.isIndirect() || makeTextAppearance(each))
            continue;
        if (each.getObjGen() == widget.getObjGen())
            result = Look::missing;
        else
            askForAppearances();
    }
    return result;
}

void FormFields::askForAppearances() {
    m_objects.set(form(true), "/NeedAppearances", QPDFObjectHandle::newBool(true));
}

bool FormFields::makeTextAppearance(QPDFObjectHandle widget, const std::optional<QColor>& background) {
    const std::optional<QRectF> rect = PdfValues::toRect(widget.getKey("/Rect"));
    if (!rect || rect->isEmpty())
        return true;
    QPDFObjectHandle dictionary = form(true);
    const bool isChoice = FormTree::inherited(widget, "/FT").isNameAndEquals("/Ch");
    const int flags = int(PdfValues::toNumber(FormTree::inherited(widget, "/Ff")));
    const DefaultAppearance style(defaultAppearanceOf(widget));
    QPDFObjectHandle fonts = PdfValues::entry(dictionary.getKey("/DR"), "/Font");
    const FieldFont font(PdfValues::entry(fonts, style.fontName.toStdString()));

    FieldText text;
    text.text = PdfValues::toText(FormTree::inherited(widget, "/V"));
    if (isChoice)
        text.text = choiceLabel(widget, text.text);
    else if (flags & FormTree::password)
        text.text.fill(QLatin1Char('*'));
    const int turn = int(PdfValues::toNumber(PdfValues::entry(widget.getKey("/MK"), "/R"))) % 360;
    const bool sideways = turn % 180 != 0;
    text.box = sideways ? rect->size().transposed() : rect->size();
    text.inset = 2 * std::max(1.0, borderWidth(widget));
    text.size = style.size;
    text.alignment =
        int(PdfValues::toNumber(FormTree::inherited(widget, "/Q"), PdfValues::toNumber(dictionary.getKey("/Q"))));
    text.multiline = !isChoice && (flags & FormTree::multiline);
    if (!isChoice && (flags & FormTree::comb) && !text.multiline)
        text.comb = std::clamp(int(PdfValues::toNumber(FormTree::inherited(widget, "/MaxLen"))), 0, 1000);

    const std::optional<QByteArray> shown = text.operators(font, style.fontName, style.colorOperators);
    if (!shown)
        return false;

    AnnotationDrawing box;
    const QRectF area(QPointF(), text.box);
    QPDFObjectHandle look = widget.getKey("/MK");
    AnnotationDrawing::Part fill;
    fill.path.addRect(area);
    fill.fill = background ? background : PdfValues::toColor(PdfValues::entry(look, "/BG"));
    AnnotationDrawing::Part edge;
    edge.lineWidth = borderWidth(widget);
    edge.path.addRect(area.adjusted(edge.lineWidth / 2, edge.lineWidth / 2, -edge.lineWidth / 2, -edge.lineWidth / 2));
    if (edge.lineWidth > 0)
        edge.stroke = PdfValues::toColor(PdfValues::entry(look, "/BC"));
    box.parts = {fill, edge};

    QPDFObjectHandle resources = QPDFObjectHandle::newDictionary();
    QPDFObjectHandle used = QPDFObjectHandle::newDictionary();
    used.replaceKey(style.fontName.toStdString(), font.dictionary());
    resources.replaceKey("/Font", used);
    const QByteArray clip =
        "1 1 " + PdfValues::real(area.width() - 2) + ' ' + PdfValues::real(area.height() - 2) + " re W n\n";
    const QByteArray content =
        AppearanceStreams::paintOperators(box, resources) + "/Tx BMC\nq\n" + clip + *shown + "Q\nEMC\n";
    QPDFObjectHandle form = AppearanceStreams::form(m_objects, content, resources, area, turn);
    QPDFObjectHandle looks = QPDFObjectHandle::newDictionary();
    looks.replaceKey("/N", form);
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
    for (QPDFObjectHandle& gone : FormTree::chain(widget)) {
        eraseAt(dictionary, "/Fields", gone);
        eraseAt(dictionary, "/CO", gone);
        QPDFObjectHandle parent = gone.getKey("/Parent");
        if (!parent.isDictionary())
            return;
        eraseAt(parent, "/Kids", gone);
        QPDFObjectHandle left = parent.getKey("/Kids");
        if (left.isArray() && left.getArrayNItems() > 0)
            return;
    }
}
