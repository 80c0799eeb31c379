// form_bench
//
// Scrolls over a page of 2,000 form fields and over 2,000 fields on 200 pages, moves the pointer over them, and fills
// 200 of them, all with real events in a shown window. Prints one JSON object for each about what an event took of the
// main thread, its painting included. The exit code tells only whether the measuring was possible.

#include "FormFixture.h"
#include "MeasuredWindow.h"
#include "PDFAnnotation.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

using namespace Measurement;

namespace {

constexpr double frameAim = 4;
constexpr double commitAim = 16;

class Window : public MeasuredWindow {
public:
    using MeasuredWindow::MeasuredWindow;

    void mouse(QEvent::Type type, QPointF at, Qt::MouseButtons buttons) {
        const bool isMove = type == QEvent::MouseMove;
        QMouseEvent event(type, at, view().viewport()->mapToGlobal(at), isMove ? Qt::NoButton : Qt::LeftButton, buttons,
                          Qt::NoModifier);
        QApplication::sendEvent(view().viewport(), &event);
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

    void report(const char* job, double aim) {
        print(job, {{QStringLiteral("aim"), QStringLiteral("p99_cpu_ms < %1").arg(aim)},
                    {QStringLiteral("to_aim"), rounded(percentile(cpu(), 0.99) - aim)}});
    }
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
