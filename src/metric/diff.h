// Residuals: the low 16 bits of a - b, sample by sample.
#pragma once

#include "metric/block.h"

namespace qorv::QORV_ISA {

// Sample by sample in row order: the meaning of an output that overlaps an input.
template <class A, class B>
[[gnu::noinline]] void diff_in_order(int32_t w, int32_t h, const A *a, const B *b, int32_t stride_a, int32_t stride_b,
                                     int32_t stride_out, int16_t *out) {
    for (; h > 0; h--, a += stride_a, b += stride_b, out += stride_out) {
        for (int32_t x = 0; x < w; x++) out[x] = static_cast<int16_t>(a[x] - b[x]);
    }
}

// The addresses that a block spans.
struct Span {
    uintptr_t begin, end;

    template <class T>
    [[gnu::always_inline]] Span(const T *p, int32_t w, int32_t h, ptrdiff_t stride) {
        const ptrdiff_t last_row = (h - ptrdiff_t{1}) * stride * ptrdiff_t{sizeof(T)};
        begin = reinterpret_cast<uintptr_t>(p) + static_cast<uintptr_t>(last_row < 0 ? last_row : 0);
        end = reinterpret_cast<uintptr_t>(p + w) + static_cast<uintptr_t>(last_row < 0 ? 0 : last_row);
    }
    [[gnu::always_inline]] bool overlaps(Span other) const { return begin < other.end && other.begin < end; }
};

// Stores the first `Count` rows of `Width` lanes of a vector.
template <int Width, int Count, bool Alone, class V>
[[gnu::always_inline]] inline void store_rows(const Rows<int16_t> &out, int y, int x, V v) {
    if constexpr (2 * Width == sizeof v) {
#ifdef QORV_SIMD_NEON
        if constexpr (Alone) return store_alone(out.at(y, x), (Vec<uint8_t, 16>)v);
#endif
        store(out.at(y, x), v);
    } else {
        unrolled<Count>([&](int i) __attribute__((always_inline)) {
            if constexpr (Width == 4) store(out.at(y + i, x), ((Vec<uint64_t, sizeof v>)v)[i]);
            if constexpr (Width == 2) store(out.at(y + i, x), ((Vec<uint32_t, sizeof v>)v)[i]);
            if constexpr (Width == 1) store(out.at(y + i, x), v[i]);
        });
    }
}

// The vectors of a row, or of the rows that one vector holds, from row y on.
template <class S, int Count, class V, class A, class B>
[[gnu::always_inline]] inline void load_differences(V (&d)[S::kAcross], const Rows<A> &a, const Rows<B> &b, int y) {
#ifdef QORV_SIMD_NEON
    if constexpr (S::kAcross > 1 && sizeof(A) + sizeof(B) == 2) {  // whole vectors of bytes give two each
        return unrolled<S::kAcross / 2>([&](int i) __attribute__((always_inline)) {
            const auto load_at = [&](const auto &rows) __attribute__((always_inline)) {
                if constexpr (S::kAcross == 2) return load_row<16, true>(rows, y);
                return load<Vec<uint8_t, 16>>(rows.at(y, 16 * i));
            };
            const auto va = load_at(a), vb = load_at(b);
            d[2 * i] = subtract_widened<false>(va, vb);
            d[2 * i + 1] = subtract_widened<true>(va, vb);
        });
    }
    if constexpr (S::kAcross == 1 && Count == 1 && S::kColumns >= 4 && sizeof(A) + sizeof(B) == 2) {
        constexpr bool kWithAddress = S::kColumns == 4 && kMakesAddressesOfWords;
        d[0] = subtract_widened(load_row<S::kColumns, kWithAddress>(a, y), load_row<S::kColumns, kWithAddress>(b, y));
        return;
    }
#endif
    unrolled<S::kAcross>([&](int i) __attribute__((always_inline)) {
        d[i] = load_difference<S::kColumns, Count, sizeof(V)>(a, b, y, i * S::kColumns);
    });
}

template <class S, int Count, bool OfBytes, class V>
[[gnu::always_inline]] inline void store_vectors(const Rows<int16_t> &out, int y, const V (&d)[S::kAcross]) {
#ifdef QORV_SIMD_NEON
    if constexpr (S::kAcross > 1) {
        return unrolled<S::kAcross / 2>([&](int i) __attribute__((always_inline)) {
            store_pair<OfBytes>(out.at(y, 16 * i), d[2 * i], d[2 * i + 1]);
        });
    }
#endif
    unrolled<S::kAcross>([&](int i) __attribute__((always_inline)) {
        store_rows<S::kColumns, Count, S::kAcross == 1>(out, y, i * S::kColumns, d[i]);
    });
}

// Walks `rows` rows of a strip, `Step` rows a step and the rest in smaller steps.
template <int Width, int Step, int Sides, class A, class B>
[[gnu::always_inline]] inline void diff_rows(Strip<A, Sides> &a, Strip<B, Sides> &b, Strip<int16_t, Sides> &out,
                                             int32_t rows) {
    constexpr int kBytes = Width < 16 ? 16 : kVectorBytes;
    constexpr bool kSingle = kSingleRows && Width >= 4 && sizeof(A) + sizeof(B) == 2;
    using S = Shape<Width, kBytes / 2, kSingle ? 1 : 4>;
    const auto subtract = [&](auto together, int y, int) __attribute__((always_inline)) {
        unrolled<Sides>([&](int side) __attribute__((always_inline)) {
            Vec<int16_t, kBytes> d[S::kAcross];
            load_differences<S, together.value>(d, a[side], b[side], y);
            store_vectors<S, together.value, sizeof(A) + sizeof(B) == 2>(out[side], y, d);
        });
    };
    for (; rows >= Step; rows -= Step) {
        for_each_row<S, Step>(
            subtract, [&](int n) __attribute__((always_inline)) { a.skip(n), b.skip(n), out.skip(n); });
    }
    if constexpr (Step > 1) diff_rows<Width, Step / 2>(a, b, out, rows);
}

template <int Width, int Sides, int Step, class A, class B>
[[gnu::always_inline]] inline void diff_strip(int32_t w, int32_t rows, const A *a, const B *b, ptrdiff_t stride_a,
                                              ptrdiff_t stride_b, ptrdiff_t stride_out, int16_t *out) {
    Strip<const A, Sides> strip_a(a, stride_a, w - Width);
    Strip<const B, Sides> strip_b(b, stride_b, w - Width);
    Strip<int16_t, Sides> strip_out(out, stride_out, w - Width);
    diff_rows<Width, Step>(strip_a, strip_b, strip_out, rows);
}

template <int Width, int Sides, class A, class B>
[[gnu::noinline]] void area_strip_diff(int32_t w, int32_t rows, const A *a, const B *b, int32_t stride_a,
                                       int32_t stride_b, int32_t stride_out, int16_t *out) {
    diff_strip<Width, Sides, kForSize ? 1 : kAreaVectors>(w, rows, a, b, stride_a, stride_b, stride_out, out);
}

// Of one piece that does not overlap the output.
template <class A, class B>
[[gnu::always_inline]] inline void diff_apart(int32_t w, int32_t h, const A *a, const B *b, int32_t stride_a,
                                              int32_t stride_b, int32_t stride_out, int16_t *out) {
    with_strip<kMaxStrip, kForSize ? kMaxStrip : kVectorBytes / 2>(
        w, [&](auto width, auto sides) __attribute__((always_inline)) {
            area_strip_diff<width.value, sides.value>(w, h, a, b, stride_a, stride_b, stride_out, out);
        });
}

template <class A, class B>
[[gnu::noinline]] void diff_piece(int32_t w, int32_t h, const A *a, const B *b, int32_t stride_a, int32_t stride_b,
                                  int32_t stride_out, int16_t *out) {
    if (w < kNarrowest) return diff_in_order(w, h, a, b, stride_a, stride_b, stride_out, out);
    diff_apart(w, h, a, b, stride_a, stride_b, stride_out, out);
}

// Of any area: large, empty, or over an input or rows of its own.
template <class A, class B>
[[gnu::noinline]] void careful_diff(int32_t w, int32_t h, const A *a, const B *b, int32_t stride_a, int32_t stride_b,
                                    int32_t stride_out, int16_t *out) {
    if (w < 1 || h < 1) return;
    // Rows of the output that overlap each other are written in order, too. Blocks of two types are small, and rarely
    // come here: for them, that is the only way.
    const bool rows_overlap = h > 1 && stride_out < w && stride_out > -w;
    const Span written(out, w, h, stride_out);
    if (sizeof(A) != sizeof(B) || rows_overlap || written.overlaps(Span(a, w, h, stride_a)) ||
        written.overlaps(Span(b, w, h, stride_b))) {
        return diff_in_order(w, h, a, b, stride_a, stride_b, stride_out, out);
    }
    for_each_piece(
        w, h, [&](int32_t x, ptrdiff_t y, int32_t columns, int32_t rows) __attribute__((always_inline)) {
            diff_piece(columns, rows, a + y * stride_a + x, b + y * stride_b + x, stride_a, stride_b, stride_out,
                       out + y * stride_out + x);
        });
}

// Whether an output is surely apart from its inputs. Cheap, where the exact answer takes a good part of the time of a
// small block: no two blocks reach farther than rows at the distance of all strides' bits together. A negative stride
// makes that at least 2^31 samples, which is as far as it and any other one reach together.
template <class A, class B>
[[gnu::always_inline]] inline bool surely_apart(int32_t w, int32_t h, const A *a, const B *b, int32_t stride_a,
                                                int32_t stride_b, int32_t stride_out, const int16_t *out) {
    const uint64_t stride = static_cast<uint32_t>(stride_a | stride_b | stride_out);
    const uint64_t reach = (stride * static_cast<uint32_t>(h) + static_cast<uint32_t>(w)) * sizeof *out;
    const uint64_t end = reinterpret_cast<uintptr_t>(out) + reach;
    return end - reinterpret_cast<uintptr_t>(a) >= 2 * reach && end - reinterpret_cast<uintptr_t>(b) >= 2 * reach;
}

// Out of line, so that the usual way needs no stack frame.
template <int Width, int Height, class A, class B>
[[gnu::noinline]] void careful_block_diff(const A *a, const B *b, int32_t stride_a, int32_t stride_b,
                                          int32_t stride_out, int16_t *out) {
    careful_diff(Width, Height, a, b, stride_a, stride_b, stride_out, out);
}

template <int Width, int Height, class A, class B>
static void block_diff(const A *a, const B *b, int32_t stride_a, int32_t stride_b, int32_t stride_out, int16_t *out) {
    if (!kIsStrip<Width, Height> || !surely_apart(Width, Height, a, b, stride_a, stride_b, stride_out, out)) {
        return careful_block_diff<Width, Height>(a, b, stride_a, stride_b, stride_out, out);
    }
    if constexpr (kIsStrip<Width, Height>) {
        constexpr int kStep = smaller(power_of_two_up_to(Height), Width <= 16 ? 16 : 4);
        diff_strip<Width, 1, kStep>(Width, Height, a, b, stride_a, stride_b, stride_out, out);
    }
}

template <class T>
static void area_diff(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b,
                      int32_t stride_out, int16_t *out) {
    const auto square = [&](auto side) __attribute__((always_inline)) {
        block_diff<side.value, side.value>(a, b, stride_a, stride_b, stride_out, out);
    };
    if (for_common_square(w, h, square)) return;
    // Both ways are jumps: there is nothing to save for them.
    if (!is_one_piece(w, h) || w < kNarrowest || stride_out < w ||
        !surely_apart(w, h, a, b, stride_a, stride_b, stride_out, out)) {
        return careful_diff(w, h, a, b, stride_a, stride_b, stride_out, out);
    }
    diff_apart(w, h, a, b, stride_a, stride_b, stride_out, out);
}

}  // namespace qorv::QORV_ISA
