// Frames at another size, in the format that they have.
#pragma once

#include <vector>

#include "tools/video/format.h"
#include "tools/video/sampler.h"

namespace tool {

VideoFormat scaled_format(const VideoFormat &format, uint32_t width, uint32_t height);

// Every plane is sampled where its samples lie in the picture, so that chroma stays on its luma.
class FrameScaler {
public:
    FrameScaler(const VideoFormat &from, const VideoFormat &to);
    void scale(const std::vector<uint8_t> &frame, std::vector<uint8_t> &scaled);

private:
    const VideoFormat &from_, &to_;
    std::vector<PlaneSampler> samplers_;
};

}  // namespace tool
