#include "SlowWork.h"

#include <QLabel>
#include <QProgressDialog>
#include <QWidget>

SlowWork::SlowWork(QWidget* owner, QString sentence) : QObject(owner), m_sentence(std::move(sentence)) {
    connect(&m_timer, &QTimer::timeout, this, &SlowWork::show);
    m_timer.start(slowness);
}

SlowWork::~SlowWork() {
    m_course->cancel();
    stopShowing();
}

void SlowWork::show() {
    if (!m_dialog) {
        m_dialog = new QProgressDialog(static_cast<QWidget*>(parent())->window());
        m_dialog->setObjectName(QStringLiteral("slowWork"));
        m_dialog->setAttribute(Qt::WA_ShowWithoutActivating); // the person goes on working
        m_dialog->setWindowTitle(QStringLiteral("Quillo"));
        auto* label = new QLabel(m_sentence);
        label->setTextFormat(Qt::PlainText);
        m_dialog->setLabel(label);
        m_dialog->setAccessibleName(m_sentence);
        m_dialog->setCancelButtonText(QStringLiteral("Cancel"));
        m_dialog->setAutoReset(false);
        m_dialog->setAutoClose(false);
        connect(m_dialog, &QProgressDialog::canceled, this, &SlowWork::cancel);
        m_dialog->show();
        m_timer.start(std::chrono::milliseconds(100));
    }
    // Without steps the bar only shows that something goes on.
    m_dialog->setMaximum(m_course->total());
    m_dialog->setValue(m_course->done());
}

void SlowWork::stopShowing() {
    m_timer.stop();
    if (!m_dialog)
        return;
    m_dialog->disconnect(this);
    m_dialog->hide();
    m_dialog->deleteLater();
}

void SlowWork::cancel() {
    if (m_course->cancel())
        deleteLater();
    else
        m_dialog->show(); // it is being finished; a moment more
}
