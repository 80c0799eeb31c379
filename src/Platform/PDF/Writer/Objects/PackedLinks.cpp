#include "PackedLinks.h"

#include "ObjectSyntax.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

namespace {

/// What a plain link may say about itself, besides where it leads.
constexpr std::string_view looks[] = {"/BS", "/Border",     "/C",    "/Contents", "/F",    "/H", "/M",
                                      "/NM", "/QuadPoints", "/Rect", "/Subtype",  "/Type", "/P"};

std::size_t referencesIn(std::string_view value) {
    std::size_t count = 0;
    ObjectSyntax::forEachReference(value, [&count](QPDFObjGen) { ++count; });
    return count;
}

/// A name, or a place on a page that is given by reference: one that is given by number depends on the file's order.
bool isDestination(std::string_view value) {
    if (value.front() == '[')
        return ObjectSyntax::pageOfPlace(value) && referencesIn(value) == 1;
    return value.front() == '/' || value.front() == '(' || (value.front() == '<' && value.substr(0, 2) != "<<");
}

/// Where in the text of an action its destination stands: an empty part for one that leads out of the file. None for
/// an action of another kind.
std::optional<PackedLinks::Part> destinationOf(std::string_view action) {
    const auto entries = ObjectSyntax::entries(action);
    if (!entries)
        return std::nullopt;
    std::string_view kind;
    PackedLinks::Part destination;
    bool hasAddress = false;
    std::size_t at = 3; // behind "<< "
    for (const auto& [key, value] : *entries) {
        if (key == "/S")
            kind = value;
        else if (key == "/D" && isDestination(value))
            destination = {at + key.size() + 1, value.size()};
        else if (key == "/URI" && value.front() == '(')
            hasAddress = true;
        else if (key != "/Type" || value != "/Action")
            return std::nullopt;
        at += key.size() + 1 + value.size() + 1;
    }
    const bool leadsInside = kind == "/GoTo" && destination.size > 0 && !hasAddress;
    const bool leadsOut = kind == "/URI" && destination.size == 0 && hasAddress;
    return leadsInside || leadsOut ? std::optional(destination) : std::nullopt;
}

/// None for anything but a plain link.
std::optional<PackedLinks::Link> plainLink(std::string_view bytes) {
    if (bytes.find("/Link") == std::string_view::npos)
        return std::nullopt;
    const auto entries = ObjectSyntax::entries(bytes);
    if (!entries)
        return std::nullopt;
    PackedLinks::Link link{"<< ", {}, {}};
    bool isLink = false;
    for (const auto& [key, value] : *entries) {
        const std::size_t start = link.text.size();
        link.text.append(key).append(1, ' ').append(value).append(1, ' ');
        if (key == "/A" || key == "/Dest") {
            const auto inAction = key == "/A" ? destinationOf(value) : std::nullopt;
            if (link.target.size > 0 || (key == "/A" ? !inAction : !isDestination(value)))
                return std::nullopt;
            const std::size_t inside = start + key.size() + 1;
            link.target = {start, link.text.size() - start};
            link.destination = inAction ? PackedLinks::Part{inside + inAction->at, inAction->size}
                                        : PackedLinks::Part{inside, value.size()};
        } else if (std::find(std::begin(looks), std::end(looks), key) == std::end(looks) || value == "null" ||
                   referencesIn(value) != std::size_t(key == "/P" ? 1 : 0) || (key == "/P" && value.front() == '[')) {
            return std::nullopt;
        }
        isLink = isLink || (key == "/Subtype" && value == "/Link");
    }
    link.text += ">>";
    return isLink && link.target.size > 0 ? std::optional(std::move(link)) : std::nullopt;
}

} // namespace

void PackedLinks::Link::leadTo(const std::string& now) {
    text.replace(destination.at, destination.size, now);
    target.size += now.size() - destination.size;
    destination.size = now.size();
}

void PackedLinks::Link::leadNowhere() {
    text.erase(target.at, target.size);
    target = destination = {};
}

PackedLinks::PackedLinks(QPDF& pdf) {
    for (const ObjectStreams::Stream& stream : ObjectStreams::of(pdf)) {
        std::optional<ObjectStreams::Content> content = ObjectStreams::read(pdf, stream);
        if (!content)
            continue;
        std::string header;
        std::string objects;
        bool hasLinks = false;
        for (std::size_t i = 0; i < stream.members.size(); ++i) {
            const std::string_view bytes = content->bytes(i);
            header += std::to_string(stream.members[i]) + ' ' + std::to_string(objects.size()) + ' ';
            if (std::optional<Link> link = plainLink(bytes)) {
                m_links.insert_or_assign(stream.members[i], std::move(*link));
                objects += '0';
                hasLinks = true;
            } else {
                objects += bytes;
            }
            objects += '\n';
        }
        if (!hasLinks)
            continue;
        QPDFObjectHandle object = pdf.getObject(stream.number, 0);
        object.getDict().replaceKey("/First", QPDFObjectHandle::newInteger(static_cast<long long>(header.size())));
        object.replaceStreamData(header + objects, QPDFObjectHandle::newNull(), QPDFObjectHandle::newNull());
        m_originals.emplace(stream.number, std::move(*content));
    }
}

const PackedLinks::Link* PackedLinks::find(QPDFObjGen id) const {
    const auto found = id.getGen() == 0 ? m_links.find(id.getObj()) : m_links.end();
    return found == m_links.end() ? nullptr : &found->second;
}

PackedLinks::Link* PackedLinks::find(QPDFObjGen id) {
    return const_cast<Link*>(std::as_const(*this).find(id));
}

void PackedLinks::remove(QPDFObjGen id) {
    if (find(id))
        m_links.erase(id.getObj());
}

const ObjectStreams::Content* PackedLinks::original(int stream) const {
    const auto found = m_originals.find(stream);
    return found == m_originals.end() ? nullptr : &found->second;
}
