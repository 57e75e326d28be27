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
        if (whole > 0) sampler.write(0, whole, dst);
        if (whole < bytes) {
            uint8_t last[kUnit];
            sampler.write(whole, whole + kUnit, last);
            store_few(dst + whole, last, bytes - whole);
        }
    }
};

// `PerPixel` outputs, a fourth of no meaning, become one 5-6-5 word.
template <int PerPixel>
struct Store565 {
    static constexpr int kPixelBytes = 2;

    template <class Sampler>
    static void row(const Sampler &sampler, int columns, uint8_t *dst) {
        uint8_t outputs[PerPixel * kStripColumns];
        sampler.write(0, (PerPixel * columns + kUnit - 1) / kUnit * kUnit, outputs);
        int x = 0;
        for (; x + kVectorBytes <= columns; x += kVectorBytes) pack(outputs + PerPixel * x, dst + 2 * x);
        if (x < columns) {
            uint8_t last[2 * kVectorBytes];
            pack(outputs + PerPixel * x, last);
            memcpy(dst + 2 * x, last, static_cast<size_t>(2 * (columns - x)));
        }
    }

    [[gnu::always_inline]] static void pack(const uint8_t *pixels, uint8_t *words) {
        U8 top, middle, bottom, unused, low, high;
        if constexpr (PerPixel == 3) {
            load_interleaved3(pixels, top, middle, bottom);
        } else {
            load_interleaved4(pixels, top, middle, bottom, unused);
        }
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

// Enlarged by so much that an eighth of a source row serves two rows and more, only the first of these is sampled.
bool rows_repeat(const Axis &axis) {
    return axis.step <= kOne / 16;
}

// The rows of a strip, without those that repeat the one before them.
template <class Store, class Sampler>
void resize_strip(const ResizeJob &job, Sampler &sampler, int columns, uint8_t *dst) {
    const ptrdiff_t bytes = ptrdiff_t{columns} * Store::kPixelBytes;
    const int64_t step = job.grid.y.step;
    const bool repeats = rows_repeat(job.grid.y), expect = !repeats && step < kOne && columns < job.part.w;
    int64_t y = job.part.y * step;
    for (int32_t row = 0; row < job.part.h; row++, y += step, dst += job.dst_stride) {
        if (expect && row + 1 < job.part.h) expect_stores(dst + job.dst_stride, bytes);
        if (sampler.seek(y) || !repeats) Store::row(sampler, columns, dst);
    }
}

// Whole rows that repeat the one before them: a processor sees them coming.
void copy_repeated_rows(const ResizeJob &job, size_t bytes) {
    const int64_t step = job.grid.y.step;
    int64_t y = job.part.y * step;
    uint8_t *dst = job.dst;
    for (int32_t row = 1; row < job.part.h; row++) {
        y += step;
        if (y >> kEighthBits == (y - step) >> kEighthBits) memcpy(dst + job.dst_stride, dst, bytes);
        dst += job.dst_stride;
    }
}

using PixelColumns = Columns<BytePixel<4>, 4>;

// One row of four-byte pixels: the last unit by way of `Last`, as it may end where the row's memory does.
template <Reach R, Reach Last>
[[gnu::always_inline]] inline void reduce_row(const RowsAcross<PixelColumns> &rows, int bytes, uint8_t *dst) {
    ptrdiff_t group = 0;
    for (; bytes > kUnit; bytes -= kUnit, dst += kUnit, group += 2 * kLanes) store(dst, rows.unit<R>(group));
    const U8 unit = rows.unit<Last>(group);
    if (bytes == kUnit) {
        store(dst, unit);
    } else {
        uint8_t last[kUnit];
        store(last, unit);
        store_few(dst, last, bytes);
    }
}

// The rows of a strip of four-byte pixels whose every pair of source rows serves once: straight from the source.
template <Reach R, Reach Last>
[[gnu::noinline]] void reduce_rows(const ResizeJob &job, const PixelColumns &columns, uint8_t *dst) {
    const Axis axis = job.grid.y;
    const ptrdiff_t origin = columns.strip.origin, dst_stride = job.dst_stride;
    SourceRows source = job.rows;  // from the strip's origin on, and from row 0
    source.base += origin - source.first * source.stride;
    source.first = 0;
    if (source.held >= 0) source.held_row += origin;
    const int bytes = 4 * columns.strip.count;
    int64_t y = job.part.y * axis.step;
    for (int32_t row = job.part.h; row > 0; row--, y += axis.step, dst += dst_stride) {
        const RowNumbers rows(y, axis.shift);
        const auto eighths = static_cast<uint16_t>(rows.eighths);
        reduce_row<R, Last>({columns, {{source.row(rows.upper)}}, {{source.row(rows.lower)}}, eighths}, bytes, dst);
    }
}

void reduce_strip(const ResizeJob &job, const PixelColumns &columns, uint8_t *dst) {
    const Strip &strip = columns.strip;
    if (strip.fetch == Fetch::kDirect) return reduce_rows<Reach::kOneWindow, Reach::kOneWindow>(job, columns, dst);
    // With two units and more there is a pixel before the last unit's columns, and one behind all others.
    const bool second = strip.x.shift == 1 && strip.neighbour == 2 && strip.x.step >= kOne && 4 * strip.count > kUnit;
    if (second) return reduce_rows<Reach::kSecondAndNext, Reach::kSecondAndLast>(job, columns, dst);
    reduce_rows<Reach::kGathered, Reach::kGathered>(job, columns, dst);
}

// At each of eight places a byte and the next.
[[gnu::always_inline]] inline Vec<uint16_t, 16> load_words(const uint8_t *row, const ptrdiff_t *places) {
    const auto word = [=](int i) { return uint64_t{load<uint16_t>(row + places[i])}; };
    const auto four = [=](int i) { return word(i) | word(i + 1) << 16 | word(i + 2) << 32 | word(i + 3) << 48; };
    return (Vec<uint16_t, 16>)Vec<uint64_t, 16>{four(0), four(4)};
}

// Up to eight columns of single bytes, down the picture: neighbours are read where they lie. Tables and buffers would
// cost more than they save.
void reduce_few(const ResizeJob &job, int32_t first_column, int columns, uint8_t *dst) {
    using U16x8 = Vec<uint16_t, 16>;
    const Axis x_axis = job.grid.x, y_axis = job.grid.y;
    ptrdiff_t left[8];
    U16x8 right_weight;
    for (int i = 0; i < 8; i++) {
        const int64_t x = (first_column + (i < columns ? i : columns - 1)) * x_axis.step;
        left[i] = static_cast<ptrdiff_t>(x >> kPositionBits << x_axis.shift);
        right_weight[i] = static_cast<uint16_t>(eighths_at(x));
    }
    const ptrdiff_t between = job.grid.neighbour - 1;
    const SourceRows source = job.rows;
    // ((8 - fx) A + fx B) of eight columns.
    const auto across = [&](const uint8_t *row) {
        const U16x8 from_left = load_words(row, left),
                    to_right = between == 0 ? from_left : load_words(row + between, left);
        return (from_left & 255) * (8 - right_weight) + (to_right >> 8) * right_weight;
    };
    int64_t y = job.part.y * y_axis.step;
    for (int32_t row = job.part.h; row > 0; row--, y += y_axis.step, dst += job.dst_stride) {
        const RowNumbers rows(y, y_axis.shift);
        const U16x8 sums = across(source.row(rows.upper)) * static_cast<uint16_t>(8 - rows.eighths) +
                           across(source.row(rows.lower)) * static_cast<uint16_t>(rows.eighths);
        const U16x8 samples = sums >> 6;
        uint8_t bytes[8];
        store(bytes, __builtin_convertvector(samples, Vec<uint8_t, 8>));
        if (columns == 8) {
            memcpy(dst, bytes, 8);
        } else {
            for (int i = 0; i < columns; i++) dst[i] = bytes[i];
        }
    }
}

// With no pixels to skip, a window serves many columns at once.
int few_columns(const Axis &x) {
    return x.shift == 0 ? 8 : 16;
}

template <class Pixel, int PerPixel, class Store>
void resize(const ResizeJob &job) {
    const Part &part = job.part;
    if constexpr (Pixel::kMemory == 1) {
        // Both neighbours exist, the right one behind the left.
        const bool usual = job.grid.x.step != 0 && job.grid.neighbour > 0;
        if (part.w <= few_columns(job.grid.x) && job.grid.y.step >= kOne && usual) {
            for (int32_t done = 0; done < part.w; done += 8) {
                reduce_few(job, part.x + done, part.w - done < 8 ? part.w - done : 8, job.dst + done);
            }
            return;
        }
    }
    const int64_t readable = source_pixels(job.grid, part.end_x());
    for (int32_t done = 0; done < part.w; done += kStripColumns) {
        const int32_t columns = strip_columns(part, done);
        const Columns<Pixel, PerPixel> outputs(strip_of<Pixel, PerPixel>(job.grid, part.x + done, columns, readable));
        uint8_t *const dst = job.dst + ptrdiff_t{done} * Store::kPixelBytes;
        if constexpr (Pixel::kMemory == 4) {
            if (!outputs.strip.kept) {
                reduce_strip(job, outputs, dst);
                continue;
            }
        }
        Sampler<Pixel, PerPixel> sampler(outputs, &job.rows, job.grid.y);
        resize_strip<Store>(job, sampler, columns, dst);
    }
    if (rows_repeat(job.grid.y)) copy_repeated_rows(job, static_cast<size_t>(part.w) * Store::kPixelBytes);
}

void sample_strip(const PlanesJob &job, const Columns<BytePixel<1>, 1> &columns, int32_t first) {
    const Axis &axis = job.grid.y;
    const int outputs = columns.outputs;
    Sampler<BytePixel<1>, 1, 3> three(columns, job.rows, axis);
    Sampler<BytePixel<1>, 1> fourth(columns, job.rows + 3, axis);
    uint8_t samples[kMaxPlanes * kStripColumns];
    const void *const rows[kMaxPlanes] = {samples, samples + outputs, samples + 2 * outputs, samples + 3 * outputs};
    int64_t y = job.part.y * axis.step;
    for (int32_t row = 0; row < job.part.h; row++, y += axis.step) {
        if (three.seek(y)) three.write(0, outputs, samples);
        if (job.planes == 4 && fourth.seek(y)) fourth.write(0, outputs, samples + 3 * outputs);
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
                 .rgb_to_565 = resize<BytePixel<3>, 3, Store565<3>>,
                 .rgb565 = resize<Pixel565, 4, Store565<4>>,
                 .rgba = resize<BytePixel<4>, 4, StoreBytes<4>>},
    .planes = sample_planes,
};

}  // namespace qorv::QORV_ISA
