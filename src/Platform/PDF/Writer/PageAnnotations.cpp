#include "PageAnnotations.h"

#include "AppearanceRecorder.h"
#include "AppearanceStreams.h"
#include "FormFieldValues.h"
#include "FormFields.h"
#include "FormTree.h"
#include "PDFAnnotation.h"
#include "PDFPage.h"
#include "PdfValues.h"
#include "Signatures.h"
#include "SourceFiles.h"
#include "StructureLinks.h"

#include <QUuid>

#include <set>

namespace {

using Values = PDFAnnotationValues;
namespace Subtype = PDFAnnotationSubtype;

/// What the program reads in the page's source, by place: the annotations before any change.
std::map<int, Values> valuesInFile(const PDFPage& page) {
    std::map<int, Values> values;
    const auto unchanged = std::make_shared<PDFPage>(page.content());
    for (const auto& annotation : unchanged->annotations())
        values.emplace(annotation->origin()->index, annotation->values());
    return values;
}

bool isFromHere(const PDFAnnotation& annotation, const PDFPage& page) {
    return annotation.origin() && annotation.origin()->content == page.content();
}

/// True when the object can go on standing for the annotation. One that isn't to be changed needn't be read for that,
/// which takes most of the time where a page is full of links.
bool stays(const PDFAnnotation& annotation, QPDFObjectHandle object) {
    return (!annotation.isModified() && object.isIndirect()) || object.isDictionary();
}

bool isWidget(QPDFObjectHandle object) {
    return object.getKey("/Subtype").isNameAndEquals("/Widget");
}

/// A name for an annotation that is the same each time the same annotation is written.
QPDFObjectHandle uniqueName(QPDFObjectHandle dictionary, QPDFObjectHandle pageObject, int ordinal) {
    const std::string content = pageObject.unparse() + std::to_string(ordinal) + dictionary.unparse();
    const QUuid space(0x6a5c1f0e, 0x2f0b, 0x4b1d, 0x9a, 0x3e, 0x51, 0x8e, 0x0c, 0x7d, 0x24, 0x96);
    return PdfValues::text(
        QUuid::createUuidV5(space, QByteArray::fromStdString(content)).toString(QUuid::WithoutBraces));
}

} // namespace

PageAnnotations::PageAnnotations(ObjectStore& objects, FormFields& form, AppearanceRecorder& recorder,
                                 SourceFiles& files, AnnotationDictionary::PageLookup pages)
    : m_objects(objects), m_form(form), m_recorder(recorder), m_files(files), m_pages(std::move(pages)) {}

std::function<bool(int place)> PageAnnotations::placesInUse(const PDFPage& page) {
    std::set<int> gone;
    for (const auto& [place, values] : valuesInFile(page))
        gone.insert(place);
    for (const auto& annotation : page.annotations())
        if (isFromHere(*annotation, page))
            gone.erase(annotation->origin()->index);
    return [gone = std::move(gone)](int place) { return gone.count(place) == 0; };
}

void PageAnnotations::write(const PDFPage& page, QPDFObjectHandle pageObject,
                            const std::vector<QPDFObjectHandle>& original) {
    const std::map<int, Values> before = valuesInFile(page);
    std::vector<Entry> entries;
    std::set<int> used;
    for (const auto& annotation : page.annotations()) {
        const int place = isFromHere(*annotation, page) ? annotation->origin()->index : -1;
        const bool inPlace = place >= 0 && place < int(original.size()) && before.count(place) > 0 &&
                             stays(*annotation, original[std::size_t(place)]) && used.insert(place).second;
        if (inPlace) {
            QPDFObjectHandle object = original[std::size_t(place)];
            if (annotation->isModified()) {
                if (!object.isIndirect())
                    object = m_objects.addCopy(object);
                update(*annotation, object, before.at(place));
            }
            entries.push_back({object, place});
        } else if (annotation->origin()) {
            entries.push_back({copyFromElsewhere(*annotation, pageObject), -1});
        } else {
            entries.push_back({newAnnotation(*annotation, pageObject, int(entries.size())), -1});
        }
    }

    std::vector<QPDFObjectHandle> removed;
    std::vector<Entry> bottom; // below all that was read
    for (int place = 0; place < int(original.size()); ++place) {
        QPDFObjectHandle object = original[std::size_t(place)];
        if (used.count(place) > 0)
            continue;
        if (before.count(place) > 0) {
            if (object.isDictionary())
                removed.push_back(object);
            continue;
        }
        if (object.isNull())
            continue;
        if (before.empty() || place < before.begin()->first) {
            bottom.push_back({object, place});
            continue;
        }
        // Behind the one that it followed.
        auto at = entries.end();
        while (at != entries.begin() && ((at - 1)->place > place || (at - 1)->place < 0))
            --at;
        entries.insert(at, {object, place});
    }
    entries.insert(entries.begin(), bottom.begin(), bottom.end());
    dropRemoved(entries, removed, pageObject);

    QPDFObjectHandle list = QPDFObjectHandle::newArray();
    for (const Entry& entry : entries)
        list.appendItem(entry.object);
    if (pageObject.getKey("/Annots").unparseResolved() == list.unparse())
        return;
    if (entries.empty())
        m_objects.remove(pageObject, "/Annots");
    else
        m_objects.set(pageObject, "/Annots", list);
}

void PageAnnotations::dropRemoved(std::vector<Entry>& entries, const std::vector<QPDFObjectHandle>& removed,
                                  QPDFObjectHandle pageObject) {
    if (removed.empty())
        return;
    const auto isRemoved = [&removed](QPDFObjectHandle object) {
        return object.isIndirect() &&
               std::any_of(removed.begin(), removed.end(), [&object](const QPDFObjectHandle& gone) {
                   return gone.isIndirect() && gone.getObjGen() == object.getObjGen();
               });
    };
    for (const QPDFObjectHandle& gone : removed)
        if (isWidget(gone))
            m_form.remove(gone);
    for (const QPDFObjectHandle& gone : removed)
        StructureLinks::drop(gone, m_objects);
    // The window of a note goes with the note.
    std::erase_if(entries, [&](Entry& entry) {
        return PdfValues::entry(entry.object, "/Subtype").isNameAndEquals("/Popup") &&
               isRemoved(entry.object.getKey("/Parent"));
    });
    for (Entry& entry : entries) {
        if (!entry.object.isDictionary() || !isRemoved(entry.object.getKey("/IRT")))
            continue;
        // A reply now answers what the removed one answered.
        QPDFObjectHandle above = entry.object.getKey("/IRT");
        for (std::size_t step = 0; step <= removed.size() && isRemoved(above); ++step)
            above = above.getKey("/IRT");
        QPDFObjectHandle changed = entry.object.isIndirect() ? entry.object : m_objects.addCopy(entry.object);
        entry.object = changed;
        if (above.isDictionary() && above.isIndirect() && !isRemoved(above)) {
            m_objects.set(changed, "/IRT", above);
        } else {
            m_objects.remove(changed, "/IRT");
            m_objects.remove(changed, "/RT");
        }
    }
    // Whatever still refers to them, such as actions of other pages, now refers to nothing.
    for (QPDFObjectHandle gone : removed) {
        QPDFObjectHandle page = gone.getKey("/P");
        const bool isElsewhere = !page.isNull() && page.getObjGen() != pageObject.getObjGen();
        const bool isListedTwice = std::any_of(entries.begin(), entries.end(), [&gone](const Entry& entry) {
            return entry.object.isIndirect() && entry.object.getObjGen() == gone.getObjGen();
        });
        if (!isElsewhere && !isListedTwice)
            m_objects.erase(gone);
    }
}

QPDFObjectHandle PageAnnotations::newAnnotation(const PDFAnnotation& annotation, QPDFObjectHandle pageObject,
                                                int ordinal) {
    QPDFObjectHandle object = m_objects.add(AnnotationDictionary::make(annotation.values(), m_pages));
    object.replaceKey("/P", pageObject);
    object.replaceKey("/NM", uniqueName(object, pageObject, ordinal));
    if (annotation.type() == Subtype::widget)
        m_form.add(object, annotation.values());
    writeLook(annotation, object, nullptr);
    return object;
}

QPDFObjectHandle PageAnnotations::copyFromElsewhere(const PDFAnnotation& annotation, QPDFObjectHandle pageObject) {
    const PDFAnnotationOrigin& origin = *annotation.origin();
    // Also for one of this very file, whose own dictionary may be changed already.
    SourceFiles::Foreign& foreign = m_files.foreign(origin.content.source);
    QPDFObjectHandle found = foreign.file.annotation(origin.content.pageNumber, origin.index);
    if (!found.isDictionary())
        return newAnnotation(annotation, pageObject, origin.index);

    QPDFObjectHandle value = found.shallowCopy();
    const bool widget = isWidget(value);
    if (widget)
        for (const char* key : {"/FT", "/Ff", "/V", "/DV", "/DA", "/Q", "/MaxLen", "/Opt"})
            if (QPDFObjectHandle inherited = FormTree::inherited(found, key); !inherited.isNull())
                value.replaceKey(key, inherited);
    if (widget && Signatures::isField(found))
        value.removeKey("/V"); // it signed what is there
    for (const char* key : {"/P", "/Popup", "/IRT", "/RT", "/StructParent", "/Parent", "/Kids", "/NM", "/Dest"})
        value.removeKey(key);
    if (PdfValues::entry(value.getKey("/A"), "/S").isNameAndEquals("/GoTo"))
        value.removeKey("/A");
    QPDFObjectHandle object = m_objects.add(foreign.copier.copy(value));
    object.replaceKey("/P", pageObject);
    if (widget)
        m_form.addTopField(object, annotation.fieldName());
    if (const std::optional<PDFDestination> target = annotation.destination())
        if (QPDFObjectHandle place = AnnotationDictionary::destination(*target, m_pages); !place.isNull())
            object.replaceKey("/Dest", place);

    const auto page = std::make_shared<PDFPage>(origin.content);
    const std::map<int, Values> before = valuesInFile(*page);
    if (annotation.isModified() && before.count(origin.index) > 0)
        update(annotation, object, before.at(origin.index));
    return object;
}

void PageAnnotations::update(const PDFAnnotation& annotation, QPDFObjectHandle object, const Values& before) {
    AnnotationDictionary::update(object, annotation.values(), before, m_pages);
    m_objects.noteChange(object);
    if (annotation.type() == Subtype::widget) {
        const FormFields::Look look = m_form.update(object, annotation.values(), before);
        if (look == FormFields::Look::missing)
            m_recorder.record(annotation, object);
        if (look != FormFields::Look::unchanged)
            return;
        const bool lacksLook = annotation.values().field.inFile && !annotation.values().field.inFile->hasStateLooks;
        if (lacksLook && annotation.buttonWidgetState() != before.field.state)
            writeButtonLook(annotation, object);
    }
    writeLook(annotation, object, &before);
}

void PageAnnotations::writeLook(const PDFAnnotation& annotation, QPDFObjectHandle object, const Values* before) {
    if (annotation.hasCustomAppearance()) {
        m_recorder.record(annotation, object);
        return;
    }
    const Values& values = annotation.values();
    if (before && !AnnotationDictionary::looksDifferent(values, *before))
        return;
    if (values.type == Subtype::widget) {
        const bool isText =
            values.field.type == PDFWidgetFieldType::text || values.field.type == PDFWidgetFieldType::choice;
        if (isText && !m_form.makeTextAppearance(object, values.interiorColor))
            m_recorder.record(annotation, object);
        if (values.field.type == PDFWidgetFieldType::button && !before)
            writeButtonLook(annotation, object);
        return;
    }
    if (values.type == Subtype::freeText) {
        m_recorder.record(annotation, object);
        return;
    }
    const std::optional<AnnotationDrawing> drawing = AnnotationDrawing::of(values);
    if (!drawing)
        return;
    // An appearance is clipped to its box, and the rectangle must match that. The bounds of a line say nothing of where
    // it is, while for other programs the rectangle is where it can be clicked.
    const QRectF extent = drawing->extent();
    const bool fits = extent.isNull() || values.bounds.adjusted(-0.01, -0.01, 0.01, 0.01).contains(extent);
    const bool isLine = values.type == Subtype::line && !extent.isNull();
    const QRectF box = isLine ? extent : fits ? values.bounds : values.bounds.united(extent);
    object.replaceKey("/Rect", PdfValues::rect(box));
    if (drawing->label) { // words take a recording
        m_recorder.record(annotation, object, box);
        m_objects.noteChange(object);
        return;
    }
    QPDFObjectHandle looks = QPDFObjectHandle::newDictionary();
    looks.replaceKey("/N", AppearanceStreams::form(m_objects, *drawing, box));
    object.replaceKey("/AP", looks);
    object.removeKey("/AS");
    m_objects.noteChange(object);
}

void PageAnnotations::writeButtonLook(const PDFAnnotation& annotation, QPDFObjectHandle object) {
    Values values = annotation.values();
    QPDFObjectHandle states = QPDFObjectHandle::newDictionary();
    const QString onState = values.field.inFile ? values.field.inFile->onState : QStringLiteral("Yes");
    for (const PDFWidgetCellState state : {PDFWidgetCellState::on, PDFWidgetCellState::off}) {
        values.field.state = state;
        const std::string name = state == PDFWidgetCellState::on ? '/' + onState.toStdString() : "/Off";
        if (const auto drawing = AnnotationDrawing::of(values))
            states.replaceKey(name, AppearanceStreams::form(m_objects, *drawing, values.bounds));
    }
    if (states.getKeys().empty())
        return;
    QPDFObjectHandle looks = QPDFObjectHandle::newDictionary();
    looks.replaceKey("/N", states);
    m_objects.set(object, "/AP", looks);
}
