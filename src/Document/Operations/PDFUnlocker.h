#pragma once

#include <QString>

#include <functional>
#include <optional>

class PDFDocument;

namespace PDFUnlocker {

/// Shows the modal password prompt; none when the user gives up. An empty password is one like any other.
using AskPassword = std::function<std::optional<QString>()>;

/// Asks for the password until one opens the document or the user gives up. True when the document is open; one that
/// isn't locked needs no question. The caller keeps the document alive meanwhile. Throws `PDFError` when
/// the password is right and what it opens is damaged beyond repair.
[[nodiscard]] bool promptAndUnlock(PDFDocument& document, const AskPassword& askPassword);

} // namespace PDFUnlocker
