// Vector types and primitives. A kernel is written once over them: arithmetic, comparison and shifts are the compiler's
// vector extensions; what the compiler does badly is a primitive with one version per architecture. What each primitive
// gives is said in core/simd_plain.h.
//
// Kernel sources alone include this header. All of it lies in the namespace of the instruction set that is compiled.
//
// A register has one or two lanes of 128 bits. Shuffles stay within a lane, on every architecture.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "core/hide_origin.h"

// What each kernel set is built with: whose primitives, and the bytes of its register.
#if defined(QORV_ISA_IS_v3)
#define QORV_SIMD_X86 1
#define QORV_VECTOR_BYTES 32
#elif defined(QORV_ISA_IS_v2)
#define QORV_SIMD_X86 1
#define QORV_VECTOR_BYTES 16
#elif defined(QORV_ISA_IS_neon) || defined(QORV_ISA_IS_dotprod)
#define QORV_SIMD_NEON 1
#define QORV_VECTOR_BYTES 16
#else
#define QORV_SIMD_PLAIN 1
#define QORV_VECTOR_BYTES 16
#endif

#ifdef QORV_SIMD_X86
#include <immintrin.h>
#endif
#ifdef QORV_SIMD_NEON
#include <arm_neon.h>
#endif

namespace qorv::QORV_ISA {

constexpr int kVectorBytes = QORV_VECTOR_BYTES;

template <class T, int Bytes>
struct VecOf {
    typedef T type __attribute__((vector_size(Bytes)));
};
// A vector of `Bytes` bytes: the full register by default; 16 everywhere.
template <class T, int Bytes = kVectorBytes>
using Vec = typename VecOf<T, Bytes>::type;

using U8 = Vec<uint8_t>;
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

// The value in every lane, its low bits if it has more than a lane.
template <class V, class T>
[[gnu::always_inline]] inline V splat(T value) {
    return V{} + static_cast<__typeof__(V{}[0])>(value);
}

// What one vector of bytes becomes in 16 bits: `lo` comes from the lower half of the bytes, `hi` from the upper half,
// on x86 of each 128-bit lane. Sums wrap.
struct Wide {
    U16 lo, hi;
};

[[gnu::always_inline]] inline Wide operator+(Wide a, Wide b) {
    return {a.lo + b.lo, a.hi + b.hi};
}

[[gnu::always_inline]] inline Wide operator-(Wide a, Wide b) {
    return {a.lo - b.lo, a.hi - b.hi};
}

[[gnu::always_inline]] inline Wide operator+(Wide a, uint16_t b) {
    return {a.lo + b, a.hi + b};
}

// What one vector of words becomes in 32 bits, signed, in the same way.
struct Wide32 {
    I32 lo, hi;
};

[[gnu::always_inline]] inline Wide32 operator+(Wide32 a, Wide32 b) {
    return {a.lo + b.lo, a.hi + b.hi};
}

[[gnu::always_inline]] inline Wide32 operator+(Wide32 a, int b) {
    return {a.lo + b, a.hi + b};
}

template <int Bits>
[[gnu::always_inline]] inline Wide32 shift(Wide32 a) {  // arithmetic
    return {a.lo >> Bits, a.hi >> Bits};
}

// A word less 32768, as a signed number.
[[gnu::always_inline]] inline I16 signed_words(U16 v) {
    return (I16)(v ^ 0x8000);
}

}  // namespace qorv::QORV_ISA

#include "core/simd_neon.h"
#include "core/simd_plain.h"
#include "core/simd_x86.h"
