// Whether a converter's pictures share bytes, and what may still be done at a time if they do.
#pragma once

#include "csc/picture.h"

namespace qorv {

struct Size {
    ptrdiff_t w, h;  // both at least 1
};

// From a plane's first byte to its end, as numbers: planes may belong to different objects.
struct Extent {
    intptr_t first, end;
};

[[gnu::always_inline]] inline bool meet(const Extent &a, const Extent &b) {
    return a.first < b.end && b.first < a.end;
}

// Of a plane whose rows lie at rising addresses.
template <class Byte>
[[gnu::always_inline]] inline Extent upward_extent(const Plane<Byte> &plane, Size size) {
    const auto first = reinterpret_cast<intptr_t>(plane.p);
    return {first, first + plane.stride * (size.h - 1) + plane.row_bytes(size.w)};
}

// Whether no byte of the destination is written twice.
bool written_once(const Planes<uint8_t> &dst, Size size);

// Whether no byte of the destination lies in the source. Then, and if none is written twice, the order of pixels is free.
bool apart(const Planes<const uint8_t> &src, Size src_size, const Planes<uint8_t> &dst, Size dst_size);

// The same of canonical pictures of one size, in a few instructions: "no" may be wrong. Rows must follow one another
// upwards, and the source's planes are taken together.
[[gnu::always_inline]] inline bool clearly_apart(const SourcePicture &src, const DestPicture &dst, Size size) {
    Extent all{INTPTR_MAX, 0};
#pragma GCC unroll 4
    for (int i = 0; i < canonical_planes(src.layout); i++) {
        const Plane<const uint8_t> plane = canonical_plane(src, i);
        if (plane.stride < size.w * plane.step) return false;
        const Extent extent = upward_extent(plane, size);
        if (extent.first < all.first) all.first = extent.first;
        if (extent.end > all.end) all.end = extent.end;
    }
#pragma GCC unroll 4
    for (int i = 0; i < canonical_planes(dst.layout); i++) {
        const Plane<uint8_t> plane = canonical_plane(dst, i);
        if (plane.stride < size.w * plane.step || meet(upward_extent(plane, size), all)) return false;
#pragma GCC unroll 4
        for (int k = 0; k < i; k++) {
            if (meet(upward_extent(plane, size), upward_extent(canonical_plane(dst, k), size))) return false;
        }
    }
    return true;
}

// Pixels of a row, from `least` to `most`, that may all be read before they are written, plane by plane from the last
// to the first, with the outcome of the per-pixel loop; so may any fewer. 0: not so many. Both pictures are of one size. `most` is `least` times a power of two.
ptrdiff_t safe_strip(const Planes<const uint8_t> &src, const Planes<uint8_t> &dst, Size size, ptrdiff_t least,
                     ptrdiff_t most);

}  // namespace qorv
