#include "tools/video/sampler.h"

#include <algorithm>
#include <cmath>

namespace tool {

// Weights are rounded so that their running sum stays exact to half a unit: together they are kOne whatever their
// number.
SampleAxis::SampleAxis(uint32_t from, uint32_t to, double step, double first) {
    const double reach = std::max(1.0, step);  // from the triangle's top to its foot
    taps_ = std::min(from, static_cast<uint32_t>(std::ceil(2 * reach)) + 1);
    for (uint32_t i = 0; i < to; i++) {
        const double centre = std::clamp(step * i + first, 0.0, from - 1.0);
        const double lowest = std::floor(centre - reach) + 1;
        const auto begin = static_cast<uint32_t>(std::clamp(lowest, 0.0, static_cast<double>(from - taps_)));
        std::vector<double> heights(taps_);
        double sum = 0;
        for (uint32_t k = 0; k < taps_; k++) sum += heights[k] = std::max(0.0, reach - std::abs(begin + k - centre));
        double running = 0;
        uint32_t given = 0;
        for (uint32_t k = 0; k < taps_; k++) {
            running += heights[k];
            const auto due = static_cast<uint32_t>(std::lround(kOne * running / sum));
            weights_.push_back(due - given);
            given = due;
        }
        begins_.push_back(begin);
    }
}

PlaneSampler::PlaneSampler(SampleAxis across, SampleAxis down, uint32_t src_width)
    : across_(std::move(across)), down_(std::move(down)), src_width_(src_width), sums_(src_width) {}

// 65535 x 256 x 256 and the rounding fit in 32 bits.
template <class T>
void PlaneSampler::row(const T *plane, uint32_t y, T *to) {
    std::fill(sums_.begin(), sums_.end(), 0);
    for (uint32_t k = 0; k < down_.taps(); k++) {
        const uint32_t weight = down_.weights(y)[k];
        const T *const from = plane + size_t{down_.begin(y) + k} * src_width_;
        if (weight == 0) continue;
        for (uint32_t x = 0; x < src_width_; x++) sums_[x] += weight * from[x];
    }
    constexpr uint32_t kUnit = SampleAxis::kOne * SampleAxis::kOne;
    for (uint32_t x = 0; x < across_.outputs(); x++) {
        const uint32_t *const from = &sums_[across_.begin(x)], *const weights = across_.weights(x);
        uint32_t sum = kUnit / 2;
        for (uint32_t k = 0; k < across_.taps(); k++) sum += weights[k] * from[k];
        to[x] = static_cast<T>(sum / kUnit);
    }
}

template void PlaneSampler::row(const uint8_t *, uint32_t, uint8_t *);
template void PlaneSampler::row(const uint16_t *, uint32_t, uint16_t *);

}  // namespace tool
