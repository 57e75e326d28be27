#include <string.h>

#include "core/isa.h"
#include "qorv_skia.h"
#include "system/memory_kernels.h"

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

// For each width its place among kBlockWidths.
struct BlockPlaces {
    uint8_t of[65];
    constexpr BlockPlaces() : of{} {
        for (uint8_t &place : of) place = kBlockWidthCount - 1;
        for (uint8_t place = 0; place < kBlockWidthCount; place++) of[kBlockWidths[place]] = place;
    }
};
constexpr BlockPlaces kBlockPlaces;

CopyRows block_copier(int32_t sample_bytes, int32_t width) {
    const uint32_t known = static_cast<uint32_t>(width) < 64 ? static_cast<uint32_t>(width) : 64;
#ifdef QORV_HAVE_neon
    const MemoryKernels &kernels = neon::memory_kernels;  // the only ones: a small block feels one load less
#else
    const MemoryKernels &kernels = *active.memory;
#endif
    return kernels.copy_rows[sample_bytes - 1][kBlockPlaces.of[known]];
}

}  // namespace

// Where the build has one set of kernels, these are exported themselves.
#ifndef QORV_ONLY_SET

// The smallest fills are vectors that every processor of the architecture has: finding what is faster takes longer.
typedef uint8_t Sixteen __attribute__((vector_size(16)));
typedef uint16_t Eight __attribute__((vector_size(16)));

template <class V>
static void store(void *dst, const V &v) {
    memcpy(dst, &v, sizeof v);
}

extern "C" void qorv_mset_x128(void *dst, int32_t value, int32_t n) {
    if (n <= kFillPiece) [[unlikely]] {
        const Sixteen bytes = Sixteen{} + static_cast<uint8_t>(value);
#pragma GCC unroll 8
        for (int i = 0; i < kFillPiece; i += 16) store(static_cast<char *>(dst) + i, bytes);
        return;
    }
    memset(dst, value, whole_pieces(n));
}

extern "C" void qorv_mset16(void *dst, uint16_t value, int32_t n) {
    if (n >= 8 && n <= 16) [[unlikely]] {
        const Eight samples = Eight{} + value;
        store(dst, samples);
        store(static_cast<uint16_t *>(dst) + (n - 8), samples);
        return;
    }
    active.memory->mset16(dst, value, n);
}

#endif

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
    block_copier(1, width)(dst, src, dst_stride, src_stride, height);
}

extern "C" void qorv_mcpy_blk_16(void *dst, const void *src, int32_t dst_stride, int32_t src_stride, int32_t width,
                                 int32_t height) {
    block_copier(2, width)(dst, src, 2 * ptrdiff_t{dst_stride}, 2 * ptrdiff_t{src_stride}, height);
}
