#include "Pruner.h"

#include "PdfValues.h"
#include "RemovedPages.h"

namespace {

constexpr int deepest = 64;

class FormPruner {
public:
    explicit FormPruner(const RemovedPages& gone) : m_gone(gone) {}

    void prune(QPDFObjectHandle form) {
        QPDFObjectHandle fields = form.getKey("/Fields");
        if (fields.isArray())
            pruneList(fields, 0);
        QPDFObjectHandle order = form.getKey("/CO");
        for (int i = order.isArray() ? order.getArrayNItems() - 1 : -1; i >= 0; --i)
            if (m_dropped.count(order.getArrayItem(i).getObjGen()) > 0)
                order.eraseItem(i);
        // XFA describes the whole form a second time, in XML, with the values of all fields: those of the dropped ones
        // could still be read there.
        if (!m_dropped.empty())
            form.removeKey("/XFA");
    }

private:
    /// True when something of the list stays.
    bool pruneList(QPDFObjectHandle list, int depth) {
        std::vector<QPDFObjectHandle> kept;
        for (const QPDFObjectHandle& field : list.aitems())
            if (stays(field, depth))
                kept.push_back(field);
        if (int(kept.size()) != list.getArrayNItems())
            list.setArrayFromVector(kept);
        return !kept.empty();
    }

    bool stays(QPDFObjectHandle field, int depth) {
        const QPDFObjGen id = field.getObjGen();
        const bool again = field.isIndirect() && !m_seen.insert(id).second;
        QPDFObjectHandle kids = PdfValues::entry(field, "/Kids");
        const bool hasKids = kids.isArray() && kids.getArrayNItems() > 0;
        const bool isGone = !field.isDictionary() || again || depth > deepest || m_gone.hasAnnotation(field) ||
                            (hasKids && !pruneList(kids, depth + 1));
        if (isGone && !again && field.isDictionary())
            m_dropped.insert(id);
        return !isGone;
    }

    const RemovedPages& m_gone;
    std::set<QPDFObjGen> m_seen;
    std::set<QPDFObjGen> m_dropped;
};

} // namespace

void Pruner::pruneForm(const RemovedPages& gone, ObjectStore& objects) {
    QPDFObjectHandle form = objects.root().getKey("/AcroForm");
    if (form.isDictionary())
        FormPruner(gone).prune(form);
}
