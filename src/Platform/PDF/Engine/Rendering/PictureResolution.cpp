#include "PictureResolution.h"

#include "PDFSource.h"
#include "PageRecorder.h"

#include <algorithm>
#include <cmath>

namespace {

/// A device that draws nothing and notes the images that it is given.
struct ImageNotes {
    fz_device super;
    float finest;
};

void note(fz_device* device, const fz_image* image, const fz_matrix& place) {
    const float width = std::hypot(place.a, place.b);
    const float height = std::hypot(place.c, place.d);
    auto* notes = reinterpret_cast<ImageNotes*>(device);
    if (width > 0 && height > 0)
        notes->finest = std::max({notes->finest, float(image->w) / width, float(image->h) / height});
}

void noteImage(fz_context*, fz_device* device, fz_image* image, fz_matrix place, float, fz_color_params) {
    note(device, image, place);
}

void noteMask(fz_context*, fz_device* device, fz_image* image, fz_matrix place, fz_colorspace*, const float*, float,
              fz_color_params) {
    note(device, image, place);
}

} // namespace

double PictureResolution::finest(const PDFPageContent& page) {
    const auto recorded = PageRecorder::record(page.source->engine(), {page.pageNumber, true, {}}, nullptr);
    if (!recorded)
        return 0;
    const EngineContext lent(recorded->instance());
    fz_context* context = lent.get();
    if (!context)
        return 0;
    fz_device* device = nullptr;
    double finest = 0;
    engineTry(context, [&] {
        auto* notes = reinterpret_cast<ImageNotes*>(fz_new_device_of_size(context, sizeof(ImageNotes)));
        device = &notes->super;
        device->fill_image = noteImage;
        device->fill_image_mask = noteMask;
        fz_run_display_list(context, recorded->list(), device, fz_identity, fz_infinite_rect, nullptr);
        finest = double(notes->finest);
        fz_close_device(context, device);
    });
    fz_drop_device(context, device);
    return std::isfinite(finest) ? finest : 0;
}
