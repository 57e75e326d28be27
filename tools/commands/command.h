// What the commands of the program share: how they are added and what they say.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tools/base/error.h"
#include "tools/base/report.h"
#include "tools/base/text.h"
#include "tools/video/reader.h"

namespace CLI {
class App;
}

namespace tool {

// One command of the program: its options, their names in the help, and what it does. CLI11 itself, which takes long
// to compile, stays in two sources. What must be given is checked by need(), when everything else is known to be right:
// a wrong option is named before a missing one.
class Command {
public:
    // With --quiet and --json.
    Command(CLI::App &app, const char *name, const char *summary, Verbosity &verbosity);

    void add_argument(const char *name, std::string &value, const char *help);
    void add_option(const char *name, const char *text, std::string &value, const char *help);
    void add_choice(const char *name, const char *text, std::string &value, const std::vector<std::string> &choices,
                    const char *help);
    template <class T>  // int, uint32_t or uint64_t
    void add_number(const char *name, const char *text, T &value, T least, T most, const char *help);
    void add_flag(const char *name, bool &value, const char *help);
    void add_threads(int &threads);
    void add_quality(int &quality);
    void add_video_options(VideoOptions &video, bool with_range);

    void exclude(const char *name, const char *other);  // one or the other may be given
    bool has(const char *name) const;                   // whether it was given
    void set_footer(const char *text);
    void set_action(std::function<void()> action);  // runs while the line is parsed

private:
    CLI::App *command_;
};

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
