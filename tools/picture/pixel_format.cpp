#include "tools/picture/pixel_format.h"

#include <cstring>

#include "qorv_skia.h"

namespace tool {

namespace {

constexpr PixelFormat kFormats[] = {
    {"rgb888", QORV_CS_RGB888, "RGB", false, 1},      {"rgba8888", QORV_CS_RGBA8888, "RGBA", false, 1},
    {"bgra8888", QORV_CS_BGRA8888, "BGRA", false, 1}, {"argb8888", QORV_CS_ARGB8888, "ARGB", false, 1},
    {"rgb565", QORV_CS_RGB565, "W", true, 2},         {"r8g8b8", QORV_CS_R8G8B8, "RGB", true, 1},
    {"r10g10b10", QORV_CS_R10G10B10, "RGB", true, 2},
};

uint16_t get_word(const uint8_t *from) {
    uint16_t word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

void put_word(uint8_t *to, int value) {
    const auto word = static_cast<uint16_t>(value);
    std::memcpy(to, &word, sizeof word);
}

int to_10_bits(int v) {
    return (v * 1023 + 127) / 255;
}

uint8_t from_10_bits(int v) {
    return static_cast<uint8_t>((v * 255 + 511) / 1023);
}

int to_565(const uint8_t *rgb) {
    return (rgb[0] >> 3) << 11 | (rgb[1] >> 2) << 5 | rgb[2] >> 3;
}

// The high bits once more below, so that full scale stays full scale.
void from_565(int word, uint8_t *rgb) {
    const int r = word >> 11, g = word >> 5 & 63, b = word & 31;
    rgb[0] = static_cast<uint8_t>(r << 3 | r >> 2);
    rgb[1] = static_cast<uint8_t>(g << 2 | g >> 4);
    rgb[2] = static_cast<uint8_t>(b << 3 | b >> 2);
}

// Which of R, G, B, A a letter is, 0 to 3.
int channel_of(char letter) {
    return static_cast<int>(std::strchr("RGBA", letter) - "RGBA");
}

}  // namespace

int PixelFormat::pointers() const {
    return static_cast<int>(std::strlen(order));
}

bool PixelFormat::has_alpha() const {
    return std::strchr(order, 'A') != nullptr;
}

const PixelFormat &find_pixel_format(std::string_view name) {
    const PixelFormat *format = kFormats;
    while (name != format->name) format++;
    return *format;
}

std::vector<std::string> pixel_format_names() {
    std::vector<std::string> names;
    for (const PixelFormat &format : kFormats) names.emplace_back(format.name);
    return names;
}

RgbPicture::RgbPicture(const PixelFormat &format, uint32_t width, uint32_t height)
    : format_(format), width_(width), height_(height) {
    const int count = format.pointers();
    const size_t row_bytes = width * step();
    memory_.resize(row_bytes * height * static_cast<size_t>(format.planar ? count : 1));
    for (int k = 0; k < count; k++) {
        pointers_[k] = memory_.data() + static_cast<size_t>(k) * (format.planar ? row_bytes * height : 1);
        const_pointers_[k] = pointers_[k];
        strides_[k] = static_cast<int32_t>(format.cs == QORV_CS_R10G10B10 ? width : row_bytes);
    }
}

size_t RgbPicture::step() const {
    return static_cast<size_t>(format_.planar ? format_.sample_bytes : format_.pointers());
}

const uint8_t *RgbPicture::row(int pointer, uint32_t y) const {
    return static_cast<const uint8_t *>(const_pointers_[pointer]) + size_t{y} * width_ * step();
}

void RgbPicture::load(const Picture &picture) {
    const bool gray = picture.channels == 1, words = format_.order[0] == 'W';
    const size_t from_step = static_cast<size_t>(picture.channels), to_step = step();
    for (int k = 0; k < format_.pointers(); k++) {
        const int channel = words ? 0 : channel_of(format_.order[k]);
        const bool opaque = channel == 3 && picture.channels != 4;
        for (uint32_t y = 0; y < height_; y++) {
            const uint8_t *from = &picture.pixels[y * picture.row_bytes()] + (gray || opaque ? 0 : channel);
            auto *to = const_cast<uint8_t *>(row(k, y));
            for (uint32_t x = 0; x < width_; x++, from += from_step, to += to_step) {
                const uint8_t grays[3] = {*from, *from, *from};
                if (words) {
                    put_word(to, to_565(gray ? grays : from));
                } else if (format_.sample_bytes == 2) {
                    put_word(to, to_10_bits(*from));
                } else {
                    *to = opaque ? uint8_t{255} : *from;
                }
            }
        }
    }
}

Picture RgbPicture::show() const {
    Picture picture = {width_, height_, format_.has_alpha() ? 4 : 3, {}};
    picture.pixels.resize(picture.row_bytes() * height_);
    const bool words = format_.order[0] == 'W';
    const size_t from_step = step(), to_step = static_cast<size_t>(picture.channels);
    for (int k = 0; k < format_.pointers(); k++) {
        const int channel = words ? 0 : channel_of(format_.order[k]);
        for (uint32_t y = 0; y < height_; y++) {
            const uint8_t *from = row(k, y);
            uint8_t *to = &picture.pixels[y * picture.row_bytes()] + channel;
            for (uint32_t x = 0; x < width_; x++, from += from_step, to += to_step) {
                if (words) {
                    from_565(get_word(from), to);
                } else {
                    *to = format_.sample_bytes == 2 ? from_10_bits(get_word(from)) : *from;
                }
            }
        }
    }
    return picture;
}

}  // namespace tool
