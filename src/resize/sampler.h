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

// Samples the rows of one plane, or of a packed picture, under one strip.
template <class Pixel, int PerPixel>
class Sampler {
public:
    using Outputs = Columns<Pixel, PerPixel>;

    Sampler(const Outputs &columns, const SourceRows &rows, const Axis &y)
        : columns_(columns), rows_(rows), shift_(y.shift), keep_(y.step < kOne) {}

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
            upper_ = window_base(upper);
            lower_ = window_base(lower);
        }
    }

    // The outputs from..to of that pair of rows; both are multiples of kUnit.
    void write(int from, int to, uint8_t *out) const {
        if (keep_) {
            blend(from, to, out);
        } else if (columns_.strip.wide) {
            sample<true>(from, to, out);
        } else {
            sample<false>(from, to, out);
        }
    }

private:
    static constexpr int kLanes = kVectorBytes / 16;
    static constexpr int kBufferBytes = (kMaxPixels + kVectorBytes) * Pixel::kSampled;

    // What the windows of the strip count from in a row.
    const uint8_t *window_base(int64_t row) {
        const Strip &strip = columns_.strip;
        if (strip.fetch == Fetch::kDirect) return rows_.row(row) + strip.origin;
        bool present;
        uint8_t *buffer = collected_.find(row, present);
        if (!present) {
            if constexpr (Pixel::kMemory == Pixel::kSampled) {
                collect<Pixel::kMemory>(strip, rows_.row(row), buffer);
            } else {
                uint8_t collected[kBufferBytes / 2];
                const uint8_t *words = rows_.row(row) + 2 * strip.first_pixel;
                if (strip.fetch != Fetch::kCompact || strip.x.shift != 0) {
                    collect<2>(strip, rows_.row(row), collected);
                    words = collected;
                }
                widen_565(words, strip.pixels, buffer);
            }
        }
        return buffer;
    }

    // A row sampled across, groups in the order of place_of(). Inline, as it mostly is there already.
    [[gnu::always_inline]] const uint16_t *sums(int64_t row) {
        bool present;
        uint16_t *buffer = kept_.find(row, present);
        if (!present) fill_sums(row, buffer);
        return buffer;
    }

    [[gnu::noinline]] void fill_sums(int64_t row, uint16_t *buffer) {
        const uint8_t *source = window_base(row);
        if (columns_.strip.wide) {
            sample_across<true>(columns_, source, buffer);
        } else {
            sample_across<false>(columns_, source, buffer);
        }
    }

    // The brackets of a vector of groups; the indices and weights of a group lie 2 kGroup bytes apart.
    template <bool Wide>
    [[gnu::always_inline]] static U16 across(const Outputs &columns, const uint8_t *row, const uint16_t *offsets,
                                             ptrdiff_t at) {
        const U8 indices = load<U8>(columns.indices + at);
        const U8 weights = load<U8>(columns.weights + at);
        const U8 window = load_windows(row, offsets);
        if constexpr (Wide) {
            return weigh_pairs(shuffle(window, load_windows(row + kWindow, offsets), indices), weights);
        } else {
            return weigh_pairs(shuffle(window, indices), weights);
        }
    }

    // In the loops, members stand in locals: for all the compiler knows, a store of bytes may change them.
    template <bool Wide>
    static void sample_across(const Outputs &columns, const uint8_t *row, uint16_t *out) {
        const uint16_t *offsets = columns.offsets;
        const ptrdiff_t end = 2 * columns.outputs;
        for (ptrdiff_t at = 0; at < end; at += kUnit, offsets += kLanes) {
            store(out + at / 2, across<Wide>(columns, row, offsets, at));
        }
    }

    template <bool Wide>
    void sample(int from, int to, uint8_t *out) const {
        const Outputs &columns = columns_;
        const uint8_t *const upper = upper_, *const lower = lower_;
        const uint16_t *offsets = columns.offsets + from / kGroup;
        const U16 w1 = splat<U16>(lower_weight_), w0 = 8 - w1;
        for (ptrdiff_t at = 2 * from; at < 2 * to; at += 2 * kUnit, offsets += 2 * kLanes, out += kUnit) {
            const ptrdiff_t next = at + kUnit;
            const U16 a =
                across<Wide>(columns, upper, offsets, at) * w0 + across<Wide>(columns, lower, offsets, at) * w1;
            const U16 b = across<Wide>(columns, upper, offsets + kLanes, next) * w0 +
                          across<Wide>(columns, lower, offsets + kLanes, next) * w1;
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

    const Outputs &columns_;
    const SourceRows &rows_;
    const int shift_;
    const bool keep_;  // enlarging: a row serves more than one pair, so what is kept is sampled across already
    uint16_t lower_weight_ = 0;
    const uint8_t *upper_ = nullptr, *lower_ = nullptr;
    const uint16_t *upper_sums_ = nullptr, *lower_sums_ = nullptr;
    RowPair<uint8_t, kBufferBytes> collected_;
    RowPair<uint16_t, Outputs::kMaxOutputs> kept_;
};

}  // namespace qorv::QORV_ISA
