// A converter's pointers and strides, and the planes of bytes that they come to.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "csc/layouts.h"

namespace qorv {

template <class Void>
struct BytesOf {
    using Type = uint8_t;
};
template <>
struct BytesOf<const void> {
    using Type = const uint8_t;
};

// Channel or plane pointers of one picture and their strides, as converters take them.
template <class Void>
struct Picture {
    using Byte = typename BytesOf<Void>::Type;

    const Layout &layout;
    Void *const *p;
    const int32_t *strides;

    // In bytes.
    [[gnu::always_inline]] ptrdiff_t stride(int i) const { return layout.row_bytes(i, strides[i]); }
    [[gnu::always_inline]] Byte *at(int i, ptrdiff_t x = 0, ptrdiff_t y = 0) const {
        return static_cast<Byte *>(p[i]) + y * stride(i) + x * layout.channels[i].step;
    }
};
using SourcePicture = Picture<const void>;
using DestPicture = Picture<void>;

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

// Where pixel (x, y) lies, pointer by pointer.
template <class Void>
[[gnu::always_inline]] inline void point_to(const Picture<Void> &picture, ptrdiff_t x, ptrdiff_t y, Void **p) {
    each_pointer(picture.layout, [&](int i) { return p[i] = picture.at(i, x, y), true; });
}

// What is right of and below pixel (x, y) of a picture, that pixel included.
template <class Void>
class PartFrom {
public:
    PartFrom(const Picture<Void> &whole, ptrdiff_t x, ptrdiff_t y) : picture{whole.layout, p_, whole.strides} {
        point_to(whole, x, y, p_);
    }
    PartFrom(const PartFrom &) = delete;

private:
    Void *p_[kMaxChannels];

public:
    const Picture<Void> picture;
};

template <class Void>
[[gnu::always_inline]] inline bool one_stride(const Picture<Void> &picture) {
    return each_pointer(picture.layout,
                        [&](int i) { return picture.strides[i] == picture.strides[picture.layout.first]; });
}

// Whether kernels can work on the picture where it lies.
template <class Void>
[[gnu::always_inline]] inline bool canonical(const Picture<Void> &picture) {
    if (picture.layout.arrangement == Arrangement::kPlanar) return true;
    return picture.layout.arrangement == Arrangement::kInterleaved && one_stride(picture) &&
           each_pointer(picture.layout, [&](int i) { return picture.at(i) == picture.at(0) + i; });
}

// Whether rows of `w` pixels lie one directly after the other.
template <class Void>
[[gnu::always_inline]] inline bool tight(const Picture<Void> &picture, ptrdiff_t w) {
    const Layout &layout = picture.layout;
    const bool one_step =
        each_pointer(layout, [&](int i) { return layout.channels[i].step == layout.channels[layout.first].step; });
    const auto whole = [&](int i) { return picture.stride(i) == w * layout.channels[i].step; };
    return one_step ? one_stride(picture) && whole(layout.first) : each_pointer(layout, whole);
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
struct Planes {
    int count;
    Plane<Byte> plane[kMaxChannels];
    bool canonical;
    // One plane of packed pixels, in which pointer k stands at byte place[k] rather than k.
    bool reordered;
    uint8_t place[kMaxChannels];
};

template <class Void>
Planes<typename Picture<Void>::Byte> planes_of(const Picture<Void> &picture);

extern template Planes<const uint8_t> planes_of(const SourcePicture &);
extern template Planes<uint8_t> planes_of(const DestPicture &);

}  // namespace qorv
