#pragma once

#include "TextStretch.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointF>
#include <QTimer>

#include <memory>
#include <optional>

class PageColumn;
class PageText;
class PageTexts;
class ViewSelection;

/// Selecting text with the pointer: by characters, after a double click by words, after a triple click by lines; with
/// Shift from where the last selection began. A drag past an edge of the view scrolls. Points are view points.
class SelectionDrag : public QObject {
    Q_OBJECT

public:
    SelectionDrag(PageColumn& column, PageTexts& texts, ViewSelection& selection, QObject* parent = nullptr);

    /// A press of the button. Without Shift, an earlier selection is cleared.
    void press(QPointF point, bool shift);
    void doubleClick(QPointF point);
    void moveTo(QPointF point);
    void release();
    [[nodiscard]] bool isRunning() const { return m_running; }

    /// Forgets where the last selection began.
    void reset();

private:
    enum class Unit { character, word, line };
    /// A part of the text of one page; empty for the gap between two characters.
    struct Piece {
        std::weak_ptr<class PDFPage> page;
        int start = 0;
        int end = 0;
    };

    void begin(QPointF point, Unit unit);
    void extend(QPointF point);
    void autoScroll();
    [[nodiscard]] std::optional<Piece> pieceAt(QPointF point, bool nearest) const;

    PageColumn& m_column;
    PageTexts& m_texts;
    ViewSelection& m_selection;
    Unit m_unit = Unit::character;
    std::optional<Piece> m_anchor;
    bool m_running = false;
    QPointF m_point;
    QTimer m_autoScroll;
    QElapsedTimer m_sinceDoubleClick;
    QPointF m_doubleClickPoint;
};
