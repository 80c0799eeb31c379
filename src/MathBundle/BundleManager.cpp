#include "BundleManager.h"

#include "CTFont.h"
#include "MTRawMathTable.h"
#include "MathFontsBundle.h"

#include <QCoreApplication>
#include <QDebug>
#include <QThread>

#include <utility>

namespace {

bool isMainThread() {
    const QCoreApplication* application = QCoreApplication::instance();
    return application == nullptr || QThread::currentThread() == application->thread();
}

} // namespace

BundleManager& BundleManager::manager() {
    static BundleManager manager(MathFontsBundle::folder());
    return manager;
}

BundleManager::BundleManager(QString bundleFolder) : m_bundleFolder(std::move(bundleFolder)) {}

BundleManager::~BundleManager() = default;

std::shared_ptr<const CGFont> BundleManager::cgFont(MathFont font) {
    const auto find = [&](const Maps& maps) { return maps.cgFonts.value(font); };
    if (auto found = m_maps.read(find))
        return found;
    registerFont(font);
    return m_maps.read(find);
}

std::shared_ptr<const MTRawMathTable> BundleManager::rawMathTable(MathFont font) {
    const auto find = [&](const Maps& maps) { return maps.rawMathTables.value(font); };
    if (auto found = m_maps.read(find))
        return found;
    registerFont(font);
    return m_maps.read(find);
}

std::shared_ptr<const CTFont> BundleManager::ctFont(MathFont font, double size) {
    const CTFontSizePair pair{font, size};
    if (auto found = m_maps.read([&](const Maps& maps) { return maps.ctFonts.value(pair); }))
        return found;
    auto sized = std::make_shared<const CTFont>(cgFont(font), size);
    return m_maps.write([&](Maps& maps) {
        // Another thread may have been quicker.
        auto& kept = maps.ctFonts[pair];
        if (!kept)
            kept = std::move(sized);
        return kept;
    });
}

void BundleManager::registerFont(MathFont font) {
    const std::lock_guard guard(m_registration);
    if (m_maps.read([&](const Maps& maps) { return maps.rawMathTables.contains(font); }))
        return;

    const QString name = fontName(font);
    auto cgFont = CGFont::read(MathFontsBundle::fontPath(m_bundleFolder, name));
    auto table = MTRawMathTable::read(MathFontsBundle::propertyListPath(m_bundleFolder, name), *cgFont);
    m_maps.write([&](Maps& maps) {
        maps.cgFonts.insert(font, cgFont);
        maps.rawMathTables.insert(font, table);
    });
    qDebug("mathFonts bundle resource: %s.plist registered on %s.", qUtf8Printable(name),
           isMainThread() ? "main" : "global");
}
