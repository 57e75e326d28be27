// A picture's road: made with room for motion vectors round it, drawn by a decoder, its borders expanded, converted for
// a display, and given back by its handles.
#include <cstdio>
#include <qorv_skia.hpp>

namespace {
constexpr int kWidth = 64, kHeight = 48, kBorder = 16;

// A stand-in for the decoder: luma rises to the right, the two chroma planes to the right and downwards.
void decode_into(const qorv::Image &image) {
    const qorv::Plane<std::uint8_t> luma = image.plane(0), u = image.plane(1), v = image.plane(2);
    for (int y = 0; y < luma.height(); y++) {
        for (int x = 0; x < luma.width(); x++) {
            luma(x, y) = static_cast<std::uint8_t>(x * 4);
            u(x, y) = static_cast<std::uint8_t>(64 + x * 2);
            v(x, y) = static_cast<std::uint8_t>(64 + y * 2);
        }
    }
}
}  // namespace

int main() {
    qorv::Layout layout;
    layout.align = qorv::PlaneWords::all(32, 1);               // rows of a multiple of 32 samples
    layout.padding = qorv::PlaneWords::all(kBorder, kBorder);  // on every side of every plane
    auto [yuv, status] = qorv::Image::create(kWidth, kHeight, QORV_CS_YUV444, layout);
    if (!yuv) return std::printf("no picture: %s\n", to_text(status));

    decode_into(yuv);
    if (yuv.expand(layout.padding) != qorv::Status::ok) return 1;
    // A motion vector may now point outside: what it finds there is the nearest sample of the picture.
    const qorv::Plane<std::uint8_t> luma = yuv.plane(0);
    if (luma.data()[-kBorder * luma.stride() - kBorder] != luma(0, 0)) return 1;

    // The display holds a reference of its own, so that the decoder may let go of the picture at any time.
    qorv::Image shown = yuv;
    if (shown.count() != 2) return 1;
    yuv.reset();

    auto [rgb, rgb_status] = qorv::Image::create(kWidth, kHeight, QORV_CS_RGB888);
    if (!rgb) return std::printf("no picture: %s\n", to_text(rgb_status));
    if (convert(shown.view(), rgb.view()) != qorv::Status::ok) return 1;
    const qorv::Span<std::uint8_t> row = rgb.plane(0).row(24);
    std::printf("pixel (32, 24): %d %d %d\n", row[96], row[97], row[98]);
    return shown.count() == 1 && row[97] != 0 ? 0 : 1;
}
