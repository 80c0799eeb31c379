#include "PreparedAnswers.h"

#include "DocumentText.h"
#include "PDFDocument.h"
#include "PageStrings.h"

#include <QCoreApplication>
#include <QtConcurrent/QtConcurrentRun>

#include <QCoroFuture>

#include <algorithm>
#include <optional>

namespace {

/// More than a model asks for in one turn.
constexpr std::size_t answerLimit = 8;

} // namespace

PreparedAnswers::PreparedAnswers(std::shared_ptr<PDFDocument> document)
    : m_document(std::move(document)), m_strings(std::make_shared<PageStrings>()) {
    connect(m_document.get(), &PDFDocument::pagesChanged, this, &PreparedAnswers::forget);
    // The end of the program waits for its threads.
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, [this] { m_stop.request_stop(); });
}

PreparedAnswers::~PreparedAnswers() {
    m_stop.request_stop();
}

QString PreparedAnswers::answer(Question question, const QJsonObject& input) {
    if (const Answer* const known = find(question, input))
        return known->text;
    return question(DocumentText(*m_document, m_strings), input);
}

QCoro::Task<void> PreparedAnswers::prepare(Question question, QJsonObject input) {
    const auto self = shared_from_this();
    if (find(question, input))
        co_return;
    const int pageChanges = m_pageChanges;
    QFuture<QString> reading =
        QtConcurrent::run([question, input, text = DocumentText(*m_document, m_strings, m_stop.get_token())] {
            return question(text, input);
        });
    std::optional<QString> answer;
    try {
        answer = co_await reading;
    } catch (const std::exception&) {
        co_return; // memory ran out; whoever asks will see
    }
    if (m_pageChanges != pageChanges || m_stop.stop_requested())
        co_return;
    if (m_answers.size() >= answerLimit)
        m_answers.pop_front();
    m_answers.push_back({question, input, *answer});
}

const PreparedAnswers::Answer* PreparedAnswers::find(Question question, const QJsonObject& input) const {
    const auto found = std::find_if(m_answers.begin(), m_answers.end(), [&](const Answer& answer) {
        return answer.question == question && answer.input == input;
    });
    return found == m_answers.end() ? nullptr : &*found;
}

void PreparedAnswers::forget() {
    ++m_pageChanges;
    m_answers.clear();
    m_strings->clear();
}
