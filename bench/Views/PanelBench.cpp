// panel_bench
//
// Shows very long texts in the assistant's panel: bubbles, titles of chats, a draft, an attached file that is sent.
// Prints one JSON object for each: how long the main thread was held up at most, and in all. The exit code tells only
// whether the measuring was possible.

#include "APIKeyStore.h"
#include "AssistantPanel.h"
#include "AssistantViewModel.h"
#include "ChatHistoryListView.h"
#include "ChatHistoryStore.h"
#include "Measurement.h"
#include "RotatingAIProvider.h"
#include "UserDefaults.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

using namespace Measurement;

namespace {

constexpr qsizetype hugeSize = 10'000'000;
constexpr double aim = 100; // milliseconds

QString repeated(const QString& part, qsizetype size) {
    return part.repeated(size / part.size() + 1).left(size);
}

/// How long the main thread is held up by what is done.
class Hold {
public:
    void step(const std::function<void()>& work) {
        m_clock.start();
        const double cpu = threadCpu();
        work();
        const double time = milliseconds(m_clock.nsecsElapsed());
        m_longest = std::max(m_longest, time);
        m_longestCpu = std::max(m_longestCpu, threadCpu() - cpu);
        m_all += time;
    }

    void turnsUntil(const std::function<bool()>& isDone) {
        while (!isDone())
            step([] { QApplication::processEvents(); });
        for (int turn = 0; turn < 20; ++turn)
            step([] { QApplication::processEvents(); });
    }

    void report(const QString& job) const {
        const QJsonObject result{{QStringLiteral("job"), job},
                                 {QStringLiteral("longest_ms"), rounded(m_longest)},
                                 {QStringLiteral("longest_cpu_ms"), rounded(m_longestCpu)},
                                 {QStringLiteral("all_ms"), rounded(m_all)},
                                 {QStringLiteral("aim"), QStringLiteral("longest_ms < %1").arg(aim)},
                                 {QStringLiteral("to_aim"), rounded(m_longest - aim)}};
        std::puts(QJsonDocument(result).toJson(QJsonDocument::Compact).constData());
        std::fflush(stdout);
    }

private:
    QElapsedTimer m_clock;
    double m_longest = 0; // milliseconds
    double m_longestCpu = 0;
    double m_all = 0;
};

class Bench {
public:
    Bench() {
        // Where nobody answers.
        APIKeyStore::saveURL(m_defaults, QStringLiteral("http://127.0.0.1:9/"));
        APIKeyStore::save(m_defaults, QStringLiteral("key"), APIProviderKind::ollama);
    }

    void bubble(const QString& job, AssistantTurn::Role role, const QString& text) {
        ChatSession session;
        session.turns = {{QUuid::createUuid(), role, text}};
        show({session});
        Hold hold;
        hold.step([this] { m_panel->show(); });
        hold.turnsUntil([] { return true; });
        hold.step([this] { m_panel->resize(500, 800); });
        hold.turnsUntil([] { return true; });
        hold.report(job);
    }

    void title(const QString& text) {
        ChatSession session;
        session.title = text;
        show({session});
        m_panel->show();
        QApplication::processEvents();
        Hold hold;
        ChatHistoryListView list(m_viewModel);
        list.setAttribute(Qt::WA_DeleteOnClose, false);
        hold.step([&] { list.popUp(*m_panel); });
        hold.turnsUntil([] { return true; });
        hold.report(QStringLiteral("title"));
    }

    void draft(const QString& job, const QString& text) {
        show({});
        m_panel->show();
        QApplication::processEvents();
        Hold hold;
        hold.step([&] { m_viewModel->setDraft(text); });
        hold.turnsUntil([] { return true; });
        hold.step([this] { m_viewModel->submit(); });
        hold.turnsUntil([this] { return !m_viewModel->isRunning(); });
        hold.report(job);
    }

    void attachment(const QString& text) {
        QFile file(m_folder.filePath(QStringLiteral("long.txt")));
        if (!file.open(QFile::WriteOnly) || file.write(text.toUtf8()) < 0)
            return;
        file.close();
        show({});
        m_panel->show();
        QApplication::processEvents();
        Hold reading;
        reading.step([&] { m_viewModel->attach(QUrl::fromLocalFile(file.fileName())); });
        reading.turnsUntil([this] { return m_viewModel->attachmentName().has_value(); });
        reading.report(QStringLiteral("attachment, read"));
        Hold sending;
        sending.step([this] { m_viewModel->submit(); });
        sending.turnsUntil([this] { return !m_viewModel->isRunning(); });
        sending.report(QStringLiteral("attachment, sent"));
    }

private:
    void show(const std::vector<ChatSession>& sessions) {
        const QUrl document = QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("paper.pdf")));
        ChatHistoryStore::save(sessions, document.toLocalFile());
        const std::shared_ptr<AIProvider> provider = std::make_shared<RotatingAIProvider>(m_defaults);
        m_panel.reset();
        m_viewModel = AssistantViewModel::create(TextOnlyAssistantContext{document, {}}, provider);
        m_panel = std::make_unique<AssistantPanel>(m_viewModel);
        m_panel->resize(420, 800);
    }

    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("settings.ini"))};
    std::shared_ptr<AssistantViewModel> m_viewModel;
    std::unique_ptr<AssistantPanel> m_panel;
};

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    const QApplication application(argc, argv);
    using Role = AssistantTurn::Role;
    const QString prose =
        repeated(QStringLiteral("What the authors say about it at some length, and why.\n"), hugeSize);
    Bench bench;
    bench.bubble(QStringLiteral("short bubble, loads the fonts"), Role::user, QStringLiteral("Why?"));
    for (const auto& [name, role] : {std::pair("user", Role::user), std::pair("error", Role::error)}) {
        for (const char* part : {"a", "\n", "a\n", "\u0301", "\u202E", "\u4E2D", "\U0001F600"})
            bench.bubble(QStringLiteral("%1 bubble of %2").arg(QLatin1String(name), QString::fromUtf8(part)), role,
                         repeated(QString::fromUtf8(part), hugeSize));
        bench.bubble(QStringLiteral("%1 bubble of prose").arg(QLatin1String(name)), role, prose);
    }
    bench.title(prose);
    bench.attachment(prose);
    bench.draft(QStringLiteral("draft of prose"), prose);
    for (const qsizetype size : {qsizetype(10'000), hugeSize})
        bench.draft(QStringLiteral("draft of a word of %1").arg(size), repeated(QStringLiteral("a"), size));
    return 0;
}
