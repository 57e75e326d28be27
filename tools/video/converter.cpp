#include "tools/video/converter.h"

#include <chrono>

#include "tools/base/error.h"

namespace tool {

namespace {

qorv_csc_fn find_converter(uint32_t src_w, uint32_t src_h, int32_t src_cs, uint32_t dst_w, uint32_t dst_h,
                           int32_t dst_cs) {
    return qorv_imgp_get_fn_csc(static_cast<int32_t>(src_w), static_cast<int32_t>(src_h), src_cs,
                                static_cast<int32_t>(dst_w), static_cast<int32_t>(dst_h), dst_cs, nullptr);
}

template <class Work>
double seconds_of(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The planes to convert from, the best first. The converter from planes without alpha to ARGB computes no blue.
std::vector<int32_t> plane_spaces(const VideoFormat &format, const PixelFormat &pixels) {
    std::vector<int32_t> spaces;
    if (pixels.cs == QORV_CS_R10G10B10) return {QORV_CS_P410};
    if (format.alpha) spaces.push_back(QORV_CS_YUVA444);
    if (pixels.cs != QORV_CS_ARGB8888) spaces.push_back(QORV_CS_YUV444);
    return spaces;
}

FrameConversion find_conversion(const VideoFormat &format, const std::string &layout, uint32_t width, uint32_t height) {
    FrameConversion found = {&find_pixel_format(layout), 0, width, height, nullptr};
    for (const int32_t cs : plane_spaces(format, *found.pixels)) {
        found.cs = cs;
        found.convert = find_converter(format.width, format.height, cs, width, height, found.pixels->cs);
        if (found.convert != nullptr) break;
    }
    return found;
}

}  // namespace

FrameConversion choose_conversion(const std::string &path, const VideoFormat &format, const std::string &layout,
                                  uint32_t width, uint32_t height) {
    const bool scales = width != format.width || height != format.height;
    const char *const best = format.alpha ? "rgba8888" : format.bits > 8 && !scales ? "r10g10b10" : "rgb888";
    const FrameConversion found = find_conversion(format, layout.empty() ? best : layout, width, height);
    if (found.convert != nullptr) return found;
    std::string others;
    for (const std::string &name : pixel_format_names()) {
        if (find_conversion(format, name, width, height).convert != nullptr) others += " " + name;
    }
    throw Error(path + ": there is no converter from a stream " + (format.alpha ? "with" : "without") + " alpha to " +
                layout + (scales ? " with scaling" : "") + "; there are:" + others);
}

Picture FrameConverter::convert(const std::vector<uint8_t> &frame) {
    if (!planes_) {
        planes_ = std::make_unique<FullPlanes>(format_, conversion_.cs);
        rgb_ = std::make_unique<RgbPicture>(*conversion_.pixels, conversion_.width, conversion_.height);
    }
    planes_->load(frame);
    const QORV_IMGB &imgb = planes_->imgb();
    seconds_ += seconds_of([&] {
        conversion_.convert(imgb.a, imgb.w, imgb.h, planes_->strides(), 0, rgb_->pointers(),
                            static_cast<int32_t>(conversion_.width), static_cast<int32_t>(conversion_.height),
                            rgb_->strides(), conversion_.pixels->cs);
    });
    return rgb_->show();
}

PictureConversion choose_picture_conversion(const Picture &picture, const std::string &layout) {
    const auto find = [](const std::string &name) {
        PictureConversion found = {&find_pixel_format(name), 0, nullptr};
        found.cs = found.pixels->cs == QORV_CS_R10G10B10 ? QORV_CS_P410
                   : found.pixels->has_alpha()           ? QORV_CS_YUVA444
                                                         : QORV_CS_YUV444;
        found.convert = find_converter(1, 1, found.pixels->cs, 1, 1, found.cs);
        return found;
    };
    const PictureConversion found = find(!layout.empty() ? layout : picture.channels == 4 ? "rgba8888" : "rgb888");
    if (found.convert != nullptr) return found;
    std::string others;
    for (const std::string &name : pixel_format_names()) others += find(name).convert != nullptr ? " " + name : "";
    throw Error("there is no converter from " + layout + " to YUV; there are:" + others);
}

VideoFormat format_of_frames(const PictureConversion &conversion, uint32_t width, uint32_t height, uint32_t rate_num,
                             uint32_t rate_den) {
    const std::string tag = conversion.cs == QORV_CS_P410      ? "444p10"
                            : conversion.cs == QORV_CS_YUVA444 ? "444alpha"
                                                               : "444";
    VideoFormat format;
    format.width = width;
    format.height = height;
    set_y4m_chroma(format, tag);
    format.rate_num = rate_num;
    format.rate_den = rate_den;
    format.header +=
        " F" + std::to_string(rate_num) + ":" + std::to_string(rate_den) + " Ip A1:1 C" + tag + " XCOLORRANGE=FULL";
    lay_out(format);
    return format;
}

std::vector<uint8_t> PictureConverter::convert(const Picture &picture) {
    RgbPicture rgb(*conversion_.pixels, picture.width, picture.height);
    rgb.load(picture);
    const size_t words = conversion_.cs == QORV_CS_P410 ? 2 : 1, planes = conversion_.cs == QORV_CS_YUVA444 ? 4 : 3;
    const size_t plane_bytes = words * picture.width * picture.height;
    const auto w = static_cast<int32_t>(picture.width), h = static_cast<int32_t>(picture.height);
    const int32_t strides[4] = {w, w, w, w};  // samples, which are bytes where these are not words
    std::vector<uint8_t> frame(planes * plane_bytes);
    void *to[4] = {};
    for (size_t i = 0; i < planes; i++) to[i] = frame.data() + i * plane_bytes;
    seconds_ += seconds_of(
        [&] { conversion_.convert(rgb.const_pointers(), w, h, rgb.strides(), 0, to, w, h, strides, conversion_.cs); });
    return frame;
}

}  // namespace tool
