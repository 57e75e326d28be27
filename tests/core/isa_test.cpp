// Which kernel set the library has chosen by the time a program starts, against what the system says of the processor.
#include "core/isa.h"

#include <gtest/gtest.h>
#include <sys/auxv.h>

#include <fstream>
#include <sstream>
#include <string>

namespace {

// Whether the kernel names all of these among the processor's features.
[[maybe_unused]] bool processor_has(std::istringstream features) {
    std::ifstream file("/proc/cpuinfo");
    std::string flags;
    while (flags.rfind("flags", 0) != 0 && std::getline(file, flags)) {
    }
    flags += ' ';
    for (std::string feature; features >> feature;) {
        if (flags.find(" " + feature + " ") == std::string::npos) return false;
    }
    return true;
}

TEST(KernelSet, IsTheBestThatTheProcessorHas) {
#if defined(QORV_HAVE_v2)
    const bool v3 = processor_has(std::istringstream("avx2 bmi1 bmi2 f16c fma abm movbe"));
    EXPECT_STREQ(qorv::active.name, v3 ? "v3" : "v2");
#elif defined(QORV_HAVE_neon)
    const bool dot_products = (getauxval(AT_HWCAP) >> 20 & 1) != 0;  // HWCAP_ASIMDDP
    EXPECT_STREQ(qorv::active.name, dot_products ? "dotprod" : "neon");
#else
    EXPECT_STREQ(qorv::active.name, "plain");
#endif
}

}  // namespace
