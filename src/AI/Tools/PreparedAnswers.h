#pragma once

#include "ReadingAhead.h"

#include <QCoroTask>
#include <QJsonObject>
#include <QObject>
#include <QString>

#include <deque>
#include <memory>

class DocumentText;
class PDFDocument;
class PageStrings;

/// Answers to questions about the text of a document, so that the main thread needn't read a long document itself:
/// they are worked out ahead on another thread, from what the pages are at that moment, and hold until the pages
/// change. Main thread only.
class PreparedAnswers : public QObject, public std::enable_shared_from_this<PreparedAnswers> {
    Q_OBJECT

public:
    /// Answers a question about the text. Depends on nothing but its arguments; any thread.
    using AnswerFunction = QString (*)(const DocumentText& text, const QJsonObject& input);

    explicit PreparedAnswers(std::shared_ptr<PDFDocument> document);
    ~PreparedAnswers() override;

    /// What was worked out ahead, else worked out now.
    [[nodiscard]] QString answer(AnswerFunction function, const QJsonObject& input);
    /// Works it out on another thread. Never throws.
    [[nodiscard]] QCoro::Task<void> prepare(AnswerFunction function, QJsonObject input);

private:
    struct Answer {
        AnswerFunction function;
        QJsonObject input;
        QString text;
    };

    [[nodiscard]] const Answer* find(AnswerFunction function, const QJsonObject& input) const;
    void forget();

    const std::shared_ptr<PDFDocument> m_document;
    const std::shared_ptr<PageStrings> m_strings; // shared with the threads that read
    const ReadingAhead m_ahead;
    std::deque<Answer> m_answers; // the oldest first
    int m_pageChanges = 0;
};
