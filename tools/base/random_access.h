// Files that are read here and there.
#pragma once

#include <cstdint>
#include <string>

#include "tools/base/input.h"

namespace tool {

// Offsets count from where the input stands. A pipe is copied into a temporary file without a name.
class RandomAccessFile {
public:
    explicit RandomAccessFile(Input input);

    uint64_t size() const { return size_; }
    // Throws an Error when the bytes are not there.
    void read(uint64_t offset, void *to, size_t bytes) const;

private:
    std::string path_;
    Descriptor fd_;
    uint64_t begin_ = 0;  // of the input in the file
    uint64_t size_;
};

}  // namespace tool
