#include "UndoManager.h"

#include <QCoreApplication>
#include <QSignalSpy>

#include <algorithm>
#include <map>
#include <random>
#include <stdexcept>

#include <gtest/gtest.h>

namespace {

void endTurn() {
    QCoreApplication::processEvents();
}

/// A text of different characters, kept in order. Each can be added and taken out, with its undo.
class UndoableText {
public:
    /// What the undo of a change can do: be redone without limit, be redone once, or not be redone.
    enum class Kind { Mirrored, RedoneOnce, NeverRedone };

    explicit UndoableText(UndoManager& manager) : m_manager(manager) {}

    const QString& text() const { return m_text; }

    void add(QChar character, QObject* target, Kind kind = Kind::Mirrored) {
        insert(character);
        m_manager.registerUndo(target, [=, this] {
            if (kind == Kind::Mirrored)
                remove(character, target);
            else
                m_text.remove(character);
            if (kind == Kind::RedoneOnce)
                m_manager.registerUndo(target, [=, this] { insert(character); });
        });
    }

    void add(QChar character) { add(character, &m_target); }

    void remove(QChar character, QObject* target) {
        m_text.remove(character);
        m_manager.registerUndo(target, [=, this] { add(character, target); });
    }

private:
    void insert(QChar character) {
        m_text.insert(std::lower_bound(m_text.begin(), m_text.end(), character) - m_text.begin(), character);
    }

    UndoManager& m_manager;
    QString m_text;
    QObject m_target;
};

/// Runs the operations that letters stand for, and knows what a save would have written.
class EditedDocument {
public:
    void run(char operation) {
        m_operations.at(operation)();
        if (std::string("+sab").find(operation) == std::string::npos)
            endTurn();
    }

    UndoManager manager;
    UndoableText content{manager};
    QString saved;

private:
    using Kind = UndoableText::Kind;

    void change(Kind kind = Kind::Mirrored) {
        content.add(m_next, m_targets.emplace(m_next, std::make_unique<QObject>()).first->second.get(), kind);
        m_next = QChar(m_next.unicode() + 1);
    }
    void dropEarliestTarget() {
        if (!m_targets.empty())
            m_targets.erase(m_targets.begin());
    }
    void save() {
        manager.markSaved();
        saved = content.text();
    }
    void beginSaving() {
        m_note = manager.noteState();
        m_noted = content.text();
    }
    void endSaving() {
        if (!m_note)
            return;
        manager.markSaved(*m_note);
        saved = m_noted;
    }

    const std::map<char, std::function<void()>> m_operations = {
        {'c', [this] { change(); }},
        {'o', [this] { change(Kind::RedoneOnce); }},
        {'n', [this] { change(Kind::NeverRedone); }},
        {'+', [this] { change(); }}, // one more change of the same turn
        {'s', [this] { save(); }},
        {'a', [this] { beginSaving(); }},
        {'b', [this] { endSaving(); }},
        {'u', [this] { manager.undo(); }},
        {'r', [this] { manager.redo(); }},
        {'k', [this] { dropEarliestTarget(); }},
        {'m', [this] { manager.markEdited(); }},
        {'x', [this] { manager.removeAllActions(); }},
    };
    std::map<QChar, std::unique_ptr<QObject>> m_targets;
    std::optional<quint64> m_note;
    QString m_noted;
    QChar m_next = QChar(0x100);
};

class UndoManagerTest : public testing::Test {
protected:
    void undo() {
        m_manager.undo();
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
        const std::map<char, std::function<void()>> meanings = {
            {'u', [&] { manager.undo(); }},
            {'r', [&] { manager.redo(); }},
            {'|', endTurn},
            {'(', [&] { manager.beginUndoGrouping(); }},
            {')', [&] { manager.endUndoGrouping(); }},
            {'-', [&] { manager.disableUndoRegistration(); }},
            {'+', [&] { manager.enableUndoRegistration(); }},
            {'!', [&] { manager.setGroupsByEvent(false); }},
            {'3', [&] { manager.setLevelsOfUndo(3); }},
        };
        for (const char each : std::string(operations)) {
            const auto meaning = meanings.find(each);
            meaning == meanings.end() ? content.add(QLatin1Char(each)) : meaning->second();
            if (each == 'u' || each == 'r')
                seen << content.text();
        }
        EXPECT_EQ(seen.join(u',').toStdString(), QString::fromLatin1(texts).remove(u' ').toStdString())
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
    for (const QChar name : QStringLiteral("123"))
        note(name);
    undo();
    m_manager.redo();
    EXPECT_EQ(order.toStdString(), "321123");
    EXPECT_FALSE(m_manager.isUndoing() || m_manager.isRedoing());
}

TEST_F(UndoManagerTest, RegistrationsOfDeadTargetsDropOutAlsoWhileTheirStepRuns) {
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
    registerOwner(*other);
    other.reset();
    EXPECT_EQ(ended, 3);
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
}

TEST_F(UndoManagerTest, TheEditedMarkFollowsTheSavedState) {
    const struct {
        const char* operations;
        const char* edited; // after each operation: E edited, - not
        const char* why = "";
    } rows[] = {
        {"ccsuurr", "EE-EEE-"},
        {"+s+ur", "E-EEE", "undo and redo pass over that state"},
        {"cacbuur", "EEEE-E-", "edited while it was being saved"},
        {"acxb", "-EEE", "nothing is left to take the change back"},
        {"camb", "EEEE", "a change without undo came after the note"},
        {"cx", "EE", "nothing is left to take the change back"},
        {"cckuu", "EEEEE", "one change stays for good"},
        {"cscku", "E-EE-", "the change that stays was saved"},
        {"ouru", "E-EE", "the redo registered nothing"},
        {"couru", "EEEEE", "the redo registered nothing, and stays over the undone one"},
        {"cnsuu", "EE-EE", "the undo registered nothing"},
    };
    for (const auto& row : rows) {
        EditedDocument document;
        std::string edited;
        bool told = false;
        QObject::connect(&document.manager, &UndoManager::documentEditedChanged, [&told](bool isEdited) {
            EXPECT_NE(isEdited, told) << "once for each turn of the mark";
            told = isEdited;
        });
        for (const char* operation = row.operations; *operation; ++operation) {
            document.run(*operation);
            edited += document.manager.isDocumentEdited() ? 'E' : '-';
            EXPECT_EQ(told, document.manager.isDocumentEdited());
        }
        EXPECT_EQ(edited, row.edited) << row.operations << ": " << row.why;
    }
}

// Every character is unlike any other, so equal texts mean equal states: what the rows above don't say, this tells.
TEST_F(UndoManagerTest, NeverCallsAChangedDocumentSaved) {
    for (const std::string operations : {"ccc++uuuuurrrsab", "ccoon+uuuuurrrrsabkmx"}) {
        const bool canLoseHistory = operations.ends_with('x');
        for (unsigned seed = 0; seed < 200; ++seed) {
            std::mt19937 random(seed);
            EditedDocument document;
            std::string trail;
            for (int step = 0; step < 60; ++step) {
                trail += operations[random() % operations.size()];
                document.run(trail.back());
                const bool isSaved = document.content.text() == document.saved;
                const bool isEdited = document.manager.isDocumentEdited();
                ASSERT_TRUE(isEdited || isSaved) << seed << ": " << trail;
                ASSERT_TRUE(!isEdited || !isSaved || canLoseHistory) << seed << ": " << trail;
            }
        }
    }
}

} // namespace
