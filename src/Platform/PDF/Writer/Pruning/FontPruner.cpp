#include "Pruner.h"

#include "ContentNames.h"
#include "PdfValues.h"
#include "RemovedPages.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace {

/// A font is known by its object, or by that of its map to text where it is written out in several places.
QPDFObjGen identity(QPDFObjectHandle font) {
    if (font.isIndirect())
        return font.getObjGen();
    QPDFObjectHandle map = PdfValues::entry(font, "/ToUnicode");
    return map.isIndirect() ? map.getObjGen() : QPDFObjGen();
}

/// Content, with the fonts that it could use.
struct Listing {
    std::vector<QPDFObjectHandle> streams;
    QPDFObjectHandle fonts;
};

using Visit = std::function<void(const std::string& name, QPDFObjGen font)>;

void visitFonts(QPDFObjectHandle fonts, const Visit& visit) {
    for (const auto& [name, font] : fonts.ditems())
        if (const QPDFObjGen known = identity(font); known.isIndirect())
            visit(name, known);
}

std::vector<Listing> listingsOf(const std::vector<QPDFObjectHandle>& pages) {
    std::vector<Listing> listings;
    ContentNames::Walker walker([&listings](const ContentNames::User& user) {
        if (QPDFObjectHandle fonts = PdfValues::entry(user.resources, "/Font"); fonts.isDictionary())
            listings.push_back({user.streams, fonts});
    });
    for (const QPDFObjectHandle& page : pages)
        walker.walkPage(page);
    return listings;
}

/// Every font that is used where the content can't be read.
bool uses(const std::optional<std::set<std::string>>& names, const std::string& name) {
    return !names || names->count(name) > 0;
}

std::set<QPDFObjGen> fontsOf(const std::vector<Listing>& listings, bool readsContent) {
    std::set<QPDFObjGen> fonts;
    for (const Listing& listing : listings) {
        const auto names = readsContent ? ContentNames::in(listing.streams) : std::nullopt;
        visitFonts(listing.fonts, [&](const std::string& name, QPDFObjGen font) {
            if (uses(names, name))
                fonts.insert(font);
        });
    }
    return fonts;
}

} // namespace

void Pruner::pruneFonts(const RemovedPages& gone, ObjectStore& objects) {
    // Reading content takes time: of the removed pages it is worth that when they are few, and of the remaining ones
    // until each font was met in use.
    std::set<QPDFObjGen> unmet = fontsOf(listingsOf(gone.removed), gone.removed.size() <= gone.remaining.size());
    // A form's fonts serve fields that are filled later.
    QPDFObjectHandle form = PdfValues::entry(PdfValues::entry(objects.root(), "/AcroForm"), "/DR");
    if (QPDFObjectHandle fonts = PdfValues::entry(form, "/Font"); fonts.isDictionary())
        visitFonts(fonts, [&unmet](const std::string&, QPDFObjGen font) { unmet.erase(font); });

    const std::vector<Listing> listings = listingsOf(gone.remaining);
    for (const Listing& listing : listings) {
        std::map<std::string, QPDFObjGen> listed;
        visitFonts(listing.fonts, [&](const std::string& name, QPDFObjGen font) {
            if (unmet.count(font) > 0)
                listed.emplace(name, font);
        });
        if (listed.empty())
            continue;
        const auto names = ContentNames::in(listing.streams);
        for (const auto& [name, font] : listed)
            if (uses(names, name))
                unmet.erase(font);
    }
    for (const Listing& listing : listings) {
        std::set<std::string> left;
        visitFonts(listing.fonts, [&](const std::string& name, QPDFObjGen font) {
            if (unmet.count(font) > 0)
                left.insert(name);
        });
        QPDFObjectHandle fonts = listing.fonts;
        for (const std::string& name : left)
            fonts.removeKey(name);
    }
}
