#include "tools/commands/command.h"

#include "tools/base/pipeline.h"

namespace tool {

namespace {

constexpr int kMostThreads = 256;

// The options' own words for their values, and no brackets around arguments that must be given.
class HelpFormatter : public CLI::Formatter {
public:
    std::string make_option_opts(const CLI::Option *option) const override {
        return option->get_option_text().empty() ? "" : " " + option->get_option_text();
    }
    std::string make_option_usage(const CLI::Option *option) const override { return option->get_name(true); }
};

}  // namespace

CLI::App *add_command(CLI::App &app, const char *name, const char *summary, Verbosity &verbosity) {
    CLI::App *const command = app.add_subcommand(name, summary);
    command->formatter(std::make_shared<HelpFormatter>());
    command->add_flag("--quiet", verbosity.quiet, "No progress, no warnings, no figures beside the result");
    command->add_flag("--json", verbosity.json, "Print JSON");
    return command;
}

CLI::Option *add_choice(CLI::App *command, const char *name, const char *text, std::string &value,
                        const std::vector<std::string> &choices, const std::string &help) {
    return add_option(command, name, text, value, help)->check(CLI::IsMember(choices));
}

void add_threads(CLI::App *command, int &threads) {
    threads = processor_count();
    add_option(command, "--threads", "N", threads, "Threads that do the work (default: the processors)")
        ->check(CLI::Range(1, kMostThreads));
}

void add_video_options(CLI::App *command, VideoOptions &video, bool with_range) {
    add_option(command, "--raw", "WxH", video.raw_size, "The stream is raw planes of this size");
    add_option(command, "--pix", "FORMAT", video.raw_pixels,
               "Their format, by FFmpeg's name: yuv420p, yuv422p, yuv444p, yuv411p, yuv440p, yuva444p, gray;\n"
               "yuvj...: full range; yuv420p10le, gray12le, ...: 9 to 16 bits");
    if (!with_range) return;
    add_choice(command, "--range", "full|limited", video.range, {"full", "limited"},
               "The range of the stream's samples. Default: as the stream says; without a word\n"
               "limited where chroma is subsampled, else full");
}

void need(const std::string &value, const char *name) {
    if (value.empty()) throw UsageError(std::string(name) + " is required");
}

void check_video_options(const VideoOptions &video) {
    if (video.raw_size.empty() != video.raw_pixels.empty()) throw UsageError("--raw and --pix need each other");
    if (video.raw_size.empty()) return;
    VideoFormat format;
    uint32_t width, height;
    if (!parse_dimensions(video.raw_size, width, height)) {
        throw UsageError("--raw " + video.raw_size + ": WIDTHxHEIGHT is wanted, each from 1 to 32768");
    }
    if (!set_raw_pixels(format, video.raw_pixels)) {
        throw UsageError("--pix " + video.raw_pixels +
                         ": unknown format; yuv420p, yuv444p10le, gray and their like are known");
    }
}

void parse_size(const std::string &text, uint32_t &width, uint32_t &height) {
    if (!parse_dimensions(text, width, height)) {
        throw UsageError("--size " + text + ": WIDTHxHEIGHT is wanted, each from 1 to 32768");
    }
}

}  // namespace tool
