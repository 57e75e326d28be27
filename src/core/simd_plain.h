// What each vector primitive gives: its contract, and below it the executable definition, loops over the lanes. The
// files of the instruction sets have the same primitives, for vectors of 16 bytes and, where the register has 32, of
// both sizes. What a contract leaves open, the place of a lane or the order of lanes, differs from set to set; each
// kernel's result does not.
#pragma once

#ifdef QORV_SIMD_PLAIN

namespace qorv::QORV_ISA {

// f(i) for each lane i.
template <class V, class F>
[[gnu::always_inline]] inline V each_lane(F f) {
    V v = {};
    for (int i = 0; i < static_cast<int>(sizeof(V) / sizeof(v[0])); i++) v[i] = static_cast<__typeof__(V{}[0])>(f(i));
    return v;
}

// f(lane) of a Wide's lanes, as bytes in order.
template <class F>
[[gnu::always_inline]] inline U8 bytes_of(Wide w, F f) {
    constexpr int kHalf = kVectorBytes / 2;
    return each_lane<U8>([&](int i) { return f(i < kHalf ? w.lo[i] : w.hi[i - kHalf]); });
}

constexpr int clamped(int x, int low, int high) {
    return x < low ? low : x > high ? high : x;
}

// ---- Load and store ----

// A vector of samples from each of two, three (not on x86) or four interleaved channels.
[[gnu::always_inline]] inline void load_interleaved2(const uint8_t *p, U8 &a, U8 &b) {
    for (int i = 0; i < kVectorBytes; i++, p += 2) a[i] = p[0], b[i] = p[1];
}

[[gnu::always_inline]] inline void load_interleaved3(const uint8_t *p, U8 &a, U8 &b, U8 &c) {
    for (int i = 0; i < kVectorBytes; i++, p += 3) a[i] = p[0], b[i] = p[1], c[i] = p[2];
}

[[gnu::always_inline]] inline void load_interleaved4(const uint8_t *p, U8 &a, U8 &b, U8 &c, U8 &d) {
    for (int i = 0; i < kVectorBytes; i++, p += 4) a[i] = p[0], b[i] = p[1], c[i] = p[2], d[i] = p[3];
}

// And back, sample by sample in turn.
[[gnu::always_inline]] inline void store_interleaved2(uint8_t *p, U8 a, U8 b) {
    for (int i = 0; i < kVectorBytes; i++, p += 2) p[0] = a[i], p[1] = b[i];
}

[[gnu::always_inline]] inline void store_interleaved3(uint8_t *p, U8 a, U8 b, U8 c) {
    for (int i = 0; i < kVectorBytes; i++, p += 3) p[0] = a[i], p[1] = b[i], p[2] = c[i];
}

[[gnu::always_inline]] inline void store_interleaved4(uint8_t *p, U8 a, U8 b, U8 c, U8 d) {
    for (int i = 0; i < kVectorBytes; i++, p += 4) p[0] = a[i], p[1] = b[i], p[2] = c[i], p[3] = d[i];
}

// Words in turn.
[[gnu::always_inline]] inline void store_interleaved2(uint8_t *p, U16 a, U16 b) {
    for (int i = 0; i < kVectorBytes / 2; i++, p += 4) {
        const uint16_t pair[2] = {a[i], b[i]};
        memcpy(p, pair, 4);
    }
}

// As many bytes from memory as a vector of `Bytes` bytes has 16-bit lanes, one in each.
template <int Bytes>
[[gnu::always_inline]] inline Vec<int16_t, Bytes> load_widened(const uint8_t *p) {
    Vec<int16_t, 16> v = {};
    for (int i = 0; i < 8; i++) v[i] = p[i];
    return v;
}

// 16 bytes from p + offsets[0] and, where there is a second 128-bit lane, 16 from p + offsets[1].
template <class Offset>
[[gnu::always_inline]] inline U8 load_windows(const uint8_t *p, const Offset *offsets) {
    return load<U8>(p + offsets[0]);
}

// x86 with 32 bytes alone: load_groups(p, mask), those groups of 4 bytes whose mask has its top bit set, 0 for the
// others, which are not touched.

// NEON alone: load_unscaled(p), a vector, or fewer bytes with zeros after them; load_together(p, v), two vectors or
// four one after the other; store_alone(p, v), a vector; store_pair(p, a, b), two of words; store_copied4(), what
// store_interleaved4() does, for vectors that come straight from memory.

// ---- Arithmetic ----

// A a + B b of bytes, in 16 bits. A and B are in -128..127, at most one of them below 0, and every sum within 16 bits
// signed.
template <int A, int B>
[[gnu::always_inline]] inline Wide weighted(U8 a, U8 b) {
    constexpr int kHalf = kVectorBytes / 2;
    return {each_lane<U16>([&](int i) { return A * a[i] + B * b[i]; }),
            each_lane<U16>([&](int i) { return A * a[i + kHalf] + B * b[i + kHalf]; })};
}

// A a + B b + C c of bytes, in 16 bits, with the weights of RGB to YUV: all positive of the sum 256, or A or C 128 and
// the sum 0.
template <int A, int B, int C>
[[gnu::always_inline]] inline Wide weighted(U8 a, U8 b, U8 c) {
    return weighted<A, B>(a, b) + weighted<C, 0>(c, c);
}

// A a + B b of words read as signed, in 32 bits.
template <int A, int B>
[[gnu::always_inline]] inline Wide32 weighted(I16 a, I16 b) {
    constexpr int kHalf = kVectorBytes / 4;
    return {each_lane<I32>([&](int i) { return A * a[i] + B * b[i]; }),
            each_lane<I32>([&](int i) { return A * a[i + kHalf] + B * b[i + kHalf]; })};
}

// For each pair of neighbouring bytes of v, as pair_up() lays pairs, the sum of the two times those of the weights,
// which are 0 to 8.
[[gnu::always_inline]] inline U16 weigh_pairs(U8 v, U8 weights) {
    return each_lane<U16>([&](int i) { return v[2 * i] * weights[2 * i] + v[2 * i + 1] * weights[2 * i + 1]; });
}

// What weigh_pairs() gives for v times `first`, plus the same for w times `second`; in all lanes `first` is 8 -
// `second`.
[[gnu::always_inline]] inline U16 weigh_two_pairs(U8 v, U8 w, U8 weights, U16 first, U16 second) {
    return weigh_pairs(v, weights) * first + weigh_pairs(w, weights) * second;
}

// Clamped to the lane's range: bytes, unsigned words, signed words.
[[gnu::always_inline]] inline U8 add_saturated(U8 a, U8 b) {
    return each_lane<U8>([&](int i) { return clamped(a[i] + b[i], 0, UINT8_MAX); });
}

[[gnu::always_inline]] inline U8 subtract_saturated(U8 a, U8 b) {
    return each_lane<U8>([&](int i) { return clamped(a[i] - b[i], 0, UINT8_MAX); });
}

[[gnu::always_inline]] inline Vec<uint16_t, 16> add_saturated(Vec<uint16_t, 16> a, Vec<uint16_t, 16> b) {
    return each_lane<Vec<uint16_t, 16>>([&](int i) { return clamped(a[i] + b[i], 0, UINT16_MAX); });
}

// Vectors of 16 bytes alone.
[[gnu::always_inline]] inline Vec<int16_t, 16> subtract_saturated(Vec<int16_t, 16> a, Vec<int16_t, 16> b) {
    return each_lane<Vec<int16_t, 16>>([&](int i) { return clamped(a[i] - b[i], INT16_MIN, INT16_MAX); });
}

// The smaller of two words.
[[gnu::always_inline]] inline U16 min(U16 a, U16 b) {
    return each_lane<U16>([&](int i) { return a[i] < b[i] ? a[i] : b[i]; });
}

// The larger of two unsigned lanes.
template <class V>
[[gnu::always_inline]] inline V max_lanes(V a, V b) {
    for (size_t i = 0; i < sizeof a / sizeof a[0]; i++) a[i] = a[i] > b[i] ? a[i] : b[i];
    return a;
}

// |a - b| where it is below 32767; from there on some value of 32767 to 65535.
[[gnu::always_inline]] inline Vec<uint16_t, 16> abs_difference(Vec<int16_t, 16> a, Vec<int16_t, 16> b) {
    return each_lane<Vec<uint16_t, 16>>([&](int i) { return a[i] > b[i] ? a[i] - b[i] : b[i] - a[i]; });
}

// |a|; the lowest value becomes 2^15 or 2^31.
[[gnu::always_inline]] inline Vec<uint16_t, 16> abs_lanes(Vec<int16_t, 16> a) {
    return abs_difference(a, Vec<int16_t, 16>{});
}

[[gnu::always_inline]] inline Vec<uint32_t, 16> abs_lanes(Vec<int32_t, 16> a) {
    for (int i = 0; i < 4; i++) a[i] = a[i] < 0 ? static_cast<int32_t>(0 - static_cast<uint32_t>(a[i])) : a[i];
    return (Vec<uint32_t, 16>)a;
}

// Whether there is sums_and_differences<Width, Bytes>(row, next), a vector of `Bytes` bytes loaded as first stage of
// a horizontal Hadamard transform: the sums of neighbouring bytes in the lower half of the 16-bit lanes, their
// differences in the upper one. `Width` bytes come from `row`, and as many from `next` if that is a quarter of the
// vector. With rows of 4 bytes, each half has first the sums and then the differences of one row.
constexpr bool kHasSumsAndDifferences = false;

// ---- Widen and narrow ----

// a - b of signed words in 32 bits, the lower half of the lanes and the upper one, or so of each 128-bit lane.
[[gnu::always_inline]] inline void subtract_widened(Vec<int16_t, 16> a, Vec<int16_t, 16> b, Vec<int32_t, 16> &lo,
                                                    Vec<int32_t, 16> &hi) {
    lo = each_lane<Vec<int32_t, 16>>([&](int i) { return a[i] - b[i]; });
    hi = each_lane<Vec<int32_t, 16>>([&](int i) { return a[i + 4] - b[i + 4]; });
}

// NEON alone: subtract_widened() of two vectors of 8 bytes, and subtract_widened<Upper>() of the lower or the upper
// half of 16 bytes.

// Bits 15..8 of each lane.
[[gnu::always_inline]] inline U8 high_bytes(Wide w) {
    return bytes_of(w, [](uint16_t x) { return x >> 8; });
}

// (C v) >> 8 of bytes, C in 0..255.
template <int C>
[[gnu::always_inline]] inline U8 high_bytes(U8 v) {
    return each_lane<U8>([&](int i) { return C * v[i] >> 8; });
}

// The same of each lane + 128, which does not overflow.
[[gnu::always_inline]] inline U8 high_bytes_rounded(Wide w) {
    return high_bytes(w + 128);
}

template <int C>
[[gnu::always_inline]] inline U8 high_bytes_rounded(U8 v) {
    return each_lane<U8>([&](int i) { return (C * v[i] + 128) >> 8; });
}

// (w + 128) >> 8 of lanes read as signed, clamped to -128..127.
[[gnu::always_inline]] inline U8 narrow_rounded(Wide w) {
    return bytes_of(w, [](uint16_t x) { return clamped((static_cast<int16_t>(x) + 128) >> 8, INT8_MIN, INT8_MAX); });
}

// Clamped to 0..65535.
[[gnu::always_inline]] inline U16 narrow(Wide32 w) {
    constexpr int kHalf = kVectorBytes / 4;
    return each_lane<U16>([&](int i) { return clamped(i < kHalf ? w.lo[i] : w.hi[i - kHalf], 0, UINT16_MAX); });
}

// Bits 7..0 of the words of a, then of those of b.
[[gnu::always_inline]] inline U8 low_bytes(U16 a, U16 b) {
    return bytes_of({a, b}, [](uint16_t x) { return x & 0xFF; });
}

// 32-bit lanes below 2^16 as 16-bit lanes, those of a first. Vectors of 16 bytes alone.
[[gnu::always_inline]] inline Vec<uint16_t, 16> join(Vec<uint32_t, 16> a, Vec<uint32_t, 16> b) {
    return each_lane<Vec<uint16_t, 16>>([&](int i) { return i < 4 ? a[i] : b[i - 4]; });
}

// 16-bit lanes >> N, below 256, as bytes: in each 128-bit lane those of a, then those of b.
template <int N>
[[gnu::always_inline]] inline U8 narrow_shifted(U16 a, U16 b) {
    return bytes_of({a, b}, [](uint16_t x) { return x >> N; });
}

// ((8 - N) a + N b) >> 6 of 16-bit lanes below 2048, as bytes, and behind them, in each 128-bit lane, the same of c and
// d. N is 1 to 7. The lanes stand kBlendBits higher, with zeros below.
constexpr int kBlendBits = 0;

template <int N>
[[gnu::always_inline]] inline U8 narrow_blend(U16 a, U16 b, U16 c, U16 d) {
    const U16 first = splat<U16>(8 - N), second = splat<U16>(N);
    return narrow_shifted<6>(a * first + b * second, c * first + d * second);
}

// The lower 8 of 16 bytes as 16-bit lanes.
[[gnu::always_inline]] inline Vec<int16_t, 16> widen_low(Vec<uint8_t, 16> a) {
    return each_lane<Vec<int16_t, 16>>([&](int i) { return a[i]; });
}

// ---- Shuffle ----

// Bytes of v by index, 0 to 15, within each 128-bit lane.
[[gnu::always_inline]] inline U8 shuffle(U8 v, U8 indices) {
    return each_lane<U8>([&](int i) { return v[indices[i]]; });
}

// The same from two vectors: 0 to 15 are the bytes of v, 16 to 31 those of w.
[[gnu::always_inline]] inline U8 shuffle(U8 v, U8 w, U8 indices) {
    return each_lane<U8>([&](int i) { return indices[i] < 16 ? v[indices[i]] : w[indices[i] - 16]; });
}

// Eight pairs of bytes from lanes below 256, the first of each from a, the second from b, laid as weigh_pairs() takes
// them: side by side, or all first ones before all second ones. Vectors of 16 bytes alone.
constexpr bool kPairsSideBySide = true;

[[gnu::always_inline]] inline Vec<uint8_t, 16> pair_up(Vec<uint16_t, 16> a, Vec<uint16_t, 16> b) {
    return each_lane<Vec<uint8_t, 16>>([&](int i) { return i % 2 == 0 ? a[i / 2] : b[i / 2]; });
}

// Deals groups of `Bytes` bytes, 4 or 8, in each 128-bit lane: a gets those with even numbers of both vectors, b those
// with odd ones, in an order of the set's own.
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

// Where a register has 32 bytes there is also concatenate(lo, hi): two vectors of 16 bytes side by side in one.

// ---- Reduce ----

// The type of the sums of add_byte_distances(), and how often a vector may be added to one before a lane overflows.
template <int Bytes>
using ByteDistances = Vec<uint32_t, Bytes>;
constexpr int kMaxByteDistances = 1 << 20;

// Adds |a - b| of every byte to some lane. Where single rows of 4 or 8 bytes are to be taken by themselves, this and
// the next one also take vectors of 8 bytes.
[[gnu::always_inline]] inline void add_byte_distances(Vec<uint32_t, 16> &sum, Vec<uint8_t, 16> a, Vec<uint8_t, 16> b) {
    for (int i = 0; i < 16; i++) sum[i / 4] += static_cast<uint32_t>(a[i] > b[i] ? a[i] - b[i] : b[i] - a[i]);
}

// The type of the sums of add_byte_squares().
template <int Bytes>
using ByteSquares = Vec<uint32_t, Bytes>;

// Adds (a - b)^2 of every byte to some lane, modulo 2^32.
[[gnu::always_inline]] inline void add_byte_squares(Vec<uint32_t, 16> &sum, Vec<uint8_t, 16> a, Vec<uint8_t, 16> b) {
    for (int i = 0; i < 16; i++) sum[i / 4] += static_cast<uint32_t>((a[i] - b[i]) * (a[i] - b[i]));
}

// Adds lanes below 2^15 to some lane, modulo 2^32.
[[gnu::always_inline]] inline void add_pairs(Vec<uint32_t, 16> &sum, Vec<uint16_t, 16> a) {
    for (int i = 0; i < 8; i++) sum[i / 2] += a[i];
}

// Adds the squares of lanes below 2^15 to some lane, modulo 2^32.
[[gnu::always_inline]] inline void add_squares(Vec<uint32_t, 16> &sum, Vec<uint16_t, 16> a) {
    for (int i = 0; i < 8; i++) sum[i / 2] += static_cast<uint32_t>(a[i]) * a[i];
}

// The larger one of each pair of neighbouring unsigned lanes of both vectors, in any order.
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

// Whether it is in any 16-bit lane.
[[gnu::always_inline]] inline bool top_bit_set(Vec<uint16_t, 16> a) {
    uint16_t all = 0;
    for (int i = 0; i < 8; i++) all = static_cast<uint16_t>(all | a[i]);
    return all >= 0x8000;
}

// Of sums of any of the types above, modulo 2^32.
[[gnu::always_inline]] inline uint32_t sum_lanes(Vec<uint32_t, 16> a) {
    return a[0] + a[1] + a[2] + a[3];
}

}  // namespace qorv::QORV_ISA

#endif

// As many interleaved pixels as a vector has bytes, in a form of the set's own: that of x86 is another one.
#ifndef QORV_SIMD_X86

namespace qorv::QORV_ISA {

struct PackedPixels {
    U8 channel[4];
};

// Of three or four bytes, and of 5-6-5 words, whose low bits become zero.
[[gnu::always_inline]] inline PackedPixels load_packed3(const uint8_t *p) {
    PackedPixels v = {};
    load_interleaved3(p, v.channel[0], v.channel[1], v.channel[2]);
    return v;
}

[[gnu::always_inline]] inline PackedPixels load_packed4(const uint8_t *p) {
    PackedPixels v = {};
    load_interleaved4(p, v.channel[0], v.channel[1], v.channel[2], v.channel[3]);
    return v;
}

[[gnu::always_inline]] inline PackedPixels load_packed565(const uint8_t *p) {
    U8 low = {}, high = {};  // GGGBBBBB and RRRRRGGG
    load_interleaved2(p, low, high);
    return {{high & 0xF8, (high << 5) | ((low >> 3) & 0x1C), low << 3, U8{}}};
}

// What weighted() gives for the first three channels.
template <int A, int B, int C>
[[gnu::always_inline]] inline Wide weighted(const PackedPixels &v) {
    return weighted<A, B, C>(v.channel[0], v.channel[1], v.channel[2]);
}

// The fourth of four bytes.
[[gnu::always_inline]] inline U8 fourth(const PackedPixels &v) {
    return v.channel[3];
}

}  // namespace qorv::QORV_ISA

#endif
