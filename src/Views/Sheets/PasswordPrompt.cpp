#include "PasswordPrompt.h"

#include "DialogRun.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

std::optional<QString> PasswordPrompt::ask(QWidget* parent) {
    auto* dialog = new QDialog(parent);
    dialog->setObjectName(QStringLiteral("passwordPrompt"));
    dialog->setWindowTitle(QStringLiteral("Password Required"));

    auto* message = new QLabel(QStringLiteral("Password Required"), dialog);
    QFont bold = message->font();
    bold.setWeight(QFont::Bold);
    message->setFont(bold);
    auto* explanation =
        new QLabel(QStringLiteral("This PDF is password-protected. Enter the password to continue."), dialog);
    explanation->setWordWrap(true);

    auto* field = new QLineEdit(dialog);
    field->setObjectName(QStringLiteral("password"));
    field->setAccessibleName(QStringLiteral("Password"));
    field->setEchoMode(QLineEdit::Password);
    field->setMinimumWidth(260);

    auto* buttons = new QDialogButtonBox(dialog);
    auto* unlock = buttons->addButton(QStringLiteral("Unlock"), QDialogButtonBox::AcceptRole);
    unlock->setObjectName(QStringLiteral("unlock"));
    unlock->setDefault(true);
    auto* cancel = buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("cancel"));
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);

    auto* layout = new QVBoxLayout(dialog);
    for (QWidget* part : std::initializer_list<QWidget*>{message, explanation, field, buttons})
        layout->addWidget(part);
    field->setFocus();

    const DialogRun run(dialog);
    return run.isAccepted() ? std::optional(field->text()) : std::nullopt;
}
