// How the block metrics walk two blocks: in strips of a fixed width, several rows a step, rows narrower than a vector
// side by side in one. Kernel sources alone include this header.
//
// An example, sad16x16 of bytes in vectors of 16 bytes:
//   block_sum<kMagnitudes, 16, 16>     16 is a power of two, so that the block is one strip: strip_sum()
//   StripSum<kMagnitudes, kBytes, 16>  takes a row in one vector: Shape<16, 16> has 1 vector across, of 1 row
//   walk<16>                           makes one step of 16 rows, unrolled: for each it loads a vector of either block
//   add(k, a, b)                       adds the distances of vector k to one of the sums, by a primitive
//   total()                            adds up the lanes of all sums
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

constexpr int smaller(int a, int b) {
    return a < b ? a : b;
}

// Rows that addressing modes reach from one pointer, if a row is one vector, and if it is more; whether a narrow row of
// bytes is loaded by itself into a vector of 8 bytes, where several are put together elsewhere; how many sums it takes
// that an addition need not wait for the one before it; how many vectors make a step of an area of any size; whether
// the next vectors are loaded before the last ones are added, where a compiler does not know how long a load takes.
#if defined(QORV_SIMD_NEON)
constexpr int kRowsAtHand = 2, kWideRowsAtHand = 1, kSums = 4, kAreaVectors = 1;
constexpr bool kSingleRows = true, kLoadsAhead = true;
#elif defined(QORV_SIMD_X86)
constexpr int kRowsAtHand = 4, kWideRowsAtHand = 2, kSums = 2, kAreaVectors = 2;
constexpr bool kSingleRows = false, kLoadsAhead = false;
constexpr int kMostTogether = 1;
#else
constexpr int kRowsAtHand = 4, kWideRowsAtHand = 4, kSums = 2, kAreaVectors = 1;
constexpr bool kSingleRows = false, kLoadsAhead = false;
constexpr int kMostTogether = 1;
#endif

constexpr bool is_power_of_two(int n) {
    return n > 0 && (n & (n - 1)) == 0;
}

constexpr int power_of_two_up_to(int n) {
    int power = 1;
    while (2 * power <= n) power *= 2;
    return power;
}

// The rows of a block, by a pointer to one of them. The few rows that follow it are reached through addressing modes of
// the processor, then skip() moves the pointer on.
template <class T>
class Rows {
public:
    Rows() = default;
    [[gnu::always_inline]] Rows(T *first, ptrdiff_t stride_in_samples)
        : first_(first), stride_(stride_in_samples * static_cast<ptrdiff_t>(sizeof(T))) {}
    [[gnu::always_inline]] T *at(int y, int x = 0) const { return (T *)((char *)first_ + y * stride_) + x; }
    // Of an unrolled loop, the compiler would otherwise keep the offset of every row in a register of its own.
    [[gnu::always_inline]] void skip(int rows) {
        first_ = at(rows);
        hide_origin(first_);
    }

private:
    T *first_;
    ptrdiff_t stride_;
};

template <int Bytes>
struct WordOf;
template <>
struct WordOf<1> {
    using type = uint8_t;
};
template <>
struct WordOf<2> {
    using type = uint16_t;
};
template <>
struct WordOf<4> {
    using type = uint32_t;
};
template <>
struct WordOf<8> {
    using type = uint64_t;
};

// `Count` words of `Width` bytes, one from each row, and zero in the lanes after them.
template <int Width, int Count, int Bytes, class T>
[[gnu::always_inline]] inline Vec<uint8_t, Bytes> load_column(const Rows<T> &rows, int y, int x) {
    using Word = typename WordOf<Width>::type;
    using V = Vec<Word, Bytes>;
    const auto word = [&](int i) __attribute__((always_inline)) {
        Word value;
        memcpy(&value, rows.at(y + i, x), sizeof value);
        return value;
    };
    static_assert(Count == 1 || Count == 2 || Count == 4, "there is no way to load so many rows into one vector");
    if constexpr (Count == 1) return (Vec<uint8_t, Bytes>)V{word(0)};
    if constexpr (Count == 2) return (Vec<uint8_t, Bytes>)V{word(0), word(1)};
    if constexpr (Count == 4) return (Vec<uint8_t, Bytes>)V{word(0), word(1), word(2), word(3)};
}

// `Count` rows of `Width` bytes, from the one at x, y on, side by side in a vector of `Bytes` bytes, with zeros after
// them.
template <int Width, int Count, int Bytes, class T>
[[gnu::always_inline]] inline Vec<uint8_t, Bytes> load_bytes(const Rows<T> &rows, int y, int x) {
    static_assert(Width * Count <= Bytes);
    if constexpr (Width == Bytes) {
        return load<Vec<uint8_t, Bytes>>(rows.at(y, x));
    } else if constexpr (Bytes == 32 && Width == 16) {
        static_assert(Count <= 2);
        using Half = Vec<uint8_t, Bytes / 2>;
        return concatenate(load<Half>(rows.at(y, x)), Count == 2 ? load<Half>(rows.at(y + 1, x)) : Half{});
    } else {
        return load_column<Width, Count, Bytes>(rows, y, x);
    }
}

#ifdef QORV_SIMD_NEON
// A row of 4, 8 or 16 bytes in a vector of its own, the whole width of its strip. The first of the rows at hand needs
// no offset, nor does any other whose address is made before.
template <int Width, bool WithAddress, class T>
[[gnu::always_inline]] inline auto load_row(const Rows<T> &rows, int y) {
    constexpr int kBytes = Width == 4 ? 8 : Width;
    if (WithAddress || y == 0) return load_unscaled<Vec<uint8_t, kBytes>, Width>(rows.at(y));
    return load_bytes<Width, 1, kBytes>(rows, y, 0);
}
#endif

// `Count` rows of `Width` samples in 16-bit lanes in the same way.
template <int Width, int Count, int Bytes, class T>
[[gnu::always_inline]] inline Vec<int16_t, Bytes> load_samples(const Rows<T> &rows, int y, int x) {
    if constexpr (sizeof(T) == 2) {
        return (Vec<int16_t, Bytes>)load_bytes<2 * Width, Count, Bytes>(rows, y, x);
    } else if constexpr (2 * Width == Bytes) {
        return load_widened<Bytes>(rows.at(y, x));
#if QORV_VECTOR_BYTES == 32
    } else if constexpr (Bytes == 32) {
        return widen(load_bytes<Width, Count, 16>(rows, y, x));
#endif
    } else {
        return widen_low(load_bytes<Width, Count, 16>(rows, y, x));
    }
}

// a - b of `Count` rows of `Width` samples, modulo 2^16, in the lanes that load_samples() gives them.
template <int Width, int Count, int Bytes, class A, class B>
[[gnu::always_inline]] inline Vec<int16_t, Bytes> load_difference(const Rows<A> &a, const Rows<B> &b, int y, int x) {
#ifdef QORV_SIMD_NEON
    if constexpr (sizeof(A) + sizeof(B) == 2) {
        return subtract_widened(load_bytes<Width, Count, 8>(a, y, x), load_bytes<Width, Count, 8>(b, y, x));
    }
#endif
    using Unsigned = Vec<uint16_t, Bytes>;
    return (Vec<int16_t, Bytes>)((Unsigned)load_samples<Width, Count, Bytes>(a, y, x) -
                                 (Unsigned)load_samples<Width, Count, Bytes>(b, y, x));
}

template <int Value>
struct Constant {
    static constexpr int value = Value;
    constexpr operator int() const { return Value; }
};

// How a metric takes a strip of `Width` columns: in vectors of kColumns x kRows samples, at most MaxRows, kAcross of
// them beside each other.
template <int Width, int Lanes, int MaxRows = 4>
struct Shape {
    static_assert(is_power_of_two(Width) && is_power_of_two(Lanes), "a strip is as wide as a power of two");
    static constexpr int kColumns = smaller(Width, Lanes);
    static constexpr int kRows = smaller(Lanes / kColumns, MaxRows);
    static constexpr int kAcross = Width / kColumns;
    // Rows that are reached from one pointer.
    static constexpr int kMostAtHand = kAcross > 1 ? kWideRowsAtHand : kRowsAtHand;
    // How many rows make a step of `Vectors` vectors; one row, if that alone is more.
    static constexpr int rows_of(int vectors) { return vectors > kAcross ? vectors / kAcross * kRows : 1; }
};

// Goes through the `Count` rows of a step: f(Constant<rows>, y, vector) for every vector at the left edge of the strip.
// It holds so many rows, from row y on, counted from where the pointers stand; `vector` is its number within the step.
// Whenever n rows are done, skip(n) moves the pointers.
template <class S, int Count, class F, class Skip>
[[gnu::always_inline]] inline void for_each_row(F f, Skip skip) {
    constexpr int kRows = smaller(S::kRows, Count);
    constexpr int kAtHand = smaller(S::kMostAtHand > kRows ? S::kMostAtHand : kRows, Count);
    static_assert(Count % kAtHand == 0 && kAtHand % kRows == 0, "rows would be left out");
    unrolled<Count / kRows>([&](int i) __attribute__((always_inline)) {
        const int y = i * kRows % kAtHand;
        f(Constant<kRows>{}, y, i * S::kAcross);
        if (y + kRows == kAtHand) skip(kAtHand);
    });
}

// The rows of a strip; or those of two strips of the same width, the second one `apart` columns beyond the first, which
// together are walked as one.
template <class T, int Sides>
class Strip {
public:
    [[gnu::always_inline]] Strip(T *first, ptrdiff_t stride, ptrdiff_t apart) : Strip(first, stride) {
        if constexpr (Sides == 2) side_[1] = Rows<T>(first + apart, stride);
    }
    [[gnu::always_inline]] const Rows<T> &operator[](int side) const { return side_[side]; }
    [[gnu::always_inline]] void skip(int rows) {
        for (Rows<T> &side : side_) side.skip(rows);
    }

private:
    [[gnu::always_inline]] Strip(T *first, ptrdiff_t stride) {
        for (Rows<T> &side : side_) side = Rows<T>(first, stride);
    }
    Rows<T> side_[Sides];
};

// One vector as the metric loads it, or all of a row.
template <int Columns, int Count, class Metric, class V, class T>
[[gnu::always_inline]] inline void load_piece(V (&v)[1], const Metric &metric, const Rows<T> &rows, int y, int x) {
    v[0] = metric.template load<Columns, Count>(rows, y, x);
}
#ifdef QORV_SIMD_NEON
template <int, int, int Count, class Metric, class V, class T>
requires(Count > 1)
    [[gnu::always_inline]] inline void load_piece(V (&v)[Count], const Metric &, const Rows<T> &rows, int y, int x) {
    load_together(rows.at(y, x), v);
}
#endif

// Walks `rows` rows of two strips, `Step` rows a step, and those that are left in steps of half as many. For vector k
// of a step it calls metric.add(k, i, a, b), i being the vector's number in its row, all of a row's sides counted; at
// the end of the step metric.end_step(how many vectors).
template <int Step, int Sides, class Metric, class A, class B>
[[gnu::always_inline]] inline void walk(Metric &metric, Strip<A, Sides> &a, Strip<B, Sides> &b, int32_t rows) {
    using S = typename Metric::S;
    constexpr int kInRow = Sides * S::kAcross, kPiece = Metric::kTogether;
    static_assert(is_power_of_two(Step));
    for (; rows >= Step; rows -= Step) {
        constexpr int kVectors = Step / smaller(S::kRows, Step) * kInRow;
        typename Metric::V loaded_a[kPiece], loaded_b[kPiece];
        const auto add_loaded = [&](int k) __attribute__((always_inline)) {
            unrolled<kPiece>([&](int i) __attribute__((always_inline)) {
                metric.add(k + i, (k + i) % kInRow, loaded_a[i], loaded_b[i]);
            });
        };
        const auto add = [&](auto together, int y, int first) __attribute__((always_inline)) {
            unrolled<kInRow / kPiece>([&](int piece) __attribute__((always_inline)) {
                const int i = kPiece * piece, k = Sides * first + i;
                const int side = i / S::kAcross, x = i % S::kAcross * S::kColumns;
                typename Metric::V next_a[kPiece], next_b[kPiece];
                load_piece<S::kColumns, together.value>(next_a, metric, a[side], y, x);
                load_piece<S::kColumns, together.value>(next_b, metric, b[side], y, x);
                if (kLoadsAhead && k > 0) add_loaded(k - kPiece);
                unrolled<kPiece>([&](int j) __attribute__((always_inline)) {
                    loaded_a[j] = next_a[j];
                    loaded_b[j] = next_b[j];
                });
                if (!kLoadsAhead) add_loaded(k);
            });
        };
        for_each_row<S, Step>(
            add, [&](int n) __attribute__((always_inline)) { a.skip(n), b.skip(n); });
        if (kLoadsAhead) add_loaded(kVectors - kPiece);
        metric.end_step(kVectors);
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

// Whether a block of a fixed size is one strip, which its kernel walks unrolled. Any other one, 12x16 or 48x64 for
// example, is an area like those of any size.
template <int Width, int Height>
constexpr bool kIsStrip = !kForSize && is_power_of_two(Width) && Width <= kMaxStrip && Height <= kMaxRows;

// The narrowest area that is walked in vectors.
constexpr int kNarrowest = 4;

// Whether an area is taken at once. Where size counts, its columns are a power of two, or fewer than kNarrowest.
[[gnu::always_inline]] inline bool is_one_piece(int32_t w, int32_t h) {
    return w <= kMaxStrip && h <= kMaxRows && (!kForSize || w < kNarrowest || (w & (w - 1)) == 0);
}

// Cuts `height` rows into bands of at most kMaxRows: f(y, rows) for each.
template <class F>
[[gnu::always_inline]] inline void for_each_band(int32_t height, F f) {
    for (ptrdiff_t y = 0; y < height; y += kMaxRows) {
        f(y, height - y < kMaxRows ? static_cast<int32_t>(height - y) : kMaxRows);
    }
}

// Cuts an area into such pieces: f(x, y, w, h) for each.
template <class F>
[[gnu::always_inline]] inline void for_each_piece(int32_t w, int32_t h, F f) {
    for_each_band(
        h, [&](ptrdiff_t y, int32_t rows) __attribute__((always_inline)) {
            for (int32_t x = 0, columns = kMaxStrip; x < w; x += columns) {
                if (kForSize) {
                    while (columns >= kNarrowest && columns > w - x) columns /= 2;
                }
                if (columns > w - x || columns < kNarrowest) columns = w - x;
                f(x, y, columns, rows);
            }
        });
}

// Chooses what takes the columns of such a piece, kNarrowest to `Width` of them: f(Constant<W>, Constant<1>) for a
// strip of W columns; or f(Constant<W>, Constant<2>) for two of them, the second one ending where the area ends and
// overlapping the first one by 2 W - w columns. One strip alone takes widths up to `MostWhole` that are a power of two.
template <int Width, int MostWhole, class F>
[[gnu::always_inline]] inline auto with_strip(int32_t w, F f) {
    if constexpr (Width == kNarrowest) {
        return f(Constant<Width>{}, Constant<1>{});
    } else {
        if constexpr (Width <= MostWhole) {
            if (w == Width) return f(Constant<Width>{}, Constant<1>{});
        }
        if constexpr (!kForSize) {
            if (w > Width / 2) return f(Constant<Width / 2>{}, Constant<2>{});
        }
        return with_strip<Width / 2, MostWhole>(w, f);
    }
}

// Bytes to load masks from: clear(n) has n bytes of 0 and then those of 255, up to 64 together; set(n) n bytes of 255,
// then 0, up to 32.
struct MaskBytes {
    alignas(4) uint8_t bytes[160];  // read as samples, too
    constexpr MaskBytes() : bytes() {
        for (int i = 64; i < 128; i++) bytes[i] = 255;
    }
    [[gnu::always_inline]] const uint8_t *clear(ptrdiff_t n) const { return bytes + 64 - n; }
    [[gnu::always_inline]] const uint8_t *set(ptrdiff_t n) const { return bytes + 128 - n; }
};
inline constexpr MaskBytes kMaskBytes;

// Calls f(Constant<W>) and returns true if the area is one of the square blocks that are asked for the most. The
// smallest ones, which a few more instructions slow down the most, are looked for first. Hiding it keeps that order:
// a compiler that knows `w` to be the same at every comparison makes a jump table or a binary search of them.
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
