// Memory of a call, in buffers of exactly the size that the call may touch.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

#include "support/noise.h"

namespace fuzz {

using Buffers = std::vector<std::vector<uint8_t>>;

// Rows of bytes in one of the buffers, alone or over others.
struct Region {
    size_t buffer;
    int64_t at;  // of the first row's first byte
    int64_t pitch, row_bytes, rows;

    int64_t first_byte() const { return at + std::min<int64_t>(0, (rows - 1) * pitch); }
    int64_t end() const { return at + std::max<int64_t>(0, (rows - 1) * pitch) + row_bytes; }
    bool empty() const { return rows <= 0 || row_bytes <= 0; }
    uint8_t *in(Buffers &buffers) const {
        static uint8_t before_nothing[1];
        return empty() ? before_nothing + 1 : buffers[buffer].data() + at;
    }
};

// Moves the regions of every buffer by an even number of bytes, so that it begins with the first of them, and makes the
// buffers, filled with random numbers.
inline Buffers make_buffers(std::vector<Region> &regions, uint32_t seed) {
    Buffers buffers(regions.size());
    test::Noise noise{seed};
    for (size_t i = 0; i < buffers.size(); i++) {
        int64_t first = INT64_MAX, end = INT64_MIN;
        for (const Region &r : regions) {
            if (r.buffer != i || r.empty()) continue;
            first = std::min(first, r.first_byte() & ~int64_t{1});
            end = std::max(end, r.end());
        }
        if (first == INT64_MAX) continue;
        for (Region &r : regions) r.at -= r.buffer == i ? first : 0;
        buffers[i] = std::vector<uint8_t>(static_cast<size_t>(end - first));
        std::generate(buffers[i].begin(), buffers[i].end(), std::ref(noise));
    }
    return buffers;
}

}  // namespace fuzz
