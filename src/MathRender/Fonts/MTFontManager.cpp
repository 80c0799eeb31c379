#include "MTFontManager.h"

#include "MTFont.h"
#include "MathFontNames.h"

MTFontManager& MTFontManager::fontManager() {
    static MTFontManager manager;
    return manager;
}

MTFontManager::MTFontManager() = default;
MTFontManager::~MTFontManager() = default;

std::shared_ptr<MTFont> MTFontManager::font(const QString& name, double size) {
    std::shared_ptr<MTFont> cached = m_nameToFontMap.read([&](const auto& fonts) { return fonts.value(name); });
    if (!cached) {
        // Read under the lock, so that threads that start together do not all read the file.
        cached = m_nameToFontMap.write([&](auto& fonts) {
            std::shared_ptr<MTFont>& font = fonts[name];
            if (!font)
                font = std::make_shared<MTFont>(name, size);
            return font;
        });
    }
    return cached->fontSize() == size ? cached : cached->copy(size);
}

std::shared_ptr<MTFont> MTFontManager::latinModernFont(double size) {
    return font(MathFontNames::latinModern, size);
}

std::shared_ptr<MTFont> MTFontManager::kpMathLightFont(double size) {
    return font(MathFontNames::kpMathLight, size);
}

std::shared_ptr<MTFont> MTFontManager::kpMathSansFont(double size) {
    return font(MathFontNames::kpMathSans, size);
}

std::shared_ptr<MTFont> MTFontManager::xitsFont(double size) {
    return font(MathFontNames::xits, size);
}

std::shared_ptr<MTFont> MTFontManager::termesFont(double size) {
    return font(MathFontNames::termes, size);
}

std::shared_ptr<MTFont> MTFontManager::asanaFont(double size) {
    return font(MathFontNames::asana, size);
}

std::shared_ptr<MTFont> MTFontManager::eulerFont(double size) {
    return font(MathFontNames::euler, size);
}

std::shared_ptr<MTFont> MTFontManager::firaFont(double size) {
    return font(MathFontNames::fira, size);
}

std::shared_ptr<MTFont> MTFontManager::notoSansFont(double size) {
    return font(MathFontNames::notoSans, size);
}

std::shared_ptr<MTFont> MTFontManager::libertinusFont(double size) {
    return font(MathFontNames::libertinus, size);
}

std::shared_ptr<MTFont> MTFontManager::garamondFont(double size) {
    return font(MathFontNames::garamond, size);
}

std::shared_ptr<MTFont> MTFontManager::leteSansFont(double size) {
    return font(MathFontNames::leteSans, size);
}

std::shared_ptr<MTFont> MTFontManager::defaultFont() {
    return latinModernFont(kDefaultFontSize);
}
