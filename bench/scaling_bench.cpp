// Scaling converters beside libyuv (each plane scaled, then converted) and libswscale.
#include <memory>

#include "picture.h"
#include "qorv_skia.h"
#include "scalers.h"

namespace bench {

namespace {

constexpr Ratio kRatios[] = {{{640, 360}, {322, 183}},
                             {{640, 360}, {427, 240}},
                             {{320, 180}, {480, 270}},
                             {{1280, 720}, {213, 120}},
                             {{320, 180}, {640, 360}}};

struct Converter {
    const char *name;
    qorv_csc_fn fn;
    int bytes;  // of a destination pixel
};
constexpr Converter kConverters[] = {{"yuv444_to_rgb888", qorv_csc_rsz_yuv444_to_rgb888, 3},
                                     {"yuv444_to_rgba8888", qorv_csc_rsz_yuv444_to_rgba8888, 4},
                                     {"yuv444_to_rgb565", qorv_csc_rsz_yuv444_to_rgb565, 2}};

using SharedPlanes = std::shared_ptr<Planes>;

void add_ours(const std::string &name, const Converter &c, const Ratio &size, SharedPlanes src, SharedPlanes dst) {
    add(name, "ours", [=, fn = c.fn, bytes = c.bytes] {
        const void *s[3] = {(*src)[0], (*src)[1], (*src)[2]};
        const int32_t s_stride[3] = {src->stride(), src->stride(), src->stride()};
        void *d[4];
        int32_t d_stride[4];
        for (int i = 0; i < (bytes == 2 ? 1 : bytes); i++) {
            d[i] = (*dst)[0] + i;
            d_stride[i] = dst->stride();
        }
        fn(s, size.src.w, size.src.h, s_stride, 0, d, size.dst.w, size.dst.h, d_stride, 0);
    });
}

#ifdef QORV_BENCH_LIBYUV
void add_libyuv(const std::string &name, const Converter &c, const Ratio &size, SharedPlanes src, SharedPlanes dst) {
    using namespace libyuv;
    const auto scaled = std::make_shared<Planes>(3, size.dst.w, size.dst.h, 1);
    const auto argb = std::make_shared<Planes>(1, size.dst.w, size.dst.h, 4);
    add(name, "libyuv", [=, bytes = c.bytes] {
        const Planes &s = *scaled;
        for (int i = 0; i < 3; i++) {
            ScalePlane((*src)[i], src->stride(), size.src.w, size.src.h, s[i], s.stride(), size.dst.w, size.dst.h,
                       kFilterBilinear);
        }
        uint8_t *d = (*dst)[0];
        if (bytes == 3) {
            I444ToRGB24Matrix(s[0], s.stride(), s[2], s.stride(), s[1], s.stride(), d, dst->stride(),
                              &kYvuJPEGConstants, size.dst.w, size.dst.h);
        } else {
            const Planes &to = bytes == 4 ? *dst : *argb;
            I444ToARGBMatrix(s[0], s.stride(), s[2], s.stride(), s[1], s.stride(), to[0], to.stride(),
                             &kYvuJPEGConstants, size.dst.w, size.dst.h);
            if (bytes == 2) ARGBToRGB565(to[0], to.stride(), d, dst->stride(), size.dst.w, size.dst.h);
        }
    });
}
#endif

#ifdef QORV_BENCH_SWSCALE
void add_swscale(const std::string &name, const Converter &c, const Ratio &size, SharedPlanes src, SharedPlanes dst) {
    const AVPixelFormat format = c.bytes == 3 ? AV_PIX_FMT_RGB24 : c.bytes == 4 ? AV_PIX_FMT_RGBA : AV_PIX_FMT_RGB565LE;
    const std::shared_ptr<SwsContext> context(
        sws_getContext(size.src.w, size.src.h, AV_PIX_FMT_YUVJ444P, size.dst.w, size.dst.h, format, SWS_BILINEAR,
                       nullptr, nullptr, nullptr),
        sws_freeContext);
    add(name, "libswscale", [=] {
        const uint8_t *s[3] = {(*src)[0], (*src)[1], (*src)[2]};
        const int s_stride[3] = {src->stride(), src->stride(), src->stride()};
        uint8_t *d[1] = {(*dst)[0]};
        const int d_stride[1] = {dst->stride()};
        sws_scale(context.get(), s, s_stride, 0, size.src.h, d, d_stride);
    });
}
#endif

void add_cases() {
    for (const Converter &c : kConverters) {
        for (const Ratio &size : kRatios) {
            const std::string name = std::string("scaling/") + c.name + "/" + text(size.src) + "-" + text(size.dst);
            const auto src = std::make_shared<Planes>(3, size.src.w, size.src.h, 1);
            const auto dst = std::make_shared<Planes>(1, size.dst.w, size.dst.h, c.bytes);
            add_ours(name, c, size, src, dst);
#ifdef QORV_BENCH_LIBYUV
            add_libyuv(name, c, size, src, dst);
#endif
#ifdef QORV_BENCH_SWSCALE
            add_swscale(name, c, size, src, dst);
#endif
        }
    }
}

const Registration registration{add_cases};

}  // namespace

}  // namespace bench
