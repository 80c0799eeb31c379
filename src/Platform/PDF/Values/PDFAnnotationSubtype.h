#pragma once

#include <QString>

/// The subtypes that the program makes or draws itself, as `PDFAnnotation::type` gives them.
namespace PDFAnnotationSubtype {
inline const QString text = QStringLiteral("Text");
inline const QString link = QStringLiteral("Link");
inline const QString freeText = QStringLiteral("FreeText");
inline const QString line = QStringLiteral("Line");
inline const QString square = QStringLiteral("Square");
inline const QString circle = QStringLiteral("Circle");
inline const QString highlight = QStringLiteral("Highlight");
inline const QString underline = QStringLiteral("Underline");
inline const QString polygon = QStringLiteral("Polygon");
inline const QString polyLine = QStringLiteral("PolyLine");
inline const QString squiggly = QStringLiteral("Squiggly");
inline const QString strikeOut = QStringLiteral("StrikeOut");
inline const QString ink = QStringLiteral("Ink");
inline const QString stamp = QStringLiteral("Stamp");
inline const QString popup = QStringLiteral("Popup");
inline const QString widget = QStringLiteral("Widget");

[[nodiscard]] inline bool marksText(const QString& type) {
    return type == highlight || type == underline || type == strikeOut || type == squiggly;
}

/// True for what a person adds to a page as a remark on it, with a name and a date: all but links, fields and the
/// windows of notes.
[[nodiscard]] inline bool isMarkup(const QString& type) {
    return type != link && type != widget && type != popup;
}
} // namespace PDFAnnotationSubtype
