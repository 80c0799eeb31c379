#pragma once

#include <qpdf/QPDFObjectHandle.hh>

#include <functional>
#include <set>

/// Takes destinations, and actions that go to them, out of what may carry them: links, outline entries, triggers.
class ActionPruner {
public:
    /// `isGone` is given destinations of any kind: arrays, names, strings.
    explicit ActionPruner(std::function<bool(QPDFObjectHandle destination)> isGone) : m_isGone(std::move(isGone)) {}

    /// The destination and the action at these keys of a dictionary, which may be the same key.
    void pruneTarget(QPDFObjectHandle owner, const char* destinationKey, const char* actionKey);
    /// The actions that events set off.
    void pruneTriggers(QPDFObjectHandle owner);
    /// A page's triggers and those of its annotations, and where these lead.
    void prunePage(QPDFObjectHandle page);

private:
    bool isGoneAction(QPDFObjectHandle action, int depth = 0);
    bool leadsToGone(QPDFObjectHandle action);

    std::function<bool(QPDFObjectHandle)> m_isGone;
    std::set<QPDFObjGen> m_seen;
};
