// Sums of absolute and of squared differences.
#pragma once

#include "metric/block.h"

namespace qorv::QORV_ISA {

// What a sum is made of.
enum class Term { kMagnitudes, kSquares };
constexpr Term kMagnitudes = Term::kMagnitudes, kSquares = Term::kSquares;

// |d| as the sums of 16-bit samples take it: exact up to 32768; beyond, an odd d adds d - 2 if positive and -d + 2 if
// negative.
constexpr int32_t magnitude(int32_t d) {
    const int32_t mask = d >> 15;
    return (d ^ mask) - mask;
}

// Sum of the magnitudes, or of their squares, sample by sample and exactly: for the blocks that 16-bit lanes cannot
// hold.
template <Term term, class A, class B>
[[gnu::noinline]] uint32_t exact_sum(int32_t w, int32_t h, const A *a, const B *b, ptrdiff_t stride_a,
                                     ptrdiff_t stride_b) {
    uint32_t sum = 0;
    for (; h > 0; h--, a += stride_a, b += stride_b) {
        for (int32_t x = 0; x < w; x++) {
            const auto m = static_cast<uint32_t>(magnitude(a[x] - b[x]));
            sum += term == kSquares ? m * m : m;
        }
    }
    return sum;
}

// A sum over a strip, as walk() makes it; of bytes, or of samples in 16-bit lanes. exact() is false if the lanes could
// not hold what came.
template <Term term, bool OfBytes, int Width>
struct StripSum;

template <int Width>
struct StripSum<kMagnitudes, true, Width> {
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

template <int Width>
struct StripSum<kSquares, true, Width> {
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

// What both sums of 16-bit lanes share. `largest` is of magnitudes, or of sums of them, exact below 32767.
template <int Width>
struct WordSum {
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

// The magnitudes of 8 vectors gather in 16-bit lanes: content of 12 bits stays below 2^15.
template <int Width>
struct StripSum<kMagnitudes, false, Width> : WordSum<Width> {
    using typename WordSum<Width>::Lanes;
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

// Modulo 2^32.
template <int Width>
struct StripSum<kSquares, false, Width> : WordSum<Width> {
    using typename WordSum<Width>::Lanes;

    [[gnu::always_inline]] void add(int, Vec<int16_t, sizeof(Lanes)> a, Vec<int16_t, sizeof(Lanes)> b) {
        const Lanes magnitudes = abs_difference(a, b);
        this->largest = max_lanes(this->largest, magnitudes);
        add_squares(this->sum, magnitudes);
    }
    [[gnu::always_inline]] void end_step(int) {}
};

// A sum over `rows` rows of a strip, at most kMaxRows, up to `MaxStep` rows a step.
template <Term term, int Width, int MaxStep, class A, class B>
[[gnu::always_inline]] inline uint32_t strip_sum(const A *a, const B *b, ptrdiff_t stride_a, ptrdiff_t stride_b,
                                                 int32_t rows) {
    using Sum = StripSum<term, sizeof(A) + sizeof(B) == 2, Width>;
    Sum sum;
    Rows<const A> rows_a(a, stride_a);
    Rows<const B> rows_b(b, stride_b);
    walk<smaller(MaxStep, Sum::S::rows_of(Sum::kVectors))>(sum, rows_a, rows_b, rows);
    if (!sum.exact()) return exact_sum<term>(Width, rows, a, b, stride_a, stride_b);
    return sum.total();
}

// Over an area of any size.
template <Term term, class A, class B>
[[gnu::noinline]] uint32_t any_size_sum(int32_t w, int32_t h, const A *a, const B *b, int32_t stride_a,
                                        int32_t stride_b) {
    uint32_t sum = 0;
    for_each_band(
        h, [&](ptrdiff_t y, int32_t rows) __attribute__((always_inline)) {
            for_each_strip(
                w, [&](auto columns, ptrdiff_t x) __attribute__((always_inline)) {
                    sum += strip_sum<term, columns.value, 4>(a + y * stride_a + x, b + y * stride_b + x, stride_a,
                                                             stride_b, rows);
                });
        });
    return sum;
}

template <Term term, int Width, int Height, class A, class B>
uint32_t block_sum(const A *a, const B *b, int32_t stride_a, int32_t stride_b) {
    if constexpr (kIsStrip<Width, Height>) {
        constexpr int kStep = smaller(power_of_two_up_to(Height), 16);
        return strip_sum<term, Width, kStep>(a, b, stride_a, stride_b, Height);
    } else {
        return any_size_sum<term>(Width, Height, a, b, stride_a, stride_b);
    }
}

// What qorv_sad and its like do: common squares as the blocks of those sizes, all else by strips.
template <Term term, class T>
uint32_t area_sum(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b) {
    uint32_t sum = 0;
    const auto square = [&](auto side) __attribute__((always_inline)) {
        constexpr int kSide = side.value;
        if constexpr (kSide <= 16) {  // inline: one more jump would slow them down
            sum = strip_sum<term, kSide, kSide>(a, b, stride_a, stride_b, kSide);
        } else {
            sum = block_sum<term, kSide, kSide>(a, b, stride_a, stride_b);
        }
    };
    if (!kForSize && for_common_square(w, h, square)) return sum;
    return w < 1 ? 0 : any_size_sum<term>(w, h, a, b, stride_a, stride_b);
}

}  // namespace qorv::QORV_ISA
