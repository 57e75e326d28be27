#include "csc/driver.h"

#include <string.h>

#include "csc/stage.h"
#include "resize/resize_kernels.h"

namespace qorv {

namespace {

constexpr int32_t kNoStride[kMaxChannels] = {};  // of a kernel's single row

// Columns below which rows are gathered into one strip.
constexpr ptrdiff_t kNarrow = 64;
// Pixels that the loop over pixels has converted before a stage is set up.
constexpr ptrdiff_t kFew = 4;
// Pixels from which a part of overlapping pictures is looked at by itself.
constexpr ptrdiff_t kLeastPart = 512;

// A kernel whose destination's pointers stand at the bytes `place` of a pixel, and one that writes the same pixels in
// canonical order.
struct OtherOrder {
    KernelMember kernel;
    uint8_t place[kMaxChannels];
    KernelMember same;
};
constexpr OtherOrder kOtherOrders[] = {
    {&CscKernels::yuv444_to_rgb888, {2, 1, 0}, &CscKernels::yuv444_to_bgr888},
    {&CscKernels::yuv444_to_rgba8888, {2, 1, 0, 3}, &CscKernels::yuv444_to_bgra8888},
    {&CscKernels::yuv444a8_to_rgba8888, {2, 1, 0, 3}, &CscKernels::yuv444a8_to_bgra8888},
    {&CscKernels::r8g8b8_to_rgba8888, {2, 1, 0, 3}, &CscKernels::r8g8b8_to_bgra8888},
    {&CscKernels::r8g8b8a8_to_rgba8888, {2, 1, 0, 3}, &CscKernels::r8g8b8a8_to_bgra8888},
};

// Puts the pointers of a packed destination into canonical order, in `ordered`, where there is a kernel that writes the
// same. No pixel may be written twice: then the order within one does not count.
void put_in_order(DestPicture &dst, Planes<uint8_t> &planes, KernelMember &kernel, void **ordered) {
    if (!planes.reordered) return;
#pragma GCC unroll 1
    for (const OtherOrder &other : kOtherOrders) {
        if (other.kernel != kernel || memcmp(other.place, planes.place, sizeof other.place) != 0) continue;
        kernel = other.same;
        for (int k = 0; k < dst.layout.count; k++) ordered[k] = planes.plane[0].p + k;
        dst.p = ordered;
        planes.canonical = true;
        planes.reordered = false;
        return;
    }
}

// Converts one row of `n` pixels, or a whole block of which they are part.
void convert_row(KernelMember kernel, const void *const *from, void *const *to, ptrdiff_t n) {
    if (n < kLeastBlock) n = kLeastBlock;
    (kernels_for(n).*kernel)(from, kNoStride, to, kNoStride, n, 1);
}

// One of the two pictures, and where kernels meet its pixels: in the picture itself, or on a stage.
template <class Void>
class Side {
public:
    using Byte = typename Picture<Void>::Byte;

    Side(const Picture<Void> &picture, const Planes<Byte> &planes_of_it, bool on_stage)
        : planes(planes_of_it), staged(on_stage), stage(picture.layout), picture_(picture) {}

    const Planes<Byte> &planes;
    bool staged;
    Stage stage;

    // Where a kernel finds the pixels of a rectangle, which is part of one row if they are not staged.
    Void *const *pointers(const Rect &rect) {
        if (staged) return stage.pointers();
        point_to(picture_, rect.x, rect.y, at_);
        return at_;
    }

private:
    const Picture<Void> &picture_;
    Void *at_[kMaxChannels];
};

void convert_rect(Side<const void> &in, Side<void> &out, const Rect &rect, KernelMember kernel) {
    if (in.staged) in.stage.read(in.planes, rect);
    convert_row(kernel, in.pointers(rect), out.pointers(rect), rect.w * rect.h);
    if (out.staged) out.stage.write(out.planes, rect);
}

// Where the sampled rows of a scaling converter go.
struct ScaledDest {
    Side<void> out;
    bool rearranged;
    KernelMember kernel;

    void take(const void *const *samples, const Rect &rect) {
        out.staged = rearranged || rect.w < kLeastBlock;
        convert_row(kernel, samples, out.pointers(rect), rect.w);
        if (out.staged) out.stage.write(out.planes, rect);
    }
};

// The loop over pixels, where order counts for all of them.
void convert_one_by_one(const SourcePicture &src, const DestPicture &dst, Size size, KernelMember kernel) {
    (pixel::csc_kernels.*kernel)(src.p, src.strides, dst.p, dst.strides, size.w, size.h);
}

// Pictures over one another, row by row: whole blocks of `set`, which are read before they are written, and the rest
// pixel by pixel.
void convert_in_blocks(const SourcePicture &src, const DestPicture &dst, Size size, KernelMember kernel,
                       const CscKernels &set) {
    const ptrdiff_t rest = size.w % set.block, whole = size.w - rest, rows = rest == 0 ? size.h : 1;
    for (ptrdiff_t y = 0; y < size.h; y += rows) {
        const PartFrom from(src, 0, y);
        const PartFrom to(dst, 0, y);
        (set.*kernel)(from.picture.p, src.strides, to.picture.p, dst.strides, whole, rows);
        if (rest == 0) return;
        convert_one_by_one(PartFrom(src, whole, y).picture, PartFrom(dst, whole, y).picture, {rest, 1}, kernel);
    }
}

// Canonical pictures that lie apart, in rows shorter than a block: many of them as one row.
void convert_gathered(const SourcePicture &src, const DestPicture &dst, Size size, KernelMember kernel) {
    Stage in(src.layout), out(dst.layout);
    ptrdiff_t h = size.w * size.h <= kStrip ? size.h : kStrip / size.w;
    for (ptrdiff_t y = 0; y < size.h; y += h) {
        if (h > size.h - y) h = size.h - y;
        in.gather(src, y, size.w, h);
        convert_row(kernel, in.pointers(), out.pointers(), size.w * h);
        out.scatter(dst, y, size.w, h);
    }
}

// Converts a part of pictures; false, with nothing done, if it overlaps too closely and is worth being cut up.
[[gnu::noinline]] bool convert_part(const SourcePicture &src, DestPicture dst, Size size, KernelMember kernel) {
    const Planes<const uint8_t> in = planes_of(src);
    Planes<uint8_t> out = planes_of(dst);
    const bool once = written_once(out, size), free = once && apart(in, size, out, size);
    void *ordered[kMaxChannels];
    if (free) put_in_order(dst, out, kernel, ordered);
    const bool direct = in.canonical && out.canonical && once;
    if (free && direct) {
        if (size.w < kLeastBlock) return convert_gathered(src, dst, size, kernel), true;
        return (kernels_for(size.w).*kernel)(src.p, src.strides, dst.p, dst.strides, size.w, size.h), true;
    }
    const ptrdiff_t columns = free ? kStrip : safe_strip(in, out, size, kLeastBlock, kStrip);
    if (columns == 0) {
        if (size.w * size.h >= kLeastPart) return false;
        return convert_one_by_one(src, dst, size, kernel), true;
    }
    if (direct && columns >= kBlocksAhead * kLeastBlock) {
        return convert_in_blocks(src, dst, size, kernel, kernels_for(columns / kBlocksAhead)), true;
    }
    const bool narrow = size.w < kNarrow;
    Side<const void> from(src, in, !free || narrow || !in.canonical);
    Side<void> to(dst, out, !free || narrow || !out.canonical);
    const ptrdiff_t rows = free && narrow ? kStrip / size.w : 1;
    for (ptrdiff_t y = 0; y < size.h; y += rows) {
        for (ptrdiff_t x = 0; x < size.w; x += columns) {
            const ptrdiff_t w = size.w - x < columns ? size.w - x : columns;
            // A short rest begins earlier where a kernel reads or writes the picture itself.
            const ptrdiff_t again = free && !narrow && w < kLeastBlock ? kLeastBlock - w : 0;
            convert_rect(from, to, {x - again, y, w + again, size.h - y < rows ? size.h - y : rows}, kernel);
        }
    }
    return true;
}

// All of `n` from the first to the last, in the largest pieces that `take(at, count)` accepts, found by halves.
template <class Take>
void in_pieces(ptrdiff_t n, Take take) {
    for (ptrdiff_t at = 0, count = n; at < n;) {
        if (count > n - at) count = n - at;
        if (take(at, count)) {
            at += count;
            count *= 2;
        } else {
            count /= 2;
        }
    }
}

// What lies over one another as a whole may not do so in its rows, nor these in their parts.
[[gnu::noinline]] void convert_pieces(const SourcePicture &src, const DestPicture &dst, Size size,
                                      KernelMember kernel) {
    const auto part = [&](ptrdiff_t x, ptrdiff_t y, Size piece) {
        return convert_part(PartFrom(src, x, y).picture, PartFrom(dst, x, y).picture, piece, kernel);
    };
    in_pieces(size.h, [&](ptrdiff_t y, ptrdiff_t h) {
        if (part(0, y, {size.w, h})) return true;
        if (h == 1) in_pieces(size.w, [&](ptrdiff_t x, ptrdiff_t w) { return part(x, y, {w, 1}); });
        return h == 1;
    });
}

void convert(const SourcePicture &src, const DestPicture &dst, Size size, KernelMember kernel) {
    if (!convert_part(src, dst, size, kernel)) convert_pieces(src, dst, size, kernel);
}

}  // namespace

void convert_other(const Layouts &layouts, const void *const *src, const int32_t *src_stride, void *const *dst,
                   const int32_t *dst_stride, ptrdiff_t w, ptrdiff_t h, KernelMember kernel, bool clear) {
    const Size size{w, h};
    const SourcePicture from{layouts.src, src, src_stride};
    const DestPicture to{layouts.dst, dst, dst_stride};
    if (size.w * size.h <= kFew) return convert_one_by_one(from, to, size, kernel);
    if (clear) return convert_gathered(from, to, size, kernel);
    convert(from, to, size, kernel);
}

void scale_picture(const SourcePicture &src, Size src_size, DestPicture dst, Size dst_size, KernelMember kernel,
                   ScalingLoop loop) {
    static_assert(kStrip >= kStripColumns);
    const auto side = [](ptrdiff_t pixels) { return static_cast<int32_t>(pixels); };
    const Grid grid = grid_between(side(src_size.w), side(src_size.h), side(dst_size.w), side(dst_size.h));
    const Planes<const uint8_t> in = planes_of(src);
    Planes<uint8_t> out = planes_of(dst);
    if (!written_once(out, dst_size) || !apart(in, src_size, out, dst_size)) {
        loop(grid, src.p, src.strides, dst.p, dst.strides, dst_size.w, dst_size.h);
        return;
    }
    void *ordered[kMaxChannels];
    put_in_order(dst, out, kernel, ordered);
    ScaledDest dest{Side<void>(dst, out, false), !out.canonical, kernel};
    PlanesJob job{.grid = grid,
                  .part = {.x = 0, .y = 0, .w = side(dst_size.w), .h = side(dst_size.h)},
                  .planes = src.layout.count,
                  .rows = {},
                  .take =
                      [](void *context, const void *const *samples, int32_t x, int32_t n, int32_t y) {
                          static_cast<ScaledDest *>(context)->take(samples, {x, y, n, 1});
                      },
                  .context = &dest};
    for (int i = 0; i < job.planes; i++) job.rows[i] = {src.at(i), src.stride(i), 0, -1, nullptr};
    active.resize->planes(job);
}

}  // namespace qorv
