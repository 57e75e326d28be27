// Colour converters of equal size beside libyuv and zimg, at 256x256 and 1920x1080.
#include <memory>

#include "picture.h"
#include "qorv_skia.h"
#include "zimg_peer.h"

#ifdef QORV_BENCH_LIBYUV
#include <libyuv.h>
#endif

namespace bench {

namespace {

struct Size {
    int w, h;
    const char *name;
};
constexpr Size kSizes[] = {{256, 256, "256x256"}, {1920, 1080, "1920x1080"}};

using SharedPlanes = std::shared_ptr<Planes>;

SharedPlanes planes(int count, Size size, int bytes_per_pixel, uint32_t mask = 0xFFFFFFFF) {
    return std::make_shared<Planes>(count, size.w, size.h, bytes_per_pixel, mask);
}

// The pointers and strides of a converter: planes as they are, a packed picture as one pointer a channel.
struct Channels {
    Channels(const Planes &from, int planes, int interleaved, int stride_unit) {
        for (int i = 0; i < planes * interleaved; i++) {
            p[i] = from[i / interleaved] + i % interleaved;
            stride[i] = from.stride(i / interleaved) / stride_unit;
        }
    }
    void *p[4] = {};
    int32_t stride[4] = {};
};

struct Layout {
    int planes, bytes, interleaved;
    int stride_unit = 1;
    uint32_t mask = 0xFFFFFFFF;
};
constexpr Layout k3{3, 1, 1}, k4{4, 1, 1}, kRgb{1, 3, 3}, kRgba{1, 4, 4}, kWord{1, 2, 1};
constexpr Layout kDeep{3, 2, 1, 2, 0x03FF03FF};

template <class Peer>
void compare(const std::string &name, Size size, qorv_csc_fn fn, Layout in, Layout out, const char *peer_name,
             Peer peer) {
    const std::string full = "csc/" + name + "/" + size.name;
    const SharedPlanes src = planes(in.planes, size, in.bytes, in.mask), dst = planes(out.planes, size, out.bytes);
    const Channels s(*src, in.planes, in.interleaved, in.stride_unit),
        d(*dst, out.planes, out.interleaved, out.stride_unit);
    add(full, "ours", [=] {
        fn(s.p, size.w, size.h, s.stride, 0, const_cast<void *const *>(d.p), size.w, size.h, d.stride, 0);
        benchmark::DoNotOptimize(src);
        benchmark::DoNotOptimize(dst);
    });
    if (peer_name != nullptr) add(full, peer_name, [=] { peer(*src, *dst); });
}

#ifdef QORV_BENCH_LIBYUV
template <class Peer>
void beside_libyuv(const std::string &name, Size size, qorv_csc_fn fn, Layout in, Layout out, Peer peer) {
    compare(name, size, fn, in, out, "libyuv", peer);
}
#endif

#ifdef QORV_BENCH_ZIMG
void beside_zimg(const std::string &name, Size size, qorv_csc_fn fn, Layout layout, bool to_rgb) {
    const auto zimg = std::make_shared<ZimgPeer>(to_rgb, layout.bytes == 1 ? 8 : 10, size.w, size.h);
    compare(name, size, fn, layout, layout, "zimg", [=](const Planes &src, const Planes &dst) { zimg->run(src, dst); });
}
#endif

void add_yuv_to_rgb([[maybe_unused]] Size size) {
#ifdef QORV_BENCH_LIBYUV
    using namespace libyuv;
    const int w = size.w, h = size.h;
    beside_libyuv("yuv444_to_rgb888", size, qorv_csc_yuv444_to_rgb888, k3, kRgb, [=](const Planes &s, const Planes &d) {
        I444ToRGB24Matrix(s[0], s.stride(), s[2], s.stride(), s[1], s.stride(), d[0], d.stride(), &kYvuJPEGConstants, w,
                          h);
    });
    beside_libyuv("yuv444_to_rgba8888", size, qorv_csc_yuv444_to_rgba8888, k3, kRgba,
                  [=](const Planes &s, const Planes &d) {
                      I444ToARGBMatrix(s[0], s.stride(), s[2], s.stride(), s[1], s.stride(), d[0], d.stride(),
                                       &kYvuJPEGConstants, w, h);
                  });
    beside_libyuv("yuv444_to_bgra8888", size, qorv_csc_yuv444_to_bgra8888, k3, kRgba,
                  [=](const Planes &s, const Planes &d) {
                      I444ToARGBMatrix(s[0], s.stride(), s[1], s.stride(), s[2], s.stride(), d[0], d.stride(),
                                       &kYuvJPEGConstants, w, h);
                  });
    beside_libyuv("yuv444a8_to_rgba8888", size, qorv_csc_yuv444a8_to_rgba8888, k4, kRgba,
                  [=](const Planes &s, const Planes &d) {
                      I444AlphaToARGBMatrix(s[0], s.stride(), s[2], s.stride(), s[1], s.stride(), s[3], s.stride(),
                                            d[0], d.stride(), &kYvuJPEGConstants, w, h, 0);
                  });
    beside_libyuv("yuv444_to_rgb565", size, qorv_csc_yuv444_to_rgb565, k3, kWord,
                  [=, row = planes(1, {w, 1, ""}, 4)](const Planes &s, const Planes &d) {
                      for (int y = 0; y < h; y++) {
                          const int at = y * s.stride();
                          I444ToARGBMatrix(s[0] + at, 0, s[1] + at, 0, s[2] + at, 0, (*row)[0], 0, &kYuvJPEGConstants,
                                           w, 1);
                          ARGBToRGB565((*row)[0], 0, d[0] + y * d.stride(), 0, w, 1);
                      }
                  });
#endif
#ifdef QORV_BENCH_ZIMG
    beside_zimg("yuv444_to_r8g8b8", size, qorv_csc_yuv444_to_r8g8b8, k3, true);
    beside_zimg("p410_to_r10g10b10", size, qorv_csc_p410_to_r10g10b10, kDeep, true);
#endif
}

void add_rgb_to_yuv([[maybe_unused]] Size size) {
#ifdef QORV_BENCH_ZIMG
    beside_zimg("r8g8b8_to_yuv444", size, qorv_csc_r8g8b8_to_yuv444, k3, false);
    beside_zimg("r10g10b10_to_p410", size, qorv_csc_r10g10b10_to_p410, kDeep, false);
#endif
#ifdef QORV_BENCH_LIBYUV
    using namespace libyuv;
    const int w = size.w, h = size.h;
    const auto by_row = [=](auto to_argb) {
        return [=, row = planes(1, {w, 1, ""}, 4)](const Planes &s, const Planes &d) {
            for (int y = 0; y < h; y++) {
                const int at = y * d.stride();
                to_argb(s[0] + y * s.stride(), 0, (*row)[0], 0, w, 1);
                ARGBToI444((*row)[0], 0, d[0] + at, 0, d[1] + at, 0, d[2] + at, 0, w, 1);
            }
        };
    };
    beside_libyuv("rgb888_to_yuv444", size, qorv_csc_rgb888_to_yuv444, kRgb, k3, by_row(RAWToARGB));
    beside_libyuv("rgb565_to_yuv444", size, qorv_csc_rgb565_to_yuv444, kWord, k3, by_row(RGB565ToARGB));
    beside_libyuv("rgba8888_to_yuv444a8", size, qorv_csc_rgba8888_to_yuv444a8, kRgba, k4,
                  [=](const Planes &s, const Planes &d) {
                      ARGBToI444(s[0], s.stride(), d[0], d.stride(), d[1], d.stride(), d[2], d.stride(), w, h);
                  });
#endif
}

void add_layouts([[maybe_unused]] Size size) {
#ifdef QORV_BENCH_LIBYUV
    using namespace libyuv;
    const int w = size.w, h = size.h;
    beside_libyuv("r8g8b8_to_rgb888", size, qorv_csc_r8g8b8_to_rgb888, k3, kRgb, [=](const Planes &s, const Planes &d) {
        MergeRGBPlane(s[0], s.stride(), s[1], s.stride(), s[2], s.stride(), d[0], d.stride(), w, h);
    });
    beside_libyuv("r8g8b8a8_to_rgba8888", size, qorv_csc_r8g8b8a8_to_rgba8888, k4, kRgba,
                  [=](const Planes &s, const Planes &d) {
                      MergeARGBPlane(s[2], s.stride(), s[1], s.stride(), s[0], s.stride(), s[3], s.stride(), d[0],
                                     d.stride(), w, h);
                  });
    beside_libyuv("yuv444x_to_yuv444x", size, qorv_csc_yuv444x_to_yuv444x, k3, k3,
                  [=](const Planes &s, const Planes &d) {
                      for (int i = 0; i < 3; i++) CopyPlane(s[i], s.stride(), d[i], d.stride(), w, h);
                  });
    beside_libyuv("p010_to_yuv420", size, qorv_csc_p010_to_yuv420, {3, 2, 1, 1, 0x03FF03FF}, k3,
                  [=](const Planes &s, const Planes &d) {
                      for (int i = 0; i < 3; i++) {
                          const int halved = i == 0 ? 0 : 1;
                          Convert16To8Plane(reinterpret_cast<const uint16_t *>(s[i]), s.stride() / 2, d[i], d.stride(),
                                            16384, w >> halved, h >> halved);
                      }
                  });
#endif
    // Bytes between the samples stay as they are, which no peer offers.
    compare("yuv444_to_argb8888", size, qorv_csc_yuv444_to_argb8888, k3, kRgba, nullptr,
            [](const Planes &, const Planes &) {});
}

void add_cases() {
    for (const Size size : kSizes) {
        add_yuv_to_rgb(size);
        add_rgb_to_yuv(size);
        add_layouts(size);
    }
}

const Registration registration{add_cases};

}  // namespace

}  // namespace bench
