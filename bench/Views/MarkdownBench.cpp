// markdown_bench
//
// Shows replies of 100 KB in a panel of 400 pixels and scrolls over them, in a shown window: a mixed one, and others of
// one kind of block each. Shows two hundred formulas for the first time. Then shows replies made to be slow. Prints one
// JSON object for each. The exit code tells only whether the measuring was possible.

#include "MarkdownContent.h"
#include "MathImageRenderer.h"
#include "Measurement.h"
#include "ReplyFormulas.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <cstdio>

using namespace Measurement;

namespace {

constexpr qsizetype replySize = 100'000;
constexpr qsizetype hostileSize = 1'000'000;
constexpr double showAim = 100;
constexpr double hostileShowAim = 1'000;
constexpr double formulasAim = 150;
constexpr double scrollP99Aim = 16;
constexpr QSize panelSize{400, 800};

QString repeated(const QString& part, qsizetype size) {
    return part.repeated(size / part.size() + 1).left(size);
}

const QString prose =
    QStringLiteral("The *method* of the paper has **three steps**, of which `fit(x, y)` is the second; "
                   "see [the appendix](https://example.org/appendix) for $a^2 + b^2$ and the rest of "
                   "what the authors say about it at some length.\n\n");
const QString list =
    QStringLiteral("- a first point with **weight**\n- a second point that is long enough to be wrapped "
                   "in the panel of the assistant\n- a third\n\n1. one\n2. two\n3. three\n\n");
const QString code = QStringLiteral("```cpp\nfor (int i = 0; i < count; ++i) {\n    total += values[i] * weights[i];\n"
                                    "}\nreturn total / count;\n```\n\n");
const QString table = QStringLiteral("| Method | Error | Time |\n|---|--:|--:|\n| least squares | 0.12 | 3 s |\n"
                                     "| **ours** | 0.08 | 14 s |\n| the one before | 0.31 | 2 s |\n\n");
const QString quote = QStringLiteral("## What it says\n\n> A quote of the page\n> in two lines\n\n");

class Panel {
public:
    Panel() {
        m_area.setWidgetResizable(true);
        m_area.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
        m_area.setWidget(m_column);
        m_area.resize(panelSize);
        m_area.show();
        QApplication::processEvents();
    }

    void show(const QString& text, bool drawsFormulas = false) {
        m_clock.start();
        const double cpu = threadCpu();
        m_bubbles->addWidget(
            new MarkdownContent(text, Qt::black, drawsFormulas ? ReplyFormulas::source(m_area) : MathImageSource()));
        QApplication::processEvents();
        m_area.viewport()->repaint();
        m_showCpu = threadCpu() - cpu;
        m_show = milliseconds(m_clock.nsecsElapsed());
    }

    void scroll() {
        QScrollBar& bar = *m_area.verticalScrollBar();
        for (int i = 0; i < 300; ++i) {
            m_clock.start();
            bar.setValue(i < 200 ? i * 60 : bar.maximum() * (300 - i) / 100);
            QApplication::processEvents();
            m_scroll.push_back(milliseconds(m_clock.nsecsElapsed()));
        }
    }

    void report(const QString& job, qsizetype size, double aim) {
        const double p99 = percentile(m_scroll, 0.99);
        const QJsonObject result{
            {QStringLiteral("job"), job},
            {QStringLiteral("characters"), size},
            {QStringLiteral("height"), m_column->height()},
            {QStringLiteral("show_ms"), rounded(m_show)},
            {QStringLiteral("show_cpu_ms"), rounded(m_showCpu)},
            {QStringLiteral("scroll_p50_ms"), rounded(percentile(m_scroll, 0.5))},
            {QStringLiteral("scroll_p99_ms"), rounded(p99)},
            {QStringLiteral("aim"), QStringLiteral("show_ms < %1, scroll_p99_ms < %2").arg(aim).arg(scrollP99Aim)},
            {QStringLiteral("to_aim"), rounded(std::max(m_show - aim, p99 - scrollP99Aim))},
        };
        std::puts(QJsonDocument(result).toJson(QJsonDocument::Compact).constData());
        std::fflush(stdout);
    }

private:
    QScrollArea m_area;
    QWidget* m_column = new QWidget;
    QVBoxLayout* m_bubbles = new QVBoxLayout(m_column);
    QElapsedTimer m_clock;
    double m_show = 0; // milliseconds, painted
    double m_showCpu = 0;
    std::vector<double> m_scroll; // milliseconds
};

void measure(const QString& job, const QString& text, double aim, bool drawsFormulas = false) {
    Panel panel;
    panel.show(text, drawsFormulas);
    panel.scroll();
    panel.report(job, text.size(), aim);
}

/// A reply with two hundred formulas of which no two are the same.
QString formulas() {
    const char* const shapes[] = {"x_{%1}² ≤ f'(a)",
                                  "\\dfrac{\\partial^2 u_{%1}}{\\partial x^2} = 0",
                                  "\\operatorname{Var}(X_{%1}) = \\mathbb{E}[X^2] - \\mu^2",
                                  "\\sum_{i=1}^{%1} \\frac{1}{i^2}",
                                  "\\begin{align} a &= %1 \\\\ b &= c \\end{align}",
                                  "\\begin{pmatrix} %1 & 0 \\\\ 0 & 1 \\end{pmatrix}",
                                  "\\text{Bayes' rule (%1): } P(A|B)",
                                  "\\bigl( \\sqrt{%1} \\bigr)^{n}",
                                  "\\int_0^{%1} e^{-x}\\,dx",
                                  "X_{%1} \\xrightarrow{d} Y"};
    QString text;
    for (int i = 1; i <= 20; ++i) {
        for (const char* const shape : shapes)
            text += QStringLiteral("It is $%1$ here.\n\n").arg(QString::fromUtf8(shape).arg(i));
    }
    return text;
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    Panel().show(prose + list + code + table + quote); // loads the fonts
    measure(QStringLiteral("mixed"), repeated(prose + list + code + table + prose + quote, replySize), showAim);
    measure(QStringLiteral("prose"), repeated(prose, replySize), showAim);
    measure(QStringLiteral("lists"), repeated(list, replySize), showAim);
    measure(QStringLiteral("code"), repeated(code, replySize), showAim);
    measure(QStringLiteral("tables"), repeated(table, replySize), showAim);
    // Once for what any first formula loads.
    (void)MathImageRenderer::render(QStringLiteral("x≤1"), 15, Qt::black);
    measure(QStringLiteral("formulas"), formulas(), formulasAim, true);
    for (const char* part : {"*",
                             "**a",
                             "[",
                             "[a](b",
                             "![](",
                             "|",
                             "|-",
                             "`",
                             "~",
                             "$",
                             "\\(",
                             "_a*",
                             "\\",
                             "&#42;",
                             "> ",
                             "- ",
                             "- a\n",
                             "a\n",
                             "|a|b|\n|-|-|\n",
                             "> a\n\n",
                             "```\n",
                             "http://a.b ",
                             "w",
                             "\u0301",
                             "\u202E",
                             "\u4E2D"}) {
        const QString text = QString::fromUtf8(part);
        measure(QStringLiteral("hostile ") + text, repeated(text, hostileSize), hostileShowAim);
    }
    return 0;
}
