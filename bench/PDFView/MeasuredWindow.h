#pragma once

#include "AnnotatingPDFView.h"
#include "Measurement.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "ToolState.h"
#include "UndoManager.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <memory>
#include <vector>

/// A shown view of a document, and what its events took of the main thread, their painting included.
class MeasuredWindow {
public:
    explicit MeasuredWindow(const std::shared_ptr<PDFDocument>& document) : m_document(document) {
        m_view.setToolState(m_toolState);
        m_view.setDocUndoManager(m_undoManager);
        m_view.setDocument(document);
        m_view.resize(1200, 900);
        m_view.setAutoScales(true);
        m_view.show();
        settle();
    }

    ToolState& tools() { return *m_toolState; }
    AnnotatingPDFView& view() { return m_view; }
    [[nodiscard]] std::shared_ptr<PDFPage> page(int index) const { return m_document->page(index); }

    void settle() {
        QElapsedTimer waited;
        waited.start();
        while (waited.elapsed() < 400 || (!m_view.isSharp() && waited.elapsed() < 20'000))
            QApplication::processEvents(QEventLoop::AllEvents, 10);
    }

    template <typename Action>
    void measure(Action&& action) {
        QElapsedTimer clock;
        clock.start();
        const double cpu = Measurement::threadCpu();
        action();
        QApplication::processEvents();
        m_cpu.push_back(Measurement::threadCpu() - cpu);
        m_wall.push_back(Measurement::milliseconds(clock.nsecsElapsed()));
    }

protected:
    /// Milliseconds of the events since the last report: wall clock, and processor time of the main thread.
    [[nodiscard]] const std::vector<double>& wall() const { return m_wall; }
    [[nodiscard]] const std::vector<double>& cpu() const { return m_cpu; }

    /// Prints it with what every job tells, and begins anew.
    void print(const char* job, QJsonObject result) {
        using namespace Measurement;
        result.insert(QStringLiteral("job"), QString::fromLatin1(job));
        result.insert(QStringLiteral("events"), int(m_wall.size()));
        result.insert(QStringLiteral("p50_ms"), rounded(percentile(m_wall, 0.5)));
        result.insert(QStringLiteral("p99_ms"), rounded(percentile(m_wall, 0.99)));
        result.insert(QStringLiteral("max_ms"), rounded(percentile(m_wall, 1)));
        result.insert(QStringLiteral("p50_cpu_ms"), rounded(percentile(m_cpu, 0.5)));
        result.insert(QStringLiteral("p99_cpu_ms"), rounded(percentile(m_cpu, 0.99)));
        result.insert(QStringLiteral("max_cpu_ms"), rounded(percentile(m_cpu, 1)));
        std::puts(QJsonDocument(result).toJson(QJsonDocument::Compact).constData());
        std::fflush(stdout);
        m_wall.clear();
        m_cpu.clear();
    }

private:
    std::shared_ptr<PDFDocument> m_document;
    std::shared_ptr<ToolState> m_toolState = std::make_shared<ToolState>();
    std::shared_ptr<UndoManager> m_undoManager = std::make_shared<UndoManager>();
    AnnotatingPDFView m_view;
    std::vector<double> m_wall;
    std::vector<double> m_cpu;
};
