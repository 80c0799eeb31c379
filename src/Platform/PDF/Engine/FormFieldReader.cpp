#include "FormFieldReader.h"

#include "EngineValues.h"
#include "FormFieldValues.h"
#include "FormFont.h"
#include "PDFAnnotationSubtype.h"
#include "PageFont.h"
#include "SourceEngine.h"

#include <algorithm>

namespace {

constexpr int deepestField = 32;
constexpr int choiceLimit = 10000;
constexpr qsizetype partLimit = 1000; // characters of a part of a name
constexpr qsizetype nameLimit = 4000;
constexpr std::size_t streamLimit = std::size_t(4) << 20;

constexpr int radioFlag = 1 << 15;
constexpr int pushButtonFlag = 1 << 16;

QString withPlainBreaks(QString text) {
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return text;
}

PDFWidgetFieldType typeNamed(const QString& name) {
    return name == QLatin1String("Tx")    ? PDFWidgetFieldType::text
           : name == QLatin1String("Btn") ? PDFWidgetFieldType::button
           : name == QLatin1String("Ch")  ? PDFWidgetFieldType::choice
           : name == QLatin1String("Sig") ? PDFWidgetFieldType::signature
                                          : PDFWidgetFieldType::none;
}

} // namespace

pdf_obj* FormFieldReader::get(pdf_obj* dictionary, const char* path) const {
    pdf_obj* object = nullptr;
    engineTry(m_context, [&] { object = pdf_resolve_indirect(m_context, pdf_dict_getp(m_context, dictionary, path)); });
    return object;
}

pdf_obj* FormFieldReader::item(pdf_obj* array, int index) const {
    pdf_obj* object = nullptr;
    engineTry(m_context, [&] { object = pdf_resolve_indirect(m_context, pdf_array_get(m_context, array, index)); });
    return object;
}

pdf_obj* FormFieldReader::inherited(pdf_obj* dictionary, const char* key) const {
    pdf_obj* object = nullptr;
    engineTry(m_context, [&] {
        for (int depth = 0; dictionary && !object && depth < deepestField; ++depth) {
            object = pdf_dict_gets(m_context, dictionary, key);
            dictionary = pdf_dict_get(m_context, dictionary, PDF_NAME(Parent));
        }
    });
    return object;
}

pdf_obj* FormFieldReader::form() const {
    if (!m_form) {
        pdf_obj* found = nullptr;
        engineTry(m_context,
                  [&] { found = pdf_dict_getp(m_context, pdf_trailer(m_context, m_document), "Root/AcroForm"); });
        m_form = found;
    }
    return *m_form;
}

QString FormFieldReader::text(pdf_obj* object) {
    if (pdf_is_name(m_context, object))
        return EngineValues::name(m_context, object);
    pdf_obj* resolved = nullptr;
    engineTry(m_context, [&] { resolved = pdf_resolve_indirect(m_context, object); });
    constexpr std::size_t worthSharing = 64; // bytes
    const bool isStream = pdf_is_stream(m_context, object) != 0;
    const bool isLong =
        isStream || (pdf_is_string(m_context, resolved) && pdf_to_str_len(m_context, resolved) > worthSharing);
    if (!isLong)
        return withPlainBreaks(EngineValues::text(m_context, resolved));
    const auto known = m_texts.find(resolved);
    if (known != m_texts.end())
        return known->second;
    QString value = withPlainBreaks(isStream ? streamText(object) : EngineValues::text(m_context, resolved));
    return m_texts.emplace(resolved, std::move(value)).first->second;
}

QString FormFieldReader::streamText(pdf_obj* stream) const {
    QByteArray bytes(qsizetype(streamLimit), Qt::Uninitialized);
    std::size_t length = 0;
    fz_stream* opened = nullptr;
    pdf_obj* string = nullptr;
    engineTry(m_context, [&] {
        opened = pdf_open_stream(m_context, stream);
        length = fz_read(m_context, opened, reinterpret_cast<unsigned char*>(bytes.data()), streamLimit);
    });
    fz_drop_stream(m_context, opened);
    engineTry(m_context, [&] { string = pdf_new_string(m_context, bytes.constData(), length); });
    QString value = EngineValues::text(m_context, string);
    pdf_drop_obj(m_context, string);
    return value;
}

QString FormFieldReader::fullName(pdf_obj* field) {
    QStringList parts;
    for (int depth = 0; field && depth < deepestField; ++depth) {
        pdf_obj* partial = nullptr;
        engineTry(m_context, [&] {
            partial = pdf_dict_get(m_context, field, PDF_NAME(T));
            field = pdf_dict_get(m_context, field, PDF_NAME(Parent));
        });
        if (partial)
            parts.prepend(text(partial).left(partLimit));
    }
    return parts.join(QLatin1Char('.')).left(nameLimit);
}

QFont FormFieldReader::font(const QString& name, double size, bool isField) {
    if (const auto known = m_fonts.find({name, isField}); known != m_fonts.end()) {
        QFont font = known->second;
        font.setPointSizeF(size);
        return font;
    }
    pdf_obj* resource = nullptr;
    const QByteArray key = name.toUtf8();
    engineTry(m_context, [&] {
        resource = pdf_dict_gets(m_context, pdf_dict_getp(m_context, form(), "DR/Font"), key.constData());
    });
    FormFont font;
    font.resource = name;
    font.baseFont = EngineValues::name(m_context, get(resource, "BaseFont"));
    const QString subtype = EngineValues::name(m_context, get(resource, "Subtype"));
    font.isSimple = subtype == QLatin1String("Type1") || subtype == QLatin1String("TrueType");
    for (const char* file : {"FontDescriptor/FontFile", "FontDescriptor/FontFile2", "FontDescriptor/FontFile3"})
        font.isEmbedded = font.isEmbedded || get(resource, file) != nullptr;
    font.hasEncoding = get(resource, "Encoding") != nullptr;
    font.flags = pdf_to_int(m_context, get(resource, "FontDescriptor/Flags"));
    const QFont made = isField                   ? font.ofField(size)
                       : font.baseFont.isEmpty() ? PageFont::ofDefaultAppearance(name, size)
                                                 : font.nearest(size);
    return m_fonts.emplace(std::pair(name, isField), made).first->second;
}

bool FormFieldReader::hasAppearance(pdf_obj* annotation) const {
    const QString subtype = EngineValues::name(m_context, get(annotation, "Subtype"));
    if (subtype == PDFAnnotationSubtype::link)
        return EngineValues::linkFrame(m_context, annotation).has_value();
    if (!pdf_is_dict(m_context, get(annotation, "AP/N")))
        return false;
    if (subtype == PDFAnnotationSubtype::text && EngineValues::rect(m_context, get(annotation, "Rect")).isEmpty())
        return false;
    if (!m_wantsAppearances)
        m_wantsAppearances = pdf_to_bool(m_context, get(form(), "NeedAppearances")) != 0;
    if (!*m_wantsAppearances || subtype != PDFAnnotationSubtype::widget)
        return true;
    const PDFWidgetFieldType type = typeNamed(EngineValues::name(m_context, inherited(annotation, "FT")));
    return type != PDFWidgetFieldType::text && type != PDFWidgetFieldType::choice;
}

FormFieldReader::Choices FormFieldReader::choices(pdf_obj* options) {
    const int count = std::min(pdf_array_len(m_context, options), choiceLimit);
    if (count == 0)
        return nullptr;
    pdf_obj* resolved = nullptr;
    engineTry(m_context, [&] { resolved = pdf_resolve_indirect(m_context, options); });
    if (const auto known = m_choices.find(resolved); known != m_choices.end())
        return known->second;
    auto list = std::make_shared<std::vector<PDFFormField::Choice>>();
    list->reserve(std::size_t(count));
    for (int i = 0; i < count; ++i) {
        pdf_obj* option = item(options, i);
        const bool isPair = pdf_is_array(m_context, option) != 0;
        PDFFormField::Choice choice;
        choice.exportValue = text(isPair ? item(option, 0) : option);
        choice.label = isPair && pdf_array_len(m_context, option) > 1 ? text(item(option, 1)) : choice.exportValue;
        list->push_back(std::move(choice));
    }
    return m_choices.emplace(resolved, std::move(list)).first->second;
}

void FormFieldReader::readButton(pdf_obj* widget, PDFAnnotationValues& values, FormFieldValues& field) {
    pdf_obj* looks = get(widget, "AP/N");
    const bool isStream = pdf_is_stream(m_context, looks) != 0; // the same in every state
    const int count = isStream ? 0 : pdf_dict_len(m_context, looks);
    for (int i = 0; i < std::min(count, deepestField) && field.onState.isEmpty(); ++i) {
        pdf_obj* key = nullptr;
        engineTry(m_context, [&] { key = pdf_dict_get_key(m_context, looks, i); });
        const QString name = EngineValues::name(m_context, key);
        if (name != QLatin1String("Off"))
            field.onState = name;
    }
    field.hasStateLooks = !field.onState.isEmpty();
    const QString value = text(inherited(widget, "V"));
    QString state = EngineValues::name(m_context, get(widget, "AS"));
    if (field.onState.isEmpty() && !state.isEmpty() && state != QLatin1String("Off"))
        field.onState = state;
    if (field.onState.isEmpty())
        field.onState = QStringLiteral("Yes");
    if (state.isEmpty())
        state = value == field.onState ? value : QString();
    const bool on = !state.isEmpty() && state != QLatin1String("Off");
    values.field.state = on ? PDFWidgetCellState::on : PDFWidgetCellState::off;
    field.stateInFile = values.field.state;
    values.field.string = value;
    values.field.chosen = {!value.isEmpty() ? value : on ? state : QStringLiteral("Off")};
}

QStringList FormFieldReader::chosen(pdf_obj* widget, const Choices& choices) {
    pdf_obj* value = inherited(widget, "V");
    if (const QString single = text(value); !single.isEmpty())
        return {single};
    pdf_obj* list = pdf_is_array(m_context, value) ? value : inherited(widget, "I");
    const int count = std::min(pdf_array_len(m_context, list), choiceLimit);
    if (count == 0)
        return {};
    const auto [known, isNew] = m_chosen.try_emplace({list, choices});
    if (!isNew)
        return known->second;
    QStringList values;
    for (int i = 0; i < count; ++i) {
        if (list == value) {
            values += text(item(list, i));
            continue;
        }
        const int index = pdf_to_int(m_context, item(list, i));
        if (choices && index >= 0 && index < int(choices->size()))
            values += (*choices)[std::size_t(index)].exportValue;
    }
    return known->second = values;
}

void FormFieldReader::read(pdf_obj* widget, PDFAnnotationValues& values) {
    auto field = std::make_shared<FormFieldValues>();
    values.field.type = typeNamed(EngineValues::name(m_context, inherited(widget, "FT")));
    values.field.flags = pdf_to_int(m_context, inherited(widget, "Ff"));
    values.field.control = values.field.flags & pushButtonFlag ? PDFWidgetControlType::pushButton
                           : values.field.flags & radioFlag    ? PDFWidgetControlType::radioButton
                                                               : PDFWidgetControlType::checkBox;
    values.field.name = fullName(widget);
    values.interiorColor = EngineValues::color(m_context, get(widget, "MK/BG"));
    if (const auto edge = EngineValues::color(m_context, get(widget, "MK/BC")))
        values.color = edge;
    engineTry(m_context, [&] {
        pdf_obj* holder = widget;
        for (int depth = 0; holder && depth < deepestField; ++depth) {
            if (pdf_dict_get(m_context, holder, PDF_NAME(T))) {
                field->fieldObject = pdf_is_indirect(m_context, holder) ? pdf_to_num(m_context, holder)
                                                                        : pdf_obj_parent_num(m_context, holder);
                break;
            }
            holder = pdf_dict_get(m_context, holder, PDF_NAME(Parent));
        }
    });
    field->userName = text(inherited(widget, "TU"));
    pdf_obj* alignment = inherited(widget, "Q");
    if (!alignment)
        alignment = get(form(), "Q");
    field->alignment = PDFFormField::Alignment(std::clamp(pdf_to_int(m_context, alignment), 0, 2));
    if (pdf_obj* length = inherited(widget, "MaxLen"); pdf_is_number(m_context, length))
        if (const int limit = pdf_to_int(m_context, length); limit > 0)
            field->maximumLength = limit;
    field->mark = EngineValues::text(m_context, get(widget, "MK/CA")).left(1);
    values.field.turn = (((pdf_to_int(m_context, get(widget, "MK/R")) % 360) + 360 + 45) / 90 * 90) % 360;

    switch (values.field.type) {
    case PDFWidgetFieldType::text:
        values.field.string = text(inherited(widget, "V"));
        field->valueInFile = {values.field.string};
        break;
    case PDFWidgetFieldType::button:
        readButton(widget, values, *field);
        field->valueInFile = values.field.chosen;
        break;
    case PDFWidgetFieldType::choice:
        field->choices = choices(inherited(widget, "Opt"));
        field->topIndex = std::clamp(pdf_to_int(m_context, inherited(widget, "TI")), 0, choiceLimit);
        values.field.chosen = chosen(widget, field->choices);
        values.field.string = values.field.chosen.value(0);
        field->valueInFile = values.field.chosen;
        break;
    case PDFWidgetFieldType::signature:
    case PDFWidgetFieldType::none:
        break;
    }
    values.field.inFile = std::move(field);
}

char FormFieldReader::tabOrder(SourceEngine& engine, int pageNumber) {
    const SourceEngine::Lease borrowed = engine.lease();
    if (!borrowed || pageNumber < 0 || pageNumber >= engine.pageCount())
        return '\0';
    fz_context* context = borrowed.context();
    char order = '\0';
    engineTry(context, [&] {
        pdf_obj* page = pdf_lookup_page_obj(context, borrowed.document(), pageNumber);
        const char* name = pdf_to_name(context, pdf_dict_gets(context, page, "Tabs"));
        order = name[0];
    });
    return order;
}
