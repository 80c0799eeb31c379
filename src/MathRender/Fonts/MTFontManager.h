#pragma once

#include "RWLocked.h"

#include <QHash>
#include <QString>

#include <memory>

class MTFont;

/// Keeps the math fonts of the program by name, each read at its first use, for what sets formulas by `MTFont`. Usable
/// on any number of threads at once.
class MTFontManager {
public:
    static constexpr double kDefaultFontSize = 20;

    /// The one manager of the process.
    [[nodiscard]] static MTFontManager& fontManager();

    MTFontManager();
    ~MTFontManager();
    MTFontManager(const MTFontManager&) = delete;
    MTFontManager& operator=(const MTFontManager&) = delete;

    /// The font `name` (see `MathFontNames`) at `size` points. Throws as the constructor of `MTFont`; a font that could
    /// not be read is tried again the next time.
    [[nodiscard]] std::shared_ptr<MTFont> font(const QString& name, double size);

    [[nodiscard]] std::shared_ptr<MTFont> latinModernFont(double size);
    [[nodiscard]] std::shared_ptr<MTFont> kpMathLightFont(double size);
    [[nodiscard]] std::shared_ptr<MTFont> kpMathSansFont(double size);
    [[nodiscard]] std::shared_ptr<MTFont> xitsFont(double size);
    [[nodiscard]] std::shared_ptr<MTFont> termesFont(double size);
    [[nodiscard]] std::shared_ptr<MTFont> asanaFont(double size);
    [[nodiscard]] std::shared_ptr<MTFont> eulerFont(double size);
    [[nodiscard]] std::shared_ptr<MTFont> firaFont(double size);
    [[nodiscard]] std::shared_ptr<MTFont> notoSansFont(double size);
    [[nodiscard]] std::shared_ptr<MTFont> libertinusFont(double size);
    [[nodiscard]] std::shared_ptr<MTFont> garamondFont(double size);
    [[nodiscard]] std::shared_ptr<MTFont> leteSansFont(double size);

    /// Latin Modern Math at `kDefaultFontSize`.
    [[nodiscard]] std::shared_ptr<MTFont> defaultFont();

private:
    RWLocked<QHash<QString, std::shared_ptr<MTFont>>> m_nameToFontMap;
};
