// A converter's pointers and strides, and the planes of bytes that they come to.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "csc/layouts.h"

namespace qorv {

// Channel or plane pointers of one picture with their strides in bytes.
template <class Byte>
struct Picture {
    const Layout &layout;
    Byte *p[kMaxChannels];
    ptrdiff_t stride[kMaxChannels];
};
using SourcePicture = Picture<const uint8_t>;
using DestPicture = Picture<uint8_t>;

// The functions below are inlined: with a layout that is known, not much of them is left.

// Whether f(i) is true of each pointer i of a layout, asked from the first on.
template <class F>
[[gnu::always_inline]] inline bool each_pointer(const Layout &layout, F f) {
#pragma GCC unroll 4
    for (int i = 0; i < kMaxChannels; i++) {
        if (i >= layout.first && i < layout.count && !f(i)) return false;
    }
    return true;
}

template <class Byte, class Pointer>
[[gnu::always_inline]] inline Picture<Byte> picture_of(const Layout &layout, Pointer const *pointers,
                                                       const int32_t *stride) {
    Picture<Byte> picture{layout, {}, {}};
    each_pointer(layout, [&](int i) {
        picture.p[i] = static_cast<Byte *>(pointers[i]);
        picture.stride[i] = layout.row_bytes(i, stride[i]);
        return true;
    });
    return picture;
}

// Where pixel (x, y) lies, pointer by pointer.
template <class Byte>
[[gnu::always_inline]] inline void point_to(const Picture<Byte> &picture, ptrdiff_t x, ptrdiff_t y, Byte **p) {
    each_pointer(picture.layout, [&](int i) {
        p[i] = picture.p[i] + y * picture.stride[i] + x * picture.layout.channels[i].step;
        return true;
    });
}

// What is right of and below pixel (x, y), that pixel included.
template <class Byte>
[[gnu::always_inline]] inline Picture<Byte> part_from(const Picture<Byte> &picture, ptrdiff_t x, ptrdiff_t y) {
    Picture<Byte> part = picture;
    point_to(picture, x, y, part.p);
    return part;
}

// Whether kernels can work on the picture where it lies.
template <class Byte>
[[gnu::always_inline]] inline bool canonical(const Picture<Byte> &picture) {
    const Layout &layout = picture.layout;
    if (layout.arrangement == Arrangement::kPlanar) return true;
    return layout.arrangement == Arrangement::kInterleaved && each_pointer(layout, [&](int i) {
               return picture.p[i] == picture.p[0] + i && picture.stride[i] == picture.stride[0];
           });
}

// Whether rows of `w` pixels lie one directly after the other.
template <class Byte>
[[gnu::always_inline]] inline bool tight(const Picture<Byte> &picture, ptrdiff_t w) {
    return each_pointer(picture.layout,
                        [&](int i) { return picture.stride[i] == w * picture.layout.channels[i].step; });
}

// What one pointer, or one group of interleaved pointers, reaches: `bytes` of every pixel, `step` bytes apart.
template <class Byte>
struct Plane {
    Byte *p;
    ptrdiff_t stride;
    int bytes, step;

    // From the first byte of a row of `w` pixels to its end.
    ptrdiff_t row_bytes(ptrdiff_t w) const { return (w - 1) * step + bytes; }
    Byte *at(ptrdiff_t x, ptrdiff_t y) const { return p + y * stride + x * step; }
};

// The planes of a canonical picture.
[[gnu::always_inline]] constexpr int canonical_planes(const Layout &layout) {
    return layout.arrangement == Arrangement::kInterleaved ? 1 : layout.count;
}
template <class Byte>
[[gnu::always_inline]] inline Plane<Byte> canonical_plane(const Picture<Byte> &picture, int i) {
    const int step = picture.layout.channels[i].step;
    return {picture.p[i], picture.stride[i], step, step};
}

template <class Byte>
struct Planes {
    int count;
    Plane<Byte> plane[kMaxChannels];
    // Of a packed picture, which is one plane: pointer k stands at byte place[k] of a pixel.
    bool packed;
    uint8_t place[kMaxChannels];
};

template <class Byte>
Planes<Byte> planes_of(const Picture<Byte> &picture);

extern template Planes<const uint8_t> planes_of(const SourcePicture &);
extern template Planes<uint8_t> planes_of(const DestPicture &);

}  // namespace qorv
