#pragma once

#include "AIProvider.h"
#include "AnnotatingPDFView.h"
#include "AssistantSource.h"
#include "AssistantViewModel.h"
#include "PDFDocument.h"
#include "PDFViewCoordinator.h"
#include "PdfFixtures.h"
#include "ToolState.h"
#include "UserDefaults.h"

#include <QCoroTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <memory>
#include <vector>

/// Replies with what the test laid ready, one event later, and keeps what it was asked. Requests for a title are kept
/// apart and fail unless there is a title.
class ScriptedProvider : public AIProvider {
public:
    struct Call {
        std::vector<AIMessage> history;
        std::vector<AssistantTool> tools;
        QString system;
        AIModelPreference preference;
    };

    QCoro::Task<AIAgentTurn> send(std::vector<AIMessage> history, std::vector<AssistantTool> tools, QString system,
                                  AIModelPreference preference) override {
        const bool asksForTitle = tools.empty();
        (asksForTitle ? titleCalls : calls).push_back({history, tools, system, preference});
        co_await QCoro::sleepFor(std::chrono::milliseconds(0));
        if (asksForTitle) {
            if (title.isNull())
                throw std::runtime_error("no title");
            co_return answer(title);
        }
        if (replies.empty())
            throw std::runtime_error("no reply left");
        const auto reply = replies.front();
        replies.pop_front();
        co_return reply();
    }

    static AIAgentTurn answer(const QString& text) {
        return {{AIRole::assistant, {AIContentPart::text(text)}}, {}, text, true};
    }
    /// A call of each tool with its input in JSON, with ids from "1".
    static AIAgentTurn toolUse(const std::vector<std::pair<const char*, QByteArray>>& tools) {
        AIAgentTurn turn{{AIRole::assistant, {}}, {}, {}, false};
        for (const auto& [name, input] : tools) {
            const AIToolCall call{QString::number(turn.toolCalls.size() + 1), QString::fromLatin1(name),
                                  QJsonDocument::fromJson(input).object()};
            turn.toolCalls.push_back(call);
            turn.message.parts.push_back(AIContentPart::toolUse(call.id, call.name, call.input));
        }
        return turn;
    }
    void reply(const AIAgentTurn& turn) {
        replies.push_back([turn] { return turn; });
    }
    void reply(const char* text) { reply(answer(QString::fromUtf8(text))); }

    std::deque<std::function<AIAgentTurn()>> replies;
    QString title;
    std::vector<Call> calls;
    std::vector<Call> titleCalls;
};

/// A saved document of three pages with an outline, shown in a viewer that a coordinator follows.
class AssistantTest : public testing::Test {
protected:
    AssistantTest() {
        PdfFixture fixture;
        fixture.addPage({QStringLiteral("The Quick fox"), QStringLiteral("second line")});
        fixture.addPage({});
        fixture.addPage({QStringLiteral("about the lazy dog")});
        fixture.setOutline({{QStringLiteral("Getting Started"), 0, {{QStringLiteral("  Setup"), 1}}},
                            {QStringLiteral(" \t"), 0, {{QStringLiteral("Deep"), 0}}}, // a blank item
                            {QStringLiteral("The Dog"), 2}});
        write("Some.Book.pdf", fixture.bytes());
        openWindow(PDFDocument::fromFile(m_path));
    }

    QUrl write(const char* name, const QByteArray& bytes) const {
        QFile file(m_folder.filePath(QLatin1String(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return QUrl::fromLocalFile(file.fileName());
    }

    void openWindow(const std::shared_ptr<PDFDocument>& document) {
        m_document = document;
        m_view = std::make_unique<AnnotatingPDFView>();
        m_coordinator = std::make_unique<PDFViewCoordinator>(m_defaults);
        m_view->setToolState(std::make_shared<ToolState>());
        m_view->setDocument(m_document);
        m_coordinator->setPdfView(m_view.get());
        m_coordinator->observePageChanges();
        m_view->resize(500, 500);
        m_view->show();
        QTest::qWait(0);
    }

    void closeWindow() {
        m_view.reset();
        m_coordinator.reset();
        m_document.reset();
    }

    [[nodiscard]] AssistantContext context() const {
        return {m_document, m_coordinator.get(), QUrl::fromLocalFile(m_path)};
    }

    static bool finish(const AssistantViewModel& viewModel) {
        return QTest::qWaitFor([&viewModel] { return !viewModel.isRunning(); }, 10'000);
    }

    QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath(QStringLiteral("Some.Book.pdf"));
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("settings.ini"))};
    std::shared_ptr<PDFDocument> m_document;
    std::unique_ptr<AnnotatingPDFView> m_view;
    std::unique_ptr<PDFViewCoordinator> m_coordinator;
};
