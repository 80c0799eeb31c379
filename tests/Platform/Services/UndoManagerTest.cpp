#include "UndoManager.h"

#include "UndoableText.h"

#include <QCoreApplication>
#include <QSignalSpy>

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

TEST_F(UndoManagerTest, ATurnOrAGroupIsOneStep) {
    const struct {
        const char* operations; ///< see below; a small letter is a change that adds itself
        const char* texts;      ///< after each undo (u) and redo (r)
        const char* why = "";
    } rows[] = {
        {"ur", ",", "there is nothing to undo"},
        {"a|b|uurruurruurr", "a, , a,ab,a, , a,ab,a, , a,ab"},
        {"a|b|uucur", "a, , , c", "a new change empties the redo stack"},
        {"ab|cd|uuu", "ab, , "},
        {"xuyzu", " , ", "undo ends the step, without the turn's help, and starts none that takes in what follows"},
        {"(a|(b)|uc)d|uur|", "ab,abc, , abc", "an open group outlives turns and can't be undone"},
        {"(a)(b))c|uu", "ab, ", "groups of a turn are one step, unless that is ended"},
        {"!de(fg)uu()u", "de,d, ", "without turns each change is a step; an empty group is none"},
        {"a|u--+b|ur+c|u", " , b, ab,ab", "what isn't registered leaves the stacks alone"},
        {"!abcde3fuuuurrrr", "abcde,abcd,abc,abc,abcd,abcde,abcdef,abcdef", "the oldest go when levels are limited"},
    };
    for (const auto& [operations, texts, why] : rows) {
        UndoManager manager;
        UndoableText content(manager);
        QStringList seen;
        for (const char* each = operations; *each; ++each) {
            switch (*each) {
            case 'u':
            case 'r':
                *each == 'u' ? manager.undo() : manager.redo();
                seen << content.text();
                break;
            case '|':
                endTurn();
                break;
            case '(':
                manager.beginUndoGrouping();
                break;
            case ')':
                manager.endUndoGrouping();
                break;
            case '-':
                manager.disableUndoRegistration();
                break;
            case '+':
                manager.enableUndoRegistration();
                break;
            case '!':
                manager.setGroupsByEvent(false);
                break;
            case '3':
                manager.setLevelsOfUndo(3);
                break;
            default:
                content.add(QLatin1Char(*each));
            }
        }
        EXPECT_EQ(seen.join(u',').remove(u' ').toStdString(), QString::fromLatin1(texts).remove(u' ').toStdString())
            << operations << ": " << why;
    }
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

TEST_F(UndoManagerTest, RegistrationsOfDeadTargetsDropOut) {
    auto object = std::make_unique<QObject>();
    auto shared = std::make_shared<int>(7);
    m_content.add(u'a', object.get());
    m_manager.registerUndo(shared, [] { FAIL() << "its target is gone"; });
    endTurn();
    QSignalSpy changed(&m_manager, &UndoManager::changed);
    object.reset();
    EXPECT_GE(changed.count(), 1);
    EXPECT_TRUE(m_manager.canUndo()) << "the shared target is alive";
    shared.reset();
    EXPECT_FALSE(m_manager.canUndo());
    undo();
    EXPECT_EQ(text(), "a");
}

TEST_F(UndoManagerTest, ATargetMayDieWhileItsStepRuns) {
    auto dying = std::make_unique<QObject>();
    QObject living;
    m_manager.registerUndo(dying.get(), [] { FAIL() << "its target is gone"; });
    m_manager.registerUndo(&living, [&] { dying.reset(); });
    // The only owner lets go inside the handler: the target stays until the handler is through.
    auto owned = std::make_shared<QString>(QStringLiteral("alive"));
    const std::weak_ptr<QString> watch = owned;
    m_manager.registerUndo(owned, [&] {
        owned.reset();
        ASSERT_FALSE(watch.expired());
    });
    undo();
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
        endTurn();
    };
    registerOwner(m_manager);
    m_manager.removeAllActions();
    EXPECT_TRUE(m_manager.canUndo()) << "what was registered meanwhile";
    registerOwner(m_manager);
    undo();
    EXPECT_FALSE(m_manager.isUndoing());
    registerOwner(*other);
    other.reset();
    EXPECT_EQ(ended, 3);

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
