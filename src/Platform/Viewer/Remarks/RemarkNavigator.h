#pragma once

#include <QPointF>
#include <QRectF>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class PDFAnnotation;
class PDFPage;
class PageColumn;

/// The annotations that say something: under the pointer, on a page, and the one that has the keyboard. Main thread
/// only.
class RemarkNavigator {
public:
    using Filter = std::function<bool(const PDFAnnotation& annotation)>;
    /// `shows` tells which annotations are meant for people.
    RemarkNavigator(PageColumn& column, Filter shows) : m_column(column), m_shows(std::move(shows)) {}

    struct Place {
        std::shared_ptr<PDFAnnotation> annotation;
        QRectF rect; ///< what it takes up; view points
    };

    /// Without it nothing is found.
    void setEnabled(bool enabled);
    [[nodiscard]] bool isEnabled() const { return m_isEnabled; }

    /// The topmost one with words at a view point, or else, unless they are asked for, one that says who made it.
    [[nodiscard]] std::optional<Place> at(QPointF viewPoint, bool withWords) const;
    /// The sign of a note with words is there.
    [[nodiscard]] bool isOverNote(QPointF viewPoint) const;
    /// Those with words, without answers to others of them.
    [[nodiscard]] std::vector<Place> onPage(int page) const;

    /// The one that has the keyboard; none when it left the screen.
    [[nodiscard]] std::optional<Place> focused() const;
    void focus(const std::shared_ptr<PDFAnnotation>& annotation) { m_focused = annotation; }
    void clearFocus() { m_focused.reset(); }

private:
    [[nodiscard]] bool isMeant(const PDFAnnotation& annotation) const;
    [[nodiscard]] Place placed(const std::shared_ptr<PDFAnnotation>& annotation, int page) const;

    PageColumn& m_column;
    const Filter m_shows;
    bool m_isEnabled = true;
    std::weak_ptr<PDFAnnotation> m_focused;
};
