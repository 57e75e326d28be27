// The primitives for AArch64 NEON. core/simd_plain.h says what each gives.
#pragma once

#ifdef QORV_SIMD_NEON

namespace qorv::QORV_ISA {

// ---- Load and store ----

[[gnu::always_inline]] inline void load_interleaved2(const uint8_t *p, U8 &a, U8 &b) {
    const uint8x16x2_t v = vld2q_u8(p);
    a = (U8)v.val[0];
    b = (U8)v.val[1];
}

[[gnu::always_inline]] inline void load_interleaved3(const uint8_t *p, U8 &a, U8 &b, U8 &c) {
    const uint8x16x3_t v = vld3q_u8(p);
    a = (U8)v.val[0];
    b = (U8)v.val[1];
    c = (U8)v.val[2];
}

[[gnu::always_inline]] inline void load_interleaved4(const uint8_t *p, U8 &a, U8 &b, U8 &c, U8 &d) {
    const uint8x16x4_t v = vld4q_u8(p);
    a = (U8)v.val[0];
    b = (U8)v.val[1];
    c = (U8)v.val[2];
    d = (U8)v.val[3];
}

[[gnu::always_inline]] inline void store_interleaved2(uint8_t *p, U8 a, U8 b) {
    const uint8x16x2_t v = {{(uint8x16_t)a, (uint8x16_t)b}};
    vst2q_u8(p, v);
}

[[gnu::always_inline]] inline void store_interleaved3(uint8_t *p, U8 a, U8 b, U8 c) {
    const uint8x16x3_t v = {{(uint8x16_t)a, (uint8x16_t)b, (uint8x16_t)c}};
    vst3q_u8(p, v);
}

[[gnu::always_inline]] inline void store_interleaved4(uint8_t *p, U8 a, U8 b, U8 c, U8 d) {
    const uint8x16x4_t v = {{(uint8x16_t)a, (uint8x16_t)b, (uint8x16_t)c, (uint8x16_t)d}};
    vst4q_u8(p, v);
}

// Where nothing but the copying keeps the processor busy: large cores are slow at st4.
[[gnu::always_inline]] inline void store_copied4(uint8_t *p, U8 a, U8 b, U8 c, U8 d) {
    const uint8x16_t va = (uint8x16_t)a, vb = (uint8x16_t)b, vc = (uint8x16_t)c, vd = (uint8x16_t)d;
    const uint16x8x2_t first = {{(uint16x8_t)vzip1q_u8(va, vb), (uint16x8_t)vzip1q_u8(vc, vd)}};
    const uint16x8x2_t second = {{(uint16x8_t)vzip2q_u8(va, vb), (uint16x8_t)vzip2q_u8(vc, vd)}};
    vst2q_u16(reinterpret_cast<uint16_t *>(p), first);
    vst2q_u16(reinterpret_cast<uint16_t *>(p) + 16, second);
}

[[gnu::always_inline]] inline void store_interleaved2(uint8_t *p, U16 a, U16 b) {
    store(p, vzip1q_u16((uint16x8_t)a, (uint16x8_t)b));
    store(p + 16, vzip2q_u16((uint16x8_t)a, (uint16x8_t)b));
}

template <int Bytes>
[[gnu::always_inline]] inline Vec<int16_t, Bytes> load_widened(const uint8_t *p) {
    return (Vec<int16_t, 16>)vmovl_u8(vld1_u8(p));
}

// `Bytes` bytes, and zeros after them. Neoverse N1 takes one operation for a load with an unscaled offset, two for the
// one that a compiler chooses.
template <class V, int Bytes = sizeof(V)>
[[gnu::always_inline]] inline V load_unscaled(const void *p) {
    static_assert(Bytes == 4 || Bytes == 8 || Bytes == 16);
    const auto &bytes = *(const char(*)[Bytes])p;
    V v;
    if constexpr (Bytes == 4) asm("ldur %s0, %1" : "=w"(v) : "Q"(bytes));
    if constexpr (Bytes == 8) asm("ldur %d0, %1" : "=w"(v) : "Q"(bytes));
    if constexpr (Bytes == 16) asm("ldur %q0, %1" : "=w"(v) : "Q"(bytes));
    return v;
}

// Vectors one after the other, by one ld1: Cortex-A55 takes half as long again for ldp. g++ 12 fails at an address that
// it keeps in one value with the stride, unless it copies it first, which four vectors do not make up for.
#ifdef __clang__
constexpr int kMostTogether = 4;
#else
constexpr int kMostTogether = 2;
#endif

template <class V>
[[gnu::always_inline]] inline void load_together(const void *p, V (&v)[2]) {
#ifndef __clang__
    hide_origin(p);
#endif
    const uint8x16x2_t both = vld1q_u8_x2(static_cast<const uint8_t *>(p));
    for (int i = 0; i < 2; i++) v[i] = (V)both.val[i];
}

template <class V>
[[gnu::always_inline]] inline void load_together(const void *p, V (&v)[4]) {
    const uint8x16x4_t all = vld1q_u8_x4(static_cast<const uint8_t *>(p));
    for (int i = 0; i < 4; i++) v[i] = (V)all.val[i];
}

template <class Offset>
[[gnu::always_inline]] inline U8 load_windows(const uint8_t *p, const Offset *offsets) {
    return load<U8>(p + offsets[0]);
}

// By st1 or by stp: Neoverse N1 does the first in half the time, Neoverse V2 takes a third longer. g++, left to find
// two registers side by side, takes vectors through memory; left to find stp, it stores vectors one by one.
template <bool BySt1>
[[gnu::always_inline]] inline void store_pair(int16_t *p, Vec<int16_t, 16> a, Vec<int16_t, 16> b) {
    if constexpr (!BySt1) {
        asm("stp %q1, %q2, %0" : "=Q"(*(char(*)[32])p) : "w"(a), "w"(b));
        return;
    }
#ifdef __clang__
    const int16x8x2_t pair = {{(int16x8_t)a, (int16x8_t)b}};
    vst1q_s16_x2(p, pair);
#else
    register auto first asm("v30") = a;
    register auto second asm("v31") = b;
    asm("st1 {%1.8h, %2.8h}, %0" : "=Q"(*(Vec<int16_t, 16>(*)[2])p) : "w"(first), "w"(second));
#endif
}

// Neoverse N1 does it in half the time of str.
[[gnu::always_inline]] inline void store_alone(void *p, Vec<uint8_t, 16> v) {
    asm("st1 {%1.16b}, %0" : "=Q"(*(char(*)[16])p) : "w"(v));
}

// Whether the compiler adds two registers before it loads a word from their sum, even if nothing else needs that.
#ifdef __clang__
constexpr bool kMakesAddressesOfWords = true;
#else
constexpr bool kMakesAddressesOfWords = false;
#endif

// ---- Arithmetic ----

// sum + C v of the lower or the upper half of v.
template <bool Upper, int C>
[[gnu::always_inline]] inline uint16x8_t add_product(uint16x8_t sum, uint8x16_t v) {
    const uint8x16_t weights = vdupq_n_u8(static_cast<uint8_t>(C < 0 ? -C : C));
    if constexpr (C == 0) {
        return sum;
    } else if constexpr (Upper) {
        return C < 0 ? vmlsl_high_u8(sum, v, weights) : vmlal_high_u8(sum, v, weights);
    } else {
        const uint8x8_t low = vget_low_u8(v), low_weights = vget_low_u8(weights);
        return C < 0 ? vmlsl_u8(sum, low, low_weights) : vmlal_u8(sum, low, low_weights);
    }
}

// Begins with a positive weight, so that every other product is added or subtracted as it is made.
template <bool Upper, int A, int B, int C>
[[gnu::always_inline]] inline U16 weighted_half(uint8x16_t a, uint8x16_t b, uint8x16_t c) {
    static_assert(A > 0 || B > 0 || C > 0);
    if constexpr (A > 0) {
        const uint8x16_t weights = vdupq_n_u8(A);
        const uint16x8_t first = Upper ? vmull_high_u8(a, weights) : vmull_u8(vget_low_u8(a), vget_low_u8(weights));
        return (U16)add_product<Upper, C>(add_product<Upper, B>(first, b), c);
    } else if constexpr (B > 0) {
        return weighted_half<Upper, B, C, A>(b, c, a);
    } else {
        return weighted_half<Upper, C, A, B>(c, a, b);
    }
}

template <int A, int B, int C>
[[gnu::always_inline]] inline Wide weighted(U8 a, U8 b, U8 c) {
    const uint8x16_t va = (uint8x16_t)a, vb = (uint8x16_t)b, vc = (uint8x16_t)c;
    return {weighted_half<false, A, B, C>(va, vb, vc), weighted_half<true, A, B, C>(va, vb, vc)};
}

template <int A, int B>
[[gnu::always_inline]] inline Wide weighted(U8 a, U8 b) {
    return weighted<A, B, 0>(a, b, b);
}

template <int A, int B>
[[gnu::always_inline]] inline Wide32 weighted(I16 a, I16 b) {
    const int16x8_t va = (int16x8_t)a, vb = (int16x8_t)b;
    int32x4_t lo = vmull_n_s16(vget_low_s16(va), A), hi = vmull_high_n_s16(va, A);
    if constexpr (B != 0) {
        lo = vmlal_n_s16(lo, vget_low_s16(vb), B);
        hi = vmlal_high_n_s16(hi, vb, B);
    }
    return {(I32)lo, (I32)hi};
}

[[gnu::always_inline]] inline U8 add_saturated(U8 a, U8 b) {
    return (U8)vqaddq_u8((uint8x16_t)a, (uint8x16_t)b);
}

[[gnu::always_inline]] inline U8 subtract_saturated(U8 a, U8 b) {
    return (U8)vqsubq_u8((uint8x16_t)a, (uint8x16_t)b);
}

[[gnu::always_inline]] inline Vec<uint16_t, 16> add_saturated(Vec<uint16_t, 16> a, Vec<uint16_t, 16> b) {
    return (Vec<uint16_t, 16>)vqaddq_u16((uint16x8_t)a, (uint16x8_t)b);
}

[[gnu::always_inline]] inline Vec<int16_t, 16> subtract_saturated(Vec<int16_t, 16> a, Vec<int16_t, 16> b) {
    return (Vec<int16_t, 16>)vqsubq_s16((int16x8_t)a, (int16x8_t)b);
}

[[gnu::always_inline]] inline U16 min(U16 a, U16 b) {
    return (U16)vminq_u16((uint16x8_t)a, (uint16x8_t)b);
}

[[gnu::always_inline]] inline Vec<uint16_t, 16> max_lanes(Vec<uint16_t, 16> a, Vec<uint16_t, 16> b) {
    return (Vec<uint16_t, 16>)vmaxq_u16((uint16x8_t)a, (uint16x8_t)b);
}

[[gnu::always_inline]] inline Vec<uint16_t, 16> abs_difference(Vec<int16_t, 16> a, Vec<int16_t, 16> b) {
    return (Vec<uint16_t, 16>)vabdq_s16((int16x8_t)a, (int16x8_t)b);
}

[[gnu::always_inline]] inline Vec<uint16_t, 16> abs_lanes(Vec<int16_t, 16> a) {
    return (Vec<uint16_t, 16>)vabsq_s16((int16x8_t)a);
}

[[gnu::always_inline]] inline Vec<uint32_t, 16> abs_lanes(Vec<int32_t, 16> a) {
    return (Vec<uint32_t, 16>)vabsq_s32((int32x4_t)a);
}

[[gnu::always_inline]] inline U16 weigh_pairs(U8 v, U8 weights) {
    uint16x8_t first = vmull_u8(vget_low_u8((uint8x16_t)v), vget_low_u8((uint8x16_t)weights));
    hide_origin(first);  // or g++ copies it to another register
    return (U16)vmlal_high_u8(first, (uint8x16_t)v, (uint8x16_t)weights);
}

// Both products in the weights: 56 at most, so that bytes may be multiplied as words. A long multiplication of bytes
// costs half of one of words.
[[gnu::always_inline]] inline U16 weigh_two_pairs(U8 v, U8 w, U8 weights, U16, U16 second) {
    const uint8x16_t of_w = (uint8x16_t)((U16)weights * second), of_v = (uint8x16_t)((weights << 3) - (U8)of_w);
    uint16x8_t sum = vmull_u8(vget_low_u8((uint8x16_t)v), vget_low_u8(of_v));
    sum = vmlal_high_u8(sum, (uint8x16_t)v, of_v);
    sum = vmlal_u8(sum, vget_low_u8((uint8x16_t)w), vget_low_u8(of_w));
    return (U16)vmlal_high_u8(sum, (uint8x16_t)w, of_w);
}

constexpr bool kHasSumsAndDifferences = false;

// ---- Widen and narrow ----

[[gnu::always_inline]] inline void subtract_widened(Vec<int16_t, 16> a, Vec<int16_t, 16> b, Vec<int32_t, 16> &lo,
                                                    Vec<int32_t, 16> &hi) {
    const int16x8_t va = (int16x8_t)a, vb = (int16x8_t)b;
    lo = (Vec<int32_t, 16>)vsubl_s16(vget_low_s16(va), vget_low_s16(vb));
    hi = (Vec<int32_t, 16>)vsubl_high_s16(va, vb);
}

[[gnu::always_inline]] inline Vec<int16_t, 16> subtract_widened(Vec<uint8_t, 8> a, Vec<uint8_t, 8> b) {
    return (Vec<int16_t, 16>)vsubl_u8((uint8x8_t)a, (uint8x8_t)b);
}

template <bool Upper>
[[gnu::always_inline]] inline Vec<int16_t, 16> subtract_widened(Vec<uint8_t, 16> a, Vec<uint8_t, 16> b) {
    const uint8x16_t va = (uint8x16_t)a, vb = (uint8x16_t)b;
    return (Vec<int16_t, 16>)(Upper ? vsubl_high_u8(va, vb) : vsubl_u8(vget_low_u8(va), vget_low_u8(vb)));
}

[[gnu::always_inline]] inline U8 high_bytes(Wide w) {
    return (U8)vuzp2q_u8((uint8x16_t)w.lo, (uint8x16_t)w.hi);
}

template <int C>
[[gnu::always_inline]] inline U8 high_bytes(U8 v) {
    return high_bytes(weighted<C, 0>(v, v));
}

[[gnu::always_inline]] inline U8 high_bytes_rounded(Wide w) {
    return (U8)vrshrn_high_n_u16(vrshrn_n_u16((uint16x8_t)w.lo, 8), (uint16x8_t)w.hi, 8);
}

template <int C>
[[gnu::always_inline]] inline U8 high_bytes_rounded(U8 v) {
    return high_bytes_rounded(weighted<C, 0>(v, v));
}

[[gnu::always_inline]] inline U8 narrow_rounded(Wide w) {
    return (U8)vqrshrn_high_n_s16(vqrshrn_n_s16((int16x8_t)w.lo, 8), (int16x8_t)w.hi, 8);
}

[[gnu::always_inline]] inline U16 narrow(Wide32 a) {
    return (U16)vqmovun_high_s32(vqmovun_s32((int32x4_t)a.lo), (int32x4_t)a.hi);
}

[[gnu::always_inline]] inline U8 low_bytes(U16 a, U16 b) {
    return (U8)vuzp1q_u8((uint8x16_t)a, (uint8x16_t)b);
}

[[gnu::always_inline]] inline U16 join(U32 a, U32 b) {
    return (U16)vmovn_high_u32(vmovn_u32((uint32x4_t)a), (uint32x4_t)b);
}

template <int N>
[[gnu::always_inline]] inline U8 narrow_shifted(U16 a, U16 b) {
    return (U8)vshrn_high_n_u16(vshrn_n_u16((uint16x8_t)a, N), (uint16x8_t)b, N);
}

// Of sixteen times the sums, the upper byte of a sum of two is a mean's integer part.
constexpr int kBlendBits = 4;

// A mean of means, each rounded down, loses nothing of the whole's integer part, and takes no multiplication. This is
// what the mean with a, or from N = 4 on with b, is to be taken of.
template <int N>
[[gnu::always_inline]] inline uint16x8_t quarters_between(uint16x8_t a, uint16x8_t b) {
    uint16x8_t mean = a;
    if constexpr ((N & 1) != 0) mean = vhaddq_u16(mean, b);
    if constexpr ((N & 3) != 0) mean = vhaddq_u16(mean, (N & 2) != 0 ? b : a);
    return mean;
}

template <int N>
[[gnu::always_inline]] inline U8 narrow_blend(U16 a, U16 b, U16 c, U16 d) {
    const uint16x8_t va = (uint16x8_t)a, vb = (uint16x8_t)b, vc = (uint16x8_t)c, vd = (uint16x8_t)d;
    const uint8x8_t first = vaddhn_u16(quarters_between<N>(va, vb), N < 4 ? va : vb);
    return (U8)vaddhn_high_u16(first, quarters_between<N>(vc, vd), N < 4 ? vc : vd);
}

[[gnu::always_inline]] inline Vec<int16_t, 16> widen_low(Vec<uint8_t, 16> a) {
    return (Vec<int16_t, 16>)vmovl_u8(vget_low_u8((uint8x16_t)a));
}

// ---- Shuffle ----

[[gnu::always_inline]] inline U8 shuffle(U8 v, U8 indices) {
    return (U8)vqtbl1q_u8((uint8x16_t)v, (uint8x16_t)indices);
}

[[gnu::always_inline]] inline U8 shuffle(U8 v, U8 w, U8 indices) {
    return (U8)vqtbl2q_u8(uint8x16x2_t{{(uint8x16_t)v, (uint8x16_t)w}}, (uint8x16_t)indices);
}

// The first bytes of the pairs in the lower half, the second ones in the upper: two widening multiplications then weigh
// them.
constexpr bool kPairsSideBySide = false;

[[gnu::always_inline]] inline U8 pair_up(U16 a, U16 b) {
    return (U8)vmovn_high_u16(vmovn_u16((uint16x8_t)a), (uint16x8_t)b);
}

template <int Bytes, class V>
[[gnu::always_inline]] inline void exchange(V &a, V &b) {
    static_assert(Bytes == 4 || Bytes == 8);
    if constexpr (Bytes == 4) {
        const uint32x4_t x = (uint32x4_t)a, y = (uint32x4_t)b;
        a = (V)vtrn1q_u32(x, y);
        b = (V)vtrn2q_u32(x, y);
    } else {
        const uint64x2_t x = (uint64x2_t)a, y = (uint64x2_t)b;
        a = (V)vtrn1q_u64(x, y);
        b = (V)vtrn2q_u64(x, y);
    }
}

// ---- Reduce ----

// Each addition to a sum hides it: clang would make one chain of several sums, g++ would copy them between registers.

// Whether a sum is seen to be the 0 it began with: what is added to it becomes the sum, by a cheaper instruction.
template <class V>
[[gnu::always_inline]] inline bool is_new(const V &sum) {
    return __builtin_constant_p(sum[0]) && sum[0] == 0;
}

template <int Bytes>
using ByteDistances = Vec<uint16_t, 16>;
constexpr int kMaxByteDistances = 128;  // each adds at most 2 x 255 to a 16-bit lane

[[gnu::always_inline]] inline void add_byte_distances(Vec<uint16_t, 16> &sum, Vec<uint8_t, 16> a, Vec<uint8_t, 16> b) {
    const uint8x16_t d = vabdq_u8((uint8x16_t)a, (uint8x16_t)b);
    sum = (Vec<uint16_t, 16>)(is_new(sum) ? vpaddlq_u8(d) : vpadalq_u8((uint16x8_t)sum, d));
    hide_origin(sum);
}

[[gnu::always_inline]] inline void add_byte_distances(Vec<uint16_t, 16> &sum, Vec<uint8_t, 8> a, Vec<uint8_t, 8> b) {
    const uint8x8_t va = (uint8x8_t)a, vb = (uint8x8_t)b;
    sum = (Vec<uint16_t, 16>)(is_new(sum) ? vabdl_u8(va, vb) : vabal_u8((uint16x8_t)sum, va, vb));
    hide_origin(sum);
}

#ifdef __ARM_FEATURE_DOTPROD

template <int Bytes>
using ByteSquares = Vec<uint32_t, Bytes>;

// Four products at a time.
[[gnu::always_inline]] inline void add_byte_squares(Vec<uint32_t, 16> &sum, Vec<uint8_t, 16> a, Vec<uint8_t, 16> b) {
    const uint8x16_t d = vabdq_u8((uint8x16_t)a, (uint8x16_t)b);
    sum = (Vec<uint32_t, 16>)vdotq_u32((uint32x4_t)sum, d, d);
    hide_origin(sum);
}

[[gnu::always_inline]] inline void add_byte_squares(Vec<uint32_t, 8> &sum, Vec<uint8_t, 8> a, Vec<uint8_t, 8> b) {
    const uint8x8_t d = vabd_u8((uint8x8_t)a, (uint8x8_t)b);
    sum = (Vec<uint32_t, 8>)vdot_u32((uint32x2_t)sum, d, d);
}

[[gnu::always_inline]] inline uint32_t sum_lanes(Vec<uint32_t, 8> a) {
    return vaddv_u32((uint32x2_t)a);
}

#else

template <int Bytes>
using ByteSquares = Vec<uint32_t, 16>;

[[gnu::always_inline]] inline void add_byte_squares(Vec<uint32_t, 16> &sum, Vec<uint8_t, 16> a, Vec<uint8_t, 16> b) {
    const uint8x16_t d = vabdq_u8((uint8x16_t)a, (uint8x16_t)b);
    const uint16x8_t squares = vmull_u8(vget_low_u8(d), vget_low_u8(d));
    const uint32x4_t lo = is_new(sum) ? vpaddlq_u16(squares) : vpadalq_u16((uint32x4_t)sum, squares);
    sum = (Vec<uint32_t, 16>)vpadalq_u16(lo, vmull_high_u8(d, d));
    hide_origin(sum);
}

[[gnu::always_inline]] inline void add_byte_squares(Vec<uint32_t, 16> &sum, Vec<uint8_t, 8> a, Vec<uint8_t, 8> b) {
    const uint8x8_t d = vabd_u8((uint8x8_t)a, (uint8x8_t)b);
    const uint16x8_t squares = vmull_u8(d, d);
    sum = (Vec<uint32_t, 16>)(is_new(sum) ? vpaddlq_u16(squares) : vpadalq_u16((uint32x4_t)sum, squares));
    hide_origin(sum);
}

#endif

[[gnu::always_inline]] inline void add_pairs(Vec<uint32_t, 16> &sum, Vec<uint16_t, 16> a) {
    sum = (Vec<uint32_t, 16>)vpadalq_u16((uint32x4_t)sum, (uint16x8_t)a);
    hide_origin(sum);
}

[[gnu::always_inline]] inline void add_squares(Vec<uint32_t, 16> &sum, Vec<uint16_t, 16> a) {
    const uint16x8_t v = (uint16x8_t)a;
    sum = (Vec<uint32_t, 16>)vmlal_high_u16(vmlal_u16((uint32x4_t)sum, vget_low_u16(v), vget_low_u16(v)), v, v);
    hide_origin(sum);
}

[[gnu::always_inline]] inline Vec<uint16_t, 16> max_of_pairs(Vec<uint16_t, 16> a, Vec<uint16_t, 16> b) {
    return (Vec<uint16_t, 16>)vpmaxq_u16((uint16x8_t)a, (uint16x8_t)b);
}

[[gnu::always_inline]] inline Vec<uint32_t, 16> max_of_pairs(Vec<uint32_t, 16> a, Vec<uint32_t, 16> b) {
    return (Vec<uint32_t, 16>)vpmaxq_u32((uint32x4_t)a, (uint32x4_t)b);
}

[[gnu::always_inline]] inline bool top_bit_set(Vec<uint16_t, 16> a) {
    return vmaxvq_u16((uint16x8_t)a) >= 0x8000;
}

[[gnu::always_inline]] inline uint32_t sum_lanes(Vec<uint16_t, 16> a) {
    return vaddlvq_u16((uint16x8_t)a);
}

[[gnu::always_inline]] inline uint32_t sum_lanes(Vec<uint32_t, 16> a) {
    return vaddvq_u32((uint32x4_t)a);
}

}  // namespace qorv::QORV_ISA

#endif
