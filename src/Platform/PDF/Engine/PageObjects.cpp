#include "Engine/PageObjects.h"

#include <cmath>

namespace {

/// Larger boxes are no pages: coordinates past it lose whole points in single precision.
constexpr float largestCoordinate = 8e6F;
/// Trees that claim fewer pages than this are counted instead of believed: it costs nothing.
constexpr int believedFrom = 64;
constexpr int deepestTree = 256;

bool sensible(const fz_rect& rect) {
    for (const float value : {rect.x0, rect.y0, rect.x1, rect.y1})
        if (!std::isfinite(value) || std::fabs(value) > largestCoordinate)
            return false;
    return rect.x1 - rect.x0 > 0 && rect.y1 - rect.y0 > 0;
}

fz_rect boxOf(fz_context* context, pdf_obj* page, pdf_obj* key, bool inherited, const fz_rect& fallback,
              const fz_rect& limit) {
    pdf_obj* array = inherited ? pdf_dict_get_inheritable(context, page, key) : pdf_dict_get(context, page, key);
    if (!pdf_is_array(context, array))
        return fallback;
    const fz_rect clipped = fz_intersect_rect(pdf_to_rect(context, array), limit);
    return sensible(clipped) ? clipped : fallback;
}

int countLeaves(fz_context* context, pdf_obj* node, int depth, int limit) {
    if (depth > deepestTree || pdf_mark_obj(context, node))
        return 0;
    int count = 0;
    fz_try(context) {
        pdf_obj* kids = pdf_dict_get(context, node, PDF_NAME(Kids));
        const int n = pdf_array_len(context, kids);
        if (!pdf_is_array(context, kids))
            count = pdf_is_dict(context, node) ? 1 : 0;
        for (int i = 0; i < n && count < limit; ++i)
            count += countLeaves(context, pdf_array_get(context, kids, i), depth + 1, limit - count);
    }
    fz_always(context) pdf_unmark_obj(context, node);
    fz_catch(context) fz_rethrow(context);
    return count;
}

/// Deeper than any form is.
constexpr int mostParents = 64;

void endParentCycles(fz_context* context, pdf_document* document, int pageNumber) {
    pdf_obj* page = pdf_lookup_page_obj(context, document, pageNumber);
    pdf_obj* annots = pdf_dict_get(context, page, PDF_NAME(Annots));
    const int count = pdf_array_len(context, annots);
    for (int i = 0; i < count; ++i) {
        pdf_obj* annotation = pdf_array_get(context, annots, i);
        pdf_obj* above = annotation;
        for (int depth = 0; above && depth < mostParents; ++depth)
            above = pdf_dict_get(context, above, PDF_NAME(Parent));
        if (above)
            pdf_dict_del(context, annotation, PDF_NAME(Parent));
    }
}

} // namespace

PDFPageGeometry PageObjects::fallbackGeometry() {
    PDFPageGeometry geometry;
    geometry.boxes.fill(QRectF(0, 0, 612, 792));
    return geometry;
}

void PageObjects::readGeometry(fz_context* context, pdf_obj* page, PDFPageGeometry& geometry) {
    const fz_rect letter = fz_make_rect(0, 0, 612, 792);
    const fz_rect media = boxOf(context, page, PDF_NAME(MediaBox), true, letter, fz_infinite_rect);
    const fz_rect crop = boxOf(context, page, PDF_NAME(CropBox), true, media, media);
    const fz_rect bleed = boxOf(context, page, PDF_NAME(BleedBox), false, crop, media);
    const fz_rect trim = boxOf(context, page, PDF_NAME(TrimBox), false, crop, media);
    const fz_rect art = boxOf(context, page, PDF_NAME(ArtBox), false, crop, media);
    geometry.boxes = {fromEngine(media), fromEngine(crop), fromEngine(bleed), fromEngine(trim), fromEngine(art)};

    const int turned = pdf_to_int(context, pdf_dict_get_inheritable(context, page, PDF_NAME(Rotate))) % 360;
    geometry.rotation = ((turned + 360 + 45) / 90 * 90) % 360;
    const float unit = pdf_dict_get_real(context, page, PDF_NAME(UserUnit));
    geometry.userUnit = std::isfinite(unit) && unit > 0 && unit <= 10000 ? double(unit) : 1.0;
}

pdf_page* PageObjects::load(fz_context* context, pdf_document* document, int pageNumber) {
    pdf_page* page = nullptr;
    const auto attempt = [&] { page = pdf_load_page(context, document, pageNumber); };
    if (!engineTry(context, attempt) && engineTry(context, [&] { endParentCycles(context, document, pageNumber); }))
        engineTry(context, attempt);
    return page;
}

int PageObjects::countPages(fz_context* context, pdf_document* document) {
    pdf_obj* root = pdf_dict_getp(context, pdf_trailer(context, document), "Root/Pages");
    const int claimed = pdf_dict_get_int(context, root, PDF_NAME(Count));
    const int objects = pdf_xref_len(context, document);
    if (claimed >= believedFrom && claimed <= objects)
        return claimed;
    return countLeaves(context, root, 0, objects);
}
