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

// Four pixels of three bytes that lie `spacing` bytes apart; of each, 16 bytes are read, and 16 bytes are written.
[[gnu::always_inline]] inline void copy_four_spaced(uint8_t *to, const uint8_t *from, ptrdiff_t spacing) {
    using U32x4 = Vec<uint32_t, 16>;
    using U8x16 = Vec<uint8_t, 16>;
    const U32x4 a = load<U32x4>(from), b = load<U32x4>(from + spacing);
    const U32x4 c = load<U32x4>(from + 2 * spacing), d = load<U32x4>(from + 3 * spacing);
    const U32x4 ab = __builtin_shufflevector(a, b, 0, 4, 1, 5), cd = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    const U8x16 four = (U8x16)__builtin_shufflevector(ab, cd, 0, 1, 4, 5);
    store(to, __builtin_shufflevector(four, four, 0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 15, 15, 15, 15));
}

// Fewer than 16 bytes, and zeros behind them.
[[gnu::always_inline]] inline Vec<uint64_t, 16> load_few(const uint8_t *from, int bytes) {
    using U64x2 = Vec<uint64_t, 16>;
    if (bytes >= 8) return U64x2{load<uint64_t>(from), load<uint64_t>(from + bytes - 8) >> (8 * (16 - bytes) & 63)};
    uint64_t v = 0;
    if (bytes >= 4) {
        v = load<uint32_t>(from) | uint64_t{load<uint32_t>(from + bytes - 4)} << (8 * (bytes - 4));
    } else {
        for (int i = 0; i < bytes; i++) v |= uint64_t{from[i]} << (8 * i);
    }
    return U64x2{v, 0};
}

// Stores the first of a vector's bytes, at least one and fewer than all.
[[gnu::always_inline]] inline void store_few(uint8_t *to, const uint8_t *from, int bytes) {
    if (kVectorBytes == 32 && bytes >= 16) {
        store(to, load<Vec<uint8_t, 16>>(from));
        store(to + bytes - 16, load<Vec<uint8_t, 16>>(from + bytes - 16));
    } else if (bytes >= 8) {
        store(to, load<uint64_t>(from));
        store(to + bytes - 8, load<uint64_t>(from + bytes - 8));
    } else if (bytes >= 4) {
        store(to, load<uint32_t>(from));
        store(to + bytes - 4, load<uint32_t>(from + bytes - 4));
    } else {
        for (int i = 0; i < bytes; i++) to[i] = from[i];
    }
}

// Copies every (1 << shift)-th pixel. `to` reaches to the next whole vector.
template <int N>
[[gnu::always_inline]] inline void copy_spaced(uint8_t *to, const uint8_t *from, int count, int shift) {
    if (shift == 0 && count * N < 16) {
        // In one store, as vectors are to be loaded from it at once.
        store(to, load_few(from, count * N));
        return;
    }
    if (shift == 0) {
        memcpy(to, from, static_cast<size_t>(count) * N);
        return;
    }
    int i = 0;
    if constexpr (N == 1) {
        // Whole vectors read the pixels that are skipped, too. Behind the last one wanted the row may end.
        if (shift == 1) i = copy_spaced_bytes<1>(to, from, count - 1);
        if (shift == 2) i = copy_spaced_bytes<2>(to, from, count - 1);
    } else if constexpr (N == 3) {
        const ptrdiff_t spacing = ptrdiff_t{N} << shift, limit = (count - 4) * spacing + N - 16;
        for (ptrdiff_t at = 0; at <= limit; at += 4 * spacing, i += 4) {
            copy_four_spaced(to + i * N, from + at, spacing);
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

// The two neighbours of a vector's columns, pixels of four bytes: two columns a lane. The first ones of all lanes have
// their places before the second ones.
[[gnu::always_inline]] inline U8 load_neighbours(const uint8_t *row, const uint32_t *places, ptrdiff_t right) {
    const uint8_t *next_row = row + right;
    hide_origin(next_row);  // or each of its addresses is worked out from the row's
    const auto left = [=](int i) { return load<uint32_t>(row + places[i]); };
    const auto next = [=](int i) { return load<uint32_t>(next_row + places[i]); };
#if QORV_VECTOR_BYTES == 32
    return (U8)U32{left(0), next(0), left(2), next(2), left(1), next(1), left(3), next(3)};
#else
    return (U8)U32{left(0), next(0), left(1), next(1)};
#endif
}

// The same where every second pixel is looked at. Of each column 16 bytes are read, from `Before` bytes before its left
// pixel on: one pixel, the first or the last, is not needed.
template <int Before>
[[gnu::always_inline]] inline U8 load_second_neighbours(const uint8_t *row, const uint32_t *places) {
    using F32 = Vec<float>;  // or g++ does not see that it is one instruction
    constexpr int k = Before / 4;
    const F32 first = (F32)load_windows(row - Before, places),
              second = (F32)load_windows(row - Before, places + kLanes);
#if QORV_VECTOR_BYTES == 32
    return (U8)__builtin_shufflevector(first, second, k, k + 2, k + 8, k + 10, k + 4, k + 6, k + 12, k + 14);
#else
    return (U8)__builtin_shufflevector(first, second, k, k + 2, k + 4, k + 6);
#endif
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
