#pragma once

#include "PDFDestination.h"

#include <QString>

#include <optional>

/// Where a Link annotation leads.
struct PDFLinkData {
    std::optional<PDFDestination> destination; ///< a place in the document
    bool leadsInside = false;                  ///< the file gives a place, which is looked up when it is asked for
    QString url;                               ///< a web address; empty for none
};
