#include "tools/video/full_planes.h"

#include <algorithm>
#include <cmath>

#include "tools/base/error.h"
#include "tools/base/limits.h"

namespace tool {

namespace {

// Limited range of b bits: luma 16 to 235, chroma 16 to 240 around 128, in units of 2^(b - 8).
SampleTable make_table(Range range, int bits, int to_bits, double centre, double to_centre, double limited_span,
                       double zero) {
    const double unit = std::ldexp(1.0, bits - 8), most = std::ldexp(1.0, bits) - 1,
                 to_most = std::ldexp(1.0, to_bits) - 1;
    const double from = range == Range::kLimited ? zero * unit : centre;
    const double scale = to_most / (range == Range::kLimited ? limited_span * unit : most);
    SampleTable table(size_t{1} << bits);
    for (size_t v = 0; v < table.size(); v++) {
        const double value = (static_cast<double>(v) - from) * scale + to_centre;
        table[v] = static_cast<uint16_t>(std::clamp(std::floor(value + 0.5), 0.0, to_most));
    }
    return table;
}

SampleAxis chroma_axis(const ChromaAxis &axis, uint32_t from, uint32_t to) {
    return {from, to, 1.0 / axis.step, -axis.first / axis.step};
}

bool is_identity(const SampleTable &table) {
    for (size_t v = 0; v < table.size(); v++) {
        if (table[v] != v) return false;
    }
    return true;
}

}  // namespace

SampleTable luma_table(Range range, int bits, int to_bits) {
    return make_table(range, bits, to_bits, 0, 0, 219, 16);
}

SampleTable chroma_table(Range range, int bits, int to_bits) {
    return make_table(range, bits, to_bits, std::ldexp(1.0, bits - 1), std::ldexp(1.0, to_bits - 1), 224, 128);
}

Imgb create_imgb(uint32_t width, uint32_t height, int32_t cs) {
    // Rows of whole vectors, so that every row starts aligned.
    static const uint32_t align[4] = {QORV_IMGB_WORD(32, 1), QORV_IMGB_WORD(32, 1), QORV_IMGB_WORD(32, 1),
                                      QORV_IMGB_WORD(32, 1)};
    int32_t status = QORV_OK;
    Imgb imgb(qorv_imgb_create(static_cast<int32_t>(width), static_cast<int32_t>(height), static_cast<uint32_t>(cs), 0,
                               align, nullptr, nullptr, nullptr, &status));
    if (!imgb) throw Error("there is not enough memory for a picture of " + size_text(width, height));
    return imgb;
}

std::vector<int32_t> converter_strides(const QORV_IMGB &imgb) {
    const int32_t unit = imgb.cs == QORV_CS_P410 ? 2 : 1;
    return {imgb.s[0] / unit, imgb.s[1] / unit, imgb.s[2] / unit, imgb.s[3] / unit};
}

FullPlanes::FullPlanes(const VideoFormat &format, int32_t cs)
    : format_(format),
      bits_(cs == QORV_CS_P410 ? 10 : 8),
      imgb_(create_imgb(format.width, format.height, cs)),
      strides_(converter_strides(*imgb_)),
      luma_(luma_table(format.range, format.bits, bits_)),
      chroma_(chroma_table(format.range, format.bits, bits_)),
      alpha_(luma_table(Range::kFull, format.bits, bits_)),
      row_(format.width) {
    if (format.chroma == "mono") {
        clear_chroma();
    } else if (format.chroma != "444") {
        const VideoPlane &plane = format.planes[1];
        sampler_.emplace(chroma_axis(format.horizontal, plane.width, format.width),
                         chroma_axis(format.vertical, plane.height, format.height), plane.width);
    }
}

void FullPlanes::clear_chroma() {
    for (int i = 1; i < 3; i++) {
        const int32_t samples = imgb_->h * (imgb_->s[i] / (bits_ > 8 ? 2 : 1));
        if (bits_ > 8) {
            qorv_mset16(imgb_->a[i], static_cast<uint16_t>(1 << (bits_ - 1)), samples);
        } else {
            qorv_mset_x64a(imgb_->a[i], 1 << (bits_ - 1), static_cast<size_t>(samples));
        }
    }
}

bool FullPlanes::changes_nothing(size_t plane) const {
    return format_.bits == bits_ &&
           is_identity(plane == 0   ? luma_
                       : plane == 3 ? alpha_
                                    : chroma_) &&
           (!sampler_ || plane == 0 || plane == 3);
}

template <class From, class To>
void FullPlanes::load_plane(const From *plane, size_t i) {
    const auto width = static_cast<int32_t>(format_.width);
    if constexpr (sizeof(From) == sizeof(To)) {
        if (changes_nothing(i)) {
            qorv_mcpy_pic(imgb_->a[i], plane, imgb_->s[i], width * static_cast<int32_t>(sizeof(To)),
                          width * static_cast<int32_t>(sizeof(To)), imgb_->h);
            return;
        }
    }
    const bool sampled = sampler_ && (i == 1 || i == 2);
    const SampleTable &table = i == 0 ? luma_ : i == 3 ? alpha_ : chroma_;
    const size_t most = table.size() - 1;  // words may hold more than their depth allows
    for (uint32_t y = 0; y < format_.height; y++) {
        const From *from = plane + size_t{y} * format_.width;
        if (sampled) {
            sampler_->row(plane, y, reinterpret_cast<From *>(row_.data()));
            from = reinterpret_cast<const From *>(row_.data());
        }
        To *const to =
            reinterpret_cast<To *>(static_cast<uint8_t *>(imgb_->a[i]) + static_cast<ptrdiff_t>(y) * imgb_->s[i]);
        for (int32_t x = 0; x < width; x++) to[x] = static_cast<To>(table[std::min<size_t>(from[x], most)]);
    }
}

template <class From>
void FullPlanes::load_planes(const std::vector<uint8_t> &frame) {
    const size_t made = imgb_->cs == QORV_CS_YUVA444 ? 4 : 3;
    for (size_t i = 0; i < format_.planes.size(); i++) {
        const bool is_alpha = format_.alpha && i + 1 == format_.planes.size();
        const size_t to = is_alpha ? 3 : i;
        if (to >= made) continue;
        const From *const plane = reinterpret_cast<const From *>(frame.data() + format_.planes[i].offset);
        bits_ > 8 ? load_plane<From, uint16_t>(plane, to) : load_plane<From, uint8_t>(plane, to);
    }
}

void FullPlanes::load(const std::vector<uint8_t> &frame) {
    format_.bits > 8 ? load_planes<uint16_t>(frame) : load_planes<uint8_t>(frame);
}

}  // namespace tool
