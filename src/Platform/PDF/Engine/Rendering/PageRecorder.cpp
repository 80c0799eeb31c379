#include "PageRecorder.h"

#include "AppearanceRunner.h"
#include "CancellationWatch.h"
#include "FormFieldReader.h"
#include "PageObjects.h"

#include <algorithm>

namespace {

/// Many times what the fullest drawings take; they come once, and their tiles are drawn from the recording.
constexpr std::chrono::seconds pageTimeLimit(20);
/// One annotation, while the window waits.
constexpr std::chrono::seconds annotationTimeLimit(2);

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

pdf_obj* annotsOf(fz_context* context, pdf_page* page) {
    pdf_obj* annots = nullptr;
    engineTry(context,
              [&] { annots = pdf_resolve_indirect(context, pdf_dict_get(context, page->obj, PDF_NAME(Annots))); });
    return annots;
}

/// Null for one that is no dictionary.
pdf_obj* annotationAt(fz_context* context, pdf_obj* annots, int index) {
    pdf_obj* annotation = nullptr;
    engineTry(context, [&] { annotation = pdf_resolve_indirect(context, pdf_array_get(context, annots, index)); });
    return pdf_is_dict(context, annotation) ? annotation : nullptr;
}

/// Over the page's content, form fields above the other annotations.
void runAnnotations(const Recording& recording, const std::vector<int>& hidden, fz_cookie* cookie) {
    fz_context* context = recording.context;
    AppearanceRunner runner(context, recording.page, recording.device, recording.toPage, cookie);
    pdf_obj* annots = annotsOf(context, recording.page);
    const int count = pdf_array_len(context, annots);
    for (const bool widgets : {false, true}) {
        for (int i = 0; i < count && !cookie->abort; ++i) {
            pdf_obj* annotation = annotationAt(context, annots, i);
            bool isWidget = false;
            engineTry(context, [&] {
                isWidget =
                    pdf_name_eq(context, pdf_dict_get(context, annotation, PDF_NAME(Subtype)), PDF_NAME(Widget)) != 0;
            });
            if (annotation && isWidget == widgets && !std::binary_search(hidden.begin(), hidden.end(), i))
                runner.run(annotation);
        }
    }
}

/// Links and windows of notes have no look of their own that would have to be made up.
bool hasBareAnnotation(fz_context* context, pdf_obj* page, const FormFieldReader& fields) {
    pdf_obj* annots = pdf_dict_get(context, page, PDF_NAME(Annots));
    const int count = pdf_array_len(context, annots);
    for (int i = 0; i < count; ++i) {
        pdf_obj* dictionary = pdf_array_get(context, annots, i);
        pdf_obj* subtype = pdf_dict_get(context, dictionary, PDF_NAME(Subtype));
        if (pdf_is_name(context, subtype) && !pdf_name_eq(context, subtype, PDF_NAME(Link)) &&
            !pdf_name_eq(context, subtype, PDF_NAME(Popup)) && !fields.hasAppearance(dictionary))
            return true;
    }
    return false;
}

} // namespace

std::shared_ptr<const RecordedPage> PageRecorder::record(SourceEngine& engine, const SourceEngine::RecordingKey& key,
                                                         const std::atomic<bool>* cancelled) {
    if (auto kept = engine.recording(key))
        return kept;
    SourceEngine::Lease borrowed = engine.lease();
    if (!borrowed || key.pageNumber < 0 || key.pageNumber >= engine.pageCount())
        return nullptr;
    fz_context* context = borrowed.context();
    Recording recording(borrowed);
    if (!recording.begin(borrowed.document(), key.pageNumber))
        return nullptr;
    {
        fz_cookie cookie{};
        const CancellationWatch watch(cancelled, &cookie, pageTimeLimit);
        engineTry(context,
                  [&] { pdf_run_page_contents(context, recording.page, recording.device, recording.toPage, &cookie); });
        if (key.annotations)
            runAnnotations(recording, key.hiddenAnnotations, &cookie);
        if (cookie.abort)
            borrowed.abandon();
    }
    bool isBare = false;
    const FormFieldReader fields(context, borrowed.document());
    engineTry(context, [&] { isBare = hasBareAnnotation(context, recording.page->obj, fields); });
    if (isBare)
        engine.noteBareAnnotations(key.pageNumber);
    if (cancelled && *cancelled)
        return nullptr;
    auto recorded = recording.finish();
    engine.keepRecording(key, recorded);
    return recorded;
}

/// Records what `run` runs of the annotation at `index` of a page.
template <typename Run>
static std::shared_ptr<const RecordedPage> recordOne(SourceEngine& engine, int pageNumber, int index, Run&& run) {
    SourceEngine::Lease borrowed = engine.lease();
    if (!borrowed || pageNumber < 0 || pageNumber >= engine.pageCount())
        return nullptr;
    fz_context* context = borrowed.context();
    Recording recording(borrowed);
    if (!recording.begin(borrowed.document(), pageNumber))
        return nullptr;
    pdf_obj* annotation = annotationAt(context, annotsOf(context, recording.page), index);
    bool hasRun = false;
    {
        fz_cookie cookie{};
        const CancellationWatch watch(nullptr, &cookie, annotationTimeLimit);
        AppearanceRunner runner(context, recording.page, recording.device, recording.toPage, &cookie);
        hasRun = annotation && run(runner, annotation);
        if (cookie.abort)
            borrowed.abandon();
    }
    return hasRun ? recording.finish() : nullptr;
}

std::shared_ptr<const RecordedPage> PageRecorder::recordAnnotation(SourceEngine& engine, int pageNumber, int index) {
    return recordOne(engine, pageNumber, index, [](AppearanceRunner& runner, pdf_obj* annotation) {
        runner.run(annotation);
        return true;
    });
}

std::shared_ptr<const RecordedPage> PageRecorder::recordState(SourceEngine& engine, int pageNumber, int index,
                                                              const QByteArray& state) {
    const SourceEngine::StateKey key{pageNumber, index, state};
    if (auto kept = engine.stateLook(key))
        return kept;
    auto recorded = recordOne(engine, pageNumber, index, [&state](AppearanceRunner& runner, pdf_obj* annotation) {
        return runner.runState(annotation, state.constData());
    });
    if (recorded)
        engine.keepStateLook(key, recorded);
    return recorded;
}
