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
#include <QFile>
#include <QSignalSpy>

using namespace std::chrono_literals;

namespace {

constexpr int timeLimitInMilliseconds = 60'000;
const QRectF noteBounds(400, 200, 120, 80);
const QPointF boxCorner(80, 250);

/// What a crash leaves of words that stand in an editor over the page, which begins with a click.
class TypedWordsRecoveryTest : public WorkspaceTest {
protected:
    void SetUp() override {
        QFile file(m_folder.filePath(QStringLiteral("form.pdf")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(FormFixture::bytes());
        file.close();
        RecoveryPace pace;
        pace.afterChange = pace.betweenWrites = pace.longestBetweenWrites = 5ms;
        m_recovery = std::make_unique<DocumentRecovery>(m_controller, m_records, pace);
        m_document = opened(QUrl::fromLocalFile(file.fileName()));
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
    static QStringList words(const PDFDocument& document) {
        QStringList words;
        for (const auto& annotation : document.page(0)->annotations()) {
            const auto field = PDFFormField::of(annotation);
            if (field && annotation->bounds() == FormFixture::name)
                words.prepend(field->value().join(u','));
            else if (!field && annotation->type() != QStringLiteral("Link"))
                words.append(annotation->type() + u':' + annotation->contents());
        }
        return words;
    }

    const QString m_records = m_folder.filePath(QStringLiteral("recovery"));
    std::unique_ptr<DocumentRecovery> m_recovery;
};

struct Place {
    const char* name;
    QPointF click;
    bool isDouble;
    std::function<void(ToolState&)> choose;
    const char* recovered; ///< once "half" has been typed
};

TEST_F(TypedWordsRecoveryTest, theWordsComeBackWhereTheyWouldHaveGone) {
    const Place places[] = {
        {"field", FormFixture::name.center(), false, [](ToolState&) {}, "half|Text:old words"},
        {"note", noteBounds.center(), true, [](ToolState&) {}, "|Text:half"},
        {"text box", boxCorner, false, [](ToolState& state) { state.setTool(AnnotationTool::textBox); },
         "|Text:old words|FreeText:half"},
        {"line", m_document->pdfDocument()->page(0)->selectAll()->bounds(*m_document->pdfDocument()->page(0)).center(),
         false, [](ToolState& state) { state.setTextEditingModeEnabled(true); },
         "|Text:old words|Square:|FreeText:half"},
    };
    for (const Place& place : places) {
        SCOPED_TRACE(place.name);
        QSignalSpy written(m_recovery.get(), &DocumentRecovery::written);
        place.choose(*m_toolState);
        click(place.click, place.isDouble);
        ASSERT_TRUE(m_document->isBeingTyped());
        QTest::qWait(30);
        EXPECT_TRUE(QDir(m_records).isEmpty()) << "an open editor alone is no change";
        QWidget* const editor = QApplication::focusWidget();
        QTest::keyClicks(editor, QStringLiteral("half"));
        QTest::keyClick(editor, Qt::Key_Left);
        ASSERT_TRUE(written.wait(timeLimitInMilliseconds));
        Q_EMIT m_controller.sessionWillEnd(); // all that was typed is recorded now

        // The editor goes on where it was, and nothing can be undone but in it.
        EXPECT_EQ(QApplication::focusWidget(), editor);
        EXPECT_FALSE(m_document->isDocumentEdited());
        EXPECT_FALSE(m_document->undoManager()->canUndo());
        const QStringList ids = QDir(m_records).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        ASSERT_EQ(ids.size(), 1);
        // As it is on the disk, which a copy shows while the living has the record.
        QDir().mkpath(m_folder.filePath(QStringLiteral("crashed")));
        const QString copy = m_folder.filePath(QStringLiteral("crashed/") + ids[0]);
        QDir().mkpath(copy);
        for (const QString& name : QDir(m_records + u'/' + ids[0]).entryList(QDir::Files | QDir::Hidden))
            QFile::copy(m_records + u'/' + ids[0] + u'/' + name, copy + u'/' + name);
        const auto lost =
            RecoveryStore::takeLost(m_folder.filePath(QStringLiteral("crashed")), QDateTime::currentDateTime());
        ASSERT_EQ(lost.size(), 1U);
        EXPECT_EQ(words(*PDFDocument::fromData(lost[0]->bytes())).join(u'|').toStdString(), place.recovered);
        lost[0]->remove();

        // Given up: the record goes.
        QTest::keyClick(editor, Qt::Key_Escape);
        EXPECT_TRUE(QTest::qWaitFor([this] { return QDir(m_records).isEmpty(); }, timeLimitInMilliseconds));
        EXPECT_EQ(words(*m_document->pdfDocument()).join(u'|').toStdString(), "|Text:old words");
        m_toolState->setTextEditingModeEnabled(false);
        m_toolState->setTool(AnnotationTool::select);
    }
}

} // namespace
