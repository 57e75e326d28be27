#include "tools/pixel_format.h"

#include <cstring>

#include "qorv_skia.h"
#include "tools/command.h"

namespace tool {

namespace {

constexpr PixelFormat kFormats[] = {
    {"rgb888", QORV_CS_RGB888, "RGB", false, 1},      {"rgba8888", QORV_CS_RGBA8888, "RGBA", false, 1},
    {"bgra8888", QORV_CS_BGRA8888, "BGRA", false, 1}, {"argb8888", QORV_CS_ARGB8888, "ARGB", false, 1},
    {"rgb565", QORV_CS_RGB565, "W", true, 2},         {"r8g8b8", QORV_CS_R8G8B8, "RGB", true, 1},
    {"r10g10b10", QORV_CS_R10G10B10, "RGB", true, 2},
};

// The high bits once more below, so that full scale stays full scale.
uint8_t widen5(int v) {
    return static_cast<uint8_t>(v << 3 | v >> 2);
}

uint8_t widen6(int v) {
    return static_cast<uint8_t>(v << 2 | v >> 4);
}

}  // namespace

int PixelFormat::pointers() const {
    return static_cast<int>(std::strlen(order));
}

bool PixelFormat::has_alpha() const {
    return std::strchr(order, 'A') != nullptr;
}

const PixelFormat &find_pixel_format(const std::string &name) {
    for (const PixelFormat &format : kFormats) {
        if (name == format.name) return format;
    }
    std::string known;
    for (const PixelFormat &format : kFormats) known += std::string(" ") + format.name;
    throw Error("unknown pixel format '" + name + "'; there are:" + known);
}

std::vector<std::string> pixel_format_names() {
    std::vector<std::string> names;
    for (const PixelFormat &format : kFormats) names.emplace_back(format.name);
    return names;
}

RgbPicture::RgbPicture(const PixelFormat &format, uint32_t width, uint32_t height)
    : format_(format), width_(width), height_(height) {
    const int count = format.pointers();
    const size_t step = static_cast<size_t>(format.planar ? format.sample_bytes : count);
    const size_t row = width * step;
    memory_.resize(row * height * static_cast<size_t>(format.planar ? count : 1));
    for (int k = 0; k < count; k++) {
        const size_t offset = static_cast<size_t>(k) * (format.planar ? row * height : 1);
        pointers_[k] = memory_.data() + offset;
        const_pointers_[k] = pointers_[k];
        strides_[k] = static_cast<int32_t>(format.cs == QORV_CS_R10G10B10 ? width : row);
    }
}

RgbPicture::RgbPicture(const PixelFormat &format, const PngImage &image)
    : RgbPicture(format, image.width, image.height) {
    const int channels = image.channels;
    for (uint32_t y = 0; y < height_; y++) {
        for (uint32_t x = 0; x < width_; x++) {
            const uint8_t *p = &image.pixels[y * image.row_bytes() + x * static_cast<size_t>(channels)];
            const uint8_t rgba[4] = {p[0], p[channels > 1 ? 1 : 0], p[channels > 1 ? 2 : 0],
                                     channels == 4 ? p[3] : uint8_t{255}};
            for (int k = 0; k < format.pointers(); k++) {
                uint8_t *to = sample(k, x, y);
                uint16_t word;
                if (format.order[k] == 'W') {
                    word = static_cast<uint16_t>((rgba[0] >> 3) << 11 | (rgba[1] >> 2) << 5 | rgba[2] >> 3);
                    std::memcpy(to, &word, 2);
                    continue;
                }
                const uint8_t value = rgba[std::strchr("RGBA", format.order[k]) - "RGBA"];
                if (format.sample_bytes == 1) {
                    *to = value;
                } else {
                    word = static_cast<uint16_t>((value * 1023 + 127) / 255);
                    std::memcpy(to, &word, 2);
                }
            }
        }
    }
}

uint8_t *RgbPicture::sample(int pointer, uint32_t x, uint32_t y) const {
    const size_t step = static_cast<size_t>(format_.planar ? format_.sample_bytes : format_.pointers());
    return static_cast<uint8_t *>(pointers_[pointer]) + (size_t{y} * width_ + x) * step;
}

PngImage RgbPicture::to_png() const {
    PngImage image;
    image.width = width_;
    image.height = height_;
    image.channels = format_.has_alpha() ? 4 : 3;
    image.pixels.resize(image.row_bytes() * height_);
    for (uint32_t y = 0; y < height_; y++) {
        for (uint32_t x = 0; x < width_; x++) {
            uint8_t *to = &image.pixels[y * image.row_bytes() + x * static_cast<size_t>(image.channels)];
            for (int k = 0; k < format_.pointers(); k++) {
                const uint8_t *from = sample(k, x, y);
                uint16_t word = 0;
                if (format_.sample_bytes == 2) std::memcpy(&word, from, 2);
                if (format_.order[k] == 'W') {
                    to[0] = widen5(word >> 11);
                    to[1] = widen6(word >> 5 & 63);
                    to[2] = widen5(word & 31);
                } else {
                    to[std::strchr("RGBA", format_.order[k]) - "RGBA"] =
                        format_.sample_bytes == 1 ? *from : static_cast<uint8_t>((word * 255 + 511) / 1023);
                }
            }
        }
    }
    return image;
}

}  // namespace tool
