// Calls exported functions on fixed input, each between two marks, for scripts/instruction_counts.py, which runs this
// program under an emulator that names every instruction's function and counts those between the marks that do not
// belong to namespace `harness`: a call's own, with whatever it calls. Prints "<case> <units in the call>" in the order
// of the marks.
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "qorv_skia.h"

namespace harness {

[[gnu::noinline]] void begin() {
    asm volatile("nop // begin" ::: "memory");
}
[[gnu::noinline]] void end() {
    asm volatile("nop // end" ::: "memory");
}

// `units`: what the count is divided by.
template <class Call>
void count(const char *name, int units, Call call) {
    begin();
    call();
    end();
    printf("%s %d\n", name, units);
}

constexpr int kWidth = 1000, kRows = 16, kStride = 4096;

// Rows of noise, of 8-bit samples or of 10-bit ones in words.
struct Plane {
    alignas(64) uint8_t bytes[kStride * 72];
    void fill(uint64_t seed, uint64_t mask) {
        for (uint32_t i = 0; i < sizeof bytes; i += sizeof seed) {
            seed = seed * 6364136223846793005u + 1442695040888963407u;
            const uint64_t eight = (seed ^ seed >> 32) & mask;
            memcpy(bytes + i, &eight, sizeof eight);
        }
    }
    const int16_t *words() const { return reinterpret_cast<const int16_t *>(bytes); }
};
Plane a8, b8, c8, a16, b16, out;
alignas(64) int16_t residual[64 * 64];

void count_metrics() {
    constexpr int kWords = kStride / 2;
    const uint8_t *const a = a8.bytes, *const b = b8.bytes + 5;
    const int16_t *const wa = a16.words(), *const wb = b16.words() + 5;
    count("sad4x4", 1, [=] { qorv_sad4x4(a, b, kStride, kStride); });
    count("sad8x8", 1, [=] { qorv_sad8x8(a, b, kStride, kStride); });
    count("sad16x16", 1, [=] { qorv_sad16x16(a, b, kStride, kStride); });
    count("sad64x64", 1, [=] { qorv_sad64x64(a, b, kStride, kStride); });
    count("sad16x16_16", 1, [=] { qorv_sad16x16_16(wa, wb, kWords, kWords); });
    count("sad16x16_bi", 1, [=] { qorv_sad16x16_bi(wa, b, kWords, kStride); });
    count("sad_of_16x16", 1, [=] { qorv_sad(16, 16, a, b, kStride, kStride); });
    count("ssd_of_16x16", 1, [=] { qorv_ssd(16, 16, a, b, kStride, kStride); });
    count("hadamard4x4", 1, [=] { qorv_hadamard4x4(wb); });
    count("satd4x4", 1, [=] { qorv_satd4x4(a, b, kStride, kStride); });
    count("satd8x8", 1, [=] { qorv_satd8x8(a, b, kStride, kStride); });
    count("satd_of_16x16", 1, [=] { qorv_satd(16, 16, a, b, kStride, kStride); });
    count("diff16x16", 1, [=] { qorv_diff16x16(a, b, kStride, kStride, 16, residual); });
    count("diff16x16_16", 1, [=] { qorv_diff16x16_16(wa, wb, kWords, kWords, 16, residual); });
}

// The pointers and strides of a converter: three planes, or one pointer a channel of packed pixels.
struct Channels {
    void *p[4];
    int32_t stride[4];
};
Channels planes(int stride_unit) {
    const int32_t s = kStride / stride_unit;
    return {{a8.bytes, b8.bytes, c8.bytes, a16.bytes}, {s, s, s, s}};
}
Channels packed(int stride_unit) {
    const int32_t s = kStride / stride_unit;
    return {{out.bytes, out.bytes + 1, out.bytes + 2, out.bytes + 3}, {s, s, s, s}};
}

void count_converter(const char *name, qorv_csc_fn fn, const Channels &from, const Channels &to) {
    count(name, kRows, [&] { fn(from.p, kWidth, kRows, from.stride, 0, to.p, kWidth, kRows, to.stride, 0); });
}

void count_converters() {
    const Channels planar = planes(1), pixels = packed(1);
    count_converter("yuv444_to_rgb888", qorv_csc_yuv444_to_rgb888, planar, pixels);
    count_converter("yuv444_to_rgba8888", qorv_csc_yuv444_to_rgba8888, planar, pixels);
    count_converter("yuv444_to_rgb565", qorv_csc_yuv444_to_rgb565, planar, pixels);
    count_converter("yuv444_to_r8g8b8", qorv_csc_yuv444_to_r8g8b8, planar,
                    {{out.bytes, out.bytes + 1024, out.bytes + 2048}, {kStride, kStride, kStride}});
    count_converter("r8g8b8_to_rgb888", qorv_csc_r8g8b8_to_rgb888, planar, pixels);
    count_converter("rgb888_to_yuv444", qorv_csc_rgb888_to_yuv444, pixels, planar);
    count_converter("rgba8888_to_yuv444a8", qorv_csc_rgba8888_to_yuv444a8, pixels, planar);
    count_converter("rgb565_to_yuv444", qorv_csc_rgb565_to_yuv444, pixels, planar);
    count("rsz_yuv444_to_rgb888_1500", kRows, [=] {
        qorv_csc_rsz_yuv444_to_rgb888(planar.p, 1500, 24, planar.stride, 0, pixels.p, kWidth, kRows, pixels.stride, 0);
    });
}

// Pictures of kRows destination rows of kWidth pixels, from 1.5 times and from half as many.
void count_resizers() {
    struct Member {
        const char *reduced, *enlarged;
        void (*fn)(const uint8_t *, uint32_t, int32_t, int32_t, int32_t, uint8_t *, int32_t, int32_t);
    };
    const Member members[] = {{"irsz8b_1500_to_1000", "irsz8b_500_to_1000", qorv_irsz8b_full},
                              {"irsz8b8b8b_1500_to_1000", "irsz8b8b8b_500_to_1000", qorv_irsz8b8b8b_full},
                              {"irsz8b8b8b8b_1500_to_1000", "irsz8b8b8b8b_500_to_1000", qorv_irsz8b8b8b8b_full}};
    const auto resize = [](const char *name, decltype(Member::fn) fn, int src_w) {
        uint32_t x, y;
        bilinear_rsz_step_size(src_w, src_w * kRows / kWidth, kWidth, kRows, &x, &y);
        const int32_t step_x = static_cast<int32_t>(x), step_y = static_cast<int32_t>(y);
        count(name, kRows, [=] { fn(a8.bytes, 2 * kStride, kWidth, kRows, kStride, out.bytes, step_x, step_y); });
    };
    for (const Member &m : members) {
        resize(m.reduced, m.fn, 1500);
        resize(m.enlarged, m.fn, 500);
    }
}

void count_md5() {
    QORV_MD5 md5;
    qorv_md5_init(&md5);
    count("md5_update_64_blocks", 64, [&] { qorv_md5_update(&md5, a8.bytes, 64 * 64); });
}

void count_bits() {
    constexpr int kCodes = 1000;
    QORV_BSW writer;
    qorv_bsw_init(&writer, out.bytes, sizeof out.bytes, nullptr);
    count("bsw_write_8", kCodes, [&] {
        for (int i = 0; i < kCodes; i++) qorv_bsw_write(&writer, static_cast<uint32_t>(i & 255), 8);
    });
    // Each length half as frequent as the one before.
    count("bsw_write_ue", kCodes, [&] {
        for (int i = 0; i < kCodes; i++) qorv_bsw_write_ue(&writer, static_cast<uint32_t>(i & -i) - (i != 0));
    });
    qorv_bsw_sink(&writer);

    QORV_BSR reader;
    qorv_bsr_init(&reader, out.bytes, sizeof out.bytes, nullptr);
    count("bsr_read_8", kCodes, [&] {
        for (int i = 0; i < kCodes; i++) qorv_bsr_read(&reader, 8);
    });
    count("bsr_read_ue", kCodes, [&] {
        for (int i = 0; i < kCodes; i++) qorv_bsr_read_ue(&reader);
    });
    count("bsr_read1", kCodes, [&] {
        for (int i = 0; i < kCodes; i++) qorv_bsr_read1(&reader);
    });
}

void count_memory() {
    count("mset_x128_1024", 1, [] { qorv_mset_x128(out.bytes, 7, 1024); });
    count("mset16_100", 1, [] { qorv_mset16(out.bytes, 0x1234, 100); });
    count("mcpy_blk_16x16", 1, [] { qorv_mcpy_blk(out.bytes, a8.bytes, kStride, kStride, 16, 16); });
    memset(a8.bytes, 0xFF, 4096);
    count("is_vkeyfrm_h264_4096", 4, [] { qorv_is_vkeyfrm(QORV_MT_VID_H264, a8.bytes, 4096); });
}

}  // namespace harness

int main() {
    constexpr uint64_t kBytes = ~uint64_t{0}, kTenBits = 0x03FF03FF03FF03FF;
    harness::a8.fill(1, kBytes);
    harness::b8.fill(2, kBytes);
    harness::c8.fill(3, kBytes);
    harness::a16.fill(4, kTenBits);
    harness::b16.fill(5, kTenBits);
    printf("compiler %s\n", __VERSION__);
    harness::count_metrics();
    harness::count_converters();
    harness::count_resizers();
    harness::count_md5();
    harness::count_bits();
    harness::count_memory();
}
