#include "CopySheet.h"

#include "PlainText.h"
#include "SavePanel.h"
#include "SheetParts.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

static constexpr int textWidth = 420;

static QLabel* makeText(const QString& text) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setFixedWidth(textWidth);
    return label;
}

CopySheet::CopySheet(const QString& title, const QString& note, const QString& action, QWidget* parent)
    : QDialog(parent), m_content(new QVBoxLayout), m_error(makeText({})),
      m_action(SheetParts::button(action, QStringLiteral("makeCopy"))) {
    setAccessibleDescription(note);
    m_error->setObjectName(QStringLiteral("errorMessage"));
    m_error->hide();
    auto* cancel = SheetParts::button(QStringLiteral("Cancel"), QStringLiteral("cancel"));
    m_action->setDefault(true);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(m_action);
    QVBoxLayout* layout = SheetParts::begin(*this, title);
    m_content->setSpacing(layout->spacing());
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(makeText(note));
    layout->addLayout(m_content);
    layout->addWidget(m_error);
    layout->addLayout(buttons);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_action, &QPushButton::clicked, this, [this] { act(); });
}

CopySheet::~CopySheet() = default;

QString CopySheet::errorMessage() const {
    return m_error->text();
}

void CopySheet::setErrorMessage(const QString& message) {
    m_error->setText(PlainText::paragraphs(message));
    m_error->setVisible(!message.isEmpty());
    if (message.isEmpty())
        return;
    QAccessibleEvent alert(m_error, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void CopySheet::finish(const QString& path) {
    SavePanel::noteCopy(path);
    Q_EMIT saved(path);
    accept();
}
