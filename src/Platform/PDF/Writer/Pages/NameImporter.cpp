#include "NameImporter.h"

#include "NameTree.h"
#include "ObjectStreams.h"
#include "PDFSource.h"
#include "PdfValues.h"

#include <unordered_map>
#include <vector>

namespace {

constexpr const char* places = "/Dests";
constexpr const char* attachments = "/EmbeddedFiles";
constexpr const char* scripts = "/JavaScript";

} // namespace

void NameImporter::readPresent(const char* key, Tree& tree) {
    tree.isRead = true;
    NameTree::forEach(PdfValues::entry(m_objects.root().getKey("/Names"), key), "/Names",
                      [&tree](QPDFObjectHandle name, QPDFObjectHandle value) {
                          if (name.isString())
                              tree.present.emplace(name.getStringValue(), value);
                      });
}

std::string NameImporter::add(const char* key, const std::string& name, QPDFObjectHandle value,
                              SourceFiles::Foreign& file) {
    Tree& tree = m_trees[key];
    if (!tree.isRead)
        readPresent(key, tree);
    std::string free = name;
    for (int number = 2; tree.present.count(free) + tree.added.count(free) > 0; ++number)
        free = name + "_" + std::to_string(number);
    tree.added.emplace(free, Added{value, &file});
    return free;
}

void NameImporter::announce(SourceFiles::Foreign& file, const std::set<int>& pageNumbers, bool withAttachments) {
    std::map<std::string, std::string>& renamed = m_places[&file];
    // Where few pages come, most names lead to others. Those aren't even read as objects.
    QPDF& pdf = file.file.pdf();
    const bool isPart = int(pageNumbers.size()) < file.file.source()->pageCount();
    const auto pages = isPart ? ObjectStreams::pagesOfPlaces(pdf) : std::unordered_map<int, QPDFObjGen>();
    const auto leadsElsewhere = [&](QPDFObjectHandle value) {
        const auto page = pages.find(value.getObjectID());
        return page != pages.end() && !file.copier.hasReplacement(pdf.getObject(page->second));
    };
    file.names.forEach([&](const std::string& name, QPDFObjectHandle value) {
        if (leadsElsewhere(value))
            return;
        QPDFObjectHandle place = file.names.explicitDestination(value);
        if (place.isArray() && place.getArrayNItems() > 0 && place.getArrayItem(0).isIndirect() &&
            file.copier.hasReplacement(place.getArrayItem(0)))
            renamed.emplace(name, add(places, name, place, file));
    });
    if (withAttachments)
        NameTree::forEach(PdfValues::entry(file.file.pdf().getRoot().getKey("/Names"), attachments), "/Names",
                          [&](QPDFObjectHandle name, QPDFObjectHandle value) {
                              if (name.isString() && value.isDictionary())
                                  add(attachments, name.getStringValue(), value, file);
                          });
}

QPDFObjectHandle NameImporter::renamed(QPDFObjectHandle destination, SourceFiles::Foreign& file) const {
    if (destination.isArray() && destination.getArrayNItems() > 0 && destination.getArrayItem(0).isInteger()) {
        QPDFObjectHandle page = file.file.page(int(PdfValues::toNumber(destination.getArrayItem(0))));
        QPDFObjectHandle place = destination.shallowCopy();
        place.setArrayItem(0, page);
        return place;
    }
    if (!destination.isString() && !destination.isName())
        return QPDFObjectHandle::newNull();
    const std::string name = NamedDestinations::text(destination);
    const auto known = m_places.find(&file);
    if (known != m_places.end())
        if (const auto now = known->second.find(name); now != known->second.end())
            return now->second == name && destination.isString() ? QPDFObjectHandle::newNull()
                                                                 : QPDFObjectHandle::newString(now->second);
    // Of the file that is being written itself: its own names may lead elsewhere, so the copy says where.
    QPDFObjectHandle place = file.names.explicitDestination(destination);
    return place.isArray() ? place.shallowCopy() : place;
}

void NameImporter::addScript(const std::string& name, QPDFObjectHandle action, SourceFiles::Foreign& file) {
    add(scripts, name, action, file);
}

void NameImporter::write() {
    for (auto& [key, tree] : m_trees) {
        if (tree.added.empty())
            continue;
        std::map<std::string, QPDFObjectHandle> all = std::move(tree.present);
        for (auto& [name, added] : tree.added)
            all.emplace(name, added.file->copier.copy(added.value));
        m_objects.set(m_objects.dictionaryAt(m_objects.root(), "/Names"), key, NameTree::make(all, m_objects));
    }
}
