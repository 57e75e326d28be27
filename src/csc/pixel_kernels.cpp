// The loops over pixels: all samples of a pixel are read before its first is written, so that any overlap comes out
// right.
#define QORV_ISA pixel

#include "csc/pixel_kernels.h"

#include "csc/pixel_access.h"
#include "resize/resize_kernels.h"
// What it is made of comes first.
#include "csc/convert.h"

namespace qorv::QORV_ISA {

namespace {

// The two samples between which a position lies, and the weight of the second in eighths. A neighbour of weight 0 may
// not exist.
struct Neighbours {
    ptrdiff_t first, second;
    int weight;

    [[gnu::always_inline]] Neighbours(const Axis &axis, ptrdiff_t i)
        : first(i * axis.step >> kPositionBits << axis.shift), weight(eighths_at(i * axis.step)) {
        second = first + (ptrdiff_t{weight != 0} << axis.shift);
    }
    [[gnu::always_inline]] int blend(int a, int b) const { return (8 - weight) * a + weight * b; }
};

template <class Source, class Colour, class Dest>
void scale(const Grid &grid, const void *const *src, const int32_t *src_stride, void *const *dst,
           const int32_t *dst_stride, ptrdiff_t w, ptrdiff_t h) {
    const Axis x_axis = grid.x;  // a copy, which no store to the picture can change
    RowPointers<Dest::layout, uint8_t> to(dst);
    for (ptrdiff_t y = 0; y < h; y++, to.advance(dst_stride)) {
        const Neighbours down(grid.y, y);
        RowPointers<Source::layout, const uint8_t> upper(src), lower(src);
        upper.advance(src_stride, down.first);
        lower.advance(src_stride, down.second);
        for (ptrdiff_t x = 0; x < w; x++) {
            const Neighbours across(x_axis, x);
            Pixels pixel{{0, 0, 0, kOpaque}};
#pragma GCC unroll 4
            for (int i = 0; i < Source::layout.count; i++) {
                pixel.c[i] = down.blend(across.blend(upper.p[i][across.first], upper.p[i][across.second]),
                                        across.blend(lower.p[i][across.first], lower.p[i][across.second])) >>
                             6;
            }
            Access<Dest>::store(to.p, x, Colour::apply(pixel));
        }
    }
}

}  // namespace

// clang-format off
constinit const CscKernels csc_kernels = {
    .block = 1,
    .narrower = nullptr,
    .reorder3 = nullptr,  // other orders of pointers are staged for blocks alone
    .reorder4 = nullptr,
    .yuv444_to_bgr888 = nullptr,
    .drop_2_bits = convert<WordPlane, Drop2Bits, BytePlane>,
#define QORV_KERNEL_ENTRY(name, source, colour, dest) .name = convert<source, colour, dest>,
    QORV_CSC_CONVERTERS(QORV_KERNEL_ENTRY)
#undef QORV_KERNEL_ENTRY
};

constinit const ScalingLoops scaling_loops = {
#define QORV_KERNEL_ENTRY(name, source, colour, dest) .name = scale<source, colour, dest>,
    QORV_CSC_SCALING_CONVERTERS(QORV_KERNEL_ENTRY)
#undef QORV_KERNEL_ENTRY
};
// clang-format on

}  // namespace qorv::QORV_ISA
