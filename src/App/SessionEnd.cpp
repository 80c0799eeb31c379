#include "SessionEnd.h"

#include "AppDelegate.h"
#include "Document.h"
#include "DocumentController.h"
#include "PrintRuns.h"

#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QSessionManager>
#include <QTimer>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

SessionEnd::SessionEnd(DocumentController& controller, AppDelegate& delegate, DocumentDialogs& dialogs, QObject* parent)
    : QObject(parent), m_controller(controller), m_delegate(delegate), m_printing(dialogs) {
    connectSessionManager();
}

SessionEnd::~SessionEnd() = default;

void SessionEnd::terminate() {
    if (m_isTerminating)
        return;
    m_isTerminating = true;
    m_printing.whenDone([this](bool mayEnd) {
        if (mayEnd)
            closeAll();
        else
            m_isTerminating = false;
    });
}

void SessionEnd::closeAll() {
    m_delegate.setTerminating(true);
    m_controller.closeAllDocuments([this](bool succeeded) {
        m_isTerminating = false;
        if (succeeded)
            QCoreApplication::quit();
        else
            m_delegate.setTerminating(false);
    });
}

void SessionEnd::endNow() {
    if (std::exchange(m_isEnding, true))
        return;
    m_delegate.setTerminating(true);
    // Not `quit`, which would let the windows ask.
    QTimer::singleShot(limit, this, [] { QCoreApplication::exit(); });
    m_controller.prepareForSessionEnd([](bool) {
        if (PrintRuns::shared().isIdle())
            QCoreApplication::exit();
        else
            connect(&PrintRuns::shared(), &PrintRuns::becameIdle, qApp, [] { QCoreApplication::exit(); });
    });
}

bool SessionEnd::commit(bool mayAsk) {
    struct Outcome {
        QEventLoop loop;
        std::optional<bool> succeeded;
    };
    // Shared with a completion that may come after the time is over.
    const auto outcome = std::make_shared<Outcome>();
    const auto completion = [outcome](bool succeeded) {
        outcome->succeeded = succeeded;
        outcome->loop.quit();
    };
    if (mayAsk)
        m_controller.saveAllDocuments(completion);
    else
        m_controller.prepareForSessionEnd(completion);
    if (!outcome->succeeded) {
        QTimer::singleShot(limit, &outcome->loop, &QEventLoop::quit);
        outcome->loop.exec();
    }
    m_isCommitted = !mayAsk || outcome->succeeded.value_or(true);
    return m_isCommitted;
}

bool SessionEnd::hasUnsavedDocuments() const {
    const auto& documents = m_controller.documents();
    return std::any_of(documents.begin(), documents.end(),
                       [](const auto& document) { return document->isDocumentEdited() || document->isBeingTyped(); });
}

void SessionEnd::connectSessionManager() {
    const auto answer = [this](QSessionManager& manager) {
        if (!hasUnsavedDocuments())
            return;
        const bool mayAsk = manager.allowsInteraction();
        const bool mayEnd = commit(mayAsk);
        if (mayAsk)
            manager.release();
        if (!mayEnd)
            manager.cancel();
    };
    connect(qGuiApp, &QGuiApplication::commitDataRequest, this, answer, Qt::DirectConnection);
    qApp->installEventFilter(this);
}

bool SessionEnd::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Quit && watched == qApp && m_isCommitted) {
        QCoreApplication::exit();
        return true;
    }
    return QObject::eventFilter(watched, event);
}
