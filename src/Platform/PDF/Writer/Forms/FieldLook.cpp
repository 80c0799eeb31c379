#include "FieldLook.h"

#include "AnnotationDrawing.h"
#include "AppearanceStreams.h"
#include "FieldDrawing.h"
#include "FieldFont.h"
#include "FieldFrame.h"
#include "FormFieldValues.h"
#include "FormTree.h"
#include "PdfValues.h"

#include <algorithm>

namespace {

constexpr int mostChoices = 10000;

PDFBorder borderOf(QPDFObjectHandle widget) {
    PDFBorder border;
    QPDFObjectHandle plain = widget.getKey("/Border");
    QPDFObjectHandle style = widget.getKey("/BS");
    QPDFObjectHandle dashes = PdfValues::entry(style, "/D");
    if (plain.isArray() && plain.getArrayNItems() > 2)
        border.lineWidth = PdfValues::toNumber(plain.getArrayItem(2), 1);
    if (plain.isArray() && plain.getArrayNItems() > 3 && !style.isDictionary()) {
        border.style = PDFBorderStyle::dashed;
        dashes = plain.getArrayItem(3);
    }
    border.lineWidth = std::clamp(PdfValues::toNumber(PdfValues::entry(style, "/W"), border.lineWidth), 0.0, 100.0);
    QPDFObjectHandle kind = PdfValues::entry(style, "/S");
    if (kind.isNameAndEquals("/D"))
        border.style = PDFBorderStyle::dashed;
    else if (kind.isNameAndEquals("/B"))
        border.style = PDFBorderStyle::beveled;
    else if (kind.isNameAndEquals("/I"))
        border.style = PDFBorderStyle::inset;
    else if (kind.isNameAndEquals("/U"))
        border.style = PDFBorderStyle::underline;
    constexpr int mostDashes = 16;
    if (dashes.isArray() && dashes.getArrayNItems() <= mostDashes)
        for (const QPDFObjectHandle& dash : dashes.aitems())
            border.dashPattern.push_back(PdfValues::toNumber(dash));
    return border;
}

QString optionText(QPDFObjectHandle option, int place) {
    if (option.isArray())
        option = option.getArrayNItems() > place ? option.getArrayItem(place) : option.getArrayItem(0);
    return PdfValues::toText(option);
}

} // namespace

FieldLook::FieldLook(QPDFObjectHandle widget, QPDFObjectHandle form)
    : m_widget(widget), m_form(form), m_rect(PdfValues::toRect(widget.getKey("/Rect")).value_or(QRectF())),
      m_isChoice(FormTree::inherited(widget, "/FT").isNameAndEquals("/Ch")),
      m_flags(int(PdfValues::toNumber(FormTree::inherited(widget, "/Ff")))),
      m_turn(((int(PdfValues::toNumber(PdfValues::entry(widget.getKey("/MK"), "/R"))) % 360 + 360 + 45) / 90 * 90) %
             360) {
    QPDFObjectHandle operators = FormTree::inherited(widget, "/DA");
    if (operators.isNull())
        operators = form.getKey("/DA");
    if (!operators.isString())
        return;
    // The last font, size and colour that it sets.
    const QList<QByteArray> words = QByteArray::fromStdString(operators.getStringValue()).simplified().split(' ');
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QByteArray& word = words[i];
        if (word == "Tf" && i >= 2 && words[i - 2].startsWith('/')) {
            m_fontName = words[i - 2];
            m_size = words[i - 1].toDouble();
            if (!(m_size > 0 && m_size < 1000))
                m_size = 0;
        }
        const int parts = word == "g" ? 1 : word == "rg" ? 3 : word == "k" ? 4 : 0;
        if (parts > 0 && i >= parts)
            m_colorOperators = words.mid(i - parts, parts + 1).join(' ');
    }
}

FieldFrame FieldLook::frame() const {
    QPDFObjectHandle widget = m_widget;
    FieldFrame frame;
    frame.box = m_turn % 180 != 0 ? m_rect.size().transposed() : m_rect.size();
    frame.background = PdfValues::toColor(PdfValues::entry(widget.getKey("/MK"), "/BG"));
    frame.edge = PdfValues::toColor(PdfValues::entry(widget.getKey("/MK"), "/BC"));
    frame.border = borderOf(m_widget);
    if (!m_isChoice && (m_flags & FormTree::comb) && !(m_flags & (FormTree::multiline | FormTree::password)))
        frame.cells = int(std::clamp(PdfValues::toNumber(FormTree::inherited(m_widget, "/MaxLen")), 0.0,
                                     double(FormFieldValues::mostCells)));
    return frame;
}

QString FieldLook::label(const QString& exportValue) const {
    QPDFObjectHandle options = FormTree::inherited(m_widget, "/Opt");
    for (int i = 0; options.isArray() && i < std::min(options.getArrayNItems(), mostChoices); ++i)
        if (optionText(options.getArrayItem(i), 0) == exportValue)
            return optionText(options.getArrayItem(i), 1);
    return exportValue;
}

void FieldLook::addRows(FieldText& text) const {
    text.kind = FieldText::Kind::rows;
    QPDFObjectHandle value = FormTree::inherited(m_widget, "/V");
    QStringList chosen;
    for (const QPDFObjectHandle& each : value.isArray() ? value.getArrayAsVector() : std::vector{value})
        chosen += PdfValues::toText(each);
    QPDFObjectHandle options = FormTree::inherited(m_widget, "/Opt");
    const int count = options.isArray() ? std::min(options.getArrayNItems(), mostChoices) : 0;
    const int first = std::max(0, int(PdfValues::toNumber(FormTree::inherited(m_widget, "/TI"))));
    for (int i = first; i < count; ++i) {
        if (chosen.contains(optionText(options.getArrayItem(i), 0)) && !value.isNull())
            text.chosen.push_back(text.rows.size());
        text.rows += optionText(options.getArrayItem(i), 1);
    }
}

FieldText FieldLook::text(const FieldFrame& frame, const FieldFont& font) const {
    FieldText text;
    text.box = frame.box;
    text.border = frame.thickness();
    text.size = m_size;
    QPDFObjectHandle form = m_form;
    text.alignment =
        int(PdfValues::toNumber(FormTree::inherited(m_widget, "/Q"), PdfValues::toNumber(form.getKey("/Q"))));
    text.text = PdfValues::toText(FormTree::inherited(m_widget, "/V"));
    text.text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    if (m_isChoice && !(m_flags & FormTree::combo))
        addRows(text);
    else if (m_isChoice)
        text.text = label(text.text);
    else if (m_flags & FormTree::multiline)
        text.kind = FieldText::Kind::wrapped;
    else if (m_flags & FormTree::password) {
        const QString dots = FieldDrawing::dots(text.text.size());
        text.text = font.encode(dots) ? dots : QString(dots.size(), QLatin1Char('*'));
    } else if (frame.cells > 0)
        text.kind = FieldText::Kind::comb;
    text.cells = frame.cells;
    return text;
}

QPDFObjectHandle FieldLook::make(ObjectStore& objects, const std::optional<QColor>& background) const {
    QPDFObjectHandle ownForm = m_form;
    QPDFObjectHandle fonts = PdfValues::entry(ownForm.getKey("/DR"), "/Font");
    const FieldFont font(PdfValues::entry(fonts, m_fontName.toStdString()), m_fontName.mid(1));
    FieldFrame box = frame();
    if (background)
        box.background = background;
    const FieldText set = text(box, font);
    const FieldText::Layout layout = set.layout([&font](const QString& part) { return font.width(part); });
    const std::optional<QByteArray> shown = font.operators(layout, m_fontName, m_colorOperators);
    if (!shown)
        return {};

    QPDFObjectHandle resources = QPDFObjectHandle::newDictionary();
    QPDFObjectHandle used = QPDFObjectHandle::newDictionary();
    used.replaceKey(m_fontName.toStdString(), font.dictionary());
    resources.replaceKey("/Font", used);
    AnnotationDrawing below;
    box.addTo(below);
    AnnotationDrawing highlights;
    for (const QRectF& highlight : layout.highlights) {
        AnnotationDrawing::Part part;
        part.path.addRect(highlight);
        part.fill = FieldFrame::highlight();
        highlights.parts.push_back(part);
    }
    const QRectF clip = set.clip();
    const QByteArray clipping = PdfValues::real(clip.left()) + ' ' + PdfValues::real(clip.top()) + ' ' +
                                PdfValues::real(clip.width()) + ' ' + PdfValues::real(clip.height()) + " re W n\n";
    const QByteArray content = AppearanceStreams::paintOperators(below, resources) + "/Tx BMC\nq\n" + clipping +
                               AppearanceStreams::paintOperators(highlights, resources) + *shown + "Q\nEMC\n";
    return AppearanceStreams::form(objects, content, resources, QRectF(QPointF(), box.box), m_turn);
}
