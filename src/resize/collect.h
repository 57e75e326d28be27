// Bringing the pixels of a source row together that lie under a strip. Kernel sources only.
#pragma once

#include "resize/columns.h"

namespace qorv::QORV_ISA {

// Every second or every fourth byte.
template <int Shift>
[[gnu::always_inline]] inline U8 every_nth(const uint8_t *p) {
    U8 wanted, b, c, d;
    if constexpr (Shift == 1) {
        load_interleaved2(p, wanted, b);
    } else {
        load_interleaved4(p, wanted, b, c, d);
    }
    return wanted;
}

// Copies up to `count` bytes that lie 1 << Shift apart, none or all, in whole vectors.
template <int Shift>
[[gnu::always_inline]] inline int copy_spaced_bytes(uint8_t *to, const uint8_t *from, int count) {
    if (count < kVectorBytes) return 0;
    for (int i = 0; i < count; i += kVectorBytes) {
        const int at = i < count - kVectorBytes ? i : count - kVectorBytes;
        store(to + at, every_nth<Shift>(from + (ptrdiff_t{at} << Shift)));
    }
    return count;
}

// Four pixels of N bytes that lie `spacing` bytes apart; of each, 16 bytes are read, and 16 bytes are written.
template <int N>
[[gnu::always_inline]] inline void copy_four_spaced(uint8_t *to, const uint8_t *from, ptrdiff_t spacing) {
    using U32x4 = Vec<uint32_t, 16>;
    using U8x16 = Vec<uint8_t, 16>;
    const U32x4 a = load<U32x4>(from), b = load<U32x4>(from + spacing);
    const U32x4 c = load<U32x4>(from + 2 * spacing), d = load<U32x4>(from + 3 * spacing);
    const U32x4 ab = __builtin_shufflevector(a, b, 0, 4, 1, 5), cd = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    const U32x4 four = __builtin_shufflevector(ab, cd, 0, 1, 4, 5);
    if constexpr (N == 4) {
        store(to, four);
    } else {
        const U8x16 bytes = (U8x16)four;
        store(to, __builtin_shufflevector(bytes, bytes, 0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 15, 15, 15, 15));
    }
}

// Copies every (1 << shift)-th pixel. `to` reaches to the next whole vector.
template <int N>
[[gnu::always_inline]] inline void copy_spaced(uint8_t *to, const uint8_t *from, int count, int shift) {
    if (shift == 0) {
        memcpy(to, from, static_cast<size_t>(count) * N);
        return;
    }
    int i = 0;
    if constexpr (N == 1) {
        // Whole vectors read the pixels that are skipped, too. Behind the last one wanted the row may end.
        if (shift == 1) i = copy_spaced_bytes<1>(to, from, count - 1);
        if (shift == 2) i = copy_spaced_bytes<2>(to, from, count - 1);
    } else if constexpr (N >= 3) {
        const ptrdiff_t spacing = ptrdiff_t{N} << shift, limit = (count - 4) * spacing + N - 16;
        for (ptrdiff_t at = 0; at <= limit; at += 4 * spacing, i += 4) {
            copy_four_spaced<N>(to + i * N, from + at, spacing);
        }
    }
    for (; i < count; i++) memcpy(to + i * N, from + (ptrdiff_t{i} << shift) * N, N);
}

// 5-6-5 words to four bytes a pixel, the last of no meaning. `to` reaches to the next whole vector.
[[gnu::noinline]] inline void widen_565(const uint8_t *words, int count, uint8_t *to) {
    constexpr int kWords = kVectorBytes / 2;
    uint8_t last[kVectorBytes] = {};
    for (; count > 0; count -= kWords, words += 2 * kWords, to += 4 * kWords) {
        if (count < kWords) {
            memcpy(last, words, static_cast<size_t>(count) * 2);
            words = last;
        }
        const U16 v = load<U16>(words);
        store_interleaved2(to, (v >> 8 & 0xF8) | (v << 5 & 0xFC00), v << 3);
    }
}

// Brings the pixels under a strip together as they lie in memory.
template <int N>
[[gnu::noinline]] void collect(const Strip &strip, const uint8_t *row, uint8_t *to) {
    if (strip.fetch == Fetch::kCompact) {
        copy_spaced<N>(to, row + (strip.first_pixel << strip.x.shift) * N, strip.pixels, strip.x.shift);
        return;
    }
    const uint8_t *first = row + (strip.first_pixel << strip.x.shift) * N;
    int64_t x = strip.fraction;
    for (int i = 0; i < strip.count; i++, to += 2 * N, x += strip.x.step) {
        const uint8_t *left = first + (x >> kPositionBits << strip.x.shift) * N;
        memcpy(to, left, N);
        memcpy(to + N, left + strip.neighbour * N, N);
    }
}

}  // namespace qorv::QORV_ISA
