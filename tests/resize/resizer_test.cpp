#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "qorv_skia.h"
#include "resize/band_steps.h"
#include "support/allocation.h"
#include "support/bilinear_reference.h"
#include "support/doing.h"
#include "support/first_difference.h"
#include "support/guarded_buffer.h"
#include "support/kernel_fixture.h"
#include "support/random.h"

namespace test {

namespace {

struct Format {
    int code;
    int src_bytes, dst_bytes;  // a pixel
    int unit;                  // bytes that 1 in a pitch stands for
    decltype(qorv_irsz8b) *kernel;
    decltype(qorv_irsz8b_full) *full;
    decltype(qorv_irsz8b_line) *line;
};

const Format kFormats[] = {
    {20, 1, 1, 1, qorv_irsz8b, qorv_irsz8b_full, qorv_irsz8b_line},
    {21, 3, 3, 1, qorv_irsz8b8b8b, qorv_irsz8b8b8b_full, qorv_irsz8b8b8b_line},
    {23, 3, 2, 1, qorv_irsz8b8b8b_5b6b5b, qorv_irsz8b8b8b_5b6b5b_full, qorv_irsz8b8b8b_5b6b5b_line},
    {25, 2, 2, 2, qorv_irsz5b6b5b, qorv_irsz5b6b5b_full, qorv_irsz5b6b5b_line},
    {29, 4, 4, 1, qorv_irsz8b8b8b8b, qorv_irsz8b8b8b8b_full, qorv_irsz8b8b8b8b_line},
};

struct Sizes {
    int sw, sh, dw, dh;
};

// One channel of a source pixel: of a 5-6-5 word its fields, widened with zero low bits.
int source_channel(const Format &format, const uint8_t *pixel, int channel) {
    if (format.code != 25) return pixel[channel];
    const int word = pixel[0] | pixel[1] << 8;
    return channel == 0 ? (word >> 8) & 0xF8 : channel == 1 ? (word >> 3) & 0xFC : (word & 31) * 8;
}

// Row by row, pixel by pixel: the destination may lie in the source.
void resize_in_order(const Format &format, const Sizes &size, const uint8_t *src, size_t src_row, const BilinearAxis &x,
                     const BilinearAxis &y, uint8_t *dst, size_t dst_row) {
    for (int j = 0; j < size.dh; j++) {
        uint8_t *out = dst + static_cast<size_t>(j) * dst_row;
        for (int i = 0; i < size.dw; i++) {
            int sum[4] = {};
            for (int c = 0; c < (format.code == 25 ? 3 : format.src_bytes); c++) {
                sum[c] = bilinear_sum(x, y, i, j, [&](int64_t column, int64_t row) {
                    return source_channel(
                        format,
                        src + static_cast<size_t>(row) * src_row + static_cast<size_t>(column * format.src_bytes), c);
                });
            }
            if (format.dst_bytes == 2) {
                const int word = (sum[0] * 4 & 0xF800) | (sum[1] >> 3 & 0x7E0) | (sum[2] >> 9 & 31);
                *out++ = static_cast<uint8_t>(word);
                *out++ = static_cast<uint8_t>(word >> 8);
            } else {
                for (int c = 0; c < format.dst_bytes; c++) *out++ = static_cast<uint8_t>(sum[c] >> 6);
            }
        }
    }
}

std::vector<uint8_t> reference(const Format &format, const Sizes &size, const uint8_t *src, size_t src_row,
                               const BilinearAxis &x, const BilinearAxis &y) {
    const auto dst_row = static_cast<size_t>(size.dw * format.dst_bytes);
    std::vector<uint8_t> out(dst_row * static_cast<size_t>(size.dh));
    resize_in_order(format, size, src, src_row, x, y, out.data(), dst_row);
    return out;
}

std::vector<uint8_t> reference(const Format &format, const Sizes &size, const uint8_t *src, size_t src_row) {
    return reference(format, size, src, src_row, BilinearAxis(size.sw, size.dw), BilinearAxis(size.sh, size.dh));
}

QORV_IRSZ_PARAM parameters(const Format &format, int mode, const Sizes &size, int src_stride, int dst_stride,
                           void *dst) {
    return {format.code, mode, size.sw, size.sh, src_stride, 0, size.dw, size.dh, dst_stride, dst};
}

// The visible part of a destination of padded rows; what lies between the rows must be as it was filled.
std::vector<uint8_t> visible(const GuardedBuffer &dst, size_t pitch, size_t row, int rows, uint8_t fill) {
    std::vector<uint8_t> bytes;
    for (size_t j = 0; j < static_cast<size_t>(rows); j++) {
        const uint8_t *start = dst.data() + j * pitch;
        bytes.insert(bytes.end(), start, start + row);
        const size_t gap = j + 1 < static_cast<size_t>(rows) ? pitch - row : 0;
        EXPECT_TRUE(std::all_of(start + row, start + row + gap, [&](uint8_t byte) { return byte == fill; }));
    }
    return bytes;
}

class Resizer : public WithKernelSet {
protected:
    Random random{10};

    // A source whose last row ends with its last pixel, so that nothing behind it can be read.
    GuardedBuffer make_source(const Format &format, const Sizes &size, size_t pitch, Flush flush) {
        const size_t row = static_cast<size_t>(size.sw * format.src_bytes);
        GuardedBuffer source(pitch * static_cast<size_t>(size.sh - 1) + row, flush);
        source.generate(random);
        source.make_read_only();
        return source;
    }

    void check_picture(const Format &format, const Sizes &size, int padding, Flush flush) {
        const Doing doing("format %d, %dx%d to %dx%d, rows %d apart", format.code, size.sw, size.sh, size.dw, size.dh,
                          padding);
        const int src_stride = size.sw + padding, dst_stride = size.dw + padding;
        const size_t src_pitch = static_cast<size_t>(src_stride * format.src_bytes);
        const size_t dst_pitch = static_cast<size_t>(dst_stride * format.dst_bytes);
        const GuardedBuffer source = make_source(format, size, src_pitch, flush);
        const std::vector<uint8_t> expected = reference(format, size, source.data(), src_pitch);
        const size_t dst_row = static_cast<size_t>(size.dw * format.dst_bytes);
        GuardedBuffer dst(dst_pitch * static_cast<size_t>(std::max(0, size.dh - 1)) + dst_row, flush);

        for (const bool with_record : {true, false}) {
            dst.fill(0xEE);
            if (with_record) {
                const QORV_IRSZ_PARAM param = parameters(format, 10, size, src_stride, dst_stride, dst.data());
                QORV_IRSZ *rsz = qorv_irsz_create(&param, nullptr);
                ASSERT_NE(rsz, nullptr);
                EXPECT_EQ(qorv_irsz(rsz, source.data(), 0, 0), 0);
                qorv_irsz_delete(rsz);
            } else {
                uint32_t step_x, step_y;
                bilinear_rsz_step_size(size.sw, size.sh, size.dw, size.dh, &step_x, &step_y);
                format.full(source.data(), static_cast<uint32_t>(src_pitch) / static_cast<uint32_t>(format.unit),
                            size.dw, size.dh, static_cast<int32_t>(dst_pitch) / format.unit, dst.data(),
                            static_cast<int32_t>(step_x), static_cast<int32_t>(step_y));
            }
            ASSERT_EQ(first_difference<uint8_t>(expected, visible(dst, dst_pitch, dst_row, size.dh, 0xEE),
                                                std::max<size_t>(1, dst_row)),
                      "");
            ASSERT_TRUE(dst.slack_intact() && source.slack_intact());
        }
    }
};
INSTANTIATE_FOR_KERNEL_SETS(Resizer);

TEST(ResizerSteps, FollowTheArithmetic) {
    uint32_t x, y;
    bilinear_rsz_step_size(640, 480, 320, 240, &x, &y);
    EXPECT_EQ(x, 4187744u);
    EXPECT_EQ(y, 4185560u);
    bilinear_rsz_step_size(1920, 100, 320, 200, &x, &y);
    EXPECT_EQ(x, 392396u << 3 | 2);
    EXPECT_EQ(y, 129761u << 3);
    Random random(11);
    for (int i = 0; i < 20000; i++) {
        const int32_t source = random.between(0, 8192), dest = random.between(0, i % 2 == 0 ? 40 : 8192);
        const BilinearAxis axis(source, dest);
        bilinear_rsz_step_size(source, dest, dest, source, &x, &y);
        ASSERT_EQ(x, static_cast<uint32_t>(axis.step) << 3 | static_cast<uint32_t>(axis.shift))
            << source << " " << dest;
    }
}

TEST(ResizerSteps, BothWeightTables) {
    for (int fx = 0; fx < 8; fx++) {
        for (int fy = 0; fy < 8; fy++) {
            const uint8_t expected[4] = {static_cast<uint8_t>((8 - fx) * (8 - fy)), static_cast<uint8_t>(fx * (8 - fy)),
                                         static_cast<uint8_t>((8 - fx) * fy), static_cast<uint8_t>(fx * fy)};
            EXPECT_EQ(memcmp(qorv_tbl_bilinear_rszw[fx * 8 + fy], expected, 4), 0);
            EXPECT_EQ(memcmp(qorv_irsz_tbl_rsz_weight[fx * 8 + fy], expected, 4), 0);
        }
    }
}

TEST_P(Resizer, PicturesOfEveryRatio) {
    const Sizes sizes[] = {
        {1, 1, 1, 1},      {1, 1, 40, 9},     {1, 7, 33, 5},      {9, 1, 4, 12},     {2, 2, 300, 40},
        {40, 30, 40, 30},  {64, 48, 97, 71},  {97, 71, 64, 48},   {64, 48, 128, 96}, {128, 96, 64, 48},
        {300, 20, 97, 61}, {61, 97, 300, 20}, {513, 33, 512, 32}, {8192, 3, 5, 2},   {3, 8192, 2, 5},
        {1000, 40, 1, 1},  {700, 9, 100, 4},  {700, 9, 230, 40},  {31, 17, 0, 5},    {31, 17, 5, 0},
        {5, 5, 1100, 3},   {4096, 4, 300, 4}, {620, 5, 257, 5},   {16, 16, 600, 16}, {33, 2, 35, 2},
        {16, 16, 8, 8},    {64, 64, 16, 16},  {97, 31, 17, 9},    {257, 40, 65, 9},  {1000, 100, 5, 5},
        {5, 40, 16, 7},    {1, 9, 12, 3},     {20, 3, 90, 300},   {300, 2, 600, 99},
    };
    for (const Format &format : kFormats) {
        for (const Sizes &size : sizes) {
            for (const Flush flush : kBothFlushes) {
                check_picture(format, size, flush == Flush::kEnd ? 0 : 5, flush);
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST_P(Resizer, RandomSizes) {
    for (int round = 0; round < 150; round++) {
        const Sizes size{random.between(1, 90), random.between(1, 40), random.between(1, 90), random.between(1, 40)};
        check_picture(kFormats[round % 5], size, random.between(0, 3), kBothFlushes[round / 5 % 2]);
        if (HasFatalFailure()) return;
    }
}

// Steps and shifts of the caller's own making, beyond those that the library computes. With 201700 whole vectors of
// pixels end with the row.
TEST_P(Resizer, PackedStepsOfAnyShift) {
    for (const Format &format : kFormats) {
        for (int shift = 0; shift <= 7; shift++) {
            for (const int64_t step : {int64_t{0}, int64_t{70000}, int64_t{201700}, int64_t{300001}, int64_t{900000}}) {
                BilinearAxis axis;
                axis.step = step;
                axis.shift = shift;
                const Sizes size{static_cast<int>(axis.index(39)) + (1 << shift) + 1, 1, 40, 1};
                const size_t pitch = static_cast<size_t>(size.sw * format.src_bytes);
                const GuardedBuffer source = make_source(format, size, pitch, Flush::kEnd);
                GuardedBuffer dst(static_cast<size_t>(40 * format.dst_bytes));
                const Doing doing("format %d, shift %d, step %d", format.code, shift, static_cast<int>(step));
                format.full(source.data(), 0, 40, 1, 0, dst.data(), static_cast<int32_t>(step << 3 | shift), 0);
                ASSERT_EQ(first_difference<uint8_t>(reference(format, size, source.data(), pitch, axis, {}),
                                                    dst.bytes(), dst.size()),
                          "");
            }
        }
    }
}

TEST_P(Resizer, LinesOfEveryWeight) {
    for (const Format &format : kFormats) {
        for (int fy = 0; fy < 8; fy++) {
            for (const int dw : {1, 7, 40, 260, 0}) {
                // From 2 rows to 8, row fy lies fy eighths below row 0.
                const Sizes size{50, 2, dw, 8};
                const size_t pitch = static_cast<size_t>(size.sw * format.src_bytes);
                const GuardedBuffer source = make_source(format, size, pitch, Flush::kEnd);
                const std::vector<uint8_t> expected = reference(format, size, source.data(), pitch);
                const size_t row = static_cast<size_t>(dw * format.dst_bytes);
                GuardedBuffer dst(row);
                const Doing doing("format %d, fy %d, width %d", format.code, fy, dw);
                const BilinearAxis x(size.sw, dw);
                const uint8_t *rows[2] = {source.data(), fy == 0 ? nullptr : source.data() + pitch};
                format.line(rows, qorv_irsz_tbl_rsz_weight[fy], dw, x.shift, 1 << x.shift,
                            static_cast<uint32_t>(x.step), dst.data());
                const std::span<const uint8_t> expected_row(expected.data() + row * static_cast<size_t>(fy), row);
                ASSERT_EQ(first_difference<uint8_t>(expected_row, dst.bytes(), std::max<size_t>(1, row)), "");
            }
        }
    }
}

// Destinations at the source's own place, before it, behind it and beside it, made smaller and larger; of overlapping
// rows too.
TEST_P(Resizer, InTheSourcesMemory) {
    for (int round = 0; round < 300; round++) {
        const Format &format = kFormats[round % 5];
        const int w = round % 3 == 0 ? 900 : 40;
        const Sizes size{random.between(1, w), random.between(1, 24), random.between(1, w), random.between(1, 24)};
        const int src_stride = size.sw + random.between(0, 3) * (w / 4);
        const int dst_stride = round % 4 == 0 && src_stride * format.src_bytes % format.dst_bytes == 0
                                   ? src_stride * format.src_bytes / format.dst_bytes
                                   : random.between(size.dw / 2, size.dw + 3);
        const int pitch = src_stride * format.src_bytes, dst_pitch = dst_stride * format.dst_bytes;
        const int reach = 2 * format.src_bytes * size.sw;
        const int offset = round % 2 == 0 ? 0 : random.between(-reach, std::max(reach, pitch * size.sh));
        const size_t src_at = static_cast<size_t>(reach), dst_at = static_cast<size_t>(reach + offset);
        GuardedBuffer memory(
            static_cast<size_t>(2 * reach + pitch * size.sh + dst_pitch * size.dh + size.dw * format.dst_bytes));
        memory.generate(random);
        std::vector<uint8_t> expected = memory.bytes();
        resize_in_order(format, size, expected.data() + src_at, static_cast<size_t>(pitch),
                        BilinearAxis(size.sw, size.dw), BilinearAxis(size.sh, size.dh), expected.data() + dst_at,
                        static_cast<size_t>(dst_pitch));
        QORV_IRSZ_PARAM param =
            parameters(format, 10 + round % 2, size, src_stride, dst_stride, memory.data() + dst_at);
        param.band_h = size.sh;
        QORV_IRSZ *rsz = qorv_irsz_create(&param, nullptr);
        qorv_irsz(rsz, memory.data() + src_at, 0, static_cast<uint32_t>(size.sh));
        qorv_irsz_delete(rsz);
        ASSERT_EQ(memory.bytes(), expected)
            << "format " << format.code << ", " << size.sw << "x" << size.sh << " (" << src_stride << ") to " << size.dw
            << "x" << size.dh << " (" << dst_stride << ") at " << offset;
    }
}

// Every band height, each band alone in memory that is overwritten for the next. The fields of the record follow the
// steps wherever these get the picture right.
TEST_P(Resizer, BandsGiveThePicture) {
    int compared = 0;
    for (int band_h = 1; band_h <= 64; band_h++) {
        const int rounds = (band_h & (band_h - 1)) == 0 ? 40 : 6;
        for (int round = 0; round < rounds; round++) {
            const Format &format = kFormats[static_cast<size_t>(random.below(5))];
            const Sizes size{random.between(1, 60), round == 4 ? 1 : random.between(1, 200),
                             round == 5 ? 0 : random.between(1, 60),
                             round % 2 == 0 ? random.between(1, 30) : random.between(1, 300)};
            const size_t pitch = static_cast<size_t>(size.sw * format.src_bytes);
            const GuardedBuffer source = make_source(format, size, pitch, Flush::kEnd);
            const size_t dst_bytes = static_cast<size_t>(size.dw * format.dst_bytes * size.dh);
            GuardedBuffer dst(dst_bytes);
            dst.fill(0xEE);
            const Doing doing("format %d, bands of %d, %dx%d to %dx%d", format.code, band_h, size.sw, size.sh, size.dw,
                              size.dh);
            QORV_IRSZ_PARAM param = parameters(format, 11, size, size.sw, size.dw, dst.data());
            param.band_h = band_h;
            QORV_IRSZ *rsz = qorv_irsz_create(&param, nullptr);
            ASSERT_NE(rsz, nullptr);
            const BandSteps steps(*rsz, size.sh, band_h);
            compared += steps.complete;
            GuardedBuffer band(pitch * static_cast<size_t>(band_h));
            for (int first = 0; first < size.sh; first += band_h) {
                const auto rows = static_cast<size_t>(std::min(band_h, size.sh - first));
                // The last band is cut off where the picture ends.
                uint8_t *start = band.data() + band.size() - pitch * rows;
                memcpy(start, source.data() + static_cast<size_t>(first) * pitch, pitch * rows);
                qorv_irsz(rsz, start, static_cast<uint32_t>(first), static_cast<uint32_t>(band_h));
                const BandFields fields = {rsz->dst_row, rsz->row_cached, rsz->band_flag, rsz->saved_off, rsz->pos_y};
                ASSERT_TRUE(!steps.complete || fields == steps.after[static_cast<size_t>(first / band_h)])
                    << "band " << band_h << " at " << first << ", " << size.sw << "x" << size.sh << " to " << size.dw
                    << "x" << size.dh << ": row " << rsz->dst_row << ", cached " << rsz->row_cached << ", flag "
                    << rsz->band_flag << ", offset " << rsz->saved_off << ", position " << rsz->pos_y;
                band.fill(0x11);
            }
            qorv_irsz_delete(rsz);
            const size_t row = static_cast<size_t>(size.dw * format.dst_bytes);
            ASSERT_EQ(first_difference<uint8_t>(reference(format, size, source.data(), pitch), dst.bytes(), row), "");
        }
    }
    EXPECT_GT(compared, 100);
}

TEST(ResizerRecord, UpscaleIsOneSideGrowing) {
    for (const auto &[size, upscale] : {std::pair<Sizes, int>{{8, 8, 8, 8}, 0},
                                        {{8, 8, 9, 4}, 1},
                                        {{8, 8, 4, 9}, 1},
                                        {{8, 8, 7, 8}, 0},
                                        {{8, 8, 9, 9}, 1}}) {
        const QORV_IRSZ_PARAM param = parameters(kFormats[0], 10, size, 8, 8, nullptr);
        QORV_IRSZ *rsz = qorv_irsz_create(&param, nullptr);
        EXPECT_EQ(rsz->upscale, upscale) << size.dw << "x" << size.dh;
        qorv_irsz_delete(rsz);
    }
}

TEST(ResizerRecord, FieldsAfterCreation) {
    uint8_t byte;
    for (const Format &format : kFormats) {
        const Sizes size{1920, 1080, 320, 700};
        QORV_IRSZ_PARAM param = parameters(format, 11, size, 1930, 340, &byte);
        param.band_h = 16;
        int32_t status = 1;
        QORV_IRSZ *rsz = qorv_irsz_create(&param, &status);
        ASSERT_NE(rsz, nullptr);
        EXPECT_EQ(status, QORV_OK);
        const int pitch = 1930 * format.src_bytes / format.unit;
        EXPECT_EQ(rsz->format, format.code);
        EXPECT_EQ(rsz->mode, 11);
        EXPECT_EQ(rsz->step_x, 392396u);
        EXPECT_EQ(rsz->step_y, (1079u << 18) / 700);
        EXPECT_EQ(rsz->pel_step, 4);
        EXPECT_EQ(rsz->src_pitch, pitch);
        EXPECT_EQ(rsz->dst_pitch, 340 * format.dst_bytes / format.unit);
        EXPECT_EQ(rsz->shift_x, 2);
        EXPECT_EQ(rsz->shift_y, 0);
        EXPECT_EQ(rsz->row_step, pitch);
        EXPECT_EQ(rsz->band_bytes, 16 * pitch);
        EXPECT_EQ(rsz->upscale, 0);
        EXPECT_EQ(rsz->fn_rsz, format.kernel);
        EXPECT_NE(rsz->line_buf, nullptr);
        EXPECT_EQ(rsz->dst, &byte);
        EXPECT_EQ(rsz->dst_w, 320);
        EXPECT_EQ(rsz->dst_h, 700);
        for (const int32_t zero : {rsz->saved_off, rsz->row_cached, rsz->dst_row, rsz->band_flag}) EXPECT_EQ(zero, 0);
        EXPECT_EQ(rsz->pos_y, 0u);
        qorv_irsz_delete(rsz);
    }
    qorv_irsz_delete(nullptr);
}

TEST(ResizerRecord, FailuresLeakNothing) {
    const long before = live_allocations();
    uint8_t byte;
    const struct {
        int format, mode;
        int32_t status;
    } cases[] = {{20, 12, QORV_ERR_IRSZ_MODE}, {22, 10, QORV_ERR_UNSUPPORTED_FMT}, {22, 9, QORV_ERR_IRSZ_MODE}};
    for (const auto &c : cases) {
        const QORV_IRSZ_PARAM param{c.format, c.mode, 8, 8, 8, 4, 8, 8, 8, &byte};
        for (const bool with_status : {true, false}) {
            int32_t status = 1;
            EXPECT_EQ(qorv_irsz_create(&param, with_status ? &status : nullptr), nullptr);
            EXPECT_EQ(status, with_status ? c.status : 1) << c.format << " " << c.mode;
        }
    }
    EXPECT_EQ(live_allocations(), before);
}

}  // namespace

}  // namespace test
