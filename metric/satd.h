// Hadamard transforms, and the sums of the magnitudes of their coefficients.
//
// A two-dimensional Hadamard transform of 2^n values is n stages of sums and differences, one for each bit of a value's
// index, in any order. An index bit is either one of the number of the vector or one of the lane: the stages of the
// first kind come as they are, for the others exchange() swaps a bit of each kind. The last stage needs no sums:
// |x + y| + |x - y| = 2 max(|x|, |y|), and the halves of the results take up the factor 2.
#pragma once

#include "metric/block.h"

namespace qorv::QORV_ISA {

template <class V>
[[gnu::always_inline]] inline void sum_and_difference(V &a, V &b) {
    const V difference = a - b;
    a = a + b;
    b = difference;
}

// The stages between the vectors, from those `Step` apart on.
template <int Step = 1, int N, class V>
[[gnu::always_inline]] inline void transform_vectors(V (&v)[N]) {
    if constexpr (Step < N) {
        unrolled<N>([&](int i) __attribute__((always_inline)) {
            if ((i & Step) == 0) sum_and_difference(v[i], v[i + Step]);
        });
        transform_vectors<2 * Step>(v);
    }
}

// One stage between groups of `Bytes` bytes.
template <int Bytes, int N, class V>
[[gnu::always_inline]] inline void transform_groups(V (&v)[N]) {
    unrolled<N / 2>([&](int i) __attribute__((always_inline)) {
        exchange<Bytes>(v[2 * i], v[2 * i + 1]);
        sum_and_difference(v[2 * i], v[2 * i + 1]);
    });
}

// The last stage, between neighbouring lanes, added up: half the sum of all magnitudes. 16-bit lanes reach 2^15 - 1
// here at the most; `Small` says that four times as much stays below 2^15.
template <bool Small, int N, class Sum, class V>
[[gnu::always_inline]] inline void add_half_magnitudes(Sum &sum, V (&v)[N]) {
    V all = {};
    unrolled<N / 2>([&](int i) __attribute__((always_inline)) {
        const V half = max_of_pairs(abs_lanes(v[2 * i]), abs_lanes(v[2 * i + 1]));
        if constexpr (sizeof(Sum) == sizeof(V) && sizeof sum[0] == sizeof v[0][0]) {
            sum += half;
        } else if constexpr (Small) {
            all = i == 0 ? half : all + half;
        } else {
            add_pairs(sum, half);
        }
    });
    if constexpr (Small) add_pairs(sum, all);
}

// The residual of `N` vectors, each of as many rows of `Width` columns as its 16-bit lanes hold, modulo 2^16. Of bytes,
// where the machine has it for nothing, with the horizontal stage between neighbours done.
template <class A, class B>
constexpr bool kFirstStageDone = kHasSumsAndDifferences && sizeof(A) + sizeof(B) == 2;

template <int Width, int Bytes, int N, class A, class B>
[[gnu::always_inline]] inline void load_residual(Vec<uint16_t, Bytes> (&v)[N], const A *a, const B *b,
                                                 ptrdiff_t stride_a, ptrdiff_t stride_b) {
    constexpr int kRows = Bytes / 2 / Width;
    unrolled<N>([&](int i) __attribute__((always_inline)) {
        const A *row_a = a + i * kRows * stride_a;
        const B *row_b = b + i * kRows * stride_b;
        if constexpr (kFirstStageDone<A, B>) {
            v[i] = sums_and_differences<Width, Bytes>(row_a, stride_a) -
                   sums_and_differences<Width, Bytes>(row_b, stride_b);
        } else {
            v[i] = (Vec<uint16_t, Bytes>)load_samples<Width, kRows, Bytes>(row_a, stride_a) -
                   (Vec<uint16_t, Bytes>)load_samples<Width, kRows, Bytes>(row_b, stride_b);
        }
    });
}

// True when a residual is beyond -Limit..Limit, Limit being 2^n - 1.
template <int Limit, int N, class V>
[[gnu::always_inline]] inline bool exceeds(const V (&v)[N], V more = V{}) {
    static_assert((Limit & (Limit + 1)) == 0);
    unrolled<N>([&](int i) __attribute__((always_inline)) { more |= abs_lanes(v[i]); });
    return top_bit_set(add_saturated(more, splat<V>(INT16_MAX - Limit)));
}

// Half the sum of all magnitudes of the transform of Size x Size residuals, exact for residuals of 25 bits.
template <int Size>
uint32_t exact_hadamard(const int32_t *residual) {
    Vec<uint32_t, 16> v[Size * Size / 4];
    for (int i = 0; i < Size * Size / 4; i++) v[i] = load<Vec<uint32_t, 16>>(residual + 4 * i);
    Vec<uint32_t, 16> sum = {};
    transform_vectors(v);
    transform_groups<8>(v);
    add_half_magnitudes<false>(sum, v);
    return sum_lanes(sum);
}

// ---- 4x4 ----

// Three stages of sums keep residuals of 12 bits and their sign within 16 bits.
constexpr int kMaxResidual4x4 = 4095;

template <class A, class B>
[[gnu::noinline]] uint32_t exact_satd4x4(const A *a, const B *b, ptrdiff_t stride_a, ptrdiff_t stride_b) {
    int32_t residual[16];
    for (int i = 0; i < 16; i++) {
        residual[i] = static_cast<int16_t>(a[i / 4 * stride_a + i % 4] - b[i / 4 * stride_b + i % 4]);
    }
    return exact_hadamard<4>(residual);
}

// A tile in two vectors of two rows.
template <class A, class B>
uint32_t satd4x4(const A *a, const B *b, int32_t stride_a, int32_t stride_b) {
    Vec<uint16_t, 16> v[2];
    load_residual<4, 16>(v, a, b, ptrdiff_t{stride_a}, ptrdiff_t{stride_b});
    if constexpr (sizeof(A) + sizeof(B) > 2) {
        if (exceeds<kMaxResidual4x4>(v)) return exact_satd4x4(a, b, stride_a, stride_b);
    }
    transform_vectors(v);
    if constexpr (!kFirstStageDone<A, B>) transform_groups<8>(v);
    transform_groups<4>(v);
    Vec<uint32_t, 16> sum = {};
    add_half_magnitudes<true>(sum, v);
    return sum_lanes(sum);
}

inline uint32_t hadamard4x4(const int16_t *residual) {
    // The residual against a block of zeros that has no rows.
    static constexpr int16_t kZero[4] = {};
    return satd4x4(residual, kZero, 4, 0);
}

// Four rows of a strip that is as wide as a vector of `Bytes` bytes has 16-bit lanes: a tile in each 64 bits.
template <int Bytes, class Sum, class T>
[[gnu::always_inline]] inline uint32_t add_tiles(Sum &sum, const T *a, const T *b, ptrdiff_t stride_a,
                                                 ptrdiff_t stride_b) {
    constexpr int kColumns = Bytes / 2;
    Vec<uint16_t, Bytes> v[4];
    load_residual<kColumns, Bytes>(v, a, b, stride_a, stride_b);
    if constexpr (sizeof(T) == 2) {
        if (exceeds<kMaxResidual4x4>(v)) {
            uint32_t exact = 0;
            for (int x = 0; x < kColumns; x += 4) exact += exact_satd4x4(a + x, b + x, stride_a, stride_b);
            return exact;
        }
    }
    transform_vectors(v);
    if constexpr (!kFirstStageDone<T, T>) transform_groups<4>(v);
    add_half_magnitudes<sizeof(T) == 1>(sum, v);
    return 0;
}

// Whole tiles, the last ones reaching up to 3 columns and rows beyond the area.
template <class T>
uint32_t area_satd(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b) {
    if (w < 1) return 0;
    constexpr int kWide = kVectorBytes / 2;
    uint32_t total = 0;
    Vec<uint32_t, kVectorBytes> wide = {};
    Vec<uint32_t, 16> narrow = {};
    for (; h > 0; h -= 4, a += ptrdiff_t{4} * stride_a, b += ptrdiff_t{4} * stride_b) {
        const T *pa = a, *pb = b;
        int32_t left = w;
        for (; left > kWide - 4; left -= kWide, pa += kWide, pb += kWide) {
            total += add_tiles<kVectorBytes>(wide, pa, pb, stride_a, stride_b);
        }
        if constexpr (kWide > 8) {
            if (left > 4) {
                total += add_tiles<16>(narrow, pa, pb, stride_a, stride_b);
                left -= 8, pa += 8, pb += 8;
            }
        }
        if (left > 0) total += satd4x4(pa, pb, stride_a, stride_b);
    }
    return total + sum_lanes(wide) + sum_lanes(narrow);
}

// ---- 8x8 ----

// Five stages of sums keep residuals of 10 bits and their sign within 16 bits.
constexpr int kMaxResidual8x8 = 1023;

template <class A, class B>
[[gnu::noinline]] uint32_t exact_satd8x8(const A *a, const B *b, ptrdiff_t stride_a, ptrdiff_t stride_b) {
    int32_t residual[64];
    for (int i = 0; i < 64; i++) residual[i] = a[i / 8 * stride_a + i % 8] - b[i / 8 * stride_b + i % 8];
    return (exact_hadamard<8>(residual) + 1) >> 1;
}

template <class T>
constexpr bool kUnsignedWords = sizeof(T) == 2 && T(-1) > 0;

// What exceeds() has to know beside the residual modulo 2^16: the bits of lanes in which that may not be the residual.
template <class A, class B>
[[gnu::always_inline]] inline Vec<uint16_t, 16> wrapped(const A *a, const B *b) {
    using V = Vec<uint16_t, 16>;
    const V va = (V)load_samples<8, 1, 16>(a, 0), vb = (V)load_samples<8, 1, 16>(b, 0);
    // Of two unsigned samples on the same side of 2^15 the residual is exact. An unsigned one below 2^15 is a signed
    // one, and of two signed ones the distance tells.
    if constexpr (kUnsignedWords<A> && kUnsignedWords<B>) return (va ^ vb) & static_cast<uint16_t>(0x8000);
    const V distance = abs_difference((Vec<int16_t, 16>)va, (Vec<int16_t, 16>)vb);
    return kUnsignedWords<B> ? distance | (vb & static_cast<uint16_t>(0x8000)) : distance;
}

template <class A, class B>
[[gnu::always_inline]] inline bool exceeds8x8(const Vec<uint16_t, 16> (&v)[8], const A *a, const B *b,
                                              ptrdiff_t stride_a, ptrdiff_t stride_b) {
    Vec<uint16_t, 16> more = {};
    unrolled<8>([&](int y) __attribute__((always_inline)) { more |= wrapped(a + y * stride_a, b + y * stride_b); });
    return exceeds<kMaxResidual8x8>(v, more);
}

template <class A, class B>
uint32_t satd8x8(const A *a, const B *b, int32_t stride_a, int32_t stride_b) {
    constexpr bool kSmall = sizeof(A) + sizeof(B) == 2;
    constexpr int kBytes = kFirstStageDone<A, B> ? kVectorBytes : 16;
    constexpr int kVectors = 8 * 16 / kBytes;
    Vec<uint16_t, kBytes> v[kVectors];
    load_residual<8, kBytes>(v, a, b, ptrdiff_t{stride_a}, ptrdiff_t{stride_b});
    if constexpr (!kSmall) {
        if (exceeds8x8<A, B>(v, a, b, stride_a, stride_b)) return exact_satd8x8(a, b, stride_a, stride_b);
    }
    transform_vectors(v);
    if constexpr (!kFirstStageDone<A, B> || kBytes == 32) transform_groups<8>(v);
    transform_groups<4>(v);
    Vec<uint32_t, kBytes> sum = {};
    add_half_magnitudes<kSmall>(sum, v);
    return (sum_lanes(sum) + 1) >> 1;
}

}  // namespace qorv::QORV_ISA
