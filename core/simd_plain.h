// The primitives of core/simd.h without intrinsics, as loops over the lanes.
#pragma once

#ifdef QORV_SIMD_PLAIN

namespace qorv::QORV_ISA {

// ---- Colour conversion ----

template <int A, int B>
[[gnu::always_inline]] inline Wide weighted(U8 a, U8 b) {
    Wide sum = {};
    for (int i = 0; i < kVectorBytes / 2; i++) {
        sum.lo[i] = static_cast<int16_t>(A * a[i] + B * b[i]);
        sum.hi[i] = static_cast<int16_t>(A * a[i + kVectorBytes / 2] + B * b[i + kVectorBytes / 2]);
    }
    return sum;
}

[[gnu::always_inline]] inline Wide add_saturated(Wide a, int16_t b) {
    const auto saturated = [b](int x) {
        const int sum = x + b;
        return static_cast<int16_t>(sum > INT16_MAX ? INT16_MAX : sum < INT16_MIN ? INT16_MIN : sum);
    };
    for (int i = 0; i < kVectorBytes / 2; i++) {
        a.lo[i] = saturated(a.lo[i]);
        a.hi[i] = saturated(a.hi[i]);
    }
    return a;
}

template <int Low, int High>
[[gnu::always_inline]] inline U8 narrow_to_range(Wide a) {
    const auto clamped = [](int x) { return static_cast<uint8_t>(x < Low ? Low : x > High ? High : x); };
    U8 v = {};
    for (int i = 0; i < kVectorBytes / 2; i++) {
        v[i] = clamped(a.lo[i]);
        v[i + kVectorBytes / 2] = clamped(a.hi[i]);
    }
    return v;
}

[[gnu::always_inline]] inline U8 narrow(Wide a) {
    return narrow_to_range<0, 255>(a);
}

[[gnu::always_inline]] inline U8 narrow_signed(Wide a) {
    return narrow_to_range<-128, 127>(a);
}

template <int A, int B>
[[gnu::always_inline]] inline Wide32 weighted(I16 a, I16 b) {
    Wide32 sum = {};
    for (int i = 0; i < kVectorBytes / 4; i++) {
        sum.lo[i] = A * a[i] + B * b[i];
        sum.hi[i] = A * a[i + kVectorBytes / 4] + B * b[i + kVectorBytes / 4];
    }
    return sum;
}

[[gnu::always_inline]] inline U16 narrow(Wide32 a) {
    const auto clamped = [](int x) { return static_cast<uint16_t>(x < 0 ? 0 : x > UINT16_MAX ? UINT16_MAX : x); };
    U16 v = {};
    for (int i = 0; i < kVectorBytes / 4; i++) {
        v[i] = clamped(a.lo[i]);
        v[i + kVectorBytes / 4] = clamped(a.hi[i]);
    }
    return v;
}

[[gnu::always_inline]] inline U16 min(U16 a, U16 b) {
    for (int i = 0; i < kVectorBytes / 2; i++) a[i] = a[i] < b[i] ? a[i] : b[i];
    return a;
}

[[gnu::always_inline]] inline Wide load_words(const uint8_t *p) {
    return {load<I16>(p), load<I16>(p + sizeof(I16))};
}

[[gnu::always_inline]] inline void load_interleaved2(const uint8_t *p, U8 &a, U8 &b) {
    for (int i = 0; i < kVectorBytes; i++, p += 2) a[i] = p[0], b[i] = p[1];
}

[[gnu::always_inline]] inline void load_interleaved3(const uint8_t *p, U8 &a, U8 &b, U8 &c) {
    for (int i = 0; i < kVectorBytes; i++, p += 3) a[i] = p[0], b[i] = p[1], c[i] = p[2];
}

[[gnu::always_inline]] inline void load_interleaved4(const uint8_t *p, U8 &a, U8 &b, U8 &c, U8 &d) {
    for (int i = 0; i < kVectorBytes; i++, p += 4) a[i] = p[0], b[i] = p[1], c[i] = p[2], d[i] = p[3];
}

[[gnu::always_inline]] inline void store_interleaved2(uint8_t *p, U8 a, U8 b) {
    for (int i = 0; i < kVectorBytes; i++, p += 2) p[0] = a[i], p[1] = b[i];
}

[[gnu::always_inline]] inline void store_interleaved3(uint8_t *p, U8 a, U8 b, U8 c) {
    for (int i = 0; i < kVectorBytes; i++, p += 3) p[0] = a[i], p[1] = b[i], p[2] = c[i];
}

[[gnu::always_inline]] inline void store_interleaved4(uint8_t *p, U8 a, U8 b, U8 c, U8 d) {
    for (int i = 0; i < kVectorBytes; i++, p += 4) p[0] = a[i], p[1] = b[i], p[2] = c[i], p[3] = d[i];
}

// ---- End of colour conversion ----

}  // namespace qorv::QORV_ISA

#endif
