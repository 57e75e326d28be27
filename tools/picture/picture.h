// A picture as files of pictures hold it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tool {

struct Picture {
    uint32_t width = 0, height = 0;
    int channels = 3;             // 1 gray, 3 RGB, 4 RGBA; 8 bits each
    std::vector<uint8_t> pixels;  // rows without padding

    size_t row_bytes() const { return size_t{width} * static_cast<size_t>(channels); }
};

// Alpha that is dropped is not blended, alpha that is added is opaque, and colour becomes gray as its luma.
Picture with_channels(Picture picture, int channels);

}  // namespace tool
