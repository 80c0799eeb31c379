#include "HtmlLinks.h"

#include "HtmlLayout.h"
#include "LetterPages.h"

#include <QString>
#include <QStringList>
#include <QTextBlock>
#include <QTextFragment>
#include <QTextLayout>
#include <QUrl>

#include <algorithm>
#include <cmath>

namespace {

/// What a reader of PDFs may be asked to open. Relative addresses stay relative: to the folder where the PDF will be.
QString addressOf(const QString& link) {
    const QUrl url(link.trimmed());
    static const QStringList schemes{QString(),
                                     QStringLiteral("http"),
                                     QStringLiteral("https"),
                                     QStringLiteral("ftp"),
                                     QStringLiteral("mailto"),
                                     QStringLiteral("tel")};
    if (!url.isValid() || !schemes.contains(url.scheme()))
        return {};
    return QString::fromLatin1(url.toEncoded());
}

class Collecting {
public:
    Collecting(const QTextDocument& document, const HtmlFormats::Names& names, qreal pageHeight, qreal scale,
               LetterPages& pages)
        : m_document(document), m_names(names), m_pageHeight(pageHeight), m_scale(scale), m_pages(pages) {}

    void run() {
        for (QTextBlock block = m_document.begin(); block.isValid(); block = block.next())
            for (auto it = block.begin(); !it.atEnd(); ++it)
                if (const QString link = it.fragment().charFormat().stringProperty(HtmlFormats::linkProperty);
                    !link.isEmpty())
                    addLink(link, block, it.fragment());
    }

private:
    [[nodiscard]] qreal topOf(const QTextBlock& block, int position) const {
        const QTextLine line = block.layout()->lineForTextPosition(position);
        return HtmlLayout::originOf(m_document, block).y() + (line.isValid() ? line.y() : 0);
    }

    [[nodiscard]] int pageOf(qreal top) const {
        return std::clamp(int(std::floor(top / m_pageHeight)), 0, m_pages.pageCount() - 1);
    }

    void addLink(const QString& link, const QTextBlock& block, const QTextFragment& fragment) {
        LetterPages::Link added;
        if (link.startsWith(QLatin1Char('#'))) {
            const auto target = m_names.constFind(QUrl::fromPercentEncoding(link.mid(1).toUtf8()));
            if (target == m_names.constEnd())
                return;
            const QTextBlock there = m_document.findBlock(*target);
            const qreal top = topOf(there, *target - there.position());
            added.targetPage = pageOf(top);
            added.targetTop = (top - added.targetPage * m_pageHeight) * m_scale;
        } else if (added.address = addressOf(link); added.address.isEmpty()) {
            return;
        }
        const int start = fragment.position() - block.position();
        const int end = start + fragment.length();
        const QPointF origin = HtmlLayout::originOf(m_document, block);
        for (int i = 0; i < block.layout()->lineCount(); ++i) {
            const QTextLine line = block.layout()->lineAt(i);
            const int from = std::max(start, line.textStart());
            const int to = std::min(end, line.textStart() + line.textLength());
            if (from >= to)
                continue;
            const qreal one = line.cursorToX(from);
            const qreal other = line.cursorToX(to);
            added.page = pageOf(origin.y() + line.y() + line.height() / 2);
            const QRectF area(origin.x() + std::min(one, other), origin.y() + line.y() - added.page * m_pageHeight,
                              std::abs(other - one), line.height());
            added.area = {area.topLeft() * m_scale, area.size() * m_scale};
            m_pages.addLink(added);
        }
    }

    const QTextDocument& m_document;
    const HtmlFormats::Names& m_names;
    qreal m_pageHeight;
    qreal m_scale;
    LetterPages& m_pages;
};

} // namespace

void HtmlLinks::add(const QTextDocument& document, const HtmlFormats::Names& names, qreal pageHeight, qreal scale,
                    LetterPages& pages) {
    Collecting(document, names, pageHeight, scale, pages).run();
}
