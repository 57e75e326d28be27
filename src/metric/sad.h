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
    using S = Shape<Width, kBytes>;
    static constexpr int kVectors = 16;  // of a step
    template <int Columns, int Count, class T>
    [[gnu::always_inline]] static auto load(const Rows<T> &rows, int y, int x) {
        return load_bytes<Columns, Count, kBytes>(rows, y, x);
    }

    static constexpr int kSums = 2;
    static constexpr int kMaxDistances = kMaxRows / S::kRows * S::kAcross;
    static_assert(kMaxDistances <= kSums * kMaxByteDistances);
    ByteDistances<kBytes> sum[kSums] = {};

    [[gnu::always_inline]] void add(int k, Vec<uint8_t, kBytes> a, Vec<uint8_t, kBytes> b) {
        add_byte_distances(sum[k % kSums], a, b);
    }
    [[gnu::always_inline]] void end_step(int) {}
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
    using S = Shape<Width, kBytes>;
    static constexpr int kVectors = 8;
    template <int Columns, int Count, class T>
    [[gnu::always_inline]] static auto load(const Rows<T> &rows, int y, int x) {
        return load_bytes<Columns, Count, kBytes>(rows, y, x);
    }

    Vec<uint32_t, kBytes> sum[2] = {};

    [[gnu::always_inline]] void add(int k, Vec<uint8_t, kBytes> a, Vec<uint8_t, kBytes> b) {
        add_byte_squares(sum[k % 2], a, b);
    }
    [[gnu::always_inline]] void end_step(int) {}
    [[gnu::always_inline]] uint32_t total() const { return sum_lanes(sum[0] + sum[1]); }
    static constexpr bool exact() { return true; }
};

// What the metrics of 16-bit lanes share. `largest` is of magnitudes, or of sums of them, exact below 32767.
template <int Width>
struct WordMetric {
    static constexpr int kBytes = Width < 16 ? 16 : kVectorBytes;
    using Lanes = Vec<uint16_t, kBytes>;
    using S = Shape<Width, kBytes / 2>;
    static constexpr int kVectors = 16;
    template <int Columns, int Count, class T>
    [[gnu::always_inline]] static auto load(const Rows<T> &rows, int y, int x) {
        return load_samples<Columns, Count, kBytes>(rows, y, x);
    }

    Vec<uint32_t, kBytes> sum = {};
    Lanes largest = {};

    [[gnu::always_inline]] uint32_t total() const { return sum_lanes(sum); }
    [[gnu::always_inline]] bool exact() const { return !top_bit_set(add_saturated(largest, splat<Lanes>(1))); }
};

// Sum of the magnitudes. Those of 8 vectors gather in 16-bit lanes: content of 12 bits stays below 2^15.
template <int Width>
struct WordSad : WordMetric<Width> {
    using typename WordMetric<Width>::Lanes;
    Lanes gathered[2] = {};

    [[gnu::always_inline]] void add(int k, Vec<int16_t, sizeof(Lanes)> a, Vec<int16_t, sizeof(Lanes)> b) {
        Lanes &lanes = gathered[k % 2];
        lanes = k % 8 < 2 ? abs_difference(a, b) : add_saturated(lanes, abs_difference(a, b));
        if (k % 8 == 7) add_gathered();
    }
    [[gnu::always_inline]] void end_step(int vectors) {
        if (vectors % 8 != 0) add_gathered();
    }

private:
    [[gnu::always_inline]] void add_gathered() {
        const Lanes all = add_saturated(gathered[0], gathered[1]);
        this->largest = max_lanes(this->largest, all);
        add_pairs(this->sum, all);
        gathered[0] = gathered[1] = Lanes{};
    }
};

// Sum of the squares of the magnitudes, modulo 2^32.
template <int Width>
struct WordSsd : WordMetric<Width> {
    using typename WordMetric<Width>::Lanes;

    [[gnu::always_inline]] void add(int, Vec<int16_t, sizeof(Lanes)> a, Vec<int16_t, sizeof(Lanes)> b) {
        const Lanes magnitudes = abs_difference(a, b);
        this->largest = max_lanes(this->largest, magnitudes);
        add_squares(this->sum, magnitudes);
    }
    [[gnu::always_inline]] void end_step(int) {}
};

// A sum over `rows` rows of a strip, at most kMaxRows, up to `MaxStep` rows a step.
template <bool Squared, int Width, int MaxStep, class A, class B>
[[gnu::always_inline]] inline uint32_t strip_sum(const A *a, const B *b, ptrdiff_t stride_a, ptrdiff_t stride_b,
                                                 int32_t rows) {
    constexpr bool kByteLanes = sizeof(A) + sizeof(B) == 2;
    using Sad = IfElse<kByteLanes, ByteSad<Width>, WordSad<Width>>;
    using Ssd = IfElse<kByteLanes, ByteSsd<Width>, WordSsd<Width>>;
    using Metric = IfElse<Squared, Ssd, Sad>;
    Metric metric;
    Rows<const A> rows_a(a, stride_a);
    Rows<const B> rows_b(b, stride_b);
    walk<smaller(MaxStep, Metric::S::rows_of(Metric::kVectors))>(metric, rows_a, rows_b, rows);
    if (!metric.exact()) return exact_sum<Squared>(Width, rows, a, b, stride_a, stride_b);
    return metric.total();
}

template <bool Squared, class A, class B>
[[gnu::noinline]] uint32_t sum_of_strips(int32_t w, int32_t h, const A *a, const B *b, int32_t stride_a,
                                         int32_t stride_b) {
    uint32_t sum = 0;
    for_each_band(
        h, [&](ptrdiff_t y, int32_t rows) __attribute__((always_inline)) {
            for_each_strip(
                w, [&](auto columns, ptrdiff_t x) __attribute__((always_inline)) {
                    sum += strip_sum<Squared, columns.value, 4>(a + y * stride_a + x, b + y * stride_b + x, stride_a,
                                                                stride_b, rows);
                });
        });
    return sum;
}

template <bool Squared, int Width, int Height, class A, class B>
uint32_t block_sum(const A *a, const B *b, int32_t stride_a, int32_t stride_b) {
    if constexpr (kForSize) return sum_of_strips<Squared>(Width, Height, a, b, stride_a, stride_b);
    return strip_sum<Squared, Width, smaller(Height, 16)>(a, b, stride_a, stride_b, Height);
}

template <bool Squared, class T>
uint32_t area_sum(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b) {
    uint32_t sum = 0;
    const auto square = [&](auto side) __attribute__((always_inline)) {
        constexpr int kSide = side.value;
        if constexpr (kSide <= 16) {  // inline: a jump is felt here
            sum = strip_sum<Squared, kSide, kSide>(a, b, stride_a, stride_b, kSide);
        } else {
            sum = block_sum<Squared, kSide, kSide>(a, b, stride_a, stride_b);
        }
    };
    if (!kForSize && for_common_square(w, h, square)) return sum;
    return w < 1 ? 0 : sum_of_strips<Squared>(w, h, a, b, stride_a, stride_b);
}

}  // namespace qorv::QORV_ISA
