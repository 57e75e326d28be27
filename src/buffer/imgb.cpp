#include <string.h>

#include "buffer/colour_space.h"
#include "buffer/default_allocator.h"
#include "buffer/reference.h"
#include "qorv_skia.h"

using namespace qorv;

namespace {

constexpr uint32_t kMaxPlanes = 4;

// What a layout needs beside the record: sizes in elements before and after alignment.
struct Planes {
    uint32_t count;
    uint32_t w[kMaxPlanes], h[kMaxPlanes];
    uint32_t aligned_w[kMaxPlanes], aligned_h[kMaxPlanes];
    uint32_t unit[kMaxPlanes];
};

constexpr uint32_t align_up(uint32_t size, uint32_t alignment) {
    return (size + alignment - 1) & (0 - alignment);
}

int32_t find_planes(Planes &planes, int32_t w, int32_t h, uint32_t cs) {
    planes.w[0] = static_cast<uint32_t>(w);
    planes.h[0] = static_cast<uint32_t>(h);
    if (is_yuv_family(cs)) return qorv_imgb_get_dimension(cs, planes.w, planes.h, &planes.count, planes.unit);
    if (!is_packed_rgb_family(cs)) return QORV_ERR_UNSUPPORTED_CS;
    planes.count = 1;
    planes.unit[0] = unit_word(packed_rgb_bytes(cs));
    return QORV_OK;
}

// Fills everything of a record that follows from the geometry alone: sizes, strides, rows and the block's size.
int32_t lay_out(QORV_IMGB &imgb, Planes &planes, int32_t w, int32_t h, uint32_t cs, const uint32_t *align,
                const uint32_t *pad) {
    imgb = {};
    imgb.w = w;
    imgb.h = h;
    imgb.cs = cs;
    const int32_t status = find_planes(planes, w, h, cs);
    if (status != QORV_OK) return status;

    for (uint32_t i = 0; i < planes.count; i++) {
        const uint32_t word = align != nullptr ? align[i] : QORV_IMGB_WORD(1, 1);
        planes.aligned_w[i] = align_up(planes.w[i], horizontal(word));
        planes.aligned_h[i] = align_up(planes.h[i], vertical(word));
        const uint32_t margin = pad != nullptr ? pad[i] : 0;
        const uint32_t stride = horizontal(planes.unit[i]) * (planes.aligned_w[i] + 2 * horizontal(margin));
        const uint32_t rows = vertical(planes.unit[i]) * (planes.aligned_h[i] + 2 * vertical(margin));
        imgb.s[i] = static_cast<int32_t>(stride);
        imgb.e[i] = static_cast<int32_t>(rows);
        imgb.bsize += stride * rows;
    }
    imgb.aw = static_cast<int32_t>(planes.aligned_w[0]);
    imgb.ah = static_cast<int32_t>(planes.aligned_h[0]);
    return QORV_OK;
}

// Places the planes one after the other in a block, in both address spaces.
void place_planes(QORV_IMGB &imgb, const Planes &planes, const uint32_t *pad, void *block, uint64_t aux) {
    uint8_t *address = static_cast<uint8_t *>(block);
    for (uint32_t i = 0; i < planes.count; i++) {
        imgb.baddr[i] = address;
        imgb.bpaddr[i] = aux;
        ptrdiff_t inside = 0;
        if (pad != nullptr) {
            inside = static_cast<ptrdiff_t>(horizontal(planes.unit[i]) * horizontal(pad[i])) +
                     static_cast<ptrdiff_t>(vertical(pad[i])) * imgb.s[i];
        }
        imgb.a[i] = address + inside;
        // An auxiliary address of 0 means none, so only a plane that has one is moved into its padding. With a base of
        // 0 that leaves plane 0 alone, since the later planes run at their offsets.
        imgb.pa[i] = aux != 0 ? aux + static_cast<uint64_t>(inside) : aux;
        const ptrdiff_t bytes = static_cast<ptrdiff_t>(imgb.e[i]) * imgb.s[i];
        address += bytes;
        aux += static_cast<uint64_t>(bytes);
    }
}

int32_t apply_options(QORV_IMGB &imgb, uint32_t opt, const Planes &planes, const uint32_t *pad) {
    return qorv_imgb_option(&imgb, opt, planes.count, planes.w, planes.h, planes.aligned_w, planes.aligned_h, pad,
                            planes.unit);
}

// Clears `bytes` bytes at column `column` (in bytes) of `rows` rows from `row` on.
void clear_rows(void *origin, int32_t stride, uint32_t row, uint32_t rows, size_t column, size_t bytes) {
    uint8_t *start = static_cast<uint8_t *>(origin) + static_cast<ptrdiff_t>(row) * stride + column;
    for (uint32_t i = 0; i < rows; i++, start += stride) memset(start, 0, bytes);
}

// `bottom_bytes` is the length cleared of each row below the picture.
void clear_alignment(const QORV_IMGB &imgb, uint32_t plane, uint32_t w, uint32_t h, uint32_t aligned_w,
                     uint32_t aligned_h, uint32_t unit, uint32_t bottom_bytes) {
    void *origin = imgb.a[plane];
    const int32_t stride = imgb.s[plane];
    const size_t bytes = horizontal(unit);
    if (w < aligned_w) clear_rows(origin, stride, 0, h, w * bytes, (aligned_w - w) * bytes);
    if (h < aligned_h) clear_rows(origin, stride, h, aligned_h - h, 0, bottom_bytes);
}

void clear_padding(const QORV_IMGB &imgb, uint32_t plane, uint32_t aligned_w, uint32_t aligned_h, uint32_t pad,
                   uint32_t unit) {
    void *origin = imgb.baddr[plane];
    const int32_t stride = imgb.s[plane];
    const uint32_t above = vertical(pad);
    const size_t side = static_cast<size_t>(horizontal(unit)) * horizontal(pad);
    const size_t right = (static_cast<size_t>(aligned_w) + horizontal(pad)) * horizontal(unit);
    clear_rows(origin, stride, 0, above, 0, static_cast<size_t>(stride));
    clear_rows(origin, stride, above + aligned_h, above, 0, static_cast<size_t>(stride));
    clear_rows(origin, stride, above, aligned_h, 0, side);
    clear_rows(origin, stride, above, aligned_h, right, side);
}

void free_block(QORV_IMGB &imgb) {
    if (imgb.baddr[0] != nullptr) imgb.free(imgb.baddr[0], imgb.bpaddr[0]);
}

// Everything of create after the allocator pair is known.
int32_t build(QORV_IMGB &imgb, int32_t w, int32_t h, uint32_t cs, uint32_t opt, const uint32_t *align,
              const uint32_t *pad, qorv_alloc_fn alloc, qorv_free_fn release) {
    Planes planes;
    int32_t status = lay_out(imgb, planes, w, h, cs, align, pad);
    if (status != QORV_OK) return status;
    uint64_t aux = 0;
    void *block = alloc(imgb.bsize, &aux);
    if (block == nullptr) return QORV_ERR_ALLOC_FAILED;
    place_planes(imgb, planes, pad, block, aux);
    // Cannot fail: the layout has accepted the colour space.
    if (opt != 0) apply_options(imgb, opt, planes, pad);

    imgb.alloc = alloc;
    imgb.free = release;
    return QORV_OK;
}

// Copies what a layout determines. The count, the operations, the opaque area, the allocator pair and the block's size
// belong to the record's life and to its block.
void take_geometry(QORV_IMGB &to, const QORV_IMGB &from) {
    constexpr size_t begin = offsetof(QORV_IMGB, w);
    constexpr size_t end = offsetof(QORV_IMGB, opaque);
    memcpy(reinterpret_cast<char *>(&to) + begin, reinterpret_cast<const char *>(&from) + begin, end - begin);
    to.aw = from.aw;
    to.ah = from.ah;
    memcpy(to.baddr, from.baddr, sizeof to.baddr);
    memcpy(to.bpaddr, from.bpaddr, sizeof to.bpaddr);
}

int32_t lay_out_again(QORV_IMGB *imgb, int32_t w, int32_t h, uint32_t cs, uint32_t opt, const uint32_t *align,
                      const uint32_t *pad) {
    QORV_IMGB scratch;
    Planes planes;
    int32_t status = lay_out(scratch, planes, w, h, cs, align, pad);
    if (status != QORV_OK) return status;
    if (imgb == nullptr) return QORV_ERR_INVALID_ARG;
    if (imgb->bsize < scratch.bsize) return QORV_ERR_OUT_OF_MEMORY;
    place_planes(scratch, planes, pad, imgb->baddr[0], imgb->bpaddr[0]);
    if (opt != 0 && pad != nullptr) apply_options(scratch, opt, planes, pad);

    take_geometry(*imgb, scratch);
    return QORV_OK;
}

}  // namespace

extern "C" QORV_IMGB *qorv_imgb_create(int32_t w, int32_t h, uint32_t cs, uint32_t opt, const uint32_t *align,
                                       const uint32_t *pad, qorv_alloc_fn alloc, qorv_free_fn release,
                                       int32_t *status) {
    if (alloc != nullptr && release == nullptr) {
        if (status != nullptr) *status = QORV_ERR_INVALID_ARG;
        return nullptr;
    }
    if (alloc == nullptr) {
        alloc = default_alloc;
        release = default_free;
    }
    return create_record<free_block, QORV_IMGB>(
        status, [&](QORV_IMGB &imgb) { return build(imgb, w, h, cs, opt, align, pad, alloc, release); });
}

extern "C" int32_t qorv_imgb_option(QORV_IMGB *imgb, uint32_t opt, uint32_t plane_count, const uint32_t *widths,
                                    const uint32_t *heights, const uint32_t *aligned_widths,
                                    const uint32_t *aligned_heights, const uint32_t *pad, const uint32_t *units) {
    if ((opt & QORV_IMGB_OPT_ZERO_ALIGN) != 0) {
        if (is_yuv_family(imgb->cs)) {
            for (uint32_t i = 0; i < plane_count; i++) {
                clear_alignment(*imgb, i, widths[i], heights[i], aligned_widths[i], aligned_heights[i], units[i],
                                aligned_widths[i] * horizontal(units[i]));
            }
        } else if (is_packed_rgb_family(imgb->cs)) {
            // The bottom rows lose "aligned width" bytes, not pixels: callers rely on the rest being left alone.
            clear_alignment(*imgb, 0, static_cast<uint32_t>(imgb->w), static_cast<uint32_t>(imgb->h), aligned_widths[0],
                            aligned_heights[0], units[0], aligned_widths[0]);
        } else {
            return QORV_ERR_UNSUPPORTED_CS;
        }
    }
    if ((opt & QORV_IMGB_OPT_ZERO_PAD) != 0 && pad != nullptr) {
        for (uint32_t i = 0; i < plane_count; i++) {
            if (pad[i] != 0) clear_padding(*imgb, i, aligned_widths[i], aligned_heights[i], pad[i], units[i]);
        }
    }
    return QORV_OK;
}

extern "C" int32_t qorv_imgb_rebirth(QORV_IMGB *imgb, int32_t w, int32_t h, uint32_t cs, uint32_t opt,
                                     const uint32_t *align, const uint32_t *pad) {
    // Held for the duration, so that a reference dropped elsewhere cannot free the block under the work.
    if (imgb != nullptr && imgb->addref != nullptr) imgb->addref(imgb);
    const int32_t status = lay_out_again(imgb, w, h, cs, opt, align, pad);
    if (imgb != nullptr && imgb->release != nullptr) imgb->release(imgb);
    return status;
}
