#pragma once

#include <optional>

/// A place as a file gives it, before it is tied to live pages.
struct PDFFileDestination {
    int pageObject = 0;      ///< object number of the page, or 0 when the file gives an index
    int pageIndex = -1;      ///< zero-based; -1 when the file gives an object
    std::optional<double> x; ///< page coordinates of the target page
    std::optional<double> y;
    std::optional<double> zoom; ///< 1 is a point for a device-independent pixel

    [[nodiscard]] bool isValid() const { return pageObject > 0 || pageIndex >= 0; }
    bool operator==(const PDFFileDestination&) const = default;
};
