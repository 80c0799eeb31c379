#pragma once

#include "RemarkThreads.h"

#include <QFont>

class QTextDocument;

/// Remarks as people read them. What a file says is never read as markup.
namespace RemarkText {

/// Who and when: "Ada King, 29/02/2024 12:30"; empty when a file says neither.
[[nodiscard]] QString heading(const Remark& remark);

/// For a tool tip that is written in that font: the first remark, broken into lines and cut after a dozen, and how many
/// answers there are. As `QToolTip` takes it; empty when there is nothing to say.
[[nodiscard]] QString toolTip(const std::vector<Remark>& thread, const QFont& font);

/// In one line, cut after some 300 characters, for a screen reader.
[[nodiscard]] QString description(const Remark& remark);

/// Replaces the document's text by all that is said.
void write(const std::vector<Remark>& thread, QTextDocument& document);

} // namespace RemarkText
