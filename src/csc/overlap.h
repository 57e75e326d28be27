// Whether a converter's pictures share bytes, and what may still be done at a time if they do.
#pragma once

#include "csc/picture.h"

namespace qorv {

struct Size {
    ptrdiff_t w, h;  // both at least 1
};

// Whether no byte of the destination is written twice.
bool written_once(const Planes<uint8_t> &dst, Size size);

// Whether no byte of the destination lies in the source. Then, and if none is written twice, the order of pixels is
// free.
bool apart(const Planes<const uint8_t> &src, Size src_size, const Planes<uint8_t> &dst, Size dst_size);

// Whether two runs of bytes share one: `a` bytes, and `b` bytes that begin `ahead` of these.
[[gnu::always_inline]] inline bool runs_meet(intptr_t ahead, ptrdiff_t a, ptrdiff_t b) {
    return static_cast<uintptr_t>(ahead + b - 1) < static_cast<uintptr_t>(a + b - 1);
}

// Bytes from the first of a canonical plane to its last, if all planes have one stride and their rows follow one
// another upwards; else 0.
template <class Void>
[[gnu::always_inline]] inline ptrdiff_t even_bytes(const Picture<Void> &picture, Size size) {
    const int first = picture.layout.first;
    const ptrdiff_t row = size.w * picture.layout.channels[first].step;
    if (size.h == 1) return row;
    const ptrdiff_t stride = picture.stride(first);
    return one_stride(picture) && stride >= row ? (size.h - 1) * stride + row : 0;
}

// The same as `written_once` and `apart` of canonical pictures of one size, in a few instructions: "no" may be wrong.
[[gnu::always_inline]] inline bool clearly_apart(const SourcePicture &src, const DestPicture &dst, Size size) {
    const ptrdiff_t src_bytes = even_bytes(src, size), dst_bytes = even_bytes(dst, size);
    if (src_bytes == 0 || dst_bytes == 0) return false;
    const auto address = [](const auto &picture, int i) { return reinterpret_cast<intptr_t>(picture.p[i]); };
#pragma GCC unroll 4
    for (int i = 0; i < canonical_planes(dst.layout); i++) {
        const intptr_t to = address(dst, i);
#pragma GCC unroll 4
        for (int k = 0; k < canonical_planes(src.layout); k++) {
            if (runs_meet(address(src, k) - to, dst_bytes, src_bytes)) return false;
        }
#pragma GCC unroll 4
        for (int k = 0; k < i; k++) {
            if (runs_meet(address(dst, k) - to, dst_bytes, dst_bytes)) return false;
        }
    }
    return true;
}

// Pixels of a row, from `least` to `most`, that may all be read before they are written, plane by plane from the last
// to the first, with the outcome of the per-pixel loop; so may any fewer. 0: not so many. Both pictures are of one
// size, and `most` is `least` times a power of two.
ptrdiff_t safe_strip(const Planes<const uint8_t> &src, const Planes<uint8_t> &dst, Size size, ptrdiff_t least,
                     ptrdiff_t most);

}  // namespace qorv
