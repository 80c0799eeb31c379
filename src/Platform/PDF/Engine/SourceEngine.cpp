#include "SourceEngine.h"

#include "EngineBudget.h"
#include "FormFieldIndex.h"
#include "PDFError.h"
#include "PageObjects.h"
#include "PasswordForms.h"

#include <algorithm>

namespace {

/// Documents that stay open for the next borrower: the main thread's and those of two workers.
constexpr std::size_t idleLimit = 3;
constexpr std::size_t recordingLimit = 8;
constexpr std::size_t stateLookLimit = 4096; // some hundred bytes each
constexpr std::size_t lookupsBeforeTable = 64;

PDFError openFailure(QByteArrayView bytes, const std::string& reason) {
    const QString message = QString::fromStdString(reason);
    if (message.contains(QLatin1String("crypt")))
        return {PDFError::Kind::unsupportedEncryption,
                QStringLiteral("It is protected in a way that isn't supported.")};
    if (!bytes.first(std::min<qsizetype>(bytes.size(), 1024)).contains("%PDF-"))
        return {PDFError::Kind::notPDF, QStringLiteral("It isn't a PDF file.")};
    return {PDFError::Kind::notPDF, QStringLiteral("It is damaged beyond repair.")};
}

} // namespace

bool OpenedDocument::open(QByteArrayView bytes, const QByteArray& password, std::string* error) {
    if (!m_context)
        return false;
    fz_stream* stream = nullptr;
    engineTry(
        m_context,
        [&] {
            stream = fz_open_memory(m_context, reinterpret_cast<const unsigned char*>(bytes.data()),
                                    std::size_t(bytes.size()));
            m_document = pdf_open_document_with_stream(m_context, stream);
            if (!password.isEmpty())
                pdf_authenticate_password(m_context, m_document, password.constData());
        },
        error);
    fz_drop_stream(m_context, stream);
    return m_document != nullptr;
}

SourceEngine::SourceEngine(QByteArrayView bytes) : m_bytes(bytes) {
    auto opened = std::make_unique<OpenedDocument>();
    std::string error;
    if (!opened->open(m_bytes, {}, &error))
        throw openFailure(m_bytes, error);
    fz_context* context = opened->context();
    pdf_document* document = opened->document();
    const bool known = engineTry(context, [&] {
        pdf_obj* encryption = pdf_dict_get(context, pdf_trailer(context, document), PDF_NAME(Encrypt));
        m_encrypted = pdf_is_dict(context, encryption) != 0;
        m_securityRevision = pdf_dict_get_int(context, encryption, PDF_NAME(R));
        m_needsPassword = pdf_needs_password(context, document) != 0;
    });
    if (!known)
        throw openFailure(m_bytes, "crypt");
    if (!m_needsPassword)
        readSummary(*opened);
    m_idle.push_back(std::move(opened));
    EngineBudget::noteUse(*this);
}

SourceEngine::~SourceEngine() {
    EngineBudget::remove(*this);
}

void SourceEngine::readSummary(const OpenedDocument& opened) {
    std::string error;
    const PageObjects::Tree tree = PageObjects::settleTree(opened.context(), opened.document(), &error);
    if (!tree.isThere)
        throw openFailure(m_bytes, error);
    m_pageCount = tree.pageCount;
    m_repaired = tree.isReplaced || pdf_was_repaired(opened.context(), opened.document()) != 0;
}

SourceEngine::Lease SourceEngine::lease() {
    {
        const std::lock_guard guard(m_mutex);
        if (!m_idle.empty()) {
            // The document used last has the page's resources at hand.
            auto opened = std::move(m_idle.back());
            m_idle.pop_back();
            return {*this, std::move(opened)};
        }
    }
    auto opened = std::make_unique<OpenedDocument>();
    if (!opened->open(m_bytes, m_enginePassword, nullptr))
        opened.reset();
    else if (m_repaired)
        (void)PageObjects::settleTree(opened->context(), opened->document());
    return {*this, std::move(opened)};
}

void SourceEngine::takeBack(std::unique_ptr<OpenedDocument> opened) {
    if (pdf_was_repaired(opened->context(), opened->document()))
        m_repaired = true;
    {
        const std::lock_guard guard(m_mutex);
        if (m_idle.size() < idleLimit)
            m_idle.push_back(std::move(opened));
    }
    EngineBudget::noteUse(*this);
}

void SourceEngine::releaseCaches() {
    std::vector<std::unique_ptr<OpenedDocument>> surplus; // dropped after the lock
    std::vector<std::pair<RecordingKey, std::shared_ptr<const RecordedPage>>> recordings;
    const std::lock_guard guard(m_mutex);
    recordings.swap(m_recordings);
    while (m_idle.size() > 1) {
        surplus.push_back(std::move(m_idle.back()));
        m_idle.pop_back();
    }
    for (const auto& opened : m_idle)
        opened->instance()->emptyStore();
}

void SourceEngine::rest() {
    std::vector<std::unique_ptr<OpenedDocument>> closed; // dropped after the lock
    releaseCaches();
    const std::lock_guard guard(m_mutex);
    closed.swap(m_idle);
}

bool SourceEngine::authenticate(const QString& password) {
    const Lease borrowed = lease();
    if (!borrowed)
        return false;
    for (const PasswordForm& form : PasswordForm::all(password, m_securityRevision)) {
        int accepted = 0;
        engineTry(borrowed.context(), [&] {
            accepted = pdf_authenticate_password(borrowed.context(), borrowed.document(), form.engine.constData());
        });
        if (!accepted)
            continue;
        readSummary(borrowed.opened()); // a file without pages stays locked
        m_password = password;
        m_passwordBytes = form.bytes;
        m_enginePassword = form.engine;
        m_needsPassword = false;
        return true;
    }
    return false;
}

std::shared_ptr<const SourceEngine::PageTable> SourceEngine::table() const {
    const std::lock_guard guard(m_mutex);
    return m_table;
}

std::optional<PDFPageGeometry> SourceEngine::knownGeometry(int pageNumber) const {
    const std::lock_guard guard(m_mutex);
    if (m_table)
        return m_table->geometries[std::size_t(pageNumber)];
    const auto known = m_geometries.find(pageNumber);
    return known == m_geometries.end() ? std::nullopt : std::optional(known->second);
}

bool SourceEngine::isTableWorthIt() const {
    const std::lock_guard guard(m_mutex);
    return m_geometries.size() >= lookupsBeforeTable;
}

std::shared_ptr<const SourceEngine::PageTable> SourceEngine::makeTable() {
    const std::lock_guard making(m_tableMaking);
    if (auto made = table())
        return made;
    auto made = std::make_shared<PageTable>();
    made->objectNumbers.resize(std::size_t(m_pageCount), 0);
    made->geometries.resize(std::size_t(m_pageCount), PageObjects::fallbackGeometry());
    const Lease borrowed = lease();
    if (borrowed) {
        fz_context* context = borrowed.context();
        pdf_document* document = borrowed.document();
        const bool loaded = engineTry(context, [&] { pdf_load_page_tree(context, document); });
        for (int i = 0; i < m_pageCount; ++i) {
            int& number = made->objectNumbers[std::size_t(i)];
            PDFPageGeometry& geometry = made->geometries[std::size_t(i)];
            engineTry(context, [&] {
                pdf_obj* page = pdf_lookup_page_obj(context, document, i);
                number = pdf_to_num(context, page);
                PageObjects::readGeometry(context, page, geometry);
            });
        }
        // A loaded tree hands out pages without their numbers, but knows them the other way round.
        for (int i = 0; loaded && i < document->map_page_count; ++i) {
            const pdf_rev_page_map& entry = document->rev_page_map[i];
            if (entry.page >= 0 && entry.page < m_pageCount)
                made->objectNumbers[std::size_t(entry.page)] = entry.object;
        }
        if (loaded)
            engineTry(context, [&] { pdf_drop_page_tree(context, document); });
        for (int i = 0; i < m_pageCount; ++i)
            if (const int number = made->objectNumbers[std::size_t(i)];
                number > 0 && !made->pageByObject.emplace(number, i).second)
                made->sharedObjects.insert(number);
    }
    const std::lock_guard guard(m_mutex);
    m_table = made;
    return made;
}

PDFPageGeometry SourceEngine::geometry(int pageNumber) {
    PDFPageGeometry geometry = PageObjects::fallbackGeometry();
    if (pageNumber < 0 || pageNumber >= m_pageCount)
        return geometry;
    if (const auto known = knownGeometry(pageNumber))
        return *known;
    if (isTableWorthIt())
        return makeTable()->geometries[std::size_t(pageNumber)];
    bool isKnown = false;
    {
        const Lease borrowed = lease();
        if (!borrowed)
            return geometry;
        fz_context* context = borrowed.context();
        // Damage that is found on the way makes the engine read the whole file anew, and the page in another way.
        const int repaired = pdf_was_repaired(context, borrowed.document());
        isKnown = engineTry(context, [&] {
            pdf_obj* page = pdf_lookup_page_obj(context, borrowed.document(), pageNumber);
            PageObjects::readGeometry(context, page, geometry);
        });
        isKnown = isKnown && pdf_was_repaired(context, borrowed.document()) == repaired;
    }
    if (isKnown) {
        const std::lock_guard guard(m_mutex);
        m_geometries.emplace(pageNumber, geometry);
    }
    return geometry;
}

int SourceEngine::pageObjectNumber(int pageNumber) {
    if (pageNumber < 0 || pageNumber >= m_pageCount)
        return 0;
    if (const auto all = table())
        return all->objectNumbers[std::size_t(pageNumber)];
    int number = 0;
    const Lease borrowed = lease();
    if (borrowed)
        engineTry(borrowed.context(), [&] {
            number = pdf_to_num(borrowed.context(),
                                pdf_lookup_page_obj(borrowed.context(), borrowed.document(), pageNumber));
        });
    return number;
}

int SourceEngine::pageNumberOfObject(int objectNumber) {
    auto all = table();
    if (!all)
        all = makeTable();
    const auto found = all->pageByObject.find(objectNumber);
    return found == all->pageByObject.end() ? -1 : found->second;
}

bool SourceEngine::isPageObjectShared(int pageNumber) {
    auto all = table();
    if (!all)
        all = makeTable();
    return pageNumber >= 0 && pageNumber < m_pageCount &&
           all->sharedObjects.count(all->objectNumbers[std::size_t(pageNumber)]) > 0;
}

std::shared_ptr<const RecordedPage> SourceEngine::recording(const RecordingKey& key) const {
    const std::lock_guard guard(m_mutex);
    for (const auto& [kept, page] : m_recordings)
        if (kept == key)
            return page;
    return nullptr;
}

void SourceEngine::keepRecording(const RecordingKey& key, std::shared_ptr<const RecordedPage> page) {
    std::shared_ptr<const RecordedPage> oldest; // dropped after the lock
    const std::lock_guard guard(m_mutex);
    if (m_recordings.size() >= recordingLimit) {
        oldest = m_recordings.front().second;
        m_recordings.erase(m_recordings.begin());
    }
    m_recordings.emplace_back(key, std::move(page));
}

std::shared_ptr<const RecordedPage> SourceEngine::stateLook(const StateKey& key) const {
    const std::lock_guard guard(m_mutex);
    const auto found = m_stateLooks.find(key);
    return found == m_stateLooks.end() ? nullptr : found->second;
}

void SourceEngine::keepStateLook(const StateKey& key, std::shared_ptr<const RecordedPage> look) {
    std::map<StateKey, std::shared_ptr<const RecordedPage>> dropped; // after the lock
    const std::lock_guard guard(m_mutex);
    if (m_stateLooks.size() >= stateLookLimit)
        dropped.swap(m_stateLooks);
    m_stateLooks.insert_or_assign(key, std::move(look));
}

bool SourceEngine::hasBareAnnotations(int pageNumber) const {
    const std::lock_guard guard(m_mutex);
    return m_pagesWithBareAnnotations.count(pageNumber) > 0;
}

void SourceEngine::noteBareAnnotations(int pageNumber) {
    const std::lock_guard guard(m_mutex);
    m_pagesWithBareAnnotations.insert(pageNumber);
}

std::shared_ptr<const FormFieldIndex> SourceEngine::fieldIndex() {
    {
        const std::lock_guard guard(m_mutex);
        if (m_fieldIndex)
            return m_fieldIndex;
    }
    auto read = FormFieldIndex::read(*this);
    const std::lock_guard guard(m_mutex);
    if (!m_fieldIndex)
        m_fieldIndex = std::move(read);
    return m_fieldIndex;
}
