// The loops over pixels that scale.
#pragma once

#include "csc/csc_kernels.h"

namespace qorv {

struct Grid;

// Converts pixel by pixel what is sampled of planes of bytes. Sizes are the destination's.
using ScalingLoop = void (*)(const Grid &grid, const void *const *src, const int32_t *src_stride, void *const *dst,
                             const int32_t *dst_stride, ptrdiff_t w, ptrdiff_t h);

struct ScalingLoops {
#define QORV_KERNEL_MEMBER(name, source, colour, dest) ScalingLoop name;
    QORV_CSC_SCALING_CONVERTERS(QORV_KERNEL_MEMBER)
#undef QORV_KERNEL_MEMBER
};

namespace pixel {
extern QORV_INTERNAL const ScalingLoops scaling_loops;
}

}  // namespace qorv
