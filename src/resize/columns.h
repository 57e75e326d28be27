// Where the outputs of a strip of columns come from. Kernel sources only.
//
// With fx and fy the eighths of a position, a sample is the sum of its four neighbours A B / C D
//   ((8 - fy) [(8 - fx) A + fx B] + fy [(8 - fx) C + fx D]) >> 6,
// exact in 16 bits as it stands: a bracket is at most 2040, the whole at most 16320.
//
// An output is one byte of one sampled pixel. Positions are turned once into windows of 16 source bytes, shuffle
// indices and weights for every group of eight outputs. For each row a shuffle then brings every output's two
// neighbours side by side and a multiply-add makes the bracket.
#pragma once

#include "core/simd.h"
#include "resize/resize_kernels.h"

namespace qorv::QORV_ISA {

constexpr int kGroup = 8;  // outputs of a 128-bit lane
constexpr int kLanes = kVectorBytes / 16;
constexpr int kUnit = kVectorBytes;                    // outputs of a vector of bytes: the least that is produced
constexpr int kWindow = 16;                            // bytes
constexpr int64_t kOne = int64_t{1} << kPositionBits;  // one (decimated) pixel
constexpr int64_t kMaxStep = 3 * kOne;                 // longer steps pick single pixels
constexpr int kMaxPixels = 3 * kStripColumns + 2;      // under a strip, neighbour of the last included
constexpr int kAnywhere = 0xFFFF;                      // a last window that pulls none back

// Pixels: their bytes in memory and, where that differs, as they are sampled.
template <int N>
struct BytePixel {
    static constexpr int kMemory = N, kSampled = N;
};
struct Pixel565 {
    static constexpr int kMemory = 2, kSampled = 4;
};

// Two vectors of sums narrow to one of bytes lane by lane. So that the bytes come out in order, of four groups the
// second and the third change places where a vector has two lanes.
[[gnu::always_inline]] inline int place_of(int group) {
    return kVectorBytes == 32 ? (group & ~3) | ((group & 1) << 1) | ((group >> 1) & 1) : group;
}

enum class Fetch {
    kDirect,   // windows on the source row itself
    kCompact,  // the pixels under the strip are brought together first
    kPick,     // the two neighbours of every column are brought together first
    kGather,   // the same in registers, of pixels of four bytes
};

// What is decided of a strip before anything is computed.
struct Strip {
    int count;  // columns
    Fetch fetch;
    bool wide;            // the outputs of a group come from two windows side by side
    bool kept;            // enlarging: a row serves more than one pair, so that its brackets are kept, for blend()
    Axis x;               // of its columns
    uint32_t fraction;    // of the first column's position
    int64_t first_pixel;  // under the strip, in decimated pixels
    int pixels;           // fetched for it
    int64_t neighbour;    // source pixels to the right neighbour
    ptrdiff_t origin;     // byte of a source row from which its windows count
    int lead;             // bytes from there to the first pixel
    int last_window;      // the highest offset of a window: one that would pass the row is pulled back to it
};

// The outputs of a group reach over at most so many bytes of the pixels that are looked at, with `pixel_step` from
// column to column.
template <class Pixel, int PerPixel>
int64_t group_span(int64_t pixel_step) {
    constexpr int kColumnsBetween = PerPixel == 1 ? 7 : PerPixel == 3 ? 3 : 1;  // the first and the last of a group
    return ((kColumnsBetween * pixel_step + kOne - 1) / kOne + 2) * Pixel::kSampled;
}

// The strip of `count` columns from `first` on, sampled into `PerPixel` outputs a pixel. Of a source row `readable`
// pixels may be read.
template <class Pixel, int PerPixel>
[[gnu::noinline]] Strip strip_of(const Grid &grid, int32_t first, int32_t count, int64_t readable) {
    constexpr bool kFourBytes = Pixel::kMemory == 4;  // of these two columns make a group
    const Axis &x = grid.x;
    const int64_t begin = first * x.step, end = begin + (count - 1) * x.step, first_pixel = begin >> kPositionBits;
    // Behind a step of 0 is a source of one pixel: its right neighbour, of weight 0, does not exist.
    const int64_t neighbour = x.step == 0 ? 0 : grid.neighbour;
    const bool usual = x.step == 0 || neighbour == int64_t{1} << x.shift;
    const bool pick = !kFourBytes && (x.step > kMaxStep || group_span<Pixel, PerPixel>(x.step) > 2 * kWindow || !usual);
    const bool wide = !kFourBytes && group_span<Pixel, PerPixel>(pick ? 2 * kOne : x.step) > kWindow;

    const ptrdiff_t start = static_cast<ptrdiff_t>(first_pixel << x.shift) * Pixel::kMemory;
    const ptrdiff_t last = static_cast<ptrdiff_t>(readable) * Pixel::kMemory - (wide ? 2 : 1) * kWindow;
    const bool direct = Pixel::kMemory == Pixel::kSampled && x.shift == 0 && last >= 0 &&
                        (kFourBytes ? usual && x.step <= 2 * kOne : !pick);
    const ptrdiff_t origin = !direct || start < last ? start : last;
    return {.count = count,
            .fetch = direct       ? Fetch::kDirect
                     : kFourBytes ? Fetch::kGather
                     : pick       ? Fetch::kPick
                                  : Fetch::kCompact,
            .wide = wide,
            .kept = grid.y.step < kOne,
            .x = x,
            .fraction = static_cast<uint32_t>(begin & (kOne - 1)),
            .first_pixel = first_pixel,
            .pixels = kFourBytes ? 0
                      : pick     ? 2 * count
                                 : static_cast<int>((end >> kPositionBits) - first_pixel) + (x.step != 0 ? 2 : 1),
            .neighbour = neighbour,
            .origin = origin,
            .lead = static_cast<int>(start - origin),
            .last_window = direct && last - origin < kAnywhere ? static_cast<int>(last - origin) : kAnywhere};
}

// A strip and, for pixels of `Pixel` sampled into `PerPixel` outputs each, where every output comes from. Outputs
// beyond the pixel's own bytes repeat its last.
template <class Pixel, int PerPixel>
struct Columns {
    static constexpr int kMaxOutputs = kStripColumns * PerPixel;

    const Strip strip;
    const int outputs;                       // whole units
    uint16_t offsets[kMaxOutputs / kGroup];  // of the windows, groups in the order of place_of()
    // For each vector of groups its shuffle indices, then its weights.
    alignas(kVectorBytes) uint8_t table[4 * kMaxOutputs];
    // Gathered: bytes from the origin to the left pixels of the columns, see load_neighbours().
    uint32_t places[Pixel::kMemory == 4 ? 2 * kMaxOutputs / kGroup : 2];

    explicit Columns(const Strip &decided)
        : strip(decided), outputs((decided.count * PerPixel + kUnit - 1) / kUnit * kUnit) {
        if constexpr (Pixel::kMemory == 4) {
            fill_pixels();
        } else {
            fill();
        }
    }

private:
    static constexpr int kBytes = Pixel::kSampled;

    uint16_t weight_unit() const { return strip.kept ? 1 << kBlendBits : 1; }

    [[gnu::noinline]] void fill() {
        using U16x8 = Vec<uint16_t, 16>;
        using U32x4 = Vec<uint32_t, 16>;
        const uint32_t step = static_cast<uint32_t>(strip.x.step);
        const U32x4 last_column = splat<U32x4>(static_cast<uint32_t>(strip.count - 1));
        const bool pairs = strip.fetch == Fetch::kPick;
        // A source of one pixel stands in for its own neighbour.
        const auto to_right = static_cast<uint16_t>(step != 0 || pairs ? kBytes : 0);
        for (int group = 0; group * kGroup < outputs; group++) {
            const int phase = group % PerPixel;
            const uint32_t block = static_cast<uint32_t>(group / PerPixel * kGroup);
            U32x4 a = load<U32x4>(kPattern.column[phase]) + block, b = load<U32x4>(kPattern.column[phase] + 4) + block;
            a = a < last_column ? a : last_column;
            b = b < last_column ? b : last_column;
            // Eighths from the strip's first pixel on. They fit: 13 bits hold 1024 pixels, a strip lies over 770.
            // Longer steps wrap, but a picked column needs the fraction alone.
            const U16x8 eighths = join((strip.fraction + a * step) >> kEighthBits & 0x1FFF,
                                       (strip.fraction + b * step) >> kEighthBits & 0x1FFF);
            const U16x8 pixel = pairs ? join(2 * a, 2 * b) : eighths >> 3;
            const int start = strip.lead + pixel[0] * kBytes;
            const int window = start < strip.last_window ? start : strip.last_window;
            const U16x8 left = pixel * static_cast<uint16_t>(kBytes) + load<U16x8>(kPattern.byte[phase]) +
                               static_cast<uint16_t>(strip.lead - window);
            const int place = place_of(group);
            offsets[place] = static_cast<uint16_t>(window);
            uint8_t *entry = table + place / kLanes * 2 * kVectorBytes + place % kLanes * 2 * kGroup;
            store(entry, pair_up(left, left + to_right));
            store(entry + kVectorBytes, pair_up((8 - (eighths & 7)) * weight_unit(), (eighths & 7) * weight_unit()));
        }
    }

    // Pixels of four bytes: a vector of groups has two columns a lane.
    void fill_pixels() {
        constexpr int kSecond = kPairsSideBySide ? 2 : 1;  // word of a lane's second column
        const bool gather = strip.fetch == Fetch::kGather;
        const auto step = static_cast<uint64_t>(strip.x.step);
        const auto whole = static_cast<uint32_t>(step >> kPositionBits),
                   part = static_cast<uint32_t>(step & (kOne - 1));
        const uint32_t fraction = strip.fraction, shift = static_cast<uint32_t>(strip.x.shift) + 2;
        const auto lead = static_cast<uint32_t>(strip.lead);
        const U32 last_column = splat<U32>(static_cast<uint32_t>(strip.count - 1));
        const U32 last_window = splat<U32>(static_cast<uint32_t>(strip.last_window));
        const U32 right = load<U32>(kPairs.right);
        // A source of one pixel stands in for its own neighbour.
        const U32 order = load<U32>(kPairs.order) + right * (gather ? 4 : step != 0 ? uint32_t{1} << shift : 0);
        uint8_t *entry = table, *const end = table + 4 * outputs;
        for (int group = 0; entry < end; group += kLanes, entry += 2 * kVectorBytes) {
            // place_of() moves four columns at a time where a vector has two lanes.
            U32 column =
                load<U32>(kPairs.column) + static_cast<uint32_t>(kLanes == 2 ? group / 4 * 8 + group % 4 : 2 * group);
            column = column < last_column ? column : last_column;
            const U32 low = fraction + column * part, eighths = low >> kEighthBits & 7;
            const U32 start = lead + ((column * whole + (low >> kPositionBits)) << shift);
            U32 left = load<U32>(kPairs.gathered);  // from the start of what is fetched
            if (gather) {
                for (int i = 0; i < kLanes; i++) {
                    places[2 * group + i] = start[4 * i];
                    places[2 * group + kLanes + i] = start[4 * i + kSecond];
                }
            } else {
                U32 window = first_of_lane(start);
                window = window < last_window ? window : last_window;
                for (int i = 0; i < kLanes; i++) offsets[group + i] = static_cast<uint16_t>(window[4 * i]);
                left = start - window;
            }
            store(entry, left * 0x01010101 + order);
            store(entry + kVectorBytes, (right * eighths + (right ^ 0x01010101) * (8 - eighths)) * weight_unit());
        }
    }

    [[gnu::always_inline]] static U32 first_of_lane(U32 v) {
#if QORV_VECTOR_BYTES == 32
        return __builtin_shufflevector(v, v, 0, 0, 0, 0, 4, 4, 4, 4);
#else
        return __builtin_shufflevector(v, v, 0, 0, 0, 0);
#endif
    }

    // Byte and column of each output of eight columns.
    struct Pattern {
        uint16_t byte[PerPixel][kGroup];
        uint32_t column[PerPixel][kGroup];
    };
    static constexpr Pattern kPattern = [] {
        Pattern pattern{};
        for (int i = 0; i < PerPixel * kGroup; i++) {
            const int byte = i % PerPixel;
            pattern.byte[i / kGroup][i % kGroup] = static_cast<uint16_t>(byte < kBytes ? byte : kBytes - 1);
            pattern.column[i / kGroup][i % kGroup] = static_cast<uint32_t>(i / PerPixel);
        }
        return pattern;
    }();

    // The pairs of pixels of four bytes as pair_up() lays them, in words of four bytes: of each the column, where its
    // pixel lies in a lane of gathered pairs, and byte by byte the place within the pixel and 1 for the right pixel's.
    struct Pairs {
        alignas(kVectorBytes) uint32_t column[kUnit / 4], gathered[kUnit / 4], order[kUnit / 4], right[kUnit / 4];
    };
    static constexpr Pairs kPairs = [] {
        Pairs pairs{};
        for (int i = 0; i < kUnit; i++) {
            const int lane = i / 16, output = kPairsSideBySide ? i % 16 / 2 : i % 8;
            const bool right = kPairsSideBySide ? i % 2 != 0 : i % 16 >= 8;
            pairs.column[i / 4] = static_cast<uint32_t>(4 * lane + output / 4);
            pairs.gathered[i / 4] = static_cast<uint32_t>(8 * (output / 4));
            pairs.order[i / 4] |= static_cast<uint32_t>(output % 4) << (8 * (i % 4));
            pairs.right[i / 4] |= uint32_t{right} << (8 * (i % 4));
        }
        return pairs;
    }();
};

}  // namespace qorv::QORV_ISA
