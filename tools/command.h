// What the commands of the program share: how they are added and how they fail.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace tool {

// A failure to report to the user: the text names the file, the place in it and the reason. Exit code 1.
struct Error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

inline Error error_at(const std::string &path, uint64_t offset, const std::string &reason) {
    return Error(path + ": at byte " + std::to_string(offset) + ": " + reason);
}

// A failure of the command line itself. Exit code 2.
inline CLI::ValidationError usage_error(const std::string &reason) {
    return CLI::ValidationError(reason);
}

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
