#include "InlineFreeTextEditor.h"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QTextBlock>
#include <QTextLayout>
#include <QWheelEvent>

#include <algorithm>
#include <memory>

static constexpr double outlineWidth = 1.5;

InlineFreeTextEditor::InlineFreeTextEditor(QWidget* parent) : QTextEdit(parent) {
    setAcceptRichText(false);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setCursor(Qt::IBeamCursor);
    // What the editor doesn't use must not select, draw or drag on the page below it.
    setAttribute(Qt::WA_NoMousePropagation);
    viewport()->setAttribute(Qt::WA_NoMousePropagation);
    viewport()->setAutoFillBackground(false); // the widget behind it paints the paper, insets included
    document()->setDocumentMargin(0);
    document()->clearUndoRedoStacks();
}

InlineFreeTextEditor::~InlineFreeTextEditor() = default;

QFont InlineFreeTextEditor::screenFont(const QFont& pageFont, double scale, const QWidget& widget) {
    QFont font = pageFont;
    const double size = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize();
    font.setPointSizeF(size * scale * pointsPerInch / widget.logicalDpiY());
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

double InlineFreeTextEditor::defaultLineHeight(const QFont& screenFont, const QWidget& widget) {
    return QFontMetricsF(screenFont, &widget).lineSpacing();
}

void InlineFreeTextEditor::setColors(const QColor& text, const QColor& paper) {
    QPalette colors; // whatever isn't set follows the desktop
    colors.setColor(QPalette::Text, text);
    setPalette(colors);
    m_paper = paper;
    update();
}

void InlineFreeTextEditor::place(const QRectF& frame, QPointF inset) {
    const double side = std::min(inset.x(), frame.width() / 4);
    const double below = std::clamp(frame.height() - inset.y() - defaultLineHeight(font(), *this), 0.0, inset.y());
    const auto edges = [](const QRectF& rect) {
        return QRect(QPoint(qRound(rect.left()), qRound(rect.top())),
                     QPoint(qRound(rect.right()) - 1, qRound(rect.bottom()) - 1));
    };
    const QRect outer = edges(frame);
    const QRect inner = edges(frame.adjusted(side, inset.y(), -side, -below));
    setViewportMargins(inner.left() - outer.left(), inner.top() - outer.top(), outer.right() - inner.right(),
                       outer.bottom() - inner.bottom());
    setGeometry(outer);
}

bool InlineFreeTextEditor::isComposing() const {
    return !textCursor().block().layout()->preeditAreaText().isEmpty();
}

void InlineFreeTextEditor::finishComposing() {
    if (isComposing())
        QGuiApplication::inputMethod()->commit();
}

QString InlineFreeTextEditor::finishedText() {
    finishComposing();
    return typedText();
}

QString InlineFreeTextEditor::typedText() const {
    // Unlike the plain text, this keeps spaces that don't break.
    QString text = document()->toRawText();
    text.replace(QChar::ParagraphSeparator, u'\n').replace(QChar::LineSeparator, u'\n');
    return text;
}

double InlineFreeTextEditor::usedHeight() const {
    return document()->size().height();
}

bool InlineFreeTextEditor::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::Paint: {
        const bool done = QTextEdit::event(event);
        paintFrame();
        return done;
    }
    // The insets belong to the text for the pointer.
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        QMouseEvent inside(mouse->type(), mouse->position() - QPointF(viewport()->pos()), mouse->scenePosition(),
                           mouse->globalPosition(), mouse->button(), mouse->buttons(), mouse->modifiers(),
                           mouse->pointingDevice());
        QCoreApplication::sendEvent(viewport(), &inside);
        return true;
    }
    case QEvent::ContextMenu:
        contextMenuEvent(static_cast<QContextMenuEvent*>(event));
        return true;
    default:
        break;
    }
    return QTextEdit::event(event);
}

void InlineFreeTextEditor::paintFrame() {
    QPainter painter(this);
    painter.fillRect(rect(), m_paper);
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr double half = outlineWidth / 2;
    painter.setPen(QPen(borderColor, outlineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    painter.drawRect(QRectF(rect()).adjusted(half, half, -half, -half));
}

/// As much of the text as may come into the place of what is selected.
QString InlineFreeTextEditor::taken(QString text) const {
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    const QTextCursor cursor = textCursor();
    if (maximumLength) {
        const int present = document()->characterCount() - 1; // the last is the end of the document
        const int room = *maximumLength - present + cursor.selectionEnd() - cursor.selectionStart();
        text.truncate(std::max(0, room));
        if (!text.isEmpty() && text.back().isHighSurrogate())
            text.chop(1);
    }
    if (!staysInPlace || text.isEmpty())
        return text;
    const std::unique_ptr<QTextDocument> trial(document()->clone());
    trial->setTextWidth(document()->textWidth());
    QTextCursor place(trial.get());
    place.setPosition(cursor.selectionStart());
    place.setPosition(cursor.selectionEnd(), QTextCursor::KeepAnchor);
    place.insertText(text);
    return trial->size().height() <= viewport()->height() ? text : QString();
}

void InlineFreeTextEditor::insertFromMimeData(const QMimeData* source) {
    const QString text = source->hasText() ? taken(source->text()) : QString();
    if (!text.isEmpty())
        insertPlainText(text);
}

void InlineFreeTextEditor::inputMethodEvent(QInputMethodEvent* event) {
    const QString committed = event->commitString();
    const QString text = taken(committed);
    if (text == committed) {
        QTextEdit::inputMethodEvent(event);
        return;
    }
    QInputMethodEvent shorter(event->preeditString(), event->attributes());
    shorter.setCommitString(text, event->replacementStart(), event->replacementLength());
    QTextEdit::inputMethodEvent(&shorter);
}

void InlineFreeTextEditor::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool types = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) &&
                       (isReturn || (!event->text().isEmpty() && event->text().front().isPrint()));
    if (!types || !taken(isReturn ? QStringLiteral("\n") : event->text()).isEmpty()) {
        if (isReturn && event->modifiers() & Qt::ShiftModifier)
            insertPlainText(QStringLiteral("\n")); // a paragraph, which has a direction of its own, and not a mere line
        else
            QTextEdit::keyPressEvent(event);
    }
    event->accept(); // no key that is pressed here scrolls the page
}

void InlineFreeTextEditor::wheelEvent(QWheelEvent* event) {
    QWidget* const page = parentWidget();
    QWheelEvent forPage(page->mapFromGlobal(event->globalPosition()), event->globalPosition(), event->pixelDelta(),
                        event->angleDelta(), event->buttons(), event->modifiers(), event->phase(), event->inverted(),
                        event->source(), event->pointingDevice());
    QCoreApplication::sendEvent(page, &forPage);
    event->accept();
}

void InlineFreeTextEditor::contextMenuEvent(QContextMenuEvent* event) {
    QMenu* const menu = createStandardContextMenu();
    menu->setObjectName(QStringLiteral("inlineEditorMenu"));
    menu->setAccessibleName(accessibleName());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->globalPos());
}
