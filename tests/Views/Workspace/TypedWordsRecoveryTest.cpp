#include "DocumentRecovery.h"
#include "FormFixture.h"
#include "NoteAnnotation.h"
#include "PDFFormField.h"
#include "PDFSelection.h"
#include "RecoveryRecord.h"
#include "RecoveryStore.h"
#include "UndoManager.h"
#include "WorkspaceTest.h"

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QSignalSpy>

using namespace std::chrono_literals;

namespace {

constexpr int timeLimitInMilliseconds = 60'000;
const QRectF noteBounds(400, 200, 120, 80);

/// What a crash leaves of words that stand in an editor over the page, which begins with a click.
class TypedWordsRecoveryTest : public WorkspaceTest {
protected:
    void SetUp() override {
        RecoveryPace pace;
        pace.afterChange = pace.betweenWrites = pace.longestBetweenWrites = 5ms;
        m_recovery = std::make_unique<DocumentRecovery>(m_controller, m_records, pace);
        m_document = opened(written(FormFixture::bytes(), QStringLiteral("form.pdf")));
        ASSERT_TRUE(m_document);
        const auto note = std::make_shared<NoteAnnotation>(noteBounds); // as it is after a save
        note->setContents(QStringLiteral("old words"));
        m_document->pdfDocument()->page(0)->addAnnotation(note);
        showWorkspace();
    }

    void click(QPointF onPage, bool isDouble) const {
        const auto page = m_document->pdfDocument()->page(0);
        m_view->reveal(*page->annotations().back());
        const QPoint point = m_view->convertFromPage(onPage, *page).toPoint();
        QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, point);
        if (isDouble)
            QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {}, point);
        QCoreApplication::processEvents();
    }

    /// What one page holds in words, those of text boxes, notes and the field "Your name".
    static QString words(const PDFDocument& document) {
        QStringList words;
        for (const auto& annotation : document.page(0)->annotations()) {
            const auto field = PDFFormField::of(annotation);
            if (field && annotation->bounds() == FormFixture::name)
                words.prepend(field->value().join(u','));
            else if (!field && annotation->type() != QStringLiteral("Link"))
                words.append(annotation->type() + u':' + annotation->contents());
        }
        return words.join(u'|');
    }

    const QString m_records = m_folder.filePath(QStringLiteral("recovery"));
    std::unique_ptr<DocumentRecovery> m_recovery;
};

TEST_F(TypedWordsRecoveryTest, theWordsComeBackWhereTheyWouldHaveGone) {
    const auto page = m_document->pdfDocument()->page(0);
    const QPointF line = page->selectAll()->bounds(*page).center();
    // Where is clicked, with which tool, and what is recovered once "half" has been typed.
    const std::tuple<QPointF, AnnotationTool, const char*> places[] = {
        {FormFixture::name.center(), AnnotationTool::select, "half|Text:old words"},
        {noteBounds.center(), AnnotationTool::select, "|Text:half"},
        {{80, 250}, AnnotationTool::textBox, "|Text:old words|FreeText:half"},
        {line, AnnotationTool::select, "|Text:old words|Square:|FreeText:half"},
    };
    for (const auto& [place, tool, recovered] : places) {
        SCOPED_TRACE(recovered);
        QSignalSpy recorded(m_recovery.get(), &DocumentRecovery::written);
        m_toolState->setTool(tool);
        m_toolState->setTextEditingModeEnabled(place == line);
        click(place, place == noteBounds.center());
        ASSERT_TRUE(m_document->isBeingTyped());
        QTest::qWait(30);
        EXPECT_TRUE(QDir(m_records).isEmpty()) << "an open editor alone is no change";
        QWidget* const editor = QApplication::focusWidget();
        QTest::keyClicks(editor, QStringLiteral("half"));
        QTest::keyClick(editor, Qt::Key_Left);
        ASSERT_TRUE(recorded.wait(timeLimitInMilliseconds));
        Q_EMIT m_controller.sessionWillEnd(); // all that was typed is recorded now

        // The editor goes on where it was, and nothing can be undone but in it.
        EXPECT_EQ(QApplication::focusWidget(), editor);
        EXPECT_FALSE(m_document->isDocumentEdited());
        EXPECT_FALSE(m_document->undoManager()->canUndo());
        // As it is on the disk, which a copy shows while the living has the record.
        const QString crashed = m_folder.filePath(QStringLiteral("crashed"));
        ASSERT_EQ(QProcess::execute(QStringLiteral("cp"), {QStringLiteral("-rT"), m_records, crashed}), 0);
        const auto lost = RecoveryStore::takeLost(crashed, QDateTime::currentDateTime());
        ASSERT_EQ(lost.size(), 1U);
        EXPECT_EQ(words(*PDFDocument::fromData(lost[0]->bytes())).toStdString(), recovered);
        lost[0]->remove();

        // Given up: the record goes.
        QTest::keyClick(editor, Qt::Key_Escape);
        EXPECT_TRUE(QTest::qWaitFor([this] { return QDir(m_records).isEmpty(); }, timeLimitInMilliseconds));
        EXPECT_EQ(words(*m_document->pdfDocument()).toStdString(), "|Text:old words");
    }
}

} // namespace
