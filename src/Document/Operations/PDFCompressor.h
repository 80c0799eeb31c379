#pragma once

#include "PDFPageContent.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <vector>

class PDFDocument;
class QIODevice;
class UprightPage;

/// Makes copies of a document as it is at one moment in which every page is a JPEG picture of itself, with its
/// annotations. Pages keep their boxes and their rotation; nothing else of the document is in the copy.
class PDFCompressor {
public:
    enum class Quality { good, better, best };
    static constexpr std::array qualities{Quality::good, Quality::better, Quality::best};
    /// What people choose it by.
    [[nodiscard]] static QString label(Quality quality);
    /// Pixels for a unit of page coordinates.
    [[nodiscard]] static double renderScale(Quality quality);
    /// Of the JPEG, from 0 to 1.
    [[nodiscard]] static double compressionFactor(Quality quality);

    /// Takes note of what the pages show. Main thread; the document isn't locked.
    explicit PDFCompressor(const PDFDocument& document);
    ~PDFCompressor();

    [[nodiscard]] int pageCount() const { return static_cast<int>(m_pages.size()); }

    /// The page's JPEG, gray for a page without colours. Empty when the page can't be drawn, as one that
    /// `PDFPageRasterizer` has no bitmap for, or when `stop` is requested. Any thread, each page by one at a time.
    [[nodiscard]] QByteArray compressPage(int index, Quality quality, const std::stop_token& stop) const;

    /// Writes the whole copy to the device, drawing on this thread and another one. Pages that can't be drawn are left
    /// out. `progress` is told, on either thread, how many pages are done. Returns the number of pages written: none
    /// when no page could be drawn, or when `stop` was requested, and the copy is not complete. Throws `FileError` when
    /// the device fails. Any thread, one at a time.
    int compress(Quality quality, QIODevice& device, const std::stop_token& stop,
                 const std::function<void(int done)>& progress) const;

private:
    struct Page {
        PDFPageContent content;
        std::shared_ptr<const UprightPage> noted; ///< null for one that is as its file has it
    };
    [[nodiscard]] UprightPage frozen(int index) const;
    [[nodiscard]] QByteArray jpeg(const UprightPage& page, Quality quality, const std::stop_token& stop) const;

    std::vector<Page> m_pages;
    mutable std::mutex m_large; ///< held while a page is drawn that takes much memory
};
