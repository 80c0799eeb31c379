#pragma once

#include "PackedLinks.h"

#include <qpdf/QPDFObjectHandle.hh>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

/// Takes destinations, actions that go to them, and what actions do to fields, out of what may carry them: links,
/// outline entries, triggers.
class ActionPruner {
public:
    using Test = std::function<bool(QPDFObjectHandle object)>;

    /// What takes the place of a destination that stays; a null object for one that stays as it is.
    using Replace = std::function<QPDFObjectHandle(QPDFObjectHandle destination)>;

    /// `isGone` is given destinations of any kind: arrays, names, strings. `isGoneField` is given what actions name
    /// fields and annotations by: references, and full names as strings.
    ActionPruner(Test isGone, Test isGoneField, Replace replace = {})
        : m_isGone(std::move(isGone)), m_isGoneField(std::move(isGoneField)), m_replace(std::move(replace)) {}

    /// Those of the pages' annotations that are texts. Without them these are left alone.
    void setLinks(PackedLinks* links) { m_links = links; }

    /// The destination and the action at these keys of a dictionary, which may be the same key.
    void pruneTarget(QPDFObjectHandle owner, const char* destinationKey, const char* actionKey);
    /// The actions that events set off.
    void pruneTriggers(QPDFObjectHandle owner);
    /// A page's triggers and those of its annotations, and where these lead.
    void prunePage(QPDFObjectHandle page);

private:
    void pruneLink(PackedLinks::Link& link, QPDF& file);
    bool isGoneAction(QPDFObjectHandle action, int depth = 0);
    bool leadsToGone(QPDFObjectHandle action);
    bool isGoneTarget(QPDFObjectHandle owner, const char* key);
    void pruneFields(QPDFObjectHandle action);

    Test m_isGone;
    Test m_isGoneField;
    Replace m_replace;
    PackedLinks* m_links = nullptr;
    std::map<QPDFObjGen, bool> m_seen; // actions, and whether they are gone
    std::set<QPDFObjGen> m_seenAnnotations;

    struct Target {
        bool isGone = false;
        std::string replacement; ///< empty for one that stays as it is
    };
    std::unordered_map<std::string, Target> m_targets; // of links that are texts, by their destinations
};
