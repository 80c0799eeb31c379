#include "NumberedDestinations.h"

#include "ActionPruner.h"
#include "NameTree.h"
#include "PDFSource.h"
#include "PdfValues.h"
#include "Pruner.h"

#include <qpdf/Buffer.hh>

#include <cctype>
#include <set>
#include <string_view>

namespace {

/// True for "[", a number and the kind of place that the page is to be shown at, with space between them.
bool hasNumberedPlace(std::string_view bytes) {
    const auto isSpace = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0 || c == '\0'; };
    const auto isDigit = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; };
    for (const std::string_view kind : {"/Fit", "/XYZ"})
        for (std::size_t found = bytes.find(kind); found != std::string_view::npos;
             found = bytes.find(kind, found + kind.size())) {
            std::size_t at = found;
            const auto skip = [&](const auto& is) {
                const std::size_t before = at;
                while (at > 0 && is(bytes[at - 1]))
                    --at;
                return at < before;
            };
            skip(isSpace);
            if (!skip(isDigit))
                continue;
            skip(isSpace);
            if (at > 0 && bytes[at - 1] == '[')
                return true;
        }
    return false;
}

bool hasNumberedPlace(QPDFObjectHandle stream) {
    if (!stream.isStream())
        return false;
    const auto data = stream.getStreamData(qpdf_dl_generalized);
    return hasNumberedPlace({reinterpret_cast<const char*>(data->getBuffer()), data->getSize()});
}

/// The page's object; null for a place that doesn't give its page by number.
QPDFObjectHandle pageOf(QPDFObjectHandle place, SourceFile& file) {
    if (!place.isArray() || place.getArrayNItems() == 0 || !place.getArrayItem(0).isInteger())
        return QPDFObjectHandle::newNull();
    QPDFObjectHandle page = file.page(int(PdfValues::toNumber(place.getArrayItem(0), -1)));
    return page.isIndirect() && page.isDictionary() ? page : QPDFObjectHandle::newNull();
}

} // namespace

bool NumberedDestinations::mayBeIn(SourceFile& file) {
    const QByteArrayView bytes = file.source()->bytes();
    if (file.source()->wasRepaired() || hasNumberedPlace({bytes.data(), std::size_t(bytes.size())}))
        return true;
    constexpr int inObjectStream = 2;
    std::set<int> packed;
    for (const auto& [id, place] : file.pdf().getXRefTable())
        if (place.getType() == inObjectStream && packed.insert(place.getObjStreamNumber()).second &&
            hasNumberedPlace(file.pdf().getObject(place.getObjStreamNumber(), 0)))
            return true;
    return false;
}

void NumberedDestinations::pin(SourceFile& file, ObjectStore& objects) {
    const auto nothing = [](QPDFObjectHandle) { return false; };
    ActionPruner actions(nothing, nothing, [&file](QPDFObjectHandle destination) {
        QPDFObjectHandle page = pageOf(destination, file);
        if (page.isNull())
            return page;
        QPDFObjectHandle place = destination.shallowCopy();
        place.setArrayItem(0, page);
        return place;
    });
    QPDFObjectHandle root = objects.root();
    Pruner::pruneOutline(actions, objects);
    actions.pruneTarget(root, "/OpenAction", "/OpenAction");
    actions.pruneTriggers(root);
    for (int number = 0; number < file.source()->pageCount(); ++number)
        if (QPDFObjectHandle page = file.page(number); page.isDictionary())
            actions.prunePage(page);
    const auto pinNamed = [&file](QPDFObjectHandle named) {
        QPDFObjectHandle place = named.isDictionary() ? named.getKey("/D") : named;
        if (QPDFObjectHandle page = pageOf(place, file); !page.isNull())
            place.setArrayItem(0, page);
    };
    if (QPDFObjectHandle old = root.getKey("/Dests"); old.isDictionary())
        for (const auto& [name, named] : old.ditems())
            pinNamed(named);
    NameTree::forEach(PdfValues::entry(root.getKey("/Names"), "/Dests"), "/Names",
                      [&pinNamed](const QPDFObjectHandle&, const QPDFObjectHandle& named) { pinNamed(named); });
}
