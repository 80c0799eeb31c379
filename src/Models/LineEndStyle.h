#pragma once

#include "PDFTypes.h"

#include <QString>

#include <span>

/// One of the decorations that the line tool offers for the end of a line.
struct LineEndStyleInfo {
    PDFLineStyle style;
    QString title;
};

/// In the order of the picker; the first is the plain line.
[[nodiscard]] std::span<const LineEndStyleInfo> allLineEndStyles();
/// A style that the picker lacks is a programming error.
[[nodiscard]] const LineEndStyleInfo& info(PDFLineStyle style);
