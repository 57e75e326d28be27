#include <string.h>

#include "buffer/colour_space.h"
#include "core/isa.h"
#include "qorv_skia.h"
#include "system/memory_kernels.h"

using namespace qorv;

namespace {

// Margins are short: up to this many bytes a call of a fill costs more than the fill.
constexpr ptrdiff_t kInlineBytes = 128;

template <class T>
[[gnu::always_inline]] inline void fill_run(uint8_t *dst, const uint8_t *sample, ptrdiff_t count) {
    typedef T Vector __attribute__((vector_size(16)));
    constexpr ptrdiff_t kStep = sizeof(Vector);
    const ptrdiff_t bytes = count * static_cast<ptrdiff_t>(sizeof(T));
    T value;
    memcpy(&value, sample, sizeof value);
    if (bytes >= kStep && bytes <= kInlineBytes) {
        const Vector all = Vector{} + value;
        for (ptrdiff_t done = 0; done < bytes - kStep; done += kStep) memcpy(dst + done, &all, kStep);
        memcpy(dst + bytes - kStep, &all, kStep);
    } else if (sizeof(T) == 2) {
        active.memory->mset16(dst, value, static_cast<int32_t>(count));
    } else {
        memset(dst, static_cast<uint8_t>(value), static_cast<size_t>(count));
    }
}

template <class T>
void expand_rows(const uint8_t *src, uint8_t *dst, int32_t rows, ptrdiff_t step, int32_t count) {
    if (count < 1) return;
    for (int32_t row = 0; row < rows; row++, src += step, dst += step) fill_run<T>(dst, src, count);
}

// Rows of 16-bit samples begin at even distances.
template <class T>
constexpr ptrdiff_t row_step(int32_t stride) {
    constexpr ptrdiff_t kSample = sizeof(T);
    return (ptrdiff_t{stride} + kSample - 1) & -kSample;
}

// The margins left and right of each row. The left run begins at the vertical distance: equal halves are the rule.
template <class T>
void expand_sides(uint8_t *a, int32_t w, int32_t rows, int32_t stride, int32_t side, int32_t above) {
    constexpr ptrdiff_t kSample = sizeof(T);
    const ptrdiff_t step = row_step<T>(stride);
    uint8_t *left = a - above * kSample;
    const uint8_t *last = a + (w - 1) * kSample;
    uint8_t *right = a + w * kSample;
    // All left margins come before all right ones, unless no run reaches into another row: then it is all the same, and
    // one pass over the plane takes half the time.
    if (side < 1 || step < (ptrdiff_t{w} + side + above) * kSample) {
        expand_rows<T>(a, left, rows, step, side);
        expand_rows<T>(last, right, rows, step, side);
        return;
    }
    for (int32_t row = 0; row < rows; row++, a += step, left += step, last += step, right += step) {
        fill_run<T>(left, a, side);
        fill_run<T>(right, last, side);
    }
}

// The first and the last row, whole strides from the left margin's beginning, to the rows above and below. Where that
// lies inside the storage's row, each copy runs into the row after it; the last one stops with the block.
void expand_up_and_down(uint8_t *left, int32_t rows, ptrdiff_t stride, int32_t above, const uint8_t *block_end) {
    if (above == 0) return;
    const size_t bytes = static_cast<size_t>(stride);
    for (int32_t row = above; row > 0; row--) memcpy(left - row * stride, left, bytes);
    uint8_t *below = left + rows * stride;
    const uint8_t *bottom = below - stride;
    for (int32_t row = 1; row < above; row++, below += stride) memcpy(below, bottom, bytes);
    const ptrdiff_t room = block_end - below;
    memcpy(below, bottom, room > 0 && room < stride ? static_cast<size_t>(room) : bytes);
}

template <class T>
void expand_plane(const QORV_IMGB &imgb, uint32_t plane, uint32_t w, uint32_t h, uint32_t pad) {
    constexpr ptrdiff_t kSample = sizeof(T);
    uint8_t *a = static_cast<uint8_t *>(imgb.a[plane]);
    const int32_t stride = imgb.s[plane];
    const int32_t rows = static_cast<int32_t>(h);
    const int32_t side = static_cast<int32_t>(horizontal(pad));
    const int32_t above = static_cast<int32_t>(vertical(pad));
    expand_sides<T>(a, static_cast<int32_t>(w), rows, stride, side, above);
    // A margin may begin inside its storage's row: that of semi-planar chroma is reserved in pairs and filled in bytes,
    // and a caller may fill less than was reserved.
    const uint8_t *block_end = static_cast<const uint8_t *>(imgb.baddr[0]) + imgb.bsize;
    expand_up_and_down(a - side * kSample, rows, stride, above, block_end);
}

}  // namespace

extern "C" int32_t qorv_imgb_expand(QORV_IMGB *imgb, const uint32_t *pad) {
    if (!is_yuv_family(imgb->cs)) return QORV_ERR_UNSUPPORTED_CS;
    uint32_t w[4] = {static_cast<uint32_t>(imgb->aw)};
    uint32_t h[4] = {static_cast<uint32_t>(imgb->ah)};
    uint32_t planes;
    uint32_t units[4];
    const int32_t status = qorv_imgb_get_dimension(imgb->cs, w, h, &planes, units);
    if (status != QORV_OK) return status;

    // Luma tells the sample's size: the element of a semi-planar chroma plane is a pair.
    const bool words = horizontal(units[0]) == 2;
    for (uint32_t i = 0; i < planes; i++) {
        (words ? expand_plane<uint16_t> : expand_plane<uint8_t>)(*imgb, i, w[i], h[i], pad[i]);
    }
    return QORV_OK;
}

extern "C" void qorv_imgb_expand_ver(const void *src, void *dst, int32_t rows, int32_t stride, int32_t count) {
    expand_rows<uint8_t>(static_cast<const uint8_t *>(src), static_cast<uint8_t *>(dst), rows, stride, count);
}

extern "C" void qorv_imgb_expand_ver_16(const void *src, void *dst, int32_t rows, int32_t stride, int32_t count) {
    expand_rows<uint16_t>(static_cast<const uint8_t *>(src), static_cast<uint8_t *>(dst), rows,
                          row_step<uint16_t>(stride), count);
}

extern "C" void qorv_imgb_expand_hor(const void *src, void *dst, int32_t len, int32_t count) {
    if (len < 1) return;
    uint8_t *to = static_cast<uint8_t *>(dst);
    for (int32_t i = 0; i < count; i++, to += len) memcpy(to, src, static_cast<size_t>(len));
}
