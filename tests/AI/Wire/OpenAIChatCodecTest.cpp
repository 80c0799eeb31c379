#include "OpenAIChatCodec.h"
#include "AIProviderError.h"
#include "JSONParsingError.h"

#include <QJsonDocument>

#include <string>

#include <gtest/gtest.h>

namespace {

QByteArray compact(const QJsonArray& array) {
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

AIAgentTurn decode(const QByteArray& choice) {
    return OpenAIChatCodec::readReply(200, R"({"choices":[)" + choice + "]}");
}

/// One tool call with this text for its "function" object.
AIAgentTurn decodeCall(const QByteArray& function, const QByteArray& finishReason = R"("tool_calls")") {
    return decode(R"({"message":{"content":null,"tool_calls":[{"id":"1","function":)" + function +
                  R"(}]},"finish_reason":)" + finishReason + "}");
}

/// What the reading of such a reply throws.
template <typename Error>
std::string errorOf(int status, const QByteArray& body) {
    try {
        (void)OpenAIChatCodec::readReply(status, body);
    } catch (const Error& error) {
        return error.what();
    } catch (const std::exception&) { // of another kind
    }
    return {};
}

} // namespace

TEST(OpenAIChatCodec, WritesEachKindOfMessage) {
    const auto text = [](const char* words) { return AIContentPart::text(QString::fromUtf8(words)); };
    const auto use = [](const char* id, const char* name, const QJsonObject& input = {}) {
        return AIContentPart::toolUse(QLatin1String(id), QLatin1String(name), input);
    };
    const auto result = [](const char* id, const char* words) {
        return AIContentPart::toolResult(QLatin1String(id), QLatin1String(words));
    };
    const std::tuple<const char*, AIMessage, std::string> cases[] = {
        {"texts of the user, on lines of their own; a tool use isn't theirs",
         {AIRole::user, {text("a \"b\" ü\n"), use("x", "y"), text("c/d")}},
         R"({"content":"a \"b\" ü\n\nc/d","role":"user"})"},
        {"results, which displace a text",
         {AIRole::user, {result("1", "one"), text("lost"), result("2", "")}},
         R"({"content":"one","role":"tool","tool_call_id":"1"},{"content":"","role":"tool","tool_call_id":"2"})"},
        {"texts of the assistant, joined with nothing",
         {AIRole::assistant, {text("a"), result("1", "r"), text("b")}},
         R"({"content":"ab","role":"assistant"})"},
        {"tool uses alone",
         {AIRole::assistant, {use("1", "go", {{QStringLiteral("page"), QStringLiteral("\"Ω")}}), use("2", "read")}},
         R"({"content":"","role":"assistant","tool_calls":[)"
         R"({"function":{"arguments":"{\"page\":\"\\\"Ω\"}","name":"go"},"id":"1","type":"function"},)"
         R"({"function":{"arguments":"{}","name":"read"},"id":"2","type":"function"}]})"},
    };
    for (const auto& [what, message, wire] : cases)
        EXPECT_EQ(compact(OpenAIChatCodec::encodeMessages({message}, {})).toStdString(),
                  R"([{"content":"","role":"system"},)" + wire + "]")
            << what;
}

TEST(OpenAIChatCodec, DecidesWhetherATurnIsFinal) {
    const QByteArray function = R"({"name":"go","arguments":"{\"page\":2}"})";
    const AIToolCall call{QStringLiteral("1"), QStringLiteral("go"), {{QStringLiteral("page"), 2}}};
    const AIMessage message{AIRole::assistant,
                            {AIContentPart::toolUse(QStringLiteral("1"), QStringLiteral("go"), call.input)}};

    for (const char* reason : {R"("tool_calls")", R"("stop")", R"("TOOL_CALLS")", "null", "7"}) {
        const AIAgentTurn turn = decodeCall(function, reason);
        EXPECT_EQ(turn.isFinal, reason != std::string(R"("tool_calls")")) << reason;
        EXPECT_EQ(turn.toolCalls, std::vector{call}) << reason;
        EXPECT_EQ(turn.message, message) << reason;
        EXPECT_TRUE(turn.text.isEmpty());
    }
    const AIAgentTurn answer = decode(R"({"message":{"content":"Hi"},"finish_reason":"tool_calls"},{"more":1})");
    EXPECT_TRUE(answer.isFinal) << "there is nothing to run";
    EXPECT_EQ(answer.text, QStringLiteral("Hi"));
    EXPECT_EQ(answer.message, (AIMessage{AIRole::assistant, {AIContentPart::text(QStringLiteral("Hi"))}}));
}

TEST(OpenAIChatCodec, ToleratesOddToolCalls) {
    const QByteArray deep = QByteArray(10'000, '[') + QByteArray(10'000, ']');
    const std::pair<QByteArray, QJsonObject> readable[] = {
        {R"({"name":"n","arguments":{"a":1}})", {{QStringLiteral("a"), 1}}},
        {R"({"name":"n","arguments":"[1]"})", {}},
        {R"({"name":"n","arguments":"{\"a\":)" + deep + R"(}"})", {}},
        {R"({"name":"n"})", {}},
    };
    for (const auto& [function, input] : readable) {
        const AIAgentTurn turn = decodeCall(function);
        ASSERT_EQ(turn.toolCalls.size(), 1u) << function.left(80).toStdString();
        EXPECT_EQ(turn.toolCalls[0].input, input) << function.left(80).toStdString();
    }
    for (const char* function : {R"({"arguments":"{}"})", R"({"name":4})", "[]", "null"})
        EXPECT_TRUE(decodeCall(function).toolCalls.empty()) << function;

    for (const char* calls :
         {R"([{"id":"1","function":{"name":"n"}},5])", R"([{"id":7,"function":{"name":"n"}}])", R"({"id":"1"})"}) {
        const AIAgentTurn turn =
            decode(R"({"message":{"tool_calls":)" + QByteArray(calls) + R"(},"finish_reason":"tool_calls"})");
        EXPECT_TRUE(turn.toolCalls.empty() && turn.isFinal) << calls;
    }
}

TEST(OpenAIChatCodec, TellsWhatIsNoAnswer) {
    const std::string unexpected = "Received an unexpected response from the AI provider.";
    for (const char* body :
         {"{}", "[]", "7", " \"text\" ", "null", R"({"choices":[]})", R"({"choices":{}})", R"({"choices":[{}]})",
          R"({"choices":[{"message":"Hi"}]})", R"({"choices":[{"message":{"content":"Hi"}},5]})"})
        EXPECT_EQ(errorOf<AIProviderError>(200, body), unexpected) << body;

    const std::tuple<int, const char*, const char*> refusals[] = {
        {500, R"({"error":{"message":"Overloaded","code":3}})", "API error (500): Overloaded"},
        {403, R"({"error":"No %1 entry"})", "API error (403): No %1 entry"},
        {404, R"({"error":{"message":5}})", "API error (404): Unknown error"},
        {300, R"({"choices":[{"message":{"content":"Hi"}}]})", "API error (300): Unknown error"},
        {199, "{}", "API error (199): Unknown error"},
    };
    for (const auto& [status, body, sentence] : refusals)
        EXPECT_EQ(errorOf<AIProviderError>(status, body), sentence);

    const QByteArray deep = R"({"choices":)" + QByteArray(10'000, '[') + QByteArray(10'000, ']') + "}";
    for (const QByteArray& body :
         {QByteArray("<html>Bad gateway</html>"), QByteArray(), QByteArray("1],[2"), QByteArray("{} {}"), deep}) {
        for (const int status : {200, 401, 502})
            EXPECT_TRUE(errorOf<JSONParsingError>(status, body)
                            .starts_with("The AI service sent an answer that Quillo can't read ("))
                << body.left(40).toStdString();
    }
}
