// The bilinear sampling kernels of one instruction set.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "resize/axis.h"

namespace qorv {

// Source rows by number. One of them may be held elsewhere than the others, whose memory is then not looked at.
struct SourceRows {
    const uint8_t *base;  // row number `first`
    ptrdiff_t stride;     // bytes
    int64_t first;
    int64_t held;  // -1: none
    const uint8_t *held_row;
};

// What every job says of the grid of positions.
struct Grid {
    Axis x, y;
    int32_t neighbour;  // pixels to the right neighbour: 1 << x.shift
    int64_t first_y;    // position of the first row that is produced
    int32_t w, h;       // columns and rows to produce, both at least 1
};

// Any overlap of source and destination is excluded.
struct ResizeJob {
    Grid grid;
    SourceRows rows;
    uint8_t *dst;
    ptrdiff_t dst_stride;  // bytes
};

using ResizeKernel = void (*)(const ResizeJob &job);

struct ResizeKernels {
    ResizeKernel gray, rgb, rgb_to_565, rgb565, rgba;
};

// Pixels held at a time, in columns of the destination. A multiple of every vector length.
constexpr int kStripColumns = 256;

}  // namespace qorv
