#include "RecoveryWindow.h"

#include "RecoveryRow.h"
#include "ViewTest.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>

namespace {

LostDocument lost(const QString& id, const QString& path, LostDocument::Original original, int pageCount) {
    LostDocument document;
    document.id = id;
    document.description.displayName = path.isEmpty() ? QStringLiteral("Untitled 2") : QFileInfo(path).fileName();
    document.description.originalPath = path;
    document.description.writeTime = QDateTime::currentDateTime().addSecs(-130);
    document.description.pageCount = pageCount;
    document.original = original;
    return document;
}

class RecoveryWindowTest : public ViewTest {
protected:
    void SetUp() override {
        LostDocument pictured =
            lost(QStringLiteral("a"), QStringLiteral("/home/me/Plans/plan.pdf"), LostDocument::Original::unchanged, 12);
        pictured.picture = QImage(20, 30, QImage::Format_RGB32);
        pictured.picture.fill(Qt::blue);
        m_window = std::make_unique<RecoveryWindow>(std::vector<LostDocument>{
            pictured,
            lost(QStringLiteral("b"), QStringLiteral("/home/me/<b>bold.pdf"), LostDocument::Original::changed, 1),
            lost(QStringLiteral("c"), QStringLiteral("/home/me/gone.pdf"), LostDocument::Original::missing, 3),
            lost(QStringLiteral("d"), {}, LostDocument::Original::none, 2)});
        connect();
        m_window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
    }

    void connect() {
        QObject::connect(m_window.get(), &RecoveryWindow::recoverRequested, m_window.get(),
                         [this](const QString& id) { m_recovered += id; });
        QObject::connect(m_window.get(), &RecoveryWindow::deleteRequested, m_window.get(), [this](const QString& id) {
            m_deleted += id;
            m_window->removeDocument(id);
        });
    }

    RecoveryRow* row(const QString& id) const {
        for (RecoveryRow* each : m_window->findChildren<RecoveryRow*>()) {
            if (each->document().id == id && each->isVisible())
                return each;
        }
        return nullptr;
    }

    QString text(const QString& id, const QString& label) const {
        const auto* found = find<QLabel>(*row(id), label);
        return found && found->isVisible() ? found->text() : QString();
    }

    void click(const QWidget& parent, const QString& button) const {
        QTest::mouseClick(find<QPushButton>(parent, button), Qt::LeftButton);
    }

    /// Answers the question that is shown with its button of that name.
    void answer(const QString& button) {
        auto* question = find<QMessageBox>(*m_window, QStringLiteral("deleteQuestion"));
        ASSERT_TRUE(QTest::qWaitForWindowActive(question));
        click(*question, button);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    std::unique_ptr<RecoveryWindow> m_window;
    QString m_recovered;
    QString m_deleted;
};

TEST_F(RecoveryWindowTest, tellsWhatIsKnownOfEachDocument) {
    EXPECT_EQ(text(QStringLiteral("a"), QStringLiteral("name")), QStringLiteral("plan.pdf"));
    EXPECT_EQ(text(QStringLiteral("a"), QStringLiteral("place")), QStringLiteral("/home/me/Plans"));
    EXPECT_EQ(text(QStringLiteral("a"), QStringLiteral("facts")), QStringLiteral("2 min. ago · 12 pages"));
    EXPECT_EQ(text(QStringLiteral("a"), QStringLiteral("notice")), QString());
    EXPECT_EQ(text(QStringLiteral("b"), QStringLiteral("name")), QStringLiteral("<b>bold.pdf"));
    EXPECT_TRUE(text(QStringLiteral("b"), QStringLiteral("facts")).endsWith(QStringLiteral("1 page")));
    EXPECT_TRUE(text(QStringLiteral("b"), QStringLiteral("notice")).contains(QStringLiteral("has changed since")));
    EXPECT_TRUE(text(QStringLiteral("c"), QStringLiteral("notice")).contains(QStringLiteral("is gone")));
    EXPECT_EQ(text(QStringLiteral("d"), QStringLiteral("place")), QStringLiteral("It has never been saved."));

    const QImage shown = find<QLabel>(*row(QStringLiteral("a")), QStringLiteral("picture"))->grab().toImage();
    EXPECT_EQ(shown.pixelColor(shown.rect().center()), QColor(Qt::blue));
    const QImage paper = find<QLabel>(*row(QStringLiteral("d")), QStringLiteral("picture"))->grab().toImage();
    EXPECT_EQ(paper.pixelColor(paper.rect().center()), QColor(Qt::white));
    for (const QWidget* widget : m_window->findChildren<QPushButton*>())
        EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->objectName().toStdString();
}

TEST_F(RecoveryWindowTest, recoversOneOnceAndClosesWithTheLast) {
    QSignalSpy finished(m_window.get(), &QDialog::finished);
    click(*row(QStringLiteral("b")), QStringLiteral("recover"));
    click(*row(QStringLiteral("b")), QStringLiteral("recover"));
    click(*row(QStringLiteral("b")), QStringLiteral("delete"));
    EXPECT_EQ(m_recovered, QStringLiteral("b")) << "it is being recovered";
    EXPECT_EQ(m_window->findChild<QMessageBox*>(), nullptr);
    m_window->removeDocument(QStringLiteral("b"));
    EXPECT_EQ(row(QStringLiteral("b")), nullptr);

    // Return does what the window is for, and leaves out what can't be recovered.
    m_window->showFailure(QStringLiteral("c"), QStringLiteral("It is damaged."));
    QTest::keyClick(m_window.get(), Qt::Key_Return);
    EXPECT_EQ(m_recovered, QStringLiteral("bda"));
    m_window->removeDocument(QStringLiteral("a"));
    m_window->removeDocument(QStringLiteral("d"));
    EXPECT_EQ(text(QStringLiteral("c"), QStringLiteral("notice")),
              QStringLiteral("It can't be recovered. It is damaged."));
    EXPECT_FALSE(find<QPushButton>(*row(QStringLiteral("c")), QStringLiteral("recover"))->isEnabled());
    EXPECT_FALSE(find<QPushButton>(*m_window, QStringLiteral("recoverAll"))->isEnabled());
    EXPECT_EQ(finished.size(), 0);
    click(*row(QStringLiteral("c")), QStringLiteral("delete"));
    answer(QStringLiteral("confirmDelete"));
    EXPECT_EQ(m_deleted, QStringLiteral("c"));
    EXPECT_EQ(finished.size(), 1);
    EXPECT_FALSE(m_window->isVisible());
}

TEST_F(RecoveryWindowTest, deletesAfterAQuestionOnly) {
    click(*row(QStringLiteral("a")), QStringLiteral("delete"));
    answer(QStringLiteral("cancelDelete"));
    EXPECT_TRUE(m_deleted.isEmpty());
    click(*m_window, QStringLiteral("deleteAll"));
    QTest::keyClick(find<QMessageBox>(*m_window, QStringLiteral("deleteQuestion")), Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(m_deleted.isEmpty());

    click(*row(QStringLiteral("b")), QStringLiteral("recover"));
    click(*m_window, QStringLiteral("deleteAll"));
    answer(QStringLiteral("confirmDelete"));
    EXPECT_EQ(m_deleted, QStringLiteral("acd")) << "not the one that is being recovered";
}

TEST_F(RecoveryWindowTest, closingDecidesNothing) {
    QSignalSpy finished(m_window.get(), &QDialog::finished);
    click(*m_window, QStringLiteral("notNow"));
    EXPECT_EQ(finished.size(), 1);
    EXPECT_TRUE(m_recovered.isEmpty() && m_deleted.isEmpty());
}

} // namespace
