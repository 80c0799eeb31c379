#include "AppendComposer.h"

#include "AppearanceRecorder.h"
#include "DocumentContents.h"
#include "FormFields.h"
#include "IncrementalUpdate.h"
#include "InformationWriter.h"
#include "Logging.h"
#include "NumberedDestinations.h"
#include "ObjectStore.h"
#include "OutlineWriter.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "PageAnnotations.h"
#include "PageLabelWriter.h"
#include "PageMover.h"
#include "SignatureTerms.h"
#include "SourceFiles.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace {

constexpr int highestObjectNumber = 8388607; // what all readers take, ISO 32000-1, annex C

bool canNumberObjects(QPDF& pdf) {
    const auto table = pdf.getXRefTable();
    return table.empty() || table.rbegin()->first.getObj() < highestObjectNumber / 2;
}

/// Writes the pages whose annotations or rotation changed. False when one of them can't be read or isn't an object of
/// its own.
bool writePages(const DocumentContents& contents, SourceFile& file, UpdateObjects& objects, FormFields& form,
                AppearanceRecorder& recorder, SourceFiles& files, const AnnotationDictionary::PageLookup& lookup) {
    PageAnnotations annotations(objects, form, recorder, files, lookup);
    for (const DocumentContents::Page& page : contents.pages) {
        if (!page.modified)
            continue;
        // A page that stands directly in its node has no object that an update could replace, and one that stands in
        // the tree again is another page to whoever sees it.
        const int number = page.content.pageNumber;
        if (contents.source->pageObjectNumber(number) <= 0 || contents.source->isPageObjectShared(number))
            return false;
        QPDFObjectHandle object = file.page(number);
        if (!object.isDictionary() || !object.isIndirect())
            return false;
        if (page.page->rotation() != contents.source->geometry(page.content.pageNumber).rotation)
            objects.set(object, "/Rotate", QPDFObjectHandle::newInteger(page.page->rotation()));
        if (!page.page->annotationsMayDiffer())
            continue;
        QPDFObjectHandle list = object.getKey("/Annots");
        annotations.write(*page.page, object,
                          list.isArray() ? list.getArrayAsVector() : std::vector<QPDFObjectHandle>());
    }
    return true;
}

SignatureTerms::Extent extentOf(const DocumentContents& contents) {
    const auto isTurned = [&contents](const DocumentContents::Page& page) {
        return page.modified && page.page->rotation() != contents.source->geometry(page.content.pageNumber).rotation;
    };
    const bool isSame = !contents.outlineChanged && !contents.attributesChanged && contents.hasSourceOrder() &&
                        std::none_of(contents.pages.begin(), contents.pages.end(), isTurned);
    return isSame ? SignatureTerms::Extent::annotationsAndFields : SignatureTerms::Extent::document;
}

} // namespace

std::optional<AppendComposer::Update> AppendComposer::compose(const DocumentContents& contents) {
    if (!contents.hasAllSourcePages() || contents.source->isEncrypted() || contents.source->wasRepaired())
        return std::nullopt;
    const QByteArray bytes = contents.source->sharedBytes();
    const auto sections = IncrementalUpdate::inspect(bytes);
    if (!sections)
        return std::nullopt;
    std::unique_ptr<SourceFile> file;
    try {
        file = std::make_unique<SourceFile>(contents.source, SourceFile::Base::asItCame);
    } catch (const std::exception& error) {
        // Damaged after all.
        qCWarning(Logging::pdf) << "reading a file to append to it failed:" << Logging::causes(error);
        return std::nullopt;
    }
    if (file->pdf().isEncrypted() || file->isInDoubt() || !canNumberObjects(file->pdf()) ||
        !file->pdf().getRoot().isIndirect())
        return std::nullopt;

    const SignatureTerms terms(file->pdf());
    UpdateObjects objects(file->pdf());
    FormFields form(objects);
    AppearanceRecorder recorder(objects);
    SourceFiles files(objects, file.get());
    std::unordered_map<const PDFPage*, int> numbers;
    for (const DocumentContents::Page& page : contents.pages)
        if (page.page)
            numbers[page.page.get()] = page.content.pageNumber;
    const AnnotationDictionary::PageLookup lookup = [&](const PDFPage& page) {
        const auto number = numbers.find(&page);
        return number == numbers.end() ? QPDFObjectHandle::newNull() : file->page(number->second);
    };
    if (!writePages(contents, *file, objects, form, recorder, files, lookup))
        return std::nullopt;
    if (!contents.hasSourceOrder()) {
        if (NumberedDestinations::mayBeIn(*file))
            return std::nullopt; // many objects may have to change
        std::vector<int> order;
        for (const DocumentContents::Page& page : contents.pages)
            order.push_back(page.content.pageNumber);
        if (!PageMover::arrange(order, *file, objects))
            return std::nullopt;
    }
    if (contents.outlineChanged)
        OutlineWriter::write(contents.outline.get(), objects, files, lookup);
    PageLabelWriter::write(contents, objects);
    InformationWriter::write(contents, objects);
    recorder.finish();

    Update update{IncrementalUpdate::compose(bytes, *sections, objects), sections->updatedBytes, terms.areThere(),
                  !terms.allow(objects, extentOf(contents))};
    // Damage may show only where an object is read, and what couldn't be read would be missing.
    return file->isInDoubt() ? std::nullopt : std::optional(std::move(update));
}
