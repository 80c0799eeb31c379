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
    static QStringList schemes() { return {u"http"_qs, u"https"_qs, u"mailto"_qs, u"file"_qs}; }
};

} // namespace

class WebLinkTest : public ViewTest {
protected:
    void SetUp() override {
        ViewTest::SetUp();
        show(m_window);
    }

    QDialog* confirmation() const { return m_window.findChild<QDialog*>(u"webLinkConfirmation"_qs); }

    QWidget m_window;
    Desktop m_desktop;
};

TEST_F(WebLinkTest, onlyTheUsersYesOpensTheAddress) {
    const QUrl address(u"https://example.org/a?q=1#part"_qs);
    for (const QString& answer : {u"cancel"_qs, u"copy"_qs, u"open"_qs}) {
        WebLink::confirmAndOpen(address, &m_window);
        ASSERT_NE(confirmation(), nullptr);
        EXPECT_EQ(find<QPlainTextEdit>(*confirmation(), u"address"_qs)->toPlainText(), address.toString());
        EXPECT_TRUE(m_desktop.taken.isEmpty());
        QTest::mouseClick(find<QPushButton>(*confirmation(), answer), Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(confirmation(), nullptr);
    }
    EXPECT_EQ(QGuiApplication::clipboard()->text(), address.toString());
    EXPECT_EQ(m_desktop.taken, QList<QUrl>{address});
}

TEST_F(WebLinkTest, lettersThatLookAlikeAreShownAsTheyAre) {
    WebLink::confirmAndOpen(QUrl(u"https://\u0435xample.org/"_qs), &m_window); // a Cyrillic letter
    ASSERT_NE(confirmation(), nullptr);
    EXPECT_EQ(find<QPlainTextEdit>(*confirmation(), u"address"_qs)->toPlainText(), u"https://xn--xample-2of.org/"_qs);
}

TEST_F(WebLinkTest, otherKindsOfAddressesGetASentence) {
    const QStringList refused = {u"file:///etc/passwd"_qs, u"javascript:alert(1)"_qs, u"smb://host/share"_qs,
                                 u"https:///nohost"_qs,    u"relative/path"_qs,       u"mailto:"_qs};
    for (const QString& address : refused) {
        EXPECT_FALSE(WebLink::canBeOpened(QUrl(address))) << address.toStdString();
        WebLink::confirmAndOpen(QUrl(address), &m_window);
        EXPECT_EQ(confirmation(), nullptr);
        auto* sentence = m_window.findChild<QMessageBox*>(u"webLinkRefusal"_qs);
        ASSERT_NE(sentence, nullptr) << address.toStdString();
        EXPECT_EQ(sentence->textFormat(), Qt::PlainText);
        sentence->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    EXPECT_TRUE(m_desktop.taken.isEmpty());
    EXPECT_TRUE(WebLink::canBeOpened(QUrl(u"mailto:ann@example.org"_qs)));
}

TEST_F(WebLinkTest, aClickOnALinkOfThePageAsks) {
    const auto document =
        opened(TestPdf{.linkAddress = "http://example.org/paper"}.write(m_folder.path(), u"linked.pdf"_qs));
    PDFEditorWorkspaceView workspace(document, document->fileURL(), std::make_shared<ToolState>(), m_defaults);
    show(workspace, {900, 1300});
    PDFView* view = workspace.pdfView();
    const QPointF place = view->convertFromPage(QPointF(300, 200), *document->pdfDocument()->page(0));
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, place.toPoint());
    auto* dialog = workspace.findChild<QDialog*>(u"webLinkConfirmation"_qs);
    ASSERT_NE(dialog, nullptr);
    QTest::mouseClick(find<QPushButton>(*dialog, u"open"_qs), Qt::LeftButton);
    EXPECT_EQ(m_desktop.taken, QList<QUrl>{QUrl(u"http://example.org/paper"_qs)});
}

#include "WebLinkTest.moc"
