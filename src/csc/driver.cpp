#include "csc/driver.h"

#include <string.h>

#include "core/isa.h"
#include "resize/resize_kernels.h"

namespace qorv {

namespace {

// Pixels staged at a time: a multiple of every kernel's block.
constexpr ptrdiff_t kStrip = 256;
// The widest layout is three planes of words. There are two stages, so a call takes 3 KiB of stack for them.
constexpr size_t kStageBytes = 3 * 2 * kStrip;

template <class Byte>
bool canonical(const Picture<Byte> &picture) {
    const Layout &layout = picture.layout;
    if (layout.arrangement == Arrangement::kPlanar) return true;
    if (layout.arrangement == Arrangement::kScattered) return false;
    for (int i = 1; i < layout.count; i++) {
        if (picture.p[i] != picture.p[0] + i || picture.stride[i] != picture.stride[0]) return false;
    }
    return true;
}

// The bytes that one pointer, or one group of interleaved pointers, reaches in a picture.
struct Area {
    const uint8_t *first_row;  // first byte of row 0
    ptrdiff_t row_bytes;       // from there to the row's last byte, included
    ptrdiff_t stride;
    int step;  // bytes a pixel
    ptrdiff_t rows;
};

struct Areas {
    int count = 0;
    Area area[kMaxChannels];
};

// Bytes of one step whose places lie within one pixel of each other, none on another's, are one area.
template <class Byte>
bool shares_pixel(const Picture<Byte> &picture, const uint8_t *&lowest) {
    const Layout &layout = picture.layout;
    const int first = layout.first, step = layout.channels[first].step;
    lowest = picture.p[first];
    for (int i = first; i < layout.count; i++) {
        if (layout.channels[i].step != step || picture.stride[i] != picture.stride[first]) return false;
        if (picture.p[i] < lowest) lowest = picture.p[i];
    }
    unsigned taken = 0;
    for (int i = first; i < layout.count; i++) {
        const ptrdiff_t offset = picture.p[i] - lowest;
        if (offset >= step || (taken >> offset & 1) != 0) return false;
        taken |= 1u << offset;
    }
    return true;
}

template <class Byte>
Areas areas_of(const Picture<Byte> &picture, ptrdiff_t w, ptrdiff_t h) {
    const Layout &layout = picture.layout;
    Areas areas;
    const uint8_t *lowest;
    if (shares_pixel(picture, lowest)) {
        const int step = layout.channels[layout.first].step;
        areas.area[areas.count++] = {lowest, w * step, picture.stride[layout.first], step, h};
        return areas;
    }
    for (int i = layout.first; i < layout.count; i++) {
        const Channel c = layout.channels[i];
        areas.area[areas.count++] = {picture.p[i], (w - 1) * c.step + c.bytes, picture.stride[i], c.step, h};
    }
    return areas;
}

bool disjoint(const Area &a, const Area &b) {
    const auto low = [](const Area &x) {
        return reinterpret_cast<intptr_t>(x.first_row) + (x.stride < 0 ? x.stride * (x.rows - 1) : 0);
    };
    const auto high = [](const Area &x) {
        return reinterpret_cast<intptr_t>(x.first_row) + (x.stride > 0 ? x.stride * (x.rows - 1) : 0) + x.row_bytes;
    };
    if (high(a) <= low(b) || high(b) <= low(a)) return true;
    // Planes side by side in one larger picture: with one stride, rows that keep clear of each other always do.
    if (a.stride != b.stride || a.stride == 0) return false;
    const ptrdiff_t stride = a.stride < 0 ? -a.stride : a.stride;
    ptrdiff_t offset = (reinterpret_cast<intptr_t>(b.first_row) - reinterpret_cast<intptr_t>(a.first_row)) % stride;
    if (offset < 0) offset += stride;
    return offset >= a.row_bytes && offset + b.row_bytes <= stride;
}

bool rows_overlap(const Area &area) {
    return area.rows > 1 && area.stride < area.row_bytes && -area.stride < area.row_bytes;
}

enum class Overlap { kNone, kInPlace, kOther };

// In place means that a destination lies exactly on a source: every pixel then meets itself alone, so a strip may be
// read before it is written.
Overlap find_overlap(const Areas &in, const Areas &out) {
    Overlap found = Overlap::kNone;
    for (int i = 0; i < out.count; i++) {
        const Area &a = out.area[i];
        if (rows_overlap(a)) return Overlap::kOther;
        for (int k = i + 1; k < out.count; k++) {
            if (!disjoint(a, out.area[k])) return Overlap::kOther;
        }
        for (int k = 0; k < in.count; k++) {
            const Area &b = in.area[k];
            if (disjoint(a, b)) continue;
            if (a.first_row != b.first_row || a.stride != b.stride || a.step != b.step) return Overlap::kOther;
            found = Overlap::kInPlace;
        }
    }
    return found;
}

template <int Bytes>
void copy_samples(uint8_t *to, int to_step, const uint8_t *from, int from_step, ptrdiff_t n) {
    if (to_step == Bytes && from_step == Bytes) {
        memcpy(to, from, static_cast<size_t>(n * Bytes));
        return;
    }
    for (ptrdiff_t i = 0; i < n; i++) memcpy(to + i * to_step, from + i * from_step, Bytes);
}

void copy_channel(Channel channel, uint8_t *to, int to_step, const uint8_t *from, int from_step, ptrdiff_t n) {
    if (channel.bytes == 2) {
        copy_samples<2>(to, to_step, from, from_step, n);
    } else {
        copy_samples<1>(to, to_step, from, from_step, n);
    }
}

constexpr ptrdiff_t kNoStride[kMaxChannels] = {};  // of a kernel's single row

// One strip of a row in the arrangement that kernels work on.
class Stage {
public:
    explicit Stage(const Layout &layout) : layout_(layout) {
        ptrdiff_t offset = 0;
        for (int i = layout.first; i < layout.count; i++) {
            p_[i] = bytes_ + offset;
            offset += layout.arrangement == Arrangement::kInterleaved ? 1 : layout.channels[i].bytes * kStrip;
        }
    }

    void read(const SourcePicture &picture, const uint8_t *const *row, ptrdiff_t x, ptrdiff_t n) {
        for (int i = layout_.first; i < layout_.count; i++) {
            const Channel c = picture.layout.channels[i];
            copy_channel(c, p_[i], layout_.kernel_step(i), row[i] + x * c.step, c.step, n);
        }
    }
    void write(const DestPicture &picture, uint8_t *const *row, ptrdiff_t x, ptrdiff_t n) const {
        for (int i = layout_.first; i < layout_.count; i++) {
            const Channel c = picture.layout.channels[i];
            copy_channel(c, row[i] + x * c.step, c.step, p_[i], layout_.kernel_step(i), n);
        }
    }
    uint8_t *const *pointers() const { return p_; }

private:
    const Layout &layout_;
    uint8_t *p_[kMaxChannels] = {};
    uint8_t bytes_[kStageBytes] = {};
};

// Any arrangement, any width: each row in strips of at most `strip` pixels that are copied to a stage, converted there
// and copied out. With strips of one pixel this is the per-pixel loop.
[[gnu::noinline]] void convert_staged(const SourcePicture &src, const DestPicture &dst, CscKernel kernel, ptrdiff_t w,
                                      ptrdiff_t h, ptrdiff_t strip) {
    const ptrdiff_t block = active.csc->block;
    Stage in(src.layout), out(dst.layout);
    const uint8_t *from[kMaxChannels];
    uint8_t *to[kMaxChannels];
    memcpy(from, src.p, sizeof from);
    memcpy(to, dst.p, sizeof to);
    for (ptrdiff_t y = 0; y < h; y++) {
        for (ptrdiff_t x = 0; x < w; x += strip) {
            const ptrdiff_t n = w - x < strip ? w - x : strip;
            in.read(src, from, x, n);
            kernel(in.pointers(), kNoStride, out.pointers(), kNoStride, n < block ? block : n, 1);
            out.write(dst, to, x, n);
        }
        for (int i = src.layout.first; i < src.layout.count; i++) from[i] += src.stride[i];
        for (int i = dst.layout.first; i < dst.layout.count; i++) to[i] += dst.stride[i];
    }
}

template <class Result, class Pointers>
Result picture_of(const Layout &layout, Pointers pointers, const int32_t *stride) {
    Result picture{layout, {}, {}};
    for (int i = layout.first; i < layout.count; i++) {
        picture.p[i] = static_cast<decltype(picture.p[0] + 0)>(pointers[i]);
        picture.stride[i] = layout.row_bytes(i, stride[i]);
    }
    return picture;
}

// Where the sampled rows of a scaling converter go.
struct ScaledDest {
    const DestPicture &picture;
    CscKernel kernel;
    bool direct;  // the kernel may write to the picture itself
    Stage stage{picture.layout};

    void take(const uint8_t *const *samples, ptrdiff_t x, ptrdiff_t n, ptrdiff_t y) {
        const Layout &layout = picture.layout;
        uint8_t *row[kMaxChannels] = {}, *at[kMaxChannels] = {};
        for (int i = layout.first; i < layout.count; i++) {
            row[i] = picture.p[i] + y * picture.stride[i];
            at[i] = row[i] + x * layout.channels[i].step;
        }
        const ptrdiff_t block = active.csc->block;
        if (direct && n >= block) {
            kernel(samples, kNoStride, at, kNoStride, n, 1);
        } else {
            kernel(samples, kNoStride, stage.pointers(), kNoStride, n < block ? block : n, 1);
            stage.write(picture, row, x, n);
        }
    }
};

}  // namespace

SourcePicture source_picture(const Layout &layout, const void *const *src, const int32_t *stride) {
    return picture_of<SourcePicture>(layout, src, stride);
}

DestPicture dest_picture(const Layout &layout, void *const *dst, const int32_t *stride) {
    return picture_of<DestPicture>(layout, dst, stride);
}

void convert_picture(const SourcePicture &src, const DestPicture &dst, CscKernel kernel, int32_t w, int32_t h) {
    if (w < 1 || h < 1) return;
    const Overlap overlap = find_overlap(areas_of(src, w, h), areas_of(dst, w, h));
    if (overlap == Overlap::kOther) {
        convert_staged(src, dst, kernel, w, h, 1);
    } else if (overlap == Overlap::kNone && w >= active.csc->block && canonical(src) && canonical(dst)) {
        kernel(src.p, src.stride, dst.p, dst.stride, w, h);
    } else {
        convert_staged(src, dst, kernel, w, h, kStrip);
    }
}

void scale_picture(const SourcePicture &src, int32_t src_w, int32_t src_h, const DestPicture &dst, int32_t dst_w,
                   int32_t dst_h, CscKernel kernel) {
    static_assert(kStrip >= kStripColumns);
    ScaledDest dest{.picture = dst, .kernel = kernel, .direct = canonical(dst)};
    PlanesJob job{.grid = grid_between(src_w, src_h, dst_w, dst_h),
                  .part = {.x = 0, .y = 0, .w = dst_w, .h = dst_h},
                  .planes = src.layout.count,
                  .rows = {},
                  .take = [](void *context, const uint8_t *const *samples, int32_t x, int32_t n,
                             int32_t y) { static_cast<ScaledDest *>(context)->take(samples, x, n, y); },
                  .context = &dest};
    for (int i = 0; i < job.planes; i++) job.rows[i] = {src.p[i], src.stride[i], 0, -1, nullptr};
    if (find_overlap(areas_of(src, src_w, src_h), areas_of(dst, dst_w, dst_h)) == Overlap::kNone) {
        active.resize->planes(job);
        return;
    }
    Part &part = job.part;
    part.w = part.h = 1;
    for (part.y = 0; part.y < dst_h; part.y++) {
        for (part.x = 0; part.x < dst_w; part.x++) active.resize->planes(job);
    }
}

}  // namespace qorv
