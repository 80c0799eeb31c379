#include "ReachableObjects.h"

#include "ObjectSyntax.h"

namespace {

/// Numbers may have gaps, but not so many that a list of all would be mostly of those.
constexpr std::size_t gapsForEach = 8;
constexpr std::size_t gapsAtLeast = 10000;
// The numbers that QPDF gives to new objects lie above those of the file.
constexpr std::size_t mostNewObjects = 100000;

} // namespace

std::optional<ReachableObjects> ReachableObjects::from(const FileObjects& file, QPDFObjectHandle trailer) {
    ReachableObjects objects;
    return objects.gather(file, trailer) ? std::optional(std::move(objects)) : std::nullopt;
}

bool ReachableObjects::gather(const FileObjects& file, QPDFObjectHandle trailer) {
    const auto table = file.pdf().getXRefTable();
    if (table.empty() || std::size_t(table.rbegin()->first.getObj()) > table.size() * gapsForEach + gapsAtLeast)
        return false;
    m_limit = int(std::size_t(table.rbegin()->first.getObj()) + mostNewObjects + file.texts().size());
    const auto note = [this](QPDFObjGen id) { m_pending.push_back(id); };
    ObjectSyntax::forEachReference(trailer.unparse(), note);
    while (!m_pending.empty()) {
        const QPDFObjGen id = m_pending.back();
        m_pending.pop_back();
        if (!add(file, id))
            return false;
    }
    return true;
}

bool ReachableObjects::add(const FileObjects& file, QPDFObjGen id) {
    const int number = id.getObj();
    if (number <= 0 || number > m_limit)
        return number == 0;
    if (number >= end()) {
        m_objects.resize(std::size_t(number) + 1);
        m_seen.resize(std::size_t(number) + 1);
    }
    Object& object = m_objects[std::size_t(number)];
    if (m_seen[std::size_t(number)])
        return object.value.empty() || object.generation == id.getGen();
    if (const std::string* text = file.text(id)) {
        m_seen[std::size_t(number)] = true;
        object.value = *text;
        ObjectSyntax::forEachReference(object.value, [this](QPDFObjGen next) { m_pending.push_back(next); });
        return true;
    }
    QPDFObjectHandle handle = file.pdf().getObject(id);
    if (handle.isNull())
        return true; // perhaps of a generation that is gone
    m_seen[std::size_t(number)] = true;
    object.generation = id.getGen();
    if (handle.isStream()) {
        QPDFObjectHandle dictionary = handle.getDict().shallowCopy();
        QPDFObjectHandle type = dictionary.getKey("/Type");
        if (type.isNameAndEquals("/ObjStm") || type.isNameAndEquals("/XRef"))
            return false;
        dictionary.removeKey("/Length");
        object.stream = handle;
        object.value = dictionary.unparse();
    } else {
        object.value = handle.unparseResolved();
    }
    ObjectSyntax::forEachReference(object.value, [this](QPDFObjGen next) { m_pending.push_back(next); });
    return true;
}
