#pragma once

#include "SelectionCopier.h"

#include <QCoroTask>
#include <QObject>
#include <QPointer>
#include <QString>

#include <atomic>
#include <memory>
#include <vector>

class PDFViewCoordinator;

/// Reads the text that is selected in a viewer, that of a whole book ahead on another thread. Main thread only.
class SelectionReader : public QObject, public std::enable_shared_from_this<SelectionReader> {
    Q_OBJECT

public:
    explicit SelectionReader(QPointer<PDFViewCoordinator> coordinator);
    ~SelectionReader() override;

    /// Empty when nothing is selected or the viewer is gone.
    [[nodiscard]] QString text() const;
    /// Makes `text` quick for as long as the same is selected. Never throws.
    [[nodiscard]] QCoro::Task<void> prepare();

private:
    using Spans = std::vector<SelectionCopier::Span>;

    /// What is selected, without reading it.
    [[nodiscard]] Spans spans() const;

    const QPointer<PDFViewCoordinator> m_coordinator;
    const std::shared_ptr<std::atomic<bool>> m_cancelled = std::make_shared<std::atomic<bool>>(false);
    Spans m_preparedSpans;
    QString m_preparedText;
};
