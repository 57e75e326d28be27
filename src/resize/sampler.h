// Bilinear sampling. Kernel sources only.
//
// With fx and fy the eighths of a position, a sample is the sum of its four neighbours A B / C D
//   ((8 - fy) [(8 - fx) A + fx B] + fy [(8 - fx) C + fx D]) >> 6,
// exact in 16 bits as it stands: a bracket is at most 2040, the whole at most 16320.
//
// The destination is worked on in strips of columns. For a strip, Columns turns positions once into windows of 16
// source bytes, shuffle indices and weights for every group of eight outputs (an output is one byte of one pixel). For
// each row a shuffle then brings every output's two neighbours side by side and a multiply-add makes the bracket.
#pragma once

#include "core/simd.h"
#include "resize/resize_kernels.h"

namespace qorv::QORV_ISA {

constexpr int kGroup = 8;                              // outputs of a 128-bit lane
constexpr int kUnit = kVectorBytes;                    // outputs of a vector of bytes: the least that is produced
constexpr int kWindow = 16;                            // bytes
constexpr int64_t kOne = int64_t{1} << kPositionBits;  // one (decimated) pixel
constexpr int64_t kMaxStep = 3 * kOne;                 // longer steps pick single pixels
constexpr int kMaxPixels = 3 * kStripColumns + 2;      // under a strip, neighbour of the last included

// Pixels as they lie in memory and as they are sampled.
template <int N>
struct Bytes {
    static constexpr int kMemory = N, kSampled = N;
};
struct Words565 {
    static constexpr int kMemory = 2, kSampled = 4;
};

// Two vectors of sums narrow to one of bytes lane by lane. So that the bytes come out in order, the groups of four are
// kept in the order 0, 2, 1, 3 where a vector has two lanes.
[[gnu::always_inline]] inline int slot_of(int group) {
    return kVectorBytes == 32 ? (group & ~3) | ((group & 1) << 1) | ((group >> 1) & 1) : group;
}

enum class Fetch {
    kDirect,   // windows on the source row itself
    kCompact,  // the pixels under the strip are brought together first
    kPick,     // the two neighbours of every column are brought together first
};

// The columns of one strip: for pixels of `Pixel` sampled into `Slots` bytes each, where every output comes from. Slots
// beyond the pixel's own bytes repeat its last.
template <class Pixel, int Slots>
struct Columns {
    static constexpr int kMaxOutputs = kStripColumns * Slots;

    int count;    // columns
    int outputs;  // whole units
    Fetch fetch;
    bool wide;            // the outputs of a group come from two windows side by side
    int64_t first_pixel;  // under the strip, in decimated pixels
    int pixels;           // under the strip, in decimated pixels
    int shift;
    int64_t neighbour;  // source pixels from one to the next
    uint32_t fraction;  // of the position of the first column
    int64_t step;       // of the position from column to column
    ptrdiff_t origin;   // byte from which windows that lie on a source row count

    uint16_t offsets[kMaxOutputs / kGroup];  // of the windows, by slot
    alignas(kVectorBytes) uint8_t indices[2 * kMaxOutputs];
    alignas(kVectorBytes) uint8_t weights[2 * kMaxOutputs];

    // `readable`: pixels of a source row that may be read.
    Columns(const Grid &grid, int32_t first, int32_t columns, int64_t readable) : count(columns), shift(grid.x.shift) {
        const int64_t x_step = grid.x.step, begin = first * x_step, end = (first + count - 1) * x_step;
        outputs = (count * Slots + kUnit - 1) / kUnit * kUnit;
        first_pixel = begin >> kPositionBits;
        fraction = static_cast<uint32_t>(begin & (kOne - 1));
        step = x_step;
        // Behind a step of 0 is a source of one pixel: its right neighbour, of weight 0, does not exist.
        neighbour = x_step == 0 ? 0 : grid.neighbour;
        const bool pick = x_step > kMaxStep || span(x_step) > 2 * kWindow || (x_step != 0 && neighbour != 1 << shift);
        wide = span(pick ? 2 * kOne : x_step) > kWindow;
        if (pick) {
            fetch = Fetch::kPick;
            pixels = 2 * count;
            set_groups(0, 0xFFFF);
        } else {
            fetch = Fetch::kCompact;
            pixels = static_cast<int>((end >> kPositionBits) - first_pixel) + (x_step != 0 ? 2 : 1);
            lay_windows(static_cast<ptrdiff_t>(readable) * Pixel::kMemory);
        }
    }

private:
    static constexpr int kBytes = Pixel::kSampled;
    static constexpr int kPixelsBetween = Slots == 1 ? 7 : Slots == 3 ? 3 : 1;  // first to last pixel of a group

    // The most bytes that the outputs of a group reach over.
    static int64_t span(int64_t pixel_step) { return ((kPixelsBetween * pixel_step + kOne - 1) / kOne + 2) * kBytes; }

    // `row_bytes` are all that may be read of a source row: windows that would pass them are pulled back.
    void lay_windows(ptrdiff_t row_bytes) {
        const ptrdiff_t last_window = row_bytes - (wide ? 2 * kWindow : kWindow);
        const ptrdiff_t start = static_cast<ptrdiff_t>(first_pixel) * kBytes;
        if (Pixel::kMemory != kBytes || shift != 0 || last_window < 0) {
            set_groups(0, 0xFFFF);
            return;
        }
        fetch = Fetch::kDirect;
        origin = start < last_window ? start : last_window;
        set_groups(static_cast<int>(start - origin),
                   static_cast<int>(last_window - origin < 0xFFFF ? last_window - origin : 0xFFFF));
    }

    // Byte and column of each output of eight columns.
    struct Pattern {
        uint16_t byte[Slots][kGroup];
        uint32_t column[Slots][kGroup];
    };
    static constexpr Pattern kPattern = [] {
        Pattern pattern{};
        for (int i = 0; i < Slots * kGroup; i++) {
            pattern.byte[i / kGroup][i % kGroup] = static_cast<uint16_t>(i % Slots < kBytes ? i % Slots : kBytes - 1);
            pattern.column[i / kGroup][i % kGroup] = static_cast<uint32_t>(i / Slots);
        }
        return pattern;
    }();

    // `lead` bytes lie before the first pixel.
    void set_groups(int lead, int last_window) {
        using U16x8 = Vec<uint16_t, 16>;
        using U32x4 = Vec<uint32_t, 16>;
        const uint32_t wrapped_step = static_cast<uint32_t>(step);
        const U32x4 last_column = splat<U32x4>(static_cast<uint32_t>(count - 1));
        // A source of one pixel stands in for its own neighbour.
        const uint16_t to_right = step == 0 ? 0 : kBytes;
        for (int group = 0; group * kGroup < outputs; group++) {
            const int phase = group % Slots;
            const uint32_t block = static_cast<uint32_t>(group / Slots * kGroup);
            U32x4 a = load<U32x4>(kPattern.column[phase]) + block, b = load<U32x4>(kPattern.column[phase] + 4) + block;
            a = a < last_column ? a : last_column;
            b = b < last_column ? b : last_column;
            // At most 3 x 256 pixels of eight eighths; of a picked column the fraction alone counts.
            const U16x8 eighths = join((fraction + a * wrapped_step) >> kEighthBits & 0x1FFF,
                                       (fraction + b * wrapped_step) >> kEighthBits & 0x1FFF);
            const U16x8 pixel = fetch == Fetch::kPick ? join(2 * a, 2 * b) : eighths >> 3;
            const int start = lead + pixel[0] * kBytes, window = start < last_window ? start : last_window;
            const U16x8 left = pixel * static_cast<uint16_t>(kBytes) + load<U16x8>(kPattern.byte[phase]) +
                               static_cast<uint16_t>(lead - window);
            const int slot = slot_of(group);
            offsets[slot] = static_cast<uint16_t>(window);
            store(indices + slot * 2 * kGroup, pair_up(left, left + to_right));
            store(weights + slot * 2 * kGroup, pair_up(8 - (eighths & 7), eighths & 7));
        }
    }
};

// Every second or every fourth byte.
template <int Shift>
[[gnu::always_inline]] inline U8 every_nth(const uint8_t *p) {
    U8 wanted, b, c, d;
    if constexpr (Shift == 1) {
        load_interleaved2(p, wanted, b);
    } else {
        load_interleaved4(p, wanted, b, c, d);
    }
    return wanted;
}

// Copies up to `count` bytes that lie 1 << Shift apart, none or all, in whole vectors.
template <int Shift>
[[gnu::always_inline]] inline int copy_spaced_bytes(uint8_t *to, const uint8_t *from, int count) {
    if (count < kVectorBytes) return 0;
    for (int i = 0; i < count; i += kVectorBytes) {
        const int at = i < count - kVectorBytes ? i : count - kVectorBytes;
        store(to + at, every_nth<Shift>(from + (ptrdiff_t{at} << Shift)));
    }
    return count;
}

// Four pixels of N bytes that lie `spacing` bytes apart; of each, 16 bytes are read, and 16 bytes are written.
template <int N>
[[gnu::always_inline]] inline void copy_four_spaced(uint8_t *to, const uint8_t *from, ptrdiff_t spacing) {
    using U32x4 = Vec<uint32_t, 16>;
    using U8x16 = Vec<uint8_t, 16>;
    const U32x4 a = load<U32x4>(from), b = load<U32x4>(from + spacing);
    const U32x4 c = load<U32x4>(from + 2 * spacing), d = load<U32x4>(from + 3 * spacing);
    const U32x4 ab = __builtin_shufflevector(a, b, 0, 4, 1, 5), cd = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    const U32x4 four = __builtin_shufflevector(ab, cd, 0, 1, 4, 5);
    if constexpr (N == 4) {
        store(to, four);
    } else {
        const U8x16 bytes = (U8x16)four;
        store(to, __builtin_shufflevector(bytes, bytes, 0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 15, 15, 15, 15));
    }
}

// Copies every (1 << shift)-th pixel. `to` reaches to the next whole vector.
template <int N>
[[gnu::always_inline]] inline void copy_spaced(uint8_t *to, const uint8_t *from, int count, int shift) {
    if (shift == 0) {
        memcpy(to, from, static_cast<size_t>(count) * N);
        return;
    }
    int i = 0;
    if constexpr (N == 1) {
        // The last pixel may be the row's last: its neighbours are not touched.
        if (shift == 1) i = copy_spaced_bytes<1>(to, from, count - 1);
        if (shift == 2) i = copy_spaced_bytes<2>(to, from, count - 1);
    } else if constexpr (N >= 3) {
        const ptrdiff_t spacing = ptrdiff_t{N} << shift, limit = (count - 4) * spacing + N - 16;
        for (ptrdiff_t at = 0; at <= limit; at += 4 * spacing, i += 4) {
            copy_four_spaced<N>(to + i * N, from + at, spacing);
        }
    }
    for (; i < count; i++) memcpy(to + i * N, from + (ptrdiff_t{i} << shift) * N, N);
}

// 5-6-5 words to four bytes a pixel, the last of no meaning. `to` reaches to the next whole vector.
[[gnu::noinline]] inline void widen_565(const uint8_t *words, int count, uint8_t *to) {
    constexpr int kWords = kVectorBytes / 2;
    uint8_t last[kVectorBytes] = {};
    for (; count > 0; count -= kWords, words += 2 * kWords, to += 4 * kWords) {
        if (count < kWords) {
            memcpy(last, words, static_cast<size_t>(count) * 2);
            words = last;
        }
        const U16 v = load<U16>(words);
        store_interleaved2(to, (v >> 8 & 0xF8) | (v << 5 & 0xFC00), v << 3);
    }
}

// Brings the pixels under a strip together as they lie in memory.
template <int N, class Strip>
[[gnu::noinline]] void collect(const Strip &strip, const uint8_t *row, uint8_t *to) {
    if (strip.fetch == Fetch::kCompact) {
        copy_spaced<N>(to, row + (strip.first_pixel << strip.shift) * N, strip.pixels, strip.shift);
        return;
    }
    const uint8_t *first = row + (strip.first_pixel << strip.shift) * N;
    int64_t x = strip.fraction;
    for (int i = 0; i < strip.count; i++, to += 2 * N, x += strip.step) {
        const uint8_t *left = first + (x >> kPositionBits << strip.shift) * N;
        memcpy(to, left, N);
        memcpy(to + N, left + strip.neighbour * N, N);
    }
}

// Two rows by their numbers; the rows of a picture are asked for in ascending order.
template <class T, int N>
struct RowPair {
    int64_t number[2] = {-1, -1};
    alignas(kVectorBytes) T row[2][N];

    // The place of a row; `present` says whether it is there already. The row that it takes the place of is the upper.
    [[gnu::always_inline]] T *place(int64_t wanted, bool &present) {
        for (int i = 0; i < 2; i++) {
            if (number[i] == wanted) {
                present = true;
                return row[i];
            }
        }
        const int i = number[0] < number[1] ? 0 : 1;
        number[i] = wanted;
        present = false;
        return row[i];
    }
};

// Samples the rows of one plane, or of a packed picture, under one strip.
template <class Pixel, int Slots>
class Sampler {
public:
    using Strip = Columns<Pixel, Slots>;

    Sampler(const Strip &strip, const SourceRows &rows, const Axis &y)
        : strip_(strip), rows_(rows), shift_(y.shift), keep_(y.step < kOne) {}

    // Moves to the pair of rows at a position.
    void seek(int64_t y) {
        const int64_t upper = y >> kPositionBits << shift_;
        lower_weight_ = static_cast<uint16_t>(y >> kEighthBits & 7);
        // A row of weight 0 may not exist.
        const int64_t lower = lower_weight_ == 0 ? upper : upper + (1 << shift_);
        if (keep_) {
            upper_sums_ = sums(upper);
            lower_sums_ = sums(lower);
        } else {
            upper_ = bytes(upper);
            lower_ = bytes(lower);
        }
    }

    // The outputs from..to of that pair of rows; both are multiples of kUnit.
    void write(int from, int to, uint8_t *out) const {
        if (keep_) {
            blend(from, to, out);
        } else if (strip_.wide) {
            sample<true>(from, to, out);
        } else {
            sample<false>(from, to, out);
        }
    }

private:
    static constexpr int kLanes = kVectorBytes / 16;
    static constexpr int kBufferBytes = (kMaxPixels + kVectorBytes) * Pixel::kSampled;

    // What the windows of the strip count from in a row.
    const uint8_t *bytes(int64_t row) {
        if (strip_.fetch == Fetch::kDirect) return rows_.row(row) + strip_.origin;
        bool present;
        uint8_t *buffer = collected_.place(row, present);
        if (!present) {
            if constexpr (Pixel::kMemory == Pixel::kSampled) {
                collect<Pixel::kMemory>(strip_, rows_.row(row), buffer);
            } else {
                uint8_t collected[kBufferBytes / 2];
                const uint8_t *words = rows_.row(row) + 2 * strip_.first_pixel;
                if (strip_.fetch != Fetch::kCompact || strip_.shift != 0) {
                    collect<2>(strip_, rows_.row(row), collected);
                    words = collected;
                }
                widen_565(words, strip_.pixels, buffer);
            }
        }
        return buffer;
    }

    // A row sampled across, by slot. Inline, as it mostly is there already.
    [[gnu::always_inline]] const uint16_t *sums(int64_t row) {
        bool present;
        uint16_t *buffer = kept_.place(row, present);
        if (!present) fill_sums(row, buffer);
        return buffer;
    }

    [[gnu::noinline]] void fill_sums(int64_t row, uint16_t *buffer) {
        const uint8_t *source = bytes(row);
        if (strip_.wide) {
            sample_across<true>(strip_, source, buffer);
        } else {
            sample_across<false>(strip_, source, buffer);
        }
    }

    // The brackets of a vector of groups; the indices and weights of a group lie 2 kGroup bytes apart.
    template <bool Wide>
    [[gnu::always_inline]] static U16 across(const Strip &strip, const uint8_t *row, const uint16_t *offsets,
                                             ptrdiff_t at) {
        const U8 indices = load<U8>(strip.indices + at);
        const U8 weights = load<U8>(strip.weights + at);
        const U8 window = load_windows(row, offsets);
        if constexpr (Wide) {
            return weigh_pairs(shuffle(window, load_windows(row + kWindow, offsets), indices), weights);
        } else {
            return weigh_pairs(shuffle(window, indices), weights);
        }
    }

    // In the loops, members stand in locals: for all the compiler knows, a store of bytes may change them.
    template <bool Wide>
    static void sample_across(const Strip &strip, const uint8_t *row, uint16_t *out) {
        const uint16_t *offsets = strip.offsets;
        const ptrdiff_t end = 2 * strip.outputs;
        for (ptrdiff_t at = 0; at < end; at += kUnit, offsets += kLanes) {
            store(out + at / 2, across<Wide>(strip, row, offsets, at));
        }
    }

    template <bool Wide>
    void sample(int from, int to, uint8_t *out) const {
        const Strip &strip = strip_;
        const uint8_t *const upper = upper_, *const lower = lower_;
        const uint16_t *offsets = strip.offsets + from / kGroup;
        const U16 w1 = splat<U16>(lower_weight_), w0 = 8 - w1;
        for (ptrdiff_t at = 2 * from; at < 2 * to; at += 2 * kUnit, offsets += 2 * kLanes, out += kUnit) {
            const ptrdiff_t next = at + kUnit;
            const U16 a = across<Wide>(strip, upper, offsets, at) * w0 + across<Wide>(strip, lower, offsets, at) * w1;
            const U16 b = across<Wide>(strip, upper, offsets + kLanes, next) * w0 +
                          across<Wide>(strip, lower, offsets + kLanes, next) * w1;
            store(out, narrow_shifted<6>(a, b));
        }
    }

    void blend(int from, int to, uint8_t *out) const {
        constexpr int kHalf = kUnit / 2;
        const uint16_t *const upper = upper_sums_, *const lower = lower_sums_;
        const U16 w1 = splat<U16>(lower_weight_), w0 = 8 - w1;
        for (int i = from; i < to; i += kUnit, out += kUnit) {
            const U16 a = load<U16>(upper + i) * w0 + load<U16>(lower + i) * w1;
            const U16 b = load<U16>(upper + i + kHalf) * w0 + load<U16>(lower + i + kHalf) * w1;
            store(out, narrow_shifted<6>(a, b));
        }
    }

    const Strip &strip_;
    const SourceRows &rows_;
    const int shift_;
    const bool keep_;  // enlarging: a row serves more than one pair, so what is kept is sampled across already
    uint16_t lower_weight_ = 0;
    const uint8_t *upper_ = nullptr, *lower_ = nullptr;
    const uint16_t *upper_sums_ = nullptr, *lower_sums_ = nullptr;
    RowPair<uint8_t, kBufferBytes> collected_;
    RowPair<uint16_t, Strip::kMaxOutputs> kept_;
};

}  // namespace qorv::QORV_ISA
