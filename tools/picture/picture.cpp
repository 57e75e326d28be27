#include "tools/picture/picture.h"

#include "qorv_skia.h"
#include "tools/picture/pixel_format.h"

namespace tool {

namespace {

// The luma of the library's converter.
Picture to_gray(const Picture &picture) {
    RgbPicture rgb(find_pixel_format("rgb888"), picture.width, picture.height);
    rgb.load(picture);
    const size_t pixels = size_t{picture.width} * picture.height;
    Picture gray = {picture.width, picture.height, 1, std::vector<uint8_t>(pixels)};
    std::vector<uint8_t> chroma(2 * pixels);
    void *const planes[4] = {gray.pixels.data(), chroma.data(), chroma.data() + pixels, nullptr};
    const auto w = static_cast<int32_t>(picture.width), h = static_cast<int32_t>(picture.height);
    const int32_t strides[4] = {w, w, w, 0};
    qorv_csc_rgb888_to_yuv444(rgb.const_pointers(), w, h, rgb.strides(), 0, planes, w, h, strides, QORV_CS_YUV444);
    return gray;
}

}  // namespace

Picture with_channels(Picture picture, int channels) {
    if (picture.channels == channels) return picture;
    if (channels == 1) return to_gray(picture);
    RgbPicture rgb(find_pixel_format(channels == 4 ? "rgba8888" : "rgb888"), picture.width, picture.height);
    rgb.load(picture);
    return rgb.show();
}

}  // namespace tool
