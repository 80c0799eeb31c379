#include "ShownView.h"

#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "PageText.h"

#include <QApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>
#include <QWheelEvent>

#include <gtest/gtest.h>

static constexpr int patience = 60'000; // milliseconds

ShownView::ShownView(const std::shared_ptr<PDFDocument>& document, QSize size) {
    resize(size);
    setAutoScales(true);
    setDocument(document);
    show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(this));
    setFocus(Qt::MouseFocusReason);
}

void ShownView::waitUntil(const std::function<bool()>& condition, const char* what) const {
    EXPECT_TRUE(QTest::qWaitFor(condition, patience)) << "never came: " << what;
}

void ShownView::waitUntilSharp() const {
    waitUntilStill();
    waitUntil([this] { return isSharp(); }, "sharp pages");
    QApplication::processEvents();
}

void ShownView::waitUntilStill() const {
    int former = -1;
    waitUntil(
        [&] {
            const int value = verticalScrollBar()->value();
            QTest::qWait(60);
            return std::exchange(former, value) == value && verticalScrollBar()->value() == value;
        },
        "rest");
}

std::shared_ptr<PDFPage> ShownView::page(int index) const {
    return document()->page(index);
}

QPointF ShownView::before(int pageIndex, int offset) const {
    const PDFQuad quad = page(pageIndex)->text()->glyphs.at(static_cast<std::size_t>(offset)).quad;
    return convertFromPage((quad.upperLeft + quad.lowerLeft) / 2, *page(pageIndex));
}

QPointF ShownView::on(int pageIndex, int offset) const {
    const PDFQuad quad = page(pageIndex)->text()->glyphs.at(static_cast<std::size_t>(offset)).quad;
    return convertFromPage((quad.upperLeft + quad.lowerRight) / 2, *page(pageIndex));
}

int ShownView::offsetOf(int pageIndex, const QString& text) const {
    const auto offset = page(pageIndex)->text()->string.indexOf(text);
    EXPECT_GE(offset, 0) << text.toStdString();
    return static_cast<int>(offset);
}

void ShownView::mouse(QEvent::Type type, QPointF point, Qt::MouseButton button, Qt::MouseButtons buttons,
                      Qt::KeyboardModifiers modifiers) {
    QMouseEvent event(type, point, viewport()->mapToGlobal(point), button, buttons, modifiers);
    QApplication::sendEvent(viewport(), &event);
}

void ShownView::press(QPointF point, Qt::KeyboardModifiers modifiers) {
    mouse(QEvent::MouseButtonPress, point, Qt::LeftButton, Qt::LeftButton, modifiers);
}

void ShownView::moveTo(QPointF point, bool held) {
    mouse(QEvent::MouseMove, point, Qt::NoButton, held ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
}

void ShownView::release(QPointF point, Qt::KeyboardModifiers modifiers) {
    mouse(QEvent::MouseButtonRelease, point, Qt::LeftButton, Qt::NoButton, modifiers);
}

void ShownView::click(QPointF point, Qt::KeyboardModifiers modifiers) {
    press(point, modifiers);
    release(point, modifiers);
}

void ShownView::doubleClick(QPointF point) {
    pressTwice(point);
    release(point);
}

void ShownView::pressTwice(QPointF point) {
    click(point);
    mouse(QEvent::MouseButtonDblClick, point, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
}

void ShownView::drag(QPointF from, QPointF to) {
    press(from);
    moveTo((from + to) / 2);
    moveTo(to);
    release(to);
}

void ShownView::key(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(this, key, modifiers);
}

void ShownView::wheel(QPointF point, QPoint angleDelta, Qt::KeyboardModifiers modifiers) {
    QWheelEvent event(point, viewport()->mapToGlobal(point), {}, angleDelta, Qt::NoButton, modifiers, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(viewport(), &event);
}

QString ShownView::toolTip(QPointF point) {
    QHelpEvent event(QEvent::ToolTip, point.toPoint(), viewport()->mapToGlobal(point.toPoint()));
    QApplication::sendEvent(viewport(), &event);
    return QToolTip::text();
}

QString ShownView::selected() const {
    const auto selection = currentSelection();
    return selection ? selection->string() : QString();
}

QImage ShownView::picture() {
    return viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

std::shared_ptr<PDFDocument> documentOf(PdfFixture& fixture) {
    return PDFDocument::fromData(fixture.bytes());
}

std::shared_ptr<PDFDocument> sampleDocument(int pages) {
    PdfFixture fixture;
    for (int page = 1; page <= pages; ++page) {
        QStringList lines{QStringLiteral("Page %1 of the sample").arg(page)};
        for (int line = 1; line <= 10; ++line)
            lines.append(QStringLiteral("p%1 line %2").arg(page).arg(line));
        fixture.addPage(lines);
    }
    return documentOf(fixture);
}
