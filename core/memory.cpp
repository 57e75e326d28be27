#include <string.h>

#include "core/isa.h"
#include "core/memory_kernels.h"
#include "qorv_skia.h"

using namespace qorv;

namespace {

void fill(void *dst, int32_t value, int64_t n) {
    if (n > 0) memset(dst, value, static_cast<size_t>(n));
}

// Sizes and strides in bytes.
void copy_picture(void *dst, const void *src, ptrdiff_t dst_stride, ptrdiff_t src_stride, ptrdiff_t width,
                  int32_t height) {
    if (width < 1 || height < 1) return;
    if (width == dst_stride && width == src_stride) {
        memcpy(dst, src, static_cast<size_t>(width) * static_cast<size_t>(height));
        return;
    }
    char *to = static_cast<char *>(dst);
    const char *from = static_cast<const char *>(src);
    for (int32_t row = 0; row < height; row++, to += dst_stride, from += src_stride) {
        memcpy(to, from, static_cast<size_t>(width));
    }
}

// The samples that a block copy moves of each row: the block widths themselves, 64 for any other.
constexpr int32_t block_width(int32_t width) {
    switch (width) {
        case 2:
        case 4:
        case 6:
        case 8:
        case 12:
        case 16:
        case 24:
        case 32:
        case 48:
            return width;
        default:
            return 64;
    }
}

}  // namespace

extern "C" void qorv_mset_x128(void *dst, int32_t value, int32_t n) {
    const int64_t rounded = (static_cast<int64_t>(n) + 127) & ~int64_t{127};
    fill(dst, value, rounded > 128 ? rounded : 128);
}

extern "C" void qorv_mset_x64(void *dst, int32_t value, size_t n) {
    memset(dst, value, n);
}

extern "C" void qorv_mset_x64a(void *dst, int32_t value, size_t n) {
    memset(dst, value, n);
}

extern "C" void qorv_mset_x32(void *dst, int32_t value, int32_t n) {
    fill(dst, value, n);
}

extern "C" void qorv_mset_x32ax4(void *dst, int32_t value, int32_t n) {
    fill(dst, value, n);
}

extern "C" void qorv_mclr_x64(void *dst, int32_t n) {
    fill(dst, 0, n);
}

extern "C" void qorv_mset16(void *dst, uint16_t value, int32_t n) {
    if (n > 0) active.memory->fill16(dst, value, static_cast<size_t>(n));
}

extern "C" void qorv_mcpy_pic(void *dst, const void *src, int32_t dst_stride, int32_t src_stride, int32_t width,
                              int32_t height) {
    copy_picture(dst, src, dst_stride, src_stride, width, height);
}

extern "C" void qorv_mcpy_pic_16(void *dst, const void *src, int32_t dst_stride, int32_t src_stride, int32_t width,
                                 int32_t height) {
    copy_picture(dst, src, 2 * ptrdiff_t{dst_stride}, 2 * ptrdiff_t{src_stride}, 2 * ptrdiff_t{width}, height);
}

extern "C" void qorv_mcpy_blk(void *dst, const void *src, int32_t dst_stride, int32_t src_stride, int32_t width,
                              int32_t height) {
    active.memory->copy_block(dst, src, dst_stride, src_stride, block_width(width), height);
}

extern "C" void qorv_mcpy_blk_16(void *dst, const void *src, int32_t dst_stride, int32_t src_stride, int32_t width,
                                 int32_t height) {
    active.memory->copy_block(dst, src, 2 * ptrdiff_t{dst_stride}, 2 * ptrdiff_t{src_stride}, 2 * block_width(width),
                              height);
}
