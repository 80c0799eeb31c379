#pragma once

#include "CTFontSizePair.h"
#include "MathFont.h"
#include "RWLocked.h"

#include <QHash>
#include <QString>

#include <memory>
#include <mutex>

class CGFont;
class CTFont;
class MTRawMathTable;

/// Keeps the math fonts of a bundle folder, each read at its first use. Usable on any number of threads at once; a
/// thread waits for reading a file only when it needs a font that is not there yet. A font that could not be read is
/// tried again the next time.
///
/// All operations throw `FontError` when the font is missing or damaged, and `MTException` when its property list is of
/// another version.
class BundleManager {
public:
    /// The one manager of the process, for the folder that comes with the program.
    [[nodiscard]] static BundleManager& manager();

    explicit BundleManager(QString bundleFolder);
    ~BundleManager();
    BundleManager(const BundleManager&) = delete;
    BundleManager& operator=(const BundleManager&) = delete;

    [[nodiscard]] std::shared_ptr<const CGFont> cgFont(MathFont font);
    /// One object for each font and size in points, kept for good.
    [[nodiscard]] std::shared_ptr<const CTFont> ctFont(MathFont font, double size);
    [[nodiscard]] std::shared_ptr<const MTRawMathTable> rawMathTable(MathFont font);

private:
    struct Maps {
        QHash<MathFont, std::shared_ptr<const CGFont>> cgFonts;
        QHash<CTFontSizePair, std::shared_ptr<const CTFont>> ctFonts;
        QHash<MathFont, std::shared_ptr<const MTRawMathTable>> rawMathTables;
    };

    /// Reads font and property list, unless another thread did so meanwhile.
    void registerFont(MathFont font);

    QString m_bundleFolder;
    /// Look-ups go on side by side, an insertion alone; neither ever waits for a file.
    RWLocked<Maps> m_maps;
    /// Held while files are read, so that none is read twice.
    std::mutex m_registration;
};
