#pragma once

#include <QPointF>
#include <QRectF>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

class PDFAnnotation;
class PageColumn;

/// The links of the pages on the screen: under the pointer, and one after the other with the keyboard.
class LinkNavigator {
public:
    explicit LinkNavigator(PageColumn& column) : m_column(column) {}

    struct Link {
        std::shared_ptr<PDFAnnotation> annotation;
        QRectF rect; ///< view points
    };

    /// The topmost link at a view point, or none.
    [[nodiscard]] std::optional<Link> linkAt(QPointF viewPoint) const;
    /// Where it leads, in words: "Page 12" or the web address.
    [[nodiscard]] QString describe(const PDFAnnotation& link) const;

    /// The link that has the keyboard; none when it left the screen.
    [[nodiscard]] std::optional<Link> focused() const;
    /// Moves the keyboard to the next or previous link on the screen, in reading order. False when there is no further
    /// one, and then none has it.
    bool focusNext(bool forward);
    void clearFocus() { m_focused.reset(); }

private:
    [[nodiscard]] std::vector<Link> linksOf(int page) const;
    [[nodiscard]] std::vector<Link> visibleLinks() const;

    PageColumn& m_column;
    std::weak_ptr<PDFAnnotation> m_focused;
};
