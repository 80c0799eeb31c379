#include "PrintingWait.h"

#include "DocumentDialogs.h"
#include "PrintRuns.h"
#include "WindowPresenter.h"

#include <utility>

PrintingWait::PrintingWait(DocumentDialogs& dialogs, QObject* parent) : QObject(parent), m_dialogs(dialogs) {
    connect(&PrintRuns::shared(), &PrintRuns::becameIdle, this, [this] { end(true); });
}

PrintingWait::~PrintingWait() = default;

void PrintingWait::whenDone(std::function<void(bool mayEnd)> completion) {
    if (PrintRuns::shared().isIdle()) {
        completion(true);
        return;
    }
    m_completion = std::move(completion);
    m_message = m_dialogs.presentPrinting(WindowPresenter::windowForQuestions(), PrintRuns::shared().documentNames(),
                                          [this](bool quitsNow) { end(quitsNow); });
}

void PrintingWait::end(bool mayEnd) {
    const auto completion = std::exchange(m_completion, {});
    if (!completion)
        return;
    if (m_message) { // whose own button may be calling
        m_message->hide();
        m_message->deleteLater();
    }
    completion(mayEnd);
}
