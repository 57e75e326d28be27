// qorv convert: between streams of video and pictures.
#include "tools/commands/convert.h"

#include <unistd.h>

#include <cinttypes>
#include <cmath>
#include <cstdio>

#include "tools/commands/command.h"
#include "tools/commands/numbered.h"
#include "tools/picture/pixel_format.h"

namespace tool {

namespace {

// "25", "30000/1001" or "29.97".
void parse_rate(const std::string &text, uint32_t &num, uint32_t &den) {
    const size_t slash = text.find_first_of("/:");
    if (slash != std::string::npos) {
        if (parse_number(text.substr(0, slash), num) && parse_number(text.substr(slash + 1), den) && num != 0 &&
            den != 0)
            return;
    } else {
        char *end = nullptr;
        const double rate = std::strtod(text.c_str(), &end);
        if (!text.empty() && *end == '\0' && rate >= 0.001 && rate <= 1e6) {
            den = rate == std::floor(rate) ? 1 : 1000;
            num = static_cast<uint32_t>(std::lround(rate * den));
            return;
        }
    }
    throw UsageError("--fps " + text + ": frames a second are wanted, as 25, 29.97 or 30000/1001");
}

// Everything that can be told from the command line alone.
void check_options(ConvertOptions &options) {
    need(options.in, "IN");
    need(options.out, "OUT");
    check_video_options(options.video);
    options.kind = options.to.empty() ? kind_of_name(options.out) : kind_of_word(options.to);
    if (options.kind == FileKind::kUnknown) {
        throw UsageError(options.out + ": give OUT.png, .jpg, .ppm, .pgm or .y4m, or say --to png|jpeg|ppm|pgm|y4m");
    }
    if (!options.to.empty() && options.out != "-" && kind_of_name(options.out) != FileKind::kUnknown &&
        kind_of_name(options.out) != options.kind) {
        throw UsageError(options.out + ": the name says something else than --to " + options.to);
    }
    if (!options.size.empty()) parse_size(options.size, options.width, options.height);
    if (!options.fps.empty()) parse_rate(options.fps, options.rate_num, options.rate_den);
    if (options.many_out() && options.out == "-")
        throw UsageError("--all: numbered pictures are not written to standard output");
}

void check_picture_options(const ConvertOptions &options) {
    if (options.width != 0) throw UsageError("--size: pictures are resized by 'qorv resize'");
    if (options.kind != FileKind::kY4m && !options.many_in() && options.many_out()) {
        throw UsageError(options.in + ": is one picture; --all is for streams and numbered pictures");
    }
}

ConvertReport run(ConvertOptions &options) {
    if (options.many_in()) {
        check_picture_options(options);
        return options.kind == FileKind::kY4m ? pictures_to_video(nullptr, options)
                                              : pictures_to_pictures(nullptr, options);
    }
    Input input(options.in);
    const FileKind found = options.video.raw_size.empty() ? kind_of_data(input.peek()) : FileKind::kY4m;
    if (found == FileKind::kUnknown) {
        throw error_at(
            options.in, 0,
            input.peek().empty() ? "the file is empty" : "no YUV4MPEG2 stream and no PNG, JPEG, PPM or PGM picture");
    }
    if (found != FileKind::kY4m) {
        check_picture_options(options);
        return options.kind == FileKind::kY4m ? pictures_to_video(&input, options)
                                              : pictures_to_pictures(&input, options);
    }
    VideoReader reader(std::move(input), options.video);
    return options.kind == FileKind::kY4m ? video_to_video(reader, options) : video_to_pictures(reader, options);
}

// On standard output, unless the result itself goes there.
void print_report(const ConvertReport &report, const ConvertOptions &options) {
    const bool taken = options.out == "-";
    std::FILE *const to = taken ? stderr : stdout;
    const auto frames = static_cast<double>(report.frames);
    if (options.json) {
        std::fprintf(to,
                     "{\"frames\": %" PRIu64
                     ", \"width\": %u, \"height\": %u, \"format\": %s, \"converter_seconds\": %.6f}\n",
                     report.frames, report.width, report.height,
                     report.layout.empty() ? "null" : json_string(report.layout).c_str(), report.seconds);
        return;
    }
    if (taken || options.quiet) return;
    std::printf("%" PRIu64 " frame%s %ux%u", report.frames, report.frames == 1 ? "" : "s", report.width, report.height);
    if (!report.layout.empty()) {
        std::printf(" %s: %.3f ms a frame, %.0f megapixels/s in the converter", report.layout.c_str(),
                    1e3 * report.seconds / frames, 1e-6 * frames * report.width * report.height / report.seconds);
    }
    std::printf("\n");
}

}  // namespace

bool ConvertOptions::many_out() const {
    return kind != FileKind::kY4m && (all || NumberedName::has_number(out));
}

bool ConvertOptions::many_in() const {
    if (in == "-" || !video.raw_size.empty() || access(in.c_str(), F_OK) == 0) return false;
    return NumberedName::has_number(in) ||
           (all && kind_of_name(in) != FileKind::kUnknown && kind_of_name(in) != FileKind::kY4m);
}

void add_convert_command(CLI::App &app) {
    auto options = std::make_shared<ConvertOptions>();
    Command command(app, "convert", "Convert between streams of video and pictures", *options);
    command.add_argument(
        "IN", options->in,
        "Y4M stream, raw planes, or PNG, JPEG, PPM or PGM picture ('-': standard input).\nframe-%03d.png: "
        "numbered pictures");
    command.add_argument("OUT", options->out, "What to write, by its extension ('-': standard output, with --to)");
    command.add_choice("--to", "png|jpeg|ppm|pgm|y4m", options->to, kind_words(),
                       "What to write, where the name does not tell");
    command.add_choice("--format", "LAYOUT", options->layout, pixel_format_names(),
                       "RGB layout to convert through: the picture shows what the converter made of it.\n"
                       "rgb888, rgba8888, bgra8888, argb8888 (from streams with alpha), rgb565, r8g8b8, r10g10b10.\n"
                       "Default: rgb888, rgba8888 with alpha, r10g10b10 above 8 bits");
    command.add_option("--size", "WxH", options->size, "Scale a stream's frames to this size");
    command.add_number("--frame", "N", options->frame, uint64_t{0}, uint64_t{UINT32_MAX},
                       "Which frame, counted from 0 (default: 0; to Y4M: all)");
    command.add_flag("--all", options->all,
                     "Every frame, to OUT-00000.png, OUT-00001.png, ...; of IN.png: IN-00000.png, ...");
    command.exclude("--all", "--frame");
    command.add_option("--fps", "RATE", options->fps,
                       "Frames a second of a stream to write: 25, 29.97, 30000/1001 (default: IN's, or 25)");
    command.add_video_options(options->video, true);
    command.add_quality(options->quality);
    command.add_threads(options->threads);
    command.set_footer(
        "Colours are BT.601; limited range is expanded. Examples:\n"
        "  ffmpeg -i clip.mp4 clip.y4m && qorv convert clip.y4m first.png\n"
        "  ffmpeg -i clip.mp4 -f yuv4mpegpipe - | qorv convert - frame.jpg --all\n"
        "  qorv convert clip.y4m small.png --format rgb565 --size 320x180 --frame 10\n"
        "  qorv convert clip.y4m small.y4m --size 640x360\n"
        "  qorv convert frame-%05d.png clip.y4m --fps 25");
    command.set_action([options, command] {
        check_options(*options);
        options->every_frame = options->kind == FileKind::kY4m ? !command.has("--frame") : options->many_out();
        print_report(run(*options), *options);
    });
}

}  // namespace tool
