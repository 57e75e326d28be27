// What a test is at, said when it fails or crashes: one line for each `Doing` in scope, outermost first.
#pragma once

namespace test {

class Doing {
public:
    // printf's format and arguments, cut off at the line's size: the member, the size, the arrangement.
    [[gnu::format(printf, 2, 3)]] explicit Doing(const char *format, ...);
    ~Doing();
    Doing(const Doing &) = delete;
    Doing &operator=(const Doing &) = delete;

    const char *line() const { return line_; }
    const Doing *outer() const { return outer_; }

private:
    char line_[200];
    const Doing *outer_;
};

// The calling thread's innermost, or null.
const Doing *doing();

// Prints the running test's name, what the crashing thread is doing and the seed when a signal ends the program (SEGV,
// BUS, ILL, FPE, ABRT; ALRM, which every test raises that runs for 20 minutes), the doing also with every failure.
// Gives each test a generator of its own, see random.h. To be called once, before the tests run.
void report_crashes_and_seeds();

}  // namespace test
