// What the benchmarks of scaling have in common: the peers of both, and sizes.
#pragma once

#include <string>

#ifdef QORV_BENCH_LIBYUV
#include <libyuv.h>
#endif
#ifdef QORV_BENCH_SWSCALE
extern "C" {
#include <libswscale/swscale.h>
}
#endif

namespace bench {

struct Size {
    int w, h;
};

struct Ratio {
    Size src, dst;
};

inline std::string text(Size size) {
    return std::to_string(size.w) + "x" + std::to_string(size.h);
}

}  // namespace bench
