#pragma once

#include "PDFPageContent.h"

#include <QString>

#include <memory>
#include <stop_token>
#include <vector>

class PDFDocument;
class PageStrings;

/// The text of a document's pages as they are when this is made. A value that any thread may read.
class DocumentText {
public:
    /// `strings`, if any, is asked first and keeps what is read. Main thread.
    explicit DocumentText(const PDFDocument& document, std::shared_ptr<PageStrings> strings = nullptr,
                          std::stop_token stop = {});

    [[nodiscard]] int pageCount() const { return static_cast<int>(m_pages.size()); }
    /// Empty for a page without text. `index` is zero-based and within the document.
    [[nodiscard]] QString string(int index) const;

    /// Nobody waits for what is being read any more.
    [[nodiscard]] bool isStopped() const { return m_stop.stop_requested(); }

private:
    std::vector<PDFPageContent> m_pages;
    std::shared_ptr<PageStrings> m_strings;
    std::stop_token m_stop;
};
