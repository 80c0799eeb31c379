#include "UndoManager.h"

#include "QuilloAssert.h"

#include <QScopeGuard>

#include <algorithm>
#include <utility>

bool UndoManager::Step::isAlive() const {
    return std::any_of(registrations.begin(), registrations.end(), [](const auto& each) { return each.isAlive(); });
}

UndoManager::UndoManager(QObject* parent) : QObject(parent) {}

UndoManager::~UndoManager() {
    // While the stacks are whole: what the handlers own may call back.
    blockSignals(true);
    disableUndoRegistration();
    removeAllActions();
    blockSignals(false);
}

void UndoManager::registerUndo(QObject* target, std::function<void()> handler) {
    QUILLO_ASSERT(target, "an undo needs a target");
    if (!isUndoRegistrationEnabled())
        return;
    connect(target, &QObject::destroyed, this, &UndoManager::removeDead, Qt::UniqueConnection);
    add({target, {}, std::move(handler)});
}

void UndoManager::registerUndo(const std::shared_ptr<void>& target, std::function<void()> handler) {
    QUILLO_ASSERT(target, "an undo needs a target");
    if (isUndoRegistrationEnabled())
        add({{}, target, std::move(handler)});
}

void UndoManager::add(Registration registration) {
    QUILLO_ASSERT(registration.handler, "an undo needs a handler");
    if (m_activity != Activity::None) {
        m_counterStep.registrations.push_back(std::move(registration));
        return;
    }
    // Dropped only when the new registration is in place: what their handlers own may call back when it is destroyed.
    const std::vector<Step> dropped = std::exchange(m_redoStack, {});
    openStep();
    m_undoStack.back().registrations.push_back(std::move(registration));
    trimToLevels();
    publish();
}

void UndoManager::openStep() {
    if (m_stepIsOpen) {
        // Saved in the middle of a step: undo passes over that state, so only a new number may stand for what follows.
        if (m_currentState == m_savedState || m_currentState == m_notedState)
            m_currentState = ++m_lastState;
        return;
    }
    m_undoStack.push_back({{}, m_currentState});
    m_currentState = ++m_lastState;
    m_stepIsOpen = m_groupsByEvent || m_groupingLevel > 0;
    if (m_groupsByEvent)
        scheduleClose();
}

void UndoManager::scheduleClose() {
    if (std::exchange(m_closeIsScheduled, true))
        return;
    const auto closeAtEndOfTurn = [this] {
        m_closeIsScheduled = false;
        closeStep();
    };
    QMetaObject::invokeMethod(this, closeAtEndOfTurn, Qt::QueuedConnection);
}

void UndoManager::closeStep() {
    if (m_groupingLevel == 0)
        m_stepIsOpen = false;
}

void UndoManager::setGroupsByEvent(bool groupsByEvent) {
    m_groupsByEvent = groupsByEvent;
    if (!groupsByEvent)
        closeStep();
}

void UndoManager::beginUndoGrouping() {
    if (++m_groupingLevel == 1)
        publish();
}

void UndoManager::endUndoGrouping() {
    if (m_groupingLevel == 0) {
        closeStep();
        return;
    }
    if (--m_groupingLevel > 0)
        return;
    // A step that outlived the turn in which it began would take in whatever comes next.
    if (!m_closeIsScheduled)
        closeStep();
    publish();
}

bool UndoManager::canUndo() const {
    return m_groupingLevel == 0 && m_activity == Activity::None &&
           std::any_of(m_undoStack.begin(), m_undoStack.end(), [](const auto& step) { return step.isAlive(); });
}

bool UndoManager::canRedo() const {
    return m_groupingLevel == 0 && m_activity == Activity::None &&
           std::any_of(m_redoStack.begin(), m_redoStack.end(), [](const auto& step) { return step.isAlive(); });
}

void UndoManager::undo() {
    if (canUndo())
        run(m_undoStack, m_redoStack, Activity::Undoing);
}

void UndoManager::redo() {
    if (canRedo())
        run(m_redoStack, m_undoStack, Activity::Redoing);
}

void UndoManager::run(std::vector<Step>& from, std::vector<Step>& to, Activity activity) {
    removeIf([](const Registration& each) { return !each.isAlive(); });
    m_stepIsOpen = false;
    if (from.empty()) { // what the removed handlers owned has registered something
        publish();
        return;
    }
    m_runningStep = std::move(from.back());
    from.pop_back();
    m_counterStep = {{}, std::exchange(m_currentState, m_runningStep.targetState)};
    m_activity = activity;

    const auto finish = qScopeGuard([&] {
        m_activity = Activity::None;
        if (!m_counterStep.registrations.empty())
            to.push_back(std::exchange(m_counterStep, {}));
        if (!m_runningStep.registrations.empty())
            from.push_back(std::exchange(m_runningStep, {}));
        trimToLevels();
        publish();
    });

    while (!m_runningStep.registrations.empty()) {
        const Registration registration = std::move(m_runningStep.registrations.back());
        m_runningStep.registrations.pop_back();
        if (!registration.isAlive()) {
            forgetKeptStates();
            continue;
        }
        // A target that is owned by shared pointers must not go while its handler runs.
        const std::shared_ptr<void> keepAlive = registration.shared.lock();
        const size_t countBefore = m_counterStep.registrations.size();
        try {
            registration.handler();
        } catch (...) {
            forgetKeptStates();
            m_currentState = ++m_lastState;
            throw;
        }
        if (m_counterStep.registrations.size() <= countBefore)
            forgetUnreachableKeptStates();
    }
}

void UndoManager::forgetKeptStates() {
    m_savedState = 0;
    m_notedState = 0;
}

/// Called when a change can no longer be reversed by the stacks: they lead back to a kept state only if they need not
/// cross that change, that is if the document is in that state now.
void UndoManager::forgetUnreachableKeptStates() {
    for (quint64* kept : {&m_savedState, &m_notedState}) {
        if (*kept != m_currentState)
            *kept = 0;
    }
}

void UndoManager::removeAllActions() {
    // Destroyed last: what the handlers own may call back.
    const std::vector<Step> undoSteps = std::exchange(m_undoStack, {});
    const std::vector<Step> redoSteps = std::exchange(m_redoStack, {});
    const std::vector<Registration> running = std::exchange(m_runningStep.registrations, {});
    const std::vector<Registration> counter = std::exchange(m_counterStep.registrations, {});
    m_stepIsOpen = false;
    forgetUnreachableKeptStates();
    publish();
}

void UndoManager::removeAllActions(const QObject* target) {
    removeIf([target](const Registration& each) { return target && each.object == target; });
    publish();
}

void UndoManager::removeAllActions(const std::shared_ptr<void>& target) {
    removeIf([&target](const Registration& each) {
        return target && !each.shared.owner_before(target) && !target.owner_before(each.shared);
    });
    publish();
}

void UndoManager::removeDead() {
    removeIf([](const Registration& each) { return !each.isAlive(); });
    publish();
}

void UndoManager::removeIf(const std::function<bool(const Registration&)>& predicate) {
    // Destroyed last, when the stacks are whole again: what the handlers own may call back.
    std::vector<Registration> removed;
    const auto removeFrom = [&](Step& step) {
        auto& all = step.registrations;
        const auto firstRemoved =
            std::stable_partition(all.begin(), all.end(), [&](const auto& each) { return !predicate(each); });
        const bool removesAny = firstRemoved != all.end();
        std::move(firstRemoved, all.end(), std::back_inserter(removed));
        all.erase(firstRemoved, all.end());
        return removesAny;
    };
    const auto removeFromStack = [&](std::vector<Step>& stack) {
        std::vector<quint64> statesHereAndDeeper;
        for (Step& step : stack) {
            statesHereAndDeeper.push_back(step.targetState);
            if (!removeFrom(step))
                continue;
            for (quint64* kept : {&m_savedState, &m_notedState}) {
                if (std::count(statesHereAndDeeper.begin(), statesHereAndDeeper.end(), *kept) > 0)
                    *kept = 0;
            }
        }
    };
    removeFromStack(m_undoStack);
    removeFromStack(m_redoStack);
    if (removeFrom(m_counterStep))
        forgetUnreachableKeptStates();
    if (removeFrom(m_runningStep))
        forgetKeptStates();

    if (!m_undoStack.empty() && m_undoStack.back().registrations.empty())
        m_stepIsOpen = false;
    const auto isEmpty = [](const Step& step) { return step.registrations.empty(); };
    std::erase_if(m_undoStack, isEmpty);
    std::erase_if(m_redoStack, isEmpty);
}

void UndoManager::disableUndoRegistration() {
    ++m_registrationDisabledCount;
}

void UndoManager::enableUndoRegistration() {
    QUILLO_ASSERT(m_registrationDisabledCount > 0, "enableUndoRegistration needs a disableUndoRegistration before it");
    --m_registrationDisabledCount;
}

void UndoManager::setLevelsOfUndo(int levels) {
    m_levelsOfUndo = std::max(levels, 0);
    trimToLevels();
    publish();
}

void UndoManager::trimToLevels() {
    const auto limit = static_cast<size_t>(m_levelsOfUndo);
    if (limit == 0 || m_undoStack.size() <= limit)
        return;
    const auto firstKept = m_undoStack.end() - m_levelsOfUndo;
    const std::vector<Step> dropped(std::make_move_iterator(m_undoStack.begin()), std::make_move_iterator(firstKept));
    m_undoStack.erase(m_undoStack.begin(), firstKept);
}

void UndoManager::markSaved() {
    m_savedState = m_currentState;
    publish();
}

quint64 UndoManager::noteState() {
    m_notedState = m_currentState;
    return m_notedState;
}

void UndoManager::markSaved(quint64 noted) {
    m_savedState = noted == m_notedState ? noted : 0;
    publish();
}

void UndoManager::markEdited() {
    forgetKeptStates();
    publish();
}

void UndoManager::publish() {
    if (m_activity != Activity::None)
        return;
    Q_EMIT changed();
    if (std::exchange(m_publishedEdited, isDocumentEdited()) != isDocumentEdited())
        Q_EMIT documentEditedChanged(isDocumentEdited());
}
