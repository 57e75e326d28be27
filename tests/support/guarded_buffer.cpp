#include "support/guarded_buffer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace test {

namespace {

constexpr uint8_t kCanary = 0xC7;

size_t page_size() {
    static const size_t size = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

}  // namespace

GuardedBuffer::GuardedBuffer(size_t bytes, Flush flush) : size_(bytes) {
    const size_t page = page_size();
    const size_t usable = std::max<size_t>(1, (bytes + page - 1) / page) * page;
    map_bytes_ = usable + 2 * page;
    void *map = mmap(nullptr, map_bytes_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (map == MAP_FAILED) abort();
    map_ = static_cast<uint8_t *>(map);
    if (mprotect(map_ + page, usable, PROT_READ | PROT_WRITE) != 0) abort();
    memset(map_ + page, kCanary, usable);
    data_ = flush == Flush::kEnd ? map_ + page + usable - bytes : map_ + page;
}

GuardedBuffer::~GuardedBuffer() {
    if (map_ != nullptr) munmap(map_, map_bytes_);
}

GuardedBuffer::GuardedBuffer(GuardedBuffer &&other) noexcept
    : map_(std::exchange(other.map_, nullptr)), map_bytes_(other.map_bytes_), data_(other.data_), size_(other.size_) {}

void GuardedBuffer::fill(uint8_t value) {
    memset(data_, value, size_);
}

void GuardedBuffer::assign(const std::vector<uint8_t> &bytes) {
    if (bytes.size() != size_) abort();
    if (size_ != 0) memcpy(data_, bytes.data(), size_);
}

void GuardedBuffer::protect(bool read_only) {
    const size_t page = page_size();
    const int access = read_only ? PROT_READ : PROT_READ | PROT_WRITE;
    if (mprotect(map_ + page, map_bytes_ - 2 * page, access) != 0) abort();
}

bool GuardedBuffer::slack_intact() const {
    const uint8_t *begin = map_ + page_size();
    const uint8_t *end = map_ + map_bytes_ - page_size();
    const auto canary = [](uint8_t byte) { return byte == kCanary; };
    return std::all_of<const uint8_t *>(begin, data_, canary) &&
           std::all_of<const uint8_t *>(data_ + size_, end, canary);
}

}  // namespace test
