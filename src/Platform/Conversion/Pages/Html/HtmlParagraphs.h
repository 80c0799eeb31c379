#pragma once

class QTextDocument;

/// Paragraphs of megabytes, which files have that a program wrote.
namespace HtmlParagraphs {

/// Divides them, since the time for laying one out grows faster than its length. Words, unless they are as long, and
/// formats stay.
void divide(QTextDocument& document);

} // namespace HtmlParagraphs
