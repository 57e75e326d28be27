#include "tools/base/report.h"

#include <unistd.h>

#include <cinttypes>
#include <cmath>
#include <cstdio>

#include "tools/base/text.h"

namespace tool {

namespace {

constexpr std::chrono::milliseconds kFirst{1000}, kEvery{200};

}  // namespace

void warn(const Verbosity &verbosity, const std::string &text) {
    if (!verbosity.quiet) std::fprintf(stderr, "qorv: warning: %s\n", printable(text).c_str());
}

Progress::Progress(const Verbosity &verbosity, const char *unit)
    : enabled_(!verbosity.quiet && isatty(STDERR_FILENO) != 0),
      unit_(unit),
      start_(Clock::now()),
      next_(start_ + kFirst) {}

Progress::~Progress() {
    if (shown_) std::fputs("\r\033[K", stderr);
}

void Progress::update(uint64_t done, std::optional<double> part) {
    if (!enabled_) return;
    const Clock::time_point now = Clock::now();
    if (now < next_) return;
    next_ = now + kEvery;
    shown_ = true;
    const double seconds = std::chrono::duration<double>(now - start_).count();
    std::fprintf(stderr, "\r%" PRIu64 " %s, %.1f a second", done, unit_, static_cast<double>(done) / seconds);
    if (part && *part > 0) {
        const auto left = static_cast<uint64_t>(std::llround(seconds * (1 - *part) / *part));
        std::fprintf(stderr, ", %.0f %%, %" PRIu64 ":%02" PRIu64 " left", 100 * *part, left / 60, left % 60);
    }
    std::fputs("\033[K", stderr);
    std::fflush(stderr);
}

void Progress::update(uint64_t done, uint64_t bytes, std::optional<uint64_t> all_bytes) {
    const bool known = all_bytes && *all_bytes != 0 && bytes <= *all_bytes;
    update(done, known ? std::optional(static_cast<double>(bytes) / static_cast<double>(*all_bytes)) : std::nullopt);
}

}  // namespace tool
