#include "CopySheet.h"

#include "SavePanel.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

static constexpr int margin = 20;
static constexpr int spacing = 14;
static constexpr int textWidth = 420;

static QLabel* makeText(const QString& text) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setFixedWidth(textWidth);
    return label;
}

static QPushButton* makeButton(const QString& title, const QString& name) {
    auto* button = new QPushButton(title);
    button->setObjectName(name);
    button->setAccessibleName(title);
    button->setAutoDefault(false);
    return button;
}

CopySheet::CopySheet(const QString& title, const QString& note, const QString& action, QWidget* parent)
    : QDialog(parent), m_content(new QVBoxLayout), m_error(makeText({})),
      m_action(makeButton(action, QStringLiteral("makeCopy"))) {
    setWindowTitle(title);
    setAccessibleDescription(note);
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
    QLabel* heading = makeText(title);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    m_error->setObjectName(QStringLiteral("errorMessage"));
    m_error->hide();
    auto* cancel = makeButton(QStringLiteral("Cancel"), QStringLiteral("cancel"));
    m_action->setDefault(true);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(m_action);
    m_content->setSpacing(spacing);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(spacing);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(heading);
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
    m_error->setText(message);
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
