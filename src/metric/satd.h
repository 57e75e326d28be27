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
[[gnu::always_inline]] inline void add_half_magnitudes(Sum &sum, const V (&v)[N]) {
    using Half = decltype(max_of_pairs(abs_lanes(v[0]), abs_lanes(v[1])));
    Half all = {};
    unrolled<N / 2>([&](int i) __attribute__((always_inline)) {
        const Half half = max_of_pairs(abs_lanes(v[2 * i]), abs_lanes(v[2 * i + 1]));
        if constexpr (sizeof half[0] == sizeof sum[0]) {
            sum += half;
        } else if constexpr (Small) {
            all = i == 0 ? half : all + half;
        } else {
            add_pairs(sum, half);
        }
    });
    if constexpr (Small) add_pairs(sum, all);
}

// Whether the first stage of the transform, that between horizontal neighbours, comes with the residual. On machines
// with kHasSumsAndDifferences it costs nothing, if both blocks are of bytes.
template <class A, class B>
constexpr bool kFirstStageDone = kHasSumsAndDifferences && sizeof(A) + sizeof(B) == 2;

// Loads a residual, modulo 2^16, into N vectors, each of as many rows of `Width` columns as it has lanes for. The lanes
// are signed so that the compiler does not reorder the sums and lose what they have in common.
template <int Width, int N, class V, class A, class B>
[[gnu::always_inline]] inline void load_residual(V (&v)[N], Rows<A> &a, Rows<B> &b) {
    constexpr int kBytes = sizeof(V);
    using S = Shape<Width, kBytes / 2>;
    const auto subtract = [&](auto, int y, int i) __attribute__((always_inline)) {
        if constexpr (kFirstStageDone<A, B>) {
            v[i] = sums_and_differences<Width, kBytes>(a.at(y), a.at(y + 1)) -
                   sums_and_differences<Width, kBytes>(b.at(y), b.at(y + 1));
        } else {
            v[i] = load_difference<Width, S::kRows, kBytes>(a, b, y, 0);
        }
    };
    for_each_row<S, N * S::kRows>(
        subtract, [&](int n) __attribute__((always_inline)) { a.skip(n), b.skip(n); });
}

// True when a residual is beyond -Limit..Limit, Limit being 2^n - 1.
template <int Limit, int N, class V, class Unsigned>
[[gnu::always_inline]] inline bool exceeds(const V (&v)[N], Unsigned more) {
    static_assert((Limit & (Limit + 1)) == 0);
    unrolled<N>([&](int i) __attribute__((always_inline)) { more |= abs_lanes(v[i]); });
    return top_bit_set(add_saturated(more, splat<Unsigned>(INT16_MAX - Limit)));
}

// Half the sum of all magnitudes of the transform of a residual of 4x4 or 8x8, row by row in v, exact for 25 bits.
template <int N>
[[gnu::always_inline]] inline uint32_t exact_hadamard(Vec<int32_t, 16> (&v)[N]) {
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
    Rows<const A> rows_a(a, stride_a);
    Rows<const B> rows_b(b, stride_b);
    Vec<int16_t, 16> wrapped[2];
    load_residual<4>(wrapped, rows_a, rows_b);
    Vec<int32_t, 16> v[4];
    for (int i = 0; i < 2; i++) subtract_widened(wrapped[i], Vec<int16_t, 16>{}, v[2 * i], v[2 * i + 1]);
    return exact_hadamard(v);
}

// A tile in two vectors of two rows.
template <bool FirstStageDone>
[[gnu::always_inline]] inline uint32_t tile_sum(Vec<int16_t, 16> (&v)[2]) {
    transform_vectors(v);
    transform_groups<8>(v);
    if constexpr (!FirstStageDone) transform_groups<4>(v);
    Vec<uint32_t, 16> sum = {};
    add_half_magnitudes<true>(sum, v);
    return sum_lanes(sum);
}

template <class A, class B>
static uint32_t satd4x4(const A *a, const B *b, int32_t stride_a, int32_t stride_b) {
    Rows<const A> rows_a(a, stride_a);
    Rows<const B> rows_b(b, stride_b);
    Vec<int16_t, 16> v[2];
    load_residual<4>(v, rows_a, rows_b);
    if constexpr (sizeof(A) + sizeof(B) > 2) {
        if (exceeds<kMaxResidual4x4>(v, Vec<uint16_t, 16>{})) return exact_satd4x4(a, b, stride_a, stride_b);
    }
    return tile_sum<kFirstStageDone<A, B>>(v);
}

inline uint32_t hadamard(const int16_t *residual) {
    Vec<int16_t, 16> v[2] = {load<Vec<int16_t, 16>>(residual), load<Vec<int16_t, 16>>(residual + 8)};
    if (!exceeds<kMaxResidual4x4>(v, Vec<uint16_t, 16>{})) return tile_sum<false>(v);
    // The residual against a block of zeros that has one row.
    static constexpr int16_t kZero[4] = {};
    return exact_satd4x4(residual, kZero, 4, 0);
}

// Adds `rows` rows of tiles of a strip that is as wide as a vector has 16-bit lanes: a tile in each 64 bits.
// Returns what did not fit into the lanes of the sum.
template <class Sum, class T>
[[gnu::always_inline]] inline uint32_t add_strip(Sum &sum, const T *a, const T *b, ptrdiff_t stride_a,
                                                 ptrdiff_t stride_b, int32_t rows) {
    constexpr int kBytes = sizeof sum, kColumns = kBytes / 2;
    Rows<const T> rows_a(a, stride_a), rows_b(b, stride_b);
    uint32_t exact = 0;
    for (; rows > 0; rows -= 4) {
        const T *tile_a = rows_a.at(0), *tile_b = rows_b.at(0);
        Vec<int16_t, kBytes> v[4];
        load_residual<kColumns>(v, rows_a, rows_b);
        if constexpr (sizeof(T) == 2) {
            if (exceeds<kMaxResidual4x4>(v, Vec<uint16_t, kBytes>{})) [[unlikely]] {
                for (int x = 0; x < kColumns; x += 4)
                    exact += exact_satd4x4(tile_a + x, tile_b + x, stride_a, stride_b);
                continue;
            }
        }
        transform_vectors(v);
        if constexpr (!kFirstStageDone<const T, const T>) transform_groups<4>(v);
        add_half_magnitudes<sizeof(T) == 1>(sum, v);
    }
    return exact;
}

// Whole tiles, the last ones reaching up to 3 columns and rows beyond the area.
template <class T>
[[gnu::noinline]] uint32_t any_size_satd(int32_t w, int32_t h, const T *a, const T *b, ptrdiff_t stride_a,
                                         ptrdiff_t stride_b) {
    constexpr int kWide = kVectorBytes / 2;
    uint32_t total = 0;
    Vec<uint32_t, kVectorBytes> wide = {};
    Vec<uint32_t, 16> narrow = {};
    for_each_band(
        h, [&](ptrdiff_t band, int32_t rows) __attribute__((always_inline)) {
            const T *pa = a + band * stride_a, *pb = b + band * stride_b;
            int32_t left = w;
            for (; left > kWide - 4; left -= kWide, pa += kWide, pb += kWide) {
                total += add_strip(wide, pa, pb, stride_a, stride_b, rows);
            }
            if (kWide > 8 && left > 4) {
                total += add_strip(narrow, pa, pb, stride_a, stride_b, rows);
                left -= 8, pa += 8, pb += 8;
            }
            for (ptrdiff_t y = 0; y < rows && left > 0; y += 4) {
                total += satd4x4(pa + y * stride_a, pb + y * stride_b, static_cast<int32_t>(stride_a),
                                 static_cast<int32_t>(stride_b));
            }
        });
    return total + sum_lanes(wide) + sum_lanes(narrow);
}

#if QORV_VECTOR_BYTES == 32
// Four tiles of bytes: a vector holds two rows of two of them, their halves the sums and differences of neighbours.
template <class T>
[[gnu::always_inline]] inline uint32_t four_tiles(const T *a, const T *b, ptrdiff_t stride_a, ptrdiff_t stride_b) {
    Rows<const T> rows_a(a, stride_a), rows_b(b, stride_b);
    I16 v[4];
    load_residual<8>(v, rows_a, rows_b);
    sum_and_difference(v[0], v[1]);
    sum_and_difference(v[2], v[3]);
    transform_groups<8>(v);
    U32 sum = {};
    add_half_magnitudes<true>(sum, v);
    return sum_lanes(sum);
}
#endif

template <int Side, class T>
[[gnu::noinline]] uint32_t square_satd(const T *a, const T *b, ptrdiff_t stride_a, ptrdiff_t stride_b) {
#if QORV_VECTOR_BYTES == 32
    if constexpr (Side == 8 && sizeof(T) == 1) return four_tiles(a, b, stride_a, stride_b);
#endif
    constexpr int kBytes = smaller(2 * Side, kVectorBytes);
    uint32_t total = 0;
    Vec<uint32_t, kBytes> sum = {};
    for (int x = 0; x < Side; x += kBytes / 2) total += add_strip(sum, a + x, b + x, stride_a, stride_b, Side);
    return total + sum_lanes(sum);
}

template <class T>
static uint32_t area_satd(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b) {
    uint32_t total = 0;
    const auto square = [&](auto side) __attribute__((always_inline)) {
        constexpr int kSide = side.value;
        if constexpr (kSide == 4) total = satd4x4(a, b, stride_a, stride_b);
        if constexpr (kSide > 4) total = square_satd<kSide>(a, b, stride_a, stride_b);
    };
    if (for_common_square(w, h, square)) return total;
    return w < 1 ? 0 : any_size_satd(w, h, a, b, ptrdiff_t{stride_a}, ptrdiff_t{stride_b});
}

// ---- 8x8 ----

// Five stages of sums keep residuals of 10 bits and their sign within 16 bits.
constexpr int kMaxResidual8x8 = 1023;

template <class T>
constexpr bool kUnsignedWords = sizeof(T) == 2 && T(-1) > 0;

// Eight samples as signed words: unsigned words less 2^15.
template <class T>
[[gnu::always_inline]] inline Vec<int16_t, 16> load_signed(const T *row) {
    const auto v = load_samples<8, 1, 16>(Rows<const T>(row, 0), 0, 0);
    return kUnsignedWords<T> ? v ^ splat<Vec<int16_t, 16>>(INT16_MIN) : v;
}

template <class A, class B>
[[gnu::noinline]] uint32_t exact_satd8x8(const A *a, const B *b, ptrdiff_t stride_a, ptrdiff_t stride_b) {
    constexpr int kMore = (kUnsignedWords<A> ? 1 << 15 : 0) - (kUnsignedWords<B> ? 1 << 15 : 0);
    Vec<int32_t, 16> v[16];
    for (int y = 0; y < 8; y++, a += stride_a, b += stride_b) {
        subtract_widened(load_signed(a), load_signed(b), v[2 * y], v[2 * y + 1]);
        v[2 * y] += kMore;
        v[2 * y + 1] += kMore;
    }
    return (exact_hadamard(v) + 1) >> 1;
}

// The residual of 16-bit lanes where it is small; elsewhere it is large, or `more` gets a top bit.
template <class A, class B, class V, class Unsigned>
[[gnu::always_inline]] inline V small_residual(V a, V b, Unsigned &more) {
    const V top = splat<V>(INT16_MIN);
    if constexpr (kUnsignedWords<A> && kUnsignedWords<B>) return subtract_saturated(a ^ top, b ^ top);
    if constexpr (kUnsignedWords<B>) more |= (Unsigned)(b & top);
    return subtract_saturated(a, b);
}

template <class A, class B>
static uint32_t satd8x8(const A *a, const B *b, int32_t stride_a, int32_t stride_b) {
    constexpr bool kBytes = sizeof(A) + sizeof(B) == 2, kFirst = kFirstStageDone<A, B>;
    constexpr int kVector = kVectorBytes;
    Rows<const A> rows_a(a, stride_a);
    Rows<const B> rows_b(b, stride_b);
    Vec<int16_t, kVector> v[8 * 16 / kVector];
    if constexpr (kBytes) {
        load_residual<8>(v, rows_a, rows_b);
    } else {
        Vec<uint16_t, kVector> more = {};
        const auto load_rows = [&](auto together, int y, int i) __attribute__((always_inline)) {
            v[i] = small_residual<A, B>(load_samples<8, together.value, kVector>(rows_a, y, 0),
                                        load_samples<8, together.value, kVector>(rows_b, y, 0), more);
        };
        for_each_row<Shape<8, kVector / 2>, 8>(
            load_rows, [&](int n) __attribute__((always_inline)) { rows_a.skip(n), rows_b.skip(n); });
        if (exceeds<kMaxResidual8x8>(v, more)) return exact_satd8x8(a, b, stride_a, stride_b);
    }
    transform_vectors(v);
    if constexpr (!kFirst && kVector == 32) transform_groups<16>(v);
    if constexpr (!kFirst || kVector == 32) transform_groups<8>(v);
    transform_groups<4>(v);
    Vec<uint32_t, kVector> sum = {};
    add_half_magnitudes<kBytes>(sum, v);
    return (sum_lanes(sum) + 1) >> 1;
}

}  // namespace qorv::QORV_ISA
