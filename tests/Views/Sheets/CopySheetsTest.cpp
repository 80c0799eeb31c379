#include "CompressPDFSheetView.h"
#include "SavePanel.h"
#include "SetPasswordSheetView.h"
#include "SidebarTest.h"

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>

class CopySheetsTest : public SidebarTest {
protected:
    /// Chooses the command in the sidebar's menu; the sheet that comes up.
    template <typename Sheet>
    QPointer<Sheet> opened(const QString& command) const {
        find<QAction>(command)->trigger();
        auto* sheet = m_workspace->findChild<Sheet*>();
        EXPECT_TRUE(sheet && sheet->isVisible());
        return sheet;
    }
    template <typename Type>
    Type* find(const QString& name) const {
        return m_sidebar->findChild<Type*>(name);
    }
    static void press(const QWidget& sheet, const QString& name) {
        QTest::mouseClick(SidebarTest::find<QPushButton>(sheet, name), Qt::LeftButton);
    }
    template <typename Sheet>
    static bool goes(const QPointer<Sheet>& sheet) {
        return QTest::qWaitFor([&sheet] { return sheet.isNull(); });
    }
};

TEST_F(CopySheetsTest, aPasswordThatIsTypedTwiceProtectsACopy) {
    openPages(3);
    EXPECT_FALSE(find<QAction>(QStringLiteral("removePassword"))->isEnabled());
    const auto sheet = opened<SetPasswordSheetView>(QStringLiteral("setPassword"));
    ASSERT_TRUE(sheet);
    auto* password = SidebarTest::find<QLineEdit>(*sheet, QStringLiteral("password"));
    auto* again = SidebarTest::find<QLineEdit>(*sheet, QStringLiteral("confirmPassword"));
    const auto* mismatch = SidebarTest::find<QLabel>(*sheet, QStringLiteral("mismatch"));
    const struct {
        QString password;
        QString again;
        bool tellsMismatch;
        bool canSave;
    } cases[] = {{{}, {}, false, false},
                 {QStringLiteral("pa"), {}, false, false},
                 {QStringLiteral("pa"), QStringLiteral("p"), true, false},
                 {QStringLiteral("pa"), QStringLiteral("pa"), false, true},
                 {QString(128, u'x'), QString(128, u'x'), false, true}};
    for (const auto& each : cases) {
        password->setText(each.password);
        again->setText(each.again);
        EXPECT_EQ(mismatch->isVisible(), each.tellsMismatch);
        EXPECT_EQ(sheet->canSave(), each.canSave);
        EXPECT_EQ(SidebarTest::find<QPushButton>(*sheet, QStringLiteral("makeCopy"))->isEnabled(), each.canSave);
    }
    press(*sheet, QStringLiteral("makeCopy"));
    EXPECT_TRUE(sheet->errorMessage().startsWith(QStringLiteral("That password is too long")));
    password->setText(QStringLiteral("pass"));
    again->setText(QStringLiteral("pass"));
    EXPECT_EQ(sheet->errorMessage(), QString());
    choose(QStringLiteral("savePanel"), {QStringLiteral("/sys/copy.pdf")});
    press(*sheet, QStringLiteral("makeCopy"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !sheet->errorMessage().isEmpty(); }));
    EXPECT_EQ(sheet->errorMessage(), QStringLiteral("Couldn't write the encrypted copy to that location."));

    // The document's own file is refused, by whichever name.
    const QString link = path(QStringLiteral("link.pdf"));
    ASSERT_TRUE(QFile::link(m_document->fileURL().toLocalFile(), link));
    const QByteArray before = TestPdf{.pageCount = 3}.bytes();
    QString suggested;
    answer<QFileDialog>(QStringLiteral("savePanel"), [&](QFileDialog& panel) {
        suggested = panel.selectedFiles().value(0);
        answer<QMessageBox>(QStringLiteral("ownFileRefusal"), [&](QMessageBox& box) {
            choose(QStringLiteral("savePanel"), {path(QStringLiteral("copy 2.1"))});
            box.accept();
        });
        accept(panel, link);
    });
    press(*sheet, QStringLiteral("makeCopy"));
    EXPECT_TRUE(goes(sheet)) << (sheet ? sheet->errorMessage().toStdString() : "");
    EXPECT_EQ(suggested, path(QStringLiteral("paper (Protected).pdf")));
    const auto copy = PDFDocument::fromFile(path(QStringLiteral("copy 2.1.pdf")));
    EXPECT_TRUE(copy->isLocked() && copy->unlock(QStringLiteral("pass")));
    EXPECT_EQ(order(*copy), QStringLiteral("123"));
    EXPECT_FALSE(m_document->isDocumentEdited() || m_document->pdfDocument()->isEncrypted());
    EXPECT_EQ(PDFDocument::fromFile(link)->dataRepresentation(), before);
}

TEST_F(CopySheetsTest, theCopyOfAProtectedDocumentIsOpen) {
    m_document = ViewTest::opened(
        TestPdf{.pageCount = 2, .password = "secret"}.write(m_folder.path(), QStringLiteral("locked.pdf")));
    ASSERT_TRUE(m_document->pdfDocument()->unlock(QStringLiteral("secret")));
    showWorkspace();
    adopt();
    const QString name = QStringLiteral("copies/locked (Unlocked).pdf");
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("copies")));
    SavePanel::rememberIn(m_defaults);
    EXPECT_TRUE(find<QAction>(QStringLiteral("removePassword"))->isEnabled());
    choose(QStringLiteral("savePanel"), {path(name)});
    m_sidebar->removePassword();
    EXPECT_EQ(alert(), "Password Removed: Saved an unprotected copy to locked (Unlocked).pdf.");
    EXPECT_FALSE(PDFDocument::fromFile(path(name))->isEncrypted());
    EXPECT_EQ(order(path(name)), QStringLiteral("12"));
    // The next start of the program begins where the last copy went.
    m_defaults.synchronize();
    UserDefaults next(m_defaults.filePath());
    SavePanel::rememberIn(next);
    answer<QFileDialog>(QStringLiteral("savePanel"), [this](QFileDialog& panel) {
        EXPECT_EQ(panel.directory().path(), path(QStringLiteral("copies")));
        panel.reject();
    });
    m_sidebar->removePassword();
    choose(QStringLiteral("savePanel"), {QStringLiteral("/sys/copy.pdf")});
    m_sidebar->removePassword();
    EXPECT_EQ(alert(), "Couldn't Save: The unlocked copy couldn't be written to that location.");
}

TEST_F(CopySheetsTest, theDocumentIsCompressedIntoACopy) {
    openPages(40);
    const auto sheet = opened<CompressPDFSheetView>(QStringLiteral("compressDocument"));
    ASSERT_TRUE(sheet);
    EXPECT_EQ(sheet->quality(), PDFCompressor::Quality::better);
    const auto* size = SidebarTest::find<QLabel>(*sheet, QStringLiteral("size1"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return size->text().startsWith(QStringLiteral("About ")); }));
    EXPECT_TRUE(size->text().contains(QStringLiteral(" (now "))) << size->text().toStdString();
    EXPECT_EQ(SidebarTest::find<QLabel>(*sheet, QStringLiteral("growthWarning"))->text(),
              QStringLiteral("At this quality the copy would be larger than the document."));

    // Cancel stops the work first.
    const auto* progress = SidebarTest::find<QWidget>(*sheet, QStringLiteral("progress"));
    press(*sheet, QStringLiteral("makeCopy"));
    EXPECT_TRUE(progress->isVisible());
    press(*sheet, QStringLiteral("cancel"));
    EXPECT_FALSE(progress->isVisible());

    SidebarTest::find<QRadioButton>(*sheet, QStringLiteral("quality0"))->click();
    choose(QStringLiteral("savePanel"), {QStringLiteral("/sys/copy.pdf")});
    press(*sheet, QStringLiteral("makeCopy"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !sheet->errorMessage().isEmpty(); }));
    EXPECT_EQ(sheet->errorMessage(), QStringLiteral("Couldn't write the compressed copy to that location."));
    EXPECT_EQ(SidebarTest::find<QLabel>(*sheet, QStringLiteral("progressText"))->text(), QStringLiteral("Saving…"));
    // The copy is there already and only wants another place.
    answer<QFileDialog>(QStringLiteral("savePanel"), [](QFileDialog& panel) { static_cast<QDialog&>(panel).accept(); });
    press(*sheet, QStringLiteral("makeCopy"));
    EXPECT_TRUE(goes(sheet));
    const auto copy = PDFDocument::fromFile(path(QStringLiteral("paper (Compressed).pdf")));
    EXPECT_EQ(copy->pageCount(), 40);
    EXPECT_FALSE(m_document->isDocumentEdited());
    EXPECT_EQ(m_document->pdfDocument()->page(0)->string().trimmed(), QStringLiteral("Page 1"));
}

TEST_F(CopySheetsTest, aFileThatIsThereIsReplacedOnlyAfterAQuestion) {
    QFile file(path(QStringLiteral("copy.pdf")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    for (const bool replaces : {true, false}) {
        answer<QFileDialog>(QStringLiteral("savePanel"), [replaces](QFileDialog& panel) {
            answer<QMessageBox>(QStringLiteral("replaceQuestion"), [replaces](QMessageBox& question) {
                if (!replaces) // which leads back to the panel
                    answer<QDialog>(QStringLiteral("savePanel"), [](QDialog& again) { again.reject(); });
                const QString pressed = replaces ? QStringLiteral("Replace") : QStringLiteral("Cancel");
                for (QAbstractButton* button : question.buttons()) {
                    if (button->text() == pressed)
                        button->click();
                }
            });
            accept(panel, QStringLiteral("copy"));
        });
        EXPECT_EQ(SavePanel::choose(nullptr, path(QStringLiteral("paper.pdf"))),
                  replaces ? std::optional(file.fileName()) : std::nullopt);
    }
}
