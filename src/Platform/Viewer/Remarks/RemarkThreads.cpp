#include "RemarkThreads.h"

#include "PDFAnnotation.h"
#include "PDFPage.h"

#include <algorithm>

/// Answers to answers; a file may make them go round in a circle.
static constexpr int deepestThread = 64;
/// Characters. Nobody reads more in a small panel, and setting them takes time.
static constexpr qsizetype longestWords = 100000;

static QString readable(const QString& text) {
    QString words = text.left(longestWords);
    words.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    words.removeIf([](QChar c) { return c.category() == QChar::Other_Control && c != u'\n' && c != u'\t'; });
    if (text.size() > longestWords)
        words += u'…';
    return words.trimmed();
}

Remark Remark::of(const PDFAnnotation& annotation) {
    const QDateTime changed = annotation.modificationDate();
    return {readable(annotation.userName()).simplified(), changed.isValid() ? changed : annotation.creationDate(),
            readable(annotation.contents())};
}

RemarkThreads::RemarkThreads(const PDFPage& page) : m_annotations(page.annotations()) {
    for (const std::shared_ptr<PDFAnnotation>& annotation : m_annotations)
        if (annotation->origin() && annotation->origin()->content == page.content())
            m_byPlace.emplace(annotation->origin()->index, annotation);
}

bool RemarkThreads::isRemark(const PDFAnnotation& annotation) {
    return PDFAnnotationSubtype::isMarkup(annotation.type()) && annotation.shouldDisplay();
}

bool RemarkThreads::hasWords(const PDFAnnotation& annotation) {
    const QString& contents = annotation.values().contents;
    return std::any_of(contents.begin(), contents.end(), [](QChar c) { return !c.isSpace() && c.isPrint(); });
}

std::shared_ptr<PDFAnnotation> RemarkThreads::subject(const std::shared_ptr<PDFAnnotation>& annotation) const {
    std::shared_ptr<PDFAnnotation> found = annotation;
    for (int depth = 0; depth < deepestThread && found->values().repliesTo; ++depth) {
        const auto above = m_byPlace.find(*found->values().repliesTo);
        const bool isAnswer =
            found->origin() && above != m_byPlace.end() && above->second->origin()->content == found->origin()->content;
        if (!isAnswer || above->second == annotation)
            break;
        found = above->second;
    }
    return found;
}

std::vector<Remark> RemarkThreads::thread(const std::shared_ptr<PDFAnnotation>& subject) const {
    std::vector<Remark> remarks;
    for (const std::shared_ptr<PDFAnnotation>& answer : m_annotations)
        if (answer != subject && answer->values().repliesTo && hasWords(*answer) && this->subject(answer) == subject)
            remarks.push_back(Remark::of(*answer));
    std::stable_sort(remarks.begin(), remarks.end(), [](const Remark& a, const Remark& b) { return a.date < b.date; });
    remarks.insert(remarks.begin(), Remark::of(*subject));
    return remarks;
}
