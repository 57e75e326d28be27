// What the commands of the program share: how they are added and what they say.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>

#include "tools/base/error.h"
#include "tools/base/report.h"
#include "tools/base/text.h"
#include "tools/video/reader.h"

namespace tool {

// A command with --quiet and --json.
CLI::App *add_command(CLI::App &app, const char *name, const char *summary, Verbosity &verbosity);

// Options and their names in the help. What must be given is checked by need(), when everything else is known to be
// right: a wrong option is named before a missing one.
template <class T>
CLI::Option *add_argument(CLI::App *command, const char *name, T &value, const char *help) {
    return command->add_option(name, value, help);
}
template <class T>
CLI::Option *add_option(CLI::App *command, const char *name, const char *text, T &value, const std::string &help) {
    return command->add_option(name, value, help)->option_text(text);
}
CLI::Option *add_choice(CLI::App *command, const char *name, const char *text, std::string &value,
                        const std::vector<std::string> &choices, const std::string &help);
void add_threads(CLI::App *command, int &threads);
void add_video_options(CLI::App *command, VideoOptions &video, bool with_range);
void need(const std::string &value, const char *name);
void check_video_options(const VideoOptions &video);

// The value of --size, WIDTHxHEIGHT; anything else is a usage error.
void parse_size(const std::string &text, uint32_t &width, uint32_t &height);

// Each adds one command, with its options and help, to the program.
void add_compare_command(CLI::App &app);
void add_convert_command(CLI::App &app);
void add_headers_command(CLI::App &app);
void add_keyframes_command(CLI::App &app);
void add_md5_command(CLI::App &app);
void add_resize_command(CLI::App &app);

}  // namespace tool
