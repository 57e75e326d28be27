// The primitives of core/simd.h for AArch64 NEON.
#pragma once

#ifdef QORV_SIMD_NEON

namespace qorv::QORV_ISA {

// ---- Colour conversion ----

template <int A, int B>
[[gnu::always_inline]] inline Wide weighted(U8 a, U8 b) {
    const auto half = [](uint8x8_t x, uint8x8_t y) __attribute__((always_inline)) {
        if constexpr (A == 1 && B == 1) {
            return vreinterpretq_s16_u16(vaddl_u8(x, y));
        } else if constexpr (A == 1 && B == -1) {
            return vreinterpretq_s16_u16(vsubl_u8(x, y));
        } else {
            constexpr auto kA = static_cast<uint8_t>(A < 0 ? -A : A), kB = static_cast<uint8_t>(B < 0 ? -B : B);
            if constexpr (A == 0 || B == 0) {
                const uint16x8_t product = B == 0 ? vmull_u8(x, vdup_n_u8(kA)) : vmull_u8(y, vdup_n_u8(kB));
                return A + B < 0 ? vnegq_s16(vreinterpretq_s16_u16(product)) : vreinterpretq_s16_u16(product);
            } else if constexpr ((A < 0) == (B < 0)) {
                const uint16x8_t sum = vmlal_u8(vmull_u8(x, vdup_n_u8(kA)), y, vdup_n_u8(kB));
                return A < 0 ? vnegq_s16(vreinterpretq_s16_u16(sum)) : vreinterpretq_s16_u16(sum);
            } else {
                static_assert(A > 0 && B < 0);
                return vreinterpretq_s16_u16(vmlsl_u8(vmull_u8(x, vdup_n_u8(kA)), y, vdup_n_u8(kB)));
            }
        }
    };
    const uint8x16_t va = (uint8x16_t)a, vb = (uint8x16_t)b;
    return {(I16)half(vget_low_u8(va), vget_low_u8(vb)), (I16)half(vget_high_u8(va), vget_high_u8(vb))};
}

[[gnu::always_inline]] inline Wide add_saturated(Wide a, int16_t b) {
    const int16x8_t vb = vdupq_n_s16(b);
    return {(I16)vqaddq_s16((int16x8_t)a.lo, vb), (I16)vqaddq_s16((int16x8_t)a.hi, vb)};
}

[[gnu::always_inline]] inline U8 narrow(Wide a) {
    return (U8)vqmovun_high_s16(vqmovun_s16((int16x8_t)a.lo), (int16x8_t)a.hi);
}

[[gnu::always_inline]] inline U8 narrow_signed(Wide a) {
    return (U8)vqmovn_high_s16(vqmovn_s16((int16x8_t)a.lo), (int16x8_t)a.hi);
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

[[gnu::always_inline]] inline U16 narrow(Wide32 a) {
    return (U16)vqmovun_high_s32(vqmovun_s32((int32x4_t)a.lo), (int32x4_t)a.hi);
}

[[gnu::always_inline]] inline U16 min(U16 a, U16 b) {
    return (U16)vminq_u16((uint16x8_t)a, (uint16x8_t)b);
}

[[gnu::always_inline]] inline Wide load_words(const uint8_t *p) {
    return {load<I16>(p), load<I16>(p + sizeof(I16))};
}

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

// ---- End of colour conversion ----

}  // namespace qorv::QORV_ISA

#endif
