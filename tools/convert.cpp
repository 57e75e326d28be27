// qorv convert: Y4M frames to PNG pictures, and PNG pictures to Y4M, through the library's converters.
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <memory>

#include "qorv_skia.h"
#include "tools/command.h"
#include "tools/output.h"
#include "tools/pixel_format.h"
#include "tools/y4m.h"

namespace tool {

namespace {

struct Options {
    std::string in, out, format, size;
    uint64_t frame = 0;
    bool all = false;
};

struct ReleaseImgb {
    void operator()(QORV_IMGB *imgb) const { imgb->release(imgb); }
};
using Imgb = std::unique_ptr<QORV_IMGB, ReleaseImgb>;

Imgb create_imgb(uint32_t width, uint32_t height, int32_t cs) {
    // Rows of whole vectors, so that every row starts aligned.
    static const uint32_t align[4] = {QORV_IMGB_WORD(32, 1), QORV_IMGB_WORD(32, 1), QORV_IMGB_WORD(32, 1),
                                      QORV_IMGB_WORD(32, 1)};
    int32_t status = QORV_OK;
    Imgb imgb(qorv_imgb_create(static_cast<int32_t>(width), static_cast<int32_t>(height), static_cast<uint32_t>(cs), 0,
                               align, nullptr, nullptr, nullptr, &status));
    if (!imgb)
        throw Error("no picture buffer of " + std::to_string(width) + "x" + std::to_string(height) +
                    " could be created (status " + std::to_string(status) + ")");
    return imgb;
}

int32_t colour_space_of(const Y4mReader &reader) {
    const Y4mFormat &format = reader.format();
    if (format.chroma != "444" || (format.bits != 8 && format.bits != 10)) {
        throw Error(reader.path() + ": chroma format '" + format.colour +
                    "': only 4:4:4 is converted, 8 bits (with or without alpha) or 10 bits");
    }
    return format.bits == 10 ? QORV_CS_P410 : format.alpha ? QORV_CS_YUVA444 : QORV_CS_YUV444;
}

// Strides as the converters of a colour space count them.
std::vector<int32_t> converter_strides(const QORV_IMGB &imgb) {
    const int32_t unit = imgb.cs == QORV_CS_P410 ? 2 : 1;
    return {imgb.s[0] / unit, imgb.s[1] / unit, imgb.s[2] / unit, imgb.s[3] / unit};
}

// The rows between the file's packed planes and the buffer's.
template <class Copy>
void for_each_row(const Y4mFormat &format, const QORV_IMGB &imgb, Copy copy) {
    for (size_t i = 0; i < format.planes.size(); i++) {
        const size_t bytes = format.planes[i].width * format.sample_bytes();
        for (uint32_t y = 0; y < format.planes[i].height; y++) {
            copy(static_cast<uint8_t *>(imgb.a[i]) + static_cast<ptrdiff_t>(y) * imgb.s[i],
                 format.planes[i].offset + y * bytes, bytes);
        }
    }
}

qorv_csc_fn find_converter(uint32_t src_w, uint32_t src_h, int32_t src_cs, uint32_t dst_w, uint32_t dst_h,
                           int32_t dst_cs, const std::string &what) {
    int32_t status = QORV_OK;
    const qorv_csc_fn convert =
        qorv_imgp_get_fn_csc(static_cast<int32_t>(src_w), static_cast<int32_t>(src_h), src_cs,
                             static_cast<int32_t>(dst_w), static_cast<int32_t>(dst_h), dst_cs, &status);
    if (convert == nullptr) throw Error(what + " (status " + std::to_string(status) + ")");
    return convert;
}

// OUT.png for one frame, OUT-00012.png for frame 12 of many.
std::string frame_path(const Options &options, uint64_t frame) {
    if (!options.all) return options.out;
    const size_t dot = options.out.rfind('.');
    char number[32];
    std::snprintf(number, sizeof number, "-%05llu", static_cast<unsigned long long>(frame));
    return options.out.substr(0, dot) + number + options.out.substr(dot);
}

class Stopwatch {
public:
    template <class Work>
    void run(Work work) {
        const auto start = std::chrono::steady_clock::now();
        work();
        seconds_ += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        runs_++;
    }
    void report(uint32_t width, uint32_t height, const char *format) const {
        std::printf("%llu frame%s %ux%u %s: %.3f ms a frame, %.0f megapixels/s in the converter\n",
                    static_cast<unsigned long long>(runs_), runs_ == 1 ? "" : "s", width, height, format,
                    1e3 * seconds_ / static_cast<double>(runs_),
                    1e-6 * static_cast<double>(runs_) * width * height / seconds_);
    }

private:
    double seconds_ = 0;
    uint64_t runs_ = 0;
};

void y4m_to_png(const Options &options) {
    Y4mReader reader(options.in);
    const Y4mFormat &format = reader.format();
    const int32_t cs = colour_space_of(reader);
    const std::string fitting = cs == QORV_CS_P410 ? "r10g10b10" : "rgb888";
    const PixelFormat &pixels = find_pixel_format(options.format.empty() ? fitting : options.format);
    if (pixels.cs == QORV_CS_ARGB8888 && !format.alpha) {
        throw Error("argb8888 needs a stream with alpha: from one without, blue is not computed");
    }
    uint32_t width = format.width, height = format.height;
    if (!options.size.empty()) parse_size(options.size, width, height);
    const qorv_csc_fn convert = find_converter(format.width, format.height, cs, width, height, pixels.cs,
                                               options.in + ": there is no converter from '" + format.colour + "' to " +
                                                   pixels.name + (options.size.empty() ? "" : " with scaling"));

    const Imgb imgb = create_imgb(format.width, format.height, cs);
    const std::vector<int32_t> strides = converter_strides(*imgb);
    const RgbPicture picture(pixels, width, height);
    const bool progress = options.all && isatty(STDERR_FILENO) != 0;
    Stopwatch watch;
    std::vector<uint8_t> frame;
    bool found = false;
    for (uint64_t number = 0; (options.all || !found) && reader.next(frame); number++) {
        if (!options.all && number != options.frame) continue;
        found = true;
        for_each_row(format, *imgb,
                     [&](uint8_t *row, size_t offset, size_t bytes) { std::memcpy(row, &frame[offset], bytes); });
        watch.run([&] {
            convert(imgb->a, imgb->w, imgb->h, strides.data(), 0, picture.pointers(), static_cast<int32_t>(width),
                    static_cast<int32_t>(height), picture.strides(), pixels.cs);
        });
        write_png(frame_path(options, number), picture.to_png());
        if (progress) std::fprintf(stderr, "\rframe %llu", static_cast<unsigned long long>(number));
    }
    if (progress) std::fputc('\n', stderr);
    if (!found) {
        throw Error(options.in + ": there is no frame " + std::to_string(options.frame) + ": the stream has " +
                    std::to_string(reader.frames_read()));
    }
    watch.report(width, height, pixels.name);
}

void write_y4m(const std::string &path, const QORV_IMGB &imgb) {
    const bool deep = imgb.cs == QORV_CS_P410, alpha = imgb.cs == QORV_CS_YUVA444;
    const char *const samples = deep ? "p10" : alpha ? "alpha" : "";
    write_file(path, [&](std::FILE *file) {
        std::fprintf(file, "YUV4MPEG2 W%d H%d F25:1 Ip A1:1 C444%s XCOLORRANGE=FULL\nFRAME\n", imgb.w, imgb.h, samples);
        for (int i = 0; i < (alpha ? 4 : 3); i++) {
            const auto *const plane = static_cast<const uint8_t *>(imgb.a[i]);
            for (int32_t y = 0; y < imgb.h; y++) {
                std::fwrite(plane + static_cast<ptrdiff_t>(y) * imgb.s[i], deep ? 2 : 1, static_cast<size_t>(imgb.w),
                            file);
            }
        }
        return std::string(std::ferror(file) != 0 ? std::strerror(errno) : "");
    });
}

void png_to_y4m(const Options &options) {
    if (!options.size.empty()) throw Error("--size: no converter to YUV scales; resize the picture first");
    const PngImage image = read_png(options.in);
    const std::string fitting = image.channels == 4 ? "rgba8888" : "rgb888";
    const PixelFormat &pixels = find_pixel_format(options.format.empty() ? fitting : options.format);
    const int32_t cs = pixels.cs == QORV_CS_R10G10B10 ? QORV_CS_P410
                       : pixels.has_alpha()           ? QORV_CS_YUVA444
                                                      : QORV_CS_YUV444;
    const qorv_csc_fn convert = find_converter(image.width, image.height, pixels.cs, image.width, image.height, cs,
                                               std::string("there is no converter from ") + pixels.name + " to YUV");
    const RgbPicture picture(pixels, image);
    const Imgb imgb = create_imgb(image.width, image.height, cs);
    const std::vector<int32_t> strides = converter_strides(*imgb);
    Stopwatch watch;
    watch.run([&] {
        convert(picture.const_pointers(), imgb->w, imgb->h, picture.strides(), 0, imgb->a, imgb->w, imgb->h,
                strides.data(), cs);
    });
    write_y4m(options.out, *imgb);
    watch.report(image.width, image.height, pixels.name);
}

bool ends_with(const std::string &text, const std::string &end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

void convert_command(const Options &options) {
    if (ends_with(options.in, ".png") && ends_with(options.out, ".y4m")) return png_to_y4m(options);
    if (ends_with(options.out, ".png")) return y4m_to_png(options);
    throw usage_error(options.out + ": give OUT.png for a Y4M stream, OUT.y4m for a PNG picture");
}

}  // namespace

void add_convert_command(CLI::App &app) {
    auto options = std::make_shared<Options>();
    CLI::App *command = app.add_subcommand("convert", "Convert Y4M frames to PNG, or a PNG picture to Y4M");
    command->add_option("IN", options->in, "4:4:4 Y4M stream ('-' is standard input), or PNG picture")->required();
    command->add_option("OUT", options->out, "PNG picture to write; a Y4M stream where IN is PNG")->required();
    command
        ->add_option("--format", options->format,
                     "RGB layout to convert through: the picture shows what the converter made of it.\n"
                     "Default: rgb888 (rgba8888 for PNG with alpha, r10g10b10 for 10-bit streams);\n"
                     "argb8888 needs a stream with alpha")
        ->check(CLI::IsMember(pixel_format_names()));
    command->add_option("--size", options->size, "WIDTHxHEIGHT of the picture: scales in the same pass");
    CLI::Option *frame = command->add_option("--frame", options->frame, "Which frame, counted from 0 (default 0)")
                             ->check(CLI::Range(uint64_t{0}, uint64_t{UINT32_MAX}));
    command->add_flag("--all", options->all, "Every frame, to OUT-00000.png, OUT-00001.png, ...")->excludes(frame);
    command->footer(
        "Colours are full-range BT.601. Examples:\n"
        "  ffmpeg -i clip.mp4 -pix_fmt yuvj444p -strict -1 clip.y4m\n"
        "  qorv convert clip.y4m first.png\n"
        "  qorv convert clip.y4m small.png --format rgb565 --size 320x180 --frame 10\n"
        "  qorv convert picture.png picture.y4m");
    command->callback([options] { convert_command(*options); });
}

}  // namespace tool
