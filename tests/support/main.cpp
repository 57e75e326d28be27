#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "support/random.h"

namespace test {

uint64_t seed() {
    static const uint64_t value = [] {
        const char *given = std::getenv("QORV_TEST_SEED");
        return given != nullptr ? std::strtoull(given, nullptr, 0) : (uint64_t{std::random_device{}()} << 32 | 1);
    }();
    return value;
}

}  // namespace test

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    std::printf("QORV_TEST_SEED=%" PRIu64 "\n", test::seed());
    return RUN_ALL_TESTS();
}
