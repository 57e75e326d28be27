// The primitives of core/simd.h without intrinsics, as loops over the lanes.
#pragma once

#ifdef QORV_SIMD_PLAIN

namespace qorv::QORV_ISA {

// ---- Colour conversion ----

// f(i) for each lane i.
template <class V, class F>
[[gnu::always_inline]] inline V each_lane(F f) {
    V v = {};
    for (int i = 0; i < static_cast<int>(sizeof(V) / sizeof(v[0])); i++) v[i] = static_cast<__typeof__(V{}[0])>(f(i));
    return v;
}

constexpr int clamped(int x, int low, int high) {
    return x < low ? low : x > high ? high : x;
}

template <int A, int B>
[[gnu::always_inline]] inline Wide weighted(U8 a, U8 b) {
    constexpr int kHalf = kVectorBytes / 2;
    return {each_lane<U16>([&](int i) { return A * a[i] + B * b[i]; }),
            each_lane<U16>([&](int i) { return A * a[i + kHalf] + B * b[i + kHalf]; })};
}

// f(lane) of a Wide's lanes, as bytes in order.
template <class F>
[[gnu::always_inline]] inline U8 bytes_of(Wide w, F f) {
    constexpr int kHalf = kVectorBytes / 2;
    return each_lane<U8>([&](int i) { return f(i < kHalf ? w.lo[i] : w.hi[i - kHalf]); });
}

[[gnu::always_inline]] inline U8 high_bytes(Wide w) {
    return bytes_of(w, [](uint16_t x) { return x >> 8; });
}

template <int C>
[[gnu::always_inline]] inline U8 high_bytes(U8 v) {
    return each_lane<U8>([&](int i) { return C * v[i] >> 8; });
}

template <int C>
[[gnu::always_inline]] inline U8 high_bytes_rounded(U8 v) {
    return each_lane<U8>([&](int i) { return (C * v[i] + 128) >> 8; });
}

[[gnu::always_inline]] inline U8 narrow_rounded(Wide w) {
    return bytes_of(w, [](uint16_t x) { return clamped((static_cast<int16_t>(x) + 128) >> 8, -128, 127); });
}

[[gnu::always_inline]] inline U8 low_bytes(U16 a, U16 b) {
    return bytes_of({a, b}, [](uint16_t x) { return x & 0xFF; });
}

[[gnu::always_inline]] inline U8 add_saturated(U8 a, U8 b) {
    return each_lane<U8>([&](int i) { return clamped(a[i] + b[i], 0, 255); });
}

[[gnu::always_inline]] inline U8 subtract_saturated(U8 a, U8 b) {
    return each_lane<U8>([&](int i) { return clamped(a[i] - b[i], 0, 255); });
}

template <int A, int B>
[[gnu::always_inline]] inline Wide32 weighted(I16 a, I16 b) {
    constexpr int kHalf = kVectorBytes / 4;
    return {each_lane<I32>([&](int i) { return A * a[i] + B * b[i]; }),
            each_lane<I32>([&](int i) { return A * a[i + kHalf] + B * b[i + kHalf]; })};
}

[[gnu::always_inline]] inline U16 narrow(Wide32 w) {
    constexpr int kHalf = kVectorBytes / 4;
    return each_lane<U16>([&](int i) { return clamped(i < kHalf ? w.lo[i] : w.hi[i - kHalf], 0, UINT16_MAX); });
}

[[gnu::always_inline]] inline U16 min(U16 a, U16 b) {
    return each_lane<U16>([&](int i) { return a[i] < b[i] ? a[i] : b[i]; });
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
