#include "Rasterizer.h"

#include "SourceEngine.h"

bool Rasterizer::replay(const RecordedPage& page, const QTransform& toDevice, QPoint origin, QImage& image,
                        fz_cookie* cookie) {
    const EngineContext own(page.instance());
    fz_context* context = own.get();
    if (!context)
        return false;
    fz_pixmap* pixmap = nullptr;
    fz_device* device = nullptr;
    unsigned char* bits = image.bits();
    const fz_irect area =
        fz_make_irect(origin.x(), origin.y(), origin.x() + image.width(), origin.y() + image.height());
    const bool complete = engineTry(context, [&] {
        pixmap = fz_new_pixmap_with_bbox_and_data(context, fz_device_bgr(context), area, nullptr, 1, bits);
        device = fz_new_draw_device(context, fz_identity, pixmap);
        fz_run_display_list(context, page.list(), device, toEngine(toDevice), fz_rect_from_irect(area), cookie);
        fz_close_device(context, device);
    });
    fz_drop_device(context, device);
    fz_drop_pixmap(context, pixmap);
    return complete;
}
