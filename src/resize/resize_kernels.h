// The bilinear sampling kernels of one instruction set.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "resize/axis.h"

namespace qorv {

// Source rows by number. One row may be held in other memory: its place between the others is then not read.
struct SourceRows {
    const uint8_t *base;  // row number `first`
    ptrdiff_t stride;     // bytes
    int64_t first;
    int64_t held;  // -1: none
    const uint8_t *held_row;

    const uint8_t *row(int64_t number) const { return number == held ? held_row : base + (number - first) * stride; }
};

// The source rows on both sides of a position, by number, and the weight of the lower one in eighths. A row of weight 0
// may not exist: then the upper one stands in for it.
struct RowNumbers {
    int64_t upper, lower;
    int eighths;

    [[gnu::always_inline]] RowNumbers(int64_t y, int32_t shift)
        : upper(y >> kPositionBits << shift), eighths(eighths_at(y)) {
        lower = eighths == 0 ? upper : upper + (int64_t{1} << shift);
    }
};

// Where the samples of a destination lie on its source: column x at x times the step of its axis, rows alike.
struct Grid {
    Axis x, y;
    int32_t neighbour;  // source pixels to the right neighbour: 1 << x.shift
};

inline Grid grid_between(int32_t src_w, int32_t src_h, int32_t dst_w, int32_t dst_h) {
    const Axis x = axis_between(src_w, dst_w);
    return {.x = x, .y = axis_between(src_h, dst_h), .neighbour = 1 << x.shift};
}

// The part of a destination that is to be produced: its first column and row, columns and rows (at least 1 of both).
struct Part {
    int32_t x, y, w, h;

    int32_t end_x() const { return x + w; }
};

// Pixels of a source row that the first `columns` columns of a destination look at, the right neighbour of the last
// one included. With a step of 0 there is no neighbour: behind it is a source of one pixel.
[[gnu::always_inline]] inline int64_t source_pixels(const Grid &grid, int32_t columns) {
    const int64_t last = (columns - 1) * grid.x.step >> kPositionBits << grid.x.shift;
    return last + (grid.x.step != 0 ? grid.neighbour : 0) + 1;
}

// For kernels, the destination's rows overlap neither the source nor each other.
struct ResizeJob {
    Grid grid;
    Part part;
    SourceRows rows;
    uint8_t *dst;          // first pixel of the part
    ptrdiff_t dst_stride;  // bytes
};

using ResizeKernel = void (*)(const ResizeJob &job);

constexpr int kMaxPlanes = 4;

// Three or four planes of bytes of one size, sampled together. Rows of samples are handed on strip by strip.
struct PlanesJob {
    Grid grid;
    Part part;
    int planes;
    SourceRows rows[kMaxPlanes];
    // Samples of each plane for columns x to x + n - 1 of row y, readable up to the next whole vector.
    void (*take)(void *context, const void *const *samples, int32_t x, int32_t n, int32_t y);
    void *context;
};

struct PictureKernels {
    ResizeKernel gray, rgb, rgb_to_565, rgb565, rgba;
};

struct ResizeKernels {
    PictureKernels pictures;
    void (*planes)(const PlanesJob &job);
};

// Pixels held at a time, in columns of the destination. A multiple of every vector length.
constexpr int kStripColumns = 256;

}  // namespace qorv
