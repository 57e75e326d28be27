// Memory that lies flush against an inaccessible page, so that one byte too far is a crash instead of luck. The slack
// on the other side, up to the page's beginning or end, holds canaries.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace test {

enum class Flush {
    kEnd,    // the byte after the last one is inaccessible
    kBegin,  // the byte before the first one is inaccessible
};
constexpr Flush kBothFlushes[] = {Flush::kEnd, Flush::kBegin};

class GuardedBuffer {
public:
    explicit GuardedBuffer(size_t bytes, Flush flush = Flush::kEnd);
    ~GuardedBuffer();
    GuardedBuffer(GuardedBuffer &&other) noexcept;
    GuardedBuffer(const GuardedBuffer &) = delete;
    GuardedBuffer &operator=(const GuardedBuffer &) = delete;

    uint8_t *data() const { return data_; }
    template <class T>
    T *as() const {
        return reinterpret_cast<T *>(data_);
    }
    size_t size() const { return size_; }

    // Every byte of the buffer set to `value`, or to bytes of a generator.
    void fill(uint8_t value);
    template <class Generator>
    void generate(Generator &&next) {
        for (size_t i = 0; i < size_; i++) data_[i] = static_cast<uint8_t>(next());
    }
    void assign(const std::vector<uint8_t> &bytes);
    std::vector<uint8_t> bytes() const { return {data_, data_ + size_}; }

    // An input is read-only while the code under test runs.
    void make_read_only() { protect(true); }
    void make_writable() { protect(false); }
    // True while the slack between the buffer and the accessible page's far end is untouched.
    bool slack_intact() const;

private:
    void protect(bool read_only);

    uint8_t *map_ = nullptr;
    size_t map_bytes_ = 0;
    uint8_t *data_ = nullptr;
    size_t size_ = 0;
};

}  // namespace test
