// Asks for a converter by colour spaces and converts there and back.
#include <cstdio>
#include <qorv_skia.hpp>

namespace {
constexpr int kWidth = 4;
}

int main() {
    // Red, green, blue and white as B, G, R, A bytes: BGRA8888 names the order in memory.
    const std::uint8_t yuv[3][kWidth] = {{76, 149, 29, 255}, {85, 43, 255, 128}, {255, 21, 107, 128}};
    const auto plane = [](auto *row) { return qorv::Plane(row, kWidth, 1, kWidth); };
    const qorv::ConstPicture source = qorv::planar(QORV_CS_YUV444, plane(yuv[0]), plane(yuv[1]), plane(yuv[2]));
    std::uint8_t bgra[kWidth * 4];
    const qorv::Picture screen = qorv::packed(QORV_CS_BGRA8888, bgra, kWidth, 1, sizeof bgra);

    const auto [converter, status] = qorv::Converter::find(source, screen);
    if (!converter) return std::printf("no such converter: %s\n", to_text(status));
    converter(source, screen);
    for (int x = 0; x < kWidth; x++) {
        const std::uint8_t *p = bgra + 4 * x;
        std::printf("Y U V %3d %3d %3d -> R G B A %3d %3d %3d %3d\n", yuv[0][x], yuv[1][x], yuv[2][x], p[2], p[1], p[0],
                    p[3]);
    }
    if (bgra[12] != 255 || bgra[13] != 255 || bgra[14] != 255 || bgra[15] != 255) return 1;  // white

    // Back from 5-6-5 words: their low bits are gone, so white comes back a little darker.
    std::uint16_t words[kWidth];
    const qorv::Picture packed_words = qorv::packed(QORV_CS_RGB565, words, kWidth, 1, sizeof words);
    std::uint8_t back[3][kWidth];
    const qorv::Picture planes = qorv::planar(QORV_CS_YUV444, plane(back[0]), plane(back[1]), plane(back[2]));
    if (convert(source, packed_words) != qorv::Status::ok || convert(packed_words, planes) != qorv::Status::ok) {
        return 1;
    }
    std::printf("white through 5-6-5: word %04x, Y %d\n", words[3], back[0][3]);
    if (words[3] != 0xFFFF || back[0][3] != 250) return 1;

    // Where the sizes differ, the converter found scales as well.
    std::uint8_t large[3 * kWidth * 3];
    if (convert(source, qorv::packed(QORV_CS_RGB888, large, 3 * kWidth, 1, sizeof large)) != qorv::Status::ok) return 1;
    if (large[0] != bgra[2] || large[1] != bgra[1] || large[2] != bgra[0]) return 1;  // the first pixel as it was

    // What no converter does is reported, not guessed.
    const qorv::ConstPicture semi_planar{QORV_CS_NV12, kWidth, 1, {yuv[0], yuv[1]}, {kWidth, kWidth}};
    return convert(semi_planar, screen) == qorv::Status::unsupported_colour_space ? 0 : 1;
}
