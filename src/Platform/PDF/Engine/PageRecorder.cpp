#include "Engine/PageRecorder.h"

#include "Engine/EngineValues.h"
#include "Engine/PageObjects.h"

#include <algorithm>

namespace {

struct Recording {
    std::shared_ptr<const EngineInstance> instance;
    fz_context* context;
    pdf_page* page = nullptr;
    fz_display_list* list = nullptr;
    fz_device* device = nullptr;
    fz_matrix toPage = fz_identity; // the engine's coordinates to page coordinates

    explicit Recording(const SourceEngine::Lease& lease) : instance(lease.instance()), context(lease.context()) {}
    ~Recording() {
        fz_drop_device(context, device);
        fz_drop_display_list(context, list);
        fz_drop_page(context, reinterpret_cast<fz_page*>(page));
    }
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    bool begin(pdf_document* document, int pageNumber) {
        page = PageObjects::load(context, document, pageNumber);
        return page && engineTry(context, [&] {
                   fz_rect box;
                   fz_matrix fromPage;
                   pdf_page_transform(context, page, &box, &fromPage);
                   toPage = fz_invert_matrix(fromPage);
                   list = fz_new_display_list(context, box);
                   device = fz_new_list_device(context, list);
               });
    }

    std::shared_ptr<const RecordedPage> finish() {
        engineTry(context, [&] { fz_close_device(context, device); });
        return std::make_shared<const RecordedPage>(instance, std::exchange(list, nullptr));
    }
};

/// The place of an annotation's dictionary in the page's Annots array; -1 when it isn't there.
int placeOf(fz_context* context, pdf_obj* annots, pdf_obj* dictionary) {
    const int number = pdf_to_num(context, dictionary);
    const int count = pdf_array_len(context, annots);
    for (int i = 0; i < count; ++i) {
        pdf_obj* entry = pdf_array_get(context, annots, i);
        if (number ? pdf_to_num(context, entry) == number
                   : pdf_resolve_indirect(context, entry) == pdf_resolve_indirect(context, dictionary))
            return i;
    }
    return -1;
}

/// Calls `action(annotation, place)` for what the page draws over its content, in drawing order: the other annotations
/// first, form fields over them.
template <typename Action>
void forEachAnnotation(fz_context* context, pdf_page* page, Action&& action) {
    pdf_obj* annots = pdf_dict_get(context, page->obj, PDF_NAME(Annots));
    for (pdf_annot* annot = pdf_first_annot(context, page); annot; annot = pdf_next_annot(context, annot))
        action(annot, placeOf(context, annots, pdf_annot_obj(context, annot)));
    for (pdf_annot* widget = pdf_first_widget(context, page); widget; widget = pdf_next_widget(context, widget))
        action(widget, placeOf(context, annots, pdf_annot_obj(context, widget)));
}

/// Links and windows of notes have no look of their own.
bool hasBareAnnotation(fz_context* context, pdf_obj* page) {
    pdf_obj* annots = pdf_dict_get(context, page, PDF_NAME(Annots));
    const int count = pdf_array_len(context, annots);
    for (int i = 0; i < count; ++i) {
        pdf_obj* dictionary = pdf_array_get(context, annots, i);
        pdf_obj* subtype = pdf_dict_get(context, dictionary, PDF_NAME(Subtype));
        if (pdf_is_name(context, subtype) && !pdf_name_eq(context, subtype, PDF_NAME(Link)) &&
            !pdf_name_eq(context, subtype, PDF_NAME(Popup)) && !EngineValues::hasAppearance(context, dictionary))
            return true;
    }
    return false;
}

} // namespace

std::shared_ptr<const RecordedPage> PageRecorder::record(SourceEngine& engine, const SourceEngine::RecordingKey& key,
                                                         fz_cookie* cookie) {
    if (auto kept = engine.recording(key))
        return kept;
    const SourceEngine::Lease borrowed = engine.lease();
    if (!borrowed || key.pageNumber < 0 || key.pageNumber >= engine.pageCount())
        return nullptr;
    fz_context* context = borrowed.context();
    Recording recording(borrowed);
    if (!recording.begin(borrowed.document(), key.pageNumber))
        return nullptr;
    engineTry(context,
              [&] { pdf_run_page_contents(context, recording.page, recording.device, recording.toPage, cookie); });
    if (key.annotations) {
        engineTry(context, [&] {
            forEachAnnotation(context, recording.page, [&](pdf_annot* annot, int place) {
                // The engine makes a look of its own for one without, which its live object draws as well.
                if (!std::binary_search(key.hiddenAnnotations.begin(), key.hiddenAnnotations.end(), place) &&
                    (key.imaginedLooks || EngineValues::hasAppearance(context, pdf_annot_obj(context, annot))))
                    pdf_run_annot(context, annot, recording.device, recording.toPage, cookie);
            });
        });
    }
    bool isBare = false;
    engineTry(context, [&] { isBare = hasBareAnnotation(context, recording.page->obj); });
    if (isBare)
        engine.noteBareAnnotations(key.pageNumber);
    if (cookie && cookie->abort)
        return nullptr;
    auto recorded = recording.finish();
    engine.keepRecording(key, recorded);
    return recorded;
}

std::shared_ptr<const RecordedPage> PageRecorder::recordAnnotation(SourceEngine& engine, int pageNumber, int index) {
    const SourceEngine::Lease borrowed = engine.lease();
    if (!borrowed || pageNumber < 0 || pageNumber >= engine.pageCount())
        return nullptr;
    fz_context* context = borrowed.context();
    Recording recording(borrowed);
    if (!recording.begin(borrowed.document(), pageNumber))
        return nullptr;
    bool drawn = false;
    engineTry(context, [&] {
        forEachAnnotation(context, recording.page, [&](pdf_annot* annot, int place) {
            if (place != index)
                return;
            pdf_run_annot(context, annot, recording.device, recording.toPage, nullptr);
            drawn = true;
        });
    });
    return drawn ? recording.finish() : nullptr;
}
