#include "ActionPruner.h"

namespace {

constexpr int longestChain = 64;

} // namespace

bool ActionPruner::isGoneTarget(QPDFObjectHandle owner, const char* key) {
    QPDFObjectHandle destination = owner.getKey(key);
    if (m_isGone(destination))
        return true;
    if (m_replace)
        if (QPDFObjectHandle replacement = m_replace(destination); !replacement.isNull())
            owner.replaceKey(key, replacement);
    return false;
}

bool ActionPruner::leadsToGone(QPDFObjectHandle action) {
    return action.getKey("/S").isNameAndEquals("/GoTo") && isGoneTarget(action, "/D");
}

/// What resets, submits or hides fields names them at these keys.
void ActionPruner::pruneFields(QPDFObjectHandle action) {
    for (const char* key : {"/Fields", "/T"}) {
        QPDFObjectHandle named = action.getKey(key);
        if (named.isArray()) {
            for (int i = named.getArrayNItems() - 1; i >= 0; --i)
                if (m_isGoneField(named.getArrayItem(i)))
                    named.eraseItem(i);
        } else if ((named.isDictionary() || named.isString()) && m_isGoneField(named)) {
            action.replaceKey(key, QPDFObjectHandle::newArray());
        }
    }
}

/// True when the action goes to a destination that is gone. Later actions of its chain that do so are taken out of it.
bool ActionPruner::isGoneAction(QPDFObjectHandle action, int depth) {
    if (!action.isDictionary())
        return false;
    // Each once, since the branches of a chain may meet again.
    if (action.isIndirect())
        if (const auto [known, isNew] = m_seen.emplace(action.getObjGen(), false); !isNew)
            return known->second;
    QPDFObjectHandle kind = action.getKey("/S");
    if (kind.isNameAndEquals("/ResetForm") || kind.isNameAndEquals("/SubmitForm") || kind.isNameAndEquals("/Hide"))
        pruneFields(action);
    QPDFObjectHandle next = action.getKey("/Next");
    if (depth >= longestChain) {
        action.removeKey("/Next");
    } else if (next.isDictionary()) {
        if (isGoneAction(next, depth + 1))
            action.removeKey("/Next");
    } else if (next.isArray()) {
        for (int i = next.getArrayNItems() - 1; i >= 0; --i)
            if (isGoneAction(next.getArrayItem(i), depth + 1))
                next.eraseItem(i);
    }
    const bool isGone = leadsToGone(action);
    if (action.isIndirect())
        m_seen[action.getObjGen()] = isGone;
    return isGone;
}

void ActionPruner::pruneTarget(QPDFObjectHandle owner, const char* destinationKey, const char* actionKey) {
    if (isGoneAction(owner.getKey(actionKey)))
        owner.removeKey(actionKey);
    QPDFObjectHandle destination = owner.getKey(destinationKey);
    if (!destination.isNull() && !destination.isDictionary() && isGoneTarget(owner, destinationKey))
        owner.removeKey(destinationKey);
}

void ActionPruner::pruneTriggers(QPDFObjectHandle owner) {
    QPDFObjectHandle triggers = owner.getKey("/AA");
    if (!triggers.isDictionary())
        return;
    for (const std::string& trigger : triggers.getKeys())
        if (isGoneAction(triggers.getKey(trigger)))
            triggers.removeKey(trigger);
}

void ActionPruner::pruneLink(PackedLinks::Link& link, QPDF& file) {
    if (link.destination.size == 0)
        return;
    const auto [known, isNew] = m_targets.try_emplace(link.destinationText());
    Target& target = known->second;
    if (isNew) {
        QPDFObjectHandle destination = QPDFObjectHandle::parse(&file, known->first);
        target.isGone = m_isGone(destination);
        if (!target.isGone && m_replace)
            if (QPDFObjectHandle replacement = m_replace(destination); !replacement.isNull())
                target.replacement = replacement.unparse();
    }
    if (target.isGone)
        link.leadNowhere();
    else if (!target.replacement.empty())
        link.leadTo(target.replacement);
}

void ActionPruner::prunePage(QPDFObjectHandle page) {
    pruneTriggers(page);
    QPDFObjectHandle annotations = page.getKey("/Annots");
    if (!annotations.isArray())
        return;
    for (QPDFObjectHandle annotation : annotations.aitems()) {
        if (annotation.isIndirect() && !m_seenAnnotations.insert(annotation.getObjGen()).second)
            continue;
        if (PackedLinks::Link* link = m_links ? m_links->find(annotation.getObjGen()) : nullptr)
            pruneLink(*link, *page.getOwningQPDF());
        if (!annotation.isDictionary())
            continue;
        pruneTarget(annotation, "/Dest", "/A");
        pruneTriggers(annotation);
        if (isGoneAction(annotation.getKey("/PA")))
            annotation.removeKey("/PA");
    }
}
