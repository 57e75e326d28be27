#include <string.h>

#include "buffer/colour_space.h"
#include "buffer/default_allocator.h"
#include "buffer/reference.h"
#include "qorv_skia.h"

using namespace qorv;

namespace {

constexpr uint32_t kMaxPlanes = 4;

// A picture as it is asked for.
struct Request {
    int32_t w, h;
    uint32_t cs, opt;
    const uint32_t *align, *pad;  // null, or a word a plane
};

// What a layout needs beside the record: sizes in elements before and after alignment.
struct Planes {
    uint32_t count;
    uint32_t w[kMaxPlanes], h[kMaxPlanes];
    uint32_t aligned_w[kMaxPlanes], aligned_h[kMaxPlanes];
    uint32_t unit[kMaxPlanes];
};

constexpr uint64_t align_up(uint32_t size, uint32_t alignment) {
    return (uint64_t{size} + alignment - 1) & (0 - uint64_t{alignment});
}

int32_t find_planes(Planes &planes, const Request &request) {
    planes.w[0] = static_cast<uint32_t>(request.w);
    planes.h[0] = static_cast<uint32_t>(request.h);
    if (is_yuv_family(request.cs)) {
        return qorv_imgb_get_dimension(request.cs, planes.w, planes.h, &planes.count, planes.unit);
    }
    if (!is_packed_rgb_family(request.cs)) return QORV_ERR_UNSUPPORTED_CS;
    planes.count = 1;
    planes.unit[0] = unit_word(packed_rgb_bytes(request.cs));
    return QORV_OK;
}

// Sizes of plane i, aligned and with margins. False when a stride, a number of rows or the block's size, which grows by
// the plane's, does not fit its field.
bool measure_plane(QORV_IMGB &imgb, Planes &planes, uint32_t i, const Request &request) {
    const uint32_t align = request.align != nullptr ? request.align[i] : QORV_IMGB_WORD(1, 1);
    const uint32_t margin = request.pad != nullptr ? request.pad[i] : 0;
    const uint64_t aligned_w = align_up(planes.w[i], horizontal(align));
    const uint64_t aligned_h = align_up(planes.h[i], vertical(align));
    const uint64_t stride = horizontal(planes.unit[i]) * (aligned_w + 2 * horizontal(margin));
    const uint64_t rows = vertical(planes.unit[i]) * (aligned_h + 2 * vertical(margin));
    if (stride > INT32_MAX || rows > INT32_MAX || imgb.bsize + stride * rows > UINT32_MAX) return false;
    planes.aligned_w[i] = static_cast<uint32_t>(aligned_w);
    planes.aligned_h[i] = static_cast<uint32_t>(aligned_h);
    imgb.s[i] = static_cast<int32_t>(stride);
    imgb.e[i] = static_cast<int32_t>(rows);
    imgb.bsize += static_cast<uint32_t>(stride * rows);
    return true;
}

// Fills everything of a record that follows from the geometry alone: sizes, strides, rows and the block's size.
int32_t lay_out(QORV_IMGB &imgb, Planes &planes, const Request &request) {
    imgb = {};
    imgb.w = request.w;
    imgb.h = request.h;
    imgb.cs = request.cs;
    const int32_t status = find_planes(planes, request);
    if (status != QORV_OK) return status;
    for (uint32_t i = 0; i < planes.count; i++) {
        if (!measure_plane(imgb, planes, i, request)) return QORV_ERR_ALLOC_FAILED;
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

// Cannot fail: the layout has accepted the colour space.
void apply_options(QORV_IMGB &imgb, const Planes &planes, const Request &request) {
    qorv_imgb_option(&imgb, request.opt, planes.count, planes.w, planes.h, planes.aligned_w, planes.aligned_h,
                     request.pad, planes.unit);
}

// A part of a plane: columns in bytes.
struct Part {
    uint32_t first_row, rows;
    size_t first_byte, bytes;
};

void clear(void *origin, int32_t stride, const Part &part) {
    uint8_t *row = static_cast<uint8_t *>(origin) + static_cast<ptrdiff_t>(part.first_row) * stride + part.first_byte;
    for (uint32_t i = 0; i < part.rows; i++, row += stride) memset(row, 0, part.bytes);
}

// Sizes of one plane, in elements.
struct Plane {
    uint32_t w, h, aligned_w, aligned_h;
    size_t bytes;  // of an element
};

// `bottom_bytes` is the length cleared of each row below the picture.
void clear_alignment(void *origin, int32_t stride, const Plane &p, uint32_t bottom_bytes) {
    if (p.w < p.aligned_w) clear(origin, stride, {0, p.h, p.w * p.bytes, (p.aligned_w - p.w) * p.bytes});
    if (p.h < p.aligned_h) clear(origin, stride, {p.h, p.aligned_h - p.h, 0, bottom_bytes});
}

void clear_padding(void *origin, int32_t stride, const Plane &p, uint32_t pad) {
    const uint32_t above = vertical(pad);
    const size_t side = p.bytes * horizontal(pad), row_bytes = static_cast<size_t>(stride);
    clear(origin, stride, {0, above, 0, row_bytes});
    clear(origin, stride, {above + p.aligned_h, above, 0, row_bytes});
    clear(origin, stride, {above, p.aligned_h, 0, side});
    clear(origin, stride, {above, p.aligned_h, p.aligned_w * p.bytes + side, side});
}

void free_block(QORV_IMGB &imgb) {
    if (imgb.baddr[0] != nullptr) imgb.free(imgb.baddr[0], imgb.bpaddr[0]);
}

// Everything of create after the allocator pair is known.
int32_t build(QORV_IMGB &imgb, const Request &request, qorv_alloc_fn alloc, qorv_free_fn release) {
    Planes planes;
    const int32_t status = lay_out(imgb, planes, request);
    if (status != QORV_OK) return status;
    uint64_t aux = 0;
    void *block = alloc(imgb.bsize, &aux);
    if (block == nullptr) return QORV_ERR_ALLOC_FAILED;
    place_planes(imgb, planes, request.pad, block, aux);
    if (request.opt != 0) apply_options(imgb, planes, request);

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

int32_t lay_out_again(QORV_IMGB *imgb, const Request &request) {
    QORV_IMGB scratch;
    Planes planes;
    const int32_t status = lay_out(scratch, planes, request);
    if (status != QORV_OK) return status;
    if (imgb == nullptr) return QORV_ERR_INVALID_ARG;
    if (imgb->bsize < scratch.bsize) return QORV_ERR_OUT_OF_MEMORY;
    place_planes(scratch, planes, request.pad, imgb->baddr[0], imgb->bpaddr[0]);
    if (request.opt != 0 && request.pad != nullptr) apply_options(scratch, planes, request);

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
    const Request request = {w, h, cs, opt, align, pad};
    return create_record<free_block, QORV_IMGB>(status,
                                                [&](QORV_IMGB &imgb) { return build(imgb, request, alloc, release); });
}

extern "C" int32_t qorv_imgb_option(QORV_IMGB *imgb, uint32_t opt, uint32_t plane_count, const uint32_t *widths,
                                    const uint32_t *heights, const uint32_t *aligned_widths,
                                    const uint32_t *aligned_heights, const uint32_t *pad, const uint32_t *units) {
    const bool packed = is_packed_rgb_family(imgb->cs);
    const auto plane = [&](uint32_t i) -> Plane {
        return {widths[i], heights[i], aligned_widths[i], aligned_heights[i], horizontal(units[i])};
    };
    if ((opt & QORV_IMGB_OPT_ZERO_ALIGN) != 0 && packed) {
        // The bottom rows lose "aligned width" bytes, not pixels: callers rely on the rest being left alone.
        const Plane p = {static_cast<uint32_t>(imgb->w), static_cast<uint32_t>(imgb->h), aligned_widths[0],
                         aligned_heights[0], horizontal(units[0])};
        clear_alignment(imgb->a[0], imgb->s[0], p, p.aligned_w);
    } else if ((opt & QORV_IMGB_OPT_ZERO_ALIGN) != 0) {
        if (!is_yuv_family(imgb->cs)) return QORV_ERR_UNSUPPORTED_CS;
        for (uint32_t i = 0; i < plane_count; i++) {
            const Plane p = plane(i);
            clear_alignment(imgb->a[i], imgb->s[i], p, p.aligned_w * static_cast<uint32_t>(p.bytes));
        }
    }
    if ((opt & QORV_IMGB_OPT_ZERO_PAD) != 0 && pad != nullptr) {
        for (uint32_t i = 0; i < plane_count; i++) {
            if (pad[i] != 0) clear_padding(imgb->baddr[i], imgb->s[i], plane(i), pad[i]);
        }
    }
    return QORV_OK;
}

extern "C" int32_t qorv_imgb_rebirth(QORV_IMGB *imgb, int32_t w, int32_t h, uint32_t cs, uint32_t opt,
                                     const uint32_t *align, const uint32_t *pad) {
    // Held for the duration, so that a reference dropped elsewhere cannot free the block under the work.
    const bool held = imgb != nullptr && imgb->addref != nullptr;
    if (held) imgb->addref(imgb);
    const int32_t status = lay_out_again(imgb, {w, h, cs, opt, align, pad});
    if (held && imgb->release != nullptr) imgb->release(imgb);
    return status;
}
