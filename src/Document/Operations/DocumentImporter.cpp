#include "DocumentImporter.h"

#include "ConverterProcess.h"
#include "Document.h"
#include "DocumentController.h"
#include "DocumentError.h"
#include "DocumentImport.h"
#include "FilePath.h"
#include "FileWork.h"
#include "OfficeConverter.h"
#include "PDFEditorDocument.h"
#include "SessionFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QPointer>
#include <QScopeGuard>

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <stop_token>
#include <utility>

static QString folderPrefix() {
    return QStringLiteral("quillo-import");
}

static QString failureSentence() {
    return QStringLiteral("This file couldn't be converted to a PDF.");
}

namespace {

enum class Outcome { converted, failed, programMissing };

using Converter = Outcome (*)(const QString& source, const QString& destination, const std::stop_token& stop);

template <ConverterProcess::Kind kind>
Outcome inProcess(const QString& source, const QString& destination, const std::stop_token& stop) {
    return ConverterProcess::convert(kind, source, destination, stop) ? Outcome::converted : Outcome::failed;
}

Outcome byOfficeProgram(const QString& source, const QString& destination, const std::stop_token& stop) {
    switch (OfficeConverter::convert(source, destination, stop)) {
    case OfficeConverter::Outcome::converted:
        return Outcome::converted;
    case OfficeConverter::Outcome::programMissing:
        return Outcome::programMissing;
    case OfficeConverter::Outcome::failed:
    case OfficeConverter::Outcome::stopped:
        break;
    }
    return Outcome::failed;
}

/// By the extension; null for one that nothing converts.
Converter converterOf(const QString& extension) {
    static const QHash<QString, Converter> converters = [] {
        QHash<QString, Converter> made;
        for (const char* text : {"txt", "md"})
            made.insert(QString::fromLatin1(text), &inProcess<ConverterProcess::Kind::text>);
        for (const char* page : {"html", "htm"})
            made.insert(QString::fromLatin1(page), &inProcess<ConverterProcess::Kind::html>);
        for (const char* letter : {"doc", "docx", "rtf", "rtfd"})
            made.insert(QString::fromLatin1(letter), &byOfficeProgram);
        for (const char* picture : {"jpg", "jpeg", "png", "heic", "gif", "bmp", "tiff", "tif"})
            made.insert(QString::fromLatin1(picture), &inProcess<ConverterProcess::Kind::picture>);
        return made;
    }();
    return converters.value(extension);
}

QString fileName(const QUrl& url) {
    return url.adjusted(QUrl::StripTrailingSlash).fileName();
}

} // namespace

/// Where files are converted: what the importer and its threads share.
class DocumentImporter::Workshop {
public:
    /// Throws DocumentError.
    [[nodiscard]] Document::Filling read(const QUrl& url, const std::stop_token& stop);

    /// Ends what is under way, waits for that, and takes away what was made.
    void close();

private:
    void count(int change);
    [[nodiscard]] QString convert(const QUrl& url, const std::stop_token& stop);

    SessionFolder m_folder{folderPrefix()};
    std::stop_source m_closing;
    std::mutex m_mutex;
    std::condition_variable m_ended;
    int m_running = 0; ///< guarded by the mutex
};

void DocumentImporter::Workshop::count(int change) {
    const std::lock_guard lock(m_mutex);
    m_running += change;
    m_ended.notify_all();
}

void DocumentImporter::Workshop::close() {
    m_closing.request_stop();
    constexpr std::chrono::seconds patience{3}; // a disk may not answer
    std::unique_lock lock(m_mutex);
    m_ended.wait_for(lock, patience, [this] { return m_running == 0; });
    m_folder.remove();
}

Document::Filling DocumentImporter::Workshop::read(const QUrl& url, const std::stop_token& stop) {
    count(1);
    const auto atEnd = qScopeGuard([this] { count(-1); });
    std::stop_source either;
    const auto stopEither = [&either] { either.request_stop(); };
    const std::stop_callback givenUp(stop, stopEither);
    const std::stop_callback closing(m_closing.get_token(), stopEither);
    const QString result = convert(url, either.get_token());
    try {
        return PDFEditorDocument::readingOf(QUrl::fromLocalFile(result))();
    } catch (const DocumentError&) {
        std::throw_with_nested(DocumentError(failureSentence()));
    }
}

/// The path of the PDF.
QString DocumentImporter::Workshop::convert(const QUrl& url, const std::stop_token& stop) {
    const QFileInfo source(url.toLocalFile());
    const Converter converter = converterOf(QFileInfo(fileName(url)).suffix().toLower());
    const QString folder = m_folder.makeFolder();
    QString result = folder + QLatin1Char('/') + QFileInfo(fileName(url)).completeBaseName() + QStringLiteral(".pdf");
    const Outcome outcome =
        folder.isEmpty() || !converter ? Outcome::failed : converter(source.absoluteFilePath(), result, stop);
    if (outcome == Outcome::converted)
        return result;
    if (!folder.isEmpty())
        QDir(folder).removeRecursively();
    throw DocumentError(outcome == Outcome::programMissing
                            ? failureSentence() + QStringLiteral(" LibreOffice Writer, which reads files of this kind, "
                                                                 "isn't installed.")
                            : failureSentence());
}

DocumentImporter::DocumentImporter(DocumentController& controller, QObject* parent)
    : QObject(parent), m_controller(controller), m_workshop(std::make_shared<Workshop>()) {
    FileWork::run(
        this,
        [] {
            SessionFolder::removeAbandoned(folderPrefix());
            return true;
        },
        [](bool) {});
}

DocumentImporter::~DocumentImporter() {
    m_workshop->close();
}

void DocumentImporter::open(const QUrl& url, const DocumentController::OpenCompletion& completion) {
    if (QFileInfo(fileName(url)).suffix().toLower() == QLatin1String("pdf")) {
        m_controller.openDocument(url, true, completion);
        return;
    }
    const DocumentImport import{
        url, [workshop = m_workshop, url](const std::stop_token& stop) { return workshop->read(url, stop); },
        QStringLiteral("Couldn't Open “%1”").arg(fileName(url))};
    if (m_controller.documentAt(FilePath::absolute(url))) {
        m_controller.importDocument(import, completion); // which brings it forward
        return;
    }
    m_waiting.push_back({import, completion});
    startNext();
}

void DocumentImporter::startNext() {
    while (m_running < mostAtOnce && !m_waiting.empty()) {
        const Waiting next = std::move(m_waiting.front());
        m_waiting.pop_front();
        ++m_running;
        // However the opening ends. One that is dropped without a word was closed with all others.
        const std::shared_ptr<bool> isAnswered(new bool(false), [self = QPointer(this)](const bool* answered) {
            if (self) {
                --self->m_running;
                if (!*answered)
                    self->m_waiting.clear();
                QMetaObject::invokeMethod(self, &DocumentImporter::startNext, Qt::QueuedConnection);
            }
            delete answered;
        });
        m_controller.importDocument(next.import, [isAnswered, completion = next.completion](const auto&... result) {
            *isAnswered = true;
            if (completion)
                completion(result...);
        });
    }
}
