#pragma once

#include "EngineContext.h"
#include "PDFPageGeometry.h"

#include <QByteArray>
#include <QByteArrayView>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class FormFieldIndex;

/// A page's drawing operations in page coordinates, recorded once and replayed for every tile. Immutable; any thread
/// may replay it, with a context of its instance.
class RecordedPage {
public:
    RecordedPage(std::shared_ptr<const EngineInstance> instance, fz_display_list* list)
        : m_instance(std::move(instance)), m_list(list) {}
    ~RecordedPage() {
        const EngineContext context(*m_instance);
        if (context.get())
            fz_drop_display_list(context.get(), m_list);
    }
    RecordedPage(const RecordedPage&) = delete;
    RecordedPage& operator=(const RecordedPage&) = delete;

    [[nodiscard]] const EngineInstance& instance() const { return *m_instance; }
    [[nodiscard]] fz_display_list* list() const { return m_list; }

private:
    std::shared_ptr<const EngineInstance> m_instance;
    fz_display_list* m_list;
};

/// The engine's view of a file, for one thread at a time.
class OpenedDocument {
public:
    OpenedDocument() : m_instance(std::make_shared<EngineInstance>()), m_context(m_instance->newContext()) {}
    ~OpenedDocument() {
        if (m_context)
            pdf_drop_document(m_context, m_document);
        fz_drop_context(m_context);
    }
    OpenedDocument(const OpenedDocument&) = delete;
    OpenedDocument& operator=(const OpenedDocument&) = delete;

    /// `bytes` must outlive this. False when the engine can't open them.
    bool open(QByteArrayView bytes, const QByteArray& password, std::string* error);

    [[nodiscard]] const std::shared_ptr<const EngineInstance>& instance() const { return m_instance; }
    [[nodiscard]] fz_context* context() const { return m_context; }
    [[nodiscard]] pdf_document* document() const { return m_document; }

private:
    std::shared_ptr<const EngineInstance> m_instance;
    fz_context* m_context;
    pdf_document* m_document = nullptr;
};

/// Lends the engine's view of one file to threads. The engine's document objects serve one thread at a time, so each
/// borrower gets one of his own over the same bytes; opening one more costs some milliseconds and no copy.
class SourceEngine {
public:
    /// What a thread borrows: a document that nobody else uses meanwhile, with the context that goes with it.
    class Lease {
    public:
        Lease(SourceEngine& engine, std::unique_ptr<OpenedDocument> opened)
            : m_engine(&engine), m_opened(std::move(opened)) {}
        ~Lease() {
            if (m_opened && !m_isAbandoned)
                m_engine->takeBack(std::move(m_opened));
        }
        Lease(const Lease&) = delete;
        Lease& operator=(const Lease&) = delete;

        /// For a document whose reading was broken off at any place: nobody gets it again.
        void abandon() { m_isAbandoned = true; }

        /// False when the file couldn't be opened once more, for want of memory.
        explicit operator bool() const { return m_opened != nullptr; }
        [[nodiscard]] const OpenedDocument& opened() const { return *m_opened; }
        [[nodiscard]] const std::shared_ptr<const EngineInstance>& instance() const { return m_opened->instance(); }
        [[nodiscard]] fz_context* context() const { return m_opened->context(); }
        [[nodiscard]] pdf_document* document() const { return m_opened->document(); }

    private:
        SourceEngine* m_engine;
        std::unique_ptr<OpenedDocument> m_opened;
        bool m_isAbandoned = false;
    };

    /// `bytes` must outlive this. Throws `PDFError` when the engine can't open them.
    explicit SourceEngine(QByteArrayView bytes);
    ~SourceEngine();
    SourceEngine(const SourceEngine&) = delete;
    SourceEngine& operator=(const SourceEngine&) = delete;

    [[nodiscard]] Lease lease();
    /// Gives up what can be read again: decoded fonts and pictures, recorded pages, documents beyond the first that
    /// wait for a borrower. Any thread.
    void releaseCaches();
    /// The same for a file that isn't read for a while: it is opened anew when it is.
    void rest();

    [[nodiscard]] bool needsPassword() const { return m_needsPassword; }
    /// Main thread, before any page is read.
    bool authenticate(const QString& password);
    /// The one that opened the file, as it was typed.
    [[nodiscard]] QString password() const { return m_password; }
    /// The same as the file's security handler took it.
    [[nodiscard]] QByteArray passwordBytes() const { return m_passwordBytes; }
    [[nodiscard]] bool isEncrypted() const { return m_encrypted; }
    [[nodiscard]] bool wasRepaired() const { return m_repaired; }
    [[nodiscard]] int pageCount() const { return m_pageCount; }

    [[nodiscard]] PDFPageGeometry geometry(int pageNumber);
    [[nodiscard]] int pageObjectNumber(int pageNumber);
    /// -1 for an object that is no page of the page tree.
    [[nodiscard]] int pageNumberOfObject(int objectNumber);
    /// True when the page's object stands in the page tree again, where it is another page.
    [[nodiscard]] bool isPageObjectShared(int pageNumber);

    /// What is recorded under a key, the most recent ones only.
    struct RecordingKey {
        int pageNumber = 0;
        bool annotations = true;
        std::vector<int> hiddenAnnotations;
        bool operator==(const RecordingKey&) const = default;
    };
    [[nodiscard]] std::shared_ptr<const RecordedPage> recording(const RecordingKey& key) const;
    void keepRecording(const RecordingKey& key, std::shared_ptr<const RecordedPage> page);

    /// The looks that buttons of the file have for their states, as they were recorded: a change draws those around it
    /// again and again.
    struct StateKey {
        int pageNumber = 0;
        int index = 0; ///< in the page's list of annotations
        QByteArray state;
        bool operator<(const StateKey& other) const {
            return std::tie(pageNumber, index, state) < std::tie(other.pageNumber, other.index, other.state);
        }
    };
    [[nodiscard]] std::shared_ptr<const RecordedPage> stateLook(const StateKey& key) const;
    void keepStateLook(const StateKey& key, std::shared_ptr<const RecordedPage> look);

    /// Pages whose file annotations want to be drawn without bringing an appearance. Known once a page has been
    /// recorded.
    [[nodiscard]] bool hasBareAnnotations(int pageNumber) const;
    void noteBareAnnotations(int pageNumber);

    /// Never null. Read on first use.
    [[nodiscard]] std::shared_ptr<const FormFieldIndex> fieldIndex();

private:
    /// Every page's object and geometry; made when many pages are asked for, which is far quicker than one by one.
    struct PageTable {
        std::vector<int> objectNumbers;
        std::vector<PDFPageGeometry> geometries;
        std::unordered_map<int, int> pageByObject; // the first of several
        std::unordered_set<int> sharedObjects;     // of several pages
    };

    void takeBack(std::unique_ptr<OpenedDocument> opened);
    void readSummary(const OpenedDocument& opened);
    [[nodiscard]] std::shared_ptr<const PageTable> table() const;
    std::shared_ptr<const PageTable> makeTable();
    [[nodiscard]] std::optional<PDFPageGeometry> knownGeometry(int pageNumber) const;
    /// True when enough single pages were looked up to make the table worth its time.
    [[nodiscard]] bool isTableWorthIt() const;

    const QByteArrayView m_bytes;
    QString m_password;
    QByteArray m_passwordBytes;
    QByteArray m_enginePassword; // what the engine is given
    bool m_needsPassword = false;
    bool m_encrypted = false;
    int m_securityRevision = 0;
    std::atomic<bool> m_repaired{false};
    int m_pageCount = 0;

    mutable std::mutex m_mutex; // guards what follows
    std::vector<std::unique_ptr<OpenedDocument>> m_idle;
    std::shared_ptr<const PageTable> m_table;
    std::unordered_map<int, PDFPageGeometry> m_geometries; // of pages that were looked up one by one
    std::vector<std::pair<RecordingKey, std::shared_ptr<const RecordedPage>>> m_recordings; // most recent last
    std::map<StateKey, std::shared_ptr<const RecordedPage>> m_stateLooks;
    std::unordered_set<int> m_pagesWithBareAnnotations;
    std::shared_ptr<const FormFieldIndex> m_fieldIndex;
    std::mutex m_tableMaking;
};
