// How the block metrics walk two blocks: in strips of a fixed width, several rows a step, rows narrower than a vector
// side by side in one. Kernel sources alone include this header.
#pragma once

#include "core/simd.h"

namespace qorv::QORV_ISA {

// Calls f(0) to f(N - 1), unrolled, each argument a constant to what is inlined.
template <int N, class F>
[[gnu::always_inline]] inline void unrolled(F f) {
    if constexpr (N > 1) unrolled<N - 1>(f);
    if constexpr (N > 0) f(N - 1);
}

template <bool Condition, class A, class B>
struct Choice {
    using type = A;
};
template <class A, class B>
struct Choice<false, A, B> {
    using type = B;
};
template <bool Condition, class A, class B>
using IfElse = typename Choice<Condition, A, B>::type;

template <class T>
[[gnu::always_inline]] inline T load_word(const void *p) {
    T word;
    memcpy(&word, p, sizeof word);
    return word;
}

// `Rows` words, one from each row, and zero in the lanes after them.
template <class Word, int Rows>
[[gnu::always_inline]] inline Vec<uint8_t, 16> load_column(const uint8_t *p, ptrdiff_t stride) {
    using V = Vec<Word, 16>;
    const auto row = [&](int y) __attribute__((always_inline)) {
        return load_word<Word>(p + y * stride);
    };
    if constexpr (Rows == 1) return (Vec<uint8_t, 16>)V{row(0)};
    if constexpr (Rows == 2) return (Vec<uint8_t, 16>)V{row(0), row(1)};
    if constexpr (Rows == 4) return (Vec<uint8_t, 16>)V{row(0), row(1), row(2), row(3)};
    if constexpr (Rows == 8) {
        return (Vec<uint8_t, 16>)V{row(0), row(1), row(2), row(3), row(4), row(5), row(6), row(7)};
    }
}

// `Rows` rows of `Width` bytes side by side in a vector of `Bytes` bytes, with zeros after them.
template <int Width, int Rows, int Bytes>
[[gnu::always_inline]] inline Vec<uint8_t, Bytes> load_bytes(const uint8_t *p, ptrdiff_t stride) {
    static_assert(Width * Rows <= Bytes);
    if constexpr (Width == Bytes) {
        return load<Vec<uint8_t, Bytes>>(p);
    } else if constexpr (Bytes == 32) {
        static_assert(Width == 16);
        using Half = Vec<uint8_t, Bytes / 2>;
        return join(load<Half>(p), Rows == 2 ? load<Half>(p + stride) : Half{});
    } else if constexpr (Width == 8) {
        return load_column<uint64_t, Rows>(p, stride);
    } else if constexpr (Width == 4) {
        return load_column<uint32_t, Rows>(p, stride);
    } else if constexpr (Width == 2) {
        return load_column<uint16_t, Rows>(p, stride);
    } else {
        return load_column<uint8_t, Rows>(p, stride);
    }
}

// `Rows` rows of `Width` samples in 16-bit lanes in the same way. Strides are in samples.
template <int Width, int Rows, int Bytes>
[[gnu::always_inline]] inline Vec<int16_t, Bytes> load_samples(const int16_t *p, ptrdiff_t stride) {
    return (Vec<int16_t, Bytes>)load_bytes<2 * Width, Rows, Bytes>(reinterpret_cast<const uint8_t *>(p), 2 * stride);
}

template <int Width, int Rows, int Bytes>
[[gnu::always_inline]] inline Vec<int16_t, Bytes> load_samples(const uint16_t *p, ptrdiff_t stride) {
    return load_samples<Width, Rows, Bytes>(reinterpret_cast<const int16_t *>(p), stride);
}

template <int Width, int Rows, int Bytes>
[[gnu::always_inline]] inline Vec<int16_t, Bytes> load_samples(const uint8_t *p, ptrdiff_t stride) {
    if constexpr (2 * Width == Bytes) {
        return load_widened<Bytes>(p);
    } else {
        return widen_low(load_bytes<Width, Rows, 16>(p, stride));
    }
}

constexpr int smaller(int a, int b) {
    return a < b ? a : b;
}

// How a metric takes a strip of `Width` columns: in vectors of kColumns x kRows samples, kStep rows at a time, which
// are at most `Vectors` vectors where a row is not more than that already.
template <int Width, int Lanes, int Vectors>
struct Shape {
    static constexpr int kColumns = smaller(Width, Lanes);
    static constexpr int kRows = smaller(Lanes / kColumns, 8);
    static constexpr int kAcross = Width / kColumns;
    static constexpr int kStep = smaller(Vectors / kAcross > 1 ? Vectors / kAcross * kRows : kRows, 8);
};

// Hands `Rows` rows of two strips to metric.add(k, a, b), vector by vector, k counting the vectors.
template <int Width, int Rows, class Metric, class A, class B>
[[gnu::always_inline]] inline void add_rows(Metric &metric, const A *a, const B *b, ptrdiff_t stride_a,
                                            ptrdiff_t stride_b) {
    using S = typename Metric::S;
    constexpr int kRows = smaller(S::kRows, Rows);
    unrolled<Rows / kRows * S::kAcross>([&](int k) __attribute__((always_inline)) {
        const int y = k / S::kAcross * kRows, x = k % S::kAcross * S::kColumns;
        metric.add(k, Metric::template load<S::kColumns, kRows>(a + y * stride_a + x, stride_a),
                   Metric::template load<S::kColumns, kRows>(b + y * stride_b + x, stride_b));
    });
    metric.end_step();
}

// Walks `rows` rows of two strips, `Rows` rows a step and the rest in halves of that.
template <int Width, int Rows, class Metric, class A, class B>
[[gnu::always_inline]] inline void walk(Metric &metric, const A *a, const B *b, ptrdiff_t stride_a, ptrdiff_t stride_b,
                                        int32_t rows) {
    for (; rows >= Rows; rows -= Rows) {
        add_rows<Width, Rows>(metric, a, b, stride_a, stride_b);
        a += Rows * stride_a;
        b += Rows * stride_b;
    }
    if constexpr (Rows > 1) walk<Width, Rows / 2>(metric, a, b, stride_a, stride_b, rows);
}

template <int Width, class Metric, class A, class B>
[[gnu::always_inline]] inline void walk_strip(Metric &metric, const A *a, const B *b, ptrdiff_t stride_a,
                                              ptrdiff_t stride_b, int32_t rows) {
    walk<Width, Metric::S::kStep>(metric, a, b, stride_a, stride_b, rows);
}

// The widest strip, and the most rows of a strip that a metric's lanes have to hold.
constexpr int kMaxStrip = 64;
constexpr int kMaxRows = 64;

template <int Width>
struct Columns {
    static constexpr int value = Width;
};

// Cuts `width` columns into strips of powers of two: f(Columns<W>, x) for each, x being its first column.
template <int Width = kMaxStrip, class F>
[[gnu::always_inline]] inline void for_each_strip(int32_t width, F f, ptrdiff_t x = 0) {
    for (; width >= Width; width -= Width, x += Width) f(Columns<Width>{}, x);
    if constexpr (Width > 1) for_each_strip<Width / 2>(width, f, x);
}

}  // namespace qorv::QORV_ISA
