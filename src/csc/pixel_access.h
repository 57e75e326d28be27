// Reading and writing one pixel in each layout, whatever the arrangement of its channels: what csc/block_access.h is to
// blocks. Kernel sources only.
#pragma once

#include <stddef.h>
#include <string.h>

#include "csc/pixel.h"
// The primitives come first.
#include "csc/colours.h"
#include "csc/layouts.h"

namespace qorv::QORV_ISA {

// Access<Layout>::load and ::store handle pixel x of the rows that `p` points to. Sources without alpha are opaque.
struct OnePixel {
    static constexpr ptrdiff_t kBlock = 1;
    // Keeps the compiler from making copies of the loop for several pixels at a time.
    [[gnu::always_inline]] static void finish() { asm("" ::: "memory"); }
};

template <class Layout>
struct Access : OnePixel {
    static constexpr auto kLayout = Layout::layout;

    [[gnu::always_inline]] static Pixels load(const uint8_t *const *p, ptrdiff_t x) {
        Pixels pixel{{0, 0, 0, kOpaque}};
#pragma GCC unroll 4
        for (int i = kLayout.first; i < kLayout.count; i++) {
            pixel.c[Layout::order[i]] = p[i][x * kLayout.channels[i].step];
        }
        return pixel;
    }
    [[gnu::always_inline]] static void store(uint8_t *const *p, ptrdiff_t x, const Pixels &pixel) {
#pragma GCC unroll 4
        for (int i = kLayout.first; i < kLayout.count; i++) {
            p[i][x * kLayout.channels[i].step] = static_cast<uint8_t>(pixel.c[Layout::order[i]]);
        }
        OnePixel::finish();
    }
};

[[gnu::always_inline]] inline int load_word(const uint8_t *p) {
    uint16_t word;
    memcpy(&word, p, sizeof word);
    return word;
}

[[gnu::always_inline]] inline void store_word(uint8_t *p, int value) {
    const uint16_t word = static_cast<uint16_t>(value);
    memcpy(p, &word, sizeof word);
}

template <int AlphaStep>
struct WordsAndAlpha : OnePixel {
    [[gnu::always_inline]] static void store(uint8_t *const *p, ptrdiff_t x, const Pixels &pixel) {
        store_word(p[0] + 2 * x, (pixel.c[0] & 0xF8) << 8 | (pixel.c[1] & 0xFC) << 3 | pixel.c[2] >> 3);
        if constexpr (AlphaStep != 0) p[1][x * AlphaStep] = static_cast<uint8_t>(pixel.c[3]);
        finish();
    }
};
template <>
struct Access<Rgb565> : WordsAndAlpha<0> {
    [[gnu::always_inline]] static Pixels load(const uint8_t *const *p, ptrdiff_t x) {
        const int word = load_word(p[0] + 2 * x);
        return {{word >> 8 & 0xF8, word >> 3 & 0xFC, word << 3 & 0xF8, kOpaque}};
    }
};
template <>
struct Access<Rgb565A8> : WordsAndAlpha<1> {};
template <>
struct Access<Rgba5658> : WordsAndAlpha<3> {};

template <>
struct Access<Planar3x10> : OnePixel {
    [[gnu::always_inline]] static DeepPixels load(const uint8_t *const *p, ptrdiff_t x) {
        return {{load_word(p[0] + 2 * x), load_word(p[1] + 2 * x), load_word(p[2] + 2 * x)}};
    }
    [[gnu::always_inline]] static void store(uint8_t *const *p, ptrdiff_t x, const DeepPixels &pixel) {
#pragma GCC unroll 4
        for (int i = 0; i < 3; i++) store_word(p[i] + 2 * x, pixel.c[i]);
        finish();
    }
};

template <>
struct Access<WordPlane> : OnePixel {
    [[gnu::always_inline]] static WordPair load(const uint8_t *const *p, ptrdiff_t x) {
        return {load_word(p[0] + 2 * x), 0};
    }
};

}  // namespace qorv::QORV_ISA
