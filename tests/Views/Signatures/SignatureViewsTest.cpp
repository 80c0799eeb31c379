#include "WorkspaceTest.h"

#include "SignaturePad.h"
#include "SignaturePadSheet.h"
#include "SignaturePickerView.h"
#include "SignatureStore.h"
#include "SignatureTile.h"

#include <QLabel>
#include <QPointer>
#include <QPointingDevice>
#include <QPushButton>
#include <QTabletEvent>

class SignatureViewsTest : public WorkspaceTest {
protected:
    void SetUp() override {
        WorkspaceTest::SetUp();
        openWorkspace({});
    }

    SignatureStore& store() const { return *m_toolState->signatureStore(); }

    SignaturePickerView* openPicker() {
        press(QStringLiteral("signature"));
        auto* picker = find<SignaturePickerView>(*m_workspace, QStringLiteral("signaturePicker"));
        EXPECT_TRUE(picker && picker->isVisible());
        return picker;
    }

    SignaturePadSheet* openSheet() {
        QTest::mouseClick(find<QPushButton>(*openPicker(), QStringLiteral("newSignature")), Qt::LeftButton);
        auto* sheet = find<SignaturePadSheet>(*m_workspace, QStringLiteral("signaturePadSheet"));
        EXPECT_TRUE(QTest::qWaitForWindowActive(sheet));
        return sheet;
    }

    static void draw(SignaturePad& pad, std::initializer_list<QPoint> points) {
        QTest::mousePress(&pad, Qt::LeftButton, {}, *points.begin());
        for (const QPoint& point : points)
            QTest::mouseMove(&pad, point);
        QTest::mouseRelease(&pad, Qt::LeftButton, {}, *(points.end() - 1));
    }

    static void click(const QWidget& parent, const QString& name) {
        QTest::mouseClick(find<QAbstractButton>(parent, name), Qt::LeftButton);
    }
};

TEST_F(SignatureViewsTest, whatIsDrawnIsSavedTrimmedAndActive) {
    QPointer<SignaturePickerView> picker = openPicker();
    EXPECT_EQ(m_toolState->tool(), AnnotationTool::signature);
    QStringList texts;
    for (const QLabel* label : picker->findChildren<QLabel*>()) {
        if (label->isVisible())
            texts << label->text();
    }
    EXPECT_EQ(texts, (QStringList{QStringLiteral("Signatures"), QStringLiteral("No saved signatures yet.")}));
    QTest::keyClick(picker, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return picker.isNull(); }));

    for (int i = 1; i <= 2; ++i) {
        QPointer<SignaturePadSheet> sheet = openSheet();
        auto* pad = find<SignaturePad>(*sheet, QStringLiteral("signaturePad"));
        EXPECT_EQ(pad->size(), QSize(420, 180));
        auto* save = find<QPushButton>(*sheet, QStringLiteral("saveSignature"));
        EXPECT_FALSE(save->isEnabled());
        draw(*pad, {{100, 60}, {150, 60}, {200, 60}});
        EXPECT_TRUE(save->isEnabled());
        QTest::keyClick(sheet, Qt::Key_Return);
        EXPECT_TRUE(QTest::qWaitFor([&] { return sheet.isNull(); }));
        ASSERT_EQ(store().signatures().size(), static_cast<std::size_t>(i));
        EXPECT_EQ(store().activeID(), store().signatures().back().id);
    }
    // A line of 100 by 0 with width 3 and round ends, twice as large, and the margins.
    EXPECT_NEAR(store().activeImage()->width(), 2 * 103 + 12, 2);
    EXPECT_NEAR(store().activeImage()->height(), 2 * 3 + 12, 2);
    EXPECT_EQ(store().activeImage()->pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(store().activeImage()->pixelColor(100, 9), QColor(Qt::black));

    // Another window that is opened later begins with the first one.
    const SignatureStore later(&m_defaults);
    EXPECT_EQ(later.activeID(), store().signatures().front().id);
}

TEST_F(SignatureViewsTest, aDotHasNoInkSoTheSheetStaysOpen) {
    QPointer<SignaturePadSheet> sheet = openSheet();
    auto* pad = find<SignaturePad>(*sheet, QStringLiteral("signaturePad"));
    QTest::mouseClick(pad, Qt::LeftButton, {}, {50, 50});
    EXPECT_FALSE(pad->strokes().isEmpty());
    click(*sheet, QStringLiteral("saveSignature"));
    ASSERT_TRUE(sheet && sheet->isVisible());
    EXPECT_TRUE(store().signatures().empty());

    click(*sheet, QStringLiteral("clearSignature"));
    EXPECT_TRUE(pad->strokes().isEmpty());
    EXPECT_FALSE(find<QPushButton>(*sheet, QStringLiteral("saveSignature"))->isEnabled());
    QTest::mouseClick(pad, Qt::RightButton, {}, {50, 50});
    EXPECT_TRUE(pad->strokes().isEmpty());

    draw(*pad, {{0, 0}, {60, 40}});
    QTest::keyClick(sheet, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return sheet.isNull(); }));
    EXPECT_TRUE(store().signatures().empty());
}

TEST_F(SignatureViewsTest, aPenDrawsAndTheEdgeCutsTheMarginShort) {
    QPointer<SignaturePadSheet> sheet = openSheet();
    auto* pad = find<SignaturePad>(*sheet, QStringLiteral("signaturePad"));
    const QPointingDevice pen(QStringLiteral("pen"), 77, QInputDevice::DeviceType::Stylus,
                              QPointingDevice::PointerType::Pen, QInputDevice::Capability::Position, 1, 2);
    const auto send = [&](QEvent::Type type, QPointF point, Qt::MouseButton button, Qt::MouseButtons buttons) {
        QTabletEvent event(type, &pen, point, pad->mapToGlobal(point), 0.5, 0, 0, 0, 0, 0, {}, button, buttons);
        QCoreApplication::sendEvent(pad, &event);
        EXPECT_TRUE(event.isAccepted());
    };
    send(QEvent::TabletMove, {10, 90}, Qt::NoButton, Qt::NoButton); // hovering
    send(QEvent::TabletPress, {1, 20}, Qt::LeftButton, Qt::LeftButton);
    send(QEvent::TabletMove, {1, 60}, Qt::NoButton, Qt::LeftButton);
    send(QEvent::TabletMove, {1, 100}, Qt::NoButton, Qt::LeftButton);
    send(QEvent::TabletRelease, {1, 100}, Qt::LeftButton, Qt::NoButton);
    click(*sheet, QStringLiteral("saveSignature"));
    ASSERT_EQ(store().signatures().size(), 1U);
    EXPECT_NEAR(store().activeImage()->width(), 5 + 6, 1);
    EXPECT_NEAR(store().activeImage()->height(), 2 * 83 + 12, 2);
}

TEST_F(SignatureViewsTest, tilesChooseAndDelete) {
    QImage image(60, 20, QImage::Format_ARGB32);
    for (const QColor& color : {QColor(Qt::red), QColor(Qt::green), QColor(Qt::blue)}) {
        image.fill(color);
        store().add(image);
    }
    const auto ids = store().signatures();
    QPointer<SignaturePickerView> picker = openPicker();
    EXPECT_TRUE(find<SignatureTile>(*picker, QStringLiteral("signature3"))->isChecked());
    click(*picker, QStringLiteral("signature2"));
    EXPECT_EQ(store().activeID(), ids[1].id);
    EXPECT_TRUE(QTest::qWaitFor([&] { return picker.isNull(); }));

    picker = openPicker(); // the tool is the present one already
    click(*picker, QStringLiteral("deleteSignature2"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_EQ(store().signatures().size(), 2U);
    EXPECT_TRUE(picker->isVisible());
    EXPECT_EQ(store().activeID(), ids[0].id);
    EXPECT_TRUE(find<SignatureTile>(*picker, QStringLiteral("signature1"))->isChecked());
    auto* last = find<SignatureTile>(*picker, QStringLiteral("signature2"));
    last->setFocus();
    QTest::keyClick(last, Qt::Key_Delete);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    click(*picker, QStringLiteral("deleteSignature1"));
    EXPECT_FALSE(store().activeImage());
    QTest::keyClick(picker, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return picker.isNull(); }));
}
