#include "resize/resize_kernels.h"

#include "core/isa.h"
#include "resize/sampler.h"
#include "resize/words_565.h"

namespace qorv::QORV_ISA {

namespace {

// The outputs are the destination's bytes.
template <int N>
struct StoreBytes {
    static constexpr int kPixelBytes = N;

    template <class Sampler>
    static void row(const Sampler &sampler, int columns, uint8_t *dst) {
        const int bytes = columns * N, whole = bytes / kUnit * kUnit;
        sampler.write(0, whole, dst);
        if (whole < bytes) {
            uint8_t last[kUnit];
            sampler.write(whole, whole + kUnit, last);
            store_few(dst + whole, last, bytes - whole);
        }
    }
};

// Four outputs, the last of no meaning, become one 5-6-5 word.
struct Store565 {
    static constexpr int kPixelBytes = 2;

    template <class Sampler>
    static void row(const Sampler &sampler, int columns, uint8_t *dst) {
        uint8_t outputs[4 * kStripColumns];
        sampler.write(0, (4 * columns + kUnit - 1) / kUnit * kUnit, outputs);
        int x = 0;
        for (; x + kVectorBytes <= columns; x += kVectorBytes) pack(outputs + 4 * x, dst + 2 * x);
        if (x < columns) {
            uint8_t last[2 * kVectorBytes];
            pack(outputs + 4 * x, last);
            memcpy(dst + 2 * x, last, static_cast<size_t>(2 * (columns - x)));
        }
    }

    [[gnu::always_inline]] static void pack(const uint8_t *pixels, uint8_t *words) {
        U8 top, middle, bottom, unused, low, high;
        load_interleaved4(pixels, top, middle, bottom, unused);
        pack_565(top, middle, bottom, low, high);
        store_interleaved2(words, low, high);
    }
};

int32_t strip_columns(const Part &part, int32_t done) {
    return part.w - done < kStripColumns ? part.w - done : kStripColumns;
}

// The lines of memory that the next row of a strip goes to: where strips are side by side, no row follows on the one
// before it, so that a processor does not see it coming.
[[gnu::always_inline]] inline void expect_stores(uint8_t *dst, ptrdiff_t bytes) {
    constexpr ptrdiff_t kLine = 64;
    for (ptrdiff_t i = 0; i < bytes; i += kLine) __builtin_prefetch(dst + i, 1);
}

// The rows of a strip. Enlarged by so much that an eighth serves two rows and more, a row is sampled once and copied.
template <class Store, class Sampler>
void resize_strip(const ResizeJob &job, Sampler &sampler, int columns, uint8_t *dst) {
    const ptrdiff_t bytes = ptrdiff_t{columns} * Store::kPixelBytes;
    const int64_t step = job.grid.y.step;
    const bool repeats = step <= kOne / 16, expect = step < kOne && columns < job.part.w;
    uint8_t line[kStripColumns * Store::kPixelBytes];
    int64_t y = job.part.y * step;
    for (int32_t row = 0; row < job.part.h; row++, y += step, dst += job.dst_stride) {
        if (expect && row + 1 < job.part.h) expect_stores(dst + job.dst_stride, bytes);
        const bool fresh = sampler.seek(y);
        if (fresh || !repeats) Store::row(sampler, columns, repeats ? line : dst);
        if (repeats) memcpy(dst, line, static_cast<size_t>(bytes));
    }
}

template <class Pixel, int PerPixel, class Store>
void resize(const ResizeJob &job) {
    const Part &part = job.part;
    const int64_t readable = source_pixels(job.grid, part.end_x());
    for (int32_t done = 0; done < part.w; done += kStripColumns) {
        const int32_t columns = strip_columns(part, done);
        const Columns<Pixel, PerPixel> outputs(strip_of<Pixel, PerPixel>(job.grid, part.x + done, columns, readable));
        Sampler<Pixel, PerPixel> sampler(outputs, job.rows, job.grid.y);
        resize_strip<Store>(job, sampler, columns, job.dst + ptrdiff_t{done} * Store::kPixelBytes);
    }
}

void sample_strip(const PlanesJob &job, const Columns<BytePixel<1>, 1> &columns, int32_t first) {
    const Axis &axis = job.grid.y;
    Sampler<BytePixel<1>, 1> planes[kMaxPlanes] = {{columns, job.rows[0], axis},
                                                   {columns, job.rows[1], axis},
                                                   {columns, job.rows[2], axis},
                                                   {columns, job.rows[3], axis}};
    uint8_t samples[kMaxPlanes][kStripColumns];
    const uint8_t *const rows[kMaxPlanes] = {samples[0], samples[1], samples[2], samples[3]};
    int64_t y = job.part.y * axis.step;
    for (int32_t row = 0; row < job.part.h; row++, y += axis.step) {
        for (int i = 0; i < job.planes; i++) {
            if (planes[i].seek(y)) planes[i].write(0, columns.outputs, samples[i]);
        }
        job.take(job.context, rows, first, columns.strip.count, job.part.y + row);
    }
}

void sample_planes(const PlanesJob &job) {
    const int64_t readable = source_pixels(job.grid, job.part.end_x());
    for (int32_t done = 0; done < job.part.w; done += kStripColumns) {
        const int32_t x = job.part.x + done;
        const Strip strip = strip_of<BytePixel<1>, 1>(job.grid, x, strip_columns(job.part, done), readable);
        sample_strip(job, Columns<BytePixel<1>, 1>(strip), x);
    }
}

}  // namespace

constinit const ResizeKernels resize_kernels = {
    .pictures = {.gray = resize<BytePixel<1>, 1, StoreBytes<1>>,
                 .rgb = resize<BytePixel<3>, 3, StoreBytes<3>>,
                 .rgb_to_565 = resize<BytePixel<3>, 4, Store565>,
                 .rgb565 = resize<Pixel565, 4, Store565>,
                 .rgba = resize<BytePixel<4>, 4, StoreBytes<4>>},
    .planes = sample_planes,
};

}  // namespace qorv::QORV_ISA
