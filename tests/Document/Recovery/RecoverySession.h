#pragma once

#include "DocumentController.h"
#include "DocumentRecovery.h"
#include "LostDocuments.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "SilentPresenter.h"
#include "UndoManager.h"
#include "UserDefaults.h"

#include <QSignalSpy>
#include <QTest>

#include <algorithm>

#include <gtest/gtest.h>

/// Edits of documents as views make them, and what is left of them in a file.
namespace EditedPdf {

/// Puts the annotation on the page or takes it off.
inline void setAnnotation(PDFEditorDocument& document, const std::shared_ptr<PDFPage>& page,
                          const std::shared_ptr<PDFAnnotation>& annotation, bool isThere) {
    // First: the caller's may be the page's own, which goes.
    document.undoManager()->registerUndo(&document,
                                         [=, &document] { setAnnotation(document, page, annotation, !isThere); });
    if (isThere)
        page->addAnnotation(annotation);
    else
        page->removeAnnotation(annotation);
}

/// Puts a red square on the page.
inline void addSquare(PDFEditorDocument& document, int page = 0, const QString& contents = {}) {
    const auto square = std::make_shared<PDFAnnotation>(QRectF(100, 100, 200, 150), PDFAnnotationSubtype::square);
    square->setColor(Qt::red);
    square->setInteriorColor(Qt::red);
    square->setContents(contents);
    setAnnotation(document, document.pdfDocument()->page(page), square, true);
}

/// On the first page.
inline int squareCount(const PDFDocument& document) {
    const auto& annotations = document.page(0)->annotations();
    return static_cast<int>(std::count_if(annotations.begin(), annotations.end(), [](const auto& annotation) {
        return annotation->type() == PDFAnnotationSubtype::square;
    }));
}

/// Tells documents with other titles, pages, annotations or values apart, in one line. Pages are told by their widths.
inline QByteArray state(const PDFDocument& document) {
    QString state = document.documentAttributes().value(QStringLiteral("Title")).toString() + u':';
    for (int i = 0; i < document.pageCount(); ++i) {
        state += QStringLiteral(" %1[").arg(document.page(i)->bounds(PDFDisplayBox::mediaBox).width());
        for (const auto& annotation : document.page(i)->annotations())
            state += (annotation->type() == PDFAnnotationSubtype::widget ? annotation->widgetStringValue()
                                                                         : annotation->contents()) +
                     u',';
        state += u']';
    }
    return state.toUtf8();
}

} // namespace EditedPdf

/// What a process has, without windows. A crash is that it is gone with its documents open.
struct Session {
    static constexpr int timeLimitInMilliseconds = 60'000;

    static RecoveryPace quickPace() {
        using namespace std::chrono_literals;
        return {5ms, 5ms, 5ms, 5ms, 5ms, 5ms, 30s};
    }

    /// Records go to the folder's "recovery".
    explicit Session(const QString& folder, const RecoveryPace& pace = quickPace())
        : defaults(folder + QStringLiteral("/settings.ini")),
          controller([] { return std::make_shared<PDFEditorDocument>(); }, presenter, defaults),
          recovery(controller, folder + QStringLiteral("/recovery"), pace), lostDocuments(controller, recovery) {
        FileReading::patience = std::chrono::minutes(1);
    }

    std::shared_ptr<PDFEditorDocument> open(const QString& path) {
        std::shared_ptr<PDFEditorDocument> document;
        controller.openDocument(QUrl::fromLocalFile(path), false, [&](const auto& opened, bool, const QString&) {
            document = std::dynamic_pointer_cast<PDFEditorDocument>(opened);
        });
        return document;
    }

    /// Makes the change and waits until it is recorded.
    void record(const std::function<void()>& change) {
        QSignalSpy written(&recovery, &DocumentRecovery::written);
        change();
        EXPECT_TRUE(written.wait(timeLimitInMilliseconds));
    }
    void recordSquare(PDFEditorDocument& document) {
        record([&document] { EditedPdf::addSquare(document); });
    }

    /// The lost document, when there is one, recovered. Throws when that fails, with the sentence for it.
    std::shared_ptr<PDFEditorDocument> recoverLost() {
        const std::vector<LostDocument> all = lostDocuments.take();
        EXPECT_LE(all.size(), 1U);
        if (all.empty())
            return nullptr;
        lost = all.front();
        std::shared_ptr<PDFEditorDocument> recovered;
        std::optional<QString> error;
        lostDocuments.recover(lost->id, [&](const auto& document, const QString& sentence) {
            recovered = document;
            error = sentence;
        });
        EXPECT_TRUE(QTest::qWaitFor([&error] { return error.has_value(); }, timeLimitInMilliseconds));
        return recovered ? recovered : throw std::runtime_error(error.value_or(QString()).toStdString());
    }

    SilentPresenter presenter;
    UserDefaults defaults;
    DocumentController controller;
    DocumentRecovery recovery;
    LostDocuments lostDocuments;
    std::optional<LostDocument> lost; ///< that was recovered
};
