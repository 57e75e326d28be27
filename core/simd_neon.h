// The primitives of core/simd.h for AArch64 NEON.
#pragma once

#ifdef QORV_SIMD_NEON

namespace qorv::QORV_ISA {

// ---- Colour conversion ----

template <int A, int B>
[[gnu::always_inline]] inline uint16x8_t weighted_half(uint8x8_t a, uint8x8_t b) {
    constexpr auto kA = static_cast<uint8_t>(A < 0 ? -A : A), kB = static_cast<uint8_t>(B < 0 ? -B : B);
    if constexpr (A < 0 || (A == 0 && B < 0)) {  // at least one product is to be subtracted, and no other comes first
        if constexpr (B > 0) return vmlsl_u8(vmull_u8(b, vdup_n_u8(kB)), a, vdup_n_u8(kA));
        return vreinterpretq_u16_s16(vnegq_s16(vreinterpretq_s16_u16(weighted_half<-A, -B>(a, b))));
    } else if constexpr (B == 0) {
        return vmull_u8(a, vdup_n_u8(kA));
    } else if constexpr (A == 0) {
        return vmull_u8(b, vdup_n_u8(kB));
    } else if constexpr (B < 0) {
        return vmlsl_u8(vmull_u8(a, vdup_n_u8(kA)), b, vdup_n_u8(kB));
    } else {
        return vmlal_u8(vmull_u8(a, vdup_n_u8(kA)), b, vdup_n_u8(kB));
    }
}

template <int A, int B>
[[gnu::always_inline]] inline Wide weighted(U8 a, U8 b) {
    const uint8x16_t va = (uint8x16_t)a, vb = (uint8x16_t)b;
    return {(U16)weighted_half<A, B>(vget_low_u8(va), vget_low_u8(vb)),
            (U16)weighted_half<A, B>(vget_high_u8(va), vget_high_u8(vb))};
}

[[gnu::always_inline]] inline U8 high_bytes(Wide w) {
    return (U8)vuzp2q_u8((uint8x16_t)w.lo, (uint8x16_t)w.hi);
}

template <int C>
[[gnu::always_inline]] inline U8 high_bytes(U8 v) {
    return high_bytes(weighted<C, 0>(v, v));
}

template <int C>
[[gnu::always_inline]] inline U8 high_bytes_rounded(U8 v) {
    const Wide product = weighted<C, 0>(v, v);
    return (U8)vrshrn_high_n_u16(vrshrn_n_u16((uint16x8_t)product.lo, 8), (uint16x8_t)product.hi, 8);
}

[[gnu::always_inline]] inline U8 narrow_rounded(Wide w) {
    return (U8)vqrshrn_high_n_s16(vqrshrn_n_s16((int16x8_t)w.lo, 8), (int16x8_t)w.hi, 8);
}

[[gnu::always_inline]] inline U8 low_bytes(U16 a, U16 b) {
    return (U8)vuzp1q_u8((uint8x16_t)a, (uint8x16_t)b);
}

[[gnu::always_inline]] inline U8 add_saturated(U8 a, U8 b) {
    return (U8)vqaddq_u8((uint8x16_t)a, (uint8x16_t)b);
}

[[gnu::always_inline]] inline U8 subtract_saturated(U8 a, U8 b) {
    return (U8)vqsubq_u8((uint8x16_t)a, (uint8x16_t)b);
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
