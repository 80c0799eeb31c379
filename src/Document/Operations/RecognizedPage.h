#pragma once

#include "UprightPage.h"

#include <QImage>
#include <QString>

#include <memory>
#include <stop_token>

class PDFPage;
class PDFSource;

/// A page on its way to a searchable one, in turns of workers and of the main thread: `draw`, `noteAnnotations`,
/// `read`.
class RecognizedPage {
public:
    /// Takes note of the page; main thread.
    explicit RecognizedPage(const PDFPage& page);

    /// Draws it as the recognizer is to see it. Any thread.
    void draw(const std::stop_token& stop);
    /// False, too, for a page of an absurd size.
    [[nodiscard]] bool isDrawn() const { return !m_picture.isNull(); }

    /// Takes note of the annotations that draw themselves. False when the page has changed since it was noted, so that
    /// they don't fit what was drawn. Main thread.
    [[nodiscard]] bool noteAnnotations(const PDFPage& page);

    /// Recognizes the lines and makes the new page; none when the recognizer fails. Any thread.
    void read(const std::stop_token& stop);

    /// The lines, joined with "\n".
    [[nodiscard]] const QString& text() const { return m_text; }
    /// A file of the one new page; null when it couldn't be made.
    [[nodiscard]] const std::shared_ptr<PDFSource>& source() const { return m_source; }

private:
    void keepGray();
    [[nodiscard]] QImage pictureToKeep(const std::stop_token& stop) const;

    UprightPage m_page;
    double m_scale = 0; // of the picture, in pixels for a point
    QImage m_picture;
    bool m_showsContentOnly = false; // and no annotation
    QString m_text;
    std::shared_ptr<PDFSource> m_source;
};
