#include "FormFiller.h"

#include "FormPainting.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PageColumn.h"
#include "PageSurface.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <utility>

using Kind = PDFFormField::Kind;

/// Pages on either side of the screen whose fields are read before they come into sight.
static constexpr int pagesAround = 1;

FormFiller::FormFiller(PageSurface& view, PageColumn& column)
    : m_view(view), m_column(column), m_text(view), m_list(view), m_popup(view) {
    for (FormFieldEditor* const editor : std::initializer_list<FormFieldEditor*>{&m_text, &m_list}) {
        connect(editor, &FormFieldEditor::committed, this, &FormFiller::setValue);
        connect(editor, &FormFieldEditor::leftByTab, this, &FormFiller::leftByTab);
        connect(editor, &PlacedEditor::openChanged, this, &FormFiller::editorOpened);
    }
    connect(&m_text, &FormTextEditor::choicesRequested, this, [this] { openChoices(); });
    connect(&m_popup, &ChoicePopup::chosen, this, &FormFiller::choose);
}

FormFiller::~FormFiller() = default;

void FormFiller::setEnabled(bool enabled) {
    if (std::exchange(m_isEnabled, enabled) == enabled || enabled)
        return;
    commit();
    clearFocus();
    m_pressed.reset();
    setHovered(nullptr);
}

void FormFiller::reset() {
    m_text.cancel();
    m_list.cancel();
    m_popup.close();
    m_fields.clear();
    m_pressed.reset();
    m_focused.reset();
    m_hovered.reset();
}

// What is known

void FormFiller::readFields() {
    if (!m_column.document())
        return;
    const auto [first, last] = m_column.visiblePages();
    for (int i = std::max(0, first - pagesAround); i < std::min(last + pagesAround, m_column.pageCount()); ++i) {
        const std::shared_ptr<PDFPage> page = m_column.document()->page(i);
        if (page && !m_fields.known(page) && !m_fields.fields(page).empty())
            m_view.viewport()->update();
    }
}

const PageFields::Entry* FormFiller::entryAt(QPointF point) {
    const int index = m_isEnabled && m_column.document() ? m_column.pageAt(point, false) : -1;
    const std::shared_ptr<PDFPage> page = index < 0 ? nullptr : m_column.document()->page(index);
    if (!page)
        return nullptr;
    const QPointF onPage = m_column.pageToView(index).inverted().map(point);
    const std::vector<PageFields::Entry>& fields = m_fields.fields(page);
    const auto found = std::find_if(fields.rbegin(), fields.rend(), [onPage](const PageFields::Entry& entry) {
        return (entry.isFillable || entry.kind == Kind::pushButton) && entry.bounds.contains(onPage);
    });
    return found == fields.rend() ? nullptr : &*found;
}

QRectF FormFiller::rectOf(const PDFAnnotation& widget) const {
    const std::shared_ptr<PDFPage> page = widget.page();
    const int index = page && m_column.document() ? m_column.document()->index(page.get()) : -1;
    return index < 0 ? QRectF() : m_column.pageToView(index).mapRect(widget.bounds());
}

void FormFiller::update(const PDFAnnotation& widget) {
    const QRectF seen = FormPainting::paintedRect(rectOf(widget)) & QRectF(m_view.viewport()->rect());
    m_view.viewport()->update(seen.toAlignedRect());
}

void FormFiller::paint(QPainter& painter, const QRectF& exposed) {
    if (!m_column.document())
        return;
    const auto [first, last] = m_column.visiblePages();
    for (int i = first; i < last; ++i) {
        const std::shared_ptr<PDFPage> page = m_column.document()->page(i);
        if (const auto* fields = page ? m_fields.known(page) : nullptr)
            FormPainting::paintFields(painter, *fields, m_column.pageToView(i), exposed);
    }
    if (!m_isEnabled)
        return;
    const std::shared_ptr<PDFAnnotation> hovered = m_hovered.lock();
    for (const auto& widget : {focused() == hovered ? nullptr : hovered, focused()}) {
        const auto field = widget ? PDFFormField::of(widget) : std::nullopt;
        if (field && field->kind() == Kind::comboBox && field->isFillable())
            FormPainting::paintArrow(painter, rectOf(*widget));
    }
    if (const auto widget = focused())
        FormPainting::paintRing(painter, rectOf(*widget),
                                m_view.palette().color(QPalette::Active, QPalette::Highlight));
}

// Pointer

bool FormFiller::press(QPointF point) {
    const PageFields::Entry* const entry = entryAt(point);
    m_pressed = entry ? entry->widget : nullptr;
    if (m_pressed && entry->isFillable)
        setFocused(m_pressed);
    return isPressed();
}

void FormFiller::release(QPointF point, Qt::KeyboardModifiers modifiers) {
    const std::shared_ptr<PDFAnnotation> pressed = std::exchange(m_pressed, nullptr);
    const PageFields::Entry* const entry = entryAt(point);
    const auto field = entry && entry->widget == pressed ? PDFFormField::of(pressed) : std::nullopt;
    if (!field)
        return;
    if (field->kind() == Kind::pushButton) {
        QToolTip::showText(m_view.viewport()->mapToGlobal(point.toPoint()),
                           tr("What the buttons of a form would do is never run here."), m_view.viewport());
        return;
    }
    m_list.setClickModifiers(modifiers);
    activate(*field, point);
}

void FormFiller::setHovered(const std::shared_ptr<PDFAnnotation>& widget) {
    const std::shared_ptr<PDFAnnotation> former = m_hovered.lock();
    if (former == widget)
        return;
    m_hovered = widget;
    for (const auto& changed : {former, widget})
        if (changed)
            update(*changed);
}

std::optional<Qt::CursorShape> FormFiller::cursor(QPointF point) {
    const PageFields::Entry* const entry = entryAt(point);
    setHovered(entry ? entry->widget : nullptr);
    if (!entry)
        return std::nullopt;
    switch (entry->kind) {
    case Kind::text:
        return Qt::IBeamCursor;
    case Kind::pushButton:
        return Qt::ArrowCursor;
    default:
        return Qt::PointingHandCursor;
    }
}

std::optional<FormFiller::ToolTip> FormFiller::toolTip(QPointF point) {
    const PageFields::Entry* const entry = entryAt(point);
    const auto field = entry ? PDFFormField::of(entry->widget) : std::nullopt;
    if (!field)
        return std::nullopt;
    return ToolTip{entry->isMissing ? tr("%1 (required)").arg(field->userName()) : field->userName(),
                   rectOf(*entry->widget)};
}

// Values

void FormFiller::setValue(PDFFormField field, const QStringList& value) {
    const QStringList before = field.value();
    if (!field.setValue(value))
        return;
    Q_EMIT changed(field, before);
    Q_EMIT focusChanged();
}

void FormFiller::toggle(const PDFFormField& field) {
    const bool isOn = field.value() == QStringList(field.onState());
    if (isOn && field.kind() == Kind::radioButtons && field.noToggleToOff())
        return;
    setValue(field, {isOn ? QStringLiteral("Off") : field.onState()});
}

void FormFiller::choose(const QString& exportValue, const QString& label) {
    const auto field = focusedField();
    if (!field)
        return;
    if (m_text.isOpen()) {
        m_text.replaceText(label);
        return;
    }
    setValue(*field, {exportValue});
}

// Editing

void FormFiller::editorOpened(bool isOpen) {
    const QWidget* const keyboard = QApplication::focusWidget();
    if (!isOpen && keyboard && keyboard != &m_view && !m_view.isAncestorOf(keyboard))
        clearFocus(); // it went elsewhere
    Q_EMIT editingChanged();
}

void FormFiller::commit() {
    m_popup.close();
    m_text.commit();
    m_list.commit();
}

void FormFiller::apply() {
    m_text.apply();
    m_list.commit();
}

void FormFiller::edit(const PDFFormField& field, std::optional<QPointF> point) {
    if (field.kind() == Kind::listBox)
        m_list.start(field, point);
    else
        m_text.start(field, point);
}

void FormFiller::openChoices(const QString& typed) {
    if (const auto field = focusedField(); field && field->kind() == Kind::comboBox)
        m_popup.open(*field, rectOf(*field->widget()).toAlignedRect(), typed);
}

/// What a click on the field does, or the space bar.
void FormFiller::activate(const PDFFormField& field, std::optional<QPointF> point) {
    setFocused(field.widget());
    switch (field.kind()) {
    case Kind::checkBox:
    case Kind::radioButtons:
        toggle(field);
        break;
    case Kind::comboBox: {
        const bool onArrow = point && FormPainting::arrowArea(rectOf(*field.widget())).contains(*point);
        if (field.isEditable())
            edit(field, point);
        if (!field.isEditable() || onArrow)
            openChoices();
        break;
    }
    default:
        edit(field, point);
    }
}

// Keyboard

std::shared_ptr<PDFAnnotation> FormFiller::focused() const {
    const std::shared_ptr<PDFAnnotation> widget = m_focused.lock();
    const std::shared_ptr<PDFPage> page = widget ? widget->page() : nullptr;
    return page && m_column.document() && page->document() == m_column.document().get() ? widget : nullptr;
}

std::optional<PDFFormField> FormFiller::focusedField() const {
    const std::shared_ptr<PDFAnnotation> widget = focused();
    auto field = widget ? PDFFormField::of(widget) : std::nullopt;
    return field && field->isFillable() ? field : std::nullopt;
}

void FormFiller::setFocused(const std::shared_ptr<PDFAnnotation>& widget) {
    const std::shared_ptr<PDFAnnotation> former = m_focused.lock();
    if (former == widget)
        return;
    m_focused = widget;
    for (const auto& changed : {former, widget})
        if (changed)
            update(*changed);
    Q_EMIT focusChanged();
}

void FormFiller::focus(const std::shared_ptr<PDFAnnotation>& widget) {
    setFocused(widget);
    const auto field = focusedField();
    if (field && (field->kind() == Kind::text || field->kind() == Kind::listBox ||
                  (field->kind() == Kind::comboBox && field->isEditable())))
        edit(*field, std::nullopt);
}

void FormFiller::clearFocus() {
    setFocused(nullptr);
}

void FormFiller::moveInGroup(const PDFFormField& field, int step) {
    const std::vector<std::shared_ptr<PDFAnnotation>> group = field.widgets();
    const auto present = std::find(group.begin(), group.end(), field.widget());
    if (present == group.end())
        return;
    const auto count = static_cast<int>(group.size());
    const int next = (static_cast<int>(present - group.begin()) + step + count) % count;
    const std::shared_ptr<PDFAnnotation>& widget = group[static_cast<std::size_t>(next)];
    const auto button = PDFFormField::of(widget);
    if (!button || !button->isFillable())
        return;
    setFocused(widget);
    setValue(*button, {button->onState()});
    m_view.reveal(*widget);
}

bool FormFiller::pressKey(const QKeyEvent& key) {
    const auto field = m_isEnabled ? focusedField() : std::nullopt;
    const auto modifiers = key.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
    if (!field || modifiers != Qt::NoModifier)
        return false;
    const bool isVertical = key.key() == Qt::Key_Up || key.key() == Qt::Key_Down;
    const bool isArrow = isVertical || key.key() == Qt::Key_Left || key.key() == Qt::Key_Right;
    const bool isForward = key.key() == Qt::Key_Down || key.key() == Qt::Key_Right;
    const bool isOpening = key.key() == Qt::Key_Space || key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
    switch (field->kind()) {
    case Kind::radioButtons:
        if (isArrow) {
            moveInGroup(*field, isForward ? 1 : -1);
            return true;
        }
        [[fallthrough]];
    case Kind::checkBox:
        if (key.key() != Qt::Key_Space)
            return false;
        activate(*field, std::nullopt);
        return true;
    case Kind::comboBox:
        if (!field->isEditable() && !isOpening && !isVertical && !key.text().isEmpty() &&
            key.text().front().isPrint()) {
            openChoices(key.text());
            return true;
        }
        if (!isOpening && !isVertical && key.key() != Qt::Key_F4)
            return false;
        activate(*field, std::nullopt);
        return true;
    default:
        if (!isOpening && key.key() != Qt::Key_F2)
            return false;
        edit(*field, std::nullopt);
        return true;
    }
}

// Words

/// What the user sees of the value.
static QStringList labelsOf(const PDFFormField& field) {
    QStringList labels = field.value();
    const std::vector<PDFFormField::Choice> choices = field.choices();
    for (QString& label : labels) {
        const auto choice = std::find_if(choices.begin(), choices.end(), [&label](const PDFFormField::Choice& each) {
            return each.exportValue == label;
        });
        if (choice != choices.end())
            label = choice->label;
    }
    return labels;
}

QString FormFiller::description() const {
    const auto field = focusedField();
    if (!field)
        return {};
    const QString value = field->value().join(QStringLiteral(", "));
    const bool isOn = value == field->onState();
    QString kind;
    QString state;
    switch (field->kind()) {
    case Kind::checkBox:
        kind = tr("Check box");
        state = isOn ? tr("checked") : tr("not checked");
        break;
    case Kind::radioButtons:
        kind = tr("Radio button");
        state = (isOn ? tr("%1 selected") : tr("%1 not selected")).arg(field->onState());
        break;
    case Kind::comboBox:
    case Kind::listBox:
        kind = field->kind() == Kind::comboBox ? tr("Combo box") : tr("List");
        break;
    default:
        kind = tr("Text field");
    }
    if (state.isEmpty() && value.isEmpty()) {
        state = tr("empty");
    } else if (state.isEmpty() && !(field->kind() == Kind::text && field->isPassword())) {
        state = labelsOf(*field).join(QStringLiteral(", "));
    }
    QStringList words{field->userName()};
    if (field->isRequired())
        words << tr("required");
    if (!state.isEmpty())
        words << state;
    return tr("%1: %2").arg(kind, words.join(QStringLiteral(", ")));
}
