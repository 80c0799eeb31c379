#pragma once

#include "ObjectStore.h"

#include <qpdf/PDFVersion.hh>

#include <vector>

class QIODevice;
struct PDFWriteOptions;

/// The bytes of a file that was composed anew as a whole.
struct RewriteOutput {
    FileObjects& objects;
    const PDFWriteOptions& options;        ///< of which the passwords count here
    bool isCopy = false;                   ///< another document than the file that the objects come from
    bool isSound = false;                  ///< that file was never repaired
    std::vector<PDFVersion> versions = {}; ///< that the file needs at least

    /// Leaves no objects as texts. The device's errors are for the caller to notice. Throws `PDFError` for passwords
    /// that no file can have, and `std::exception` when something can't be written.
    void write(QIODevice& device);
};
