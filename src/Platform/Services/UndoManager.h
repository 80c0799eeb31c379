#pragma once

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>
#include <vector>

/// Records how to take back changes, and tells whether a document differs from its saved state.
///
/// A change registers a handler that reverses it. A handler that runs during `undo()` and registers in its turn
/// registers the redo, one that runs during `redo()` registers the undo again; so two operations that register each
/// other undo and redo without limit, and a handler that registers nothing cannot be repeated. Any other registration
/// empties the redo stack.
///
/// Registrations of one turn of the event loop form one undo step: the step opens with the first of them and closes
/// when control returns to the event loop, or at `undo()`, `redo()` or `endUndoGrouping()`. A nested event loop (a
/// modal dialog) counts as a return. Code that sends events itself, as tests do, ends a turn with
/// `QCoreApplication::processEvents()`.
///
/// A registration does not own its target; when the target is gone the registration counts for nothing. What a handler
/// captures is owned, so a handler must not capture a shared pointer to its own target.
///
/// Belongs to the thread that it lives in. Must not be destroyed by one of its own handlers.
class UndoManager : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool groupsByEvent READ groupsByEvent WRITE setGroupsByEvent)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY changed)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY changed)
    Q_PROPERTY(bool documentEdited READ isDocumentEdited NOTIFY documentEditedChanged)

public:
    explicit UndoManager(QObject* parent = nullptr);
    ~UndoManager() override;

    /// Registers `handler` for as long as `target` lives. `target` must not be null. Does nothing while registration
    /// is disabled. An object that is owned by a shared pointer may be given either way.
    void registerUndo(QObject* target, std::function<void()> handler);
    void registerUndo(const std::shared_ptr<void>& target, std::function<void()> handler);

    /// True by default. When false, each registration outside of an explicit group is a step of its own.
    bool groupsByEvent() const { return m_groupsByEvent; }
    void setGroupsByEvent(bool groupsByEvent);

    /// Opens an explicit group; groups nest. Everything registered until the outermost group ends is one step, also
    /// over several turns of the event loop. With `groupsByEvent` the group belongs to the step of its turn.
    void beginUndoGrouping();

    /// Ends the innermost explicit group. With no explicit group open it closes the step of this turn, if there is one.
    void endUndoGrouping();

    /// The number of explicit groups that are open.
    int groupingLevel() const { return m_groupingLevel; }

    /// True if `undo()` would run at least one handler. False while an explicit group is open, and inside a handler.
    bool canUndo() const;
    bool canRedo() const;

    /// Runs the handlers of the newest step in reverse order of registration; passes over dead targets. Does nothing
    /// when `canUndo()` is false. If a handler throws, the exception passes through; the handlers that ran before it
    /// can be redone, those not yet run remain the newest undo step, the one that threw is dropped.
    void undo();

    /// The same in the other direction.
    void redo();

    bool isUndoing() const { return m_activity == Activity::Undoing; }
    bool isRedoing() const { return m_activity == Activity::Redoing; }

    /// Forgets all steps, also the rest of the one that is running. An edited document stays edited.
    void removeAllActions();

    /// Forgets the registrations of one target, given the way it was registered; steps left empty disappear.
    void removeAllActions(const QObject* target);
    void removeAllActions(const std::shared_ptr<void>& target);

    /// Calls nest; registrations in between are ignored.
    void disableUndoRegistration();
    void enableUndoRegistration();
    bool isUndoRegistrationEnabled() const { return m_registrationDisabledCount == 0; }

    /// The greatest number of undo steps kept; the oldest are dropped first. 0, the default, is without limit.
    int levelsOfUndo() const { return m_levelsOfUndo; }
    void setLevelsOfUndo(int levels);

    /// True if the steps done since the last save, in either direction, do not cancel out. Initially false. It turns
    /// false again only when undo or redo leads back to exactly the saved state.
    bool isDocumentEdited() const { return m_currentState != m_savedState; }

    /// Takes the present state as the saved one, also in the middle of a step.
    void markSaved();

    /// A number of the present state: the same after undoing back to it, another after any change.
    quint64 state() const { return m_currentState; }

    /// Remembers the present state, for a save that ends later: `markSaved` with the number that this returns takes
    /// that state as the saved one, whatever has been done meanwhile. Also in the middle of a step. A newer note
    /// replaces an older one.
    quint64 noteState();

    /// `noted` comes from `noteState()`. When that state can't be reached any more, or was noted before another, no
    /// state is the saved one, and the document is edited.
    void markSaved(quint64 noted);

    /// Marks a change that registers no undo. Only a save of what is noted or marked after it takes this mark away.
    void markEdited();

Q_SIGNALS:
    /// The stacks may have changed: ask `canUndo()` and `canRedo()` again. Never emitted while handlers run.
    void changed();
    void documentEditedChanged(bool edited);

private:
    enum class Activity { None, Undoing, Redoing };

    struct Registration {
        QPointer<QObject> object;
        std::weak_ptr<void> shared;
        std::function<void()> handler;

        bool isAlive() const { return object || !shared.expired(); }
    };

    /// One undo or redo step. Running it leads to `targetState`.
    struct Step {
        std::vector<Registration> registrations;
        quint64 targetState = 0;

        bool isAlive() const;
    };

    void add(Registration registration);
    void openStep();
    void closeStep();
    void scheduleClose();
    void run(std::vector<Step>& from, std::vector<Step>& to, Activity activity);
    void removeIf(const std::function<bool(const Registration&)>& predicate);
    void removeDead();
    void forgetKeptStates();
    void forgetUnreachableKeptStates();
    void trimToLevels();
    void publish();

    std::vector<Step> m_undoStack;
    std::vector<Step> m_redoStack;
    /// While handlers run: those of the step that are still to run, and what the others registered.
    Step m_runningStep;
    Step m_counterStep;
    Activity m_activity = Activity::None;
    /// The newest undo step still takes registrations.
    bool m_stepIsOpen = false;
    bool m_closeIsScheduled = false;
    bool m_groupsByEvent = true;
    int m_groupingLevel = 0;
    int m_registrationDisabledCount = 0;
    int m_levelsOfUndo = 0;

    /// States of the document are numbered as they come up. `m_savedState` and `m_notedState` are kept while the stacks
    /// lead back to them, and 0 when they can't be reached any more.
    quint64 m_lastState = 1;
    quint64 m_currentState = 1;
    quint64 m_savedState = 1;
    quint64 m_notedState = 0;
    bool m_publishedEdited = false;
};
