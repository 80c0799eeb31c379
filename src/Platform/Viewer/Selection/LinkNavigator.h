#pragma once

#include <QPointF>
#include <QRectF>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

class PDFAnnotation;
class PageColumn;

/// The links of the pages: under the pointer, in the order of reading, and the one that has the keyboard.
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

    /// The links of a page with `others` among them, line by line as the page is shown.
    [[nodiscard]] std::vector<Link> inReadingOrder(int page, const std::vector<Link>& others) const;

    /// The link that has the keyboard; none when it left the screen.
    [[nodiscard]] std::optional<Link> focused() const;
    void focus(const std::shared_ptr<PDFAnnotation>& link) { m_focused = link; }
    void clearFocus() { m_focused.reset(); }

private:
    [[nodiscard]] std::vector<Link> linksOf(int page) const;

    PageColumn& m_column;
    std::weak_ptr<PDFAnnotation> m_focused;
};
