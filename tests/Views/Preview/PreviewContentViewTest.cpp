#include "PreviewContentView.h"

#include "AssistantPanel.h"
#include "AssistantViewModel.h"
#include "OfficeFiles.h"
#include "PDFDocument.h"
#include "PDFView.h"
#include "ScriptedAIProvider.h"
#include "ViewTest.h"

#include <QAbstractButton>
#include <QLabel>
#include <QStackedWidget>

namespace {

class PreviewContentViewTest : public ViewTest {
protected:
    std::unique_ptr<PreviewContentView> shown(const QString& name, const QByteArray& bytes, bool isSupported) {
        const QUrl url = QUrl::fromLocalFile(OfficeFiles::write(m_folder.filePath(name), bytes));
        auto view = std::make_unique<PreviewContentView>(url, isSupported, [this](const auto& context) {
            m_contexts.push_back(context);
            return AssistantViewModel::create(context, std::make_shared<ScriptedAIProvider>());
        });
        show(*view, {900, 700});
        return view;
    }
    bool hasText() const {
        return QTest::qWaitFor([this] { return !m_contexts.empty(); }, 30'000);
    }

    std::vector<TextOnlyAssistantContext> m_contexts;
};

constexpr auto fixedSentence =
    "Quillo couldn’t extract text from this file yet — this can happen right after downloading a file, before "
    "Spotlight has finished indexing it. Try again in a moment, or ask about it visually using what’s shown in the "
    "preview.";

} // namespace

TEST_F(PreviewContentViewTest, showsThePagesAndLetsTheAssistantReadTheirWords) {
    const auto view =
        shown(QStringLiteral("novel.epub"),
              OfficeFiles::book("<html xmlns=\"http://www.w3.org/1999/xhtml\"><p>Größe und Maß</p></html>"), true);
    auto* pages = find<QStackedWidget>(*view, QStringLiteral("preview"));
    EXPECT_EQ(pages->currentWidget()->objectName(), QStringLiteral("previewProgress"));
    auto* ask = find<QAbstractButton>(*view, QStringLiteral("previewAskButton"));
    EXPECT_EQ(ask->toolTip().section(u'(', 0, 0).trimmed(), QStringLiteral("Ask the AI assistant about this document"));
    EXPECT_FALSE(find<QWidget>(*view, QStringLiteral("assistantPlace"))->isVisible());
    ask->click();
    auto* reading = find<QLabel>(*view, QStringLiteral("readingDocument"));
    EXPECT_TRUE(reading->isVisible());
    EXPECT_EQ(reading->text(), QStringLiteral("Reading document…"));

    ASSERT_TRUE(hasText());
    EXPECT_EQ(m_contexts[0].extractedText.simplified(), QStringLiteral("Größe und Maß Second back"));
    const auto* viewer = find<PDFView>(*pages, QStringLiteral("viewer"));
    ASSERT_NE(viewer, nullptr);
    EXPECT_EQ(viewer->document()->pageCount(), 2);
    EXPECT_TRUE(viewer->isVisible());
    const auto* panel = view->findChild<AssistantPanel*>();
    ASSERT_NE(panel, nullptr);
    QTest::qWait(0);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(panel->width(), PreviewContentView::panelWidth);
    panel->onClose();
    EXPECT_FALSE(panel->isVisible());
    EXPECT_FALSE(ask->isChecked());

    view->hide();
    view->show();
    QTest::qWait(100);
    EXPECT_EQ(m_contexts.size(), 1U);
}

TEST_F(PreviewContentViewTest, saysWhatKeepsAFileFromBeingShown) {
    const struct {
        const char* name;
        bool isSupported;
        const char* reason;
    } files[] = {{"a <b>.xlsx", true, "It may be damaged"}, {"a <b>.bin", false, "Quillo doesn’t support previewing"}};
    for (const auto& [name, isSupported, reason] : files) {
        m_contexts.clear();
        const auto view = shown(QString::fromUtf8(name), "junk", isSupported);
        ASSERT_TRUE(hasText());
        EXPECT_EQ(m_contexts[0].extractedText, QString::fromUtf8(fixedSentence));
        EXPECT_EQ(find<QLabel>(*view, QStringLiteral("heading"))->text(),
                  QStringLiteral("Can’t Preview “%1”").arg(QString::fromUtf8(name)));
        EXPECT_TRUE(find<QLabel>(*view, QStringLiteral("reason"))->text().startsWith(QString::fromUtf8(reason)));
        EXPECT_EQ(view->findChildren<QAbstractButton*>().isEmpty(), !isSupported);
    }
}
