// Converters where pictures are small, narrow, rearranged or lie over one another: beside libyuv on the same picture,
// the same converter on a tidy one ("canonical"), or a plain loop over pixels.
#include <cstring>
#include <memory>

#include "picture.h"
#include "qorv_skia.h"

#ifdef QORV_BENCH_LIBYUV
#include <libyuv.h>
#endif

namespace bench {

namespace {

// One block of memory with the planes or packed pictures of a call one after the other.
class Memory {
public:
    explicit Memory(size_t bytes) : bytes_(std::make_shared<std::vector<uint8_t>>(noise(bytes))) {}
    uint8_t *at(int offset) const { return bytes_->data() + offset; }

private:
    std::shared_ptr<std::vector<uint8_t>> bytes_;
};

struct Call {
    const void *src[4] = {};
    void *dst[4] = {};
    int32_t src_stride[4] = {}, dst_stride[4] = {};
    int32_t w = 0, h = 0;

    void run(qorv_csc_fn fn) const { fn(src, w, h, src_stride, 0, dst, w, h, dst_stride, 0); }
    void scale(qorv_csc_fn fn, int dst_w, int dst_h) const {
        fn(src, w, h, src_stride, 0, dst, dst_w, dst_h, dst_stride, 0);
    }
};

// A picture of three planes and a packed one behind them, with `pad` bytes behind each row; `order` says at which byte
// of a pixel each pointer stands.
Call planes_to_pixels(const Memory &memory, int w, int h, int pad, const std::vector<int> &order) {
    const int bytes = static_cast<int>(order.size()), plane = (w + pad) * h;
    Call call{.w = w, .h = h};
    for (int i = 0; i < 3; i++) {
        call.src[i] = memory.at(i * plane);
        call.src_stride[i] = w + pad;
    }
    for (int i = 0; i < bytes; i++) {
        call.dst[i] = memory.at(3 * plane + order[static_cast<size_t>(i)]);
        call.dst_stride[i] = w * bytes + pad;
    }
    return call;
}

Memory memory_for(int w, int h, int pad) {
    return Memory(static_cast<size_t>((7 * w + 4 * pad) * h) + 64);
}

const std::vector<int> kRgb{0, 1, 2}, kBgr{2, 1, 0}, kRgba{0, 1, 2, 3}, kBgra{2, 1, 0, 3};

#ifdef QORV_BENCH_LIBYUV
const uint8_t *source(const Call &c, int i) {
    return static_cast<const uint8_t *>(c.src[i]);
}

void add_small(int w, int pad) {
    using namespace libyuv;
    const std::string size = (pad == 0 ? "tight_" : "apart_") + std::to_string(w);
    const Memory memory = memory_for(w, w, pad);
    const auto compare = [&](const std::string &name, qorv_csc_fn fn, const std::vector<int> &order, auto peer) {
        const Call c = planes_to_pixels(memory, w, w, pad, order);
        add("csc_small/" + name + "/" + size, "ours", [=] {
            c.run(fn);
            benchmark::DoNotOptimize(memory);
        });
        add("csc_small/" + name + "/" + size, "libyuv", [=] {
            peer(c, static_cast<uint8_t *>(c.dst[0]), c.src_stride[0], c.dst_stride[0]);
            benchmark::DoNotOptimize(memory);
        });
    };
    compare("yuv444_to_rgba8888", qorv_csc_yuv444_to_rgba8888, kRgba, [](const Call &c, uint8_t *d, int s, int ds) {
        I444ToARGBMatrix(source(c, 0), s, source(c, 2), s, source(c, 1), s, d, ds, &kYvuJPEGConstants, c.w, c.h);
    });
    compare("yuv444_to_rgb888", qorv_csc_yuv444_to_rgb888, kRgb, [](const Call &c, uint8_t *d, int s, int ds) {
        I444ToRGB24Matrix(source(c, 0), s, source(c, 2), s, source(c, 1), s, d, ds, &kYvuJPEGConstants, c.w, c.h);
    });
    compare("r8g8b8_to_rgb888", qorv_csc_r8g8b8_to_rgb888, kRgb, [](const Call &c, uint8_t *d, int s, int ds) {
        MergeRGBPlane(source(c, 0), s, source(c, 1), s, source(c, 2), s, d, ds, c.w, c.h);
    });
}

void add_orders_beside_libyuv() {
    using namespace libyuv;
    const Memory memory = memory_for(256, 256, 0);
    const auto compare = [&](const std::string &name, qorv_csc_fn fn, const std::vector<int> &order, auto peer) {
        const Call c = planes_to_pixels(memory, 256, 256, 0, order);
        add("csc_order/" + name, "ours", [=] {
            c.run(fn);
            benchmark::DoNotOptimize(memory);
        });
        add("csc_order/" + name, "libyuv", [=] {
            peer(source(c, 0), 256, source(c, 1), 256, source(c, 2), 256, static_cast<uint8_t *>(c.dst[2]),
                 c.dst_stride[2], &kYuvJPEGConstants, 256, 256);
            benchmark::DoNotOptimize(memory);
        });
    };
    compare("yuv444_to_bgr", qorv_csc_yuv444_to_rgb888, kBgr, I444ToRGB24Matrix);
    compare("yuv444_to_bgra", qorv_csc_yuv444_to_rgba8888, kBgra, I444ToARGBMatrix);
}
#endif

// The same call with pointers out of order and in order.
void add_orders() {
    const Memory memory = memory_for(256, 256, 0);
    const auto compare = [&](const std::string &name, const std::vector<int> &order, const std::vector<int> &canonical,
                             auto convert) {
        const Call ours = planes_to_pixels(memory, 256, 256, 0, order);
        const Call tidy = planes_to_pixels(memory, 256, 256, 0, canonical);
        add("csc_order/" + name, "ours", [=] {
            convert(ours);
            benchmark::DoNotOptimize(memory);
        });
        add("csc_order/" + name, "canonical", [=] { convert(tidy); });
    };
    const auto reversed = [](const Call &c) {  // what was the destination is the source
        Call back{.w = c.w, .h = c.h};
        for (int i = 0; i < 4; i++) {
            back.src[i] = c.dst[i];
            back.src_stride[i] = c.dst_stride[i];
            back.dst[i] = const_cast<void *>(c.src[i]);
            back.dst_stride[i] = c.src_stride[i];
        }
        return back;
    };
    const std::vector<int> kAbgr{3, 2, 1, 0};
    compare("yuv444_to_rgb888_reversed", kBgr, kRgb, [](const Call &c) { c.run(qorv_csc_yuv444_to_rgb888); });
    compare("yuv444_to_rgba8888_reversed", kAbgr, kRgba, [](const Call &c) { c.run(qorv_csc_yuv444_to_rgba8888); });
    compare("yuv444_to_rgba8888_bgra", kBgra, kRgba, [](const Call &c) { c.run(qorv_csc_yuv444_to_rgba8888); });
    compare("rgb888_to_yuv444_reversed", kBgr, kRgb,
            [=](const Call &c) { reversed(c).run(qorv_csc_rgb888_to_yuv444); });
    compare("rsz_yuv444_to_rgb888_reversed", kBgr, kRgb,
            [](const Call &c) { c.scale(qorv_csc_rsz_yuv444_to_rgb888, 200, 150); });
}

// Columns fewer than a block beside as many as a block.
void add_narrow_scaling() {
    const Memory memory = memory_for(256, 256, 0);
    const Call c = planes_to_pixels(memory, 256, 256, 0, kRgba);
    add("csc_narrow/rsz_yuv444_to_rgba8888_12", "ours", [=] {
        c.scale(qorv_csc_rsz_yuv444_to_rgba8888, 12, 200);
        benchmark::DoNotOptimize(memory);
    });
    add("csc_narrow/rsz_yuv444_to_rgba8888_12", "canonical",
        [=] { c.scale(qorv_csc_rsz_yuv444_to_rgba8888, 16, 200); });
}

int clamp8(int value) {
    return value < 0 ? 0 : value > 255 ? 255 : value;
}

struct Rgb {
    int r, g, b;
};
Rgb to_rgb(int y, int u, int v) {
    u -= 128, v -= 128;
    return {clamp8(y + ((359 * v + 128) >> 8)), clamp8(y - ((183 * v + 88 * u + 128) >> 8)),
            clamp8(y + ((454 * u + 128) >> 8))};
}

// Beside plain loops, which keep the order of pixels by themselves.
void add_overlaps() {
    constexpr int kW = 640, kH = 64, kPlane = kW * kH;
    const Memory memory(static_cast<size_t>(12 * kPlane));
    const auto compare = [&](const std::string &name, auto ours, auto loop) {
        add("csc_overlap/" + name, "ours", [=] {
            ours();
            benchmark::DoNotOptimize(memory);
        });
        add("csc_overlap/" + name, "loop", [=] {
            loop();
            benchmark::DoNotOptimize(memory);
        });
    };
    Call p010{.w = kW, .h = kH};
    for (int i = 0; i < 3; i++) {
        p010.src[i] = p010.dst[i] = memory.at(2 * i * kPlane);
        p010.src_stride[i] = p010.dst_stride[i] = 2 * kW;
    }
    compare(
        "p010_in_place", [=] { p010.run(qorv_csc_p010_to_yuv420); },
        [=] {
            for (int i = 0; i < 3; i++) {
                const int halved = i == 0 ? 0 : 1;
                for (int y = 0; y < kH >> halved; y++) {
                    uint8_t *row = memory.at(2 * i * kPlane + 2 * kW * y);
                    for (int x = 0; x < kW >> halved; x++)
                        row[x] = static_cast<uint8_t>((row[2 * x] | row[2 * x + 1] << 8) >> 2);
                }
            }
        });
    // Planes to three bytes a pixel, `ahead` bytes behind the first plane's beginning.
    const auto onto_itself = [&](const std::string &name, qorv_csc_fn fn, int to, bool words) {
        Call c{.w = kW, .h = kH};
        for (int i = 0; i < 4; i++) {
            c.src[i] = memory.at(i * kPlane);
            c.src_stride[i] = kW;
            c.dst[i] = memory.at(to + (words ? 2 * i : i));
            c.dst_stride[i] = 3 * kW;
        }
        compare(
            name, [=] { c.run(fn); },
            [=] {
                for (int y = 0; y < kH; y++) {
                    const uint8_t *s = memory.at(kW * y);
                    uint8_t *d = memory.at(to + 3 * kW * y);
                    for (int x = 0; x < kW; x++) {
                        const Rgb p = to_rgb(s[x], s[x + kPlane], s[x + 2 * kPlane]);
                        const uint8_t alpha = s[x + 3 * kPlane];
                        if (words) {
                            const auto word = static_cast<uint16_t>((p.r & 0xF8) << 8 | (p.g & 0xFC) << 3 | p.b >> 3);
                            memcpy(d + 2 * x, &word, sizeof word);
                            d[3 * x + 2] = alpha;
                        } else {
                            d[3 * x] = static_cast<uint8_t>(p.r);
                            d[3 * x + 1] = static_cast<uint8_t>(p.g);
                            d[3 * x + 2] = static_cast<uint8_t>(p.b);
                        }
                    }
                }
            });
    };
    onto_itself("rgba5658_pair", qorv_csc_yuv444a8_to_rgba5658, 4 * kPlane, true);
    onto_itself("yuv444_to_rgb888_1_ahead", qorv_csc_yuv444_to_rgb888, 1, false);
    onto_itself("yuv444_to_rgb888_64_ahead", qorv_csc_yuv444_to_rgb888, 64, false);
    onto_itself("yuv444_to_rgb888_behind", qorv_csc_yuv444_to_rgb888, kPlane / 2, false);

    constexpr int kTo = 2 * kW / 3;  // columns, and as many thirds of the rows
    Call scaled{.w = kW, .h = kH};
    for (int i = 0; i < 3; i++) {
        scaled.src[i] = memory.at(i * kPlane);
        scaled.src_stride[i] = kW;
        scaled.dst[i] = memory.at(kPlane + i);
        scaled.dst_stride[i] = 3 * kTo;
    }
    compare(
        "rsz_yuv444_to_rgb888", [=] { scaled.scale(qorv_csc_rsz_yuv444_to_rgb888, kTo, kH / 2); },
        [=] {
            constexpr int64_t kStepX = (int64_t{kW - 1} << 18) / kTo, kStepY = (int64_t{kH - 1} << 18) / (kH / 2);
            for (int y = 0; y < kH / 2; y++) {
                const int fy = static_cast<int>(y * kStepY >> 15 & 7);
                uint8_t *d = memory.at(kPlane + 3 * kTo * y);
                for (int x = 0; x < kTo; x++) {
                    const int fx = static_cast<int>(x * kStepX >> 15 & 7);
                    int sample[3];
                    for (int i = 0; i < 3; i++) {
                        const uint8_t *s = memory.at(i * kPlane) + (y * kStepY >> 18) * kW + (x * kStepX >> 18);
                        sample[i] = ((8 - fx) * (8 - fy) * s[0] + fx * (8 - fy) * s[1] + (8 - fx) * fy * s[kW] +
                                     fx * fy * s[kW + 1]) >>
                                    6;
                    }
                    const Rgb p = to_rgb(sample[0], sample[1], sample[2]);
                    d[3 * x] = static_cast<uint8_t>(p.r);
                    d[3 * x + 1] = static_cast<uint8_t>(p.g);
                    d[3 * x + 2] = static_cast<uint8_t>(p.b);
                }
            }
        });
}

void add_one_pixel() {
    // Nothing stands beside a single pixel but a loop's body.
    const Memory memory = memory_for(1, 1, 0);
    const Call c = planes_to_pixels(memory, 1, 1, 0, kRgb);
    add("csc_small/yuv444_to_rgb888/1x1", "ours", [=] {
        c.run(qorv_csc_yuv444_to_rgb888);
        benchmark::DoNotOptimize(memory);
    });
}

void add_cases() {
    add_one_pixel();
    add_orders();
    add_narrow_scaling();
    add_overlaps();
#ifdef QORV_BENCH_LIBYUV
    for (const int w : {4, 8, 12, 16, 24, 31, 33, 40, 65, 100}) {
        add_small(w, 0);
        add_small(w, 16);
    }
    add_orders_beside_libyuv();
#endif
}

const Registration registration{add_cases};

}  // namespace

}  // namespace bench
