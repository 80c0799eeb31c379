#include "WebLink.h"

#include "AnnotatingPDFView.h"
#include "PDFDocument.h"
#include "PDFEditorWorkspaceView.h"
#include "PDFPage.h"
#include "ToolState.h"
#include "ViewTest.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>

namespace {

/// Stands in for the desktop's web and mail programs.
class Desktop : public QObject {
    Q_OBJECT

public:
    Desktop() {
        for (const QString& scheme : schemes())
            QDesktopServices::setUrlHandler(scheme, this, "take");
    }
    ~Desktop() override {
        for (const QString& scheme : schemes())
            QDesktopServices::unsetUrlHandler(scheme);
    }

    QList<QUrl> taken;

public Q_SLOTS:
    void take(const QUrl& url) { taken.append(url); }

private:
    static QStringList schemes() {
        return {QStringLiteral("http"), QStringLiteral("https"), QStringLiteral("mailto"), QStringLiteral("file")};
    }
};

} // namespace

class WebLinkTest : public ViewTest {
protected:
    void SetUp() override {
        ViewTest::SetUp();
        show(m_window);
    }

    QDialog* confirmation() const { return m_window.findChild<QDialog*>(QStringLiteral("webLinkConfirmation")); }

    QWidget m_window;
    Desktop m_desktop;
};

TEST_F(WebLinkTest, aHugeAddressShowsItsBeginning) {
    const QUrl address(QStringLiteral("https://example.org/") + QString(1'000'000, u'a'));
    WebLink::confirmAndOpen(address, &m_window);
    ASSERT_NE(confirmation(), nullptr);
    const QString shown = find<QPlainTextEdit>(*confirmation(), QStringLiteral("address"))->toPlainText();
    EXPECT_LE(shown.size(), 5'000);
    EXPECT_TRUE(shown.startsWith(QStringLiteral("https://example.org/a")) && shown.endsWith(u'…'));
    QTest::mouseClick(find<QPushButton>(*confirmation(), QStringLiteral("copy")), Qt::LeftButton);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), address.toString());
}

TEST_F(WebLinkTest, onlyTheUsersYesOpensTheAddress) {
    const QUrl address(QStringLiteral("https://example.org/a?q=1#part"));
    for (const QString& answer : {QStringLiteral("cancel"), QStringLiteral("copy"), QStringLiteral("open")}) {
        WebLink::confirmAndOpen(address, &m_window);
        ASSERT_NE(confirmation(), nullptr);
        EXPECT_EQ(find<QPlainTextEdit>(*confirmation(), QStringLiteral("address"))->toPlainText(), address.toString());
        EXPECT_TRUE(m_desktop.taken.isEmpty());
        QTest::mouseClick(find<QPushButton>(*confirmation(), answer), Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(confirmation(), nullptr);
    }
    EXPECT_EQ(QGuiApplication::clipboard()->text(), address.toString());
    EXPECT_EQ(m_desktop.taken, QList<QUrl>{address});
}

TEST_F(WebLinkTest, lettersThatLookAlikeAreShownAsTheyAre) {
    WebLink::confirmAndOpen(QUrl(QStringLiteral("https://\u0435xample.org/")), &m_window); // a Cyrillic letter
    ASSERT_NE(confirmation(), nullptr);
    EXPECT_EQ(find<QPlainTextEdit>(*confirmation(), QStringLiteral("address"))->toPlainText(),
              QStringLiteral("https://xn--xample-2of.org/"));
}

TEST_F(WebLinkTest, otherKindsOfAddressesGetASentence) {
    const QStringList refused = {QStringLiteral("file:///etc/passwd"), QStringLiteral("javascript:alert(1)"),
                                 QStringLiteral("smb://host/share"),   QStringLiteral("https:///nohost"),
                                 QStringLiteral("relative/path"),      QStringLiteral("mailto:")};
    for (const QString& address : refused) {
        EXPECT_FALSE(WebLink::canBeOpened(QUrl(address))) << address.toStdString();
        WebLink::confirmAndOpen(QUrl(address), &m_window);
        EXPECT_EQ(confirmation(), nullptr);
        auto* sentence = m_window.findChild<QMessageBox*>(QStringLiteral("webLinkRefusal"));
        ASSERT_NE(sentence, nullptr) << address.toStdString();
        EXPECT_EQ(sentence->textFormat(), Qt::PlainText);
        sentence->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    EXPECT_TRUE(m_desktop.taken.isEmpty());
    EXPECT_TRUE(WebLink::canBeOpened(QUrl(QStringLiteral("mailto:ann@example.org"))));
}

TEST_F(WebLinkTest, aMailTakesNoFileAlong) {
    WebLink::confirmAndOpen(
        QUrl(QStringLiteral("mailto:ann@example.org?subject=a%26b&Attach=/etc/passwd&%61ttachment=x&body=c")),
        &m_window);
    ASSERT_NE(confirmation(), nullptr);
    find<QPushButton>(*confirmation(), QStringLiteral("open"))->click();
    EXPECT_EQ(m_desktop.taken, QList<QUrl>{QUrl(QStringLiteral("mailto:ann@example.org?subject=a%26b&body=c"))});
}

TEST_F(WebLinkTest, aClickOnALinkOfThePageAsks) {
    const auto document =
        opened(TestPdf{.linkAddress = "http://example.org/paper"}.write(m_folder.path(), QStringLiteral("linked.pdf")));
    PDFEditorWorkspaceView workspace(document, document->fileURL(), std::make_shared<ToolState>(), m_defaults);
    show(workspace, {900, 1300});
    PDFView* view = workspace.pdfView();
    const QPointF place = view->convertFromPage(QPointF(300, 200), *document->pdfDocument()->page(0));
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, place.toPoint());
    auto* dialog = workspace.findChild<QDialog*>(QStringLiteral("webLinkConfirmation"));
    ASSERT_NE(dialog, nullptr);
    QTest::mouseClick(find<QPushButton>(*dialog, QStringLiteral("open")), Qt::LeftButton);
    EXPECT_EQ(m_desktop.taken, QList<QUrl>{QUrl(QStringLiteral("http://example.org/paper"))});
}

#include "WebLinkTest.moc"
