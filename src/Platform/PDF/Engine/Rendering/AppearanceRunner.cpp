#include "AppearanceRunner.h"

#include "EngineValues.h"

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

/// The normal appearance (AP, N): its stream, or of several streams the one for the annotation's state. Null when the
/// file has none.
pdf_obj* normalAppearance(fz_context* context, pdf_obj* annotation) {
    pdf_obj* normal = pdf_dict_getp(context, annotation, "AP/N");
    if (pdf_is_stream(context, normal))
        return normal;
    pdf_obj* state = pdf_resolve_indirect(context, pdf_dict_get(context, annotation, PDF_NAME(AS)));
    pdf_obj* look = pdf_is_name(context, state) ? pdf_dict_get(context, normal, state) : nullptr;
    return pdf_is_stream(context, look) ? look : nullptr;
}

} // namespace

AppearanceRunner::AppearanceRunner(fz_context* context, pdf_page* page, fz_device* device, const fz_matrix& toDevice,
                                   fz_cookie* cookie)
    : m_context(context), m_fields(context, page->doc), m_page(page), m_device(device), m_toDevice(toDevice),
      m_cookie(cookie) {
    engineTry(m_context, [&] {
        fz_rect box;
        pdf_page_transform(m_context, m_page, &box, &m_pageTransform);
        m_resources = pdf_page_resources(m_context, m_page);
        m_colorspaces = pdf_load_default_colorspaces(m_context, m_page->doc, m_page);
        if (m_colorspaces)
            fz_set_default_colorspaces(m_context, m_device, m_colorspaces);
    });
}

AppearanceRunner::~AppearanceRunner() {
    fz_drop_default_colorspaces(m_context, m_colorspaces);
}

bool AppearanceRunner::isShown(pdf_obj* annotation) {
    bool isWidget = false;
    bool isShown = false;
    engineTry(m_context, [&] {
        pdf_obj* subtype = pdf_dict_get(m_context, annotation, PDF_NAME(Subtype));
        isWidget = pdf_name_eq(m_context, subtype, PDF_NAME(Widget)) != 0;
        constexpr int unseen = PDF_ANNOT_IS_INVISIBLE | PDF_ANNOT_IS_HIDDEN | PDF_ANNOT_IS_NO_VIEW;
        isShown = !pdf_name_eq(m_context, subtype, PDF_NAME(Popup)) &&
                  (pdf_dict_get_int(m_context, annotation, PDF_NAME(F)) & unseen) == 0 &&
                  !pdf_is_ocg_hidden(m_context, m_page->doc, nullptr, "View",
                                     pdf_dict_get(m_context, annotation, PDF_NAME(OC)));
    });
    if (!isShown || !isWidget)
        return isShown;
    // What is part of no field isn't shown by other programs.
    return m_fields.inherited(annotation, "FT") && m_fields.inherited(annotation, "T");
}

fz_matrix AppearanceRunner::placement(pdf_obj* annotation) const {
    fz_matrix placed = m_pageTransform;
    if (pdf_dict_get_int(m_context, annotation, PDF_NAME(F)) & PDF_ANNOT_IS_NO_ROTATE) {
        const int turned = pdf_to_int(m_context, pdf_dict_get_inheritable(m_context, m_page->obj, PDF_NAME(Rotate)));
        const fz_rect rect = pdf_dict_get_rect(m_context, annotation, PDF_NAME(Rect));
        const fz_point corner = fz_transform_point_xy(rect.x0, rect.y1, placed);
        placed = fz_concat(placed, fz_translate(-corner.x, -corner.y));
        placed = fz_concat(placed, fz_rotate(float(-turned)));
        placed = fz_concat(placed, fz_translate(corner.x, corner.y));
    }
    return fz_concat(placed, m_toDevice);
}

void AppearanceRunner::run(pdf_obj* annotation) {
    if (!m_fields.hasAppearance(annotation) || !isShown(annotation))
        return;
    pdf_obj* form = nullptr;
    fz_matrix placed = fz_identity;
    bool isLink = false;
    engineTry(m_context, [&] {
        isLink = pdf_name_eq(m_context, pdf_dict_get(m_context, annotation, PDF_NAME(Subtype)), PDF_NAME(Link)) != 0;
        placed = placement(annotation);
        form = normalAppearance(m_context, annotation);
    });
    if (isLink)
        runFrame(annotation, placed);
    else if (form)
        runForm(form, annotation, placed);
}

bool AppearanceRunner::runState(pdf_obj* annotation, const char* state) {
    pdf_obj* form = nullptr;
    engineTry(m_context, [&] {
        pdf_obj* look = pdf_dict_gets(m_context, pdf_dict_getp(m_context, annotation, "AP/N"), state);
        form = pdf_is_stream(m_context, look) ? look : nullptr;
    });
    if (form)
        runForm(form, annotation, fz_concat(m_pageTransform, m_toDevice));
    return form != nullptr;
}

void AppearanceRunner::runFrame(pdf_obj* link, const fz_matrix& toDevice) {
    const std::optional<EngineValues::LinkFrame> frame = EngineValues::linkFrame(m_context, link);
    if (!frame)
        return;
    const PDFBorder& border = frame->border;
    fz_path* path = nullptr;
    fz_stroke_state* stroke = nullptr;
    engineTry(m_context, [&] {
        const fz_rect rect = pdf_dict_get_rect(m_context, link, PDF_NAME(Rect));
        path = fz_new_path(m_context);
        fz_moveto(m_context, path, rect.x0, rect.y0);
        fz_lineto(m_context, path, rect.x1, rect.y0);
        if (border.style != PDFBorderStyle::underline) {
            fz_lineto(m_context, path, rect.x1, rect.y1);
            fz_lineto(m_context, path, rect.x0, rect.y1);
            fz_closepath(m_context, path);
        }
        float period = 0;
        for (const double dash : border.dashPattern)
            period += float(std::max(dash, 0.0));
        // Thousands of dashes on a side would take long and be too fine to be seen.
        const float shortest = (rect.x1 - rect.x0 + rect.y1 - rect.y0) / 5000;
        const int dashes = period > shortest ? int(border.dashPattern.size()) : 0;
        stroke = fz_new_stroke_state_with_dash_len(m_context, dashes);
        stroke->linewidth = float(border.lineWidth);
        stroke->dash_len = dashes;
        for (int i = 0; i < dashes; ++i)
            stroke->dash_list[i] = float(std::max(border.dashPattern[std::size_t(i)], 0.0));
        const float color[] = {frame->color.redF(), frame->color.greenF(), frame->color.blueF()};
        fz_stroke_path(m_context, m_device, path, stroke, toDevice, fz_device_rgb(m_context), color, 1,
                       fz_default_color_params);
    });
    fz_drop_stroke_state(m_context, stroke);
    fz_drop_path(m_context, path);
}

void AppearanceRunner::runForm(pdf_obj* form, pdf_obj* annotation, const fz_matrix& toDevice) {
    pdf_processor* processor = nullptr;
    engineTry(m_context, [&] {
        const fz_rect rect = pdf_dict_get_rect(m_context, annotation, PDF_NAME(Rect));
        const fz_matrix place = fit(rect, pdf_xobject_bbox(m_context, form), pdf_xobject_matrix(m_context, form));
        processor = pdf_new_run_processor(m_context, m_device, fz_concat(place, toDevice), "View", nullptr,
                                          m_colorspaces, m_cookie);
        processor->op_q(m_context, processor);
        processor->op_Do_form(m_context, processor, nullptr, form, m_resources);
        processor->op_Q(m_context, processor);
        pdf_close_processor(m_context, processor);
    });
    pdf_drop_processor(m_context, processor);
}
