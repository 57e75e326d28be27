// Sums of absolute and of squared differences.
#pragma once

#include "metric/block.h"

namespace qorv::QORV_ISA {

// What a sum is made of: |d| or its square, where |d| of 16-bit samples is (d ^ (d >> 15)) - (d >> 15): exact up to
// 32768; beyond, an odd d gives d - 2 if positive and -d + 2 if negative.
enum class Term { kMagnitudes, kSquares };
constexpr Term kMagnitudes = Term::kMagnitudes, kSquares = Term::kSquares;

// What it is computed in: bytes; 16-bit lanes, while magnitudes and some sums of them stay below 32767; 32-bit lanes,
// exactly.
enum class In { kBytes, kWords, kLongs };

// A sum over a strip, as walk() makes it. exact() is false if the lanes could not hold what came.
template <Term term, In in, int Width>
struct StripSum;

// Both sums of bytes: `Narrow` is the width below which a full register is more than is needed.
template <int Width, int Narrow>
struct ByteSum {
    static constexpr bool kSingle = kSingleRows && (Width == 4 || Width == 8);
    static constexpr int kBytes = kSingle ? 8 : Width < Narrow ? 16 : kVectorBytes;
    using S = Shape<Width, kBytes, kSingle ? 1 : 4>;
    static constexpr int kCount = S::kAcross > 1 ? kSums : 2;  // of sums that take turns
    using V = Vec<uint8_t, kBytes>;
    using Sample = uint8_t;
    template <int Columns, int Count, class T>
    [[gnu::always_inline]] static V load(const Rows<T> &rows, int y, int x) {
        return load_bytes<Columns, Count, kBytes>(rows, y, x);
    }
    [[gnu::always_inline]] void leave_out(Constant<0>) {}
    [[gnu::always_inline]] void end_step(int) {}
    static constexpr bool exact() { return true; }
};

template <int Width>
struct StripSum<kMagnitudes, In::kBytes, Width> : ByteSum<Width, 32> {
    using Base = ByteSum<Width, 32>;
    using Base::kCount;
    using typename Base::S, typename Base::V;
    static constexpr int kVectors = 16;  // of a step
    static constexpr int kMaxDistances = kMaxRows / S::kRows * S::kAcross / kCount;
    static_assert(kMaxDistances <= kMaxByteDistances);
    ByteDistances<Base::kBytes> sum[kCount] = {};

    [[gnu::always_inline]] void add(int k, V a, V b) { add_byte_distances(sum[k % kCount], a, b); }
    [[gnu::always_inline]] uint32_t total() const {
        if constexpr (2 * kMaxDistances > kMaxByteDistances) return sum_lanes(sum[0]) + sum_lanes(sum[1]);
        if constexpr (kCount == 2) return sum_lanes(sum[0] + sum[1]);
        if constexpr (kCount == 4) return sum_lanes(sum[0] + sum[1]) + sum_lanes(sum[2] + sum[3]);
    }
};

template <int Width>
struct StripSum<kSquares, In::kBytes, Width> : ByteSum<Width, 16> {
    using Base = ByteSum<Width, 16>;
    using Base::kCount;
    using typename Base::V;
    static constexpr int kVectors = 8;
    ByteSquares<Base::kBytes> sum[kCount] = {};

    [[gnu::always_inline]] void add(int k, V a, V b) { add_byte_squares(sum[k % kCount], a, b); }
    [[gnu::always_inline]] uint32_t total() const {
        if constexpr (kCount == 4) return sum_lanes((sum[0] + sum[1]) + (sum[2] + sum[3]));
        return sum_lanes(sum[0] + sum[1]);
    }
};

// Offsets of every other vector of a row, from the second on, which the compiler cannot tell to be constants: two
// vectors side by side are then loaded by two instructions. Cortex-A55 takes three times as long for the one instruction
// that loads both.
struct OddVectors {
    ptrdiff_t second = 16, fourth = 48, sixth = 80, eighth = 112;

    [[gnu::always_inline]] OddVectors() {
        hide_origin(second);
        hide_origin(fourth);
        hide_origin(sixth);
        hide_origin(eighth);
    }
    [[gnu::always_inline]] ptrdiff_t offset(int vector) const {
        return vector < 2 ? second : vector < 4 ? fourth : vector < 6 ? sixth : eighth;
    }
};
struct NoOddVectors {};

template <bool Odd>
struct OddVectorsIf : NoOddVectors {};
template <>
struct OddVectorsIf<true> : OddVectors {};

// What the sums of 16-bit lanes share. `largest` is of magnitudes, or of sums of them, exact below 32767.
template <int Width>
struct WordSum : OddVectorsIf<kSingleRows && (Width > 8)> {
    static constexpr int kBytes = Width < 16 ? 16 : kVectorBytes;
    using V = Vec<int16_t, kBytes>;
    using Lanes = Vec<uint16_t, kBytes>;
    using S = Shape<Width, kBytes / 2>;
    using Sample = int16_t;
    static constexpr int kVectors = 16;
    template <int Columns, int Count, class T>
    [[gnu::always_inline]] V load(const Rows<T> &rows, int y, int x) const {
        if constexpr (kSingleRows && Width > 8 && sizeof(T) == 2) {
            if (x / 8 % 2 != 0) return qorv::QORV_ISA::load<V>((const char *)rows.at(y) + this->offset(x / 8));
        }
        return load_samples<Columns, Count, kBytes>(rows, y, x);
    }

    Vec<uint32_t, kBytes> sum[kSums] = {};
    Lanes largest[2] = {};

    [[gnu::always_inline]] void leave_out(Constant<0>) {}
    [[gnu::always_inline]] void end_step(int) {}
    [[gnu::always_inline]] uint32_t total() const {
        if constexpr (kSums == 4) return sum_lanes((sum[0] + sum[1]) + (sum[2] + sum[3]));
        return sum_lanes(sum[0] + sum[1]);
    }
    [[gnu::always_inline]] bool exact() const {
        return !top_bit_set(add_saturated(max_lanes(largest[0], largest[1]), splat<Lanes>(1)));
    }
};

// The magnitudes of 8 vectors gather in 16-bit lanes: content of 12 bits stays below 2^15.
template <int Width>
struct StripSum<kMagnitudes, In::kWords, Width> : WordSum<Width> {
    using typename WordSum<Width>::Lanes, typename WordSum<Width>::V;
    Lanes gathered[2] = {};

    [[gnu::always_inline]] void add(int k, V a, V b) {
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
        this->largest[0] = max_lanes(this->largest[0], all);
        add_pairs(this->sum[0], all);
        gathered[0] = gathered[1] = Lanes{};
    }
};

// Modulo 2^32.
template <int Width>
struct StripSum<kSquares, In::kWords, Width> : WordSum<Width> {
    using typename WordSum<Width>::Lanes, typename WordSum<Width>::V;

    [[gnu::always_inline]] void add(int k, V a, V b) {
        const Lanes magnitudes = abs_difference(a, b);
        this->largest[k % 2] = max_lanes(this->largest[k % 2], magnitudes);
        add_squares(this->sum[k % kSums], magnitudes);
    }
};

template <Term term, int Width>
struct StripSum<term, In::kLongs, Width> : WordSum<Width> {
    using typename WordSum<Width>::V;
    using Longs = Vec<int32_t, sizeof(V)>;
    static constexpr int kVectors = 4;

    [[gnu::always_inline]] void add(int, V a, V b) {
        Longs lo, hi;
        subtract_widened(a, b, lo, hi);
        this->sum[0] += term_of(lo);
        this->sum[1] += term_of(hi);
    }
    static constexpr bool exact() { return true; }

private:
    [[gnu::always_inline]] static auto term_of(Longs d) {
        const Longs mask = d >> 15;
        const auto magnitude = (Vec<uint32_t, sizeof(V)>)((d ^ mask) - mask);
        return term == kSquares ? magnitude * magnitude : magnitude;
    }
};

// A sum that leaves out the first columns of its strip, one vector wide: their samples are taken to be 0.
template <class Sum>
struct Masked : Sum {
    using typename Sum::S, typename Sum::V, typename Sum::Sample;
    static_assert(S::kAcross == 1);
    V mask;

    [[gnu::always_inline]] void leave_out(int32_t columns) {
        const auto *row = (const Sample *)kMaskBytes.clear(columns * ptrdiff_t{sizeof(Sample)});
        mask = this->template load<S::kColumns, S::kRows>(Rows<const Sample>(row, 0), 0, 0);
    }
    [[gnu::always_inline]] void add(int k, V a, V b) { Sum::add(k, a & mask, b & mask); }
};

template <class Sum, class Columns>
struct Without {
    using type = Masked<Sum>;
};
template <class Sum>
struct Without<Sum, Constant<0>> {
    using type = Sum;
};

template <Term term, In in, class A, class B>
[[gnu::noinline]] uint32_t any_size_sum(int32_t w, int32_t h, const A *a, const B *b, int32_t stride_a,
                                        int32_t stride_b);

// A sum over `rows` rows of a strip, at most kMaxRows, up to `MaxStep` rows a step, without its first `again` columns.
template <Term term, In in, int Width, int MaxStep, class Again, class A, class B>
[[gnu::always_inline]] inline uint32_t strip_sum(Again again, const A *a, const B *b, ptrdiff_t stride_a,
                                                 ptrdiff_t stride_b, int32_t rows) {
    using Sum = StripSum<term, in, Width>;
    typename Without<Sum, Again>::type sum;
    sum.leave_out(again);
    Rows<const A> rows_a(a, stride_a);
    Rows<const B> rows_b(b, stride_b);
    walk<smaller(MaxStep, Sum::S::rows_of(Sum::kVectors))>(sum, rows_a, rows_b, rows);
    if (!sum.exact()) {
        return any_size_sum<term, In::kLongs>(Width - again, rows, a + again, b + again, static_cast<int32_t>(stride_a),
                                              static_cast<int32_t>(stride_b));
    }
    return sum.total();
}

// Over an area of any size.
template <Term term, In in, class A, class B>
[[gnu::noinline]] uint32_t any_size_sum(int32_t w, int32_t h, const A *a, const B *b, int32_t stride_a,
                                        int32_t stride_b) {
    constexpr int kLanes = in == In::kBytes ? kVectorBytes : kVectorBytes / 2;
    constexpr int kWidest = in == In::kLongs ? kLanes : kMaxStrip;
    constexpr int kStep = in == In::kBytes && !kForSize ? 4 : 1;
    uint32_t sum = 0;
    for_each_band(
        h, [&](ptrdiff_t y, int32_t rows) __attribute__((always_inline)) {
            for_each_strip<kLanes, kWidest>(
                w, [&](auto columns, ptrdiff_t x, auto again) __attribute__((always_inline)) {
                    sum += strip_sum<term, in, columns.value, kStep>(again, a + y * stride_a + x, b + y * stride_b + x,
                                                                     stride_a, stride_b, rows);
                });
        });
    return sum;
}

template <class A, class B>
constexpr In kFor = sizeof(A) + sizeof(B) == 2 ? In::kBytes : In::kWords;

template <Term term, int Width, int Height, class A, class B>
uint32_t block_sum(const A *a, const B *b, int32_t stride_a, int32_t stride_b) {
    if constexpr (kIsStrip<Width, Height>) {
        constexpr int kStep = smaller(power_of_two_up_to(Height), 16);
        return strip_sum<term, kFor<A, B>, Width, kStep>(Constant<0>{}, a, b, stride_a, stride_b, Height);
    } else {
        return any_size_sum<term, kFor<A, B>>(Width, Height, a, b, stride_a, stride_b);
    }
}

// What qorv_sad and its like do: common squares as the blocks of those sizes, all else by strips.
template <Term term, class T>
[[gnu::always_inline]] inline uint32_t area_sum(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a,
                                                int32_t stride_b) {
    uint32_t sum = 0;
    const auto square = [&](auto side) __attribute__((always_inline)) {
        constexpr int kSide = side.value;
        if constexpr (kSide <= 16) {  // inline: one more jump would slow them down
            sum = strip_sum<term, kFor<T, T>, kSide, kSide>(Constant<0>{}, a, b, stride_a, stride_b, kSide);
        } else {
            sum = block_sum<term, kSide, kSide>(a, b, stride_a, stride_b);
        }
    };
    if (!kForSize && for_common_square(w, h, square)) return sum;
    return w < 1 ? 0 : any_size_sum<term, kFor<T, T>>(w, h, a, b, stride_a, stride_b);
}

template <class T>
uint32_t area_sad(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b) {
    return area_sum<kMagnitudes>(w, h, a, b, stride_a, stride_b);
}

template <class T>
uint32_t area_ssd(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b) {
    return area_sum<kSquares>(w, h, a, b, stride_a, stride_b);
}

}  // namespace qorv::QORV_ISA
