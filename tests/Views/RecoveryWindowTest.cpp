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
    document.description.displayName = path.isEmpty() ? u"Untitled 2"_qs : QFileInfo(path).fileName();
    document.description.originalPath = path;
    document.description.writeTime = QDateTime::currentDateTime().addSecs(-130);
    document.description.pageCount = pageCount;
    document.original = original;
    return document;
}

class RecoveryWindowTest : public ViewTest {
protected:
    void SetUp() override {
        LostDocument pictured = lost(u"a"_qs, u"/home/me/Plans/plan.pdf"_qs, LostDocument::Original::unchanged, 12);
        pictured.picture = QImage(20, 30, QImage::Format_RGB32);
        pictured.picture.fill(Qt::blue);
        m_window = std::make_unique<RecoveryWindow>(std::vector<LostDocument>{
            pictured, lost(u"b"_qs, u"/home/me/<b>bold.pdf"_qs, LostDocument::Original::changed, 1),
            lost(u"c"_qs, u"/home/me/gone.pdf"_qs, LostDocument::Original::missing, 3),
            lost(u"d"_qs, {}, LostDocument::Original::none, 2)});
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
        auto* question = find<QMessageBox>(*m_window, u"deleteQuestion"_qs);
        ASSERT_TRUE(QTest::qWaitForWindowActive(question));
        click(*question, button);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    std::unique_ptr<RecoveryWindow> m_window;
    QString m_recovered;
    QString m_deleted;
};

TEST_F(RecoveryWindowTest, tellsWhatIsKnownOfEachDocument) {
    EXPECT_EQ(text(u"a"_qs, u"name"_qs), u"plan.pdf"_qs);
    EXPECT_EQ(text(u"a"_qs, u"place"_qs), u"/home/me/Plans"_qs);
    EXPECT_EQ(text(u"a"_qs, u"facts"_qs), u"2 min. ago · 12 pages"_qs);
    EXPECT_EQ(text(u"a"_qs, u"notice"_qs), QString());
    EXPECT_EQ(text(u"b"_qs, u"name"_qs), u"<b>bold.pdf"_qs);
    EXPECT_TRUE(text(u"b"_qs, u"facts"_qs).endsWith(u"1 page"_qs));
    EXPECT_TRUE(text(u"b"_qs, u"notice"_qs).contains(u"has changed since"_qs));
    EXPECT_TRUE(text(u"c"_qs, u"notice"_qs).contains(u"is gone"_qs));
    EXPECT_EQ(text(u"d"_qs, u"place"_qs), u"It has never been saved."_qs);

    const QImage shown = find<QLabel>(*row(u"a"_qs), u"picture"_qs)->grab().toImage();
    EXPECT_EQ(shown.pixelColor(shown.rect().center()), QColor(Qt::blue));
    const QImage paper = find<QLabel>(*row(u"d"_qs), u"picture"_qs)->grab().toImage();
    EXPECT_EQ(paper.pixelColor(paper.rect().center()), QColor(Qt::white));
    for (const QWidget* widget : m_window->findChildren<QPushButton*>())
        EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->objectName().toStdString();
}

TEST_F(RecoveryWindowTest, recoversOneOnceAndClosesWithTheLast) {
    QSignalSpy finished(m_window.get(), &QDialog::finished);
    click(*row(u"b"_qs), u"recover"_qs);
    click(*row(u"b"_qs), u"recover"_qs);
    click(*row(u"b"_qs), u"delete"_qs);
    EXPECT_EQ(m_recovered, u"b"_qs) << "it is being recovered";
    EXPECT_EQ(m_window->findChild<QMessageBox*>(), nullptr);
    m_window->removeDocument(u"b"_qs);
    EXPECT_EQ(row(u"b"_qs), nullptr);

    // Return does what the window is for, and leaves out what can't be recovered.
    m_window->showFailure(u"c"_qs, u"It is damaged."_qs);
    QTest::keyClick(m_window.get(), Qt::Key_Return);
    EXPECT_EQ(m_recovered, u"bda"_qs);
    m_window->removeDocument(u"a"_qs);
    m_window->removeDocument(u"d"_qs);
    EXPECT_EQ(text(u"c"_qs, u"notice"_qs), u"It can't be recovered. It is damaged."_qs);
    EXPECT_FALSE(find<QPushButton>(*row(u"c"_qs), u"recover"_qs)->isEnabled());
    EXPECT_FALSE(find<QPushButton>(*m_window, u"recoverAll"_qs)->isEnabled());
    EXPECT_EQ(finished.size(), 0);
    click(*row(u"c"_qs), u"delete"_qs);
    answer(u"confirmDelete"_qs);
    EXPECT_EQ(m_deleted, u"c"_qs);
    EXPECT_EQ(finished.size(), 1);
    EXPECT_FALSE(m_window->isVisible());
}

TEST_F(RecoveryWindowTest, deletesAfterAQuestionOnly) {
    click(*row(u"a"_qs), u"delete"_qs);
    answer(u"cancelDelete"_qs);
    EXPECT_TRUE(m_deleted.isEmpty());
    click(*m_window, u"deleteAll"_qs);
    QTest::keyClick(find<QMessageBox>(*m_window, u"deleteQuestion"_qs), Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(m_deleted.isEmpty());

    click(*row(u"b"_qs), u"recover"_qs);
    click(*m_window, u"deleteAll"_qs);
    answer(u"confirmDelete"_qs);
    EXPECT_EQ(m_deleted, u"acd"_qs) << "not the one that is being recovered";
}

TEST_F(RecoveryWindowTest, closingDecidesNothing) {
    QSignalSpy finished(m_window.get(), &QDialog::finished);
    click(*m_window, u"notNow"_qs);
    EXPECT_EQ(finished.size(), 1);
    EXPECT_TRUE(m_recovered.isEmpty() && m_deleted.isEmpty());
}

} // namespace
