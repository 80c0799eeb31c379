#include "PointSizeField.h"

#include "ViewTest.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QVBoxLayout>

class PointSizeFieldTest : public ViewTest {
protected:
    void SetUp() override {
        m_field = new PointSizeField({1, 30, 1}, QStringLiteral("Stroke width"));
        m_other = new QLineEdit;
        auto* layout = new QVBoxLayout(&m_window);
        layout->addWidget(m_field);
        layout->addWidget(m_other);
        show(m_window);
    }

    void type(const char* text) {
        m_field->setFocus();
        m_field->selectAll();
        QTest::keyClick(m_field, Qt::Key_Backspace);
        QTest::keyClicks(m_field, QLatin1String(text));
    }

    QWidget m_window;
    PointSizeField* m_field = nullptr;
    QLineEdit* m_other = nullptr;
};

TEST_F(PointSizeFieldTest, aNumberAboveZeroIsMovedIntoTheRangeAndAllElseGivesWay) {
    const struct {
        const char* typed;
        double value;
        const char* shown;
        int commits;
    } cases[] = {
        {"12", 12, "12", 1},    {"99", 30, "30", 1},      {"0.5", 1, "1", 1}, {"2.5", 2.5, "2.5", 1},
        {"2,5", 2.5, "2.5", 1}, {"7.26", 7.26, "7.3", 1}, {"3.0", 3, "3", 1}, {"inf", 30, "30", 1},
        {" 6 ", 6, "6", 1},     {"0", 4, "4", 0},         {"-3", 4, "4", 0},  {"two", 4, "4", 0},
        {"", 4, "4", 0},        {"nan", 4, "4", 0},
    };
    for (const auto& each : cases) {
        for (const bool byReturn : {true, false}) {
            m_other->setFocus();
            m_field->setValue(4);
            const QSignalSpy committed(m_field, &PointSizeField::committed);
            type(each.typed);
            if (byReturn)
                QTest::keyClick(m_field, Qt::Key_Return);
            m_other->setFocus();
            EXPECT_EQ(m_field->text(), QLatin1String(each.shown)) << each.typed;
            EXPECT_DOUBLE_EQ(m_field->value(), each.value) << each.typed;
            EXPECT_EQ(committed.count(), each.commits) << each.typed;
        }
    }
}

TEST_F(PointSizeFieldTest, arrowsStepWithinTheRangeAndWhatIsTypedCountsFirst) {
    PointSizeField eraser({4, 100, 2}, QStringLiteral("Eraser size"));
    show(eraser);
    eraser.setFocus();
    QTest::keyClick(&eraser, Qt::Key_Up);
    EXPECT_EQ(eraser.value(), 6);
    for (int i = 0; i < 4; ++i)
        QTest::keyClick(&eraser, Qt::Key_Down);
    EXPECT_EQ(eraser.value(), 4);
    QTest::mouseClick(&eraser, Qt::LeftButton, {}, QPoint(eraser.width() - 6, 5));
    EXPECT_EQ(eraser.value(), 6) << "The upper arrow.";
    eraser.selectAll();
    QTest::keyClicks(&eraser, QStringLiteral("99"));
    QTest::keyClick(&eraser, Qt::Key_Up);
    EXPECT_EQ(eraser.value(), 100);
    EXPECT_EQ(eraser.text(), QStringLiteral("100"));
}

TEST_F(PointSizeFieldTest, escapeTakesBackAndLeavingUntouchedCommitsNothing) {
    m_field->setValue(2.04);
    const QSignalSpy committed(m_field, &PointSizeField::committed);
    m_field->setFocus();
    m_other->setFocus();
    EXPECT_EQ(m_field->value(), 2.04) << "The shown text has fewer digits than the value.";
    type("9");
    QTest::keyClick(m_field, Qt::Key_Escape);
    m_other->setFocus();
    EXPECT_EQ(m_field->value(), 2.04);
    EXPECT_EQ(committed.count(), 0);
}
