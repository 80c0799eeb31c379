#include "PDFDocument.h"

#include "FlowingText.h"
#include "InformationReader.h"
#include "PDFDocumentSnapshot.h"
#include "PDFError.h"
#include "PDFOrigin.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "PageText.h"

#include <QFile>
#include <QFileInfo>
#include <QtConcurrent/QtConcurrentMap>

#include <algorithm>

namespace {

/// Files are held in memory: past this, reading one would push everything else out.
constexpr qint64 largestFile = qint64(4) << 30;

QByteArray readFile(const QString& path) {
    using Kind = PDFError::Kind;
    const QFileInfo info(path);
    if (!info.exists())
        throw PDFError(Kind::unreadable, QStringLiteral("There is no such file."));
    if (info.isDir())
        throw PDFError(Kind::unreadable, QStringLiteral("It is a folder."));
    if (!info.isFile())
        throw PDFError(Kind::unreadable, QStringLiteral("It isn't a regular file."));
    if (info.size() > largestFile)
        throw PDFError(Kind::unreadable, QStringLiteral("It is larger than 4 GB, which is too large to open."));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw PDFError(Kind::unreadable, file.error() == QFileDevice::PermissionsError || !info.isReadable()
                                             ? QStringLiteral("You don't have permission to read it.")
                                             : QStringLiteral("It couldn't be read: %1.").arg(file.errorString()));
    }
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw PDFError(Kind::unreadable, QStringLiteral("It couldn't be read: %1.").arg(file.errorString()));
    return bytes;
}

} // namespace

PDFDocument::PDFDocument() = default;

PDFDocument::PDFDocument(std::shared_ptr<PDFSource> source) : m_source(std::move(source)) {
    m_locked = m_source->needsPassword();
    if (!m_locked)
        adoptPages();
}

PDFDocument::~PDFDocument() {
    if (m_origin && m_origin.use_count() > 1)
        m_origin->keepAll();
    for (const auto& page : m_pages)
        if (page)
            page->m_document = nullptr;
}

std::shared_ptr<PDFDocument> PDFDocument::fromFile(const QString& path) {
    return fromSource(openSource(path));
}

std::shared_ptr<PDFSource> PDFDocument::openSource(const QString& path) {
    return PDFSource::open(readFile(path), QFileInfo(path).fileName());
}

std::shared_ptr<PDFDocument> PDFDocument::fromSource(const std::shared_ptr<PDFSource>& source) {
    return std::shared_ptr<PDFDocument>(new PDFDocument(source));
}

std::shared_ptr<PDFDocument> PDFDocument::fromData(const QByteArray& data) {
    return fromSource(PDFSource::open(data));
}

bool PDFDocument::isEncrypted() const {
    return m_source && m_source->isEncrypted();
}

bool PDFDocument::wasRepaired() const {
    return m_source && m_source->wasRepaired();
}

bool PDFDocument::unlock(const QString& password) {
    return !m_locked || unlocked(m_source->authenticate(password));
}

bool PDFDocument::unlockLike(const PDFDocument& other) {
    return !m_locked || (other.m_source && unlocked(m_source->authenticateLike(*other.m_source)));
}

bool PDFDocument::unlocked(bool authenticated) {
    if (!authenticated)
        return false;
    m_locked = false;
    adoptPages();
    Q_EMIT pagesChanged();
    return true;
}

// Pages

void PDFDocument::adoptPages() {
    const int count = m_source->pageCount();
    m_pages.assign(std::size_t(count), nullptr);
    m_sourceNumbers.resize(std::size_t(count));
    for (int i = 0; i < count; ++i)
        m_sourceNumbers[std::size_t(i)] = i;
}

std::shared_ptr<PDFPage> PDFDocument::page(int index) const {
    if (index < 0 || index >= pageCount())
        return nullptr;
    std::shared_ptr<PDFPage>& page = m_pages[std::size_t(index)];
    if (!page) {
        page = std::make_shared<PDFPage>(PDFPageContent{m_source, m_sourceNumbers[std::size_t(index)]});
        page->m_document = const_cast<PDFDocument*>(this);
    }
    return page;
}

std::vector<std::shared_ptr<PDFPage>> PDFDocument::knownPages() const {
    std::vector<std::shared_ptr<PDFPage>> known;
    std::copy_if(m_pages.begin(), m_pages.end(), std::back_inserter(known), [](const auto& page) { return page; });
    return known;
}

int PDFDocument::index(const PDFPage* page) const {
    if (!page)
        return -1;
    const auto found =
        std::find_if(m_pages.begin(), m_pages.end(), [page](const auto& candidate) { return candidate.get() == page; });
    return found == m_pages.end() ? -1 : int(found - m_pages.begin());
}

/// The page that took the place of the one with that content; -1 for none.
int PDFDocument::indexOfReplacing(const PDFPageContent& place) const {
    const auto found = std::find_if(m_pages.begin(), m_pages.end(), [&place](const auto& page) {
        return page && page->replacesAnother() && page->place() == place;
    });
    return found == m_pages.end() ? -1 : int(found - m_pages.begin());
}

std::shared_ptr<PDFPage> PDFDocument::removePage(int index) {
    std::shared_ptr<PDFPage> removed = page(index);
    if (!removed)
        return nullptr;
    m_pages.erase(m_pages.begin() + index);
    m_sourceNumbers.erase(m_sourceNumbers.begin() + index);
    removed->m_document = nullptr;
    followInOutline(*removed);
    Q_EMIT pagesChanged();
    return removed;
}

void PDFDocument::insert(const std::shared_ptr<PDFPage>& page, int index) {
    if (!page || page->m_document)
        return;
    const int at = std::clamp(index, 0, pageCount());
    const PDFPageContent& content = page->content();
    m_pages.insert(m_pages.begin() + at, page);
    m_sourceNumbers.insert(m_sourceNumbers.begin() + at, content.source == m_source ? content.pageNumber : -1);
    page->m_document = this;
    followInOutline(*page);
    Q_EMIT pagesChanged();
}

std::shared_ptr<PDFPage> PDFDocument::replacePage(int index, const std::shared_ptr<PDFPage>& page) {
    if (!page || page->m_document)
        return nullptr;
    std::shared_ptr<PDFPage> replaced = removePage(index);
    if (!replaced)
        return nullptr;
    page->setImport(replaced->import());
    insert(page, index);
    std::vector<std::shared_ptr<PDFOutline>> pending;
    if (m_outlineLoaded && m_outline)
        pending.push_back(m_outline);
    while (!pending.empty()) {
        const std::shared_ptr<PDFOutline> item = std::move(pending.back());
        pending.pop_back();
        if (item->destination() && item->destination()->page() == replaced)
            item->setDestination(item->destination()->on(page));
        for (int i = 0; i < item->numberOfChildren(); ++i)
            pending.push_back(item->child(i));
    }
    return replaced;
}

quint64 PDFDocument::identityOfPage(int index) const {
    const bool isHere = index >= 0 && index < pageCount() && m_pages[std::size_t(index)];
    return isHere ? m_pages[std::size_t(index)]->identity() : 0;
}

std::shared_ptr<PDFOrigin> PDFDocument::origin() const {
    if (!m_origin)
        m_origin = std::make_shared<PDFOrigin>(*this);
    return m_origin;
}

std::shared_ptr<PDFOrigin> PDFDocument::copiedFrom() const {
    if (m_source || m_pages.empty())
        return nullptr;
    const std::shared_ptr<PDFOrigin>& first = m_pages.front()->origin();
    const bool isOnly =
        std::all_of(m_pages.begin(), m_pages.end(), [&first](const auto& page) { return page->origin() == first; });
    return isOnly ? first : nullptr;
}

PDFPageGeometry PDFDocument::geometry(int index) const {
    const auto& page = m_pages.at(std::size_t(index));
    return page ? page->geometry() : m_source->geometry(m_sourceNumbers[std::size_t(index)]);
}

QString PDFDocument::label(int index) const {
    const auto& page = m_pages.at(std::size_t(index));
    if (page)
        return page->label();
    const auto label = m_source->pageLabels().of(m_sourceNumbers[std::size_t(index)]);
    return label ? label->text() : QString();
}

std::vector<PDFPageContent> PDFDocument::pageContents() const {
    std::vector<PDFPageContent> contents;
    contents.reserve(m_pages.size());
    for (std::size_t i = 0; i < m_pages.size(); ++i)
        contents.push_back(m_pages[i] ? m_pages[i]->content() : PDFPageContent{m_source, m_sourceNumbers[i]});
    return contents;
}

std::shared_ptr<PDFPage> PDFDocument::pageOfContent(const PDFPageContent& content) const {
    if (content.source == m_source) {
        const auto found = std::find(m_sourceNumbers.begin(), m_sourceNumbers.end(), content.pageNumber);
        if (found != m_sourceNumbers.end())
            return page(int(found - m_sourceNumbers.begin()));
    } else {
        const auto found = std::find_if(m_pages.begin(), m_pages.end(), [&content](const auto& candidate) {
            return candidate && candidate->content() == content;
        });
        if (found != m_pages.end())
            return *found;
    }
    return page(indexOfReplacing(content));
}

std::optional<PDFDestination> PDFDocument::destination(const PDFFileDestination& place,
                                                       const std::shared_ptr<PDFSource>& file) const {
    if (!file || !place.isValid())
        return std::nullopt;
    const int number = place.pageObject > 0 ? file->pageNumberOfObject(place.pageObject).value_or(-1) : place.pageIndex;
    const std::shared_ptr<PDFPage> target = number < 0 ? nullptr : pageOfContent({file, number});
    if (!target)
        return std::nullopt;
    return PDFDestination(target, place.x, place.y, place.zoom);
}

// Text

QString PDFDocument::string() const {
    std::vector<PDFPageContent> contents = pageContents();
    const QList<QString> texts =
        QtConcurrent::blockingMapped<QList<QString>>(contents, [](const PDFPageContent& content) {
            return FlowingText(*content.source->readText(content.pageNumber)).string();
        });
    QString all;
    for (const QString& text : texts)
        all += text + QLatin1Char('\f');
    return all;
}

std::optional<PDFSelection> PDFDocument::selection(const PDFPage& fromPage, QPointF from, const PDFPage& toPage,
                                                   QPointF to) const {
    if (&fromPage == &toPage)
        return fromPage.selection(from, to);
    int first = index(&fromPage);
    int last = index(&toPage);
    if (first < 0 || last < 0)
        return std::nullopt;
    if (first > last) {
        std::swap(first, last);
        std::swap(from, to);
    }
    std::vector<PDFSelection::Range> ranges;
    for (int i = first; i <= last; ++i) {
        const auto at = page(i);
        const auto text = at->text();
        ranges.push_back(
            {at, i == first ? text->gapNearest(from) : 0, i == last ? text->gapNearest(to) : int(text->string.size())});
    }
    PDFSelection selected(std::move(ranges));
    return selected.isEmpty() ? std::nullopt : std::optional(std::move(selected));
}

// Outline and attributes

std::shared_ptr<PDFOutline> PDFDocument::outlineRoot() const {
    if (!m_outlineLoaded && !m_locked) {
        m_outlineLoaded = true;
        // Pages that left may come back, so it keeps the places on them.
        const auto pageOf = [this](int number) -> std::shared_ptr<PDFPage> {
            const PDFPageContent content{m_source, number};
            if (auto page = pageOfContent(content))
                return page;
            for (const auto& former : m_formerPages)
                if (auto page = former.lock(); page && page->content() == content)
                    return page;
            return nullptr;
        };
        m_outline = m_source ? PDFOutline::of(m_source, pageOf) : ImportedOutlines::outlineOfCopies(m_pages);
        m_formerPages.clear();
    }
    m_imported.settle(const_cast<PDFDocument&>(*this));
    return m_outline;
}

bool PDFDocument::hasChangedOutline() const {
    m_imported.settle(const_cast<PDFDocument&>(*this));
    return m_outlineChanged || m_imported.hasEntries();
}

std::shared_ptr<PDFOutline> PDFDocument::ownOutline() {
    if (!outlineRoot())
        m_outline = std::make_shared<PDFOutline>();
    return m_outline;
}

void PDFDocument::followInOutline(PDFPage& page) {
    if (!m_source) {
        m_outlineLoaded = m_outlineChanged;
        return;
    }
    if (page.document()) {
        m_imported.noteInserted(*this, page);
        return;
    }
    if (!m_outlineLoaded)
        m_formerPages.push_back(page.weak_from_this());
    m_imported.noteRemoved(*this, page);
}

void PDFDocument::setOutlineRoot(const std::shared_ptr<PDFOutline>& root) {
    m_outlineLoaded = true;
    m_outline = root;
    m_outlineChanged = true;
}

QVariantMap PDFDocument::documentAttributes() const {
    if (m_locked)
        return {};
    if (!m_attributes && !m_source) {
        const std::shared_ptr<PDFOrigin> original = copiedFrom();
        return original ? original->attributes() : QVariantMap();
    }
    if (!m_attributes)
        m_attributes = InformationReader::read(m_source->engine());
    return *m_attributes;
}

void PDFDocument::setDocumentAttributes(const QVariantMap& attributes) {
    if (attributes == documentAttributes())
        return;
    m_attributes = attributes;
    m_attributesChanged = true;
}

// Writing

QByteArray PDFDocument::dataRepresentation() const {
    return PDFDocumentSnapshot::of(*this)->dataRepresentation();
}

void PDFDocument::write(const QString& path) const {
    write(path, {});
}

void PDFDocument::write(const QString& path, const PDFWriteOptions& options) const {
    PDFDocumentSnapshot::of(*this)->write(path, options);
}
