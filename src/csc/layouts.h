// Where a pixel's samples lie: the layouts that converters read and write.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace qorv {

constexpr int kMaxChannels = 4;

// One pointer of a layout: `bytes` of every pixel, `step` bytes apart.
struct Channel {
    uint8_t bytes, step;
};

enum class Arrangement : uint8_t {
    kPlanar,       // each pointer its own plane; kernels work on them wherever they lie
    kInterleaved,  // kernels need pointer k = pointer 0 + k and equal strides; anything else is staged
    kScattered,    // bytes between the samples must not be touched: kernels write packed planes, which are then spread
};

struct Layout {
    Arrangement arrangement;
    uint8_t first;  // pointers below this one are neither read nor written
    uint8_t count;  // pointers, those below `first` included
    Channel channels[kMaxChannels];
    bool stride_in_samples = false;

    // Bytes between samples as a kernel sees them.
    constexpr int kernel_step(int channel) const {
        const Channel c = channels[channel];
        return arrangement == Arrangement::kScattered ? c.bytes : c.step;
    }
    // Bytes between rows: a plane of words whose stride is in bytes advances by whole words.
    [[gnu::always_inline]] constexpr ptrdiff_t row_bytes(int channel, int32_t stride) const {
        const int bytes = channels[channel].bytes;
        if (stride_in_samples) return ptrdiff_t{stride} * bytes;
        return bytes == 2 ? stride & ~ptrdiff_t{1} : stride;
    }
};

// Layouts by name. Of layouts of bytes, `order` says what passes through each pointer: 0 to 2 red, green and blue or Y,
// U and V, 3 alpha.
struct Planar3 {
    static constexpr Layout layout{Arrangement::kPlanar, 0, 3, {{1, 1}, {1, 1}, {1, 1}, {}}};
    static constexpr uint8_t order[] = {0, 1, 2};
};
struct Planar4 {
    static constexpr Layout layout{Arrangement::kPlanar, 0, 4, {{1, 1}, {1, 1}, {1, 1}, {1, 1}}};
    static constexpr uint8_t order[] = {0, 1, 2, 3};
};
struct Rgb888 {
    static constexpr Layout layout{Arrangement::kInterleaved, 0, 3, {{1, 3}, {1, 3}, {1, 3}, {}}};
    static constexpr uint8_t order[] = {0, 1, 2};
};
struct Bgr888 {
    static constexpr Layout layout = Rgb888::layout;
    static constexpr uint8_t order[] = {2, 1, 0};
};
struct Rgba8888 {
    static constexpr Layout layout{Arrangement::kInterleaved, 0, 4, {{1, 4}, {1, 4}, {1, 4}, {1, 4}}};
    static constexpr uint8_t order[] = {0, 1, 2, 3};
};
struct Bgra8888 {
    static constexpr Layout layout = Rgba8888::layout;
    static constexpr uint8_t order[] = {2, 1, 0, 3};
};
struct Argb8888 {
    static constexpr Layout layout = Rgba8888::layout;
    static constexpr uint8_t order[] = {3, 0, 1, 2};
};
// Red, green and alpha through pointers 1 to 3; there is no blue and pointer 0 is left alone.
struct ArgbWithoutBlue {
    static constexpr Layout layout{Arrangement::kScattered, 1, 4, {{}, {1, 4}, {1, 4}, {1, 4}}};
    static constexpr uint8_t order[] = {2, 0, 1, 3};
};
struct Rgb565 {
    static constexpr Layout layout{Arrangement::kPlanar, 0, 1, {{2, 2}, {}, {}, {}}};
};
struct Rgb565A8 {
    static constexpr Layout layout{Arrangement::kPlanar, 0, 2, {{2, 2}, {1, 1}, {}, {}}};
};
// Words as a packed array, alpha bytes three bytes apart.
struct Rgba5658 {
    static constexpr Layout layout{Arrangement::kScattered, 0, 2, {{2, 2}, {1, 3}, {}, {}}};
};
// Three planes of 10-bit samples in words.
struct Planar3x10 {
    static constexpr Layout layout{Arrangement::kPlanar, 0, 3, {{2, 2}, {2, 2}, {2, 2}, {}}, true};
};
// One plane of words, and one of bytes.
struct WordPlane {
    static constexpr Layout layout = Rgb565::layout;
};
struct BytePlane {
    static constexpr Layout layout{Arrangement::kPlanar, 0, 1, {{1, 1}, {}, {}, {}}};
    static constexpr uint8_t order[] = {0};
};

}  // namespace qorv
