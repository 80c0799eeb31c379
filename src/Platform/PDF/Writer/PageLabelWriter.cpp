#include "PageLabelWriter.h"

#include "DocumentContents.h"
#include "PDFSource.h"
#include "PageLabels.h"
#include "PdfValues.h"

namespace {

using Label = PageLabels::Label;

QPDFObjectHandle dictionaryFor(const Label& label) {
    QPDFObjectHandle dictionary = QPDFObjectHandle::newDictionary();
    const char* style = nullptr;
    switch (label.style) {
    case PageLabels::Style::none:
        break;
    case PageLabels::Style::decimal:
        style = "D";
        break;
    case PageLabels::Style::upperRoman:
        style = "R";
        break;
    case PageLabels::Style::lowerRoman:
        style = "r";
        break;
    case PageLabels::Style::upperLetters:
        style = "A";
        break;
    case PageLabels::Style::lowerLetters:
        style = "a";
        break;
    }
    if (style)
        dictionary.replaceKey("/S", PdfValues::name(style));
    if (!label.prefix.isEmpty())
        dictionary.replaceKey("/P", PdfValues::text(label.prefix));
    if (style && label.number != 1)
        dictionary.replaceKey("/St", QPDFObjectHandle::newInteger(label.number));
    return dictionary;
}

} // namespace

void PageLabelWriter::write(const DocumentContents& contents, ObjectStore& objects) {
    if (contents.hasSourceOrder())
        return;
    bool hasAny = false;
    QPDFObjectHandle pairs = QPDFObjectHandle::newArray();
    std::optional<Label> expected;
    for (std::size_t i = 0; i < contents.pages.size(); ++i) {
        const PDFPageContent& content = contents.pages[i].place;
        const std::optional<Label> own = content.source->pageLabels().of(content.pageNumber);
        hasAny = hasAny || own;
        const Label label = own.value_or(Label{.number = int(i) + 1});
        if (label != expected) {
            pairs.appendItem(QPDFObjectHandle::newInteger((long long)(i)));
            pairs.appendItem(dictionaryFor(label));
        }
        expected = label.next();
    }
    if (!hasAny) {
        objects.remove(objects.root(), "/PageLabels");
        return;
    }
    QPDFObjectHandle tree = QPDFObjectHandle::newDictionary();
    tree.replaceKey("/Nums", pairs);
    objects.set(objects.root(), "/PageLabels", objects.add(tree));
}
