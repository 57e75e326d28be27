// Planes brought to other sizes, with every sample where it belongs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tool {

// The weights of the source samples that make each output sample along one axis.
class SampleAxis {
public:
    // Output sample i lies at step * i + first, in source samples. Linear interpolation; where more than one source
    // sample goes into an output, the triangle is as wide as the step, so that nothing is skipped.
    SampleAxis(uint32_t from, uint32_t to, double step, double first);

    static constexpr uint32_t kOne = 256;  // the sum of the weights of an output

    uint32_t outputs() const { return static_cast<uint32_t>(begins_.size()); }
    uint32_t taps() const { return taps_; }  // of every output
    uint32_t begin(uint32_t output) const { return begins_[output]; }
    const uint32_t *weights(uint32_t output) const { return &weights_[size_t{output} * taps_]; }

private:
    uint32_t taps_;
    std::vector<uint32_t> begins_, weights_;
};

// Makes rows of a plane of `T` at other sizes. A row of sums is kept: not for several threads at once.
class PlaneSampler {
public:
    PlaneSampler(SampleAxis across, SampleAxis down, uint32_t src_width);

    uint32_t height() const { return down_.outputs(); }
    // Output row y, from a plane without padding between its rows.
    template <class T>
    void row(const T *plane, uint32_t y, T *to);

private:
    SampleAxis across_, down_;
    uint32_t src_width_;
    std::vector<uint32_t> sums_;  // of the rows that go into an output row, times 256
};

}  // namespace tool
