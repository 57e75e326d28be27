#include "tools/base/input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "tools/base/error.h"

namespace tool {

namespace {

constexpr size_t kBufferBytes = 1 << 16;

}  // namespace

Descriptor::~Descriptor() {
    if (fd_ > STDIN_FILENO) close(fd_);
}

Descriptor open_input(const std::string &path) {
    const int fd = path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) throw Error(path + ": cannot be opened: " + std::strerror(errno));
    return Descriptor(fd);
}

Input::Input(const std::string &path) : path_(path), fd_(open_input(path)), buffer_(kBufferBytes) {
    struct stat status;
    if (fstat(fd_, &status) == 0 && S_ISREG(status.st_mode)) {
        const off_t begin = lseek(fd_, 0, SEEK_CUR);
        size_ = static_cast<uint64_t>(std::max<off_t>(0, status.st_size - std::max<off_t>(0, begin)));
    }
}

size_t Input::read_some(void *to, size_t bytes) {
    for (;;) {
        const ssize_t got = ::read(fd_, to, bytes);
        if (got >= 0) return static_cast<size_t>(got);
        if (errno != EINTR) {
            throw error_at(path_, taken_ + filled_, std::string("cannot be read: ") + std::strerror(errno));
        }
    }
}

bool Input::fill() {
    taken_ += filled_;
    at_ = filled_ = 0;
    filled_ = read_some(buffer_.data(), buffer_.size());
    return filled_ != 0;
}

size_t Input::read(void *to, size_t bytes) {
    auto *const out = static_cast<uint8_t *>(to);
    size_t done = std::min(bytes, filled_ - at_);
    std::memcpy(out, buffer_.data() + at_, done);
    at_ += done;
    while (done < bytes) {
        taken_ += filled_;
        at_ = filled_ = 0;
        const size_t got = read_some(out + done, bytes - done);
        if (got == 0) break;
        taken_ += got;
        done += got;
    }
    return done;
}

std::vector<uint8_t> Input::read_all(uint64_t most) {
    std::vector<uint8_t> data;
    while (data.size() < most) {
        const size_t had = data.size();
        const size_t wanted = static_cast<size_t>(std::min<uint64_t>(std::max(kBufferBytes, had), most - had));
        data.resize(had + wanted);
        const size_t got = read(data.data() + had, wanted);
        data.resize(had + got);
        if (got != wanted) break;
    }
    return data;
}

std::span<const uint8_t> Input::peek() {
    if (at_ != 0) std::memmove(buffer_.data(), buffer_.data() + at_, filled_ - at_);
    taken_ += at_;
    filled_ -= at_;
    at_ = 0;
    while (filled_ < kPeek) {
        const size_t got = read_some(buffer_.data() + filled_, kPeek - filled_);
        if (got == 0) break;
        filled_ += got;
    }
    return {buffer_.data(), std::min(filled_, kPeek)};
}

}  // namespace tool
