#include "Engine/PageRecorder.h"

#include "Engine/EngineValues.h"
#include "Engine/PageObjects.h"

#include <algorithm>

namespace {

/// How a form XObject comes to fill its annotation's rectangle (ISO 32000-1, 12.5.5, algorithm 8.1); the matrix of the
/// form itself left out, which running it adds.
fz_matrix fit(const fz_rect& rect, const fz_rect& box, const fz_matrix& matrix) {
    const fz_rect shown = fz_transform_rect(box, matrix);
    const float width = shown.x1 - shown.x0;
    const float height = shown.y1 - shown.y0;
    const float sx = width > 0 ? (rect.x1 - rect.x0) / width : 1;
    const float sy = height > 0 ? (rect.y1 - rect.y0) / height : 1;
    return fz_make_matrix(sx, 0, 0, sy, rect.x0 - shown.x0 * sx, rect.y0 - shown.y0 * sy);
}

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

std::shared_ptr<const RecordedPage> PageRecorder::recordState(SourceEngine& engine, int pageNumber, int index,
                                                              const QByteArray& state) {
    const SourceEngine::Lease borrowed = engine.lease();
    if (!borrowed || pageNumber < 0 || pageNumber >= engine.pageCount())
        return nullptr;
    fz_context* context = borrowed.context();
    Recording recording(borrowed);
    pdf_processor* processor = nullptr;
    bool drawn = false;
    engineTry(context, [&] {
        pdf_obj* page = pdf_lookup_page_obj(context, borrowed.document(), pageNumber);
        pdf_obj* annotation = pdf_array_get(context, pdf_dict_get(context, page, PDF_NAME(Annots)), index);
        pdf_obj* look = pdf_dict_gets(context, pdf_dict_getp(context, annotation, "AP/N"), state.constData());
        if (!pdf_is_stream(context, look))
            return;
        const fz_rect rect = pdf_dict_get_rect(context, annotation, PDF_NAME(Rect));
        const fz_matrix place = fit(rect, pdf_xobject_bbox(context, look), pdf_xobject_matrix(context, look));
        recording.list = fz_new_display_list(context, rect);
        recording.device = fz_new_list_device(context, recording.list);
        processor = pdf_new_run_processor(context, recording.device, place, "View", nullptr, nullptr, nullptr);
        processor->op_q(context, processor);
        processor->op_Do_form(context, processor, nullptr, look, nullptr);
        processor->op_Q(context, processor);
        pdf_close_processor(context, processor);
        drawn = true;
    });
    pdf_drop_processor(context, processor);
    return drawn ? recording.finish() : nullptr;
}
