// How the block metrics walk two blocks: in strips of a fixed width, several rows a step, rows narrower than a vector
// side by side in one. Kernel sources alone include this header.
#pragma once

#include "core/hide_origin.h"
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

constexpr int smaller(int a, int b) {
    return a < b ? a : b;
}

// Rows that addressing modes reach from one pointer, if a row is one vector, and if it is more.
#if defined(QORV_SIMD_NEON)
constexpr int kRowsAtHand = 2, kWideRowsAtHand = 1;
#elif defined(QORV_SIMD_X86)
constexpr int kRowsAtHand = 4, kWideRowsAtHand = 2;
#else
constexpr int kRowsAtHand = 4, kWideRowsAtHand = 4;
#endif

// The rows of a block. Those at hand are reached from one pointer by what addressing modes there are.
template <class T>
class Rows {
public:
    [[gnu::always_inline]] Rows(T *first, ptrdiff_t stride_in_samples)
        : first_(first), stride_(stride_in_samples * static_cast<ptrdiff_t>(sizeof(T))) {}
    [[gnu::always_inline]] T *at(int y, int x = 0) const { return (T *)((char *)first_ + y * stride_) + x; }
    // Hides where the pointer comes from; the compiler would keep an offset for every row of an unrolled loop.
    [[gnu::always_inline]] void skip(int rows) {
        first_ = at(rows);
        hide_origin(first_);
    }

private:
    T *first_;
    ptrdiff_t stride_;
};

// `Count` words, one from each row, and zero in the lanes after them.
template <class Word, int Count, class T>
[[gnu::always_inline]] inline Vec<uint8_t, 16> load_column(const Rows<T> &rows, int y, int x) {
    using V = Vec<Word, 16>;
    const auto word = [&](int i) __attribute__((always_inline)) {
        Word value;
        memcpy(&value, rows.at(y + i, x), sizeof value);
        return value;
    };
    if constexpr (Count == 1) return (Vec<uint8_t, 16>)V{word(0)};
    if constexpr (Count == 2) return (Vec<uint8_t, 16>)V{word(0), word(1)};
    if constexpr (Count == 4) return (Vec<uint8_t, 16>)V{word(0), word(1), word(2), word(3)};
}

// `Count` rows of `Width` bytes, from the one at x, y on, side by side in a vector of `Bytes` bytes, with zeros after
// them.
template <int Width, int Count, int Bytes, class T>
[[gnu::always_inline]] inline Vec<uint8_t, Bytes> load_bytes(const Rows<T> &rows, int y, int x) {
    static_assert(Width * Count <= Bytes);
    if constexpr (Width == Bytes) {
        return load<Vec<uint8_t, Bytes>>(rows.at(y, x));
    } else if constexpr (Bytes == 32) {
        static_assert(Width == 16);
        using Half = Vec<uint8_t, Bytes / 2>;
        return concatenate(load<Half>(rows.at(y, x)), Count == 2 ? load<Half>(rows.at(y + 1, x)) : Half{});
    } else if constexpr (Width == 8) {
        return load_column<uint64_t, Count>(rows, y, x);
    } else if constexpr (Width == 4) {
        return load_column<uint32_t, Count>(rows, y, x);
    } else if constexpr (Width == 2) {
        return load_column<uint16_t, Count>(rows, y, x);
    } else {
        return load_column<uint8_t, Count>(rows, y, x);
    }
}

// `Count` rows of `Width` samples in 16-bit lanes in the same way.
template <int Width, int Count, int Bytes, class T>
[[gnu::always_inline]] inline Vec<int16_t, Bytes> load_samples(const Rows<T> &rows, int y, int x) {
    if constexpr (sizeof(T) == 2) {
        return (Vec<int16_t, Bytes>)load_bytes<2 * Width, Count, Bytes>(rows, y, x);
    } else if constexpr (2 * Width == Bytes) {
        return load_widened<Bytes>(rows.at(y, x));
    } else {
        return widen_low(load_bytes<Width, Count, 16>(rows, y, x));
    }
}

template <int Value>
struct Constant {
    static constexpr int value = Value;
};

// How a metric takes a strip of `Width` columns: in vectors of kColumns x kRows samples.
template <int Width, int Lanes>
struct Shape {
    static constexpr int kColumns = smaller(Width, Lanes);
    static constexpr int kRows = smaller(Lanes / kColumns, 4);
    static constexpr int kAcross = Width / kColumns;
    // Rows of a step of at most `Vectors` vectors, where a row is not more than that already.
    static constexpr int rows_of(int vectors) { return vectors > kAcross ? vectors / kAcross * kRows : 1; }
};

// f(Constant<rows>, y, vector) for `Count` rows, a vector's rows at a time, y counting rows within those at hand and
// vector the vectors of the step; skip(n) after n rows.
template <class S, int Count, class F, class Skip>
[[gnu::always_inline]] inline void for_each_row(F f, Skip skip) {
    constexpr int kMost = S::kAcross == 1 ? kRowsAtHand : kWideRowsAtHand;
    constexpr int kRows = smaller(S::kRows, Count), kAtHand = smaller(kMost > kRows ? kMost : kRows, Count);
    unrolled<Count / kRows>([&](int i) __attribute__((always_inline)) {
        const int y = i * kRows % kAtHand;
        f(Constant<kRows>{}, y, i * S::kAcross);
        if (y + kRows == kAtHand) skip(kAtHand);
    });
}

// Walks `rows` rows of two strips, `Step` rows a step and the rest in smaller steps. A step hands its vectors to
// metric.add(k, a, b), k counting them, and their number to metric.end_step().
template <int Step, class Metric, class A, class B>
[[gnu::always_inline]] inline void walk(Metric &metric, Rows<A> &a, Rows<B> &b, int32_t rows) {
    using S = typename Metric::S;
    for (; rows >= Step; rows -= Step) {
        const auto add = [&](auto together, int y, int first) __attribute__((always_inline)) {
            unrolled<S::kAcross>([&](int i) __attribute__((always_inline)) {
                metric.add(first + i, Metric::template load<S::kColumns, together.value>(a, y, i * S::kColumns),
                           Metric::template load<S::kColumns, together.value>(b, y, i * S::kColumns));
            });
        };
        for_each_row<S, Step>(
            add, [&](int n) __attribute__((always_inline)) { a.skip(n), b.skip(n); });
        metric.end_step(Step / smaller(S::kRows, Step) * S::kAcross);
    }
    if constexpr (Step > 1) walk<Step / 2>(metric, a, b, rows);
}

// The widest strip, and the most rows of a strip that a metric's lanes have to hold.
#ifdef QORV_SMALL_KERNELS
constexpr bool kForSize = true;  // fixed sizes are areas like any other, in narrower strips
constexpr int kMaxStrip = 16;
#else
constexpr bool kForSize = false;
constexpr int kMaxStrip = 64;
#endif
constexpr int kMaxRows = 64;

// Cuts `width` columns into strips of powers of two: f(Constant<W>, x) for each, x being its first column.
template <int Width = kMaxStrip, class F>
[[gnu::always_inline]] inline void for_each_strip(int32_t width, F f, ptrdiff_t x = 0) {
    for (; width >= Width; width -= Width, x += Width) f(Constant<Width>{}, x);
    if constexpr (Width > 1) for_each_strip<Width / 2>(width, f, x);
}

// Cuts `height` rows into bands that a metric's lanes hold: f(y, rows) for each.
template <class F>
[[gnu::always_inline]] inline void for_each_band(int32_t height, F f) {
    for (ptrdiff_t y = 0; y < height; y += kMaxRows) {
        f(y, height - y < kMaxRows ? static_cast<int32_t>(height - y) : kMaxRows);
    }
}

// f(Constant<W>) if the area is one of the square blocks that are asked for the most. The smallest ones, where a jump
// is felt, come first: a compiler that saw through `w` would make a table or a tree of the sizes.
template <class F>
[[gnu::always_inline]] inline bool for_common_square(int32_t w, int32_t h, F f) {
    if (w != h) return false;
    if (w == 8) return f(Constant<8>{}), true;
    hide_origin(w);
    if (w == 16) return f(Constant<16>{}), true;
    hide_origin(w);
    if (w == 4) return f(Constant<4>{}), true;
    hide_origin(w);
    if (w == 32) return f(Constant<32>{}), true;
    if (w == 64) return f(Constant<64>{}), true;
    return false;
}

}  // namespace qorv::QORV_ISA
