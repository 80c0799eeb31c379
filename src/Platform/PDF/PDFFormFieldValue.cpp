// The value of a field and the widgets that share it.

#include "FormFieldIndex.h"
#include "FormFieldValues.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFDraft.h"
#include "PDFFormField.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "SourceEngine.h"

#include <algorithm>
#include <unordered_set>

namespace {

using Widgets = std::vector<std::shared_ptr<PDFAnnotation>>;

constexpr int radiosInUnisonFlag = 1 << 25;

QString off() {
    return QStringLiteral("Off");
}

/// Adds the widgets of a page that are of the same field as `widget`.
void addFrom(const PDFPage& page, const PDFAnnotation& widget, Widgets& found) {
    for (const auto& candidate : page.annotations()) {
        const PDFAnnotationValues& values = candidate->values();
        if (values.type == PDFAnnotationSubtype::widget && values.field.type == widget.widgetFieldType() &&
            values.field.name == widget.fieldName() && candidate->origin().has_value() == widget.origin().has_value() &&
            (!widget.origin() || candidate->origin()->content.source == widget.origin()->content.source))
            found.push_back(candidate);
    }
}

/// The pages that may hold widgets of the same field as the one on `page`, in the document's order. A page that stands
/// in the document a second time is saved with fields of its own, though their names are the same until then.
std::vector<std::shared_ptr<PDFPage>>
pagesWithSiblings(const PDFAnnotation& widget, const std::shared_ptr<PDFPage>& page, const PDFDocument& document) {
    if (!widget.origin())
        return document.knownPages();
    const std::shared_ptr<PDFSource>& source = widget.origin()->content.source;
    const std::vector<int> numbers = source->engine().fieldIndex()->pages(widget.fieldName());
    const bool isOwnFile = source == document.source();
    const bool isAlone = numbers.empty() || (numbers.size() == 1 && numbers[0] == page->content().pageNumber);
    if (isAlone && isOwnFile)
        return {page};

    const std::vector<PDFPageContent> contents = document.pageContents();
    std::unordered_set<int> seen;
    std::vector<std::size_t> places[2]; // of pages that are the first of their content, and of others
    bool isRepeat = false;
    for (std::size_t i = 0; i < contents.size(); ++i) {
        if (contents[i].source != source || !std::binary_search(numbers.begin(), numbers.end(), contents[i].pageNumber))
            continue;
        const bool repeats = !seen.insert(contents[i].pageNumber).second && isOwnFile;
        places[repeats].push_back(i);
        if (contents[i] == page->content() && document.page(int(i)) == page)
            isRepeat = repeats;
    }
    std::vector<std::shared_ptr<PDFPage>> pages;
    for (const std::size_t place : places[isRepeat])
        pages.push_back(document.page(int(place)));
    if (std::find(pages.begin(), pages.end(), page) == pages.end())
        pages.push_back(page); // a widget that was moved to a page of another file
    return pages;
}

/// As many UTF-16 units at most, and no half of a pair.
QString cut(const QString& text, std::optional<int> length) {
    if (!length || text.size() <= *length)
        return text;
    const QString shorter = text.left(*length);
    return shorter.back().isHighSurrogate() ? shorter.chopped(1) : shorter;
}

bool isInUnison(const PDFAnnotation& widget) {
    return widget.widgetControlType() != PDFWidgetControlType::radioButton ||
           (widget.values().field.flags & radiosInUnisonFlag) != 0;
}

QString onStateOf(const PDFAnnotation& widget) {
    return widget.values().field.inFile ? widget.values().field.inFile->onState : QStringLiteral("Yes");
}

/// The one button of a group that comes on where several have the state but go on singly; null when all do.
const PDFAnnotation* singleOf(const Widgets& widgets, const PDFAnnotation& asked, const QString& state) {
    if (isInUnison(asked))
        return nullptr;
    if (onStateOf(asked) == state)
        return &asked;
    const PDFAnnotation* first = nullptr;
    for (const auto& widget : widgets) {
        if (onStateOf(*widget) != state)
            continue;
        if (widget->buttonWidgetState() == PDFWidgetCellState::on)
            return widget.get();
        if (!first)
            first = widget.get();
    }
    return first;
}

} // namespace

bool PDFFormField::mayBeOn(const PDFPage& page) {
    if (page.annotationsLoaded())
        return true;
    const auto index = page.content().source->engine().fieldIndex();
    return index->isEmpty() || index->hasFields(page.content().pageNumber);
}

Widgets PDFFormField::widgets() const {
    const std::shared_ptr<PDFPage> page = m_widget->page();
    if (!page)
        return {m_widget};
    Widgets found;
    if (const PDFDocument* document = page->document(); document && !name().isEmpty())
        for (const auto& each : pagesWithSiblings(*m_widget, page, *document))
            addFrom(*each, *m_widget, found);
    else
        addFrom(*page, *m_widget, found);
    if (std::find(found.begin(), found.end(), m_widget) == found.end())
        found.push_back(m_widget);
    return found;
}

QStringList PDFFormField::value() const {
    const PDFAnnotationValues& values = m_widget->values();
    switch (kind()) {
    case Kind::text:
        return {values.field.string};
    case Kind::checkBox:
    case Kind::radioButtons:
        if (!values.field.chosen.isEmpty())
            return values.field.chosen;
        return {values.field.state == PDFWidgetCellState::on ? onState() : off()};
    case Kind::comboBox:
    case Kind::listBox:
        return values.field.chosen;
    case Kind::pushButton:
    case Kind::signature:
        break;
    }
    return {};
}

std::optional<QStringList> PDFFormField::accepted(const QStringList& value, const Widgets& all) const {
    if (m_widget->values().field.inFile && value == m_widget->values().field.inFile->valueInFile)
        return value;
    switch (kind()) {
    case Kind::text: {
        if (value.size() > 1)
            return std::nullopt;
        QString text = value.value(0);
        if (!isMultiline())
            text.replace(QLatin1Char('\n'), QLatin1Char(' '));
        return QStringList{cut(text, maximumLength())};
    }
    case Kind::checkBox:
    case Kind::radioButtons: {
        const QString state = value.value(0, off());
        const bool isKnown = state == off() || std::any_of(all.begin(), all.end(), [&state](const auto& widget) {
                                 return onStateOf(*widget) == state;
                             });
        return value.size() <= 1 && isKnown ? std::optional(QStringList{state}) : std::nullopt;
    }
    case Kind::comboBox:
    case Kind::listBox:
        break;
    case Kind::pushButton:
    case Kind::signature:
        return std::nullopt;
    }
    const std::vector<Choice> known = choices();
    const auto isChoice = [&known](const QString& wanted) {
        return std::any_of(known.begin(), known.end(),
                           [&wanted](const Choice& choice) { return choice.exportValue == wanted; });
    };
    if (value.size() == 1 && value[0].isEmpty() && !isChoice(value[0]))
        return QStringList();
    if (value.size() > 1 && !allowsMultipleSelection())
        return std::nullopt;
    if (!isEditable() && !std::all_of(value.begin(), value.end(), isChoice))
        return std::nullopt;
    return value;
}

const PDFAnnotation* PDFFormField::singleButton(const Widgets& all, const QStringList& value) const {
    const bool isButton = m_widget->widgetFieldType() == PDFWidgetFieldType::button;
    return isButton ? singleOf(all, *m_widget, value.value(0)) : nullptr;
}

void PDFFormField::fill(const Widgets& targets, const Widgets& all, const QStringList& value) const {
    const bool isButton = m_widget->widgetFieldType() == PDFWidgetFieldType::button;
    const QString single = value.value(0);
    const PDFAnnotation* const only = singleButton(all, value);
    for (std::size_t i = 0; i < all.size(); ++i) {
        const PDFAnnotation& widget = *all[i];
        const bool on = isButton && single != off() && onStateOf(widget) == single && (!only || only == &widget);
        targets[i]->fill(single, widget.widgetFieldType() == PDFWidgetFieldType::text ? QStringList() : value,
                         on ? PDFWidgetCellState::on : PDFWidgetCellState::off);
    }
}

bool PDFFormField::setValue(const QStringList& value) {
    const Widgets all = widgets();
    const std::optional<QStringList> wanted = accepted(value, all);
    if (!wanted)
        return false;
    const PDFAnnotation* const only = singleButton(all, *wanted);
    const bool changes = *wanted != this->value() || (only && only->buttonWidgetState() != PDFWidgetCellState::on);
    fill(all, all, *wanted);
    return changes;
}

void PDFFormField::addTo(PDFDraft& draft, const QStringList& value) const {
    const Widgets all = widgets();
    const std::optional<QStringList> wanted = accepted(value, all);
    if (!wanted)
        return;
    Widgets copies;
    for (const auto& widget : all)
        copies.push_back(widget->copy());
    fill(copies, all, *wanted);
    for (std::size_t i = 0; i < all.size(); ++i)
        draft.changes.push_back({all[i]->page(), all[i], copies[i]});
}
