// Sums of absolute and of squared differences.
#pragma once

#include "metric/block.h"

namespace qorv::QORV_ISA {

// What a sum is made of: |d| or its square, where |d| of 16-bit samples is (d ^ (d >> 15)) - (d >> 15): exact up to
// 32768; beyond, an odd d gives d - 2 if positive and -d + 2 if negative.
enum class Term { kMagnitudes, kSquares };
constexpr Term kMagnitudes = Term::kMagnitudes, kSquares = Term::kSquares;

// A sum over a strip, or over two of them, as walk() makes it: of bytes, or in 16-bit lanes, which hold magnitudes and
// some sums of them below 32767. exact() is false if the lanes could not hold what came.
template <Term term, class Lane, int Width, int Sides>
struct StripSum;

template <int Count, class V>
[[gnu::always_inline]] inline V added(const V *v) {
    if constexpr (Count > 1) return added<Count / 2>(v) + added<Count / 2>(v + Count / 2);
    return *v;
}

// Both sums of bytes: `Narrow` is the width below which a full register is more than is needed.
template <int Width, int Narrow>
struct ByteSum {
    static constexpr bool kSingle = kSingleRows && (Width == 4 || Width == 8);
    static constexpr int kBytes = kSingle ? 8 : Width < Narrow ? 16 : kVectorBytes;
    using S = Shape<Width, kBytes, kSingle ? 1 : 4>;
    static constexpr int kCount = S::kAcross > 1 ? kSums : 2;                       // of sums that take turns
    static constexpr int kTogether = S::kAcross <= kMostTogether ? S::kAcross : 1;  // vectors that are loaded at once
    using V = Vec<uint8_t, kBytes>;
    using Sample = uint8_t;
    template <int Columns, int Count, class T>
    [[gnu::always_inline]] static V load(const Rows<T> &rows, int y, int x) {
#ifdef QORV_SIMD_NEON
        if constexpr (kSingle && Count == 1) return load_row<Columns, false>(rows, y);
#endif
        return load_bytes<Columns, Count, kBytes>(rows, y, x);
    }
    [[gnu::always_inline]] void end_step(int) {}
    static constexpr bool exact() {
        return true;
    }
};

template <int Width, int Sides>
struct StripSum<kMagnitudes, uint8_t, Width, Sides> : ByteSum<Width, 32> {
    using Base = ByteSum<Width, 32>;
    using Base::kCount;
    using typename Base::S, typename Base::V;
    static constexpr int kVectors = 16;  // of a step
    static constexpr int kMaxDistances = kMaxRows / S::kRows * S::kAcross * Sides / kCount;
    static_assert(kMaxDistances <= kMaxByteDistances);
    ByteDistances<Base::kBytes> sum[kCount] = {};

    template <class... Mask>
    [[gnu::always_inline]] void add(int k, int, V a, V b, Mask... used) {
        add_byte_distances(sum[k % kCount], (a & ... & used), (b & ... & used));
    }
    [[gnu::always_inline]] uint32_t total() const {
        constexpr int kAtOnce = smaller(kCount, power_of_two_up_to(kMaxByteDistances / kMaxDistances));
        uint32_t all = 0;
        unrolled<kCount / kAtOnce>([&](int i) __attribute__((always_inline)) {
            all += sum_lanes(added<kAtOnce>(sum + i * kAtOnce));
        });
        return all;
    }
};

template <int Width, int Sides>
struct StripSum<kSquares, uint8_t, Width, Sides> : ByteSum<Width, 8> {
    using Base = ByteSum<Width, 8>;
    using Base::kCount;
    using typename Base::V;
    static constexpr int kVectors = 8;
    ByteSquares<Base::kBytes> sum[kCount] = {};

    template <class... Mask>
    [[gnu::always_inline]] void add(int k, int, V a, V b, Mask... used) {
        add_byte_squares(sum[k % kCount], (a & ... & used), (b & ... & used));
    }
    [[gnu::always_inline]] uint32_t total() const {
        if constexpr (kCount == 4) return sum_lanes((sum[0] + sum[1]) + (sum[2] + sum[3]));
        return sum_lanes(sum[0] + sum[1]);
    }
};

// Offsets of every other vector of a row, from the second on, which the compiler cannot tell to be constants: two
// vectors side by side are then loaded by two instructions. Cortex-A55 takes three times as long for the one
// instruction that loads both.
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

// What the sums of 16-bit lanes share.
template <int Width>
struct WordSum : OddVectorsIf<kSingleRows && (Width > 8)> {
    static constexpr int kBytes = Width < 16 ? 16 : kVectorBytes;
    using V = Vec<int16_t, kBytes>;
    using Lanes = Vec<uint16_t, kBytes>;
    using S = Shape<Width, kBytes / 2>;
    using Sample = int16_t;
    static constexpr int kVectors = 16;
    static constexpr int kTogether = 1;
    template <int Columns, int Count, class T>
    [[gnu::always_inline]] V load(const Rows<T> &rows, int y, int x) const {
        if constexpr (kSingleRows && Width > 8 && sizeof(T) == 2) {
            if (x / 8 % 2 != 0) return qorv::QORV_ISA::load<V>((const char *)rows.at(y) + this->offset(x / 8));
        }
        return load_samples<Columns, Count, kBytes>(rows, y, x);
    }

    Vec<uint32_t, kBytes> sum[kSums] = {};

    [[gnu::always_inline]] void end_step(int) {}
    [[gnu::always_inline]] uint32_t total() const {
        if constexpr (kSums == 4) return sum_lanes((sum[0] + sum[1]) + (sum[2] + sum[3]));
        return sum_lanes(sum[0] + sum[1]);
    }
    // `largest` is of magnitudes, or of sums of them, exact below 32767.
    [[gnu::always_inline]] static bool below_32767(Lanes largest) {
        return !top_bit_set(add_saturated(largest, splat<Lanes>(1)));
    }
};

// The magnitudes of 8 vectors gather in 16-bit lanes: content of 12 bits stays below 2^15.
template <int Width, int Sides>
struct StripSum<kMagnitudes, int16_t, Width, Sides> : WordSum<Width> {
    using typename WordSum<Width>::Lanes, typename WordSum<Width>::V;
    Lanes gathered[2] = {}, largest = {};

    template <class... Mask>
    [[gnu::always_inline]] void add(int k, int, V a, V b, Mask... used) {
        Lanes &lanes = gathered[k % 2];
        const Lanes magnitudes = (abs_difference(a, b) & ... & (Lanes)used);
        lanes = k % 8 < 2 ? magnitudes : add_saturated(lanes, magnitudes);
        if (k % 8 == 7) add_gathered();
    }
    [[gnu::always_inline]] void end_step(int vectors) {
        if (vectors % 8 != 0) add_gathered();
    }
    [[gnu::always_inline]] bool exact() const { return this->below_32767(largest); }

private:
    [[gnu::always_inline]] void add_gathered() {
        const Lanes all = add_saturated(gathered[0], gathered[1]);
        largest = max_lanes(largest, all);
        add_pairs(this->sum[0], all);
        gathered[0] = gathered[1] = Lanes{};
    }
};

// Modulo 2^32.
template <int Width, int Sides>
struct StripSum<kSquares, int16_t, Width, Sides> : WordSum<Width> {
    using typename WordSum<Width>::Lanes, typename WordSum<Width>::V;

#ifdef QORV_SIMD_X86
    // A saturated difference shows in the sum of its square and another one.
    Vec<uint32_t, WordSum<Width>::kBytes> largest[2] = {};

    template <class... Mask>
    [[gnu::always_inline]] void add(int k, int, V a, V b, Mask... used) {
        const auto squares = squares_of_pairs((subtract_saturated(a, b) & ... & used));
        largest[k % 2] = max_lanes(largest[k % 2], squares);
        this->sum[k % kSums] += squares;
    }
    [[gnu::always_inline]] bool exact() const {
        constexpr uint32_t kSaturated = INT16_MAX * INT16_MAX;
        return !top_bit_set(max_lanes(largest[0], largest[1]) + ((1U << 31) - kSaturated));
    }
#else
    Lanes largest[2] = {};

    template <class... Mask>
    [[gnu::always_inline]] void add(int k, int, V a, V b, Mask... used) {
        const Lanes magnitudes = (abs_difference(a, b) & ... & (Lanes)used);
        largest[k % 2] = max_lanes(largest[k % 2], magnitudes);
        add_squares(this->sum[k % kSums], magnitudes);
    }
    [[gnu::always_inline]] bool exact() const {
        return this->below_32767(max_lanes(largest[0], largest[1]));
    }
#endif
};

// A sum over two strips, of which the second one leaves out its first columns: their samples are taken to be 0.
template <class Sum, int Width>
struct Masked : Sum {
    using typename Sum::S, typename Sum::V, typename Sum::Sample;
    V mask[S::kAcross];

    [[gnu::always_inline]] explicit Masked(int32_t columns) {
        const auto *row = (const Sample *)kMaskBytes.clear((2 * Width - columns) * ptrdiff_t{sizeof(Sample)});
        unrolled<S::kAcross>([&](int i) __attribute__((always_inline)) {
            mask[i] = this->template load<S::kColumns, S::kRows>(Rows<const Sample>(row, 0), 0, i * S::kColumns);
        });
    }
    [[gnu::always_inline]] void add(int k, int i, V a, V b) {
        if (i < S::kAcross) return Sum::add(k, i, a, b);
        Sum::add(k, i, a, b, mask[i - S::kAcross]);
    }
};

template <class Sum>
struct Unmasked : Sum {
    [[gnu::always_inline]] explicit Unmasked(int32_t) {}
};

template <Term term, class Lane, int Width, int Sides>
struct SumOf {
    using type = Unmasked<StripSum<term, Lane, Width, 1>>;
    static constexpr int kSides = 1;
};
template <Term term, class Lane, int Width>
struct SumOf<term, Lane, Width, 2> {
    using type = Masked<StripSum<term, Lane, Width, 2>, Width>;
    static constexpr int kSides = 2;
};

#if QORV_VECTOR_BYTES == 32

// A sum over the first columns of a strip as wide as a vector, if they are whole groups of 4 bytes: one load takes a
// row, where two strips take two.
template <class Sum>
struct Cut : Sum {
    using typename Sum::V, typename Sum::Sample;
    U8 mask;

    [[gnu::always_inline]] explicit Cut(int32_t columns)
        : mask(qorv::QORV_ISA::load<U8>(kMaskBytes.set(columns * ptrdiff_t{sizeof(Sample)}))) {}
    template <int Columns, int Count, class T>
    [[gnu::always_inline]] V load(const Rows<T> &rows, int y, int x) const {
        return (V)load_groups((const uint8_t *)rows.at(y, x), mask);
    }
};
template <Term term, class Lane, int Width>
struct SumOf<term, Lane, Width, 0> {
    using type = Cut<StripSum<term, Lane, Width, 1>>;
    static constexpr int kSides = 1;
};

// Two strips of 8 columns whose rows share a vector of words.
template <class Sum>
struct Joined : Sum {
    using typename Sum::V, typename Sum::Sample;
    int32_t apart;
    V mask;

    [[gnu::always_inline]] explicit Joined(int32_t columns)
        : apart(columns - 8), mask(join(Rows<const Sample>((const Sample *)kMaskBytes.clear(0), 0), 0, columns - 16)) {}
    template <int Columns, int Count, class T>
    [[gnu::always_inline]] V load(const Rows<T> &rows, int y, int) const {
        return join(rows, y, apart);
    }
    [[gnu::always_inline]] void add(int k, int i, V a, V b) { Sum::add(k, i, a, b, mask); }

private:
    template <class T>
    [[gnu::always_inline]] static V join(const Rows<T> &rows, int y, int second) {
        using Half = Vec<uint8_t, 16>;
        return (V)concatenate((Half)load_samples<8, 1, 16>(rows, y, 0), (Half)load_samples<8, 1, 16>(rows, y, second));
    }
};
template <Term term>
struct SumOf<term, int16_t, 8, 2> {
    using type = Joined<StripSum<term, int16_t, 16, 1>>;
    static constexpr int kSides = 1;
};

template <class T>
[[gnu::always_inline]] inline bool is_cut(int32_t w) {
    constexpr int kGroup = 4 / sizeof(T);
    return w % kGroup == 0 && w > 8 && w < kVectorBytes / static_cast<int>(sizeof(T)) && w != 16;
}

#endif

// Sample by sample, exact for all of 16 bits: over the few columns of an area that no vector pays for.
template <Term term, class A, class B>
[[gnu::noinline]] uint32_t narrow_sum(int32_t w, int32_t h, const A *a, const B *b, int32_t stride_a,
                                      int32_t stride_b) {
    uint32_t sum = 0;
    for (; h > 0; h--, a += stride_a, b += stride_b) {
        for (int32_t x = 0; x < w; x++) {
            int32_t d = a[x] - b[x];
            hide_origin(d);  // no vectors of the compiler's
            const auto magnitude = static_cast<uint32_t>((d ^ d >> 15) - (d >> 15));
            sum += term == kSquares ? magnitude * magnitude : magnitude;
        }
    }
    return sum;
}

// In 32-bit lanes, exact as well: rows of at least one vector of words, the last one reaching back over what was
// counted.
template <Term term, class V>
[[gnu::always_inline]] inline uint32_t exact_vectors(int32_t w, int32_t h, const int16_t *a, const int16_t *b,
                                                     ptrdiff_t stride_a, ptrdiff_t stride_b) {
    using Longs = Vec<int32_t, sizeof(V)>;
    constexpr int32_t kColumns = sizeof(V) / sizeof(int16_t);
    const V used = load<V>(kMaskBytes.clear((-w & (kColumns - 1)) * ptrdiff_t{sizeof *a}));
    Longs sum[2] = {};
    const auto add = [&](V va, V vb) __attribute__((always_inline)) {
        Longs d[2];
        subtract_widened(va, vb, d[0], d[1]);
        unrolled<2>([&](int i) __attribute__((always_inline)) {
            const Longs sign = d[i] >> 15, magnitude = (d[i] ^ sign) - sign;
            sum[i] += term == kSquares ? magnitude * magnitude : magnitude;
        });
    };
    for (; h > 0; h--, a += stride_a, b += stride_b) {
        for (int32_t x = 0; x < w - kColumns; x += kColumns) add(load<V>(a + x), load<V>(b + x));
        add(load<V>(a + w - kColumns) & used, load<V>(b + w - kColumns) & used);
    }
    return sum_lanes((Vec<uint32_t, sizeof(V)>)(sum[0] + sum[1]));
}

template <Term term>
[[gnu::noinline]] uint32_t exact_sum(int32_t w, int32_t h, const int16_t *a, const int16_t *b, int32_t stride_a,
                                     int32_t stride_b) {
    using Full = Vec<int16_t>;
    using Half = Vec<int16_t, 16>;
    if (w >= kVectorBytes / 2) return exact_vectors<term, Full>(w, h, a, b, stride_a, stride_b);
    if (kVectorBytes > 16 && w >= 8) return exact_vectors<term, Half>(w, h, a, b, stride_a, stride_b);
    return narrow_sum<term>(w, h, a, b, stride_a, stride_b);
}

template <Term term>
[[gnu::noinline]] uint32_t exact_sum(int32_t w, int32_t h, const int16_t *a, const uint8_t *b, int32_t stride_a,
                                     int32_t stride_b) {
    constexpr int32_t kRows = 8, kColumns = 8;
    int16_t widened[kRows * kMaxStrip];
    uint32_t sum = 0;
    for (; h > 0; h -= kRows, a += kRows * ptrdiff_t{stride_a}) {
        const int32_t rows = smaller(h, kRows);
        for (int32_t y = 0; y < rows; y++, b += stride_b) {
            int16_t *row = widened + y * kMaxStrip;
            int32_t x = 0;
            for (; x <= w - kColumns; x += kColumns) store(row + x, load_widened<16>(b + x));
            for (; x < w; x++) row[x] = b[x];
        }
        sum += exact_sum<term>(w, rows, a, widened, stride_a, kMaxStrip);
    }
    return sum;
}

template <class T>
struct LaneOf {
    using type = int16_t;
};
template <>
struct LaneOf<uint8_t> {
    using type = uint8_t;
};
// What the samples of two blocks are subtracted in. Only where both are bytes, A is.
template <class A, class B>
using LaneFor = typename LaneOf<A>::type;

// A sum over at most kMaxRows rows of a strip, or of two that overlap, up to `MaxStep` rows a step.
template <Term term, int Width, int Sides, int MaxStep, class A, class B>
[[gnu::always_inline]] inline uint32_t strip_sum(int32_t w, int32_t rows, const A *a, const B *b, int32_t stride_a,
                                                 int32_t stride_b) {
    using Parts = SumOf<term, LaneFor<A, B>, Width, Sides>;
    using Sum = typename Parts::type;
    Sum sum(w);
    Strip<const A, Parts::kSides> strip_a(a, stride_a, w - Width);
    Strip<const B, Parts::kSides> strip_b(b, stride_b, w - Width);
    walk<smaller(MaxStep, Sum::S::rows_of(Sum::kVectors))>(sum, strip_a, strip_b, rows);
    if constexpr (sizeof(A) + sizeof(B) > 2) {
        if (!sum.exact()) return exact_sum<term>(w, rows, a, b, stride_a, stride_b);
    }
    return sum.total();
}

// A function of its own for each strip: the one that is needed then keeps nothing for the others.
template <Term term, int Width, int Sides, class A, class B>
[[gnu::noinline]] uint32_t area_strip(int32_t w, int32_t rows, const A *a, const B *b, int32_t stride_a,
                                      int32_t stride_b) {
    using Parts = SumOf<term, LaneFor<A, B>, Width, Sides>;
    using S = typename Parts::type::S;
    constexpr int kStep = kForSize ? 1 : S::kRows * Parts::kSides * S::kAcross > 1 ? S::kRows : kAreaVectors;
    return strip_sum<term, Width, Sides, kStep>(w, rows, a, b, stride_a, stride_b);
}

template <Term term, class A, class B>
static uint32_t area_sum(int32_t w, int32_t h, const A *a, const B *b, int32_t stride_a, int32_t stride_b);

template <Term term, int Width, int Height, class A, class B>
static uint32_t block_sum(const A *a, const B *b, int32_t stride_a, int32_t stride_b) {
    if constexpr (kIsStrip<Width, Height>) {
        constexpr int kStep = smaller(power_of_two_up_to(Height), 16);
        return strip_sum<term, Width, 1, kStep>(Width, Height, a, b, stride_a, stride_b);
    } else {
        return area_sum<term>(Width, Height, a, b, stride_a, stride_b);
    }
}

// A square that is a member of one size as well is shared, and so out of line; any other one is told to be: inline, it
// would make area_sum() save registers for every area.
template <Term term, int Side, class A, class B>
requires(term == kMagnitudes) [[gnu::always_inline]] inline uint32_t
    large_square(const A *a, const B *b, int32_t stride_a, int32_t stride_b) {
    return block_sum<term, Side, Side>(a, b, stride_a, stride_b);
}

template <Term term, int Side, class A, class B>
requires(term == kSquares) [[gnu::noinline]] uint32_t
    large_square(const A *a, const B *b, int32_t stride_a, int32_t stride_b) {
    return block_sum<term, Side, Side>(a, b, stride_a, stride_b);
}

template <Term term, class A, class B>
[[gnu::noinline]] uint32_t sum_of_pieces(int32_t w, int32_t h, const A *a, const B *b, int32_t stride_a,
                                         int32_t stride_b) {
    uint32_t sum = 0;
    for_each_piece(
        w, h, [&](int32_t x, ptrdiff_t y, int32_t columns, int32_t rows) __attribute__((always_inline)) {
            sum += area_sum<term>(columns, rows, a + y * stride_a + x, b + y * stride_b + x, stride_a, stride_b);
        });
    return sum;
}

// What qorv_sad and its like do: common squares as the blocks of those sizes, all else by strips. Whatever is called is
// jumped to: there is nothing to save for it.
template <Term term, class A, class B>
static uint32_t area_sum(int32_t w, int32_t h, const A *a, const B *b, int32_t stride_a, int32_t stride_b) {
    uint32_t sum = 0;
    const auto square = [&](auto side) __attribute__((always_inline)) {
        constexpr int kSide = side.value;
        if constexpr (kSide <= 16) {  // inline: one more jump would slow them down
            sum = strip_sum<term, kSide, 1, kSide>(kSide, kSide, a, b, stride_a, stride_b);
        } else {
            sum = large_square<term, kSide>(a, b, stride_a, stride_b);
        }
    };
    if (!kForSize && sizeof(A) == sizeof(B) && for_common_square(w, h, square)) return sum;
    if (!is_one_piece(w, h)) [[unlikely]]
        return sum_of_pieces<term>(w, h, a, b, stride_a, stride_b);
    if (w < kNarrowest) [[unlikely]]
        return narrow_sum<term>(w, h, a, b, stride_a, stride_b);
#if QORV_VECTOR_BYTES == 32
    if (term == kMagnitudes && sizeof(A) == sizeof(B) && is_cut<A>(w)) {
        return area_strip<term, kVectorBytes / sizeof(A), 0>(w, h, a, b, stride_a, stride_b);
    }
#endif
    return with_strip<kMaxStrip, kMaxStrip>(
        w, [&](auto width, auto sides) __attribute__((always_inline)) {
            return area_strip<term, width.value, sides.value>(w, h, a, b, stride_a, stride_b);
        });
}

template <class T>
static uint32_t area_sad(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b) {
    return area_sum<kMagnitudes>(w, h, a, b, stride_a, stride_b);
}

template <class T>
static uint32_t area_ssd(int32_t w, int32_t h, const T *a, const T *b, int32_t stride_a, int32_t stride_b) {
    return area_sum<kSquares>(w, h, a, b, stride_a, stride_b);
}

}  // namespace qorv::QORV_ISA
