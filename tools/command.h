// What the commands of the program share: how they are added and how they fail.
#pragma once

#include <CLI/CLI.hpp>
#include <stdexcept>
#include <string>

namespace tool {

// A failure to report to the user: the text names the file, the place in it and the reason. Exit code 1.
struct Error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Each adds one command, with its options and help, to the program.
void add_convert_command(CLI::App &app);

}  // namespace tool
