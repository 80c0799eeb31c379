#include "Pruner.h"

#include "FieldScripts.h"
#include "PdfValues.h"
#include "RemovedPages.h"

#include <algorithm>

namespace {

constexpr int deepest = 64;

class FormPruner {
public:
    explicit FormPruner(RemovedPages& gone) : m_gone(gone) {}

    void prune(QPDFObjectHandle form) {
        QPDFObjectHandle fields = form.getKey("/Fields");
        if (fields.isArray())
            pruneList(fields, {}, 0);
        for (const QPDFObjectHandle& page : m_gone.removed)
            dropUnlisted(page);
        pruneScripts();
        QPDFObjectHandle order = form.getKey("/CO");
        for (int i = order.isArray() ? order.getArrayNItems() - 1 : -1; i >= 0; --i) {
            QPDFObjectHandle field = order.getArrayItem(i);
            const bool calculates = PdfValues::entry(PdfValues::entry(field, "/AA"), "/C").isDictionary();
            if (m_gone.fields.count(field.getObjGen()) > 0 || (m_hasDropped && !calculates))
                order.eraseItem(i);
        }
        // XFA describes the whole form a second time, in XML, with the values of all fields: those of the dropped ones
        // could still be read there.
        if (m_hasDropped)
            form.removeKey("/XFA");
    }

private:
    /// True when something of the list stays.
    bool pruneList(QPDFObjectHandle list, const QString& above, int depth) {
        std::vector<QPDFObjectHandle> kept;
        for (const QPDFObjectHandle& field : list.aitems())
            if (stays(field, above, depth))
                kept.push_back(field);
        if (int(kept.size()) != list.getArrayNItems())
            list.setArrayFromVector(kept);
        return !kept.empty();
    }

    bool stays(QPDFObjectHandle field, const QString& above, int depth) {
        const bool again = field.isIndirect() && !m_seen.insert(field.getObjGen()).second;
        const QString own = PdfValues::toText(PdfValues::entry(field, "/T"));
        const QString name = above.isEmpty() || own.isEmpty() ? above + own : above + QLatin1Char('.') + own;
        QPDFObjectHandle kids = PdfValues::entry(field, "/Kids");
        const bool hasKids = kids.isArray() && kids.getArrayNItems() > 0;
        const bool isGone = !field.isDictionary() || again || depth > deepest || m_gone.hasAnnotation(field) ||
                            (hasKids && !pruneList(kids, name, depth + 1));
        if (isGone && !again && field.isDictionary()) {
            drop(field);
            if (!own.isEmpty())
                m_gone.fieldNames.insert(name);
        }
        if (!isGone)
            m_kept.push_back(field);
        return !isGone;
    }

    /// What names a dropped field would look for it in vain, or find another one that takes its name later.
    void pruneScripts() {
        const auto namesGone = [this](const FieldScripts::Names& names) {
            return std::any_of(names.texts.begin(), names.texts.end(),
                               [this](const QString& name) { return m_gone.fieldNames.count(name) > 0; });
        };
        if (!m_gone.fieldNames.empty())
            for (const QPDFObjectHandle& field : m_kept)
                FieldScripts::dropWhere(field, namesGone);
    }

    void drop(QPDFObjectHandle field) {
        m_hasDropped = true;
        if (field.isIndirect())
            m_gone.fields.insert(field.getObjGen());
    }

    /// Fields that the form doesn't list, but that widgets of a removed page belong to.
    void dropUnlisted(QPDFObjectHandle page) {
        QPDFObjectHandle annotations = page.getKey("/Annots");
        if (!annotations.isArray())
            return;
        for (const QPDFObjectHandle& annotation : annotations.aitems()) {
            QPDFObjectHandle field = PdfValues::entry(annotation, "/Parent");
            for (int depth = 0;
                 m_gone.hasAnnotation(annotation) && depth < deepest && field.isDictionary() && field.isIndirect() &&
                 field.getKey("/Kids").isArray() && m_seen.count(field.getObjGen()) == 0;
                 ++depth) {
                std::vector<QPDFObjectHandle> kept;
                for (QPDFObjectHandle kid : field.getKey("/Kids").aitems())
                    if (kid.isDictionary() && !m_gone.hasField(kid))
                        kept.push_back(kid);
                if (!kept.empty()) {
                    field.replaceKey("/Kids", QPDFObjectHandle::newArray(kept));
                    break;
                }
                drop(field);
                field = field.getKey("/Parent");
            }
        }
    }

    RemovedPages& m_gone;
    std::set<QPDFObjGen> m_seen;
    std::vector<QPDFObjectHandle> m_kept; // fields and widgets
    bool m_hasDropped = false;
};

} // namespace

void Pruner::pruneForm(RemovedPages& gone, ObjectStore& objects) {
    QPDFObjectHandle form = objects.root().getKey("/AcroForm");
    if (form.isDictionary())
        FormPruner(gone).prune(form);
}
