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

// The grid of a whole picture.
inline Grid grid_between(int32_t src_w, int32_t src_h, int32_t dst_w, int32_t dst_h) {
    const Axis x = axis_between(src_w, dst_w);
    return {.x = x, .y = axis_between(src_h, dst_h), .neighbour = 1 << x.shift, .first_y = 0, .w = dst_w, .h = dst_h};
}

// Pixels of a source row from its first to the last one that may be read: the right neighbour of the last column's.
// With a step of 0 there is none: behind it is a source of one pixel.
[[gnu::always_inline]] inline int64_t source_pixels(const Grid &grid) {
    const int64_t last = (grid.w - 1) * grid.x.step >> kPositionBits << grid.x.shift;
    return last + (grid.x.step != 0 ? grid.neighbour : 0) + 1;
}

// Any overlap of source and destination is excluded.
struct ResizeJob {
    Grid grid;
    SourceRows rows;
    uint8_t *dst;
    ptrdiff_t dst_stride;  // bytes
};

using ResizeKernel = void (*)(const ResizeJob &job);

constexpr int kMaxPlanes = 4;

// Planes of bytes of one size, sampled together. Rows of samples are handed on strip by strip.
struct PlanesJob {
    Grid grid;  // w is the whole width, h the rows to produce
    int planes;
    SourceRows rows[kMaxPlanes];
    int32_t first_column, columns;  // of the destination, to produce
    int32_t first_row;              // number of the row at grid.first_y
    // Samples of each plane for columns x to x + n - 1 of row y, readable up to the next whole vector.
    void (*take)(void *context, const uint8_t *const *samples, int32_t x, int32_t n, int32_t y);
    void *context;
};

struct ResizeKernels {
    ResizeKernel gray, rgb, rgb_to_565, rgb565, rgba;
    void (*planes)(const PlanesJob &job);
};

// Pixels held at a time, in columns of the destination. A multiple of every vector length.
constexpr int kStripColumns = 256;

}  // namespace qorv
