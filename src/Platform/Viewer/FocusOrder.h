#pragma once

#include <QRectF>

#include <memory>
#include <vector>

class LinkNavigator;
class PDFAnnotation;
class PageColumn;
class RemarkNavigator;

/// The way of the Tab key: through the links and the annotations with words on the screen, and on pages with form
/// fields through the fields in their order, wherever on the page, each of those before the first field that comes
/// behind it in reading. From a field the way goes on to the next page with fields; without fields it leads no further
/// than the screen. Main thread only.
class FocusOrder {
public:
    FocusOrder(PageColumn& column, const LinkNavigator& links, const RemarkNavigator& remarks)
        : m_column(column), m_links(links), m_remarks(remarks) {}

    /// The one after `present` or before it; without one, the first or last on the screen. Null when there is
    /// no further one: the keyboard leaves the view then.
    [[nodiscard]] std::shared_ptr<PDFAnnotation> next(const std::shared_ptr<PDFAnnotation>& present, bool forward,
                                                      bool withFields) const;

private:
    struct Stop {
        std::shared_ptr<PDFAnnotation> annotation;
        QRectF rect; ///< view points
    };
    struct PageStops {
        std::vector<Stop> stops;
        bool hasFields = false;
    };
    [[nodiscard]] PageStops stopsOf(int page, bool withFields) const;
    [[nodiscard]] bool mayHaveFields(int page) const;
    [[nodiscard]] bool isSeen(const Stop& stop) const;

    PageColumn& m_column;
    const LinkNavigator& m_links;
    const RemarkNavigator& m_remarks;
};
