#include "SignaturePickerView.h"

#include "SignaturePadSheet.h"
#include "SignatureStore.h"
#include "SignatureTile.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

static constexpr int columns = 3;
static constexpr int mostVisibleRows = 4;
static constexpr int margin = 14;
static constexpr int spacing = 10;

SignaturePickerView::SignaturePickerView(std::shared_ptr<SignatureStore> store, QWidget* parent)
    : QFrame(parent, Qt::Popup), m_store(std::move(store)),
      m_none(new QLabel(QStringLiteral("No saved signatures yet."))), m_scrollArea(new QScrollArea),
      m_new(new QPushButton(QStringLiteral("New Signature…"))) {
    setObjectName(QStringLiteral("signaturePicker"));
    setAccessibleName(QStringLiteral("Signatures"));
    setFrameShape(QFrame::StyledPanel);
    setAttribute(Qt::WA_DeleteOnClose);
    // The click that closes it must not place a signature as well.
    setAttribute(Qt::WA_NoMouseReplay);

    auto* heading = new QLabel(QStringLiteral("Signatures"));
    QFont font = heading->font();
    font.setBold(true);
    heading->setFont(font);
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setFocusPolicy(Qt::NoFocus);
    m_scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_new->setObjectName(QStringLiteral("newSignature"));
    m_new->setAccessibleName(m_new->text());
    m_new->setAutoDefault(true);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(spacing);
    layout->addWidget(heading);
    layout->addWidget(m_none);
    layout->addWidget(m_scrollArea);
    layout->addWidget(m_new);
    connect(m_new, &QPushButton::clicked, this, &SignaturePickerView::newSignature);
    connect(m_store.get(), &SignatureStore::signaturesChanged, this, &SignaturePickerView::showSignatures);
    showSignatures();
}

SignaturePickerView::~SignaturePickerView() = default;

void SignaturePickerView::showSignatures() {
    const auto& signatures = m_store->signatures();
    auto* content = new QWidget;
    auto* grid = new QGridLayout(content);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(spacing);
    for (std::size_t i = 0; i < signatures.size(); ++i) {
        const int index = static_cast<int>(i);
        const QUuid id = signatures[i].id;
        auto* tile = new SignatureTile(signatures[i].image(), index + 1);
        tile->setChecked(m_store->activeID() == id);
        grid->addWidget(tile, index / columns, index % columns);
        connect(tile, &SignatureTile::clicked, this, [this, id] {
            m_store->setActiveID(id);
            close();
        });
        connect(tile, &SignatureTile::deleteRequested, this, [this, id] { m_store->remove(id); });
    }
    // The request to delete comes from within one of the former tiles.
    if (QWidget* former = m_scrollArea->takeWidget()) {
        former->hide();
        former->deleteLater();
    }
    m_scrollArea->setWidget(content);
    const int count = static_cast<int>(signatures.size());
    const QSize size = content->sizeHint();
    const int rows = (count + columns - 1) / columns;
    const bool scrolls = rows > mostVisibleRows;
    const int rowHeight = rows > 0 ? (size.height() + spacing) / rows : 0;
    m_scrollArea->setFixedSize(size.width() + (scrolls ? m_scrollArea->verticalScrollBar()->sizeHint().width() : 0),
                               std::max(0, std::min(rows, mostVisibleRows) * rowHeight - spacing));
    m_none->setVisible(signatures.empty());
    m_scrollArea->setVisible(!signatures.empty());
    adjustSize();
    m_new->setFocus();
}

void SignaturePickerView::popUp(const QWidget& anchor) {
    adjustSize();
    const QPoint below = anchor.mapToGlobal(QPoint(0, anchor.height() + 2));
    const QRect available = anchor.screen()->availableGeometry();
    move(std::clamp(below.x(), available.left(), std::max(available.left(), available.right() + 1 - width())),
         std::clamp(below.y(), available.top(), std::max(available.top(), available.bottom() + 1 - height())));
    show();
    m_new->setFocus();
}

void SignaturePickerView::newSignature() {
    auto* sheet = new SignaturePadSheet(m_store, parentWidget()->window());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    close();
    sheet->open();
}
