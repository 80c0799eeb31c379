#include "PageObjects.h"

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

/// Takes a page's list of annotations out of the engine's sight for as long as this lives. The engine's objects are
/// changed as if they were just being read, so that it doesn't take the change for an edit of the document.
class AnnotationsAside {
public:
    AnnotationsAside(fz_context* context, pdf_document* document, int pageNumber) : m_context(context) {
        m_isAside = engineTry(m_context, [&] {
            m_page = pdf_keep_obj(
                m_context, pdf_resolve_indirect(m_context, pdf_lookup_page_obj(m_context, document, pageNumber)));
            m_annots = pdf_keep_obj(m_context, pdf_dict_get(m_context, m_page, PDF_NAME(Annots)));
            m_parent = pdf_obj_parent_num(m_context, m_page);
            if (m_annots)
                put(PDF_NULL);
        });
    }
    ~AnnotationsAside() {
        if (m_annots)
            engineTry(m_context, [&] { put(m_annots); });
        pdf_drop_obj(m_context, m_annots);
        pdf_drop_obj(m_context, m_page);
    }
    AnnotationsAside(const AnnotationsAside&) = delete;
    AnnotationsAside& operator=(const AnnotationsAside&) = delete;

    /// False when the page couldn't be found.
    explicit operator bool() const { return m_isAside; }

private:
    /// An object without a parent is one that is being read.
    void put(pdf_obj* annots) {
        pdf_set_obj_parent(m_context, m_page, 0);
        pdf_dict_put(m_context, m_page, PDF_NAME(Annots), annots);
        pdf_set_obj_parent(m_context, m_page, m_parent);
    }

    fz_context* m_context;
    pdf_obj* m_page = nullptr;
    pdf_obj* m_annots = nullptr;
    int m_parent = 0; // number of the object that the page is or is in
    bool m_isAside = false;
};

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
    // Damage that is found on the way to a page makes the engine read the whole file anew, once, and give up this time.
    constexpr int mostAttempts = 2;
    for (int attempt = 0; attempt < mostAttempts && !page; ++attempt)
        if (const AnnotationsAside aside(context, document, pageNumber); aside)
            engineTry(context, [&] { page = pdf_load_page(context, document, pageNumber); });
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
