#include "UndoManager.h"

#include "UndoableText.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSignalSpy>
#include <QTimer>

#include <stdexcept>

#include <gtest/gtest.h>

namespace {

void endTurn() {
    QCoreApplication::processEvents();
}

class UndoManagerTest : public testing::Test {
protected:
    void undo() {
        m_manager.undo();
        endTurn();
    }
    void redo() {
        m_manager.redo();
        endTurn();
    }
    std::string text() const { return m_content.text().toStdString(); }

    UndoManager m_manager;
    UndoableText m_content{m_manager};
};

TEST_F(UndoManagerTest, MirroredChangesUndoAndRedoWithoutLimit) {
    EXPECT_FALSE(m_manager.canUndo());
    m_manager.undo();
    m_manager.redo();

    m_content.add(u'a');
    endTurn();
    m_content.add(u'b');
    endTurn();
    for (int round = 0; round < 3; ++round) {
        undo();
        EXPECT_EQ(text(), "a");
        undo();
        EXPECT_EQ(text(), "");
        EXPECT_FALSE(m_manager.canUndo());
        redo();
        redo();
        EXPECT_EQ(text(), "ab");
        EXPECT_FALSE(m_manager.canRedo());
    }
    undo();
    m_content.add(u'c');
    EXPECT_FALSE(m_manager.canRedo()) << "a new change empties the redo stack";
    undo();
    EXPECT_EQ(text(), "a");
}

TEST_F(UndoManagerTest, HandlersTellWhatRunsAndRunInReverseOrder) {
    QObject target;
    QString order;
    const auto note = [&](QChar name) {
        m_manager.registerUndo(&target, [&, name] {
            order.append(name);
            EXPECT_TRUE(m_manager.isUndoing() && !m_manager.isRedoing());
            EXPECT_FALSE(m_manager.canUndo() || m_manager.canRedo());
            m_manager.undo(); // has no effect inside a handler
            m_manager.registerUndo(&target, [&, name] {
                order.append(name);
                EXPECT_TRUE(m_manager.isRedoing() && !m_manager.isUndoing());
            });
        });
    };
    note(u'1');
    note(u'2');
    note(u'3');
    undo();
    EXPECT_EQ(order.toStdString(), "321");
    redo();
    EXPECT_EQ(order.toStdString(), "321123");
    EXPECT_FALSE(m_manager.isUndoing() || m_manager.isRedoing() || m_manager.canUndo() || m_manager.canRedo());
}

TEST_F(UndoManagerTest, ATurnOfTheEventLoopIsOneStep) {
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] {
        m_content.add(u'a');
        m_content.add(u'b');
        QTimer::singleShot(1, &loop, [&] {
            m_content.add(u'c');
            m_content.add(u'd');
            QTimer::singleShot(1, &loop, &QEventLoop::quit);
        });
    });
    loop.exec();
    undo();
    EXPECT_EQ(text(), "ab");
    undo();
    EXPECT_EQ(text(), "");

    // undo() itself ends the step, without the event loop's help, and starts none that takes in what follows.
    m_content.add(u'x');
    m_manager.undo();
    m_content.add(u'y');
    m_content.add(u'z');
    m_manager.undo();
    EXPECT_EQ(text(), "");
    EXPECT_FALSE(m_manager.canUndo());
}

TEST_F(UndoManagerTest, ExplicitGroupsNestAndOutliveTurns) {
    m_manager.beginUndoGrouping();
    m_content.add(u'a');
    endTurn();
    m_manager.beginUndoGrouping();
    m_content.add(u'b');
    m_manager.endUndoGrouping();
    endTurn();
    EXPECT_EQ(m_manager.groupingLevel(), 1);
    EXPECT_FALSE(m_manager.canUndo());
    m_manager.undo();
    EXPECT_EQ(text(), "ab") << "an open group can't be undone";
    m_content.add(u'c');
    m_manager.endUndoGrouping();
    m_content.add(u'd');
    undo();
    EXPECT_EQ(text(), "abc");
    undo();
    EXPECT_EQ(text(), "");
    redo();
    EXPECT_EQ(text(), "abc");
}

TEST_F(UndoManagerTest, GroupsOfOneTurnAreOneStepUnlessEnded) {
    for (const QChar character : QStringLiteral("ab")) {
        m_manager.beginUndoGrouping();
        m_content.add(character);
        m_manager.endUndoGrouping();
    }
    m_manager.endUndoGrouping(); // ends the step of this turn
    m_content.add(u'c');
    undo();
    EXPECT_EQ(text(), "ab");
    undo();
    EXPECT_EQ(text(), "");

    m_manager.setGroupsByEvent(false);
    m_content.add(u'd');
    m_content.add(u'e');
    m_manager.beginUndoGrouping();
    m_content.add(u'f');
    m_content.add(u'g');
    m_manager.endUndoGrouping();
    undo();
    EXPECT_EQ(text(), "de");
    undo();
    EXPECT_EQ(text(), "d");
    m_manager.beginUndoGrouping();
    m_manager.endUndoGrouping();
    undo();
    EXPECT_EQ(text(), "") << "an empty group is no step";
}

TEST_F(UndoManagerTest, RegistrationsOfDeadTargetsDropOut) {
    auto object = std::make_unique<QObject>();
    auto shared = std::make_shared<int>(7);
    m_content.add(u'a', object.get());
    bool sharedRan = false;
    m_manager.registerUndo(shared, [&] { sharedRan = true; });
    endTurn();
    m_content.add(u'b', object.get());
    EXPECT_TRUE(m_manager.canUndo());

    QSignalSpy changed(&m_manager, &UndoManager::changed);
    object.reset();
    EXPECT_GE(changed.count(), 1);
    EXPECT_TRUE(m_manager.canUndo()) << "the shared target is alive";
    shared.reset();
    EXPECT_FALSE(m_manager.canUndo());
    undo();
    EXPECT_FALSE(sharedRan);
    EXPECT_EQ(text(), "ab");

    m_content.add(u'c');
    undo();
    EXPECT_EQ(text(), "ab");
    EXPECT_TRUE(m_manager.canRedo());
}

TEST_F(UndoManagerTest, ATargetMayDieWhileItsStepRuns) {
    auto dying = std::make_unique<QObject>();
    QObject living;
    bool ran = false;
    m_manager.registerUndo(dying.get(), [&] { ran = true; });
    m_manager.registerUndo(&living, [&] { dying.reset(); });

    // The only owner lets go inside the handler: the target stays until the handler is through.
    auto owned = std::make_shared<QString>(QStringLiteral("alive"));
    const std::weak_ptr<QString> watch = owned;
    m_manager.registerUndo(owned, [&] {
        owned.reset();
        ASSERT_FALSE(watch.expired());
    });
    undo();
    EXPECT_FALSE(ran);
    EXPECT_TRUE(watch.expired());
}

TEST_F(UndoManagerTest, ActionsAreRemovedByTargetOrAltogether) {
    QObject target;
    const auto shared = std::make_shared<int>(1);
    m_content.add(u'a', &target);
    m_content.add(u'b');
    m_manager.registerUndo(shared, [] { FAIL() << "its registrations were removed"; });
    endTurn();
    m_content.add(u'c', &target);
    m_manager.removeAllActions(&target);
    m_manager.removeAllActions(shared);
    m_content.add(u'd'); // must not fall into the step that was removed
    undo();
    EXPECT_EQ(text(), "abc");
    undo();
    EXPECT_EQ(text(), "ac");
    EXPECT_FALSE(m_manager.canUndo());

    m_content.add(u'e');
    QObject other;
    m_manager.registerUndo(&other, [&] { m_manager.removeAllActions(); });
    undo();
    EXPECT_EQ(text(), "ace") << "the rest of the running step is forgotten";
    EXPECT_FALSE(m_manager.canUndo() || m_manager.canRedo());
}

TEST_F(UndoManagerTest, RemovedHandlersMayCallBackWhenTheyAreDestroyed) {
    QObject target;
    int ended = 0;
    auto other = std::make_unique<UndoManager>();
    // The handler owns an object that ends with it, that is a target itself, and whose end registers something.
    const auto registerOwner = [&target, &ended](UndoManager& undoManager) {
        const auto owned = std::make_shared<QObject>();
        undoManager.registerUndo(owned.get(), [] {});
        QObject::connect(owned.get(), &QObject::destroyed, &undoManager, [&] {
            ++ended;
            undoManager.registerUndo(&target, [] {});
        });
        undoManager.registerUndo(&target, [owned] {});
    };
    registerOwner(m_manager);
    m_manager.removeAllActions();
    EXPECT_EQ(ended, 1);
    EXPECT_TRUE(m_manager.canUndo()) << "what was registered meanwhile";

    registerOwner(m_manager);
    undo();
    EXPECT_EQ(ended, 2);
    EXPECT_FALSE(m_manager.isUndoing());

    // Only redo() notices that this target is dead; what it lets go then empties the redo stack.
    auto dying = std::make_shared<int>(1);
    m_manager.registerUndo(&target, [&] {
        m_manager.registerUndo(&target, [] { FAIL() << "this redo was dropped"; });
        const auto owned = std::make_shared<QObject>();
        QObject::connect(owned.get(), &QObject::destroyed, [&] { m_manager.registerUndo(&target, [] {}); });
        m_manager.registerUndo(dying, [owned] {});
    });
    undo();
    dying.reset();
    redo();
    EXPECT_TRUE(m_manager.canUndo() && !m_manager.canRedo());

    registerOwner(*other);
    endTurn();
    registerOwner(*other);
    other.reset();
    EXPECT_EQ(ended, 4);
}

TEST_F(UndoManagerTest, DisabledRegistrationIsIgnored) {
    m_content.add(u'a');
    undo();
    m_manager.disableUndoRegistration();
    m_manager.disableUndoRegistration();
    m_manager.enableUndoRegistration();
    m_content.add(u'b');
    EXPECT_FALSE(m_manager.canUndo());
    EXPECT_TRUE(m_manager.canRedo()) << "the redo stack is left alone";
    m_manager.enableUndoRegistration();
    m_content.add(u'c');
    EXPECT_TRUE(m_manager.canUndo());
}

TEST_F(UndoManagerTest, TheOldestStepsGoWhenLevelsAreLimited) {
    m_manager.setGroupsByEvent(false);
    for (const QChar character : QStringLiteral("abcde"))
        m_content.add(character);
    m_manager.setLevelsOfUndo(3);
    m_content.add(u'f');
    while (m_manager.canUndo())
        undo();
    EXPECT_EQ(text(), "abc");
    while (m_manager.canRedo())
        redo();
    EXPECT_EQ(text(), "abcdef");
}

TEST_F(UndoManagerTest, AnExceptionLeavesAUsableManager) {
    QObject target;
    m_content.add(u'a');
    endTurn();
    m_content.add(u'b');
    m_manager.registerUndo(&target, [] { throw std::runtime_error("broken"); });
    m_content.add(u'c');
    endTurn();

    EXPECT_THROW(m_manager.undo(), std::runtime_error);
    EXPECT_EQ(text(), "ab");
    EXPECT_FALSE(m_manager.isUndoing());
    EXPECT_TRUE(m_manager.isDocumentEdited());
    undo();
    EXPECT_EQ(text(), "a") << "what had not run is still the newest step";
    undo();
    EXPECT_EQ(text(), "");
    EXPECT_TRUE(m_manager.isDocumentEdited()) << "one change was never taken back";
    while (m_manager.canRedo())
        redo();
    EXPECT_EQ(text(), "abc");
}

} // namespace
