#include "SpanReader.h"

#include "FlowingText.h"
#include "PDFSource.h"
#include "PageText.h"
#include "StopAfter.h"

#include <QClipboard>
#include <QGuiApplication>

#include <utility>

static constexpr std::size_t shortSpans = 4;

bool SpanReader::isShort(const std::vector<Span>& spans) {
    return spans.size() <= shortSpans;
}

QString SpanReader::read(const std::vector<Span>& spans, const std::stop_token& stop,
                         const std::function<void(int)>& spanRead) {
    QString text;
    int count = 0;
    for (const Span& span : spans) {
        if (stop.stop_requested())
            break;
        if (spanRead)
            spanRead(count++);
        if (!span.content.source)
            continue;
        // A long document would push the pages on the screen out of the cache of texts.
        const auto page = isShort(spans) ? span.content.source->text(span.content.pageNumber, stop)
                                         : span.content.source->readText(span.content.pageNumber, stop);
        const QString part = FlowingText(*page, span.start, span.end.value_or(int(page->string.size()))).string();
        if (part.isEmpty())
            continue;
        if (!text.isEmpty())
            text += QLatin1Char('\n');
        text += part;
    }
    return text;
}

void SpanReader::readFor(std::vector<Span> spans, Use use) {
    cancel();
    if (isShort(spans)) {
        const StopAfter patience;
        const QString text = read(spans, patience.token());
        if (!patience.token().stop_requested()) {
            use(text);
            return;
        }
    }
    m_isReading = true;
    const auto later = [this, job = m_job](auto act) {
        QMetaObject::invokeMethod(
            this,
            [this, job, act] {
                if (job == m_job)
                    act();
            },
            Qt::QueuedConnection);
    };
    m_reading.start([this, later, spans = std::move(spans), use = std::move(use)](const std::stop_token& stop) {
        const int total = static_cast<int>(spans.size());
        const QString text = read(spans, stop, [this, &later, total](int count) {
            later([this, count, total] { Q_EMIT progressed(count, total); });
        });
        if (stop.stop_requested())
            return;
        later([this, text, use] {
            end();
            use(text);
        });
    });
}

void SpanReader::copy(std::vector<Span> spans) {
    readFor(std::move(spans), [](const QString& text) {
        if (!text.isEmpty())
            QGuiApplication::clipboard()->setText(text);
    });
}

void SpanReader::cancel() {
    m_reading.cancel();
    end();
}

void SpanReader::end() {
    ++m_job;
    if (std::exchange(m_isReading, false))
        Q_EMIT ended();
}
