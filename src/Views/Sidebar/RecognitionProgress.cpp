#include "RecognitionProgress.h"

#include <QProgressDialog>

RecognitionProgress::RecognitionProgress(QWidget* window) : QObject(window), m_dialog(new QProgressDialog(window)) {
    m_dialog->setObjectName(QStringLiteral("recognitionProgress"));
    m_dialog->setWindowTitle(QStringLiteral("Recognize Text"));
    m_dialog->setLabelText(QStringLiteral("Recognizing text…"));
    m_dialog->setCancelButtonText(QStringLiteral("Cancel"));
    m_dialog->setRange(0, 0); // as long as nobody knows
    m_dialog->setAutoClose(false);
    m_dialog->setAutoReset(false);
    m_dialog->setMinimumDuration(500); // milliseconds
    connect(m_dialog, &QProgressDialog::canceled, this, [this] { m_stop.request_stop(); });
    m_dialog->setValue(0);
}

RecognitionProgress::~RecognitionProgress() {
    m_stop.request_stop();
    delete m_dialog;
}

bool RecognitionProgress::end(const QPointer<RecognitionProgress>& progress) {
    const bool isWanted = progress && !progress->isCancelled();
    delete progress;
    return isWanted;
}

void RecognitionProgress::tell(int page, int count) {
    m_hasBegun = true;
    if (!m_dialog || isCancelled())
        return;
    m_dialog->setLabelText(QStringLiteral("Recognizing page %1 of %2").arg(page).arg(count));
    m_dialog->setRange(0, count);
    m_dialog->setValue(page - 1);
}
