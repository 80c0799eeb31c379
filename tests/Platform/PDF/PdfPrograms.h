#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <string>

/// Other programs' opinion of a file that a test has made. A program that can't be started gives an exit code below
/// zero.
namespace PdfPrograms {

struct Result {
    int exitCode = -1;
    QByteArray output;
    QByteArray errors;
};

/// Runs a program and waits for it. The text "FILE" among the arguments becomes the name of a file with these bytes.
[[nodiscard]] Result run(const QString& program, QStringList arguments, const QByteArray& file);
/// The same with program and arguments in one line, with a blank between them.
[[nodiscard]] Result run(const QString& line, const QByteArray& file);

/// Empty when `qpdf --check` finds neither errors nor warnings, and otherwise what it says.
[[nodiscard]] std::string complaints(const QByteArray& file, const QString& password = {});

/// The file with every stream unpacked and no object hidden in another, for searching its bytes.
[[nodiscard]] QByteArray unpacked(const QByteArray& file, const QString& password = {});

/// The text of one page (one-based, as that program counts) or of all pages for 0.
[[nodiscard]] QString text(const QByteArray& file, int page = 0, const QString& password = {});

} // namespace PdfPrograms
