#pragma once

#include "PDFFormField.h"

#include <QRectF>

#include <memory>
#include <unordered_map>
#include <vector>

class PDFAnnotation;
class PDFPage;

/// The form fields of pages, noted once, so that painting them and finding the one under the pointer ask no page and no
/// field anything. Main thread only.
class PageFields {
public:
    struct Entry {
        std::shared_ptr<PDFAnnotation> widget;
        QRectF bounds; ///< page coordinates
        PDFFormField::Kind kind = PDFFormField::Kind::text;
        bool isFillable = false;
        bool isMissing = false; ///< required and still empty
    };

    /// In drawing order. Reads the page's annotations on the first call.
    [[nodiscard]] const std::vector<Entry>& fields(const std::shared_ptr<PDFPage>& page);
    /// The same for a page whose fields were read; null for another one.
    [[nodiscard]] const std::vector<Entry>* known(const std::shared_ptr<PDFPage>& page);
    /// What the page shows there changed; everything when the area is null. Page coordinates.
    void noteChange(const PDFPage& page, const QRectF& area);
    void clear() { m_pages.clear(); }

private:
    struct Page {
        std::weak_ptr<PDFPage> page;
        std::vector<Entry> fields;
        QRectF staleArea;
        bool isStale = true;
    };
    static void refresh(Page& noted, const PDFPage& page);

    std::unordered_map<const PDFPage*, Page> m_pages;
};
