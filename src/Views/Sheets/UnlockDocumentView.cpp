#include "UnlockDocumentView.h"

#include "ErrorSentence.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "SymbolPicture.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

UnlockDocumentView::UnlockDocumentView(std::shared_ptr<PDFEditorDocument> document, QWidget* parent)
    : QWidget(parent), m_document(std::move(document)), m_passwordField(new QLineEdit(this)),
      m_wrongPasswordLine(new QLabel(QStringLiteral("That password didn't work."), this)) {
    setObjectName(QStringLiteral("unlockDocumentView"));
    setAccessibleName(QStringLiteral("Password Required"));

    auto* heading = new QLabel(QStringLiteral("Password Required"), this);
    QFont headingFont = font();
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.6);
    headingFont.setWeight(QFont::DemiBold);
    heading->setFont(headingFont);
    auto* line = new QLabel(QStringLiteral("This PDF is password-protected. Enter the password to continue."), this);

    m_passwordField->setObjectName(QStringLiteral("password"));
    m_passwordField->setAccessibleName(QStringLiteral("Password"));
    m_passwordField->setPlaceholderText(QStringLiteral("Password"));
    m_passwordField->setEchoMode(QLineEdit::Password);
    m_passwordField->setFixedWidth(280);
    m_wrongPasswordLine->setTextFormat(Qt::PlainText);
    m_wrongPasswordLine->setObjectName(QStringLiteral("wrongPassword"));
    // Keeps its place, so that nothing moves under the pointer when it appears.
    QSizePolicy policy = m_wrongPasswordLine->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_wrongPasswordLine->setSizePolicy(policy);
    m_wrongPasswordLine->hide();

    auto* unlockButton = new QPushButton(QStringLiteral("Unlock"), this);
    unlockButton->setObjectName(QStringLiteral("unlock"));
    unlockButton->setAccessibleName(unlockButton->text());
    unlockButton->setDefault(true);
    auto* cancelButton = new QPushButton(QStringLiteral("Cancel"), this);
    cancelButton->setObjectName(QStringLiteral("cancel"));
    cancelButton->setAccessibleName(cancelButton->text());

    auto* symbol = new SymbolPicture(QStringLiteral("lock.doc"), 64, this);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancelButton);
    buttons->addWidget(unlockButton);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(12);
    layout->addStretch(2);
    for (QWidget* part : std::initializer_list<QWidget*>{symbol, heading, line, m_passwordField, m_wrongPasswordLine})
        layout->addWidget(part, 0, Qt::AlignHCenter);
    layout->addLayout(buttons);
    layout->addStretch(3);
    setTabOrder(m_passwordField, unlockButton);
    setTabOrder(unlockButton, cancelButton);
    setFocusProxy(m_passwordField);

    connect(m_passwordField, &QLineEdit::returnPressed, this, &UnlockDocumentView::unlock);
    connect(unlockButton, &QPushButton::clicked, this, &UnlockDocumentView::unlock);
    connect(cancelButton, &QPushButton::clicked, this, &UnlockDocumentView::closeRequested);
}

UnlockDocumentView::~UnlockDocumentView() = default;

void UnlockDocumentView::unlock() {
    QString failure = QStringLiteral("That password didn't work.");
    try {
        if (m_document->pdfDocument()->unlock(m_passwordField->text())) {
            Q_EMIT m_document->objectWillChange();
            return;
        }
    } catch (...) { // the right password to a damaged file
        failure = sentenceOfCurrentError("unlocking");
    }
    m_wrongPassword = true;
    m_wrongPasswordLine->setText(failure);
    m_wrongPasswordLine->show();
    m_passwordField->setFocus();
    m_passwordField->selectAll();
    QAccessibleEvent alert(m_wrongPasswordLine, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void UnlockDocumentView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel))
        Q_EMIT closeRequested();
    else
        QWidget::keyPressEvent(event);
}
