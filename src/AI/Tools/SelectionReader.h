#pragma once

#include "ReadingAhead.h"
#include "SpanReader.h"

#include <QPointer>
#include <QString>

#include <memory>
#include <vector>

class PDFViewCoordinator;

/// Reads the text that is selected in a viewer, that of a whole book ahead on another thread. Main thread only.
class SelectionReader : public std::enable_shared_from_this<SelectionReader> {
public:
    explicit SelectionReader(QPointer<PDFViewCoordinator> coordinator);
    ~SelectionReader();

    /// Empty when nothing is selected or the viewer is gone.
    [[nodiscard]] QString text() const;
    /// Makes `text` quick for as long as the same is selected. Never throws.
    [[nodiscard]] QCoro::Task<void> prepare();

private:
    using Spans = std::vector<SpanReader::Span>;

    /// What is selected, without reading it.
    [[nodiscard]] Spans spans() const;

    const QPointer<PDFViewCoordinator> m_coordinator;
    const ReadingAhead m_ahead;
    Spans m_preparedSpans;
    QString m_preparedText;
};
