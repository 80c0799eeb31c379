#pragma once

#include "PDFView.h"
#include "PdfFixtures.h"

#include <QEvent>
#include <QString>

#include <functional>
#include <memory>

class PDFDocument;
class PDFPage;
class QMouseEvent;

/// A view on the screen, with what tests do to it. All waiting ends in a test failure when it takes absurdly long.
class ShownView : public PDFView {
public:
    /// Fits the width of the first page.
    explicit ShownView(const std::shared_ptr<PDFDocument>& document, QSize size = {650, 700});

    /// Waits until the condition holds, working on events meanwhile.
    void waitUntil(const std::function<bool()>& condition, const char* what) const;
    /// Until all on the screen is drawn and nothing glides.
    void waitUntilSharp() const;
    void waitUntilStill() const;

    [[nodiscard]] std::shared_ptr<PDFPage> page(int index) const;
    /// The view point of the left edge of the n-th character of a page, at half its height.
    [[nodiscard]] QPointF before(int pageIndex, int offset) const;
    /// Of the middle of that character.
    [[nodiscard]] QPointF on(int pageIndex, int offset) const;
    /// The offset of the text's first occurrence on the page.
    [[nodiscard]] int offsetOf(int pageIndex, const QString& text) const;

    void press(QPointF point, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    /// With the left button held, or with none.
    void moveTo(QPointF point, bool held = true);
    void release(QPointF point, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void click(QPointF point, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void doubleClick(QPointF point);
    /// A double click of which the release is still to come.
    void pressTwice(QPointF point);
    /// Presses at one point and releases at the other.
    void drag(QPointF from, QPointF to);
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void wheel(QPointF point, QPoint angleDelta, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

    /// The tool tip that comes there, or the one that was there before.
    QString toolTip(QPointF point);
    [[nodiscard]] QString selected() const;
    /// The device pixels that the view shows.
    [[nodiscard]] QImage picture();

    using PDFView::hasLink;

private:
    void mouse(QEvent::Type type, QPointF point, Qt::MouseButton button, Qt::MouseButtons buttons,
               Qt::KeyboardModifiers modifiers);
};

[[nodiscard]] std::shared_ptr<PDFDocument> documentOf(PdfFixture& fixture);
/// So many pages of 612 by 792 points, each with the line "Page N of the sample" and ten lines "pN line M".
[[nodiscard]] std::shared_ptr<PDFDocument> sampleDocument(int pages);
