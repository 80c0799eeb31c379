#pragma once

#include "PdfPrograms.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// A folder with files to convert.
class ConvertedPages : public testing::Test {
protected:
    /// Writes a file and returns its path; the name may lead into folders.
    QString file(const QString& name, const QByteArray& bytes) {
        QString path = m_folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile written(path);
        EXPECT_TRUE(written.open(QIODevice::WriteOnly) && written.write(bytes) == bytes.size());
        return path;
    }

    /// The PDF that `write` makes of such a file; empty, with nothing left in the folder, when it refuses.
    QByteArray converted(bool (*write)(const QString&, const QString&), const QString& name, const QByteArray& bytes) {
        const QString source = file(name, bytes);
        const QString target = m_folder.filePath(QStringLiteral("pages.pdf"));
        const QStringList before = QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden);
        if (!write(source, target)) {
            EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden), before);
            return {};
        }
        QFile pdf(target);
        EXPECT_TRUE(pdf.open(QIODevice::ReadOnly));
        QByteArray pages = pdf.readAll();
        EXPECT_EQ(PdfPrograms::complaints(pages), "");
        EXPECT_TRUE(pdf.remove());
        EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden), before);
        return pages;
    }

    /// The words as a reader of another program sees them, without its marks of direction.
    static QString words(const QByteArray& pdf) {
        QString text = PdfPrograms::text(pdf);
        for (const char16_t mark : {0x202A, 0x202B, 0x202C})
            text.remove(QChar(mark));
        return text.simplified();
    }

    /// Whether each word is once in the file, in this order, and within the margins of a page of US Letter.
    static void expectWholeWords(const QByteArray& pdf, QStringList expected) {
        EXPECT_EQ(words(pdf).split(QLatin1Char(' ')), expected);
        const QString boxes = QString::fromUtf8(
            PdfPrograms::run(QStringLiteral("pdftotext"),
                             {QStringLiteral("-bbox"), QStringLiteral("FILE"), QStringLiteral("-")}, pdf)
                .output);
        static const QRegularExpression box(QStringLiteral(
            "xMin=\"([\\d.-]+)\" yMin=\"([\\d.-]+)\" xMax=\"([\\d.-]+)\" yMax=\"([\\d.-]+)\">(.*)</word>"));
        QStringList inBoxes;
        for (auto found = box.globalMatch(boxes); found.hasNext();) {
            const QRegularExpressionMatch word = found.next();
            inBoxes += word.captured(5);
            EXPECT_GE(word.captured(1).toDouble(), 53.9);
            EXPECT_GE(word.captured(2).toDouble(), 53.9);
            EXPECT_LE(word.captured(3).toDouble(), 558.1);
            EXPECT_LE(word.captured(4).toDouble(), 738.1);
        }
        inBoxes.sort();
        expected.sort();
        EXPECT_EQ(inBoxes, expected);
        EXPECT_GT(boxes.count(QStringLiteral("<page width=\"612.000000\" height=\"792.000000\">")), 5);
    }

    QTemporaryDir m_folder;
};
