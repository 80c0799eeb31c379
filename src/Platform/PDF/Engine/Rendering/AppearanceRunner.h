#pragma once

#include "EngineContext.h"
#include "FormFieldReader.h"

/// Runs the appearances that a file gives the annotations of a page (ISO 32000-1, 12.5.5) into a device. What the file
/// leaves out stays out: the engine's own way of running annotations makes up looks for those without one, at any cost,
/// and puts them into its document. Nothing here throws the engine's way.
class AppearanceRunner {
public:
    /// All must outlive this, `toDevice` maps the engine's coordinates of the page.
    AppearanceRunner(fz_context* context, pdf_page* page, fz_device* device, const fz_matrix& toDevice,
                     fz_cookie* cookie);
    ~AppearanceRunner();
    AppearanceRunner(const AppearanceRunner&) = delete;
    AppearanceRunner& operator=(const AppearanceRunner&) = delete;

    /// Runs the normal appearance of an annotation that the page shows on screen, in its present state, or the frame of
    /// a link. Nothing of one that is hidden or has none.
    void run(pdf_obj* annotation);

    /// Runs what the annotation has in AP, N for that state, upright and whether it shows or not. False when it has
    /// nothing there.
    bool runState(pdf_obj* annotation, const char* state);

private:
    [[nodiscard]] bool isShown(pdf_obj* annotation);
    /// Page coordinates to the device's, for an annotation that may stay upright on a turned page.
    [[nodiscard]] fz_matrix placement(pdf_obj* annotation) const;
    /// The frame around a link, drawn on the edges of its rectangle. `toDevice` maps page coordinates.
    void runFrame(pdf_obj* link, const fz_matrix& toDevice);
    /// `toDevice` maps page coordinates.
    void runForm(pdf_obj* form, pdf_obj* annotation, const fz_matrix& toDevice);

    fz_context* m_context;
    FormFieldReader m_fields;
    pdf_page* m_page;
    fz_device* m_device;
    fz_matrix m_toDevice;
    fz_cookie* m_cookie;
    fz_matrix m_pageTransform = fz_identity; // page coordinates to the engine's
    pdf_obj* m_resources = nullptr;          // the page's
    fz_default_colorspaces* m_colorspaces = nullptr;
};
