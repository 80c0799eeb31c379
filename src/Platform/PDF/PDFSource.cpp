#include "PDFSource.h"

#include "AnnotationReader.h"
#include "EngineBudget.h"
#include "EngineCopy.h"
#include "HeldBytes.h"
#include "LooseReferences.h"
#include "OutlineReader.h"
#include "PDFError.h"
#include "PageLabelReader.h"
#include "PageText.h"
#include "SourceEngine.h"
#include "TextReader.h"

#include <algorithm>

namespace {

/// Pages whose text stays at hand: enough for a selection over several pages and for what is on the screen.
constexpr std::size_t recentTextLimit = 48;

} // namespace

std::shared_ptr<PDFSource> PDFSource::open(const QByteArray& bytes, const QString& fileName) {
    if (bytes.isEmpty())
        throw PDFError(PDFError::Kind::empty, QStringLiteral("The file is empty."));
    return std::shared_ptr<PDFSource>(
        new PDFSource(std::make_unique<HeldBytes>(bytes, HeldBytes::Place::memory), fileName));
}

std::shared_ptr<PDFSource> PDFSource::openMadePage(const QByteArray& bytes) {
    std::shared_ptr<PDFSource> page(new PDFSource(std::make_unique<HeldBytes>(bytes, HeldBytes::Place::disk), {}));
    page->m_engine->rest();
    page->m_bytes->rest();
    return page;
}

PDFSource::PDFSource(std::unique_ptr<const HeldBytes> bytes, QString fileName)
    : m_bytes(std::move(bytes)), m_fileName(std::move(fileName)),
      m_engine(std::make_unique<SourceEngine>(m_bytes->view())), m_encrypted(m_engine->isEncrypted()) {}

PDFSource::~PDFSource() = default;

QByteArrayView PDFSource::bytes() const {
    return m_bytes->view();
}

QByteArray PDFSource::sharedBytes() const {
    return m_bytes->bytes();
}

bool PDFSource::needsPassword() const {
    return m_engine->needsPassword();
}

bool PDFSource::authenticate(const QString& password) {
    return m_engine->authenticate(password);
}

bool PDFSource::authenticateLike(const PDFSource& other) {
    return !other.m_engine->password().isEmpty() && m_engine->authenticate(other.m_engine->password());
}

QByteArray PDFSource::password() const {
    return m_engine->passwordBytes();
}

bool PDFSource::wasRepaired() const {
    return m_engine->wasRepaired();
}

int PDFSource::pageCount() const {
    return m_engine->pageCount();
}

PDFPageGeometry PDFSource::geometry(int pageNumber) const {
    return m_engine->geometry(pageNumber);
}

int PDFSource::pageObjectNumber(int pageNumber) const {
    return m_engine->pageObjectNumber(pageNumber);
}

std::optional<int> PDFSource::pageNumberOfObject(int objectNumber) const {
    const int number = m_engine->pageNumberOfObject(objectNumber);
    return number < 0 ? std::nullopt : std::optional(number);
}

const PageLabels& PDFSource::pageLabels() const {
    std::call_once(m_labelsRead, [this] { m_labels = PageLabelReader::read(*m_engine); });
    return m_labels;
}

bool PDFSource::isPageObjectShared(int pageNumber) const {
    return m_engine->isPageObjectShared(pageNumber);
}

const PDFFileOutline& PDFSource::outline() const {
    std::call_once(m_outlineRead, [this] { m_outline = OutlineReader::read(*m_engine); });
    return m_outline;
}

std::shared_ptr<const PageText> PDFSource::text(int pageNumber, const std::stop_token& stop) const {
    {
        const std::lock_guard guard(m_cacheMutex);
        const auto found = std::find_if(m_recentText.begin(), m_recentText.end(),
                                        [pageNumber](const auto& entry) { return entry.first == pageNumber; });
        if (found != m_recentText.end()) {
            std::rotate(found, found + 1, m_recentText.end());
            return m_recentText.back().second;
        }
    }
    auto read = readText(pageNumber, stop);
    if (stop.stop_requested())
        return read;
    const std::lock_guard guard(m_cacheMutex);
    if (m_recentText.size() >= recentTextLimit)
        m_recentText.erase(m_recentText.begin());
    m_recentText.emplace_back(pageNumber, read);
    return read;
}

std::shared_ptr<const PageText> PDFSource::readText(int pageNumber, const std::stop_token& stop) const {
    return TextReader::read(*m_engine, pageNumber, stop);
}

std::shared_ptr<const std::vector<int>> PDFSource::pagesWithContents(const QString& contents,
                                                                     const std::stop_token& stop) const {
    const auto known = [&]() -> std::shared_ptr<const std::vector<int>> {
        const std::lock_guard guard(m_cacheMutex);
        return m_soughtContents == contents ? m_pagesFound : nullptr;
    };
    auto pages = known();
    if (pages || stop.stop_requested())
        return pages;
    const std::lock_guard searching(m_searching);
    pages = known(); // somebody else searched meanwhile
    if (pages)
        return pages;
    pages = std::make_shared<const std::vector<int>>(AnnotationReader::pagesWithContents(*m_engine, contents, stop));
    if (stop.stop_requested())
        return nullptr;
    const std::lock_guard guard(m_cacheMutex);
    m_soughtContents = contents;
    m_pagesFound = pages;
    return pages;
}

bool PDFSource::hasLooseReferences() const {
    std::call_once(m_referencesRead, [this] { m_hasLooseReferences = LooseReferences::areIn(bytes(), *m_engine); });
    return m_hasLooseReferences;
}

QByteArray PDFSource::repairedBytes() const {
    return EngineCopy::of(*m_engine);
}

void PDFSource::releaseAllCaches() {
    EngineBudget::releaseAll();
}
