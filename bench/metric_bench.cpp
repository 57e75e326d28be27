// Block metrics: 64 calls an iteration, block A staying where it is, block B moving about as in a motion search.
#include <string>

#include "metric/member_list.h"
#include "metric_cases.h"
#include "qorv_skia.h"

#ifdef QORV_BENCH_AVUTIL
extern "C" {
#include <libavutil/pixelutils.h>
}
#endif

// The assembly kernels of the static library, none with 512-bit registers: strides in samples, A on a 16-byte boundary.
// X(case, kernel, side): a case larger than the kernel is put together of calls on blocks `side` samples apart.
#define X264_BYTE_KERNELS(X)                     \
    X("sad4x4", pixel_sad_4x4_mmx2, 0)           \
    X("sad4x8", pixel_sad_4x8_mmx2, 0)           \
    X("sad8x4", pixel_sad_8x4_mmx2, 0)           \
    X("sad8x8", pixel_sad_8x8_mmx2, 0)           \
    X("sad8x16", pixel_sad_8x16_sse2, 0)         \
    X("sad16x8", pixel_sad_16x8_sse2, 0)         \
    X("sad16x16", pixel_sad_16x16_sse2, 0)       \
    X("hadamard4x4", pixel_satd_4x4_avx, 0)      \
    X("satd4x4", pixel_satd_4x4_avx, 0)          \
    X("satd8x8", pixel_sa8d_8x8_avx2, 0)         \
    X("satd_of_16x16", pixel_satd_16x16_avx2, 0) \
    X("ssd_of_16x16", pixel_ssd_16x16_avx2, 0)   \
    X("ssd_of_64x64", pixel_ssd_16x16_avx2, 16)
#define X264_WORD_KERNELS(X)                       \
    X("sad4x4_16", pixel_sad_4x4_ssse3, 0)         \
    X("sad8x8_16", pixel_sad_8x8_sse2, 0)          \
    X("sad16x16_16", pixel_sad_16x16_avx2, 0)      \
    X("sad16x16_bi", pixel_sad_16x16_avx2, 0)      \
    X("sad16x16_bi_16", pixel_sad_16x16_avx2, 0)   \
    X("satd4x4_16", pixel_satd_4x4_avx, 0)         \
    X("satd8x8_16", pixel_sa8d_8x8_avx, 0)         \
    X("satd_16_of_16x16", pixel_satd_16x16_avx, 0) \
    X("ssd_16_of_16x16", pixel_ssd_16x16_avx2, 0)

#ifdef QORV_BENCH_X264
#define X264_DECLARE(depth, kernel) \
    extern "C" int x264_##depth##_##kernel(const void *a, intptr_t stride_a, const void *b, intptr_t stride_b);
#define X264_BYTE(name, kernel, side) X264_DECLARE(8, kernel)
#define X264_WORD(name, kernel, side) X264_DECLARE(10, kernel)
X264_BYTE_KERNELS(X264_BYTE)
X264_WORD_KERNELS(X264_WORD)
#undef X264_BYTE
#undef X264_WORD
#endif

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace {

using namespace bench::metric;

void add_ours() {
#define QORV_COST(kind, w, h, suffix, A, B)                                                                        \
    add_cost<A, B>(#kind #w "x" #h #suffix, "ours", [f = in_table(qorv_##kind##w##x##h##suffix)](auto a, auto b) { \
        return f(a, b, kStride, kStride);                                                                          \
    });
#define QORV_SAD(w, h, suffix, A, B) QORV_COST(sad, w, h, suffix, A, B)
#define QORV_SATD(w, h, suffix, A, B) QORV_COST(satd, w, h, suffix, A, B)
#define QORV_DIFF(w, h, suffix, A, B)                                                         \
    add_diff<A, B>("diff" #w "x" #h #suffix, "ours",                                          \
                   [f = in_table(qorv_diff##w##x##h##suffix)](auto a, auto b, int16_t *out) { \
                       f(a, b, kStride, kStride, w, out);                                     \
                   });
#define QORV_AREA(name, T)                                                                                        \
    for (int side : {8, 12, 15, 16, 31, 32, 63, 64}) {                                                            \
        add_cost<T, T>(                                                                                           \
            #name "_of_" + std::to_string(side) + "x" + std::to_string(side), "ours",                             \
            [side, f = in_table(qorv_##name)](auto a, auto b) { return f(side, side, a, b, kStride, kStride); }); \
    }
#define QORV_AREA_DIFF(name, T)                                                                  \
    for (int side : {8, 12, 15, 16, 31, 32, 63, 64}) {                                           \
        add_diff<T, T>(#name "_of_" + std::to_string(side) + "x" + std::to_string(side), "ours", \
                       [side, f = in_table(qorv_##name)](auto a, auto b, int16_t *out) {         \
                           f(side, side, a, b, kStride, kStride, side, out);                     \
                       });                                                                       \
    }
    QORV_SAD_BLOCKS(QORV_SAD)
    QORV_SATD_BLOCKS(QORV_SATD)
    QORV_DIFF_BLOCKS(QORV_DIFF)
    QORV_AREA_COSTS(QORV_AREA)
    QORV_AREA_DIFFS(QORV_AREA_DIFF)
    add_cost<int16_t, int16_t>("hadamard4x4", "ours", [f = in_table(qorv_hadamard4x4)](auto, auto b) { return f(b); });
}

// The members of any size against those of one size.
void add_fixed_sizes() {
#define QORV_FIXED(T, suffix, side)                                                                             \
    add_cost<T, T>(                                                                                             \
        "sad" #suffix "_of_" #side "x" #side, "fixed",                                                          \
        [f = in_table(qorv_sad##side##x##side##suffix)](auto a, auto b) { return f(a, b, kStride, kStride); }); \
    add_diff<T, T>("diff" #suffix "_of_" #side "x" #side, "fixed",                                              \
                   [f = in_table(qorv_diff##side##x##side##suffix)](auto a, auto b, int16_t *out) {             \
                       f(a, b, kStride, kStride, side, out);                                                    \
                   });
#define QORV_FIXED_SIZES(T, suffix) \
    QORV_FIXED(T, suffix, 8) QORV_FIXED(T, suffix, 16) QORV_FIXED(T, suffix, 32) QORV_FIXED(T, suffix, 64)
    QORV_FIXED_SIZES(uint8_t, )
    QORV_FIXED_SIZES(int16_t, _16)
}

#if defined(__x86_64__)
// The difference as one would write it by hand, without a look at overlaps.
[[gnu::target("avx2")]] void diff16x16_by_hand(const uint8_t *a, const uint8_t *b, int32_t stride_a, int32_t stride_b,
                                               int32_t stride_out, int16_t *out) {
    for (int y = 0; y < 16; y++, a += stride_a, b += stride_b, out += stride_out) {
        const __m256i wide_a = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i *>(a)));
        const __m256i wide_b = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i *>(b)));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out), _mm256_sub_epi16(wide_a, wide_b));
    }
}
#endif

// A kernel on one block, or on all blocks of a 64x64 one.
template <int Side, class T, class Kernel>
[[gnu::always_inline]] inline uint32_t tiled(const T *a, const T *b, Kernel kernel) {
    if (Side == 0) return static_cast<uint32_t>(kernel(a, b));
    uint32_t sum = 0;
    for (int y = 0; y < 64; y += Side == 0 ? 64 : Side) {
        for (int x = 0; x < 64; x += Side == 0 ? 64 : Side) {
            sum += static_cast<uint32_t>(kernel(a + y * kStride + x, b + y * kStride + x));
        }
    }
    return sum;
}

void add_peers() {
#ifdef QORV_BENCH_X264
#define X264_ADD(name, kernel, side, depth, T)                                                   \
    add_cost<T, T>(name, "x264", [f = in_table(x264_##depth##_##kernel)](auto a, auto b) {       \
        return tiled<side>(a, b, [f](auto pa, auto pb) { return f(pa, kStride, pb, kStride); }); \
    });
#define X264_BYTE(name, kernel, side) X264_ADD(name, kernel, side, 8, uint8_t)
#define X264_WORD(name, kernel, side) X264_ADD(name, kernel, side, 10, uint16_t)
    if (__builtin_cpu_supports("avx2")) {
        X264_BYTE_KERNELS(X264_BYTE)
        X264_WORD_KERNELS(X264_WORD)
    }
#endif
#ifdef QORV_BENCH_AVUTIL
    for (int bits = 2; bits <= 5; bits++) {
        const auto sad = av_pixelutils_get_sad_fn(bits, bits, 1, nullptr);
        const std::string side = std::to_string(1 << bits);
        if (sad == nullptr) continue;
        const auto call = [sad](auto a, auto b) { return sad(a, kStride, b, kStride); };
        add_cost<uint8_t, uint8_t>("sad" + side + "x" + side, "libavutil", call);
        if (bits == 5) {
            add_cost<uint8_t, uint8_t>("sad64x64", "libavutil",
                                       [call](auto a, auto b) { return tiled<32>(a, b, call); });
        }
    }
#endif
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2"))
        add_diff<uint8_t, uint8_t>(
            "diff16x16", "by_hand",
            [f = in_table(diff16x16_by_hand)](auto a, auto b, int16_t *out) { f(a, b, kStride, kStride, 16, out); });
#endif
}

const bench::Registration ours{add_ours}, fixed_sizes{add_fixed_sizes}, peers{add_peers};

}  // namespace
