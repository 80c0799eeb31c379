#pragma once

#include "PdfPrograms.h"

#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// A folder with files to convert.
class ConvertedPages : public testing::Test {
protected:
    /// Writes a file and returns its path; the name may lead into folders.
    QString file(const QString& name, const QByteArray& bytes) {
        const QString path = folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile written(path);
        EXPECT_TRUE(written.open(QIODevice::WriteOnly) && written.write(bytes) == bytes.size());
        return path;
    }

    /// The PDF that `write` makes of such a file; empty, with nothing left in the folder, when it refuses.
    QByteArray converted(bool (*write)(const QString&, const QString&), const QString& name, const QByteArray& bytes) {
        const QString source = file(name, bytes);
        const QString target = folder.filePath(QStringLiteral("pages.pdf"));
        const QStringList before = QDir(folder.path()).entryList(QDir::Files | QDir::Hidden);
        if (!write(source, target)) {
            EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), before);
            return {};
        }
        QFile pdf(target);
        EXPECT_TRUE(pdf.open(QIODevice::ReadOnly));
        const QByteArray pages = pdf.readAll();
        EXPECT_EQ(PdfPrograms::complaints(pages), "");
        EXPECT_TRUE(pdf.remove());
        EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), before);
        return pages;
    }

    /// The words as a reader of another program sees them, without its marks of direction.
    static QString words(const QByteArray& pdf) {
        QString text = PdfPrograms::text(pdf);
        for (const char16_t mark : {0x202A, 0x202B, 0x202C})
            text.remove(QChar(mark));
        return text.simplified();
    }

    QTemporaryDir folder;
};
