// The resizer object, and the exported functions of every pixel format.
#include <stdlib.h>
#include <string.h>

#include "core/isa.h"
#include "qorv_skia.h"
#include "resize/axis.h"
#include "resize/in_order.h"
#include "resize/resize_kernels.h"

using namespace qorv;

namespace {

constexpr int32_t kPictureMode = 10;
constexpr int32_t kBandMode = 11;

struct Format {
    int32_t code;
    ResizeKernel PictureKernels::*kernel;
    int32_t (*record_kernel)(QORV_IRSZ *, const uint8_t *, uint32_t, uint32_t);
    int32_t src_bytes, dst_bytes;  // of a pixel
    int32_t pitch_unit;            // bytes that 1 in the record's pitches stands for
};

constexpr Format kGray = {20, &PictureKernels::gray, qorv_irsz8b, 1, 1, 1};
constexpr Format kRgb = {21, &PictureKernels::rgb, qorv_irsz8b8b8b, 3, 3, 1};
constexpr Format kRgbTo565 = {23, &PictureKernels::rgb_to_565, qorv_irsz8b8b8b_5b6b5b, 3, 2, 1};
constexpr Format k565 = {25, &PictureKernels::rgb565, qorv_irsz5b6b5b, 2, 2, 2};
constexpr Format kRgba = {29, &PictureKernels::rgba, qorv_irsz8b8b8b8b, 4, 4, 1};

const Format *find_format(int32_t code) {
    static constexpr const Format *kFormats[] = {&kGray, &kRgb, &kRgbTo565, &k565, &kRgba};
    for (const Format *format : kFormats) {
        if (format->code == code) return format;
    }
    return nullptr;
}

void run(const Format &format, const ResizeJob &job) {
    if (job.part.w < 1 || job.part.h < 1) return;
    const bool free = order_is_free(job, format.src_bytes, format.dst_bytes);
    const PictureKernels *kernels = free ? &active.resize->pictures : &in_order;
    (kernels->*format.kernel)(job);
}

// A record's picture or band: `rows` rows of the destination from `first` on.
ResizeJob job_of(const Format &format, const QORV_IRSZ &rsz, int32_t first, int32_t rows, const SourceRows &source) {
    const ptrdiff_t dst_stride = ptrdiff_t{rsz.dst_pitch} * format.pitch_unit;
    return {.grid = {.x = {rsz.step_x, rsz.shift_x}, .y = {rsz.step_y, rsz.shift_y}, .neighbour = rsz.pel_step},
            .part = {.x = 0, .y = first, .w = rsz.dst_w, .h = rows},
            .rows = source,
            .dst = static_cast<uint8_t *>(rsz.dst) + first * dst_stride,
            .dst_stride = dst_stride};
}

int64_t position(const QORV_IRSZ &rsz, int32_t row) {
    return int64_t{row} * rsz.step_y;
}

// The pair of source rows of a destination row. A source of one row has no lower one.
int64_t upper_row(const QORV_IRSZ &rsz, int32_t row) {
    return position(rsz, row) >> kPositionBits << rsz.shift_y;
}

int64_t lower_row(const QORV_IRSZ &rsz, int32_t row) {
    return upper_row(rsz, row) + (rsz.step_y != 0 ? int64_t{1} << rsz.shift_y : 0);
}

// How far down in a band a destination row lies, for band heights that are powers of two.
int64_t row_in_band(const QORV_IRSZ &rsz, int32_t row, uint32_t band_h) {
    return position(rsz, row) >> (kPositionBits - rsz.shift_y) & (band_h - 1);
}

// Keeps the upper row of a pending destination row, of a band whose memory goes away before the lower one comes.
void hold_upper_row(const Format &format, QORV_IRSZ &rsz, const SourceRows &band, int32_t row, int64_t end) {
    const int64_t upper = upper_row(rsz, row);
    if (upper >= band.first && rsz.dst_w > 0) {
        const Axis x = {rsz.step_x, rsz.shift_x};
        memcpy(rsz.line_buf, band.base + (upper - band.first) * band.stride,
               static_cast<size_t>(source_pixels({.x = x, .y = {}, .neighbour = rsz.pel_step}, rsz.dst_w) *
                                   format.src_bytes));
    }
    rsz.saved_off = static_cast<int32_t>((lower_row(rsz, row) - end) * rsz.src_pitch);
}

// Produces every destination row whose pair of source rows has come with this band. A row whose upper one alone has
// come stays pending: `dst_row` and `pos_y` count it as done, `row_cached` says that it is not.
void resize_band(const Format &format, QORV_IRSZ &rsz, const uint8_t *src, uint32_t first_row, uint32_t band_h) {
    const int64_t end = int64_t{first_row} + band_h;
    const int32_t first = rsz.dst_row - rsz.row_cached;
    int32_t row = first;
    for (; row < rsz.dst_h && lower_row(rsz, row) < end; row++) {
        if (row_in_band(rsz, row + 1, band_h) < row_in_band(rsz, row, band_h)) rsz.band_flag = 0;
    }

    const SourceRows band = {src, ptrdiff_t{rsz.src_pitch} * format.pitch_unit, first_row,
                             rsz.row_cached != 0 ? upper_row(rsz, first) : -1, rsz.line_buf};
    run(format, job_of(format, rsz, first, row - first, band));

    const bool pending = row < rsz.dst_h && upper_row(rsz, row) < end;
    if (pending) hold_upper_row(format, rsz, band, row, end);
    rsz.row_cached = pending;
    rsz.dst_row = row + pending;
    rsz.pos_y = static_cast<uint32_t>(position(rsz, rsz.dst_row));
    if (rsz.upscale != 0 && row_in_band(rsz, rsz.dst_row - 1, band_h) == row_in_band(rsz, rsz.dst_row, band_h)) {
        rsz.band_flag = 1;
    }
}

void resize_picture(const Format &format, const QORV_IRSZ &rsz, const uint8_t *src) {
    const ptrdiff_t stride = ptrdiff_t{rsz.src_pitch} * format.pitch_unit;
    run(format, job_of(format, rsz, 0, rsz.dst_h, {src, stride, 0, -1, nullptr}));
}

[[gnu::noinline]] int32_t resize_record(const Format &format, QORV_IRSZ &rsz, const uint8_t *src, uint32_t first_row,
                                        uint32_t band_h) {
    if (rsz.mode == kBandMode) {
        resize_band(format, rsz, src, first_row, band_h);
    } else {
        resize_picture(format, rsz, src);
    }
    return QORV_OK;
}

Axis unpacked(int32_t packed_step) {
    return {packed_step >> 3, packed_step & 7};
}

[[gnu::noinline]] void resize_full(const Format &format, const uint8_t *src, uint32_t src_pitch, int32_t dst_w,
                                   int32_t dst_h, int32_t dst_pitch, uint8_t *dst, int32_t step_x, int32_t step_y) {
    const Axis x = unpacked(step_x);
    run(format, {.grid = {x, unpacked(step_y), 1 << x.shift},
                 .part = {0, 0, dst_w, dst_h},
                 .rows = {src, ptrdiff_t{src_pitch} * format.pitch_unit, 0, -1, nullptr},
                 .dst = dst,
                 .dst_stride = ptrdiff_t{dst_pitch} * format.pitch_unit});
}

[[gnu::noinline]] void resize_line(const Format &format, const uint8_t *const *rows, const uint8_t *weights,
                                   int32_t dst_w, int32_t shift_x, int32_t pel_step, uint32_t step_x, uint8_t *dst) {
    const int64_t fy = weights[2] >> 3;  // the third weight is (8 - fx) fy, with fx = 0
    // Row 1 of a destination whose rows lie fy eighths apart.
    run(format, {.grid = {{step_x, shift_x}, {fy << kEighthBits, 0}, pel_step},
                 .part = {0, 1, dst_w, 1},
                 .rows = {rows[1], 0, 1, 0, rows[0]},
                 .dst = dst,
                 .dst_stride = 0});
}

// Fills everything but line_buf; what only band mode changes is zero already.
void set_up(QORV_IRSZ &rsz, const QORV_IRSZ_PARAM &param, const Format &format) {
    const Axis x = axis_between(param.src_w, param.dst_w), y = axis_between(param.src_h, param.dst_h);
    rsz.format = param.format;
    rsz.mode = param.mode;
    rsz.step_x = static_cast<uint32_t>(x.step);
    rsz.step_y = static_cast<uint32_t>(y.step);
    rsz.pel_step = 1 << x.shift;
    rsz.src_pitch = param.src_stride * format.src_bytes / format.pitch_unit;
    rsz.dst_w = param.dst_w;
    rsz.dst_h = param.dst_h;
    rsz.dst_pitch = param.dst_stride * format.dst_bytes / format.pitch_unit;
    rsz.shift_x = x.shift;
    rsz.shift_y = y.shift;
    rsz.row_step = rsz.src_pitch * (1 << y.shift);
    rsz.band_bytes = param.band_h * rsz.src_pitch;
    rsz.upscale = param.dst_w > param.src_w || param.dst_h > param.src_h;
    rsz.fn_rsz = format.record_kernel;
    rsz.dst = param.dst;
}

int32_t build(QORV_IRSZ &rsz, const QORV_IRSZ_PARAM &param) {
    if (param.mode != kPictureMode && param.mode != kBandMode) return QORV_ERR_IRSZ_MODE;
    const Format *format = find_format(param.format);
    if (format == nullptr) return QORV_ERR_UNSUPPORTED_FMT;
    set_up(rsz, param, *format);
    if (param.mode == kBandMode) {
        rsz.line_buf = static_cast<uint8_t *>(malloc(static_cast<size_t>(param.src_stride * format->src_bytes) + 1));
        if (rsz.line_buf == nullptr) return QORV_ERR_IRSZ_NOMEM;
    }
    return QORV_OK;
}

}  // namespace

extern "C" QORV_IRSZ *qorv_irsz_create(const QORV_IRSZ_PARAM *param, int32_t *status) {
    QORV_IRSZ *rsz = static_cast<QORV_IRSZ *>(calloc(1, sizeof *rsz));
    const int32_t result = rsz != nullptr ? build(*rsz, *param) : QORV_ERR_IRSZ_NOMEM;
    if (status != nullptr) *status = result;
    if (result == QORV_OK) return rsz;
    free(rsz);
    return nullptr;
}

extern "C" int32_t qorv_irsz(QORV_IRSZ *rsz, const uint8_t *src, uint32_t first_row, uint32_t band_h) {
    rsz->fn_rsz(rsz, src, first_row, band_h);
    return QORV_OK;
}

extern "C" void qorv_irsz_delete(QORV_IRSZ *rsz) {
    if (rsz == nullptr) return;
    free(rsz->line_buf);
    free(rsz);
}

#define QORV_RESIZE_FAMILY(name, format)                                                                            \
    extern "C" int32_t name(QORV_IRSZ *rsz, const uint8_t *src, uint32_t first_row, uint32_t band_h) {              \
        return resize_record(format, *rsz, src, first_row, band_h);                                                 \
    }                                                                                                               \
    extern "C" void name##_full(const uint8_t *src, uint32_t src_pitch, int32_t dst_w, int32_t dst_h,               \
                                int32_t dst_pitch, uint8_t *dst, int32_t step_x, int32_t step_y) {                  \
        resize_full(format, src, src_pitch, dst_w, dst_h, dst_pitch, dst, step_x, step_y);                          \
    }                                                                                                               \
    extern "C" void name##_line(const uint8_t *const *rows, const uint8_t *weights, int32_t dst_w, int32_t shift_x, \
                                int32_t pel_step, uint32_t step_x, uint8_t *dst) {                                  \
        resize_line(format, rows, weights, dst_w, shift_x, pel_step, step_x, dst);                                  \
    }
QORV_RESIZE_FAMILY(qorv_irsz8b, kGray)
QORV_RESIZE_FAMILY(qorv_irsz8b8b8b, kRgb)
QORV_RESIZE_FAMILY(qorv_irsz8b8b8b_5b6b5b, kRgbTo565)
QORV_RESIZE_FAMILY(qorv_irsz5b6b5b, k565)
QORV_RESIZE_FAMILY(qorv_irsz8b8b8b8b, kRgba)
