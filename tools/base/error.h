// How the program's parts fail.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace tool {

// A failure to report to the user: the text names the file, the place in it and the reason. Exit code 1.
struct Error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A failure of the command line itself. Exit code 2.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

inline Error error_at(const std::string &path, uint64_t offset, const std::string &reason) {
    return Error(path + ": at byte " + std::to_string(offset) + ": " + reason);
}

}  // namespace tool
