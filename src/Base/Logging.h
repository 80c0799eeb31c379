#pragma once

#include <QLoggingCategory>
#include <QString>

#include <exception>

/// Where what went wrong can be found. The categories are off; QT_LOGGING_RULES='quillo.*=true' turns them on for one
/// run. A line says which step failed and why: never a word of a document or of a conversation, never a key, since
/// people send such logs to strangers. A person is told by sentences, not here. Usable on any thread.
namespace Logging {

const QLoggingCategory& pdf();      ///< `quillo.pdf`: reading, drawing and writing files
const QLoggingCategory& document(); ///< `quillo.document`: open documents, saving, recovery, settings
const QLoggingCategory& view();     ///< `quillo.view`: page view, annotating, windows
const QLoggingCategory& ai();       ///< `quillo.ai`: the assistant, its services and its history
const QLoggingCategory& math();     ///< `quillo.math`: formulas and their fonts

/// The text of `error` and of everything nested in it (`std::throw_with_nested`), from the outermost to the first
/// cause: "The file couldn't be saved. < xref not found".
QString causes(const std::exception& error);

/// The same for the exception being handled, of whatever type; to be called in a handler.
QString currentCauses();

} // namespace Logging
