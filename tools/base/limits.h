// What the program takes as a picture.
#pragma once

#include <cstdint>
#include <string>

#include "tools/base/error.h"

namespace tool {

constexpr uint32_t kMaxSide = 32768;  // pixels

inline std::string size_text(uint32_t width, uint32_t height) {
    return std::to_string(width) + "x" + std::to_string(height);
}

inline void check_sides(const std::string &path, uint64_t width, uint64_t height) {
    if (width == 0 || height == 0) throw Error(path + ": a picture without width or height");
    if (width > kMaxSide || height > kMaxSide) {
        throw Error(path + ": absurd size " + std::to_string(width) + "x" + std::to_string(height) +
                    " (at most 32768 a side)");
    }
}

}  // namespace tool
