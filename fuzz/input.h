// A fuzzer's input read as a sequence of numbers; past its end they are 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace fuzz {

class Input {
public:
    Input(const uint8_t *data, size_t size) : p_(data), end_(data + size) {}

    bool empty() const { return p_ == end_; }
    uint8_t byte() { return empty() ? uint8_t{0} : *p_++; }
    uint32_t word() {
        uint32_t value = 0;
        for (int i = 0; i < 4; i++) value = value << 8 | byte();
        return value;
    }
    // From `low` to `high`, both included.
    int32_t between(int32_t low, int32_t high) {
        const uint32_t span = static_cast<uint32_t>(high) - static_cast<uint32_t>(low) + 1;
        const uint32_t value = span <= 256 ? byte() : word();
        return low + static_cast<int32_t>(span == 0 ? value : value % span);
    }
    // A buffer of its own, so that one byte too far is seen.
    std::vector<uint8_t> bytes(size_t n) {
        std::vector<uint8_t> taken(n);
        for (uint8_t &b : taken) b = byte();
        taken.shrink_to_fit();
        return taken;
    }
    std::vector<uint8_t> rest() { return bytes(static_cast<size_t>(end_ - p_)); }

private:
    const uint8_t *p_, *end_;
};

// What must hold whatever the input is.
inline void require(bool holds, const char *what) {
    if (holds) return;
    std::fprintf(stderr, "violated: %s\n", what);
    std::abort();
}

}  // namespace fuzz
