#include "tools/command.h"

#include <cstdio>

namespace tool {

void parse_size(const std::string &text, uint32_t &width, uint32_t &height) {
    int end = 0;
    if (std::sscanf(text.c_str(), "%5ux%5u%n", &width, &height, &end) != 2 || static_cast<size_t>(end) != text.size() ||
        width == 0 || height == 0 || width > 32768 || height > 32768) {
        throw usage_error("--size " + text + ": WIDTHxHEIGHT is wanted, each from 1 to 32768");
    }
}

}  // namespace tool
