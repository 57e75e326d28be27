// The resizer beside the bilinear scalers of OpenCV, libyuv and libswscale.
#include <memory>

#include "picture.h"
#include "qorv_skia.h"
#include "scalers.h"

#ifdef QORV_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace bench {

namespace {

// At exactly 2:1 the peers compute a box filter, another operation.
constexpr Ratio kRatios[] = {{{640, 360}, {322, 183}},
                             {{640, 360}, {427, 240}},
                             {{640, 360}, {320, 180}},
                             {{1280, 720}, {213, 120}},
                             {{320, 180}, {480, 270}},
                             {{320, 180}, {640, 360}},
                             // Few columns, by much, and enlarged by much.
                             {{16, 16}, {8, 8}},
                             {{64, 64}, {16, 16}},
                             {{1000, 1000}, {5, 5}},
                             {{100, 100}, {1000, 1000}},
                             {{20, 20}, {1000, 1000}}};

struct Layout {
    const char *name;
    int format;           // of the resizer
    int channels, bytes;  // of a pixel; one channel of two bytes is a 5-6-5 word
};
constexpr Layout kLayouts[] = {{"gray", 20, 1, 1}, {"rgb", 21, 3, 3}, {"rgba", 29, 4, 4}, {"rgb565", 25, 1, 2}};

struct Case {
    std::string name;
    Layout layout;
    Size from, to;
    std::shared_ptr<Planes> src, dst;
};

void add_ours(const Case &c) {
    const int src_pixels = c.src->stride() / c.layout.bytes, dst_pixels = c.dst->stride() / c.layout.bytes;
    const QORV_IRSZ_PARAM param = {.format = c.layout.format,
                                   .mode = 10,
                                   .src_w = c.from.w,
                                   .src_h = c.from.h,
                                   .src_stride = src_pixels,
                                   .band_h = 0,
                                   .dst_w = c.to.w,
                                   .dst_h = c.to.h,
                                   .dst_stride = dst_pixels,
                                   .dst = (*c.dst)[0]};
    const std::shared_ptr<QORV_IRSZ> resizer(qorv_irsz_create(&param, nullptr), qorv_irsz_delete);
    add(c.name, "ours", [=] { qorv_irsz(resizer.get(), (*c.src)[0], 0, 0); });
}

void add_opencv([[maybe_unused]] const Case &c) {
#ifdef QORV_BENCH_OPENCV
    if (c.layout.format == 25) return;
    cv::setNumThreads(1);
    const int type = CV_MAKETYPE(CV_8U, c.layout.channels);
    const cv::Mat in(c.from.h, c.from.w, type, (*c.src)[0], static_cast<size_t>(c.src->stride()));
    add(c.name, "OpenCV", [=, out = cv::Mat(c.to.h, c.to.w, type, (*c.dst)[0], static_cast<size_t>(c.dst->stride()))] {
        cv::Mat result = out;
        cv::resize(in, result, {c.to.w, c.to.h}, 0, 0, cv::INTER_LINEAR);
    });
#endif
}

void add_libyuv([[maybe_unused]] const Case &c) {
#ifdef QORV_BENCH_LIBYUV
    if (c.layout.bytes != 1 && c.layout.bytes != 4) return;
    add(c.name, "libyuv", [=] {
        const uint8_t *const in = (*c.src)[0];
        uint8_t *const out = (*c.dst)[0];
        if (c.layout.bytes == 1) {
            libyuv::ScalePlane(in, c.src->stride(), c.from.w, c.from.h, out, c.dst->stride(), c.to.w, c.to.h,
                               libyuv::kFilterBilinear);
        } else {
            libyuv::ARGBScale(in, c.src->stride(), c.from.w, c.from.h, out, c.dst->stride(), c.to.w, c.to.h,
                              libyuv::kFilterBilinear);
        }
    });
#endif
}

void add_swscale([[maybe_unused]] const Case &c) {
#ifdef QORV_BENCH_SWSCALE
    if (c.layout.format != 21 && c.layout.format != 25) return;
    const AVPixelFormat format = c.layout.format == 21 ? AV_PIX_FMT_RGB24 : AV_PIX_FMT_RGB565LE;
    const std::shared_ptr<SwsContext> context(
        sws_getContext(c.from.w, c.from.h, format, c.to.w, c.to.h, format, SWS_BILINEAR, nullptr, nullptr, nullptr),
        sws_freeContext);
    add(c.name, "libswscale", [=] {
        const uint8_t *const in[4] = {(*c.src)[0]};
        uint8_t *const out[4] = {(*c.dst)[0]};
        const int in_stride[4] = {c.src->stride()}, out_stride[4] = {c.dst->stride()};
        sws_scale(context.get(), in, in_stride, 0, c.from.h, out, out_stride);
    });
#endif
}

void add_cases() {
    for (const Layout &layout : kLayouts) {
        for (const Ratio &ratio : kRatios) {
            // Rows of whole pixels: the resizer counts strides in them.
            const auto planes = [&](Size size) {
                const int unit = layout.bytes == 3 ? 192 / 3 : 1, w = (size.w + unit - 1) / unit * unit;
                return std::make_shared<Planes>(1, w, size.h, layout.bytes);
            };
            const Case c = {std::string("resize/") + layout.name + "/" + text(ratio.src) + "_" + text(ratio.dst),
                            layout,
                            ratio.src,
                            ratio.dst,
                            planes(ratio.src),
                            planes(ratio.dst)};
            add_ours(c);
            add_opencv(c);
            add_libyuv(c);
            add_swscale(c);
        }
    }
}

const Registration registration{add_cases};

}  // namespace

}  // namespace bench
