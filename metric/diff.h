// Residuals: the low 16 bits of a - b, sample by sample.
#pragma once

#include "metric/block.h"

namespace qorv::QORV_ISA {

// Sample by sample in row order: the meaning of an output that overlaps an input.
template <class A, class B>
[[gnu::noinline]] void diff_in_order(int32_t w, int32_t h, const A *a, const B *b, ptrdiff_t stride_a,
                                     ptrdiff_t stride_b, ptrdiff_t stride_out, int16_t *out) {
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

// Stores the first `Rows` rows of `Width` lanes of a vector.
template <int Width, int Rows, class V>
[[gnu::always_inline]] inline void store_rows(int16_t *out, ptrdiff_t stride, V v) {
    if constexpr (2 * Width == sizeof v) {
        store(out, v);
    } else {
        unrolled<Rows>([&](int y) __attribute__((always_inline)) {
            if constexpr (Width == 4) store(out + y * stride, (((Vec<uint64_t, sizeof v>)v)[y]));
            if constexpr (Width == 2) store(out + y * stride, (((Vec<uint32_t, sizeof v>)v)[y]));
            if constexpr (Width == 1) store(out + y * stride, v[y]);
        });
    }
}

// `Rows` rows of a strip.
template <int Width, int Rows, class A, class B>
[[gnu::always_inline]] inline void diff_rows(const A *a, const B *b, ptrdiff_t stride_a, ptrdiff_t stride_b,
                                             ptrdiff_t stride_out, int16_t *out) {
    constexpr int kBytes = Width < 16 ? 16 : kVectorBytes;
    using S = Shape<Width, kBytes / 2, 4>;
    constexpr int kRows = smaller(S::kRows, Rows);
    unrolled<Rows / kRows * S::kAcross>([&](int k) __attribute__((always_inline)) {
        const int y = k / S::kAcross * kRows, x = k % S::kAcross * S::kColumns;
        const auto va = load_samples<S::kColumns, kRows, kBytes>(a + y * stride_a + x, stride_a);
        const auto vb = load_samples<S::kColumns, kRows, kBytes>(b + y * stride_b + x, stride_b);
        using Lanes = Vec<uint16_t, kBytes>;
        store_rows<S::kColumns, kRows>(out + y * stride_out + x, stride_out, (Lanes)va - (Lanes)vb);
    });
}

template <int Width, int Rows = Shape<Width, Width<16 ? 8 : kVectorBytes / 2, 4>::kStep, class A,
                                      class B> [[gnu::always_inline]] inline void
                         diff_strip(const A *a, const B *b, ptrdiff_t stride_a, ptrdiff_t stride_b,
                                    ptrdiff_t stride_out, int16_t *out, int32_t rows) {
    for (; rows >= Rows; rows -= Rows) {
        diff_rows<Width, Rows>(a, b, stride_a, stride_b, stride_out, out);
        a += Rows * stride_a;
        b += Rows * stride_b;
        out += Rows * stride_out;
    }
    if constexpr (Rows > 1) diff_strip<Width, Rows / 2>(a, b, stride_a, stride_b, stride_out, out, rows);
}

template <int Width, int Height, class A, class B>
void block_diff(const A *a, const B *b, int32_t stride_a, int32_t stride_b, int32_t stride_out, int16_t *out) {
    const Span written(out, Width, Height, stride_out);
    if (written.overlaps(Span(a, Width, Height, stride_a)) || written.overlaps(Span(b, Width, Height, stride_b))) {
        return diff_in_order(Width, Height, a, b, stride_a, stride_b, stride_out, out);
    }
    diff_strip<Width>(a, b, stride_a, stride_b, stride_out, out, Height);
}

template <class T>
void area_diff(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b, int32_t stride_out,
               int16_t *out) {
    if (w < 1 || h < 1) return;
    // Rows of the output that overlap each other are written in order, too.
    const bool rows_overlap = h > 1 && stride_out < w && stride_out > -w;
    const Span written(out, w, h, stride_out);
    if (rows_overlap || written.overlaps(Span(a, w, h, stride_a)) || written.overlaps(Span(b, w, h, stride_b))) {
        return diff_in_order(w, h, a, b, stride_a, stride_b, stride_out, out);
    }
    for (; h > 0; h -= kMaxRows) {
        const int32_t rows = h < kMaxRows ? h : kMaxRows;
        for_each_strip(
            w, [&](auto columns, ptrdiff_t x) __attribute__((always_inline)) {
                diff_strip<columns.value>(a + x, b + x, stride_a, stride_b, stride_out, out + x, rows);
            });
        a += ptrdiff_t{kMaxRows} * stride_a;
        b += ptrdiff_t{kMaxRows} * stride_b;
        out += ptrdiff_t{kMaxRows} * stride_out;
    }
}

}  // namespace qorv::QORV_ISA
