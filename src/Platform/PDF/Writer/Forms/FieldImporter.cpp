#include "FieldImporter.h"

#include "FieldScripts.h"
#include "FormFields.h"
#include "FormTree.h"
#include "PdfValues.h"
#include "Signatures.h"

#include <algorithm>

void FieldImporter::adopt(QPDFObjectHandle widget, QPDFObjectHandle copy, ObjectCopier& copier) {
    const std::vector<QPDFObjectHandle> chain = FormTree::chain(widget);
    m_origins[&copier].all.push_back({widget, copy});
    // It signed the file that it comes from, not this one.
    if (Signatures::isField(widget))
        copy.removeKey("/V");
    if (chain.size() < 2) {
        addToForm(widget, copy, copier);
        return;
    }
    QPDFObjectHandle parent = fieldCopy(chain, 1, copier);
    copy.replaceKey("/Parent", parent);
    parent.getKey("/Kids").appendItem(copy);
    m_objects.noteChange(parent);
}

QPDFObjectHandle FieldImporter::fieldCopy(const std::vector<QPDFObjectHandle>& chain, std::size_t place,
                                          ObjectCopier& copier) {
    QPDFObjectHandle original = chain[place];
    std::map<QPDFObjGen, QPDFObjectHandle>& fields = m_origins[&copier].fields;
    const auto known = fields.find(original.getObjGen());
    if (known != fields.end() && original.isIndirect())
        return known->second;
    QPDFObjectHandle value = original.shallowCopy();
    value.removeKey("/Parent");
    if (Signatures::isField(original))
        value.removeKey("/V");
    value.replaceKey("/Kids", QPDFObjectHandle::newArray());
    QPDFObjectHandle copy = copier.reserveFor(original);
    m_objects.fill(copy, copier.copy(value));
    fields[original.getObjGen()] = copy;
    m_origins[&copier].all.push_back({original, copy});
    if (place + 1 < chain.size()) {
        QPDFObjectHandle parent = fieldCopy(chain, place + 1, copier);
        copy.replaceKey("/Parent", parent);
        parent.getKey("/Kids").appendItem(copy);
        m_objects.noteChange(parent);
    } else {
        addToForm(original, copy, copier);
    }
    return copy;
}

void FieldImporter::addToForm(QPDFObjectHandle original, QPDFObjectHandle copy, ObjectCopier& copier) {
    Origin& origin = m_origins[&copier];
    if (!origin.form.isInitialized())
        bringForm(origin, original, copier);
    // What the fields took from their form they now carry themselves.
    for (const char* key : {"/DA", "/Q"})
        if (QPDFObjectHandle value = PdfValues::entry(origin.form, key); !copy.hasKey(key) && !value.isNull())
            copy.replaceKey(key, copier.copy(value));
    const QString name = PdfValues::toText(original.getKey("/T"));
    if (m_form.addTopField(copy, name) != name)
        origin.renamed.insert(original.getObjGen());
}

/// What belongs to all fields of a form; once.
void FieldImporter::bringForm(Origin& origin, QPDFObjectHandle original, ObjectCopier& copier) {
    m_form.dropOtherForm();
    origin.file = original.getOwningQPDF();
    origin.form = origin.file ? origin.file->getRoot().getKey("/AcroForm") : QPDFObjectHandle::newNull();
    QPDFObjectHandle fonts = PdfValues::entry(PdfValues::entry(origin.form, "/DR"), "/Font");
    if (fonts.isDictionary())
        m_form.addFonts(copier.copy(fonts.isIndirect() ? fonts.shallowCopy() : fonts));
    QPDFObjectHandle asks = PdfValues::entry(origin.form, "/NeedAppearances");
    if (asks.isBool() && asks.getBoolValue())
        m_objects.set(m_form.form(true), "/NeedAppearances", asks);
}

void FieldImporter::finish() {
    std::set<QString> namesHere;
    if (!m_origins.empty())
        FormTree::forEach(m_form.form(false),
                          [&namesHere](QPDFObjectHandle, const QString& name) { namesHere.insert(name); });
    ImportedScripts scripts(m_objects);
    for (auto& [copier, origin] : m_origins)
        finish(origin, namesHere, scripts);
}

const std::vector<ImportedScripts::Script>& FieldImporter::scriptsOf(const ObjectCopier& copier) const {
    static const std::vector<ImportedScripts::Script> none;
    const auto origin = m_origins.find(&copier);
    return origin == m_origins.end() ? none : origin->second.scripts;
}

/// The names of all fields of the file, and whether each still means the same field, or the same fields.
std::map<QString, bool> FieldImporter::namesThatStay(const Origin& origin) {
    std::map<QString, bool> names;
    bool isRenamed = false; // the field at the top above the one that is visited
    FormTree::forEach(origin.form, [&](QPDFObjectHandle field, const QString& name) {
        if (!field.getKey("/Parent").isDictionary())
            isRenamed = origin.renamed.count(field.getObjGen()) > 0;
        if (!field.hasKey("/T"))
            return;
        const bool stays = origin.came.count(field.getObjGen()) > 0 && !isRenamed;
        names[name] = stays;
        for (qsizetype dot = name.lastIndexOf(QLatin1Char('.')); dot > 0 && !stays;
             dot = name.lastIndexOf(QLatin1Char('.'), dot - 1))
            names[name.left(dot)] = false;
    });
    return names;
}

void FieldImporter::finish(Origin& origin, const std::set<QString>& namesHere, ImportedScripts& scripts) {
    std::map<QPDFObjGen, QPDFObjectHandle> copies;
    for (const Field& field : origin.all) {
        origin.came.insert(field.original.getObjGen());
        copies[field.original.getObjGen()] = field.copy;
    }
    const std::map<QString, bool> names = namesThatStay(origin);
    const bool haveChanged = std::any_of(names.begin(), names.end(), [](const auto& name) { return !name.second; });
    const auto isOther = [&](const QString& name) {
        const auto known = names.find(name);
        return known == names.end() ? namesHere.count(name) > 0 : !known->second;
    };
    const auto tellsOfOther = [&](const FieldScripts::Names& script) {
        return (haveChanged && script.computes) || std::any_of(script.texts.begin(), script.texts.end(), isOther);
    };
    ImportedScripts::Taken taken;
    if (origin.file)
        taken = scripts.take(*origin.file, tellsOfOther);
    for (const Field& field : origin.all)
        FieldScripts::dropWhere(field.copy, [&](const FieldScripts::Names& script) {
            return tellsOfOther(script) ||
                   std::any_of(taken.missing.begin(), taken.missing.end(),
                               [&](const QString& word) { return script.words.count(word) > 0; });
        });
    origin.scripts = std::move(taken.scripts);
    QPDFObjectHandle order = PdfValues::entry(origin.form, "/CO");
    if (!order.isArray())
        return;
    QPDFObjectHandle form = m_form.form(true);
    QPDFObjectHandle ours =
        form.getKey("/CO").isArray() ? form.getKey("/CO").shallowCopy() : QPDFObjectHandle::newArray();
    for (const QPDFObjectHandle& field : order.aitems())
        if (const auto copy = copies.find(field.getObjGen());
            copy != copies.end() && PdfValues::entry(copy->second.getKey("/AA"), "/C").isDictionary())
            ours.appendItem(copy->second);
    if (ours.getArrayNItems() > 0)
        m_objects.set(form, "/CO", ours);
}
