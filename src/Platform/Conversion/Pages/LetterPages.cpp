#include "LetterPages.h"

#include "AtomicFile.h"
#include "FinishedPages.h"
#include "Logging.h"

#include <QFileInfo>
#include <QMarginsF>
#include <QPageLayout>
#include <QPageSize>

#include <exception>

LetterPages::LetterPages(const QString& destination)
    : m_destination(destination), m_drawn(QFileInfo(destination).path() + QStringLiteral("/.pages-XXXXXX")),
      m_writer(&m_drawn) {
    constexpr int pixelsPerInch = 96;
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

bool LetterPages::finish() {
    if (!m_painter.isActive() || !m_painter.end() || !m_drawn.flush() || m_drawn.error() != QFileDevice::NoError)
        return false;
    try {
        writeFileAtomically(m_destination, [this](QFile& file) {
            FinishedPages::write(m_drawn.fileName(), file.fileName(), {m_title, m_links, m_dropsHiddenText});
        });
        return true;
    } catch (const std::exception& error) {
        qCWarning(Logging::document) << "Writing converted pages:" << Logging::causes(error);
        return false;
    }
}
