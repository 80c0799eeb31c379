#pragma once

#include "BackgroundTask.h"
#include "PDFPageContent.h"
#include "PageShape.h"

#include <QObject>
#include <QSizeF>
#include <QTimer>

#include <memory>
#include <vector>

class PDFDocument;

/// The shapes of all pages of a document, without waiting for a document of thousands of pages: a shape that isn't
/// known yet is taken to be that of the first page, and a survey off the main thread finds the real ones.
class PageShapes : public QObject {
    Q_OBJECT

public:
    explicit PageShapes(QObject* parent = nullptr);

    /// The document is not kept alive; a null one has no pages.
    void setDocument(const std::shared_ptr<PDFDocument>& document, PDFDisplayBox box);
    /// Reads the list of pages again. Shapes of contents that were known stay known.
    void reload();

    [[nodiscard]] int count() const { return static_cast<int>(m_pages.size()); }
    [[nodiscard]] const PageShape& shape(int index) const { return at(index).shape; }
    [[nodiscard]] const PDFPageContent& content(int index) const { return at(index).content; }
    /// The sizes as shown, in points.
    [[nodiscard]] std::vector<QSizeF> sizes() const;

    /// Finds out now the shapes of the pages [first, last). True when a shape differs from what was taken for it.
    bool makeKnown(int first, int last);
    /// Asks the document again for a page that was changed. True when its shape differs.
    bool refresh(int index);

Q_SIGNALS:
    /// The survey has real shapes that are unlike those taken for them. They are held back until `takeSurveyed`, so
    /// that the receiver can first note what the reader looks at.
    void surveyed();

public:
    void takeSurveyed();

private:
    /// The order is that of growing certainty: the document knows of a live page that was turned, its file doesn't.
    enum class Knowledge { estimated, fromFile, fromDocument };
    struct Page {
        PDFPageContent content;
        PageShape shape;
        Knowledge knowledge = Knowledge::estimated;
    };
    struct Finding {
        std::size_t index;
        PageShape shape;
    };

    [[nodiscard]] const Page& at(int index) const { return m_pages[static_cast<std::size_t>(index)]; }
    bool setShape(Page& page, const PageShape& shape, Knowledge knowledge);
    void startSurvey();
    void merge(int generation, const std::vector<Finding>& findings);

    std::weak_ptr<PDFDocument> m_document;
    PDFDisplayBox m_box = PDFDisplayBox::cropBox;
    std::vector<Page> m_pages;
    std::vector<Finding> m_pending; // found by the survey, not yet taken
    int m_generation = 0;           // of the list of pages, so that late findings for an older one are dropped
    QTimer m_surveyStart;
    BackgroundTask m_survey; // last: its end comes before that of what it reports to
};
