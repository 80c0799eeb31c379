#include "LetterPages.h"

#include "AtomicFile.h"
#include "FinishedPages.h"
#include "Logging.h"

#include <QFileInfo>
#include <QMarginsF>
#include <QPageLayout>
#include <QPageSize>

#include <exception>

namespace {

constexpr int pixelsPerInch = 96;

} // namespace

LetterPages::LetterPages(const QString& destination)
    : m_destination(destination), m_drawn(QFileInfo(destination).path() + QStringLiteral("/.pages-XXXXXX")),
      m_writer(&m_drawn) {
    m_writer.setResolution(pixelsPerInch);
    m_writer.setPageLayout(QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait,
                                       QMarginsF(margin, margin, margin, margin), QPageLayout::Point));
    if (m_drawn.open())
        m_painter.begin(&m_writer);
}

LetterPages::~LetterPages() {
    if (m_painter.isActive())
        m_painter.end();
}

void LetterPages::startPage() {
    m_writer.newPage();
    ++m_pageCount;
}

QPointF LetterPages::inPoints(QPointF place) {
    constexpr qreal pointsPerPixel = 72.0 / pixelsPerInch;
    return {margin + place.x() * pointsPerPixel, pageHeight - margin - place.y() * pointsPerPixel};
}

bool LetterPages::finish() {
    if (!m_painter.isActive() || !m_painter.end() || !m_drawn.flush() || m_drawn.error() != QFileDevice::NoError)
        return false;
    try {
        writeFileAtomically(m_destination, [this](QFile& file) {
            FinishedPages::write(m_drawn.fileName(), file.fileName(), {m_title, m_links, m_places, m_dropsHiddenText});
        });
        return true;
    } catch (const std::exception& error) {
        qCWarning(Logging::document) << "Writing converted pages:" << Logging::causes(error);
        return false;
    }
}
