#include "DefaultPDFHandler.h"

#include "UserDefaults.h"

#include <QPointer>
#include <QProcess>
#include <QStandardPaths>

static QString desktopEntry() {
    return QStringLiteral("org.quillo.Quillo.desktop");
}

static QString promptedKey() {
    return QStringLiteral("hasPromptedSetAsDefaultPDFHandler");
}

/// Runs `xdg-mime` and hands on its output, or nothing if it failed.
static void runXdgMime(QObject* owner, const QStringList& arguments,
                       std::function<void(bool succeeded, const QString& output)> finished) {
    auto* process = new QProcess(owner);
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    const auto end = [process, finished = std::move(finished)](bool succeeded) {
        process->disconnect();
        process->deleteLater();
        finished(succeeded, QString::fromLocal8Bit(process->readAllStandardOutput()).trimmed());
    };
    QObject::connect(process, &QProcess::finished, owner, [end](int code, QProcess::ExitStatus status) {
        end(status == QProcess::NormalExit && code == 0);
    });
    QObject::connect(process, &QProcess::errorOccurred, owner, [end](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            end(false);
    });
    process->start(QStringLiteral("xdg-mime"), arguments);
}

DefaultPDFHandler::DefaultPDFHandler(UserDefaults& defaults, Question question, QObject* parent)
    : QObject(parent), m_defaults(defaults), m_question(std::move(question)) {}

DefaultPDFHandler::~DefaultPDFHandler() = default;

bool DefaultPDFHandler::canBeSet() {
    return !QStandardPaths::findExecutable(QStringLiteral("xdg-mime")).isEmpty() &&
           !QStandardPaths::locate(QStandardPaths::ApplicationsLocation, desktopEntry()).isEmpty();
}

void DefaultPDFHandler::isDefault(std::function<void(bool)> answer) {
    runXdgMime(this, {QStringLiteral("query"), QStringLiteral("default"), QStringLiteral("application/pdf")},
               [answer = std::move(answer)](bool succeeded, const QString& output) {
                   answer(succeeded && output == desktopEntry());
               });
}

void DefaultPDFHandler::setAsDefault(std::function<void(bool)> completion) {
    runXdgMime(this, {QStringLiteral("default"), desktopEntry(), QStringLiteral("application/pdf")},
               [completion = std::move(completion)](bool succeeded, const QString&) {
                   if (completion)
                       completion(succeeded);
               });
}

void DefaultPDFHandler::promptIfNeeded() {
    if (m_defaults.boolForKey(promptedKey()).value_or(false) || !canBeSet())
        return;
    isDefault([this](bool isDefaultNow) {
        if (isDefaultNow)
            return;
        m_question([handler = QPointer(this)](bool wanted) {
            if (!handler)
                return;
            handler->m_defaults.setBool(promptedKey(), true);
            if (wanted)
                handler->setAsDefault();
        });
    });
}
