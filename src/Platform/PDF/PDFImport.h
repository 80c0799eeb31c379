#pragma once

#include <memory>
#include <vector>

class ImportedOutlines;
class PDFOrigin;
class PDFOutline;
class PDFPage;

/// Pages of one document that came into another one after the other, as far as the outline there is concerned.
struct PDFImport {
    const ImportedOutlines* outlines = nullptr; ///< of the document that they came into; to compare with
    std::shared_ptr<PDFOrigin> origin;
    std::vector<std::weak_ptr<PDFPage>> pages;
    int present = 0;                   ///< how many of them are there now
    std::shared_ptr<PDFOutline> entry; ///< null where they brought none
    std::weak_ptr<PDFOutline> root;    ///< what the entry was taken from when the last of the pages went
    int place = 0;                     ///< and where it stood there
};
