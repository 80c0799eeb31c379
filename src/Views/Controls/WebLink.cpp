#include "WebLink.h"

#include "PlainMessage.h"
#include "PlainText.h"
#include "SymbolIcon.h"
#include "SymbolPicture.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QDialog>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QUrl>
#include <QUrlQuery>
#include <QVBoxLayout>

static constexpr int symbolSide = 44;
static constexpr qsizetype longestShown = 5'000; // a host comes within the first 300

static QString addressForReading(const QUrl& url) {
    return url.toString(QUrl::FullyEncoded);
}

static void showRefusal(const QUrl& url, QWidget* parent) {
    auto* box = new QMessageBox(parent->window());
    box->setObjectName(QStringLiteral("webLinkRefusal"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setIconPixmap(SymbolIcon::pixmap(QStringLiteral("info.circle"), symbolSide,
                                          box->palette().color(QPalette::WindowText), parent->devicePixelRatioF()));
    box->setWindowTitle(QStringLiteral("Link Not Opened"));
    PlainMessage::setText(*box, QStringLiteral("Quillo opens web and mail addresses only."),
                          QStringLiteral("This link leads to: %1").arg(addressForReading(url).left(500)));
    box->addButton(QStringLiteral("OK"), QMessageBox::AcceptRole);
    box->open();
}

/// The address, wrapped and in a few lines at most; longer ones scroll.
static QPlainTextEdit* makeAddressField(const QUrl& url, QWidget* parent) {
    auto* field = new QPlainTextEdit(PlainText::shortened(addressForReading(url), longestShown), parent);
    field->setObjectName(QStringLiteral("address"));
    field->setAccessibleName(QStringLiteral("Address"));
    field->setReadOnly(true);
    field->setTabChangesFocus(true);
    field->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    const int lineCount = qBound(2, static_cast<int>(field->toPlainText().size()) / 60 + 1, 8);
    field->setFixedHeight(lineCount * field->fontMetrics().lineSpacing() + 16);
    field->setMinimumWidth(field->fontMetrics().averageCharWidth() * 66);
    return field;
}

/// Without what would have a mail program attach a file of the reader's.
static QUrl withoutAttachments(QUrl url) {
    if (url.scheme() != QLatin1String("mailto"))
        return url;
    QUrlQuery kept;
    const auto items = QUrlQuery(url).queryItems(QUrl::FullyEncoded);
    for (const auto& [key, value] : items) {
        const QString name = QUrl::fromPercentEncoding(key.toUtf8()).trimmed();
        if (!name.startsWith(QLatin1String("attach"), Qt::CaseInsensitive))
            kept.addQueryItem(key, value);
    }
    url.setQuery(kept);
    return url;
}

bool WebLink::canBeOpened(const QUrl& url) {
    const QString scheme = url.scheme();
    if (!url.isValid())
        return false;
    if (scheme == QLatin1String("mailto"))
        return !url.path().isEmpty() || url.hasQuery();
    return (scheme == QLatin1String("http") || scheme == QLatin1String("https")) && !url.host().isEmpty();
}

void WebLink::confirmAndOpen(const QUrl& link, QWidget* parent) {
    const QUrl url = withoutAttachments(link);
    if (!canBeOpened(url)) {
        showRefusal(url, parent);
        return;
    }
    const bool isMail = url.scheme() == QLatin1String("mailto");
    auto* dialog = new QDialog(parent->window());
    dialog->setObjectName(QStringLiteral("webLinkConfirmation"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(isMail ? QStringLiteral("Write a Mail") : QStringLiteral("Open Web Address"));

    auto* symbol = new SymbolPicture(QStringLiteral("globe"), symbolSide, dialog);
    auto* question = new QLabel(isMail ? QStringLiteral("This link writes a mail to this address.")
                                       : QStringLiteral("This link opens this web address."),
                                dialog);
    auto* address = makeAddressField(url, dialog);

    auto* buttons = new QDialogButtonBox(dialog);
    auto* open = buttons->addButton(QStringLiteral("Open"), QDialogButtonBox::AcceptRole);
    open->setObjectName(QStringLiteral("open"));
    auto* cancel = buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("cancel"));
    auto* copy = buttons->addButton(QStringLiteral("Copy"), QDialogButtonBox::ActionRole);
    copy->setObjectName(QStringLiteral("copy"));
    open->setDefault(true);
    open->setFocus();

    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, [dialog, url] {
        dialog->accept();
        QDesktopServices::openUrl(url);
    });
    QObject::connect(copy, &QPushButton::clicked, dialog, [dialog, url] {
        QGuiApplication::clipboard()->setText(addressForReading(url));
        dialog->reject();
    });

    auto* column = new QVBoxLayout;
    column->addWidget(question);
    column->addWidget(address);
    column->addWidget(buttons);
    auto* layout = new QHBoxLayout(dialog);
    layout->setSpacing(16);
    layout->addWidget(symbol, 0, Qt::AlignTop);
    layout->addLayout(column);
    dialog->open();
}
