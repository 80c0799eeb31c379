#include "UnsupportedFileView.h"

#include "PlainText.h"
#include "SymbolPicture.h"

#include <QLabel>
#include <QUrl>
#include <QVBoxLayout>

static constexpr int symbolSide = 48;
static constexpr int widestText = 520;

UnsupportedFileView::UnsupportedFileView(const QUrl& url, QWidget* parent)
    : UnsupportedFileView(url, QStringLiteral("Quillo doesn’t support previewing this file type yet."), parent) {}

UnsupportedFileView::UnsupportedFileView(const QUrl& url, const QString& reason, QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("unsupportedFile"));
    const QString name = PlainText::name(url.adjusted(QUrl::StripTrailingSlash).fileName());
    auto* heading = new QLabel(PlainText::paragraphs(QStringLiteral("Can’t Preview “%1”").arg(name)), this);
    heading->setObjectName(QStringLiteral("heading"));
    QFont font = heading->font();
    font.setPointSizeF(font.pointSizeF() * 1.4);
    font.setWeight(QFont::DemiBold);
    heading->setFont(font);
    auto* line = new QLabel(reason, this);
    line->setObjectName(QStringLiteral("reason"));
    auto* column = new QVBoxLayout;
    column->setSpacing(12);
    column->addStretch();
    column->addWidget(new SymbolPicture(QStringLiteral("eye.slash"), symbolSide, this), 0, Qt::AlignHCenter);
    for (QLabel* label : {heading, line}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignCenter);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        label->setMaximumWidth(widestText);
        column->addWidget(label);
    }
    column->addStretch();
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(32, 32, 32, 32);
    layout->addStretch();
    layout->addLayout(column, 1000);
    layout->addStretch();
    setAccessibleName(heading->text() + u' ' + reason);
}

UnsupportedFileView::~UnsupportedFileView() = default;
