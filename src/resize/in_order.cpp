#include "resize/in_order.h"

#include "qorv_skia.h"

namespace qorv {

namespace {

template <int N>
struct BytePixel {
    static constexpr int kBytes = N, kChannels = N;

    static int channel(const uint8_t *pixel, int i) { return pixel[i]; }
    static void put(const int *sums, uint8_t *pixel) {
        for (int i = 0; i < N; i++) pixel[i] = static_cast<uint8_t>(sums[i] >> 6);
    }
};

struct Pixel565 {
    static constexpr int kBytes = 2, kChannels = 3;

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

int eighths(int64_t position) {
    return static_cast<int>(position >> kEighthBits & 7);
}

template <class From, class To>
void resize_row(const Grid &grid, const Part &part, const uint8_t *upper, const uint8_t *lower, int fy, uint8_t *dst) {
    const ptrdiff_t right = grid.x.step != 0 ? ptrdiff_t{grid.neighbour} * From::kBytes : 0;
    int64_t x = part.x * grid.x.step;
    for (int32_t i = 0; i < part.w; i++, x += grid.x.step, dst += To::kBytes) {
        const ptrdiff_t at = static_cast<ptrdiff_t>(x >> kPositionBits << grid.x.shift) * From::kBytes;
        const uint8_t *w = qorv_irsz_tbl_rsz_weight[eighths(x) * 8 + fy];
        int sums[From::kChannels];
        for (int c = 0; c < From::kChannels; c++) {
            sums[c] = w[0] * From::channel(upper + at, c) + w[1] * From::channel(upper + at + right, c) +
                      w[2] * From::channel(lower + at, c) + w[3] * From::channel(lower + at + right, c);
        }
        To::put(sums, dst);
    }
}

template <class From, class To>
void resize_in_order(const ResizeJob &job) {
    const Axis &axis = job.grid.y;
    int64_t y = job.part.y * axis.step;
    uint8_t *dst = job.dst;
    for (int32_t row = 0; row < job.part.h; row++, y += axis.step, dst += job.dst_stride) {
        const int64_t upper = y >> kPositionBits << axis.shift;
        const int fy = eighths(y);
        // A row of weight 0 may not exist.
        const int64_t lower = fy == 0 ? upper : upper + (int64_t{1} << axis.shift);
        resize_row<From, To>(job.grid, job.part, job.rows.row(upper), job.rows.row(lower), fy, dst);
    }
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
    .gray = resize_in_order<BytePixel<1>, BytePixel<1>>,
    .rgb = resize_in_order<BytePixel<3>, BytePixel<3>>,
    .rgb_to_565 = resize_in_order<BytePixel<3>, Pixel565>,
    .rgb565 = resize_in_order<Pixel565, Pixel565>,
    .rgba = resize_in_order<BytePixel<4>, BytePixel<4>>,
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
