#include "csc/stage.h"

#include <string.h>

#include "core/isa.h"
#include "csc/csc_kernels.h"

namespace qorv {

namespace {

// Rows of bytes: where they begin, and how far they lie apart.
template <class Byte>
struct Rows {
    Byte *p;
    ptrdiff_t stride;
};

// Rows of sizeof(T) x Count to twice as many bytes: from both ends, over one another in the middle.
template <class T, int Count = 1>
void copy_from_ends(Rows<uint8_t> to, Rows<const uint8_t> from, ptrdiff_t bytes, ptrdiff_t h) {
    constexpr ptrdiff_t kBytes = sizeof(T);
    do {
        for (ptrdiff_t i = 0; i < Count * kBytes; i += kBytes) {
            memcpy(to.p + i, from.p + i, kBytes);
            memcpy(to.p + bytes - kBytes - i, from.p + bytes - kBytes - i, kBytes);
        }
        to.p += to.stride;
        from.p += from.stride;
    } while (--h > 0);
}

[[gnu::noinline]] void copy_long_rows(Rows<uint8_t> to, Rows<const uint8_t> from, ptrdiff_t bytes, ptrdiff_t h) {
    for (; h > 0; h--, to.p += to.stride, from.p += from.stride) memcpy(to.p, from.p, static_cast<size_t>(bytes));
}

// At least one row.
void copy_rows(Rows<uint8_t> to, Rows<const uint8_t> from, ptrdiff_t bytes, ptrdiff_t h) {
    using Sixteen = uint8_t __attribute__((vector_size(16)));
    if (bytes < 4) {
        bytes < 2 ? copy_from_ends<uint8_t>(to, from, bytes, h) : copy_from_ends<uint16_t>(to, from, bytes, h);
    } else if (bytes < 8) {
        copy_from_ends<uint32_t>(to, from, bytes, h);
    } else if (bytes < 16) {
        copy_from_ends<uint64_t>(to, from, bytes, h);
    } else if (bytes < 32) {
        copy_from_ends<Sixteen>(to, from, bytes, h);
    } else if (bytes <= 64) {
        copy_from_ends<Sixteen, 2>(to, from, bytes, h);
    } else {
        copy_long_rows(to, from, bytes, h);
    }
}

// Samples of `Bytes` bytes, some bytes apart.
template <int Bytes>
void copy_samples(uint8_t *to, int to_step, const uint8_t *from, int from_step, ptrdiff_t n) {
    for (; n > 0; n--, to += to_step, from += from_step) memcpy(to, from, Bytes);
}

// The samples of one plane in w x h pixels.
struct Samples {
    int bytes, to_step, from_step;
    ptrdiff_t w, h;
};

void copy_plane(Rows<uint8_t> to, Rows<const uint8_t> from, const Samples &s) {
    if (s.bytes == s.to_step && s.bytes == s.from_step) {
        copy_rows(to, from, s.w * s.bytes, s.h);
        return;
    }
    const auto copy_row = s.bytes == 1 ? copy_samples<1> : copy_samples<2>;
    for (ptrdiff_t y = 0; y < s.h; y++)
        copy_row(to.p + y * to.stride, s.to_step, from.p + y * from.stride, s.from_step, s.w);
}

// The bytes of a pixel in another order: byte k is byte of[k] of what it comes from.
struct Order {
    uint8_t of[kMaxChannels] = {};
    int bytes;

    void copy(uint8_t *to, const uint8_t *from, ptrdiff_t n) const {
        (bytes == 3 ? active.csc->reorder3 : active.csc->reorder4)(from, to, of, n);
    }
};

}  // namespace

Stage::Stage(const Layout &layout) : layout_(layout) {
    const ptrdiff_t apart = layout.arrangement == Arrangement::kInterleaved ? 1 : 2 * kStrip;
#pragma GCC unroll 4
    for (int i = 0; i < kMaxChannels; i++) p_[i] = bytes_ + i * apart;
}

void Stage::gather(const SourcePicture &picture, ptrdiff_t y, ptrdiff_t w, ptrdiff_t h) {
    for (int i = 0; i < canonical_planes(layout_); i++) {
        const ptrdiff_t bytes = w * layout_.channels[i].step;
        copy_rows({static_cast<uint8_t *>(p_[i]), bytes}, {picture.at(i, 0, y), picture.stride(i)}, bytes, h);
    }
}

void Stage::scatter(const DestPicture &picture, ptrdiff_t y, ptrdiff_t w, ptrdiff_t h) const {
    for (int i = 0; i < canonical_planes(layout_); i++) {
        const ptrdiff_t bytes = w * layout_.channels[i].step;
        copy_rows({picture.at(i, 0, y), picture.stride(i)}, {static_cast<const uint8_t *>(p_[i]), bytes}, bytes, h);
    }
}

void Stage::read(const Planes<const uint8_t> &picture, const Rect &r) {
    if (!picture.reordered) {
        for (int k = 0; k < picture.count; k++) {
            const Plane<const uint8_t> &plane = picture.plane[k];
            const int i = layout_.first + k, step = layout_.kernel_step(i);
            copy_plane({static_cast<uint8_t *>(p_[i]), r.w * step}, {plane.at(r.x, r.y), plane.stride},
                       {plane.bytes, step, plane.step, r.w, r.h});
        }
        return;
    }
    const Plane<const uint8_t> &plane = picture.plane[0];
    const Rows<const uint8_t> rows{plane.at(r.x, r.y), plane.stride};
    Order order{.bytes = plane.bytes};
    for (int k = 0; k < plane.bytes; k++) order.of[k] = picture.place[k];
    uint8_t gathered[4 * kStrip];
    if (r.h == 1) {
        order.copy(bytes_, rows.p, r.w);
    } else {
        copy_rows({gathered, r.w * plane.bytes}, rows, r.w * plane.bytes, r.h);
        order.copy(bytes_, gathered, r.w * r.h);
    }
}

void Stage::write(const Planes<uint8_t> &picture, const Rect &r) const {
    if (!picture.reordered) {
        for (int k = picture.count - 1; k >= 0; k--) {
            const Plane<uint8_t> &plane = picture.plane[k];
            const int i = layout_.first + k, step = layout_.kernel_step(i);
            copy_plane({plane.at(r.x, r.y), plane.stride}, {static_cast<const uint8_t *>(p_[i]), r.w * step},
                       {plane.bytes, plane.step, step, r.w, r.h});
        }
        return;
    }
    const Plane<uint8_t> &plane = picture.plane[0];
    const Rows<uint8_t> rows{plane.at(r.x, r.y), plane.stride};
    Order order{.bytes = plane.bytes};
    for (int k = 0; k < plane.bytes; k++) order.of[picture.place[k]] = static_cast<uint8_t>(k);
    uint8_t to_scatter[4 * kStrip];
    if (r.h == 1) {
        order.copy(rows.p, bytes_, r.w);
    } else {
        order.copy(to_scatter, bytes_, r.w * r.h);
        copy_rows(rows, {to_scatter, r.w * plane.bytes}, r.w * plane.bytes, r.h);
    }
}

}  // namespace qorv
