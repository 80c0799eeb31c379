#include "PreparedAnswers.h"

#include "DocumentText.h"
#include "PDFDocument.h"
#include "PageStrings.h"

#include <algorithm>

namespace {

/// More than a model asks for in one turn.
constexpr std::size_t answerLimit = 8;

} // namespace

PreparedAnswers::PreparedAnswers(std::shared_ptr<PDFDocument> document)
    : m_document(std::move(document)), m_strings(std::make_shared<PageStrings>()) {
    connect(m_document.get(), &PDFDocument::pagesChanged, this, &PreparedAnswers::forget);
}

PreparedAnswers::~PreparedAnswers() = default;

QString PreparedAnswers::answer(AnswerFunction function, const QJsonObject& input) {
    if (const Answer* const known = find(function, input))
        return known->text;
    return function(DocumentText(*m_document, m_strings), input);
}

QCoro::Task<void> PreparedAnswers::prepare(AnswerFunction function, QJsonObject input) {
    const auto self = shared_from_this();
    if (find(function, input))
        co_return;
    const int pageChanges = m_pageChanges;
    // Named, because GCC 12 destroys a closure twice that is made within a co_await expression.
    std::function<QString()> work = [function, input,
                                     text = DocumentText(*m_document, m_strings, m_ahead.stopToken())] {
        return function(text, input);
    };
    const auto answer = co_await m_ahead.read(std::move(work));
    if (!answer || m_pageChanges != pageChanges)
        co_return;
    if (m_answers.size() >= answerLimit)
        m_answers.pop_front();
    m_answers.push_back({function, input, *answer});
}

const PreparedAnswers::Answer* PreparedAnswers::find(AnswerFunction function, const QJsonObject& input) const {
    const auto found = std::find_if(m_answers.begin(), m_answers.end(), [&](const Answer& answer) {
        return answer.function == function && answer.input == input;
    });
    return found == m_answers.end() ? nullptr : &*found;
}

void PreparedAnswers::forget() {
    ++m_pageChanges;
    m_answers.clear();
    m_strings->clear();
}
