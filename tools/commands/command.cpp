#include "tools/commands/command.h"

#include <CLI/CLI.hpp>
#include <utility>

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

Command::Command(CLI::App &app, const char *name, const char *summary, Verbosity &verbosity)
    : command_(app.add_subcommand(name, summary)) {
    command_->formatter(std::make_shared<HelpFormatter>());
    add_flag("--quiet", verbosity.quiet, "No progress, no warnings, no figures beside the result");
    add_flag("--json", verbosity.json, "Print JSON");
}

void Command::add_argument(const char *name, std::string &value, const char *help) {
    command_->add_option(name, value, help);
}

void Command::add_option(const char *name, const char *text, std::string &value, const char *help) {
    command_->add_option(name, value, help)->option_text(text);
}

void Command::add_choice(const char *name, const char *text, std::string &value,
                         const std::vector<std::string> &choices, const char *help) {
    command_->add_option(name, value, help)->option_text(text)->check(CLI::IsMember(choices));
}

template <class T>
void Command::add_number(const char *name, const char *text, T &value, T least, T most, const char *help) {
    command_->add_option(name, value, help)->option_text(text)->check(CLI::Range(least, most));
}
template void Command::add_number(const char *, const char *, int &, int, int, const char *);
template void Command::add_number(const char *, const char *, uint32_t &, uint32_t, uint32_t, const char *);
template void Command::add_number(const char *, const char *, uint64_t &, uint64_t, uint64_t, const char *);

void Command::add_flag(const char *name, bool &value, const char *help) {
    command_->add_flag(name, value, help);
}

void Command::add_threads(int &threads) {
    threads = processor_count();
    add_number("--threads", "N", threads, 1, kMostThreads, "Threads that do the work (default: the processors)");
}

void Command::add_quality(int &quality) {
    add_number("--quality", "Q", quality, 1, 100, "Of JPEG, 1 to 100 (default: 90)");
}

void Command::add_video_options(VideoOptions &video, bool with_range) {
    add_option("--raw", "WxH", video.raw_size, "The stream is raw planes of this size");
    add_option("--pix", "FORMAT", video.raw_pixels,
               "Their format, by FFmpeg's name: yuv420p, yuv422p, yuv444p, yuv411p, yuv440p, yuva444p, gray;\n"
               "yuvj...: full range; yuv420p10le, gray12le, ...: 9 to 16 bits");
    if (!with_range) return;
    add_choice("--range", "full|limited", video.range, {"full", "limited"},
               "The range of the stream's samples. Default: as the stream says; without a word\n"
               "limited where chroma is subsampled, else full");
}

void Command::exclude(const char *name, const char *other) {
    command_->get_option(name)->excludes(command_->get_option(other));
}

bool Command::has(const char *name) const {
    return command_->count(name) > 0;
}

void Command::set_footer(const char *text) {
    command_->footer(text);
}

void Command::set_action(std::function<void()> action) {
    command_->callback(std::move(action));
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
