// Pictures for the benchmarks: planes or packed rows, aligned as the pickiest peer wants them.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "compare.h"

namespace bench {

// Planes (or one packed plane) of noise with rows of whole cache lines.
class Planes {
public:
    // Bytes that the bits of `mask`, repeated, let through: 0x03FF03FF for words of 10 bits.
    Planes(int count, int w, int h, int bytes_per_pixel, uint32_t mask = 0xFFFFFFFF) {
        for (int i = 0; i < count; i++) {
            const size_t stride = (static_cast<size_t>(w * bytes_per_pixel) + 63) / 64 * 64;
            const size_t bytes = stride * static_cast<size_t>(h) + 64;
            memory_.emplace_back(static_cast<uint8_t *>(std::aligned_alloc(64, (bytes + 63) / 64 * 64)), &std::free);
            const std::vector<uint8_t> data = noise(bytes, static_cast<uint32_t>(i) + 1);
            auto *p = memory_.back().get();
            for (size_t k = 0; k < bytes; k++) p[k] = static_cast<uint8_t>(data[k] & mask >> 8 * (k % 4));
            p_.push_back(p);
            stride_.push_back(static_cast<int>(stride));
        }
    }
    uint8_t *operator[](int i) const { return p_[static_cast<size_t>(i)]; }
    int stride(int i = 0) const { return stride_[static_cast<size_t>(i)]; }

private:
    std::vector<std::unique_ptr<uint8_t, void (*)(void *)>> memory_;
    std::vector<uint8_t *> p_;
    std::vector<int> stride_;
};

}  // namespace bench
