#include "resize/in_order.h"

#include "qorv_skia.h"

namespace qorv {

namespace {

constexpr int kMaxChannels = 4;

struct BytePixel {
    int bytes, channels = bytes;

    static int channel(const uint8_t *pixel, int i) { return pixel[i]; }
    void put(const int *sums, uint8_t *pixel) const {
        for (int i = 0; i < bytes; i++) pixel[i] = static_cast<uint8_t>(sums[i] >> 6);
    }
};

struct Pixel565 {
    int bytes = 2, channels = 3;

    // The field's bits as the highest of a byte.
    static int channel(const uint8_t *pixel, int i) {
        const int word = pixel[0] | pixel[1] << 8;
        return i == 0 ? word >> 8 & 0xF8 : i == 1 ? word >> 3 & 0xFC : (word & 31) << 3;
    }
    static void put(const int *sums, uint8_t *pixel) {
        const int word = (sums[0] << 2 & 0xF800) | (sums[1] >> 3 & 0x7E0) | sums[2] >> 9;
        pixel[0] = static_cast<uint8_t>(word);
        pixel[1] = static_cast<uint8_t>(word >> 8);
    }
};

struct RowPair {
    const uint8_t *upper, *lower;
    int fy;
};

template <class From, class To>
void resize_row(const ResizeJob &job, const RowPair &rows, From from, To to, uint8_t *dst) {
    const Axis &axis = job.grid.x;
    const ptrdiff_t right = axis.step != 0 ? ptrdiff_t{job.grid.neighbour} * from.bytes : 0;
    int64_t x = job.part.x * axis.step;
    for (int32_t i = 0; i < job.part.w; i++, x += axis.step, dst += to.bytes) {
        const ptrdiff_t at = static_cast<ptrdiff_t>(x >> kPositionBits << axis.shift) * from.bytes;
        const uint8_t *w = qorv_irsz_tbl_rsz_weight[eighths_at(x) * 8 + rows.fy];
        int sums[kMaxChannels];
        for (int c = 0; c < from.channels; c++) {
            sums[c] = w[0] * from.channel(rows.upper + at, c) + w[1] * from.channel(rows.upper + at + right, c) +
                      w[2] * from.channel(rows.lower + at, c) + w[3] * from.channel(rows.lower + at + right, c);
        }
        to.put(sums, dst);
    }
}

template <class From, class To>
void resize_in_order(const ResizeJob &job, From from, To to) {
    const Axis &axis = job.grid.y;
    int64_t y = job.part.y * axis.step;
    uint8_t *dst = job.dst;
    for (int32_t row = 0; row < job.part.h; row++, y += axis.step, dst += job.dst_stride) {
        const RowNumbers rows(y, axis.shift);
        resize_row(job, {job.rows.row(rows.upper), job.rows.row(rows.lower), rows.eighths}, from, to, dst);
    }
}

// Pixels of `N` bytes, by one function for all of them.
template <int N>
void bytes_in_order(const ResizeJob &job) {
    resize_in_order(job, BytePixel{N}, BytePixel{N});
}

// Rows of one stride, addresses as numbers: they may belong to different objects.
struct Rows {
    intptr_t start;
    ptrdiff_t bytes, stride, count;

    intptr_t first() const { return start + (stride < 0 ? stride * (count - 1) : 0); }
    intptr_t end() const { return start + (stride > 0 ? stride * (count - 1) : 0) + bytes; }
};

Rows rows_at(const uint8_t *start, ptrdiff_t bytes, ptrdiff_t stride, ptrdiff_t count) {
    return {reinterpret_cast<intptr_t>(start), bytes, stride, count};
}

// Side by side in one larger picture.
bool beside(const Rows &a, const Rows &b) {
    if (a.stride != b.stride || a.stride == 0) return false;
    const ptrdiff_t stride = a.stride < 0 ? -a.stride : a.stride;
    const ptrdiff_t offset = ((b.start - a.start) % stride + stride) % stride;
    return offset >= a.bytes && offset + b.bytes <= stride;
}

[[gnu::always_inline]] inline bool apart(const Rows &a, const Rows &b) {
    return a.end() <= b.first() || b.end() <= a.first() || beside(a, b);
}

}  // namespace

constinit const PictureKernels in_order = {
    .gray = bytes_in_order<1>,
    .rgb = bytes_in_order<3>,
    .rgb_to_565 = [](const ResizeJob &job) { resize_in_order(job, BytePixel{3}, Pixel565{}); },
    .rgb565 = [](const ResizeJob &job) { resize_in_order(job, Pixel565{}, Pixel565{}); },
    .rgba = bytes_in_order<4>,
};

bool order_is_free(const ResizeJob &job, int32_t src_bytes, int32_t dst_bytes) {
    const Part &part = job.part;
    const Axis &y = job.grid.y;
    const SourceRows &rows = job.rows;
    const auto upper = [&](int64_t row) { return row * y.step >> kPositionBits << y.shift; };
    const int64_t first = upper(part.y) > rows.first ? upper(part.y) : rows.first;
    const int64_t last = upper(part.y + part.h - 1) + (y.step != 0 ? int64_t{1} << y.shift : 0);
    const ptrdiff_t row_bytes = static_cast<ptrdiff_t>(source_pixels(job.grid, part.end_x())) * src_bytes;

    const Rows dst = rows_at(job.dst, ptrdiff_t{part.w} * dst_bytes, job.dst_stride, part.h);
    if (part.h > 1 && dst.stride < dst.bytes && -dst.stride < dst.bytes) return false;
    const uint8_t *start = rows.base + (first - rows.first) * rows.stride;
    if (first <= last && !apart(dst, rows_at(start, row_bytes, rows.stride, last - first + 1))) return false;
    return rows.held < 0 || apart(dst, rows_at(rows.held_row, row_bytes, 0, 1));
}

}  // namespace qorv
