#include "ObjectStore.h"

#include "PackedLinks.h"
#include "QuilloAssert.h"

#include <qpdf/Buffer.hh>

#include <algorithm>
#include <utility>

namespace {

QByteArray encodedBytes(const StreamContent& content) {
    if (const auto* bytes = std::get_if<QByteArray>(&content))
        return *bytes;
    QPDFObjectHandle stream = std::get<QPDFObjectHandle>(content);
    const auto buffer = stream.getRawStreamData();
    return {reinterpret_cast<const char*>(buffer->getBuffer()), qsizetype(buffer->getSize())};
}

} // namespace

QPDFObjectHandle ObjectStore::add(QPDFObjectHandle value) {
    QPDFObjectHandle object = reserve();
    fill(object, value);
    return object;
}

QPDFObjectHandle ObjectStore::addStream(QPDFObjectHandle dictionary, const QByteArray& data) {
    QPDFObjectHandle stream = reserveStream();
    // Qt puts the length before the zlib data.
    const QByteArray packed = qCompress(data).mid(4);
    if (packed.size() + 20 >= data.size()) {
        fillStream(stream, dictionary, data);
        return stream;
    }
    dictionary.replaceKey("/Filter", QPDFObjectHandle::newName("/FlateDecode"));
    fillStream(stream, dictionary, packed);
    return stream;
}

QPDFObjectHandle ObjectStore::addCopy(QPDFObjectHandle object) {
    return add(object.shallowCopy());
}

QPDFObjectHandle ObjectStore::object(int number) {
    if (!m_generations) {
        m_generations.emplace();
        for (const auto& [id, place] : m_pdf.getXRefTable())
            if (id.getGen() != 0)
                (*m_generations)[id.getObj()] = id.getGen();
    }
    const auto generation = m_generations->find(number);
    return m_pdf.getObject(number, generation == m_generations->end() ? 0 : generation->second);
}

void ObjectStore::set(QPDFObjectHandle object, const std::string& key, QPDFObjectHandle value) {
    object.replaceKey(key, value);
    noteChange(object);
}

void ObjectStore::remove(QPDFObjectHandle object, const std::string& key) {
    if (!object.hasKey(key))
        return;
    object.removeKey(key);
    noteChange(object);
}

void ObjectStore::erase(QPDFObjectHandle object) {
    if (!object.isIndirect())
        return;
    fill(object, QPDFObjectHandle::newNull());
    noteChange(object);
}

QPDFObjectHandle ObjectStore::dictionaryAt(QPDFObjectHandle owner, const std::string& key) {
    QPDFObjectHandle value = owner.getKey(key);
    if (value.isDictionary() && value.isIndirect())
        return value;
    value = add(value.isDictionary() ? value.shallowCopy() : QPDFObjectHandle::newDictionary());
    set(owner, key, value);
    return value;
}

void ObjectStore::fillText(QPDFObjectHandle reserved, const std::string& value) {
    fill(reserved, QPDFObjectHandle::parse(&m_pdf, value));
}

// FileObjects

// A dictionary drops a reference to a null object, so what stands there meanwhile is none.
QPDFObjectHandle FileObjects::reserve() {
    return pdf().makeIndirectObject(QPDFObjectHandle::newDictionary());
}

void FileObjects::fill(QPDFObjectHandle reserved, QPDFObjectHandle value) {
    m_texts.erase(reserved.getObjectID());
    if (links())
        links()->remove(reserved.getObjGen());
    pdf().replaceObject(reserved.getObjGen(), value);
}

void FileObjects::fillText(QPDFObjectHandle reserved, const std::string& value) {
    if (m_keepsTexts)
        m_texts[reserved.getObjectID()] = value;
    else
        ObjectStore::fillText(reserved, value);
}

void FileObjects::buildTexts() {
    m_keepsTexts = false;
    for (const auto& [number, value] : std::exchange(m_texts, {}))
        ObjectStore::fillText(object(number), value);
}

void FileObjects::buildLinks() {
    if (!links())
        return;
    for (const auto& [number, link] : links()->all())
        pdf().replaceObject(QPDFObjGen(number, 0), QPDFObjectHandle::parse(&pdf(), link.text));
    links()->clear();
}

const std::string* FileObjects::text(QPDFObjGen id) const {
    if (const auto text = m_texts.find(id.getObj()); text != m_texts.end() && id.getGen() == 0)
        return &text->second;
    const PackedLinks::Link* link = links() ? std::as_const(*links()).find(id) : nullptr;
    return link ? &link->text : nullptr;
}

QPDFObjectHandle FileObjects::reserveStream() {
    return pdf().newStream();
}

void FileObjects::fillStream(QPDFObjectHandle reserved, QPDFObjectHandle dictionary, const StreamContent& content) {
    const QPDFObjectHandle filter = dictionary.getKey("/Filter");
    const QPDFObjectHandle parameters = dictionary.getKey("/DecodeParms");
    reserved.replaceDict(dictionary);
    if (const auto* original = std::get_if<QPDFObjectHandle>(&content)) {
        QPDFObjectHandle stream = *original;
        reserved.replaceStreamData(
            [stream](Pipeline* pipeline) mutable { stream.pipeStreamData(pipeline, 0, qpdf_dl_none, true); }, filter,
            parameters);
    } else {
        reserved.replaceStreamData(std::get<QByteArray>(content).toStdString(), filter, parameters);
    }
}

void FileObjects::noteChange(QPDFObjectHandle object) {
    QUILLO_ASSERT(object.isIndirect(), "only indirect objects can be noted as changed");
}

// UpdateObjects

UpdateObjects::UpdateObjects(QPDF& pdf) : ObjectStore(pdf) {
    for (const auto& [id, place] : pdf.getXRefTable())
        m_next = std::max(m_next, id.getObj() + 1);
    // Numbers below the size that the file claims may be in use by free entries.
    int size = 0;
    if (pdf.getTrailer().getKey("/Size").getValueAsInt(size))
        m_next = std::max(m_next, size);
    m_firstNew = m_next;
}

QPDFObjectHandle UpdateObjects::reserve() {
    const QPDFObjGen id(m_next++, 0);
    pdf().replaceObject(id, QPDFObjectHandle::newDictionary());
    QPDFObjectHandle object = pdf().getObject(id);
    m_entries[id] = {object, std::nullopt};
    return object;
}

void UpdateObjects::fill(QPDFObjectHandle reserved, QPDFObjectHandle value) {
    pdf().replaceObject(reserved.getObjGen(), value);
}

// QPDF numbers its streams itself, so here one is its dictionary with the bytes beside it.
QPDFObjectHandle UpdateObjects::reserveStream() {
    return reserve();
}

void UpdateObjects::fillStream(QPDFObjectHandle reserved, QPDFObjectHandle dictionary, const StreamContent& content) {
    fill(reserved, dictionary);
    m_entries[reserved.getObjGen()].bytes = encodedBytes(content);
}

void UpdateObjects::noteChange(QPDFObjectHandle object) {
    QUILLO_ASSERT(object.isIndirect(), "only indirect objects can be noted as changed");
    m_entries.try_emplace(object.getObjGen(), Entry{object, std::nullopt});
}
