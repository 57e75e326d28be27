// Random numbers whose seed is printed at the start and with a crash, and can be set with QORV_TEST_SEED.
#pragma once

#include <cstdint>

namespace test {

uint64_t seed();  // of this run

class Random {
public:
    Random() : state_(seed()) {}
    explicit Random(uint64_t stream) : state_(seed() ^ (stream * kGoldenRatio)) {}

    uint32_t operator()() {  // splitmix64, upper half
        state_ += kGoldenRatio;
        uint64_t z = state_;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return static_cast<uint32_t>((z ^ (z >> 31)) >> 32);
    }
    uint32_t below(uint32_t limit) { return static_cast<uint32_t>((uint64_t{(*this)()} * limit) >> 32); }
    int32_t between(int32_t low, int32_t high) {  // both included
        return low + static_cast<int32_t>(below(static_cast<uint32_t>(high - low) + 1));
    }

private:
    static constexpr uint64_t kGoldenRatio = 0x9E3779B97F4A7C15u;  // times 2^64
    uint64_t state_;
};

// The running test's generator: it begins anew with each test, from the seed and the test's name, so that a seed
// repeats whatever other tests run.
Random &random_numbers();
void restart_random_numbers(const char *test_name);

}  // namespace test
