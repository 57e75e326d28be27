#include "tools/base/output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "tools/base/error.h"

namespace tool {

namespace {

constexpr int kEndingSignals[] = {SIGHUP, SIGINT, SIGTERM};

// The one file that is being written: what a signal handler has to remove. Files are written one at a time.
char unfinished_path[PATH_MAX];
std::atomic<bool> unfinished;

void end_by(int signal) {
    if (unfinished) unlink(unfinished_path);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

sigset_t ending_signals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : kEndingSignals) sigaddset(&set, signal);
    return set;
}

// Holds the ending signals back, between making a file and noting it.
class SignalsHeld {
public:
    SignalsHeld() {
        const sigset_t set = ending_signals();
        pthread_sigmask(SIG_BLOCK, &set, &before_);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsHeld(const SignalsHeld &) = delete;
    SignalsHeld &operator=(const SignalsHeld &) = delete;

private:
    sigset_t before_;
};

uint32_t mode_of_new_files() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// Where links lead, also to a file that is not there yet. At most as many links as the system follows.
std::string behind_links(const std::string &path) {
    constexpr int kMostLinks = 40;
    std::filesystem::path at = path;
    std::error_code error;
    for (int i = 0; i < kMostLinks && std::filesystem::is_symlink(at, error); i++) {
        const std::filesystem::path to = std::filesystem::read_symlink(at, error);
        at = to.is_absolute() ? to : at.parent_path() / to;
    }
    return at.string();
}

}  // namespace

void remove_unfinished_files_on_signals() {
    struct sigaction action = {};
    action.sa_handler = end_by;
    action.sa_mask = ending_signals();
    for (const int signal : kEndingSignals) {
        struct sigaction before;
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
            sigaction(signal, &action, nullptr);
        }
    }
}

OutputFile::OutputFile(const std::string &path) : path_(path), target_(path == "-" ? path : behind_links(path)) {
    struct stat status;
    if (path == "-") {
        fd_ = STDOUT_FILENO;
    } else if (stat(target_.c_str(), &status) != 0) {
        create_beside();
    } else if (S_ISREG(status.st_mode)) {
        if (access(target_.c_str(), W_OK) != 0) fail(errno);
        replaces_ = true;
        mode_ = status.st_mode & 07777;
        create_beside();
    } else {
        fd_ = open(target_.c_str(), O_WRONLY | O_CLOEXEC);
        if (fd_ < 0) fail(errno);
    }
}

void OutputFile::create_beside() {
    const size_t slash = target_.find_last_of('/');
    std::string name = (slash == std::string::npos ? "" : target_.substr(0, slash + 1)) + ".qorv-XXXXXX";
    if (name.size() >= sizeof unfinished_path) fail(ENAMETOOLONG);
    const SignalsHeld held;
    fd_ = mkostemp(name.data(), O_CLOEXEC);
    if (fd_ < 0) fail(errno);
    temporary_ = name;
    std::memcpy(unfinished_path, name.c_str(), name.size() + 1);
    unfinished = true;
}

void OutputFile::discard() {
    if (fd_ > STDOUT_FILENO) close(fd_);
    fd_ = -1;
    if (temporary_.empty()) return;
    const SignalsHeld held;
    unlink(temporary_.c_str());
    unfinished = false;
    temporary_.clear();
}

OutputFile::~OutputFile() {
    discard();
}

void OutputFile::fail(int error) {
    discard();
    throw Error((path_ == "-" ? "standard output" : path_) + ": cannot be written: " + std::strerror(error));
}

void OutputFile::write(std::span<const uint8_t> data) {
    while (!data.empty()) {
        const ssize_t done = ::write(fd_, data.data(), data.size());
        if (done < 0 && errno == EINTR) continue;
        if (done < 0) fail(errno);
        data = data.subspan(static_cast<size_t>(done));
    }
}

void OutputFile::write(const std::string &text) {
    write({reinterpret_cast<const uint8_t *>(text.data()), text.size()});
}

void OutputFile::commit() {
    if (temporary_.empty()) {
        const int fd = fd_;
        fd_ = -1;
        if (fd > STDOUT_FILENO && close(fd) != 0) fail(errno);
        return;
    }
    if (fchmod(fd_, replaces_ ? mode_ : mode_of_new_files()) != 0) fail(errno);
    // What is replaced must not be given up before its successor is on the disk.
    if (replaces_ && fsync(fd_) != 0) fail(errno);
    const int fd = fd_;
    fd_ = -1;
    if (close(fd) != 0) fail(errno);
    const SignalsHeld held;
    if (std::rename(temporary_.c_str(), target_.c_str()) != 0) fail(errno);
    unfinished = false;
    temporary_.clear();
}

void write_file(const std::string &path, std::span<const uint8_t> data) {
    OutputFile file(path);
    file.write(data);
    file.commit();
}

}  // namespace tool
