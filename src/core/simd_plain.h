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

template <int A, int B, int C>
[[gnu::always_inline]] inline Wide weighted(U8 a, U8 b, U8 c) {
    return weighted<A, B>(a, b) + weighted<C, 0>(c, c);
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

[[gnu::always_inline]] inline U8 high_bytes_rounded(Wide w) {
    return high_bytes(w + 128);
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

// ---- Block metrics ----

constexpr int kRowsAtHand = 4, kWideRowsAtHand = 4;

template <int Bytes>
using ByteDistances = Vec<uint32_t, Bytes>;
constexpr int kMaxByteDistances = 1 << 20;
constexpr bool kHasSumsAndDifferences = false;

[[gnu::always_inline]] inline void add_byte_distances(Vec<uint32_t, 16> &sum, Vec<uint8_t, 16> a, Vec<uint8_t, 16> b) {
    for (int i = 0; i < 16; i++) sum[i / 4] += static_cast<uint32_t>(a[i] > b[i] ? a[i] - b[i] : b[i] - a[i]);
}

[[gnu::always_inline]] inline void add_byte_squares(Vec<uint32_t, 16> &sum, Vec<uint8_t, 16> a, Vec<uint8_t, 16> b) {
    for (int i = 0; i < 16; i++) sum[i / 4] += static_cast<uint32_t>((a[i] - b[i]) * (a[i] - b[i]));
}

[[gnu::always_inline]] inline Vec<uint16_t, 16> abs_difference(Vec<int16_t, 16> a, Vec<int16_t, 16> b) {
    Vec<uint16_t, 16> v = {};
    for (int i = 0; i < 8; i++) v[i] = static_cast<uint16_t>(a[i] > b[i] ? a[i] - b[i] : b[i] - a[i]);
    return v;
}

[[gnu::always_inline]] inline Vec<uint16_t, 16> abs_lanes(Vec<int16_t, 16> a) {
    return abs_difference(a, Vec<int16_t, 16>{});
}

[[gnu::always_inline]] inline Vec<uint32_t, 16> abs_lanes(Vec<int32_t, 16> a) {
    for (int i = 0; i < 4; i++) a[i] = a[i] < 0 ? -a[i] : a[i];
    return (Vec<uint32_t, 16>)a;
}

template <class V>
[[gnu::always_inline]] inline V max_lanes(V a, V b) {
    for (size_t i = 0; i < sizeof a / sizeof a[0]; i++) a[i] = a[i] > b[i] ? a[i] : b[i];
    return a;
}

[[gnu::always_inline]] inline Vec<uint16_t, 16> add_saturated(Vec<uint16_t, 16> a, Vec<uint16_t, 16> b) {
    for (int i = 0; i < 8; i++) a[i] = static_cast<uint16_t>(a[i] + b[i] > UINT16_MAX ? UINT16_MAX : a[i] + b[i]);
    return a;
}

[[gnu::always_inline]] inline Vec<int16_t, 16> subtract_saturated(Vec<int16_t, 16> a, Vec<int16_t, 16> b) {
    for (int i = 0; i < 8; i++) {
        const int d = a[i] - b[i];
        a[i] = static_cast<int16_t>(d < INT16_MIN ? INT16_MIN : d > INT16_MAX ? INT16_MAX : d);
    }
    return a;
}

[[gnu::always_inline]] inline void add_pairs(Vec<uint32_t, 16> &sum, Vec<uint16_t, 16> a) {
    for (int i = 0; i < 8; i++) sum[i / 2] += a[i];
}

[[gnu::always_inline]] inline void add_squares(Vec<uint32_t, 16> &sum, Vec<uint16_t, 16> a) {
    for (int i = 0; i < 8; i++) sum[i / 2] += static_cast<uint32_t>(a[i]) * a[i];
}

[[gnu::always_inline]] inline Vec<int16_t, 16> widen_low(Vec<uint8_t, 16> a) {
    Vec<int16_t, 16> v = {};
    for (int i = 0; i < 8; i++) v[i] = a[i];
    return v;
}

template <int Bytes>
[[gnu::always_inline]] inline Vec<int16_t, Bytes> load_widened(const uint8_t *p) {
    Vec<int16_t, 16> v = {};
    for (int i = 0; i < 8; i++) v[i] = p[i];
    return v;
}

template <int Bytes, class V>
[[gnu::always_inline]] inline void exchange(V &a, V &b) {
    constexpr int kGroup = Bytes / static_cast<int>(sizeof a[0]);
    const V x = a, y = b;
    for (int i = 0; i < static_cast<int>(sizeof a / sizeof a[0]); i++) {
        const bool odd = (i / kGroup) % 2 != 0;
        a[i] = odd ? y[i - kGroup] : x[i];
        b[i] = odd ? y[i] : x[i + kGroup];
    }
}

template <class V>
[[gnu::always_inline]] inline V max_of_pairs(V a, V b) {
    V even = {}, odd = {};
    constexpr int kHalf = sizeof a / sizeof a[0] / 2;
    for (int i = 0; i < kHalf; i++) {
        even[i] = a[2 * i], odd[i] = a[2 * i + 1];
        even[kHalf + i] = b[2 * i], odd[kHalf + i] = b[2 * i + 1];
    }
    return max_lanes(even, odd);
}

[[gnu::always_inline]] inline bool top_bit_set(Vec<uint16_t, 16> a) {
    uint16_t all = 0;
    for (int i = 0; i < 8; i++) all = static_cast<uint16_t>(all | a[i]);
    return all >= 0x8000;
}

[[gnu::always_inline]] inline uint32_t sum_lanes(Vec<uint32_t, 16> a) {
    return a[0] + a[1] + a[2] + a[3];
}

// ---- End of block metrics ----

// ---- Bilinear sampling ----

[[gnu::always_inline]] inline void store_interleaved2(uint8_t *p, U16 a, U16 b) {
    for (int i = 0; i < kVectorBytes / 2; i++, p += 4) {
        const uint16_t pair[2] = {a[i], b[i]};
        memcpy(p, pair, 4);
    }
}

[[gnu::always_inline]] inline U8 load_windows(const uint8_t *p, const uint16_t *offsets) {
    return load<U8>(p + offsets[0]);
}

[[gnu::always_inline]] inline U8 shuffle(U8 v, U8 indices) {
    return each_lane<U8>([&](int i) { return v[indices[i]]; });
}

[[gnu::always_inline]] inline U8 shuffle(U8 v, U8 w, U8 indices) {
    return each_lane<U8>([&](int i) { return indices[i] < 16 ? v[indices[i]] : w[indices[i] - 16]; });
}

[[gnu::always_inline]] inline U8 pair_up(U16 a, U16 b) {
    return each_lane<U8>([&](int i) { return i % 2 == 0 ? a[i / 2] : b[i / 2]; });
}

[[gnu::always_inline]] inline U16 weigh_pairs(U8 v, U8 weights) {
    return each_lane<U16>([&](int i) { return v[2 * i] * weights[2 * i] + v[2 * i + 1] * weights[2 * i + 1]; });
}

[[gnu::always_inline]] inline U16 join(U32 a, U32 b) {
    constexpr int kHalf = kVectorBytes / 4;
    return each_lane<U16>([&](int i) { return i < kHalf ? a[i] : b[i - kHalf]; });
}

template <int N>
[[gnu::always_inline]] inline U8 narrow_shifted(U16 a, U16 b) {
    constexpr int kHalf = kVectorBytes / 2;
    return each_lane<U8>([&](int i) { return (i < kHalf ? a[i] : b[i - kHalf]) >> N; });
}

// ---- End of bilinear sampling ----

}  // namespace qorv::QORV_ISA

#endif
