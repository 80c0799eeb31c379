#include "SelectionDrag.h"

#include "PDFDocument.h"
#include "PDFPage.h"
#include "PageColumn.h"
#include "PageText.h"
#include "PageTexts.h"
#include "ViewSelection.h"

#include <QGuiApplication>
#include <QLineF>
#include <QStyleHints>

#include <algorithm>

using namespace std::chrono_literals;

static constexpr auto autoScrollInterval = 16ms;
/// A window at the edge of the screen leaves no way out of the view, so scrolling begins a little inside it.
static constexpr double autoScrollBand = 12;
/// Scrolled in one interval, as a part of how far the pointer is past the band.
static constexpr double autoScrollShare = 0.25;
static constexpr double autoScrollMost = 60;

SelectionDrag::SelectionDrag(PageColumn& column, PageTexts& texts, ViewSelection& selection, QObject* parent)
    : QObject(parent), m_column(column), m_texts(texts), m_selection(selection) {
    m_autoScroll.setInterval(autoScrollInterval);
    m_autoScroll.setTimerType(Qt::PreciseTimer);
    connect(&m_autoScroll, &QTimer::timeout, this, &SelectionDrag::autoScroll);
}

void SelectionDrag::press(QPointF point, bool shift) {
    const QStyleHints* hints = QGuiApplication::styleHints();
    const bool third = m_sinceDoubleClick.isValid() &&
                       !m_sinceDoubleClick.hasExpired(hints->mouseDoubleClickInterval()) &&
                       QLineF(point, m_doubleClickPoint).length() < hints->mouseDoubleClickDistance();
    m_sinceDoubleClick.invalidate();
    if (third) {
        begin(point, Unit::line);
    } else if (shift && m_anchor) {
        m_running = true;
        extend(point);
    } else {
        begin(point, Unit::character);
    }
}

void SelectionDrag::doubleClick(QPointF point) {
    begin(point, Unit::word);
    m_sinceDoubleClick.start();
    m_doubleClickPoint = point;
}

void SelectionDrag::begin(QPointF point, Unit unit) {
    m_unit = unit;
    m_running = true;
    m_point = point;
    // A drag may begin beside the text, but a word or line is only one when the pointer is on it.
    m_anchor = pieceAt(point, unit == Unit::character);
    m_selection.set(std::optional<TextStretch>());
    if (m_anchor && unit != Unit::character)
        extend(point);
}

void SelectionDrag::moveTo(QPointF point) {
    if (!m_running)
        return;
    extend(point);
    m_autoScroll.start();
}

void SelectionDrag::release() {
    m_autoScroll.stop();
    if (!m_running)
        return;
    m_running = false;
    m_selection.offerForMiddleButton();
}

void SelectionDrag::reset() {
    m_autoScroll.stop();
    m_running = false;
    m_anchor.reset();
}

void SelectionDrag::extend(QPointF point) {
    m_point = point;
    if (!m_anchor)
        m_anchor = pieceAt(point, true);
    const std::optional<Piece> piece = pieceAt(point, true);
    const PDFDocument* document = m_column.document().get();
    const std::shared_ptr<PDFPage> anchorPage = m_anchor ? m_anchor->page.lock() : nullptr;
    if (!document || !piece || !anchorPage)
        return;
    const std::shared_ptr<PDFPage> page = piece->page.lock();
    const int anchorIndex = document->index(anchorPage.get());
    const int index = document->index(page.get());
    if (anchorIndex < 0 || index < 0)
        return;
    const bool before = index < anchorIndex || (index == anchorIndex && piece->start < m_anchor->start);
    TextStretch stretch{anchorPage, m_anchor->start, page, piece->end};
    if (before)
        stretch = {page, piece->start, anchorPage, m_anchor->end};
    else if (index == anchorIndex)
        stretch.end = std::max(piece->end, m_anchor->end);
    const bool empty = stretch.firstPage == stretch.lastPage && stretch.start >= *stretch.end;
    m_selection.set(empty ? std::nullopt : std::optional(stretch));
}

std::optional<SelectionDrag::Piece> SelectionDrag::pieceAt(QPointF point, bool nearest) const {
    const int index = m_column.pageAt(point, nearest);
    const std::shared_ptr<PDFPage> page = index < 0 ? nullptr : m_column.document()->page(index);
    const std::shared_ptr<const PageText> text = page ? m_texts.textNow(page->content()) : nullptr;
    if (!text || text->string.isEmpty())
        return std::nullopt;
    const QPointF onPage = m_column.pageToView(index).inverted().map(point);
    if (m_unit == Unit::character) {
        const int gap = text->gapNearest(onPage);
        return Piece{page, gap, gap};
    }
    int offset = text->characterAt(onPage);
    if (offset < 0 && !nearest && (m_unit == Unit::word || text->lineContaining(onPage) < 0))
        return std::nullopt;
    if (offset < 0)
        offset = text->gapNearest(onPage);
    if (m_unit == Unit::word) {
        const auto [start, end] = text->wordAround(offset);
        return Piece{page, start, end};
    }
    const int line = text->lineAt(offset);
    if (line < 0)
        return std::nullopt;
    const PageText::Line& found = text->lines[static_cast<std::size_t>(line)];
    return Piece{page, found.start, found.end};
}

void SelectionDrag::autoScroll() {
    const QSizeF view = m_column.viewport();
    const auto way = [](double position, double size) {
        const double past = position < autoScrollBand          ? position - autoScrollBand
                            : position > size - autoScrollBand ? position - (size - autoScrollBand)
                                                               : 0;
        return std::clamp(past * autoScrollShare, -autoScrollMost, autoScrollMost);
    };
    const QPointF move(way(m_point.x(), view.width()), way(m_point.y(), view.height()));
    if (move.isNull()) {
        m_autoScroll.stop();
        return;
    }
    m_column.scroller().scrollBy(move * m_column.devicePixelRatio());
    extend(m_point);
}
