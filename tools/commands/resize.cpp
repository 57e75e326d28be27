// qorv resize: pictures through the library's resizer, whole or in bands of rows.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>

#include "qorv_skia.h"
#include "tools/base/output.h"
#include "tools/commands/command.h"
#include "tools/picture/picture_file.h"
#include "tools/picture/pixel_format.h"

namespace tool {

namespace {

struct Options : Verbosity {
    std::string in, out, to, layout, size;
    uint32_t band_height = 0;  // 0: the whole picture at once
    int quality = 90;
};

// What the resizer reads and writes.
struct Layout {
    const char *name;  // on the command line
    int32_t format;    // of the resizer
    int channels;      // of the source
};
constexpr Layout kLayouts[] = {{"gray", 20, 1}, {"rgb888", 21, 3}, {"rgba8888", 29, 4}, {"rgb565", 23, 3}};

// The one of that name, or without a name the first of as many channels.
const Layout &find_layout(const std::string &name, int channels) {
    const Layout *layout = kLayouts;
    while (name.empty() ? layout->channels != channels : layout->name != name) layout++;
    return *layout;
}

struct DeleteResizer {
    void operator()(QORV_IRSZ *resizer) const { qorv_irsz_delete(resizer); }
};

// With bands, one piece of memory holds each of them in turn.
void run_resizer(QORV_IRSZ &resizer, const Picture &picture, uint32_t band_height) {
    if (band_height == 0) {
        qorv_irsz(&resizer, picture.pixels.data(), 0, picture.height);
        return;
    }
    std::vector<uint8_t> band(picture.row_bytes() * band_height);
    for (uint32_t row = 0; row < picture.height; row += band_height) {
        const uint32_t rows = std::min(band_height, picture.height - row);
        std::memcpy(band.data(), &picture.pixels[row * picture.row_bytes()], rows * picture.row_bytes());
        qorv_irsz(&resizer, band.data(), row, rows);
    }
}

void resize(const Picture &picture, const Layout &layout, uint32_t width, uint32_t height, uint32_t band_height,
            void *dst) {
    constexpr int32_t kPicture = 10, kBands = 11;
    const auto src_w = static_cast<int32_t>(picture.width), dst_w = static_cast<int32_t>(width);
    const QORV_IRSZ_PARAM param = {.format = layout.format,
                                   .mode = band_height == 0 ? kPicture : kBands,
                                   .src_w = src_w,
                                   .src_h = static_cast<int32_t>(picture.height),
                                   .src_stride = src_w,
                                   .band_h = static_cast<int32_t>(band_height),
                                   .dst_w = dst_w,
                                   .dst_h = static_cast<int32_t>(height),
                                   .dst_stride = dst_w,
                                   .dst = dst};
    const std::unique_ptr<QORV_IRSZ, DeleteResizer> resizer(qorv_irsz_create(&param, nullptr));
    if (!resizer) throw std::bad_alloc();
    run_resizer(*resizer, picture, band_height);
}

// 5-6-5 words are shown as what they stand for.
Picture resized(const Picture &picture, const Layout &layout, uint32_t width, uint32_t height, uint32_t band_height) {
    if (std::strcmp(layout.name, "rgb565") == 0) {
        const RgbPicture words(find_pixel_format(layout.name), width, height);
        resize(picture, layout, width, height, band_height, words.pointers()[0]);
        return words.show();
    }
    Picture result = {width, height, layout.channels, {}};
    result.pixels.resize(result.row_bytes() * height);
    resize(picture, layout, width, height, band_height, result.pixels.data());
    return result;
}

FileKind kind_of_output(const Options &options) {
    const FileKind named = kind_of_name(options.out);
    const FileKind kind = options.to.empty() ? named : kind_of_word(options.to);
    if (kind == FileKind::kUnknown || kind == FileKind::kY4m || (named != FileKind::kUnknown && named != kind)) {
        throw UsageError(options.out + ": give OUT.png, .jpg, .ppm or .pgm, or say --to png|jpeg|ppm|pgm");
    }
    return kind;
}

void print_report(const Options &options, const Picture &from, const Picture &to, const char *layout, double seconds) {
    const bool taken = options.out == "-";
    if (options.json) {
        std::fprintf(taken ? stderr : stdout,
                     "{\"from\": {\"width\": %u, \"height\": %u}, \"width\": %u, \"height\": %u, \"format\": \"%s\", "
                     "\"resizer_seconds\": %.6f}\n",
                     from.width, from.height, to.width, to.height, layout, seconds);
    } else if (!taken && !options.quiet) {
        std::printf("%ux%u to %ux%u %s: %.3f ms in the resizer\n", from.width, from.height, to.width, to.height, layout,
                    1e3 * seconds);
    }
}

void resize_command(const Options &options) {
    need(options.in, "IN");
    need(options.out, "OUT");
    need(options.size, "--size");
    uint32_t width, height;
    parse_size(options.size, width, height);
    const FileKind kind = kind_of_output(options);

    Progress progress(options, "rows");
    const RowReport rows = [&](uint32_t done, uint32_t all) { progress.update(done, done, all); };
    Picture picture = read_picture(options.in, rows);
    const Layout &layout = find_layout(options.layout, picture.channels);
    picture = with_channels(std::move(picture), layout.channels);
    const auto start = std::chrono::steady_clock::now();
    const Picture result = resized(picture, layout, width, height, std::min(options.band_height, picture.height));
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    write_file(options.out, encode_picture(result, kind, options.quality, rows));
    print_report(options, picture, result, layout.name, seconds.count());
}

}  // namespace

void add_resize_command(CLI::App &app) {
    auto options = std::make_shared<Options>();
    Command command(app, "resize", "Resize a picture", *options);
    std::vector<std::string> names;
    for (const Layout &layout : kLayouts) names.emplace_back(layout.name);
    command.add_argument("IN", options->in, "PNG, JPEG, PPM or PGM picture, brought to 8 bits ('-': standard input)");
    command.add_argument("OUT", options->out, "Picture to write, by its extension ('-': standard output, with --to)");
    command.add_option("--size", "WxH", options->size, "Width and height of the result");
    command.add_choice("--to", "png|jpeg|ppm|pgm", options->to, {"png", "jpeg", "ppm", "pgm"},
                       "What to write, where the name does not tell");
    command.add_choice(
        "--format", "LAYOUT", options->layout, names,
        "Pixels to resize; the result shows them: gray, rgb888, rgba8888, rgb565. Default: the picture's own.\n"
        "Colour becomes gray as its luma; alpha is dropped or added as it must");
    command.add_number("--band-height", "ROWS", options->band_height, 1u, 32768u,
                       "Hand the source over in bands of so many rows; the result is the same");
    command.add_quality(options->quality);
    command.set_footer(
        "Bilinear on a grid of eighths; reductions of more than 2 to 1 skip source pixels. Examples:\n"
        "  qorv resize picture.png small.png --size 320x180\n"
        "  qorv resize photo.jpg words.png --size 640x360 --format rgb565 --band-height 16");
    command.set_action([options] { resize_command(*options); });
}

}  // namespace tool
