#include "PlacedEditor.h"

#include "PDFDocument.h"
#include "PDFPage.h"
#include "PageSurface.h"
#include "QuilloAssert.h"

#include <QFocusEvent>
#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QKeyEvent>

#include <utility>

static bool isReturn(const QKeyEvent& key) {
    return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
}

PlacedEditor::PlacedEditor(PageSurface& view) : QObject(&view), m_view(view) {
    connect(&view, &PageSurface::visibleAreaChanged, this, &PlacedEditor::follow);
}

PlacedEditor::~PlacedEditor() {
    if (!m_widget)
        return;
    m_widget->removeEventFilter(this);
    m_widget->disconnect(this);
    m_widget->clearFocus(); // so that it isn't passed on within a viewer that may be going, too
    delete m_widget;
}

void PlacedEditor::commitAllEditors() {
    commit();
    for (PlacedEditor* const other : m_view.findChildren<PlacedEditor*>(QString(), Qt::FindDirectChildrenOnly))
        other->commit();
}

void PlacedEditor::open(QWidget* widget, const std::shared_ptr<PDFPage>& page, const QString& objectName,
                        const QString& accessibleName) {
    QUILLO_ASSERT(page && !m_widget, "an editor is opened on a page, after its predecessor is closed");
    m_page = page;
    m_widget = widget;
    m_isComposing = false;
    m_widget->hide();
    m_widget->setObjectName(objectName);
    m_widget->setAccessibleName(accessibleName);
    m_widget->installEventFilter(this);
    if (const auto document = m_view.document()) {
        m_document = document;
        connect(document.get(), &PDFDocument::pagesChanged, this, &PlacedEditor::followLater);
        connect(document.get(), &PDFDocument::pageContentChanged, this, [this](const PDFPage* changed) {
            if (changed == m_page.get())
                followLater();
        });
    }
}

void PlacedEditor::show() {
    layOut();
    m_widget->show();
    m_widget->setFocus(Qt::OtherFocusReason);
    Q_EMIT openChanged(true);
}

void PlacedEditor::close() {
    QWidget* const widget = m_widget;
    m_widget.clear();
    m_page.reset();
    if (const auto document = m_document.lock())
        document->disconnect(this);
    m_document.reset();
    if (!widget)
        return;
    widget->removeEventFilter(this);
    widget->disconnect(this);
    if (widget->window()->focusWidget() == widget)
        m_view.setFocus(Qt::OtherFocusReason);
    widget->hide();
    widget->deleteLater(); // it may be its own event that closes it
    Q_EMIT openChanged(false);
}

// Keys and focus

bool PlacedEditor::eventFilter(QObject* watched, QEvent* event) {
    if (!m_widget || watched != m_widget)
        return QObject::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::InputMethod:
        m_isComposing = !static_cast<QInputMethodEvent*>(event)->preeditString().isEmpty();
        break;
    case QEvent::ShortcutOverride: {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (isReturn(*key) || key->key() == Qt::Key_Escape) {
            event->accept();
            return true;
        }
        break;
    }
    case QEvent::KeyPress:
        return pressKey(*static_cast<QKeyEvent*>(event));
    case QEvent::FocusOut:
        switch (static_cast<QFocusEvent*>(event)->reason()) {
        case Qt::PopupFocusReason:
        case Qt::MenuBarFocusReason:
        case Qt::ActiveWindowFocusReason:
            break;
        default:
            commit();
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

bool PlacedEditor::breaksLine(const QKeyEvent& key) const {
    return key.modifiers().testFlag(Qt::ShiftModifier);
}

bool PlacedEditor::pressKey(QKeyEvent& key) {
    const bool commits = isReturn(key) && !breaksLine(key);
    const bool cancels = key.key() == Qt::Key_Escape;
    if (!commits && !cancels)
        return false;
    key.accept();
    if (m_isComposing)
        commits ? QGuiApplication::inputMethod()->commit() : QGuiApplication::inputMethod()->reset();
    else
        commits ? commit() : cancel();
    return true;
}

// Place

bool PlacedEditor::isInView() const {
    return m_page->document() && m_page->document() == m_view.document().get() && isSubjectThere();
}

bool PlacedEditor::canCommit() {
    if (m_widget && !isInView())
        abandon();
    return isOpen();
}

void PlacedEditor::addTo(PDFDraft& draft) const {
    if (m_widget && isInView())
        addOpenTo(draft);
}

void PlacedEditor::follow() {
    if (!m_widget)
        return;
    if (isInView())
        layOut();
    else
        followLater();
}

/// A page that is moved is taken out first and put in then: whether it is gone shows when that is over.
void PlacedEditor::followLater() {
    if (std::exchange(m_isFollowQueued, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_isFollowQueued = false;
            if (canCommit())
                layOut();
        },
        Qt::QueuedConnection);
}
