// zimg between planar YUV and planar RGB, full-range BT.601, 8 or 10 bits.
#pragma once

#ifdef QORV_BENCH_ZIMG

#include <zimg.h>

#include <cstdlib>
#include <memory>

#include "picture.h"

namespace bench {

class ZimgPeer {
public:
    ZimgPeer(bool to_rgb, int bits, int w, int h) {
        zimg_image_format yuv, rgb;
        for (zimg_image_format *format : {&yuv, &rgb}) {
            zimg_image_format_default(format, ZIMG_API_VERSION);
            format->width = static_cast<unsigned>(w);
            format->height = static_cast<unsigned>(h);
            format->pixel_type = bits == 8 ? ZIMG_PIXEL_BYTE : ZIMG_PIXEL_WORD;
            format->depth = static_cast<unsigned>(bits);
            format->pixel_range = ZIMG_RANGE_FULL;
        }
        yuv.color_family = ZIMG_COLOR_YUV;
        yuv.matrix_coefficients = ZIMG_MATRIX_BT470_BG;
        rgb.color_family = ZIMG_COLOR_RGB;
        rgb.matrix_coefficients = ZIMG_MATRIX_RGB;
        zimg_graph_builder_params params;
        zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
        params.cpu_type = ZIMG_CPU_AUTO_64B;
        graph_.reset(zimg_filter_graph_build(to_rgb ? &yuv : &rgb, to_rgb ? &rgb : &yuv, &params));
        size_t bytes = 0;
        if (!graph_ || zimg_filter_graph_get_tmp_size(graph_.get(), &bytes) != ZIMG_ERROR_SUCCESS) std::abort();
        tmp_.reset(static_cast<uint8_t *>(std::aligned_alloc(64, (bytes + 63) / 64 * 64)));
    }

    void run(const Planes &src, const Planes &dst) const {
        zimg_image_buffer_const in = {ZIMG_API_VERSION, {}};
        zimg_image_buffer out = {ZIMG_API_VERSION, {}};
        for (int i = 0; i < 3; i++) {
            in.plane[i] = {src[i], src.stride(i), ZIMG_BUFFER_MAX};
            out.plane[i] = {dst[i], dst.stride(i), ZIMG_BUFFER_MAX};
        }
        if (zimg_filter_graph_process(graph_.get(), &in, &out, tmp_.get(), nullptr, nullptr, nullptr, nullptr) !=
            ZIMG_ERROR_SUCCESS) {
            std::abort();
        }
    }

private:
    struct FreeGraph {
        void operator()(zimg_filter_graph *graph) const { zimg_filter_graph_free(graph); }
    };
    struct Free {
        void operator()(uint8_t *p) const { std::free(p); }
    };
    std::unique_ptr<zimg_filter_graph, FreeGraph> graph_;
    std::unique_ptr<uint8_t, Free> tmp_;
};

}  // namespace bench

#endif
