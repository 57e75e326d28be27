// Strips of pixels on their way between a picture and a kernel.
#pragma once

#include "csc/picture.h"

namespace qorv {

// Pixels that a stage holds: a multiple of every kernel's block.
constexpr ptrdiff_t kStrip = 512;

// A rectangle of a picture, of at most kStrip pixels.
struct Rect {
    ptrdiff_t x, y, w, h;
};

// The pixels of a rectangle as kernels want them: in one row, interleaved channels in canonical order. What lies behind
// them is of no meaning.
class Stage {
public:
    explicit Stage(const Layout &layout);

    void *const *pointers() const { return p_; }
    // Rows y to y + h - 1 of a canonical picture, `w` pixels wide, to the strip and back.
    void gather(const SourcePicture &picture, ptrdiff_t y, ptrdiff_t w, ptrdiff_t h);
    void scatter(const DestPicture &picture, ptrdiff_t y, ptrdiff_t w, ptrdiff_t h) const;
    // Any picture's.
    void read(const Planes<const uint8_t> &picture, const Rect &rect);
    // Plane by plane, from the last to the first.
    void write(const Planes<uint8_t> &picture, const Rect &rect) const;

private:
    const Layout &layout_;
    void *p_[kMaxChannels];
    uint8_t bytes_[kMaxChannels * 2 * kStrip];
};

}  // namespace qorv
