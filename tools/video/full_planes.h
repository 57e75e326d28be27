// A frame of any format as planes that the library's converters take: 4:4:4, full range, 8 or 10 bits.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "qorv_skia.h"
#include "tools/video/format.h"
#include "tools/video/sampler.h"

namespace tool {

struct ReleaseImgb {
    void operator()(QORV_IMGB *imgb) const { imgb->release(imgb); }
};
using Imgb = std::unique_ptr<QORV_IMGB, ReleaseImgb>;

// Of QORV_CS_YUV444, QORV_CS_YUVA444 or QORV_CS_P410, with aligned rows. Throws an Error.
Imgb create_imgb(uint32_t width, uint32_t height, int32_t cs);

// Strides as the converters of its colour space count them.
std::vector<int32_t> converter_strides(const QORV_IMGB &imgb);

// For each value of a sample, the one of another depth and of full range.
using SampleTable = std::vector<uint16_t>;
SampleTable luma_table(Range range, int bits, int to_bits);
SampleTable chroma_table(Range range, int bits, int to_bits);

class FullPlanes {
public:
    // `cs` as for create_imgb(). Alpha that the stream has not is not there; alpha that `cs` has not is left out.
    FullPlanes(const VideoFormat &format, int32_t cs);

    void load(const std::vector<uint8_t> &frame);
    const QORV_IMGB &imgb() const { return *imgb_; }
    const int32_t *strides() const { return strides_.data(); }

private:
    template <class From, class To>
    void load_plane(const From *plane, size_t i);
    template <class From>
    void load_planes(const std::vector<uint8_t> &frame);
    void clear_chroma();
    bool changes_nothing(size_t plane) const;

    const VideoFormat &format_;
    int bits_;  // of the planes made
    Imgb imgb_;
    std::vector<int32_t> strides_;
    SampleTable luma_, chroma_, alpha_;
    std::optional<PlaneSampler> sampler_;  // of subsampled chroma
    std::vector<uint16_t> row_;            // room for a row at full size
};

}  // namespace tool
