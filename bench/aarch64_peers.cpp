// Block metrics and copies of x264, x265, libvpx and libaom on AArch64. Strides are in samples.
#if defined(__aarch64__) && defined(QORV_BENCH_AARCH64_PEERS)

#include <sys/auxv.h>

#include <memory>

#include "metric_cases.h"

using Cost = int(const void *a, intptr_t stride_a, const void *b, intptr_t stride_b);
using Difference = void(int16_t *out, intptr_t stride_out, const void *a, const void *b, intptr_t stride_a,
                        intptr_t stride_b);
using Subtract = void(int rows, int columns, int16_t *out, ptrdiff_t stride_out, const uint8_t *a, ptrdiff_t stride_a,
                      const uint8_t *b, ptrdiff_t stride_b);
using AreaCost = int64_t(const uint8_t *a, int stride_a, const uint8_t *b, int stride_b, int w, int h);

// X(case, who, function, sample type): those that need dot products apart. Most symbols of the builds for 10 bits are
// the code for bytes, which nobody calls there.
#define COSTS(X)                                                        \
    X("sad4x4", "x264", x264_8_pixel_sad_4x4_neon, uint8_t)             \
    X("sad4x4", "x265", x265_pixel_sad_4x4_neon, uint8_t)               \
    X("sad4x4", "libvpx", vpx_sad4x4_neon, uint8_t)                     \
    X("sad4x4", "libaom", aom_sad4x4_neon, uint8_t)                     \
    X("sad8x8", "x264", x264_8_pixel_sad_8x8_neon, uint8_t)             \
    X("sad8x8", "x265", x265_pixel_sad_8x8_neon, uint8_t)               \
    X("sad8x8", "libvpx", vpx_sad8x8_neon, uint8_t)                     \
    X("sad8x8", "libaom", aom_sad8x8_neon, uint8_t)                     \
    X("sad16x16", "x264", x264_8_pixel_sad_16x16_neon, uint8_t)         \
    X("sad16x16", "x265", x265_pixel_sad_16x16_neon, uint8_t)           \
    X("sad16x16", "libvpx", vpx_sad16x16_neon, uint8_t)                 \
    X("sad16x16", "libaom", aom_sad16x16_neon, uint8_t)                 \
    X("sad32x32", "x265", x265_pixel_sad_32x32_neon, uint8_t)           \
    X("sad32x32", "libvpx", vpx_sad32x32_neon, uint8_t)                 \
    X("sad32x32", "libaom", aom_sad32x32_neon, uint8_t)                 \
    X("sad64x64", "x265", x265_pixel_sad_64x64_neon, uint8_t)           \
    X("sad64x64", "libvpx", vpx_sad64x64_neon, uint8_t)                 \
    X("sad64x64", "libaom", aom_sad64x64_neon, uint8_t)                 \
    X("sad16x16_16", "x264", x264_10_pixel_sad_16x16_neon, int16_t)     \
    X("sad_of_16x16", "x264", x264_8_pixel_sad_16x16_neon, uint8_t)     \
    X("sad_of_16x16", "x265", x265_pixel_sad_16x16_neon, uint8_t)       \
    X("sad_of_64x64", "x265", x265_pixel_sad_64x64_neon, uint8_t)       \
    X("sad_16_of_16x16", "x264", x264_10_pixel_sad_16x16_neon, int16_t) \
    X("ssd_of_8x8", "x264", x264_8_pixel_ssd_8x8_neon, uint8_t)         \
    X("ssd_of_8x8", "x265", x265_pixel_sse_pp_8x8_neon, uint8_t)        \
    X("ssd_of_16x16", "x264", x264_8_pixel_ssd_16x16_neon, uint8_t)     \
    X("ssd_of_16x16", "x265", x265_pixel_sse_pp_16x16_neon, uint8_t)    \
    X("ssd_of_64x64", "x265", x265_pixel_sse_pp_64x64_neon, uint8_t)    \
    X("ssd_16_of_16x16", "x265", x265_pixel_sse_ss_16x16_neon, int16_t) \
    X("ssd_16_of_64x64", "x265", x265_pixel_sse_ss_64x64_neon, int16_t) \
    X("hadamard4x4", "x264", x264_8_pixel_satd_4x4_neon, uint8_t)       \
    X("satd4x4", "x264", x264_8_pixel_satd_4x4_neon, uint8_t)           \
    X("satd4x4", "x265", x265_pixel_satd_4x4_neon, uint8_t)             \
    X("satd8x8", "x264", x264_8_pixel_sa8d_8x8_neon, uint8_t)           \
    X("satd8x8", "x265", x265_pixel_sa8d_8x8_neon, uint8_t)             \
    X("satd_of_8x8", "x264", x264_8_pixel_satd_8x8_neon, uint8_t)       \
    X("satd_of_8x8", "x265", x265_pixel_satd_8x8_neon, uint8_t)         \
    X("satd_of_16x16", "x264", x264_8_pixel_satd_16x16_neon, uint8_t)   \
    X("satd_of_16x16", "x265", x265_pixel_satd_16x16_neon, uint8_t)     \
    X("satd_of_64x64", "x265", x265_pixel_satd_64x64_neon, uint8_t)
#define DOT_PRODUCT_COSTS(X)                                                      \
    X("sad16x16", "x265 UDOT", x265_pixel_sad_16x16_neon_dotprod, uint8_t)        \
    X("sad32x32", "x265 UDOT", x265_pixel_sad_32x32_neon_dotprod, uint8_t)        \
    X("sad64x64", "x265 UDOT", x265_pixel_sad_64x64_neon_dotprod, uint8_t)        \
    X("ssd_of_8x8", "x265 UDOT", x265_pixel_sse_pp_8x8_neon_dotprod, uint8_t)     \
    X("ssd_of_16x16", "x265 UDOT", x265_pixel_sse_pp_16x16_neon_dotprod, uint8_t) \
    X("ssd_of_64x64", "x265 UDOT", x265_pixel_sse_pp_64x64_neon_dotprod, uint8_t)
#define DIFFERENCES(X)                               \
    X("diff4x4", x265_pixel_sub_ps_4x4_neon, 4)      \
    X("diff8x8", x265_pixel_sub_ps_8x8_neon, 8)      \
    X("diff16x16", x265_pixel_sub_ps_16x16_neon, 16) \
    X("diff64x64", x265_pixel_sub_ps_64x64_neon, 64)

extern "C" {
#define DECLARE(name, who, function, T) Cost function;
COSTS(DECLARE)
DOT_PRODUCT_COSTS(DECLARE)
#undef DECLARE
#define DECLARE(name, function, side) Difference function;
DIFFERENCES(DECLARE)
#undef DECLARE
Subtract vpx_subtract_block_neon, aom_subtract_block_neon, aom_highbd_subtract_block_neon;
AreaCost aom_highbd_sse_neon, vpx_sse_neon, vpx_sse_neon_dotprod;
unsigned vpx_highbd_sad16x16_neon(const uint8_t *a, int stride_a, const uint8_t *b, int stride_b);
unsigned vpx_highbd_sad64x64_neon(const uint8_t *a, int stride_a, const uint8_t *b, int stride_b);
unsigned aom_highbd_sad16x16_neon(const uint8_t *a, int stride_a, const uint8_t *b, int stride_b);
unsigned aom_highbd_sad64x64_neon(const uint8_t *a, int stride_a, const uint8_t *b, int stride_b);
void x265_blockcopy_pp_16x16_neon(void *to, intptr_t stride_to, const void *from, intptr_t stride_from);
void x265_blockcopy_pp_64x32_neon(void *to, intptr_t stride_to, const void *from, intptr_t stride_from);
}

namespace bench::metric {

namespace {

// libvpx and libaom take the address of 16-bit samples halved.
const uint8_t *halved(const int16_t *samples) {
    return reinterpret_cast<const uint8_t *>(reinterpret_cast<uintptr_t>(samples) >> 1);
}

void add_costs() {
#define ADD(name, who, function, T) \
    add_cost<T, T>(name, who, [f = in_table(function)](auto a, auto b) { return f(a, kStride, b, kStride); });
    COSTS(ADD)
    if ((getauxval(AT_HWCAP) & HWCAP_ASIMDDP) != 0) {
        DOT_PRODUCT_COSTS(ADD)
        add_cost<uint8_t, uint8_t>("ssd_of_64x64", "libvpx UDOT", [f = in_table(vpx_sse_neon_dotprod)](auto a, auto b) {
            return f(a, kStride, b, kStride, 64, 64);
        });
    }
#undef ADD
    for (const int side : {16, 64}) {
        const std::string size = std::to_string(side) + "x" + std::to_string(side);
        add_cost<uint8_t, uint8_t>("ssd_of_" + size, "libvpx", [=, f = in_table(vpx_sse_neon)](auto a, auto b) {
            return f(a, kStride, b, kStride, side, side);
        });
        add_cost<int16_t, int16_t>("ssd_16_of_" + size, "libaom",
                                   [=, f = in_table(aom_highbd_sse_neon)](auto a, auto b) {
                                       return f(halved(a), kStride, halved(b), kStride, side, side);
                                   });
        const auto add_sad = [&](const char *who, auto *function) {
            add_cost<int16_t, int16_t>("sad" + size + "_16", who, [f = in_table(function)](auto a, auto b) {
                return f(halved(a), kStride, halved(b), kStride);
            });
        };
        add_sad("libvpx", side == 16 ? vpx_highbd_sad16x16_neon : vpx_highbd_sad64x64_neon);
        add_sad("libaom", side == 16 ? aom_highbd_sad16x16_neon : aom_highbd_sad64x64_neon);
    }
}

void add_differences() {
#define ADD(name, function, side)                                                                     \
    add_diff<uint8_t, uint8_t>(name, "x265", [f = in_table(function)](auto a, auto b, int16_t *out) { \
        f(out, side, a, b, kStride, kStride);                                                         \
    });
    DIFFERENCES(ADD)
#undef ADD
    for (const int side : {4, 8, 16, 64}) {
        const std::string size = std::to_string(side) + "x" + std::to_string(side);
        const auto add_bytes = [&](const std::string &name, const char *who, Subtract *function) {
            add_diff<uint8_t, uint8_t>(name, who, [=, f = in_table(function)](auto a, auto b, int16_t *out) {
                f(side, side, out, side, a, kStride, b, kStride);
            });
        };
        add_bytes("diff" + size, "libvpx", vpx_subtract_block_neon);
        add_bytes("diff" + size, "libaom", aom_subtract_block_neon);
        if (side < 16) continue;
        add_bytes("diff_of_" + size, "libvpx", vpx_subtract_block_neon);
        add_diff<int16_t, int16_t>("diff" + size + "_16", "libaom",
                                   [=, f = in_table(aom_highbd_subtract_block_neon)](auto a, auto b, int16_t *out) {
                                       f(side, side, out, side, halved(a), kStride, halved(b), kStride);
                                   });
    }
}

// As memory_bench.cpp has them, ours among them: its peer copies row by row.
void add_copies() {
    const auto add_copy = [](const std::string &size, auto *function) {
        const auto from = std::make_shared<std::vector<uint8_t>>(noise(64 * 1984 + 64));
        const auto to = std::make_shared<std::vector<uint8_t>>(64 * 256);
        add("memory/mcpy_blk/" + size, "x265", [=, f = in_table(function)] { f(to->data(), 256, from->data(), 1984); });
    };
    add_copy("16x16", x265_blockcopy_pp_16x16_neon);
    add_copy("64x32", x265_blockcopy_pp_64x32_neon);
}

const Registration costs{add_costs}, differences{add_differences}, copies{add_copies};

}  // namespace

}  // namespace bench::metric

#endif
