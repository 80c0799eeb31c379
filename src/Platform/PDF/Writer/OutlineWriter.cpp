#include "OutlineWriter.h"

#include "PDFOutline.h"
#include "PdfValues.h"
#include "SourceFiles.h"

#include <QUrl>

#include <vector>

namespace {

/// An item that is being written, with those of its children that are done.
struct Level {
    const PDFOutline* item;
    QPDFObjectHandle object;
    int next = 0;    ///< child to write
    int visible = 0; ///< rows below it that show while it is open
    QPDFObjectHandle last = QPDFObjectHandle::newNull();
};

/// The target of an entry of another file, whose own copy would bring more than the place.
void importTarget(QPDFObjectHandle kept, SourceFiles::Foreign& file) {
    QPDFObjectHandle action = kept.getKey("/A");
    const bool isPlace = PdfValues::entry(action, "/S").isNameAndEquals("/GoTo");
    QPDFObjectHandle place = file.names.explicitDestination(isPlace ? action.getKey("/D") : kept.getKey("/Dest"));
    kept.removeKey("/Dest");
    if (isPlace)
        kept.removeKey("/A");
    const bool isKnown = place.isArray() && place.getArrayNItems() > 0 && place.getArrayItem(0).isIndirect() &&
                         file.copier.hasReplacement(place.getArrayItem(0));
    if (isKnown)
        kept.replaceKey("/Dest", place.shallowCopy());
}

/// What stays of an item that was read from a file: all but its place in the tree and what was changed.
QPDFObjectHandle keptOf(const PDFOutline& item, ObjectStore& objects, SourceFiles& files) {
    const PDFOutline::InFile& inFile = item.inFile();
    const bool isMain = files.isMain(inFile.file);
    SourceFiles::Foreign* foreign = inFile.file && !isMain ? files.known(inFile.file) : nullptr;
    QPDFObjectHandle found = QPDFObjectHandle::newNull();
    if (isMain && inFile.object > 0)
        found = objects.object(inFile.object);
    else if (foreign && inFile.object > 0)
        found = foreign->file.pdf().getObject(inFile.object, 0);
    if (!found.isDictionary() || !found.hasKey("/Title"))
        return QPDFObjectHandle::newDictionary();
    QPDFObjectHandle kept = found.shallowCopy();
    for (const char* key : {"/Parent", "/Prev", "/Next", "/First", "/Last", "/Count"})
        kept.removeKey(key);
    if (!inFile.hasLabel)
        kept.removeKey("/Title");
    for (const char* key : {"/Dest", "/A"})
        if (!inFile.hasTarget)
            kept.removeKey(key);
    if (!foreign)
        return kept;
    kept.removeKey("/SE"); // an element of a structure tree that stays behind
    importTarget(kept, *foreign);
    return foreign->copier.copy(kept);
}

void setTarget(QPDFObjectHandle object, const PDFOutline& item, const AnnotationDictionary::PageLookup& pages) {
    if (item.destination()) {
        QPDFObjectHandle target = AnnotationDictionary::destination(*item.destination(), pages);
        if (!target.isNull())
            object.replaceKey("/Dest", target);
    } else if (!item.url().isEmpty()) {
        QPDFObjectHandle action = QPDFObjectHandle::newDictionary();
        action.replaceKey("/S", PdfValues::name("URI"));
        action.replaceKey("/URI", QPDFObjectHandle::newString(QUrl(item.url()).toEncoded().toStdString()));
        object.replaceKey("/A", action);
    }
}

void setCount(const Level& level, bool open) {
    QPDFObjectHandle object = level.object;
    if (level.visible > 0)
        object.replaceKey("/Count", QPDFObjectHandle::newInteger(open ? level.visible : -level.visible));
}

} // namespace

void OutlineWriter::write(const PDFOutline* root, ObjectStore& objects, SourceFiles& files,
                          const AnnotationDictionary::PageLookup& pages) {
    if (!root || root->numberOfChildren() == 0) {
        objects.remove(objects.root(), "/Outlines");
        return;
    }
    QPDFObjectHandle top = objects.add(QPDFObjectHandle::parse("<< /Type /Outlines >>"));
    objects.set(objects.root(), "/Outlines", top);
    std::vector<Level> levels{{root, top}};
    while (!levels.empty()) {
        const std::shared_ptr<PDFOutline> child = levels.back().item->child(levels.back().next);
        if (!child) {
            const Level done = levels.back();
            levels.pop_back();
            const bool open = levels.empty() || done.item->isOpen();
            setCount(done, open);
            if (!levels.empty())
                levels.back().visible += 1 + (open ? done.visible : 0);
            continue;
        }
        Level& parent = levels.back();
        ++parent.next;
        QPDFObjectHandle object = objects.add(keptOf(*child, objects, files));
        if (!object.hasKey("/Title"))
            object.replaceKey("/Title", PdfValues::text(child->label()));
        object.replaceKey("/Parent", parent.object);
        if (!object.hasKey("/Dest") && !object.hasKey("/A"))
            setTarget(object, *child, pages);
        if (parent.last.isNull()) {
            parent.object.replaceKey("/First", object);
        } else {
            parent.last.replaceKey("/Next", object);
            object.replaceKey("/Prev", parent.last);
        }
        parent.object.replaceKey("/Last", object);
        parent.last = object;
        levels.push_back({child.get(), object});
    }
}
