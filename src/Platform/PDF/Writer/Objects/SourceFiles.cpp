#include "SourceFiles.h"

#include "PDFSource.h"
#include "PdfValues.h"

SourceFile SourceFiles::Ahead::opened(const std::shared_ptr<PDFSource>& source, SourceFile::Base base,
                                      bool takesLinks) {
    SourceFile file(source, base);
    if (takesLinks)
        file.takeLinks();
    return file;
}

void SourceFiles::Ahead::open(const std::shared_ptr<PDFSource>& source, SourceFile::Base base, bool takesLinks) {
    m_opening.try_emplace(source.get(), std::async([source, base, takesLinks] {
                              SourceFile file = opened(source, base, takesLinks);
                              if (!source->wasRepaired())
                                  file.findAllPages();
                              return file;
                          }));
}

SourceFile SourceFiles::Ahead::take(const std::shared_ptr<PDFSource>& source, SourceFile::Base base, bool takesLinks) {
    auto opening = m_opening.extract(source.get());
    return opening ? opening.mapped().get() : opened(source, base, takesLinks);
}

SourceFiles::~SourceFiles() {
    constexpr std::size_t mostFreedAtOnce = 4;
    std::vector<std::future<void>> done;
    for (auto& [source, file] : m_foreign)
        if (file->file.knowsAllPages() && done.size() < mostFreedAtOnce)
            done.push_back(std::async([freed = std::move(file)]() mutable { freed.reset(); }));
}

bool SourceFiles::isMain(const std::shared_ptr<PDFSource>& source) const {
    return m_main && m_main->source() == source;
}

SourceFiles::Foreign& SourceFiles::foreign(const std::shared_ptr<PDFSource>& source) {
    std::unique_ptr<Foreign>& known = m_foreign[source.get()];
    if (known)
        return *known;
    SourceFile file = m_ahead.take(source, m_base, false);
    QPDF& pdf = file.pdf();
    known = std::make_unique<Foreign>(Foreign{std::move(file), ObjectCopier(m_objects), NamedDestinations(pdf)});
    known->copier.setPageTest([source](int number) { return source->pageNumberOfObject(number).has_value(); });
    known->copier.setLinks(known->file.links());
    if (isMain(source))
        shareWithMain(*known);
    return *known;
}

SourceFiles::Foreign* SourceFiles::known(const std::shared_ptr<PDFSource>& source) const {
    const auto found = m_foreign.find(source.get());
    return found == m_foreign.end() ? nullptr : found->second.get();
}

void SourceFiles::shareWithMain(Foreign& second) {
    // What the main file has already isn't stored a second time.
    QPDF& main = m_main->pdf();
    second.copier.shareStreamsWith(main);
    QPDFObjectHandle layers = PdfValues::entry(second.file.pdf().getRoot().getKey("/OCProperties"), "/OCGs");
    if (layers.isArray())
        for (const QPDFObjectHandle& layer : layers.aitems())
            if (layer.isIndirect())
                second.copier.setReplacement(layer, main.getObject(layer.getObjGen()));
}

std::vector<SourceFiles::Foreign*> SourceFiles::opened() const {
    std::vector<Foreign*> files;
    for (const auto& [source, file] : m_foreign)
        if (!isMain(file->file.source()))
            files.push_back(file.get());
    return files;
}
