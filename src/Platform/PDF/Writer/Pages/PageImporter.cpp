#include "PageImporter.h"

#include "PDFSource.h"
#include "PdfValues.h"

#include <set>

void PageImporter::announce(const PDFPageContent& content, QPDFObjectHandle page) {
    SourceFiles::Foreign& file = m_files.foreign(content.source);
    m_announced[content.source].insert(content.pageNumber);
    QPDFObjectHandle original = file.file.page(content.pageNumber);
    if (original.isIndirect() && !file.copier.hasReplacement(original))
        file.copier.setReplacement(original, page);
}

std::vector<QPDFObjectHandle> PageImporter::fill(const PDFPageContent& content, const IsWanted& isWanted,
                                                 QPDFObjectHandle page) {
    SourceFiles::Foreign& file = m_files.foreign(content.source);
    QPDFObjectHandle original = file.file.page(content.pageNumber);
    if (!original.isDictionary()) {
        // A page that nobody can read is shown as an empty one, and so it is written.
        const QRectF box = content.source->geometry(content.pageNumber).box(PDFDisplayBox::mediaBox);
        QPDFObjectHandle empty = QPDFObjectHandle::parse("<< /Type /Page /Resources << >> >>");
        empty.replaceKey("/MediaBox", PdfValues::rect(box));
        m_objects.fill(page, empty);
        return {};
    }
    QPDFObjectHandle value = original.shallowCopy();
    value.replaceKey("/Type", PdfValues::name("Page"));
    for (const char* key : {"/Parent", "/Annots", "/B", "/StructParents"})
        value.removeKey(key);
    m_objects.fill(page, file.copier.copy(value));
    return importAnnotations(file, original, isWanted, page);
}

std::vector<QPDFObjectHandle> PageImporter::importAnnotations(SourceFiles::Foreign& file, QPDFObjectHandle original,
                                                              const IsWanted& isWanted, QPDFObjectHandle page) {
    QPDFObjectHandle list = original.getKey("/Annots");
    if (!list.isArray())
        return {};
    const PackedLinks& links = file.file.links();
    const std::vector<QPDFObjectHandle> items = list.getArrayAsVector();
    std::vector<QPDFObjectHandle> copies(items.size(), QPDFObjectHandle::newNull());
    std::vector<int> places;
    for (int place = 0; place < int(items.size()); ++place)
        if (QPDFObjectHandle item = items[std::size_t(place)];
            isWanted(place) && (item.isDictionary() || links.find(item.getObjGen())))
            places.push_back(place);

    // All get their numbers first, since they refer to each other.
    std::set<QPDFObjGen> here;
    for (const int place : places) {
        const QPDFObjectHandle& item = items[std::size_t(place)];
        copies[std::size_t(place)] = file.copier.reserveFor(item);
        if (item.isIndirect())
            here.insert(item.getObjGen());
    }
    // Of a page that comes twice the first copy is what references lead to.
    const bool isFirstCopy = original.isIndirect() && file.copier.replacement(original).getObjGen() == page.getObjGen();
    QPDFObjectHandle all = QPDFObjectHandle::newArray();
    for (const int place : places) {
        QPDFObjectHandle item = items[std::size_t(place)];
        QPDFObjectHandle copy = copies[std::size_t(place)];
        all.appendItem(copy);
        const PackedLinks::Link* link = links.find(item.getObjGen());
        if (link && isFirstCopy) {
            file.copier.copyText(copy, link->text, file.file.pdf());
            continue;
        }
        QPDFObjectHandle value = link ? QPDFObjectHandle::parse(&file.file.pdf(), link->text) : item.shallowCopy();
        const bool isWidget = value.getKey("/Subtype").isNameAndEquals("/Widget");
        for (const char* key : {"/Parent", "/IRT", "/Popup"})
            if (isWidget || here.count(value.getKey(key).getObjGen()) == 0)
                value.removeKey(key);
        value.removeKey("/Kids");
        if (isWidget)
            m_objects.buildTexts();
        if (m_objects.keepsTexts() && isFirstCopy) {
            value.replaceKey("/P", original);
            file.copier.copyInto(copy, value, file.file.pdf());
        } else {
            value.removeKey("/P");
            m_objects.fill(copy, file.copier.copy(value));
            copy.replaceKey("/P", page);
        }
        if (isWidget)
            m_adoptWidget(item, copy, file.copier);
    }
    if (!places.empty())
        page.replaceKey("/Annots", all);
    return copies;
}
