#pragma once

#include <QAbstractTextDocumentLayout>
#include <QPointF>
#include <QTextBlock>
#include <QTextDocument>

/// What Qt doesn't say directly of a document that is laid out.
namespace HtmlLayout {

/// The place in the document of the coordinates in which a block's own layout has its lines.
[[nodiscard]] inline QPointF originOf(const QTextDocument& document, const QTextBlock& block) {
    return document.documentLayout()->blockBoundingRect(block).topLeft();
}

} // namespace HtmlLayout
