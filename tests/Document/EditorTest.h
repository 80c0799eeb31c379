#pragma once

#include "FolderTest.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"
#include "ThumbnailCache.h"
#include "UndoManager.h"

#include <QCoreApplication>
#include <QImage>

#include <functional>

/// Edits a document and looks at what came of it.
class EditorTest : public FolderTest {
protected:
    EditorTest() {
        QObject::connect(&m_document, &PDFEditorDocument::objectWillChange, &m_document, [this] { ++m_told; });
    }

    void open(const QByteArray& file) {
        m_document.setPdfDocument(PDFDocument::fromData(file));
        m_told = 0;
    }
    [[nodiscard]] PDFDocument& pdf() const { return *m_document.pdfDocument(); }
    [[nodiscard]] UndoManager& undoManager() const { return *m_document.undoManager(); }

    /// A file with a page for each of the texts.
    [[nodiscard]] static QByteArray pagesOf(const QStringList& texts) {
        PdfFixture fixture;
        for (const QString& text : texts)
            fixture.addPage({text});
        return fixture.bytes();
    }

    /// What the pages say, with bars between them.
    [[nodiscard]] static QString texts(const PDFDocument& document) {
        QStringList all;
        for (int i = 0; i < document.pageCount(); ++i)
            all.append(document.page(i)->string().simplified());
        return all.join(u'|');
    }

    /// Makes an edit, which empties the cache of thumbnails when it changes anything, and ends the step.
    void edit(const std::function<void()>& change, bool changesPages) const {
        ThumbnailCache::insert(QStringLiteral("picture"), QImage(1, 1, QImage::Format_RGB32));
        change();
        QCoreApplication::processEvents();
        EXPECT_EQ(ThumbnailCache::image(QStringLiteral("picture")).isNull(), changesPages);
    }

    /// The only step can be taken back and made again without limit; what `state` tells shows it.
    void expectReversible(const std::function<QString()>& state, const QString& before, const QString& after) const {
        QCoreApplication::processEvents(); // the step ends
        for (int round = 0; round < 3; ++round) {
            EXPECT_EQ(state(), after);
            EXPECT_EQ(m_document.isDocumentEdited(), before != after);
            undoManager().undo();
            EXPECT_EQ(state(), before);
            EXPECT_FALSE(m_document.isDocumentEdited());
            undoManager().redo();
        }
        EXPECT_EQ(state(), after);
    }

    /// How far the colours of two pictures are apart on average, from 0 to 765.
    [[nodiscard]] static double difference(const QImage& one, const QImage& other) {
        EXPECT_EQ(one.size(), other.size());
        double sum = 0;
        for (int y = 0; y < one.height(); ++y)
            for (int x = 0; x < one.width(); ++x) {
                const QRgb pixels[] = {one.pixel(x, y), other.pixel(x, y)};
                sum += std::abs(qRed(pixels[0]) - qRed(pixels[1])) + std::abs(qGreen(pixels[0]) - qGreen(pixels[1])) +
                       std::abs(qBlue(pixels[0]) - qBlue(pixels[1]));
            }
        return sum / (one.width() * one.height());
    }

    PDFEditorDocument m_document;
    int m_told = 0; ///< times that the document has told of changes since it was opened
};
