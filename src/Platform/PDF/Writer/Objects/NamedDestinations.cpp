#include "NamedDestinations.h"

#include "NameTree.h"
#include "PdfValues.h"

void NamedDestinations::read() {
    m_read = true;
    QPDFObjectHandle root = m_pdf.getRoot();
    NameTree::forEach(PdfValues::entry(root.getKey("/Names"), "/Dests"), "/Names",
                      [this](QPDFObjectHandle key, QPDFObjectHandle value) {
                          if (key.isString())
                              m_byString.emplace(key.getStringValue(), value);
                      });
    QPDFObjectHandle old = root.getKey("/Dests");
    if (old.isDictionary())
        for (const auto& [name, value] : old.ditems())
            m_byName.emplace(name, value);
}

QPDFObjectHandle NamedDestinations::explicitDestination(QPDFObjectHandle destination) {
    if (destination.isString() || destination.isName()) {
        if (!m_read)
            read();
        const std::string text = destination.isString() ? destination.getStringValue() : destination.getName();
        const std::string other = destination.isString() ? "/" + text : text.substr(1);
        // Either kind of name is looked up in either place, as readers do.
        QPDFObjectHandle found = QPDFObjectHandle::newNull();
        const std::string& string = destination.isString() ? text : other;
        const std::string& name = destination.isString() ? other : text;
        if (const auto place = m_byString.find(string); place != m_byString.end())
            found = place->second;
        else if (const auto old = m_byName.find(name); old != m_byName.end())
            found = old->second;
        destination = found;
    }
    if (destination.isDictionary())
        destination = destination.getKey("/D");
    return destination.isArray() ? destination : QPDFObjectHandle::newNull();
}
