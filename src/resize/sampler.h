// Bilinear sampling of the rows under a strip of columns. Kernel sources only.
#pragma once

#include "resize/collect.h"

namespace qorv::QORV_ISA {

// Two rows by their numbers; the rows of a picture are asked for in ascending order.
template <class T, int N>
struct RowPair {
    int64_t number[2] = {-1, -1};
    alignas(kVectorBytes) T row[2][N];

    // The place of a row; `present` says whether it is there already. The row that it takes the place of is the upper.
    [[gnu::always_inline]] T *find(int64_t wanted, bool &present) {
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

// Bytes of two rows of brackets, kBlendBits higher, the second weighed by `Eighths`; `count` is a multiple of kUnit.
template <int Eighths>
void blend(const uint16_t *first, const uint16_t *second, int count, uint8_t *out) {
    constexpr int kHalf = kUnit / 2;
    const auto unit = [&](int i) __attribute__((always_inline)) {
        const U16 a = load<U16>(first + i), b = load<U16>(first + i + kHalf);
        if constexpr (Eighths == 0) return narrow_shifted<kBlendBits + 3>(a, b);
        return narrow_blend<Eighths>(a, load<U16>(second + i), b, load<U16>(second + i + kHalf));
    };
    int i = 0;
    for (; i + kUnit < count; i += 2 * kUnit) {  // two at a time, as above
        const U8 one = unit(i), other = unit(i + kUnit);
        store(out + i, one);
        store(out + i + kUnit, other);
    }
    if (i < count) store(out + i, unit(i));
}

// A row of more than half the weight goes first.
constexpr void (*kBlends[])(const uint16_t *first, const uint16_t *second, int count, uint8_t *out) = {
    blend<0>, blend<1>, blend<2>, blend<3>, blend<4>};

// Where in a source row the outputs of a group come from. Every second pixel is gathered along with the one behind the
// right neighbour, or the one before the left.
enum class Reach { kOneWindow, kTwoWindows, kGathered, kSecondAndNext, kSecondAndLast };

// The pairs of neighbours of a vector of groups.
template <Reach R, class Outputs>
[[gnu::always_inline]] inline U8 pairs(const Outputs &columns, const uint8_t *row, ptrdiff_t group, U8 indices) {
    if constexpr (R == Reach::kGathered) {
        return shuffle(load_neighbours(row, columns.places + 2 * group, columns.strip.neighbour * 4), indices);
    } else if constexpr (R == Reach::kSecondAndNext || R == Reach::kSecondAndLast) {
        constexpr int kBefore = R == Reach::kSecondAndLast ? 4 : 0;
        return shuffle(load_second_neighbours<kBefore>(row, columns.places + 2 * group), indices);
    } else if constexpr (R == Reach::kTwoWindows) {
        const uint16_t *offsets = columns.offsets + group;
        return shuffle(load_windows(row, offsets), load_windows(row + kWindow, offsets), indices);
    } else {
        return shuffle(load_windows(row, columns.offsets + group), indices);
    }
}

// A place in each of several planes.
template <int Planes>
struct Places {
    const uint8_t *of[Planes] = {};
};

// Two rows of samples in each plane, the lower weighed by `eighths`. For all the compiler knows a store of bytes may
// change what is not in a local.
template <class Outputs, int Planes = 1>
struct RowsAcross {
    const Outputs &columns;
    const Places<Planes> upper, lower;
    const U16 lower_weight, upper_weight;

    [[gnu::always_inline]] RowsAcross(const Outputs &outputs, const Places<Planes> &first, const Places<Planes> &second,
                                      uint16_t eighths)
        : columns(outputs),
          upper(first),
          lower(second),
          lower_weight(splat<U16>(eighths)),
          upper_weight(8 - lower_weight) {}

    // The sums of a vector of groups.
    template <Reach R>
    [[gnu::always_inline]] U16 sums(ptrdiff_t group, int plane) const {
        const uint8_t *entry = columns.table + group * 4 * kGroup;
        const U8 indices = load<U8>(entry), weights = load<U8>(entry + kVectorBytes);
        return weigh_two_pairs(pairs<R>(columns, upper.of[plane], group, indices),
                               pairs<R>(columns, lower.of[plane], group, indices), weights, upper_weight, lower_weight);
    }

    // The unit of outputs that begins with a group.
    template <Reach R>
    [[gnu::always_inline]] U8 unit(ptrdiff_t group, int plane = 0) const {
        return narrow_shifted<6>(sums<R>(group, plane), sums<R>(group + kLanes, plane));
    }
};

// A row of each plane sampled across, the sums of one plane behind those of the other.
template <Reach R, class Outputs, int Planes>
void sample_across(const Outputs &columns, const Places<Planes> &places, uint16_t *out) {
    const Places<Planes> rows = places;  // in registers, whatever is stored
    const uint8_t *entry = columns.table;
    const ptrdiff_t outputs = columns.outputs;
    // Two vectors at a time, of which a processor that keeps the order of instructions has one to do while it waits
    // for the other.
    for (ptrdiff_t group = 0; group * kGroup < outputs; group += 2 * kLanes, entry += 4 * kVectorBytes) {
        const U8 first_indices = load<U8>(entry), first_weights = load<U8>(entry + kVectorBytes);
        const U8 indices = load<U8>(entry + 2 * kVectorBytes), weights = load<U8>(entry + 3 * kVectorBytes);
        U16 sums[Planes][2];
#pragma GCC unroll 4
        for (int i = 0; i < Planes; i++) {
            const U8 first = pairs<R>(columns, rows.of[i], group, first_indices);
            const U8 second = pairs<R>(columns, rows.of[i], group + kLanes, indices);
            sums[i][0] = weigh_pairs(first, first_weights);
            sums[i][1] = weigh_pairs(second, weights);
        }
#pragma GCC unroll 4
        for (int i = 0; i < Planes; i++) {
            store(out + i * outputs + group * kGroup, sums[i][0]);
            store(out + i * outputs + (group + kLanes) * kGroup, sums[i][1]);
        }
    }
}

// Samples the rows of planes of one size, or of a packed picture, under one strip. Planes that are sampled together
// share what is worked out of places and weights.
template <class Pixel, int PerPixel, int Planes = 1>
class Sampler {
public:
    using Outputs = Columns<Pixel, PerPixel>;

    Sampler(const Outputs &columns, const SourceRows *rows, const Axis &y)
        : columns_(columns), rows_(rows), shift_(y.shift) {}

    // Moves to the pair of rows at a position. False if that gives the same samples as the one before.
    [[gnu::always_inline]] bool seek(int64_t y) {
        if (y >> kEighthBits == eighth_) return false;
        eighth_ = y >> kEighthBits;
        const RowNumbers rows(y, shift_);
        lower_weight_ = static_cast<uint16_t>(rows.eighths);
        if (kKeepAlways || columns_.strip.kept) {
            sums_[0] = sums(rows.upper);
            sums_[1] = sums(rows.lower);
        } else {
            bases_[0] = window_bases(rows.upper);
            bases_[1] = window_bases(rows.lower);
        }
        return true;
    }

    // The outputs from..to of that pair of rows; both are multiples of kUnit. Of several planes all outputs, those of
    // one behind those of the other.
    void write(int from, int to, uint8_t *out) const {
        if (kKeepAlways || columns_.strip.kept) {
            const int first = lower_weight_ > 4 ? 1 : 0;
            kBlends[first == 1 ? 8 - lower_weight_ : lower_weight_](sums_[first] + from, sums_[1 - first] + from,
                                                                    Planes * (to - from), out);
        } else if (columns_.strip.wide) {
            sample<Reach::kTwoWindows>(from, to, out);
        } else {
            sample<Reach::kOneWindow>(from, to, out);
        }
    }

private:
    // Pixels of four bytes come here to be enlarged alone.
    static constexpr bool kKeepAlways = Pixel::kMemory == 4;
    static constexpr int kBufferBytes = Pixel::kMemory == 4 ? 1 : (kMaxPixels + kVectorBytes) * Pixel::kSampled;

    // What the windows of the strip count from in a row.
    [[gnu::always_inline]] Places<Planes> window_bases(int64_t row) {
        const Strip &strip = columns_.strip;
        if (Pixel::kMemory != 4 && strip.fetch != Fetch::kDirect) return collected(row);
        Places<Planes> bases;
#pragma GCC unroll 4
        for (int i = 0; i < Planes; i++) bases.of[i] = rows_[i].row(row) + strip.origin;
        return bases;
    }

    [[gnu::noinline]] Places<Planes> collected(int64_t row) {
        bool present;
        uint8_t *buffer = collected_.find(row, present);
        Places<Planes> bases;
        for (int i = 0; i < Planes; i++, buffer += kBufferBytes) {
            if (!present) collect_row(rows_[i].row(row), buffer);
            bases.of[i] = buffer;
        }
        return bases;
    }

    void collect_row(const uint8_t *row, uint8_t *buffer) const {
        const Strip &strip = columns_.strip;
        if constexpr (Pixel::kMemory == Pixel::kSampled) {
            if constexpr (Pixel::kMemory != 4) collect<Pixel::kMemory>(strip, row, buffer);
        } else {
            uint8_t collected[kBufferBytes / 2];
            const uint8_t *words = row + 2 * strip.first_pixel;
            if (strip.fetch != Fetch::kCompact || strip.x.shift != 0) {
                collect<2>(strip, row, collected);
                words = collected;
            }
            widen_565(words, strip.pixels, buffer);
        }
    }

    // A row sampled across, groups in the order of place_of(). Inline, as it mostly is there already.
    [[gnu::always_inline]] const uint16_t *sums(int64_t row) {
        bool present;
        uint16_t *buffer = kept_.find(row, present);
        if (!present) fill_sums(row, buffer);
        return buffer;
    }

    [[gnu::noinline]] void fill_sums(int64_t row, uint16_t *buffer) {
        const Places<Planes> source = window_bases(row);
        if (columns_.strip.fetch == Fetch::kGather) {
            if constexpr (Pixel::kMemory == 4) sample_across<Reach::kGathered>(columns_, source, buffer);
        } else if (Pixel::kMemory != 4 && columns_.strip.wide) {
            // Seldom, so that planes need not have a function of their own.
            for (int i = 0; i < Planes; i++) {
                const Places<1> plane = {{source.of[i]}};
                sample_across<Reach::kTwoWindows>(columns_, plane, buffer + i * columns_.outputs);
            }
        } else {
            sample_across<Reach::kOneWindow>(columns_, source, buffer);
        }
    }

    template <Reach R>
    void sample(int from, int to, uint8_t *out) const {
        const RowsAcross<Outputs, Planes> rows(columns_, bases_[0], bases_[1], lower_weight_);
        const ptrdiff_t end = to / kGroup, outputs = to - from;
        for (ptrdiff_t group = from / kGroup; group < end; group += 2 * kLanes, out += kUnit) {
            U8 units[Planes];
#pragma GCC unroll 4
            for (int i = 0; i < Planes; i++) units[i] = rows.template unit<R>(group, i);
#pragma GCC unroll 4
            for (int i = 0; i < Planes; i++) store(out + i * outputs, units[i]);
        }
    }

    const Outputs &columns_;
    const SourceRows *rows_;  // of each plane
    const int shift_;
    int64_t eighth_ = -1;
    uint16_t lower_weight_ = 0;
    // Of the upper row and of the lower one.
    Places<Planes> bases_[2];
    const uint16_t *sums_[2] = {};
    RowPair<uint8_t, Planes * kBufferBytes> collected_;
    RowPair<uint16_t, Planes * Outputs::kMaxOutputs> kept_;
};

}  // namespace qorv::QORV_ISA
