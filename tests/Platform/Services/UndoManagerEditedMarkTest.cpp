#include "UndoManager.h"

#include "UndoableText.h"

#include <QCoreApplication>

#include <iterator>
#include <map>
#include <optional>
#include <random>

#include <gtest/gtest.h>

namespace {

/// Runs the operations that letters stand for, and knows what a save would have written.
class EditedDocument {
public:
    void run(QChar operation) {
        switch (operation.unicode()) {
        case u'c':
        case u'o':
        case u'n':
            change(operation == u'c'   ? UndoableText::Kind::Mirrored
                   : operation == u'o' ? UndoableText::Kind::RedoneOnce
                                       : UndoableText::Kind::NeverRedone);
            break;
        case u'+': // one more change of the same turn
            content.add(m_next, target());
            m_next = QChar(m_next.unicode() + 1);
            return;
        case u's':
            manager.markSaved();
            saved = content.text();
            return;
        case u'a': // a save begins
            m_note = manager.noteState();
            m_noted = content.text();
            return;
        case u'b': // it ends
            if (m_note) {
                manager.markSaved(*m_note);
                saved = m_noted;
            }
            return;
        case u'u':
            manager.undo();
            break;
        case u'r':
            manager.redo();
            break;
        case u'k': // the oldest target goes
            if (!m_targets.empty())
                m_targets.erase(m_targets.begin());
            break;
        case u'l': // the latest target goes
            if (!m_targets.empty())
                m_targets.erase(std::prev(m_targets.end()));
            break;
        case u'm':
            manager.markEdited();
            break;
        case u'x':
            manager.removeAllActions();
            break;
        default:
            FAIL() << "no such operation";
        }
        QCoreApplication::processEvents();
    }

    UndoManager manager;
    UndoableText content{manager};
    QString saved;

private:
    QObject* target() { return m_targets.emplace(m_next, std::make_unique<QObject>()).first->second.get(); }

    void change(UndoableText::Kind kind) {
        content.add(m_next, target(), kind);
        m_next = QChar(m_next.unicode() + 1);
    }

    std::map<QChar, std::unique_ptr<QObject>> m_targets;
    std::optional<quint64> m_note;
    QString m_noted;
    QChar m_next = QChar(0x100);
};

TEST(UndoManagerEditedMarkTest, FollowsTheSavedState) {
    const struct {
        const char* operations;
        const char* edited; // after each operation: E edited, - not
        const char* why;
    } rows[] = {
        {"cu", "E-", ""},
        {"ccuur", "EEE-E", ""},
        {"csur", "E-E-", ""},
        {"csuu", "E-EE", ""},
        {"ccsuurr", "EE-EEE-", ""},
        {"csucu", "E-EEE", "the saved state went with the redo stack"},
        {"csucsu", "E-EE-E", "the new state is the saved one now"},
        {"c+su", "EE-E", ""},
        {"+s+", "E-E", "saved in the middle of a step"},
        {"+s+ur", "E-EEE", "undo and redo pass over that state"},
        {"cab", "EE-", ""},
        {"cacbuur", "EEEE-E-", "edited while it was being saved"},
        {"caubr", "EE-E-", "undone while it was being saved"},
        {"+a+bu", "EEEEE", "noted in the middle of a step: undo passes over that state"},
        {"caucb", "EE-EE", "the noted state went with the redo stack"},
        {"acxb", "-EEE", "nothing is left to take the change back"},
        {"caxbcu", "EEE-E-", ""},
        {"camb", "EEEE", "a change without undo came after the note"},
        {"cacsbu", "EEE-E-", "another save ended in between"},
        {"mu", "EE", ""},
        {"cmus", "EEE-", ""},
        {"cx", "EE", "nothing is left to take the change back"},
        {"csxcu", "E--E-", ""},
        {"ck", "EE", ""},
        {"cclu", "EEEE", "one change stays for good"},
        {"cckuu", "EEEEE", "one change stays for good"},
        {"cscku", "E-EE-", "the change that stays was saved"},
        {"ouru", "E-EE", "the redo registered nothing"},
        {"couru", "EEEEE", "the redo registered nothing, and stays over the undone one"},
        {"nu", "E-", ""},
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
            document.run(QLatin1Char(*operation));
            edited += document.manager.isDocumentEdited() ? 'E' : '-';
            EXPECT_EQ(told, document.manager.isDocumentEdited());
        }
        EXPECT_EQ(edited, row.edited) << row.operations << ": " << row.why;
    }
}

// Every character is unlike any other, so equal texts mean equal states.
TEST(UndoManagerEditedMarkTest, NeverCallsAChangedDocumentSaved) {
    const struct {
        QString operations;
        bool canLoseHistory;
    } walks[] = {
        {QStringLiteral("ccc++uuuuurrrsab"), false},
        {QStringLiteral("ccoon+uuuuurrrrsabklmx"), true},
    };
    for (unsigned seed = 0; seed < 200; ++seed) {
        for (const auto& walk : walks) {
            std::mt19937 random(seed);
            EditedDocument document;
            QString trail;
            for (int step = 0; step < 60; ++step) {
                trail.append(walk.operations[static_cast<int>(random() % unsigned(walk.operations.size()))]);
                document.run(trail.back());
                const bool isSaved = document.content.text() == document.saved;
                const bool isEdited = document.manager.isDocumentEdited();
                ASSERT_TRUE(isEdited || isSaved) << seed << ": " << trail.toStdString();
                ASSERT_TRUE(!isEdited || !isSaved || walk.canLoseHistory) << seed << ": " << trail.toStdString();
            }
        }
    }
}

} // namespace
