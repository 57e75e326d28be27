// Files that the program reads from their beginning to their end, and standard input.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tool {

// A file descriptor, closed with the object unless it is standard input.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor &&other) noexcept : fd_(other.fd_) { other.fd_ = -1; }
    Descriptor &operator=(Descriptor &&) = delete;
    ~Descriptor();
    operator int() const { return fd_; }

private:
    int fd_;
};

// Opens for reading; "-" is standard input. Throws an Error.
Descriptor open_input(const std::string &path);

// Failures are thrown as an Error that names the file, the offset and the reason.
class Input {
public:
    explicit Input(const std::string &path);  // "-" is standard input
    Input(Input &&) = default;

    // The next byte, -1 at the end.
    int get() { return at_ < filled_ || fill() ? buffer_[at_++] : -1; }
    // Reads so many bytes; fewer only at the end.
    size_t read(void *to, size_t bytes);
    // Everything up to the end, or as many bytes.
    std::vector<uint8_t> read_all(uint64_t most = UINT64_MAX);
    // The bytes that come next, at most kPeek of them, without taking them.
    std::span<const uint8_t> peek();

    const std::string &path() const { return path_; }
    uint64_t offset() const { return taken_ + at_; }        // of the next byte
    std::optional<uint64_t> size() const { return size_; }  // of a file, unknown for a pipe
    // The open file, at a place behind the bytes that are still in the buffer; reading here is over.
    Descriptor take_descriptor() { return std::move(fd_); }
    size_t buffered() const { return filled_ - at_; }

    static constexpr size_t kPeek = 4096;

private:
    bool fill();
    size_t read_some(void *to, size_t bytes);

    std::string path_;
    Descriptor fd_;
    std::optional<uint64_t> size_;
    std::vector<uint8_t> buffer_;
    size_t at_ = 0, filled_ = 0;
    uint64_t taken_ = 0;  // bytes of the file before the buffer's first
};

}  // namespace tool
