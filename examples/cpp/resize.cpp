// Makes a thumbnail of a picture in one call, and once more from bands of rows as a decoder delivers them.
#include <cstdio>
#include <cstring>
#include <qorv_skia.hpp>

namespace {
constexpr int kSrcW = 160, kSrcH = 120, kDstW = 50, kDstH = 40, kBand = 16;
enum Mode { kWhole = 10, kBands = 11 };
std::uint8_t source[kSrcH][kSrcW][3], whole[kDstH][kDstW][3], banded[kDstH][kDstW][3];

qorv::Resizer create(Mode mode, void *dst) {
    QORV_IRSZ_PARAM param = {};
    param.format = static_cast<std::int32_t>(qorv::ResizeFormat::rgb);
    param.mode = mode;
    param.src_w = param.src_stride = kSrcW;  // strides count pixels here
    param.src_h = kSrcH;
    param.band_h = kBand;
    param.dst_w = param.dst_stride = kDstW;
    param.dst_h = kDstH;
    param.dst = dst;
    auto [resizer, status] = qorv::Resizer::create(param);
    if (!resizer) std::printf("no resizer: %s\n", to_text(status));
    return std::move(resizer);
}
}  // namespace

int main() {
    for (int y = 0; y < kSrcH; y++) {
        for (int x = 0; x < kSrcW; x++) {
            source[y][x][0] = static_cast<std::uint8_t>(x);
            source[y][x][1] = static_cast<std::uint8_t>(2 * y);
            source[y][x][2] = static_cast<std::uint8_t>(x ^ y);
        }
    }
    qorv::Resizer picture = create(kWhole, whole), bands = create(kBands, banded);
    if (!picture || !bands) return 1;
    picture(&source[0][0][0]);  // could do the next picture too
    std::printf("pixel (25, 20): %d %d\n", whole[20][25][0], whole[20][25][1]);
    for (int row = 0; row < kSrcH; row += kBand) {
        bands(&source[row][0][0], static_cast<std::uint32_t>(row), kBand);  // one for bands serves one picture
    }
    return std::memcmp(whole, banded, sizeof whole) != 0 || std::memcmp(whole[0][0], source[0][0], 3) != 0;
}
