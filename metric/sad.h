// Sums of absolute and of squared differences.
#pragma once

#include "metric/block.h"

namespace qorv::QORV_ISA {

// |d| as the sums of 16-bit samples take it: exact up to 32768; beyond, an odd d adds d - 2 if positive and -d + 2 if
// negative.
constexpr int32_t magnitude(int32_t d) {
    const int32_t mask = d >> 15;
    return (d ^ mask) - mask;
}

// Sum of the magnitudes, or of their squares, sample by sample and exactly: for the blocks that 16-bit lanes cannot
// hold.
template <bool Squared, class A, class B>
[[gnu::noinline]] uint32_t exact_sum(int32_t w, int32_t h, const A *a, const B *b, ptrdiff_t stride_a,
                                     ptrdiff_t stride_b) {
    uint32_t sum = 0;
    for (; h > 0; h--, a += stride_a, b += stride_b) {
        for (int32_t x = 0; x < w; x++) {
            const auto term = static_cast<uint32_t>(magnitude(a[x] - b[x]));
            sum += Squared ? term * term : term;
        }
    }
    return sum;
}

// Sum of |a - b| of bytes.
template <int Width>
struct ByteSad {
    static constexpr int kBytes = Width < 32 ? 16 : kVectorBytes;
    using S = Shape<Width, kBytes, 4>;
    template <int Columns, int Rows>
    [[gnu::always_inline]] static auto load(const uint8_t *p, ptrdiff_t stride) {
        return load_bytes<Columns, Rows, kBytes>(p, stride);
    }

    static constexpr int kSums = 2;
    static constexpr int kMaxDistances = kMaxRows / S::kRows * S::kAcross;
    static_assert(kMaxDistances <= kSums * kMaxByteDistances);
    ByteDistances<kBytes> sum[kSums] = {};

    [[gnu::always_inline]] void add(int k, Vec<uint8_t, kBytes> a, Vec<uint8_t, kBytes> b) {
        add_byte_distances(sum[k % kSums], a, b);
    }
    [[gnu::always_inline]] void end_step() {}
    [[gnu::always_inline]] uint32_t total() const {
        if constexpr (kMaxDistances <= kMaxByteDistances) return sum_lanes(sum[0] + sum[1]);
        return sum_lanes(sum[0]) + sum_lanes(sum[1]);
    }
    static constexpr bool exact() { return true; }
};

// Sum of (a - b)^2 of bytes.
template <int Width>
struct ByteSsd {
    static constexpr int kBytes = Width < 16 ? 16 : kVectorBytes;
    using S = Shape<Width, kBytes, 2>;
    template <int Columns, int Rows>
    [[gnu::always_inline]] static auto load(const uint8_t *p, ptrdiff_t stride) {
        return load_bytes<Columns, Rows, kBytes>(p, stride);
    }

    Vec<uint32_t, kBytes> sum[2] = {};

    [[gnu::always_inline]] void add(int k, Vec<uint8_t, kBytes> a, Vec<uint8_t, kBytes> b) {
        add_byte_squares(sum[k % 2], a, b);
    }
    [[gnu::always_inline]] void end_step() {}
    [[gnu::always_inline]] uint32_t total() const { return sum_lanes(sum[0] + sum[1]); }
    static constexpr bool exact() { return true; }
};

// What the metrics of 16-bit lanes share. `large` gets its top bit where a magnitude, or what was made of it, is not
// exact any more.
template <int Width>
struct WordMetric {
    static constexpr int kBytes = Width < 16 ? 16 : kVectorBytes;
    using Lanes = Vec<uint16_t, kBytes>;
    using S = Shape<Width, kBytes / 2, 8>;
    template <int Columns, int Rows, class T>
    [[gnu::always_inline]] static auto load(const T *p, ptrdiff_t stride) {
        return load_samples<Columns, Rows, kBytes>(p, stride);
    }

    Vec<uint32_t, kBytes> sum = {};
    Lanes large = {};

    [[gnu::always_inline]] uint32_t total() const { return sum_lanes(sum); }
    [[gnu::always_inline]] bool exact() const { return !top_bit_set(large); }
};

// Sum of the magnitudes. Those of a step gather in 16-bit lanes, at most 8 in each: content of 12 bits stays below
// 2^15.
template <int Width>
struct WordSad : WordMetric<Width> {
    using typename WordMetric<Width>::Lanes;
    Lanes step[2] = {};

    [[gnu::always_inline]] void add(int k, Vec<int16_t, sizeof(Lanes)> a, Vec<int16_t, sizeof(Lanes)> b) {
        step[k % 2] = k < 2 ? abs_difference(a, b) : add_saturated(step[k % 2], abs_difference(a, b));
    }
    [[gnu::always_inline]] void end_step() {
        const Lanes all = add_saturated(step[0], step[1]);
        this->large |= add_saturated(all, splat<Lanes>(1));  // 32767 may stand for more
        add_pairs(this->sum, all);
        step[0] = step[1] = Lanes{};
    }
};

// Sum of the squares of the magnitudes, modulo 2^32.
template <int Width>
struct WordSsd : WordMetric<Width> {
    using typename WordMetric<Width>::Lanes;

    [[gnu::always_inline]] void add(int, Vec<int16_t, sizeof(Lanes)> a, Vec<int16_t, sizeof(Lanes)> b) {
        const Lanes distance = abs_difference(a, b);
        this->large |= add_saturated(distance, splat<Lanes>(1));
        add_squares(this->sum, distance);
    }
    [[gnu::always_inline]] void end_step() {}
};

// A sum over `rows` rows of a strip, at most kMaxRows.
template <bool Squared, int Width, class A, class B>
[[gnu::always_inline]] inline uint32_t strip_sum(const A *a, const B *b, ptrdiff_t stride_a, ptrdiff_t stride_b,
                                                 int32_t rows) {
    constexpr bool kByteLanes = sizeof(A) + sizeof(B) == 2;
    using Sad = IfElse<kByteLanes, ByteSad<Width>, WordSad<Width>>;
    using Ssd = IfElse<kByteLanes, ByteSsd<Width>, WordSsd<Width>>;
    IfElse<Squared, Ssd, Sad> metric;
    walk_strip<Width>(metric, a, b, stride_a, stride_b, rows);
    if (!metric.exact()) return exact_sum<Squared>(Width, rows, a, b, stride_a, stride_b);
    return metric.total();
}

template <int Width, int Height, class A, class B>
uint32_t block_sad(const A *a, const B *b, int32_t stride_a, int32_t stride_b) {
    return strip_sum<false, Width>(a, b, stride_a, stride_b, Height);
}

template <bool Squared, class T>
uint32_t area_sum(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b) {
    if (w < 1) return 0;
    uint32_t sum = 0;
    for (; h > 0; h -= kMaxRows) {
        const int32_t rows = h < kMaxRows ? h : kMaxRows;
        for_each_strip(
            w, [&](auto columns, ptrdiff_t x) __attribute__((always_inline)) {
                sum += strip_sum<Squared, columns.value>(a + x, b + x, stride_a, stride_b, rows);
            });
        a += ptrdiff_t{kMaxRows} * stride_a;
        b += ptrdiff_t{kMaxRows} * stride_b;
    }
    return sum;
}

}  // namespace qorv::QORV_ISA
