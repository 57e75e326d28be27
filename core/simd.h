// Vector primitives. A kernel is written once over the types below: arithmetic, comparison and shifts are the compiler's
// vector extensions, everything that they do badly is a primitive with one version per architecture. Kernel sources
// alone include this header: all of it lives in the namespace of the instruction set that is being compiled.
//
// Shuffles work within 128-bit lanes on every architecture, so a kernel is written for lanes and for any number of them.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#if defined(QORV_ISA_IS_v2) || defined(QORV_ISA_IS_v3)
#define QORV_SIMD_X86 1
#include <immintrin.h>
#elif defined(QORV_ISA_IS_neon)
#define QORV_SIMD_NEON 1
#include <arm_neon.h>
#else
#define QORV_SIMD_PLAIN 1
#endif

namespace qorv::QORV_ISA {

#if defined(QORV_ISA_IS_v3)
constexpr int kVectorBytes = 32;
#else
constexpr int kVectorBytes = 16;
#endif

template <class T, int Bytes>
struct VecOf {
    typedef T type __attribute__((vector_size(Bytes)));
};
// A vector of `Bytes` bytes: 16 everywhere, the full register (32 bytes with AVX2) by default.
template <class T, int Bytes = kVectorBytes>
using Vec = typename VecOf<T, Bytes>::type;

using U8 = Vec<uint8_t>;
using I8 = Vec<int8_t>;
using U16 = Vec<uint16_t>;
using I16 = Vec<int16_t>;
using U32 = Vec<uint32_t>;
using I32 = Vec<int32_t>;

template <class V>
[[gnu::always_inline]] inline V load(const void *p) {
    V v;
    memcpy(&v, p, sizeof v);
    return v;
}

template <class V>
[[gnu::always_inline]] inline void store(void *p, const V &v) {
    memcpy(p, &v, sizeof v);
}

// The type of a vector's lanes.
template <class V>
using Lane = __typeof__(V{}[0]);

// The same value in every lane.
template <class V>
[[gnu::always_inline]] inline V splat(Lane<V> value) {
    return V{} + value;
}

}  // namespace qorv::QORV_ISA

#include "core/simd_neon.h"
#include "core/simd_plain.h"
#include "core/simd_x86.h"
