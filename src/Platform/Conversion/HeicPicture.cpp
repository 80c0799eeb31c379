#include "HeicPicture.h"

#include <QColorSpace>

#include <algorithm>
#include <cstring>
#include <memory>

#include <libheif/heif.h>

namespace {

template <auto release>
struct Release {
    template <typename Type>
    void operator()(Type* thing) const {
        release(thing);
    }
};

using Context = std::unique_ptr<heif_context, Release<heif_context_free>>;
using Handle = std::unique_ptr<heif_image_handle, Release<heif_image_handle_release>>;
using Pixels = std::unique_ptr<heif_image, Release<heif_image_release>>;
using Options = std::unique_ptr<heif_decoding_options, Release<heif_decoding_options_free>>;

bool isOk(const heif_error& error) {
    return error.code == heif_error_Ok;
}

/// Invalid where the file says nothing, which stands for sRGB.
QColorSpace colorSpaceOf(const heif_image_handle* handle) {
    const heif_color_profile_type type = heif_image_handle_get_color_profile_type(handle);
    if (type != heif_color_profile_type_rICC && type != heif_color_profile_type_prof)
        return {};
    QByteArray profile(qsizetype(heif_image_handle_get_raw_color_profile_size(handle)), Qt::Uninitialized);
    if (!isOk(heif_image_handle_get_raw_color_profile(handle, profile.data())))
        return {};
    return QColorSpace::fromIccProfile(profile);
}

QImage imageOf(const heif_image* pixels, bool hasAlpha, bool isPremultiplied) {
    const int width = heif_image_get_width(pixels, heif_channel_interleaved);
    const int height = heif_image_get_height(pixels, heif_channel_interleaved);
    int stride = 0;
    const uint8_t* rows = heif_image_get_plane_readonly(pixels, heif_channel_interleaved, &stride);
    if (!rows || width <= 0 || height <= 0)
        return {};
    QImage image(width, height,
                 !hasAlpha         ? QImage::Format_RGB888
                 : isPremultiplied ? QImage::Format_RGBA8888_Premultiplied
                                   : QImage::Format_RGBA8888);
    if (image.isNull())
        return {};
    const std::size_t length = std::size_t(width) * (hasAlpha ? 4 : 3);
    for (int y = 0; y < height; ++y)
        std::memcpy(image.scanLine(y), rows + std::ptrdiff_t(y) * stride, length);
    return image;
}

} // namespace

bool HeicPicture::isOne(const QByteArray& bytes) {
    constexpr qsizetype looked = 12;
    return bytes.size() > looked && heif_check_filetype(reinterpret_cast<const uint8_t*>(bytes.constData()),
                                                        int(looked)) == heif_filetype_yes_supported;
}

QImage HeicPicture::read(const QByteArray& bytes, qint64 mostPixels) {
    constexpr int longestSide = 32'768;
    const Context context(heif_context_alloc());
    heif_context_set_maximum_image_size_limit(context.get(), longestSide);
    heif_image_handle* found = nullptr;
    if (!isOk(heif_context_read_from_memory_without_copy(context.get(), bytes.constData(), std::size_t(bytes.size()),
                                                         nullptr)) ||
        !isOk(heif_context_get_primary_image_handle(context.get(), &found)))
        return {};
    const Handle handle(found);
    if (qint64(heif_image_handle_get_width(found)) * heif_image_handle_get_height(found) > mostPixels)
        return {};
    const bool hasAlpha = heif_image_handle_has_alpha_channel(found) != 0;
    const Options options(heif_decoding_options_alloc());
    options->convert_hdr_to_8bit = 1;
    heif_image* decoded = nullptr;
    if (!isOk(heif_decode_image(found, &decoded, heif_colorspace_RGB,
                                hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB, options.get())))
        return {};
    const Pixels pixels(decoded);
    QImage image = imageOf(decoded, hasAlpha, heif_image_handle_is_premultiplied_alpha(found) != 0);
    image.setColorSpace(colorSpaceOf(found));
    return image;
}
