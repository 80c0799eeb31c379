#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

/// A small PDF file for a test of windows: US Letter pages with one line of text each ("Page 1").
struct TestPdf {
    int pageCount = 3;
    /// Where a link leads that takes the lower half of the first page; empty for no link.
    QByteArray linkAddress = {};
    /// Protects the file; empty for no protection.
    QByteArray password = {};
    /// The file has to be repaired to be read.
    bool isDamaged = false;

    [[nodiscard]] QByteArray bytes() const;
    /// Writes the file `name` into the existing folder and returns its address.
    [[nodiscard]] QUrl write(const QString& folder, const QString& name) const;
};
