#include "csc/csc_kernels.h"

#include "core/isa.h"
#include "csc/block_access.h"
// What it is made of comes first.
#include "csc/convert.h"

namespace qorv::QORV_ISA {

namespace {

// In each 128-bit lane the whole pixels of 16 bytes. What a lane's last byte writes behind them comes to the next pixel,
// before this is written itself.
template <int Bytes>
void reorder(const uint8_t *src, uint8_t *dst, const uint8_t *order, ptrdiff_t n) {
    constexpr int kLanes = kVectorBytes / 16;
    constexpr ptrdiff_t kWhole = 16 / Bytes * Bytes;
    constexpr uint16_t kOffsets[] = {0, kWhole};
    U8 indices = {};
    for (int i = 0; i < kVectorBytes; i++) {
        const int byte = i % 16;
        indices[i] = static_cast<uint8_t>(byte < kWhole ? byte / Bytes * Bytes + order[byte % Bytes] : 0);
    }
    ptrdiff_t i = 0;
    uint8_t pixels[kVectorBytes] = {};
    for (; i + (kLanes - 1) * kWhole + 16 <= n * Bytes; i += kLanes * kWhole) {
        store(pixels, shuffle(load_windows(src + i, kOffsets), indices));
#pragma GCC unroll 2
        for (int lane = 0; lane < kLanes; lane++) memcpy(dst + i + lane * kWhole, pixels + 16 * lane, 16);
    }
    for (; i < n * Bytes; i += kWhole) {
        const size_t rest = static_cast<size_t>(n * Bytes - i < kWhole ? n * Bytes - i : kWhole);
        memcpy(pixels, src + i, rest);
        store(pixels, shuffle(load<U8>(pixels), indices));
        memcpy(dst + i, pixels, rest);
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
    .drop_2_bits = convert<WordPlane, Drop2Bits, BytePlane>,
#define QORV_KERNEL_ENTRY(name, source, colour, dest) .name = convert<source, colour, dest>,
    QORV_CSC_CONVERTERS(QORV_KERNEL_ENTRY)
#undef QORV_KERNEL_ENTRY
};
// clang-format on

}  // namespace qorv::QORV_ISA
