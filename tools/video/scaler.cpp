#include "tools/video/scaler.h"

namespace tool {

namespace {

// Where output sample j of a plane, at luma position s j + f, comes from: luma position p lies at (p + 1/2) r - 1/2 of
// the source, which is its sample (that - f) / s.
SampleAxis plane_axis(const ChromaAxis &axis, uint32_t from, uint32_t to, double ratio) {
    return {from, to, ratio, ((axis.first + 0.5) * ratio - 0.5 - axis.first) / axis.step};
}

}  // namespace

VideoFormat scaled_format(const VideoFormat &format, uint32_t width, uint32_t height) {
    VideoFormat scaled = format;
    scaled.width = width;
    scaled.height = height;
    // Pixels that are no longer as wide as they were: of unknown shape.
    if (uint64_t{width} * format.height != uint64_t{height} * format.width) set_header_word(scaled, "A", "0:0");
    lay_out(scaled);
    return scaled;
}

FrameScaler::FrameScaler(const VideoFormat &from, const VideoFormat &to) : from_(from), to_(to) {
    const double across = static_cast<double>(from.width) / to.width,
                 down = static_cast<double>(from.height) / to.height;
    for (size_t i = 0; i < from.planes.size(); i++) {
        const bool chroma = from.chroma != "mono" && (i == 1 || i == 2);
        const VideoPlane &a = from.planes[i], &b = to.planes[i];
        samplers_.emplace_back(plane_axis(chroma ? from.horizontal : ChromaAxis{}, a.width, b.width, across),
                               plane_axis(chroma ? from.vertical : ChromaAxis{}, a.height, b.height, down), a.width);
    }
}

void FrameScaler::scale(const std::vector<uint8_t> &frame, std::vector<uint8_t> &scaled) {
    scaled.resize(to_.frame_bytes);
    for (size_t i = 0; i < samplers_.size(); i++) {
        const VideoPlane &plane = to_.planes[i];
        const uint8_t *const from = frame.data() + from_.planes[i].offset;
        for (uint32_t y = 0; y < plane.height; y++) {
            uint8_t *const to = scaled.data() + plane.offset + size_t{y} * plane.width * to_.sample_bytes();
            if (to_.bits > 8) {
                samplers_[i].row(reinterpret_cast<const uint16_t *>(from), y, reinterpret_cast<uint16_t *>(to));
            } else {
                samplers_[i].row(from, y, to);
            }
        }
    }
}

}  // namespace tool
