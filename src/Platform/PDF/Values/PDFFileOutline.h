#pragma once

#include <QString>

#include <optional>
#include <vector>

/// The outline of a file as it stands there, before it is tied to live pages.
struct PDFFileOutline {
    struct Entry {
        QString label;
        QString url; ///< a web address that it opens; empty otherwise
        bool open = false;
        int object = 0;          ///< the number of its dictionary
        int level = 0;           ///< 0 at the top; one more than the level of the entry that it stands below
        int page = -1;           ///< zero-based; -1 for one that leads to no page of the file
        std::optional<double> x; ///< as of `PDFDestination`
        std::optional<double> y;
        std::optional<double> zoom;
    };
    bool exists = false;
    std::vector<Entry> entries; ///< each followed by those below it
};
