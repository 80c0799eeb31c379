#include "FileReading.h"

#include "DocumentPresenter.h"

#include <QPointer>

using namespace std::chrono_literals;

std::chrono::milliseconds FileReading::patience = 50ms;

FileReading::FileReading(DocumentPresenter& presenter, QString name, QObject* parent)
    : QObject(parent), m_presenter(presenter), m_name(std::move(name)) {
    m_slow.setSingleShot(true);
    m_slow.setInterval(slowness);
    connect(&m_slow, &QTimer::timeout, this, &FileReading::show);
}

FileReading::~FileReading() = default;

void FileReading::show() {
    m_isSlow = true;
    const QPointer<FileReading> self(this);
    m_shown = m_presenter.showReading(m_name, [self] {
        if (!self)
            return;
        self->m_receiver.reset();
        self->stopShowing();
        Q_EMIT self->givenUp();
    });
    Q_EMIT becameSlow();
}

void FileReading::stopShowing() {
    m_slow.stop();
    m_shown.reset();
}
