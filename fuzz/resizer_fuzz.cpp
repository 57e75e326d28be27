// Band mode against picture mode, and both against the per-sample reference, over any sizes and band heights.
#include <algorithm>
#include <cstring>

#include "kernels.h"
#include "qorv_skia.h"
#include "support/bilinear_reference.h"
#include "support/noise.h"

using fuzz::Input;
using fuzz::require;

namespace {

std::vector<uint8_t> resize(QORV_IRSZ_PARAM param, int dst_bytes, const std::vector<uint8_t> &src, size_t pitch) {
    std::vector<uint8_t> dst(static_cast<size_t>(param.dst_w * param.dst_h * dst_bytes));
    param.dst = dst.data();
    QORV_IRSZ *rsz = qorv_irsz_create(&param, nullptr);
    require(rsz != nullptr, "the resizer is created");
    if (param.mode == 10) {
        qorv_irsz(rsz, src.data(), 0, 0);
    } else {
        for (int first = 0; first < param.src_h; first += param.band_h) {
            // Each band in memory of its own size, gone after the call.
            const auto rows = static_cast<size_t>(std::min(param.band_h, param.src_h - first));
            const auto *start = src.data() + static_cast<size_t>(first) * pitch;
            const std::vector<uint8_t> band(start, start + rows * pitch);
            qorv_irsz(rsz, band.data(), static_cast<uint32_t>(first), static_cast<uint32_t>(param.band_h));
        }
    }
    qorv_irsz_delete(rsz);
    return dst;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static constexpr struct {
        int code, src_bytes, dst_bytes;
    } kFormats[] = {{20, 1, 1}, {21, 3, 3}, {23, 3, 2}, {25, 2, 2}, {29, 4, 4}};
    Input input(data, size);
    fuzz::choose_kernels(input);
    const auto &format = kFormats[input.byte() % 5];
    const bool wide = (input.byte() & 1) != 0;
    QORV_IRSZ_PARAM param = {};
    param.format = format.code;
    param.src_w = param.src_stride = input.between(1, wide ? 900 : 60);
    param.src_h = input.between(1, wide ? 12 : 200);
    param.dst_w = param.dst_stride = input.between(1, wide ? 600 : 60);
    param.dst_h = input.between(1, wide ? 12 : 120);
    param.band_h = input.between(1, 40);

    const size_t pitch = static_cast<size_t>(param.src_w * format.src_bytes);
    std::vector<uint8_t> src(pitch * static_cast<size_t>(param.src_h));
    std::generate(src.begin(), src.end(), test::Noise{input.word()});

    param.mode = 10;
    const std::vector<uint8_t> picture = resize(param, format.dst_bytes, src, pitch);
    param.mode = 11;
    require(resize(param, format.dst_bytes, src, pitch) == picture, "bands give the picture");
    if (format.code != 20) return 0;
    const test::BilinearAxis x(param.src_w, param.dst_w), y(param.src_h, param.dst_h);
    for (int j = 0; j < param.dst_h; j++) {
        for (int i = 0; i < param.dst_w; i++) {
            const int sum = test::bilinear_sum(x, y, i, j, [&](int64_t column, int64_t row) {
                return src[static_cast<size_t>(row) * pitch + static_cast<size_t>(column)];
            });
            require(picture[static_cast<size_t>(j * param.dst_w + i)] == sum >> 6,
                    "a sample agrees with the reference");
        }
    }
    return 0;
}
