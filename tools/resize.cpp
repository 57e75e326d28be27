// qorv resize: PNG pictures through the library's resizer, whole or in bands of rows.
#include <chrono>
#include <cstring>
#include <memory>

#include "qorv_skia.h"
#include "tools/command.h"
#include "tools/pixel_format.h"

namespace tool {

namespace {

struct Options {
    std::string in, out, format, size;
    uint32_t band_height = 0;  // 0: the whole picture at once
};

// What the resizer reads and writes.
struct Layout {
    const char *name;  // on the command line
    int32_t format;    // of the resizer
    int channels;      // of the source
};
constexpr Layout kLayouts[] = {{"gray", 20, 1}, {"rgb888", 21, 3}, {"rgba8888", 29, 4}, {"rgb565", 23, 3}};

const Layout &find_layout(const std::string &name, int channels) {
    for (const Layout &layout : kLayouts) {
        if (name.empty() ? layout.channels == channels : layout.name == name) return layout;
    }
    throw Error("unknown format '" + name + "'");
}

// The luma of the library's converter.
PngImage to_gray(const PngImage &image) {
    const RgbPicture picture(find_pixel_format("rgb888"), image);
    const size_t pixels = size_t{image.width} * image.height;
    PngImage gray = {image.width, image.height, 1, std::vector<uint8_t>(pixels)};
    std::vector<uint8_t> chroma(2 * pixels);
    void *const planes[4] = {gray.pixels.data(), chroma.data(), chroma.data() + pixels, nullptr};
    const int32_t w = static_cast<int32_t>(image.width), h = static_cast<int32_t>(image.height);
    const int32_t strides[4] = {w, w, w, 0};
    qorv_csc_rgb888_to_yuv444(picture.const_pointers(), w, h, picture.strides(), 0, planes, w, h, strides,
                              QORV_CS_YUV444);
    return gray;
}

// Alpha that is dropped is not blended; alpha that is added is opaque.
PngImage with_channels(PngImage image, int channels) {
    if (image.channels == channels) return image;
    if (channels == 1) return to_gray(image);
    return RgbPicture(find_pixel_format(channels == 4 ? "rgba8888" : "rgb888"), image).to_png();
}

struct DeleteResizer {
    void operator()(QORV_IRSZ *resizer) const { qorv_irsz_delete(resizer); }
};

// With bands, one piece of memory holds each of them in turn.
void run_resizer(QORV_IRSZ &resizer, const PngImage &image, uint32_t band_height) {
    if (band_height == 0) {
        qorv_irsz(&resizer, image.pixels.data(), 0, image.height);
        return;
    }
    std::vector<uint8_t> band(image.row_bytes() * band_height);
    for (uint32_t row = 0; row < image.height; row += band_height) {
        const uint32_t rows = std::min(band_height, image.height - row);
        std::memcpy(band.data(), &image.pixels[row * image.row_bytes()], rows * image.row_bytes());
        qorv_irsz(&resizer, band.data(), row, rows);
    }
}

void resize(const PngImage &image, const Layout &layout, uint32_t width, uint32_t height, uint32_t band_height,
            void *dst) {
    constexpr int32_t kPicture = 10, kBands = 11;
    const int32_t src_w = static_cast<int32_t>(image.width), dst_w = static_cast<int32_t>(width);
    const QORV_IRSZ_PARAM param = {.format = layout.format,
                                   .mode = band_height == 0 ? kPicture : kBands,
                                   .src_w = src_w,
                                   .src_h = static_cast<int32_t>(image.height),
                                   .src_stride = src_w,
                                   .band_h = static_cast<int32_t>(band_height),
                                   .dst_w = dst_w,
                                   .dst_h = static_cast<int32_t>(height),
                                   .dst_stride = dst_w,
                                   .dst = dst};
    int32_t status = QORV_OK;
    const std::unique_ptr<QORV_IRSZ, DeleteResizer> resizer(qorv_irsz_create(&param, &status));
    if (!resizer) throw Error("no resizer could be created (status " + std::to_string(status) + ")");
    run_resizer(*resizer, image, band_height);
}

void resize_command(const Options &options) {
    uint32_t width, height;
    parse_size(options.size, width, height);
    PngImage image = read_png(options.in);
    const Layout &layout = find_layout(options.format, image.channels);
    image = with_channels(std::move(image), layout.channels);
    const uint32_t band_height = std::min(options.band_height, image.height);

    const bool words = std::strcmp(layout.name, "rgb565") == 0;
    PngImage result = {width, height, layout.channels, {}};
    std::unique_ptr<RgbPicture> picture;
    if (words) {
        picture = std::make_unique<RgbPicture>(find_pixel_format(layout.name), width, height);
    } else {
        result.pixels.resize(result.row_bytes() * height);
    }
    const auto start = std::chrono::steady_clock::now();
    resize(image, layout, width, height, band_height, words ? picture->pointers()[0] : result.pixels.data());
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    write_png(options.out, words ? picture->to_png() : result);
    std::printf("%ux%u to %ux%u %s: %.3f ms in the resizer\n", image.width, image.height, width, height, layout.name,
                1e3 * seconds.count());
}

}  // namespace

void add_resize_command(CLI::App &app) {
    auto options = std::make_shared<Options>();
    CLI::App *command = app.add_subcommand("resize", "Resize a PNG picture");
    std::vector<std::string> names;
    for (const Layout &layout : kLayouts) names.emplace_back(layout.name);
    command->add_option("IN", options->in, "PNG picture, brought to 8 bits")->required();
    command->add_option("OUT", options->out, "PNG picture to write")->required();
    command->add_option("--size", options->size, "WIDTHxHEIGHT of the result")->required();
    command
        ->add_option("--format", options->format,
                     "Pixels to resize; the result shows them. Default: the picture's own.\n"
                     "Colour becomes gray as its luma; alpha is dropped or added as it must")
        ->check(CLI::IsMember(names));
    command
        ->add_option("--band-height", options->band_height,
                     "Hand the source over in bands of so many rows; the result is the same")
        ->check(CLI::Range(1u, 32768u));
    command->footer(
        "Bilinear on a grid of eighths; reductions of more than 2 to 1 skip source pixels. Examples:\n"
        "  qorv resize picture.png small.png --size 320x180\n"
        "  qorv resize picture.png words.png --size 640x360 --format rgb565 --band-height 16");
    command->callback([options] { resize_command(*options); });
}

}  // namespace tool
