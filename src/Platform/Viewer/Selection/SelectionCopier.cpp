#include "SelectionCopier.h"

#include "PDFSource.h"
#include "PageText.h"

#include <QClipboard>
#include <QGuiApplication>

static constexpr std::size_t shortSpans = 4;

bool SelectionCopier::isShort(const std::vector<Span>& spans) {
    return spans.size() <= shortSpans;
}

QString SelectionCopier::read(const std::vector<Span>& spans, const std::stop_token& stop) {
    QString text;
    for (const Span& span : spans) {
        if (stop.stop_requested())
            break;
        if (!span.content.source)
            continue;
        // A long document would push the pages on the screen out of the cache of texts.
        const auto page = isShort(spans) ? span.content.source->text(span.content.pageNumber, stop)
                                         : span.content.source->readText(span.content.pageNumber, stop);
        const auto end = span.end ? qsizetype(*span.end) : page->string.size();
        const QStringView part = QStringView(page->string).mid(span.start, end - span.start);
        if (part.isEmpty())
            continue;
        if (!text.isEmpty())
            text += QLatin1Char('\n');
        text += part;
    }
    return text;
}

void SelectionCopier::copy(std::vector<Span> spans) {
    if (isShort(spans)) {
        m_reading.cancel();
        put(read(spans));
        return;
    }
    m_reading.start([this, spans = std::move(spans)](const std::stop_token& stop) {
        const QString text = read(spans, stop);
        if (!stop.stop_requested())
            QMetaObject::invokeMethod(
                this, [text] { put(text); }, Qt::QueuedConnection);
    });
}

void SelectionCopier::put(const QString& text) {
    if (!text.isEmpty())
        QGuiApplication::clipboard()->setText(text);
}
