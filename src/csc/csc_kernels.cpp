#include "csc/csc_kernels.h"

#include "core/isa.h"
#include "csc/block_access.h"

namespace qorv::QORV_ISA {

namespace {

template <class Source, class Colour, class Dest>
void convert(const uint8_t *const *src, const ptrdiff_t *src_stride, uint8_t *const *dst, const ptrdiff_t *dst_stride,
             ptrdiff_t w, ptrdiff_t h) {
    constexpr Layout in = Source::layout, out = Dest::layout;
    constexpr ptrdiff_t kBlock = Access<Source>::kBlock;
    const uint8_t *s[kMaxChannels] = {};
    uint8_t *d[kMaxChannels] = {};
#pragma GCC unroll 4
    for (int i = in.first; i < in.count; i++) s[i] = src[i];
#pragma GCC unroll 4
    for (int i = out.first; i < out.count; i++) d[i] = dst[i];

    const auto block = [&](ptrdiff_t x) __attribute__((always_inline)) {
        Access<Dest>::store(d, x, Colour::apply(Access<Source>::load(s, x)));
    };
    for (ptrdiff_t y = 0; y < h; y++) {
        ptrdiff_t x = 0;
        for (; x <= w - kBlock; x += kBlock) block(x);
        // The rest once more as a whole block that ends with the row; what it repeats gets the same values.
        if (x < w) block(w - kBlock);
#pragma GCC unroll 4
        for (int i = in.first; i < in.count; i++) s[i] += src_stride[i];
#pragma GCC unroll 4
        for (int i = out.first; i < out.count; i++) d[i] += dst_stride[i];
    }
}

}  // namespace

// clang-format off
constinit const CscKernels csc_kernels = {
    .block = kVectorBytes,
    .drop_2_bits = convert<WordPlane, Drop2Bits, BytePlane>,
#define QORV_KERNEL_ENTRY(name, source, colour, dest) .name = convert<source, colour, dest>,
    QORV_CSC_CONVERTERS(QORV_KERNEL_ENTRY)
#undef QORV_KERNEL_ENTRY
};
// clang-format on

}  // namespace qorv::QORV_ISA
