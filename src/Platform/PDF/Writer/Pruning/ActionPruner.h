#pragma once

#include <qpdf/QPDFObjectHandle.hh>

#include <functional>
#include <set>

/// Takes destinations, actions that go to them, and what actions do to fields, out of what may carry them: links,
/// outline entries, triggers.
class ActionPruner {
public:
    using Test = std::function<bool(QPDFObjectHandle object)>;

    /// `isGone` is given destinations of any kind: arrays, names, strings. `isGoneField` is given what actions name
    /// fields and annotations by: references, and full names as strings.
    ActionPruner(Test isGone, Test isGoneField) : m_isGone(std::move(isGone)), m_isGoneField(std::move(isGoneField)) {}

    /// The destination and the action at these keys of a dictionary, which may be the same key.
    void pruneTarget(QPDFObjectHandle owner, const char* destinationKey, const char* actionKey);
    /// The actions that events set off.
    void pruneTriggers(QPDFObjectHandle owner);
    /// A page's triggers and those of its annotations, and where these lead.
    void prunePage(QPDFObjectHandle page);

private:
    bool isGoneAction(QPDFObjectHandle action, int depth = 0);
    bool leadsToGone(QPDFObjectHandle action);
    void pruneFields(QPDFObjectHandle action);

    Test m_isGone;
    Test m_isGoneField;
    std::set<QPDFObjGen> m_seen;
};
