#include "SetPasswordSheetView.h"

#include "CopyProtection.h"
#include "ErrorSentence.h"
#include "FrozenCopies.h"
#include "PDFDocument.h"
#include "SavePanel.h"
#include "SlowWork.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

SetPasswordSheetView::SetPasswordSheetView(std::shared_ptr<PDFDocument> pdfDocument, QString suggestedName,
                                           QWidget* parent)
    : CopySheet(QStringLiteral("Set Password"),
                QStringLiteral("Anyone opening the saved copy will need this password. This doesn't change the "
                               "document that's currently open."),
                QStringLiteral("Save Encrypted Copy…"), parent),
      m_pdfDocument(std::move(pdfDocument)), m_suggestedName(std::move(suggestedName)),
      m_password(addField(QStringLiteral("Password"), QStringLiteral("password"))),
      m_confirmPassword(addField(QStringLiteral("Confirm Password"), QStringLiteral("confirmPassword"))),
      m_mismatch(new QLabel(QStringLiteral("Passwords don't match."))) {
    setObjectName(QStringLiteral("setPasswordSheet"));
    m_mismatch->setObjectName(QStringLiteral("mismatch"));
    // Keeps its place, so that nothing moves while somebody types.
    QSizePolicy policy = m_mismatch->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_mismatch->setSizePolicy(policy);
    content().addWidget(m_mismatch);
    m_password->setFocus();
    update();
}

SetPasswordSheetView::~SetPasswordSheetView() {
    delete m_work; // which tells its end, as long as there is somebody to tell
}

QLineEdit* SetPasswordSheetView::addField(const QString& label, const QString& name) {
    auto* field = new QLineEdit;
    field->setObjectName(name);
    field->setAccessibleName(label);
    field->setPlaceholderText(label);
    field->setEchoMode(QLineEdit::Password);
    content().addWidget(field);
    connect(field, &QLineEdit::textChanged, this, [this] {
        setErrorMessage({});
        update();
    });
    return field;
}

bool SetPasswordSheetView::canSave() const {
    return !m_password->text().isEmpty() && m_password->text() == m_confirmPassword->text();
}

void SetPasswordSheetView::update() {
    m_mismatch->setVisible(!m_confirmPassword->text().isEmpty() && m_confirmPassword->text() != m_password->text());
    m_password->setEnabled(!m_isSaving);
    m_confirmPassword->setEnabled(!m_isSaving);
    actionButton().setEnabled(canSave() && !m_isSaving);
}

void SetPasswordSheetView::save() {
    if (!canSave() || m_isSaving)
        return;
    const QString password = m_password->text();
    if (const QString refusal = CopyProtection::refusal(password); !refusal.isEmpty()) {
        setErrorMessage(refusal);
        m_password->setFocus();
        return;
    }
    setErrorMessage({});
    const QPointer<SetPasswordSheetView> self(this);
    const std::optional<QString> path =
        SavePanel::chooseForCopy(this, m_suggestedName + QStringLiteral(" (Protected).pdf"));
    if (!self || !path)
        return;
    const QString failure = QStringLiteral("Couldn't write the encrypted copy to that location.");
    const auto copies = std::make_shared<FrozenCopies>();
    try {
        copies->add(*m_pdfDocument, *path, password);
    } catch (...) {
        static_cast<void>(sentenceOfCurrentError("preparing a protected copy")); // it goes to the log
        setErrorMessage(failure);
        return;
    }
    m_isSaving = true;
    update();
    m_work = SlowWork::run(
        this, QStringLiteral("Saving the protected copy…"),
        [copies](SlowWork::Course& course) {
            try {
                copies->write([&course] { return course.becomeFinal(); });
                return true;
            } catch (...) {
                static_cast<void>(sentenceOfCurrentError("writing a protected copy"));
                return false;
            }
        },
        [this, path, failure](bool isWritten) {
            if (isWritten)
                finish(*path);
            else
                setErrorMessage(failure);
        });
    connect(m_work, &QObject::destroyed, this, [this] {
        m_isSaving = false;
        update();
        m_password->setFocus();
    });
}
