#include "UnsavedDocumentsDialog.h"

#include "PlainText.h"
#include "SymbolPicture.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include <algorithm>

static constexpr int symbolSide = 44;
static constexpr int shownRows = 8; // more of them scroll
static constexpr int rowSpacing = 2;
static constexpr int listWidth = 420;

UnsavedDocumentsDialog::UnsavedDocumentsDialog(const std::vector<Entry>& documents, QWidget* parent)
    : QDialog(parent), m_list(new QListWidget(this)) {
    setObjectName(QStringLiteral("unsavedDocuments"));
    setWindowTitle(QStringLiteral("Quillo"));
    setModal(true);

    auto* symbol = new SymbolPicture(QStringLiteral("exclamationmark.triangle"), symbolSide, this);
    auto* question = new QLabel(
        QStringLiteral("%1 documents have unsaved changes. Which do you want to save?").arg(documents.size()), this);
    QFont bold = question->font();
    bold.setBold(true);
    question->setFont(bold);
    question->setWordWrap(true);
    auto* consequence = new QLabel(QStringLiteral("The changes that you don't save are lost."), this);
    consequence->setWordWrap(true);
    fillList(documents);

    auto* buttons = new QDialogButtonBox(this);
    m_save = buttons->addButton(QStringLiteral("Save"), QDialogButtonBox::AcceptRole);
    m_save->setObjectName(QStringLiteral("saveChecked"));
    m_save->setDefault(true);
    auto* discard = buttons->addButton(QStringLiteral("Discard All"), QDialogButtonBox::DestructiveRole);
    discard->setObjectName(QStringLiteral("discardAll"));
    auto* cancel = buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("cancel"));
    for (QPushButton* button : {discard, cancel})
        button->setAutoDefault(false);

    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setHorizontalSpacing(16);
    layout->setVerticalSpacing(10);
    layout->setColumnStretch(1, 1);
    layout->addWidget(symbol, 0, 0, 3, 1, Qt::AlignTop);
    layout->addWidget(question, 0, 1);
    layout->addWidget(consequence, 1, 1);
    layout->addWidget(m_list, 2, 1);
    layout->addWidget(buttons, 3, 0, 1, 2);

    connect(m_list, &QListWidget::itemChanged, this, &UnsavedDocumentsDialog::updateSaveButton);
    connect(m_save, &QPushButton::clicked, this, [this] { end(DocumentPresenter::SaveAnswer::Save); });
    connect(discard, &QPushButton::clicked, this, [this] { end(DocumentPresenter::SaveAnswer::DontSave); });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

UnsavedDocumentsDialog::~UnsavedDocumentsDialog() = default;

void UnsavedDocumentsDialog::fillList(const std::vector<Entry>& documents) {
    m_list->setObjectName(QStringLiteral("unsavedList"));
    m_list->setAccessibleName(QStringLiteral("Documents with unsaved changes"));
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setMinimumWidth(listWidth);
    m_list->setSpacing(rowSpacing);
    for (const Entry& entry : documents) {
        auto* item =
            new QListWidgetItem(PlainText::line(QStringLiteral("%1 — %2").arg(entry.name, entry.place)), m_list);
        item->setToolTip(PlainText::toolTip(entry.place));
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Checked);
    }
    m_list->setCurrentRow(0);
    const int rows = std::min(m_list->count(), shownRows);
    m_list->setFixedHeight(rows * (m_list->sizeHintForRow(0) + 2 * rowSpacing) + 2 * m_list->frameWidth());
}

std::vector<bool> UnsavedDocumentsDialog::checked() const {
    std::vector<bool> checked;
    for (int row = 0; row < m_list->count(); ++row)
        checked.push_back(m_list->item(row)->checkState() == Qt::Checked);
    return checked;
}

void UnsavedDocumentsDialog::updateSaveButton() {
    const std::vector<bool> marks = checked();
    const auto count = std::count(marks.begin(), marks.end(), true);
    m_save->setText(count == m_list->count() ? QStringLiteral("Save") : QStringLiteral("Save Selected"));
    m_save->setEnabled(count > 0);
}

void UnsavedDocumentsDialog::end(DocumentPresenter::SaveAnswer answer) {
    m_answer = answer;
    accept();
}
