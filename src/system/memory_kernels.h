// The memory routines that gain from wide registers. Other byte fills and long copies are the C library's.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace qorv {

// The widths of block copies, in samples; the last one stands for every other.
constexpr uint8_t kBlockWidths[] = {2, 4, 6, 8, 12, 16, 24, 32, 48, 64};
constexpr size_t kBlockWidthCount = sizeof kBlockWidths;

// Copies rows of one length; strides in bytes.
// What qorv_mset_x128() writes of `n` bytes, at least 1: whole pieces.
constexpr int kFillPiece = 128;
[[gnu::always_inline]] constexpr size_t whole_pieces(int32_t n) {
    return (static_cast<size_t>(n) + kFillPiece - 1) / kFillPiece * kFillPiece;
}

using CopyRows = void (*)(void *dst, const void *src, ptrdiff_t dst_stride, ptrdiff_t src_stride, int32_t rows);

struct MemoryKernels {
    void (*mset16)(void *dst, uint16_t value, int32_t n);  // as the exported function
    // Block copies of 8-bit and of 16-bit samples, in the order of kBlockWidths.
    CopyRows copy_rows[2][kBlockWidthCount];
};

}  // namespace qorv
