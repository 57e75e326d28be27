// Files that the program writes.
#pragma once

#include <cstdio>
#include <functional>
#include <string>

namespace tool {

// Has `write` fill the file, which appears whole or not at all: it is written under another name first. What exists and
// is no regular file, a pipe or a device, is written to as it is. `write` returns why it failed, or an empty text.
// Failures are thrown as an Error.
void write_file(const std::string &path, const std::function<std::string(std::FILE *)> &write);

}  // namespace tool
