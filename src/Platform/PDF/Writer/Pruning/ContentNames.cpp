#include "ContentNames.h"

#include "Logging.h"
#include "PdfValues.h"
#include "SourceFile.h"

#include <qpdf/Buffer.hh>

#include <cctype>
#include <cstring>

namespace {

bool isRegular(unsigned char c) {
    return c > ' ' && !std::strchr("()<>[]{}/%", c);
}

void collect(const unsigned char* bytes, std::size_t size, std::set<std::string>& names) {
    for (std::size_t i = 0; i < size; ++i) {
        if (bytes[i] != '/')
            continue;
        std::string name = "/";
        while (i + 1 < size && isRegular(bytes[i + 1])) {
            ++i;
            if (bytes[i] == '#' && i + 2 < size && std::isxdigit(bytes[i + 1]) && std::isxdigit(bytes[i + 2])) {
                const char digits[] = {char(bytes[i + 1]), char(bytes[i + 2]), 0};
                name += char(std::strtol(digits, nullptr, 16));
                i += 2;
            } else {
                name += char(bytes[i]);
            }
        }
        names.insert(name);
    }
}

std::vector<QPDFObjectHandle> contentStreams(QPDFObjectHandle contents) {
    std::vector<QPDFObjectHandle> streams;
    if (contents.isStream())
        streams.push_back(contents);
    else if (contents.isArray())
        for (QPDFObjectHandle part : contents.aitems())
            if (part.isStream())
                streams.push_back(part);
    return streams;
}

} // namespace

std::optional<std::set<std::string>> ContentNames::in(const std::vector<QPDFObjectHandle>& streams) {
    std::set<std::string> names;
    for (QPDFObjectHandle stream : streams) {
        try {
            const auto data = stream.getStreamData(qpdf_dl_generalized);
            collect(data->getBuffer(), data->getSize(), names);
        } catch (const std::exception& error) {
            qCWarning(Logging::pdf) << "decoding a content stream failed:" << Logging::causes(error);
            return std::nullopt;
        }
    }
    return names;
}

void ContentNames::Walker::walkPage(QPDFObjectHandle page) {
    add(page.getObjGen(), SourceFile::inheritable(page, "/Resources"), contentStreams(page.getKey("/Contents")));
    QPDFObjectHandle annotations = page.getKey("/Annots");
    if (annotations.isArray())
        for (const QPDFObjectHandle& annotation : annotations.aitems())
            addAppearances(annotation);
    run();
}

void ContentNames::Walker::addAppearances(QPDFObjectHandle annotation) {
    QPDFObjectHandle looks = PdfValues::entry(annotation, "/AP");
    if (!looks.isDictionary())
        return;
    for (auto& [kind, look] : looks.getDictAsMap()) {
        QPDFObjectHandle form = look;
        if (form.isDictionary()) {
            for (auto& [state, each] : form.getDictAsMap())
                addStream(each, QPDFObjGen(), QPDFObjectHandle::newNull());
        } else {
            addStream(form, QPDFObjGen(), QPDFObjectHandle::newNull());
        }
    }
}

void ContentNames::Walker::run() {
    while (!m_pending.empty()) {
        const User user = std::move(m_pending.back());
        m_pending.pop_back();
        m_visit(user);
        addFrom(user);
    }
}

void ContentNames::Walker::add(QPDFObjGen owner, QPDFObjectHandle resources, std::vector<QPDFObjectHandle> streams) {
    if (resources.isDictionary())
        m_pending.push_back({owner, resources, std::move(streams)});
}

void ContentNames::Walker::addStream(QPDFObjectHandle stream, QPDFObjGen outerOwner, QPDFObjectHandle outerResources) {
    if (!stream.isStream())
        return;
    QPDFObjectHandle own = stream.getDict().getKey("/Resources");
    // Old files leave it out and mean the resources of the page.
    QPDFObjectHandle resources = own.isDictionary() ? own : outerResources;
    const QPDFObjGen owner = own.isDictionary() ? stream.getObjGen() : outerOwner;
    const QPDFObjGen place = resources.isIndirect() ? resources.getObjGen() : owner;
    if (resources.isDictionary() && m_seenStreams.insert({stream.getObjGen(), place}).second)
        add(owner, resources, {stream});
}

void ContentNames::Walker::addFrom(const User& user) {
    QPDFObjectHandle resources = user.resources;
    if (!m_seenResources.insert(resources.isIndirect() ? resources.getObjGen() : user.owner).second)
        return;
    for (const char* category : {"/XObject", "/Pattern"}) {
        QPDFObjectHandle entries = resources.getKey(category);
        if (!entries.isDictionary())
            continue;
        for (auto& [name, entry] : entries.getDictAsMap())
            if (entry.isStream() && !entry.getDict().getKey("/Subtype").isNameAndEquals("/Image"))
                addStream(entry, user.owner, resources);
    }
    // A graphics state may be masked by a form.
    QPDFObjectHandle states = resources.getKey("/ExtGState");
    if (states.isDictionary())
        for (auto& [name, state] : states.getDictAsMap())
            addStream(PdfValues::entry(PdfValues::entry(state, "/SMask"), "/G"), user.owner, resources);
    QPDFObjectHandle fonts = resources.getKey("/Font");
    if (!fonts.isDictionary())
        return;
    for (auto& [name, font] : fonts.getDictAsMap()) {
        if (!font.isDictionary() || !font.getKey("/Subtype").isNameAndEquals("/Type3"))
            continue;
        QPDFObjectHandle own = font.getKey("/Resources");
        const bool hasOwn = own.isDictionary() && font.isIndirect();
        QPDFObjectHandle glyphs = font.getKey("/CharProcs");
        if (glyphs.isDictionary())
            for (auto& [glyph, stream] : glyphs.getDictAsMap())
                addStream(stream, hasOwn ? font.getObjGen() : user.owner, hasOwn ? own : resources);
    }
}
