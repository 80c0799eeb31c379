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

struct Refusal {
    AIProviderError::Kind kind;
    std::string sentence;
};

std::optional<Refusal> refusalOf(int status, const QByteArray& body) {
    try {
        (void)OpenAIChatCodec::readReply(status, body);
    } catch (const AIProviderError& error) {
        return Refusal{error.kind(), error.what()};
    }
    return std::nullopt;
}

std::string parsingErrorOf(int status, const QByteArray& body) {
    try {
        (void)OpenAIChatCodec::readReply(status, body);
    } catch (const JSONParsingError& error) {
        return error.what();
    } catch (const AIProviderError&) { // counts as none
    }
    return {};
}

} // namespace

TEST(OpenAIChatCodec, WritesEachKindOfMessage) {
    using Part = AIContentPart;
    const struct {
        const char* what;
        AIMessage message;
        QByteArray wire;
    } cases[] = {
        {"texts of the user, on lines of their own; a tool use isn't theirs",
         {AIRole::user,
          {Part::text(QStringLiteral("a \"b\" ü\n")), Part::toolUse(QStringLiteral("x"), QStringLiteral("y"), {}),
           Part::text(QStringLiteral("c/d"))}},
         R"({"content":"a \"b\" ü\n\nc/d","role":"user"})"},
        {"a message without parts", {AIRole::user, {}}, R"({"content":"","role":"user"})"},
        {"results, which displace a text",
         {AIRole::user,
          {Part::toolResult(QStringLiteral("1"), QStringLiteral("one")), Part::text(QStringLiteral("lost")),
           Part::toolResult(QStringLiteral("2"), {})}},
         R"({"content":"one","role":"tool","tool_call_id":"1"},{"content":"","role":"tool","tool_call_id":"2"})"},
        {"texts of the assistant, joined with nothing",
         {AIRole::assistant,
          {Part::text(QStringLiteral("a")), Part::toolResult(QStringLiteral("1"), QStringLiteral("r")),
           Part::text(QStringLiteral("b"))}},
         R"({"content":"ab","role":"assistant"})"},
        {"tool uses alone",
         {AIRole::assistant,
          {Part::toolUse(QStringLiteral("1"), QStringLiteral("go"), {{QStringLiteral("page"), 3}}),
           Part::toolUse(QStringLiteral("2"), QStringLiteral("read"), {})}},
         R"({"content":"","role":"assistant","tool_calls":[)"
         R"({"function":{"arguments":"{\"page\":3}","name":"go"},"id":"1","type":"function"},)"
         R"({"function":{"arguments":"{}","name":"read"},"id":"2","type":"function"}]})"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(compact(OpenAIChatCodec::encodeMessages({each.message}, {})).toStdString(),
                  R"([{"content":"","role":"system"},)" + each.wire.toStdString() + "]")
            << each.what;
    }
}

TEST(OpenAIChatCodec, ReadsWhatItWroteOfAToolCall) {
    const QJsonObject input{{QStringLiteral("text"), QStringLiteral("Ω \\ \" \u2028 😀")},
                            {QStringLiteral("page"), qint64(9007199254740993)},
                            {QStringLiteral("none"), {}}};
    const AIMessage asked{AIRole::assistant, {AIContentPart::toolUse(QStringLiteral("1"), QStringLiteral("n"), input)}};
    const QJsonArray messages = OpenAIChatCodec::encodeMessages({asked}, {});
    const AIAgentTurn turn = OpenAIChatCodec::decodeResponse(
        {{QStringLiteral("choices"), QJsonArray{QJsonObject{{QStringLiteral("message"), messages.last()}}}}});
    EXPECT_EQ(turn.message, asked);
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
    const struct {
        QByteArray function;
        QJsonObject input;
    } readable[] = {
        {R"({"name":"n","arguments":{"a":1}})", {{QStringLiteral("a"), 1}}},
        {R"({"name":"n","arguments":"nonsense"})", {}},
        {R"({"name":"n","arguments":"[1]"})", {}},
        {R"({"name":"n","arguments":"{\"a\":)" + deep + R"(}"})", {}},
        {R"({"name":"n","arguments":5})", {}},
        {R"({"name":"n"})", {}},
    };
    for (const auto& each : readable) {
        const AIAgentTurn turn = decodeCall(each.function);
        ASSERT_EQ(turn.toolCalls.size(), 1u) << each.function.left(80).toStdString();
        EXPECT_EQ(turn.toolCalls[0].input, each.input) << each.function.left(80).toStdString();
    }
    for (const char* function : {R"({"arguments":"{}"})", R"({"name":4})", "[]", "null"})
        EXPECT_TRUE(decodeCall(function).toolCalls.empty()) << function;

    const AIAgentTurn second = decode(R"({"message":{"tool_calls":[{"id":7,"function":{"name":"a"}},)"
                                      R"({"id":"2","function":{"name":"b"}}]},"finish_reason":"tool_calls"})");
    ASSERT_EQ(second.toolCalls.size(), 1u) << "the entry without a text for its id is passed over";
    EXPECT_EQ(second.toolCalls[0].name, QStringLiteral("b"));
    for (const char* calls : {R"([{"id":"1","function":{"name":"n"}},5])", R"({"id":"1"})", R"("x")"}) {
        const AIAgentTurn turn =
            decode(R"({"message":{"tool_calls":)" + QByteArray(calls) + R"(},"finish_reason":"tool_calls"})");
        EXPECT_TRUE(turn.toolCalls.empty() && turn.isFinal) << calls;
    }
}

TEST(OpenAIChatCodec, RefusesRepliesWithoutAMessage) {
    for (const char* body :
         {"{}", "[]", "7", " \"text\" ", "null", R"({"choices":[]})", R"({"choices":{}})", R"({"choices":[{}]})",
          R"({"choices":[{"message":"Hi"}]})", R"({"choices":[{"message":{"content":"Hi"}},5]})"}) {
        const auto refusal = refusalOf(200, body);
        ASSERT_TRUE(refusal) << body;
        EXPECT_EQ(refusal->sentence, "Received an unexpected response from the AI provider.") << body;
    }
}

TEST(OpenAIChatCodec, ReadsTheErrorOfAService) {
    const struct {
        int status;
        const char* body;
        const char* sentence;
    } cases[] = {
        {500, R"({"error":{"message":"Overloaded","code":3}})", "API error (500): Overloaded"},
        {403, R"({"error":"No entry"})", "API error (403): No entry"},
        {404, R"({"error":{"message":5}})", "API error (404): Unknown error"},
        {300, R"({"choices":[{"message":{"content":"Hi"}}]})", "API error (300): Unknown error"},
        {-1, "{}", "API error (-1): Unknown error"},
    };
    for (const auto& each : cases) {
        const auto refusal = refusalOf(each.status, each.body);
        ASSERT_TRUE(refusal) << each.body;
        EXPECT_EQ(refusal->kind, AIProviderError::Kind::http);
        EXPECT_EQ(refusal->sentence, each.sentence);
    }
}

TEST(OpenAIChatCodec, TellsWhatIsNoJSONWhateverTheStatus) {
    const QByteArray deep = R"({"choices":)" + QByteArray(10'000, '[') + QByteArray(10'000, ']') + "}";
    for (const QByteArray& body :
         {QByteArray("<html>Bad gateway</html>"), QByteArray(), QByteArray("1],[2"), QByteArray("1,2"),
          QByteArray(R"({"choices":[{"mess)"), QByteArray("{} {}"), QByteArray("{\"a\":\"\xff\"}"), deep}) {
        for (const int status : {200, 401, 502}) {
            EXPECT_EQ(parsingErrorOf(status, body).find("The AI service sent an answer that Quillo can't read ("), 0u)
                << body.left(40).toStdString();
        }
    }
}
