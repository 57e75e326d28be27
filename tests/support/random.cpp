#include "support/random.h"

#include <cstdlib>
#include <functional>
#include <random>
#include <string_view>

namespace test {

namespace {

Random numbers;

}  // namespace

uint64_t seed() {
    static const uint64_t value = [] {
        const char *given = std::getenv("QORV_TEST_SEED");
        return given != nullptr ? std::strtoull(given, nullptr, 0) : (uint64_t{std::random_device{}()} << 32 | 1);
    }();
    return value;
}

Random &random_numbers() {
    return numbers;
}

void restart_random_numbers(const char *test_name) {
    numbers = Random(std::hash<std::string_view>{}(test_name));
}

}  // namespace test
