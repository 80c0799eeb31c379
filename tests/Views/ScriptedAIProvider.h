#pragma once

#include "AIProvider.h"

#include <QCoroFuture>
#include <QPromise>

#include <memory>
#include <stdexcept>
#include <vector>

/// A model whose replies come when the test says so. Questions for a title fail at once.
class ScriptedAIProvider : public AIProvider {
public:
    struct Call {
        QString lastText; ///< of the history
        AIModelPreference preference;
        std::shared_ptr<QPromise<QString>> promise;
    };

    QCoro::Task<AIAgentTurn> send(std::vector<AIMessage> history, std::vector<AssistantTool>, QString system,
                                  AIModelPreference preference) override {
        if (system.startsWith(QStringLiteral("You write short")))
            throw std::runtime_error("No titles here.");
        auto promise = std::make_shared<QPromise<QString>>();
        promise->start();
        calls.push_back({history.back().parts.back().asText()->text, preference, promise});
        const QString text = co_await promise->future();
        AIAgentTurn turn;
        turn.message = {AIRole::assistant, {AIContentPart::text(text)}};
        turn.text = text;
        co_return turn;
    }

    void reply(const QString& text) {
        calls.back().promise->addResult(text);
        calls.back().promise->finish();
    }

    void fail(const char* sentence) {
        calls.back().promise->setException(std::make_exception_ptr(std::runtime_error(sentence)));
        calls.back().promise->finish();
    }

    std::vector<Call> calls;
};
