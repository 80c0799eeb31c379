#include "SlowSaves.h"

#include "Document.h"
#include "DocumentController.h"

#include <QTimer>

SlowSaves::SlowSaves(DocumentController& controller, QObject* parent) : QObject(parent) {
    connect(&controller, &DocumentController::documentSavingChanged, this, &SlowSaves::follow);
}

SlowSaves::~SlowSaves() = default;

bool SlowSaves::contains(const Document& document) const {
    const auto found = m_timers.find(&document);
    return found != m_timers.end() && !found->second->isActive();
}

void SlowSaves::follow(const std::shared_ptr<Document>& document, bool isSaving) {
    if (!isSaving) {
        const bool wasSlow = contains(*document);
        m_timers.erase(document.get());
        if (wasSlow)
            Q_EMIT changed(document, false);
        return;
    }
    auto timer = std::make_unique<QTimer>();
    timer->setSingleShot(true);
    connect(timer.get(), &QTimer::timeout, this, [this, document] { Q_EMIT changed(document, true); });
    timer->start(patience);
    m_timers[document.get()] = std::move(timer);
}
