// The RGB layouts that the library's converters read and write, and pictures in them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/picture/picture.h"

namespace tool {

struct PixelFormat {
    const char *name;   // on the command line
    int32_t cs;         // QORV_CS_*
    const char *order;  // the channel behind each pointer: R, G, B, A, or W for a 5-6-5 word
    bool planar;        // each channel a plane, else bytes side by side
    int sample_bytes;

    int pointers() const;
    bool has_alpha() const;
};

// The name must be one of them.
const PixelFormat &find_pixel_format(std::string_view name);
std::vector<std::string> pixel_format_names();

// A picture in one of the layouts, with the pointers and strides that converters take.
class RgbPicture {
public:
    RgbPicture(const PixelFormat &format, uint32_t width, uint32_t height);

    void *const *pointers() const { return pointers_; }
    const void *const *const_pointers() const { return const_pointers_; }
    const int32_t *strides() const { return strides_; }  // in bytes; in samples where these are words of 10 bits
    const PixelFormat &format() const { return format_; }
    uint32_t width() const { return width_; }
    uint32_t height() const { return height_; }

    // Takes a picture of its size, gray as equal channels and opaque where it has no alpha.
    void load(const Picture &picture);
    // The samples as 8 bits each: what a screen would show.
    Picture show() const;

private:
    size_t step() const;
    const uint8_t *row(int pointer, uint32_t y) const;

    const PixelFormat &format_;
    uint32_t width_, height_;
    std::vector<uint8_t> memory_;
    void *pointers_[4] = {};
    const void *const_pointers_[4] = {};
    int32_t strides_[4] = {};
};

}  // namespace tool
