// What a command says besides its result: progress on a terminal, warnings, and whether the result is JSON.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace tool {

// The options that every command has.
struct Verbosity {
    bool quiet = false;  // no progress, no warnings, no figures beside the result
    bool json = false;
};

// "qorv: warning: ..." on standard error.
void warn(const Verbosity &verbosity, const std::string &text);

// A line on standard error, where that is a terminal, for work that takes longer than a second: what has been done, how
// fast, and how much time is left where the end is known. It is wiped out at the end.
class Progress {
public:
    Progress(const Verbosity &verbosity, const char *unit);  // "frames"
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    // `done` units; `part` of all the work, 0 to 1, where that is known.
    void update(uint64_t done, std::optional<double> part);
    // The same where bytes of a known number tell the part.
    void update(uint64_t done, uint64_t bytes, std::optional<uint64_t> all_bytes);

private:
    using Clock = std::chrono::steady_clock;
    bool enabled_, shown_ = false;
    const char *unit_;
    Clock::time_point start_, next_;
};

}  // namespace tool
