#pragma once

#include <QByteArrayList>
#include <QString>

#include <chrono>
#include <optional>
#include <stop_token>

/// Turns a file that nobody vouches for into a PDF, in a program of its own, so that a file at which a reader crashes,
/// hangs or takes all memory costs that file and no more. The program reaches no network, and of the user's files the
/// one that it converts; of a web page also those beside it. The other end is `ConverterServer`.
namespace ConverterProcess {

enum class Kind { text, html, picture, book };

/// For how long a file may take.
inline constexpr std::chrono::milliseconds timeLimit(120'000);

/// The name of a kind on the program's command line, and back.
[[nodiscard]] QString name(Kind kind);
[[nodiscard]] std::optional<Kind> kindNamed(const QString& name);

/// The command that starts the program, but for the kind and the two paths. Empty, as at first, for converting in the
/// own process. Main thread, before any file.
void setCommand(QByteArrayList command);

/// False, with nothing left at `destination`, when the file can't be read or written, when it took longer than `limit`
/// or more memory than a file may, and when `stop` was requested, which ends it within a moment. The folder of
/// `destination` is there, and belongs to this file alone. Any thread, several at once.
[[nodiscard]] bool convert(Kind kind, const QString& source, const QString& destination, const std::stop_token& stop,
                           std::chrono::milliseconds limit = timeLimit);

} // namespace ConverterProcess
