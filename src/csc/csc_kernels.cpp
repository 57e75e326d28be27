#include "csc/csc_kernels.h"

#include "core/isa.h"
#include "csc/block_access.h"
// What it is made of comes first.
#include "csc/convert.h"

namespace qorv::QORV_ISA {

#ifdef QORV_SIMD_NEON
template <class Dest>
requires(sizeof Dest::order == 4) constexpr bool kInPairs<Planar4, SameColour, Dest> = true;
#endif

namespace {

using Sixteen = Vec<uint8_t, 16>;

// The whole pixels of each 128-bit lane, one after the other. What a lane writes behind its pixels comes to the next
// one's, before these are written.
template <int Bytes>
[[gnu::always_inline]] inline void store_whole_pixels(uint8_t *dst, const U8 &v) {
    if constexpr (sizeof v == sizeof(Sixteen)) {
        store(dst, v);
    } else {
        store(dst, __builtin_shufflevector(v, v, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
        store(dst + 16 / Bytes * Bytes,
              __builtin_shufflevector(v, v, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31));
    }
}

// Of each byte of a lane: where its pixel begins, and its place in the pixel. Bytes behind the last whole pixel stand
// for the first.
template <int Bytes>
struct Pattern {
    uint8_t pixel[kVectorBytes] = {}, place[kVectorBytes] = {};

    constexpr Pattern() {
        for (int i = 0; i < kVectorBytes; i++) {
            const int byte = i % 16 < 16 / Bytes * Bytes ? i % 16 : 0;
            place[i] = static_cast<uint8_t>(byte % Bytes);
            pixel[i] = static_cast<uint8_t>(byte - byte % Bytes);
        }
    }
};

template <int Bytes>
void reorder(const uint8_t *src, uint8_t *dst, const uint8_t *order, ptrdiff_t n) {
    static constexpr Pattern<Bytes> kPattern;
    constexpr ptrdiff_t kLanes = kVectorBytes / 16, kWhole = 16 / Bytes * Bytes;
    constexpr uint16_t kOffsets[] = {0, kWhole};
    const U8 orders = (U8)splat<U32>(load<uint32_t>(order));
    const U8 indices = load<U8>(kPattern.pixel) + shuffle(orders, load<U8>(kPattern.place));
    const ptrdiff_t bytes = n * Bytes;
    ptrdiff_t i = 0;
    for (; i + (kLanes - 1) * kWhole + 16 <= bytes; i += kLanes * kWhole) {
        store_whole_pixels<Bytes>(dst + i, shuffle(load_windows(src + i, kOffsets), indices));
    }
    uint8_t last[kVectorBytes] = {};
    for (; i < bytes; i += kWhole) {
        const size_t rest = static_cast<size_t>(bytes - i < kWhole ? bytes - i : kWhole);
        memcpy(last, src + i, rest);
        store(last, shuffle(load<U8>(last), indices));
        memcpy(dst + i, last, rest);
    }
}

}  // namespace

static_assert(kVectorBytes % kLeastBlock == 0);

// clang-format off
constinit const CscKernels csc_kernels = {
    .block = kVectorBytes,
    .narrower = kVectorBytes == kLeastBlock ? &pixel::csc_kernels : &v2::csc_kernels,
    .reorder3 = reorder<3>,
    .reorder4 = reorder<4>,
    .yuv444_to_bgr888 = convert<Planar3, YuvToRgb, Bgr888>,
    .drop_2_bits = convert<WordPlane, Drop2Bits, BytePlane>,
#define QORV_KERNEL_ENTRY(name, source, colour, dest) .name = convert<source, colour, dest>,
    QORV_CSC_CONVERTERS(QORV_KERNEL_ENTRY)
};
// clang-format on

}  // namespace qorv::QORV_ISA
