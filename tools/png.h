// PNG files through libpng: 8 bits a sample, gray, RGB or RGBA.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

struct PngImage {
    uint32_t width = 0, height = 0;
    int channels = 3;             // 1 gray, 3 RGB, 4 RGBA
    std::vector<uint8_t> pixels;  // rows without padding

    size_t row_bytes() const { return size_t{width} * static_cast<size_t>(channels); }
};

// Any PNG, brought to 8 bits; palettes become RGB or RGBA, gray with alpha becomes RGBA.
PngImage read_png(const std::string &path);
void write_png(const std::string &path, const PngImage &image);

}  // namespace tool
