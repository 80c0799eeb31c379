#pragma once

#include "ObjectStore.h"
#include "PDFAnnotationValues.h"

#include <functional>

/// The dictionary of an annotation (ISO 32000-1, 12.5), apart from its appearance and from what belongs to a field.
namespace AnnotationDictionary {

/// The object of a page in the file that is being written; a null object for a page that isn't in it.
using PageLookup = std::function<QPDFObjectHandle(const PDFPage& page)>;

/// A dictionary for an annotation that the file doesn't have yet.
[[nodiscard]] QPDFObjectHandle make(const PDFAnnotationValues& values, const PageLookup& pages);

/// Changes the keys for those values that differ from `before`, which is what the dictionary says now. Every other key
/// stays.
void update(QPDFObjectHandle dictionary, const PDFAnnotationValues& now, const PDFAnnotationValues& before,
            const PageLookup& pages);

/// True when the values differ in what the annotation looks like.
[[nodiscard]] bool looksDifferent(const PDFAnnotationValues& now, const PDFAnnotationValues& before);

/// An explicit destination; a null object when the page isn't in the file.
[[nodiscard]] QPDFObjectHandle destination(const PDFDestination& destination, const PageLookup& pages);

/// Font and colour of a field or of free text as operators. `fontName` is a resource's name without the slash.
[[nodiscard]] QByteArray defaultAppearance(const QByteArray& fontName, double size, const QColor& color);

} // namespace AnnotationDictionary
