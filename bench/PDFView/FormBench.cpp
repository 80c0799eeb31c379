// form_bench
//
// Scrolls over a page of 2,000 form fields and over 2,000 fields on 200 pages, moves the pointer over them, and fills
// 200 of them, all with real events in a shown window. Prints one JSON object for each about what an event took of the
// main thread, its painting included. The exit code tells only whether the measuring was possible.

#include "AnnotatingPDFView.h"
#include "FormFixture.h"
#include "Measurement.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "ToolState.h"
#include "UndoManager.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

#include <cstdio>

using namespace Measurement;

namespace {

constexpr double frameAim = 4;
constexpr double commitAim = 16;

class Window {
public:
    explicit Window(const std::shared_ptr<PDFDocument>& document) : m_document(document) {
        m_view.setToolState(m_toolState);
        m_view.setDocUndoManager(m_undoManager);
        m_view.setDocument(document);
        m_view.resize(1200, 900);
        m_view.setAutoScales(true);
        m_view.show();
        settle();
    }

    AnnotatingPDFView& view() { return m_view; }
    [[nodiscard]] std::shared_ptr<PDFPage> page(int index) const { return m_document->page(index); }

    void settle() {
        QElapsedTimer waited;
        waited.start();
        while (waited.elapsed() < 400 || (!m_view.isSharp() && waited.elapsed() < 20'000))
            QApplication::processEvents(QEventLoop::AllEvents, 10);
    }

    void mouse(QEvent::Type type, QPointF at, Qt::MouseButtons buttons) {
        const bool isMove = type == QEvent::MouseMove;
        QMouseEvent event(type, at, m_view.viewport()->mapToGlobal(at), isMove ? Qt::NoButton : Qt::LeftButton, buttons,
                          Qt::NoModifier);
        QApplication::sendEvent(m_view.viewport(), &event);
    }

    void click(QPointF at) {
        mouse(QEvent::MouseButtonPress, at, Qt::LeftButton);
        mouse(QEvent::MouseButtonRelease, at, Qt::NoButton);
    }

    static void key(int key, const QString& text) {
        if (QWidget* const receiver = QApplication::focusWidget()) {
            QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
            QApplication::sendEvent(receiver, &press);
        }
    }

    template <typename Action>
    void measure(Action&& action) {
        QElapsedTimer clock;
        clock.start();
        const double cpu = threadCpu();
        action();
        QApplication::processEvents();
        m_cpu.push_back(threadCpu() - cpu);
        m_wall.push_back(milliseconds(clock.nsecsElapsed()));
    }

    void report(const char* job, double aim) {
        const double p99 = percentile(m_cpu, 0.99);
        const QJsonObject result{
            {QStringLiteral("job"), QString::fromLatin1(job)},
            {QStringLiteral("events"), int(m_cpu.size())},
            {QStringLiteral("p50_cpu_ms"), rounded(percentile(m_cpu, 0.5))},
            {QStringLiteral("p99_cpu_ms"), rounded(p99)},
            {QStringLiteral("max_cpu_ms"), rounded(percentile(m_cpu, 1))},
            {QStringLiteral("p50_ms"), rounded(percentile(m_wall, 0.5))},
            {QStringLiteral("p99_ms"), rounded(percentile(m_wall, 0.99))},
            {QStringLiteral("aim"), QStringLiteral("p99_cpu_ms < %1").arg(aim)},
            {QStringLiteral("to_aim"), rounded(p99 - aim)},
        };
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
    std::vector<double> m_wall; // milliseconds
    std::vector<double> m_cpu;
};

void scroll(Window& window, const char* job) {
    QScrollBar& bar = *window.view().verticalScrollBar();
    const int length = std::min(bar.maximum(), 20'000);
    for (int pass = 0; pass < 4; ++pass) {
        for (int i = 0; i < 100; ++i)
            window.measure([&] { bar.setValue((pass % 2 == 0 ? i : 100 - i) * length / 100); });
    }
    window.report(job, frameAim);
    bar.setValue(0);
    window.settle();
}

void hover(Window& window, const char* job) {
    for (int i = 0; i < 400; ++i)
        window.measure([&] { window.mouse(QEvent::MouseMove, QPoint(30 + (i % 100) * 11, 60 + (i / 100) * 190), {}); });
    window.report(job, frameAim);
}

/// Fills text fields and boxes by turns: each measured from the first event to the last.
void fill(Window& window, const char* job) {
    const std::shared_ptr<PDFPage> page = window.page(0);
    const auto widgets = page->annotations();
    window.view().goToFirstPage();
    window.settle();
    for (std::size_t i = 0; i < std::min<std::size_t>(200, widgets.size()); ++i) {
        const bool isText = widgets[i]->widgetFieldType() == PDFWidgetFieldType::text;
        window.view().reveal(*widgets[i]);
        QApplication::processEvents();
        const QPointF at = window.view().convertFromPage(widgets[i]->bounds().center(), *page);
        if (isText) {
            window.click(at);
            window.key(Qt::Key_X, QStringLiteral("x"));
            QApplication::processEvents();
            window.measure([&] { window.key(Qt::Key_Return, QStringLiteral("\r")); });
        } else {
            window.measure([&] { window.click(at); });
        }
    }
    window.report(job, commitAim);
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const auto forFields = [](int pages, int count, const char* scrolls, const char* hovers, const char* fills) {
        Window window(PDFDocument::fromData(FormFixture::many(pages, count)));
        scroll(window, scrolls);
        hover(window, hovers);
        fill(window, fills);
    };
    forFields(1, 2'000, "scroll-2000-fields-on-a-page", "hover-2000-fields-on-a-page", "fill-2000-fields-on-a-page");
    forFields(200, 10, "scroll-2000-fields-on-200-pages", "hover-2000-fields-on-200-pages",
              "fill-2000-fields-on-200-pages");
    return 0;
}
