#pragma once

#include "UndoManager.h"

#include <QString>

#include <algorithm>

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
