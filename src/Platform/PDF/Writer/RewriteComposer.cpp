#include "RewriteComposer.h"

#include "AppearanceRecorder.h"
#include "DocumentContents.h"
#include "FieldImporter.h"
#include "FormFields.h"
#include "InformationWriter.h"
#include "LayerImporter.h"
#include "Logging.h"
#include "NameImporter.h"
#include "NumberedDestinations.h"
#include "OutlineWriter.h"
#include "PDFDocument.h"
#include "PDFError.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "PageAnnotations.h"
#include "PageImporter.h"
#include "PageLabelWriter.h"
#include "PageMover.h"
#include "PageTree.h"
#include "Pruner.h"
#include "RemovedPages.h"
#include "RewriteOutput.h"
#include "Signatures.h"
#include "SourceFiles.h"

#include <algorithm>
#include <exception>
#include <future>
#include <map>
#include <memory>
#include <new>
#include <set>
#include <unordered_map>
#include <vector>

namespace {

/// One run, from the objects of the source to the bytes.
class Rewriting {
public:
    Rewriting(const DocumentContents& contents, const PDFWriteOptions& options, SourceFile::Base base)
        : m_contents(contents), m_options(options), m_base(base) {}

    /// Frees the files at the same time, which for large ones takes a while.
    ~Rewriting();
    Rewriting(const Rewriting&) = delete;
    Rewriting& operator=(const Rewriting&) = delete;

    void compose(QIODevice& device);
    [[nodiscard]] bool isInDoubt() const;

private:
    [[nodiscard]] SourceFiles::Ahead openAhead() const;
    void findPages();
    void separatePages();
    void bringAbout(const AnnotationDictionary::PageLookup& lookup);
    void writePages(PageAnnotations& annotations);
    void arrangePages();
    [[nodiscard]] bool takesLinks() const;
    [[nodiscard]] bool areTextsEnough() const;
    [[nodiscard]] bool wereOnlyRemoved(std::size_t count) const;
    void write(QIODevice& device);
    [[nodiscard]] QPDFObjectHandle pageObject(const PDFPage& page) const;

    const DocumentContents& m_contents;
    const PDFWriteOptions& m_options;
    const SourceFile::Base m_base;
    std::unique_ptr<SourceFile> m_main; // the base, null without one
    std::unique_ptr<QPDF> m_empty;      // where there is no base
    bool m_hasSoundTree = false;        // of the main file
    std::unique_ptr<FileObjects> m_objects;
    std::unique_ptr<FormFields> m_form;
    std::unique_ptr<FieldImporter> m_fields;
    std::unique_ptr<SourceFiles> m_files;
    std::unique_ptr<PageImporter> m_importer;
    std::unique_ptr<NameImporter> m_names;

    struct OutputPage {
        QPDFObjectHandle object;
        bool imported = false; ///< and not an object of the main file, left where it was
    };
    std::vector<OutputPage> m_pages; // one for each page of the document
    std::unordered_map<const PDFPage*, std::size_t> m_places;
};

Rewriting::~Rewriting() {
    m_names.reset();
    m_importer.reset();
    m_fields.reset();
    m_form.reset();
    const auto freed = std::async([main = std::move(m_main)]() mutable { main.reset(); });
    m_files.reset();
}

void Rewriting::compose(QIODevice& device) {
    SourceFiles::Ahead ahead = openAhead();
    if (m_contents.base) {
        m_main = std::make_unique<SourceFile>(ahead.take(m_contents.base, m_base, takesLinks()));
        if (m_contents.source && m_options.keepsSignatures && !Signatures::valuesIn(m_main->pdf()).empty())
            throw PDFError(PDFError::Kind::breaksSignatures, QStringLiteral("That would break a digital signature."));
        m_hasSoundTree = !m_contents.base->wasRepaired() && (m_main->knowsAllPages() || m_main->findAllPages());
    } else {
        m_empty = std::make_unique<QPDF>();
        m_empty->emptyPDF();
    }
    m_objects = std::make_unique<FileObjects>(m_main ? m_main->pdf() : *m_empty);
    if (m_main) {
        m_objects->setLinks(m_main->links());
        Signatures::removeFrom(*m_objects);
    }
    m_form = std::make_unique<FormFields>(*m_objects);
    m_fields = std::make_unique<FieldImporter>(*m_objects, *m_form);
    m_files = std::make_unique<SourceFiles>(*m_objects, m_main.get(), m_base, std::move(ahead));

    if (m_main && !m_contents.hasSourceOrder() && NumberedDestinations::mayBeIn(*m_main))
        NumberedDestinations::pin(*m_main, *m_objects);
    findPages();
    if (areTextsEnough())
        m_objects->keepTexts();
    separatePages();
    const AnnotationDictionary::PageLookup lookup = [this](const PDFPage& page) { return pageObject(page); };
    AppearanceRecorder recorder(*m_objects);
    PageAnnotations annotations(*m_objects, *m_form, recorder, *m_files, lookup);
    writePages(annotations);
    bringAbout(lookup);
    PageLabelWriter::write(m_contents, *m_objects);
    InformationWriter::write(m_contents, *m_objects);
    recorder.finish();
    for (SourceFiles::Foreign* file : m_files->opened())
        LayerImporter::bringOver(file->file.pdf(), file->copier, *m_objects);
    m_fields->finish();
    for (SourceFiles::Foreign* file : m_files->opened())
        for (const ImportedScripts::Script& script : m_fields->scriptsOf(file->copier))
            m_names->addScript(script.name, script.action, *file);
    m_names->write();
    arrangePages();
    if (m_main && !m_contents.source) // what was signed is another file
        for (const OutputPage& page : m_pages)
            Signatures::removeFromPage(page.object);
    write(device);
}

/// A few of the large files that most of their pages come from, so that they are going to be read as a whole.
SourceFiles::Ahead Rewriting::openAhead() const {
    constexpr int largeFile = 100; // pages
    constexpr int mostAhead = 3;   // files: each takes a thread and its memory
    SourceFiles::Ahead ahead;
    std::map<std::shared_ptr<PDFSource>, int> counts;
    for (const DocumentContents::Page& page : m_contents.pages)
        ++counts[page.content.source];
    if (counts.size() < 2)
        return ahead;
    if (m_contents.base && m_contents.base->pageCount() >= largeFile)
        ahead.open(m_contents.base, m_base, takesLinks());
    for (const auto& [source, count] : counts)
        if (source && source != m_contents.base && count >= largeFile && count * 2 > source->pageCount() &&
            ahead.count() < mostAhead)
            ahead.open(source, m_base, takesLinks());
    return ahead;
}

/// True when nothing is going to look into the links of a file one by one.
bool Rewriting::takesLinks() const {
    return std::none_of(m_contents.pages.begin(), m_contents.pages.end(),
                        [](const auto& page) { return page.modified && page.page->annotationsMayDiffer(); });
}

bool Rewriting::isInDoubt() const {
    const std::vector<SourceFiles::Foreign*> others =
        m_files ? m_files->opened() : std::vector<SourceFiles::Foreign*>();
    return (m_main && m_main->isInDoubt()) ||
           std::any_of(others.begin(), others.end(), [](const auto* other) { return other->file.isInDoubt(); });
}

QPDFObjectHandle Rewriting::pageObject(const PDFPage& page) const {
    const auto place = m_places.find(&page);
    return place == m_places.end() ? QPDFObjectHandle::newNull() : m_pages[place->second].object;
}

void Rewriting::findPages() {
    const auto adopt = [this, knowsNames = false](QPDFObjectHandle widget, QPDFObjectHandle copy,
                                                  ObjectCopier& copier) mutable {
        for (const OutputPage& page : m_pages)
            if (!knowsNames && !page.imported)
                m_form->keepNamesOf(page.object);
        knowsNames = true;
        m_fields->adopt(widget, copy, copier);
    };
    m_importer = std::make_unique<PageImporter>(*m_objects, *m_files, adopt);
    std::set<QPDFObjGen> used;
    bool repeats = false;
    for (std::size_t i = 0; i < m_contents.pages.size(); ++i) {
        const DocumentContents::Page& page = m_contents.pages[i];
        if (page.page)
            m_places[page.page.get()] = i;
        const bool fromMain = m_files->isMain(page.content.source);
        if (fromMain) {
            QPDFObjectHandle object = m_main->page(page.content.pageNumber);
            if (object.isDictionary() && object.isIndirect() && used.insert(object.getObjGen()).second) {
                m_pages.push_back({object, false});
                continue;
            }
            repeats = true;
        }
        m_pages.push_back({m_objects->reserve(), true});
    }
    // Links in pages that are brought in lead to pages that are here already rather than to their copies.
    if (repeats)
        for (std::size_t i = 0; i < m_pages.size(); ++i)
            if (!m_pages[i].imported)
                m_importer->announce(m_contents.pages[i].content, m_pages[i].object);
    for (std::size_t i = 0; i < m_pages.size(); ++i)
        if (m_pages[i].imported)
            m_importer->announce(m_contents.pages[i].content, m_pages[i].object);
    // And those to a page in whose place another stands lead to that one.
    for (std::size_t i = 0; i < m_pages.size(); ++i)
        if (const PDFPageContent& place = m_contents.pages[i].place; place != m_contents.pages[i].content)
            if (SourceFiles::Foreign* file = m_files->known(place.source))
                if (QPDFObjectHandle page = file->file.page(place.pageNumber);
                    page.isIndirect() && !file->copier.hasReplacement(page))
                    file->copier.setReplacement(page, m_pages[i].object);
}

/// True when whole files are put together, so that nothing is going to look into what is brought in: no page of the
/// main file goes, and none has changed.
bool Rewriting::areTextsEnough() const {
    const auto own =
        std::count_if(m_pages.begin(), m_pages.end(), [](const OutputPage& page) { return !page.imported; });
    return m_main && !m_contents.base->wasRepaired() && !m_main->pdf().isEncrypted() &&
           int(own) == m_contents.base->pageCount() && m_importer->announced().count(m_contents.base) == 0 &&
           std::none_of(m_contents.pages.begin(), m_contents.pages.end(),
                        [](const DocumentContents::Page& page) { return page.modified; });
}

void Rewriting::separatePages() {
    m_names = std::make_unique<NameImporter>(*m_objects);
    for (const auto& [source, numbers] : m_importer->announced()) {
        SourceFiles::Foreign& file = m_files->foreign(source);
        if (!m_files->isMain(source)) // whose names are there already
            m_names->announce(file, numbers, source == m_contents.about || int(numbers.size()) == source->pageCount());
        Pruner::separateFromOthers(file, numbers, *m_names);
    }
}

/// What the document says of its pages as a whole, as far as the base doesn't.
void Rewriting::bringAbout(const AnnotationDictionary::PageLookup& lookup) {
    if (m_contents.outlineChanged)
        OutlineWriter::write(m_contents.outline.get(), *m_objects, *m_files, lookup);
    if (!m_contents.about || m_contents.about == m_contents.base)
        return;
    SourceFiles::Foreign& file = m_files->foreign(m_contents.about);
    QPDFObjectHandle root = file.file.pdf().getRoot();
    for (const char* key : {"/Metadata", "/Lang", "/ViewerPreferences", "/PageLayout"})
        if (QPDFObjectHandle value = file.copier.copy(root.getKey(key)); !value.isNull())
            m_objects->set(m_objects->root(), key, value);
    if (!m_contents.outlineOfAbout)
        return;
    std::vector<std::shared_ptr<PDFPage>> pages; // for as long as the outline leads to them
    const auto outline = PDFOutline::partOf(m_contents.about, [&](int number) -> std::shared_ptr<PDFPage> {
        for (std::size_t i = 0; i < m_pages.size(); ++i)
            if (m_contents.pages[i].place == PDFPageContent{m_contents.about, number}) {
                pages.push_back(std::make_shared<PDFPage>(m_contents.pages[i].content));
                m_places[pages.back().get()] = i;
                return pages.back();
            }
        return nullptr;
    });
    OutlineWriter::write(outline.get(), *m_objects, *m_files, lookup);
}

void Rewriting::writePages(PageAnnotations& annotations) {
    const PageImporter::IsWanted all = [](int) { return true; };
    for (std::size_t i = 0; i < m_pages.size(); ++i) {
        const DocumentContents::Page& page = m_contents.pages[i];
        QPDFObjectHandle object = m_pages[i].object;
        const PDFPage* changed = page.modified && page.page->annotationsMayDiffer() ? page.page.get() : nullptr;
        std::vector<QPDFObjectHandle> original;
        if (m_pages[i].imported)
            original = m_importer->fill(page.content, changed ? PageAnnotations::placesInUse(*changed) : all, object);
        else if (object.getKey("/Annots").isArray())
            original = object.getKey("/Annots").getArrayAsVector();
        if (page.modified && page.page->rotation() != page.content.source->geometry(page.content.pageNumber).rotation)
            m_objects->set(object, "/Rotate", QPDFObjectHandle::newInteger(page.page->rotation()));
        if (changed)
            annotations.write(*changed, object, original);
    }
}

void Rewriting::arrangePages() {
    const bool areOwn =
        std::none_of(m_pages.begin(), m_pages.end(), [](const OutputPage& page) { return page.imported; });
    if (m_contents.hasSourceOrder() && areOwn && (!m_main || m_hasSoundTree))
        return; // the tree is right as it stands
    std::vector<QPDFObjectHandle> pages;
    std::set<QPDFObjGen> kept;
    for (const OutputPage& page : m_pages) {
        pages.push_back(page.object);
        kept.insert(page.object.getObjGen());
    }
    std::vector<QPDFObjectHandle> gone;
    for (int number = 0; m_main && number < m_contents.base->pageCount(); ++number) {
        QPDFObjectHandle page = m_main->page(number);
        if (page.isDictionary() && page.isIndirect() && kept.count(page.getObjGen()) == 0)
            gone.push_back(page);
    }
    if (!wereOnlyRemoved(gone.size()) || !PageMover::remove(gone, *m_objects)) {
        for (const OutputPage& page : m_pages)
            if (!page.imported)
                PageTree::keepInherited(page.object, *m_objects);
        PageTree::write(pages, *m_objects);
    }
    if (gone.empty())
        return;
    RemovedPages removed(std::move(gone), std::move(pages));
    for (std::size_t i = 0; i < m_pages.size(); ++i)
        if (const PDFPageContent& place = m_contents.pages[i].place;
            place != m_contents.pages[i].content && m_files->isMain(place.source))
            if (QPDFObjectHandle page = m_main->page(place.pageNumber); removed.hasPage(page))
                removed.replaced.emplace(page.getObjGen(), m_pages[i].object);
    Pruner::prune(std::move(removed), *m_objects);
}

/// True when all pages are those of the main file and its sound tree, in its order, apart from so many that are gone.
bool Rewriting::wereOnlyRemoved(std::size_t count) const {
    if (!m_hasSoundTree || m_pages.size() + count != std::size_t(m_contents.base->pageCount()))
        return false;
    int last = -1;
    for (std::size_t i = 0; i < m_pages.size(); ++i) {
        const int number = m_contents.pages[i].content.pageNumber;
        if (m_pages[i].imported || number <= last)
            return false;
        last = number;
    }
    return true;
}

void Rewriting::write(QIODevice& device) {
    RewriteOutput output{*m_objects, m_options};
    output.isCopy = !m_contents.source;
    output.isSound = m_main && !m_contents.base->wasRepaired();
    for (SourceFiles::Foreign* file : m_files->opened())
        output.versions.push_back(file->file.pdf().getVersionAsPDFVersion());
    output.write(device);
}

} // namespace

bool RewriteComposer::compose(const DocumentContents& contents, const PDFWriteOptions& options, QIODevice& device,
                              SourceFile::Base base) {
    Rewriting rewriting(contents, options, base);
    try {
        rewriting.compose(device);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        const bool isAnswer = dynamic_cast<const PDFError*>(&error) != nullptr; // and not a fault of what was read
        if (isAnswer || base == SourceFile::Base::copy)
            throw;
        qCWarning(Logging::pdf) << "composing from a file as it came failed:" << Logging::causes(error);
        return false;
    }
    return base == SourceFile::Base::copy || !rewriting.isInDoubt();
}
