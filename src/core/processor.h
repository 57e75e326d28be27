// What the processor can do beyond the baseline of its architecture. Outside the library, tests and benchmarks ask here
// as well.
#pragma once

#if defined(__x86_64__)

#include <cpuid.h>

namespace qorv {

// Whether it has all that -march=x86-64-v3 lets a compiler use. Three of these have names that not all compilers know,
// nor does every one know "x86-64-v3". __builtin_cpu_init() has to come first in a constructor.
inline bool has_x86_64_v3() {
    if (!__builtin_cpu_supports("avx2") || !__builtin_cpu_supports("fma") || !__builtin_cpu_supports("bmi") ||
        !__builtin_cpu_supports("bmi2")) {
        return false;
    }
    constexpr unsigned kMovbe = 1U << 22, kF16c = 1U << 29, kLzcnt = 1U << 5;
    unsigned a, b, basic, extended, d;
    return __get_cpuid(1, &a, &b, &basic, &d) != 0 && (basic & kMovbe) != 0 && (basic & kF16c) != 0 &&
           __get_cpuid(0x80000001, &a, &b, &extended, &d) != 0 && (extended & kLzcnt) != 0;
}

}  // namespace qorv

#endif

#if defined(__aarch64__)

#include <sys/auxv.h>

namespace qorv {

// Whether it has UDOT and SDOT.
inline bool has_dot_products() {
    constexpr unsigned long kAsimdDp = 1UL << 20;  // HWCAP_ASIMDDP, which older headers lack
    return (getauxval(AT_HWCAP) & kAsimdDp) != 0;
}

}  // namespace qorv

#endif
