#include "Pruner.h"

#include "ActionPruner.h"
#include "NameImporter.h"
#include "PDFSource.h"
#include "PageTree.h"
#include "PdfValues.h"
#include "RemovedPages.h"

#include <QStringList>

namespace {

constexpr int deepestField = 64;

/// Announces the annotations of a page and their fields to the copier. `names` gets the fields' full names.
void expectFields(QPDFObjectHandle page, const PackedLinks& links, ObjectCopier& copier, std::set<QString>& names) {
    // The main file's own page, of which there is a copy: its annotations are there.
    QPDFObjectHandle known = copier.replacement(page);
    const bool isMains = copier.same() && known.getObjGen() == page.getObjGen();
    QPDFObjectHandle annotations = page.getKey("/Annots");
    if (!annotations.isArray())
        return;
    for (const QPDFObjectHandle& annotation : annotations.aitems()) {
        QStringList parts;
        std::vector<QPDFObjectHandle> chain;
        QPDFObjectHandle field = annotation;
        for (int depth = 0; field.isDictionary() && depth < deepestField; ++depth) {
            chain.push_back(field);
            if (!chain.front().getKey("/Subtype").isNameAndEquals("/Widget"))
                break;
            field = field.getKey("/Parent");
        }
        if (chain.empty() && links.find(annotation.getObjGen()))
            chain.push_back(annotation);
        for (auto each = chain.rbegin(); each != chain.rend(); ++each) {
            if (const QString part = PdfValues::toText(PdfValues::entry(*each, "/T")); !part.isEmpty())
                names.insert((parts += part).join(QLatin1Char('.')));
            if (isMains && each->isIndirect())
                copier.setReplacement(*each, copier.same()->getObject(each->getObjGen()));
            else
                copier.expect(*each);
        }
    }
}

} // namespace

void Pruner::prune(RemovedPages gone, ObjectStore& objects) {
    pruneFonts(gone, objects); // while the removed pages still have theirs
    pruneResources(gone, objects);
    pruneLayers(gone, objects);
    pruneForm(gone, objects);
    pruneDestinations(gone, objects);
    pruneThreads(gone, objects);
    pruneStructure(gone, objects);
    objects.remove(objects.root(), "/PieceInfo"); // programs keep whole documents there, in ways of their own
    // Whatever still refers to them, which may be anything, now refers to nothing.
    for (const std::set<QPDFObjGen>* ids : {&gone.fields, &gone.annotations, &gone.pages})
        for (const QPDFObjGen& id : *ids)
            objects.erase(objects.pdf().getObject(id));
}

void Pruner::separateFromOthers(SourceFiles::Foreign& file, const std::set<int>& pageNumbers,
                                const NameImporter& names) {
    FileObjects objects(file.file.pdf());
    objects.setLinks(file.file.links());
    std::vector<QPDFObjectHandle> pages;
    for (const int number : pageNumbers)
        if (QPDFObjectHandle page = file.file.page(number); page.isDictionary() && page.isIndirect())
            pages.push_back(page);
    for (const QPDFObjectHandle& page : pages)
        PageTree::keepInherited(page, objects);
    std::set<QString> fieldNames;
    for (const QPDFObjectHandle& page : pages)
        expectFields(page, file.file.links(), file.copier, fieldNames);
    ActionPruner actions(
        [&file](QPDFObjectHandle destination) {
            QPDFObjectHandle place = file.names.explicitDestination(destination);
            if (place.isNull() || place.getArrayNItems() == 0)
                return true;
            QPDFObjectHandle page = place.getArrayItem(0);
            if (page.isInteger())
                page = file.file.page(int(PdfValues::toNumber(page)));
            return !page.isIndirect() || !file.copier.hasReplacement(page);
        },
        [&](QPDFObjectHandle named) {
            return named.isString() ? fieldNames.count(PdfValues::toText(named)) == 0
                                    : !file.copier.hasReplacement(named);
        },
        [&](QPDFObjectHandle destination) { return names.renamed(destination, file); });
    actions.setLinks(objects.links());
    for (const QPDFObjectHandle& page : pages)
        actions.prunePage(page);
    if (int(pageNumbers.size()) < file.file.source()->pageCount())
        dropUnusedResources(pages);
}
