#include "RecoveryWindow.h"

#include "PlainMessage.h"
#include "RecoveryRow.h"
#include "SymbolIcon.h"

#include <QDateTime>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

static constexpr int windowWidth = 680;
static constexpr int mostVisibleRows = 4;
static constexpr int margin = 20;

RecoveryWindow::RecoveryWindow(const std::vector<LostDocument>& documents, QWidget* parent)
    : QDialog(parent), m_recoverAll(new QPushButton(QStringLiteral("Recover All"))),
      m_deleteAll(new QPushButton(QStringLiteral("Delete All"))) {
    setObjectName(QStringLiteral("recoveryWindow"));
    setWindowTitle(QStringLiteral("Recover Documents — Quillo"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(14);
    layout->addWidget(makeHeader());
    layout->addWidget(makeList(documents), 1);
    layout->addWidget(makeButtons());
    resize(windowWidth, sizeHint().height());
    updateButtons();
}

RecoveryWindow::~RecoveryWindow() = default;

QWidget* RecoveryWindow::makeHeader() const {
    auto* heading = new QLabel(QStringLiteral("Quillo ended before these changes were saved"));
    QFont font = heading->font();
    font.setPointSizeF(font.pointSizeF() * 1.25);
    font.setWeight(QFont::DemiBold);
    heading->setFont(font);
    auto* line = new QLabel(
        QStringLiteral("Recover the documents to go on with them. What you leave here is offered again at the "
                       "next start."));
    line->setWordWrap(true);
    auto* header = new QWidget;
    auto* layout = new QVBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(heading);
    layout->addWidget(line);
    return header;
}

QWidget* RecoveryWindow::makeList(const std::vector<LostDocument>& documents) {
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 6, 0, 6);
    column->setSpacing(0);
    const QDateTime now = QDateTime::currentDateTime();
    for (const LostDocument& document : documents) {
        auto* row = new RecoveryRow(document, now);
        m_rows.push_back(row);
        column->addWidget(row);
        connect(row, &RecoveryRow::recoverRequested, this, [this, row] { recover(row); });
        connect(row, &RecoveryRow::deleteRequested, this, [this, row] { askToDelete({row->document().id}); });
    }
    column->addStretch();

    auto* area = new QScrollArea;
    area->setObjectName(QStringLiteral("lostDocuments"));
    area->setAccessibleName(QStringLiteral("Documents with unsaved changes"));
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidget(content);
    int height = 2 * area->frameWidth() + 12;
    for (std::size_t i = 0; i < std::min<std::size_t>(m_rows.size(), mostVisibleRows); ++i)
        height += m_rows[i]->sizeHint().height();
    area->setMinimumHeight(height);
    return area;
}

QWidget* RecoveryWindow::makeButtons() {
    auto* later = new QPushButton(QStringLiteral("Not Now"));
    const struct {
        QPushButton* button;
        const char* name;
    } buttons[] = {{m_deleteAll, "deleteAll"}, {later, "notNow"}, {m_recoverAll, "recoverAll"}};
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    for (const auto& entry : buttons) {
        entry.button->setObjectName(QLatin1String(entry.name));
        entry.button->setAccessibleName(entry.button->text());
        entry.button->setAutoDefault(false);
        layout->addWidget(entry.button);
        if (entry.button == m_deleteAll)
            layout->addStretch();
    }
    m_recoverAll->setDefault(true);
    m_recoverAll->setFocus();
    connect(m_recoverAll, &QPushButton::clicked, this, &RecoveryWindow::recoverAll);
    connect(m_deleteAll, &QPushButton::clicked, this, [this] {
        QStringList ids;
        for (const RecoveryRow* each : m_rows)
            ids.append(each->document().id);
        askToDelete(ids);
    });
    connect(later, &QPushButton::clicked, this, &QDialog::reject);
    return row;
}

RecoveryRow* RecoveryWindow::row(const QString& id) const {
    const auto found = std::find_if(m_rows.begin(), m_rows.end(),
                                    [&id](const RecoveryRow* each) { return each->document().id == id; });
    return found == m_rows.end() ? nullptr : *found;
}

void RecoveryWindow::recover(RecoveryRow* row) {
    row->setBusy(true);
    updateButtons();
    Q_EMIT recoverRequested(row->document().id);
}

void RecoveryWindow::recoverAll() {
    // The first, which is the newest, last: it comes to the front. A row may go before the next is asked for.
    std::vector<RecoveryRow*> rows(m_rows.rbegin(), m_rows.rend());
    for (RecoveryRow* each : rows) {
        if (!each->isBusy() && !each->hasFailed())
            recover(each);
    }
}

void RecoveryWindow::askToDelete(const QStringList& ids) {
    auto* question = new QMessageBox(this);
    question->setObjectName(QStringLiteral("deleteQuestion"));
    question->setAttribute(Qt::WA_DeleteOnClose);
    question->setWindowTitle(QStringLiteral("Quillo"));
    question->setIconPixmap(SymbolIcon::pixmap(QStringLiteral("exclamationmark.triangle"), 44,
                                               palette().color(QPalette::WindowText), devicePixelRatioF()));
    PlainMessage::setText(*question,
                          ids.size() == 1
                              ? QStringLiteral("Delete the unsaved changes to “%1”?")
                                    .arg(row(ids.constFirst())->document().description.displayName)
                              : QStringLiteral("Delete the unsaved changes to all %1 documents?").arg(ids.size()),
                          QStringLiteral("They can't be recovered afterwards. Saved files stay as they are."));
    QPushButton* remove = question->addButton(QStringLiteral("Delete"), QMessageBox::DestructiveRole);
    QPushButton* cancel = question->addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    remove->setObjectName(QStringLiteral("confirmDelete"));
    cancel->setObjectName(QStringLiteral("cancelDelete"));
    question->setDefaultButton(cancel);
    question->setEscapeButton(cancel);
    connect(remove, &QPushButton::clicked, this, [this, ids] {
        for (const QString& id : ids) {
            const RecoveryRow* each = row(id);
            if (each && !each->isBusy())
                Q_EMIT deleteRequested(id);
        }
    });
    question->open();
}

void RecoveryWindow::removeDocument(const QString& id) {
    RecoveryRow* gone = row(id);
    if (!gone)
        return;
    std::erase(m_rows, gone);
    // The change may come from one of its own buttons.
    gone->hide();
    gone->deleteLater();
    updateButtons();
    if (m_rows.empty())
        accept();
}

void RecoveryWindow::showFailure(const QString& id, const QString& sentence) {
    if (RecoveryRow* failed = row(id))
        failed->setFailure(sentence);
    updateButtons();
}

void RecoveryWindow::updateButtons() {
    m_recoverAll->setEnabled(std::any_of(
        m_rows.begin(), m_rows.end(), [](const RecoveryRow* each) { return !each->isBusy() && !each->hasFailed(); }));
    m_deleteAll->setEnabled(
        std::any_of(m_rows.begin(), m_rows.end(), [](const RecoveryRow* each) { return !each->isBusy(); }));
}
