#pragma once

#include <QDateTime>
#include <QString>

#include <map>
#include <memory>
#include <vector>

class PDFAnnotation;
class PDFPage;

/// What an annotation says: a plain value.
struct Remark {
    QString author; ///< empty when a file doesn't say
    QDateTime date; ///< of the last change, or else of its making; invalid when a file doesn't say
    QString words;  ///< without characters that can't be seen; lines end with "\n"

    [[nodiscard]] static Remark of(const PDFAnnotation& annotation);
    bool operator==(const Remark&) const = default;
};

/// The remarks on a page as they are now, and the answers to them. Main thread only.
class RemarkThreads {
public:
    explicit RemarkThreads(const PDFPage& page);

    /// A kind that people make remarks with, and that the page shows.
    [[nodiscard]] static bool isRemark(const PDFAnnotation& annotation);
    [[nodiscard]] static bool hasWords(const PDFAnnotation& annotation);

    /// What it answers in the end; itself when it is no answer.
    [[nodiscard]] std::shared_ptr<PDFAnnotation> subject(const std::shared_ptr<PDFAnnotation>& annotation) const;
    /// What the subject says, and behind that all answers to it in the order of their dates.
    [[nodiscard]] std::vector<Remark> thread(const std::shared_ptr<PDFAnnotation>& subject) const;

private:
    const std::vector<std::shared_ptr<PDFAnnotation>>& m_annotations;
    std::map<int, std::shared_ptr<PDFAnnotation>> m_byPlace; // in the page's list in its file
};
