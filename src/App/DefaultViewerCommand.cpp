#include "DefaultViewerCommand.h"

#include "DefaultPDFHandler.h"
#include "DocumentDialogs.h"
#include "WindowPresenter.h"

DefaultViewerCommand::DefaultViewerCommand(DefaultPDFHandler& handler, DocumentDialogs& dialogs, QObject* parent)
    : QObject(parent), m_handler(handler), m_dialogs(dialogs) {}

DefaultViewerCommand::~DefaultViewerCommand() = default;

void DefaultViewerCommand::run() {
    m_handler.isDefault([this](bool isDefaultNow) {
        if (isDefaultNow)
            m_dialogs.presentMessage(WindowPresenter::windowForQuestions(), QStringLiteral("Quillo is your default"),
                                     QStringLiteral("PDFs open in Quillo already."));
        else
            ask();
    });
}

void DefaultViewerCommand::ask() {
    const auto tell = [this](bool succeeded) {
        if (!succeeded)
            m_dialogs.presentError(WindowPresenter::windowForQuestions(),
                                   QStringLiteral("Quillo could not become your default PDF viewer."),
                                   QStringLiteral("The desktop did not accept the change."));
    };
    m_dialogs.askToBecomeDefault(WindowPresenter::windowForQuestions(), [this, tell](bool accepted) {
        if (accepted)
            m_handler.setAsDefault(tell);
    });
}
