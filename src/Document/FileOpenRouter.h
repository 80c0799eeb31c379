#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>

class Document;
class QMimeData;

/// The one rule of where a file goes when it is opened, by the extension of its name. Main thread only.
namespace FileOpenRouter {

enum class Kind {
    pdf,         ///< opened as it is
    track1,      ///< converted to a PDF on the way in
    track2,      ///< previewed, not converted
    unsupported, ///< previewed as a file that can't be shown
};

/// What opens a file of each kind; the application sets them at its start. One that is empty does nothing.
struct Destinations {
    std::function<void(const QUrl& url)> openDocument;
    /// `emptyTab` is the document without pages whose place the file takes; null for a place of its own.
    std::function<void(const QUrl& url, const std::shared_ptr<Document>& emptyTab)> openImport;
    std::function<void(const QUrl& url, bool isSupported)> openPreview;
};
void setDestinations(Destinations destinations);

/// Extensions in lower case, without the dot.
[[nodiscard]] const QStringList& track1Extensions();
[[nodiscard]] const QStringList& track2Extensions();
/// "pdf" and those of both tracks.
[[nodiscard]] QStringList allSupportedExtensions();

/// Letter case doesn't count. A name without an extension is unsupported, and so is an existing folder, apart from the
/// kinds of document that are folders themselves.
[[nodiscard]] Kind classify(const QUrl& url);

/// Hands the file to the destination of its kind.
void open(const QUrl& url);
/// The same for one that is to take the place of a document without pages, where its kind can.
void openInPlaceOf(const std::shared_ptr<Document>& emptyTab, const QUrl& url);
/// The same for one of the recent files: they were documents, whatever their names, or were converted.
void openRecent(const QUrl& url);

/// For open panels: all supported files, then PDF alone, then all files.
[[nodiscard]] QStringList nameFilters();
/// The MIME types that the supported extensions stand for, without duplicates. An extension that the desktop doesn't
/// know has none.
[[nodiscard]] QStringList allSupportedMimeTypes();
[[nodiscard]] bool isSupportedMimeType(const QString& mimeType);

/// The files that a drop stands for: the local files that are supported, else the first local file that there is. Empty
/// when the drop carries no local file.
[[nodiscard]] QList<QUrl> droppedFiles(const QMimeData& data);
/// The first of them, for a place that takes one; none when there is none.
[[nodiscard]] std::optional<QUrl> droppedFile(const QMimeData& data);

} // namespace FileOpenRouter
