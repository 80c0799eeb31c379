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
    : destination_(destination), drawn_(QFileInfo(destination).path() + QStringLiteral("/.pages-XXXXXX")),
      writer_(&drawn_) {
    constexpr qreal margin = 54; // points
    constexpr int pixelsPerInch = 96;
    writer_.setResolution(pixelsPerInch);
    writer_.setPageLayout(QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait,
                                      QMarginsF(margin, margin, margin, margin), QPageLayout::Point));
    if (drawn_.open())
        painter_.begin(&writer_);
}

LetterPages::~LetterPages() {
    if (painter_.isActive())
        painter_.end();
}

void LetterPages::startPage() {
    writer_.newPage();
    ++pageCount_;
}

bool LetterPages::finish() {
    if (!painter_.isActive() || !painter_.end() || !drawn_.flush() || drawn_.error() != QFileDevice::NoError)
        return false;
    try {
        writeFileAtomically(destination_, [this](QFile& file) {
            FinishedPages::write(drawn_.fileName(), file.fileName(), {title_, links_, dropsHiddenText_});
        });
        return true;
    } catch (const std::exception& error) {
        qCWarning(Logging::document) << "Writing converted pages:" << Logging::causes(error);
        return false;
    }
}
