// Files of one picture: which there are, and how they are read and written.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "tools/base/input.h"
#include "tools/picture/picture.h"

namespace tool {

enum class FileKind : uint8_t { kUnknown, kPng, kJpeg, kPpm, kPgm, kY4m };

// By the extension of a name, in any letter case.
FileKind kind_of_name(const std::string &path);
// By "png", "jpeg", "ppm", "pgm" or "y4m".
FileKind kind_of_word(const std::string &word);
std::vector<std::string> kind_words();
// By a file's first bytes. Both sorts of PNM give kPpm.
FileKind kind_of_data(std::span<const uint8_t> data);

// Called with the rows that are done and all rows, while a picture is coded.
using RowReport = std::function<void(uint32_t rows, uint32_t all)>;

// Any of them, brought to 8 bits. What a file holds beside the picture (gamma, profiles, orientation) is not looked at.
Picture read_picture(Input &input, const RowReport &report = {});
Picture read_picture(const std::string &path, const RowReport &report = {});

// The bytes of a file. JPEG and PPM drop alpha, PGM drops colour. `quality` is JPEG's, 1 to 100.
std::vector<uint8_t> encode_picture(const Picture &picture, FileKind kind, int quality, const RowReport &report = {});

// One each: the reader gets a file whose first bytes are right, the writer a picture with channels that it knows.
Picture read_png(Input &input, const RowReport &report);
Picture read_jpeg(Input &input, const RowReport &report);
Picture read_pnm(Input &input, const RowReport &report);
std::vector<uint8_t> encode_png(const Picture &picture, const RowReport &report);
std::vector<uint8_t> encode_jpeg(const Picture &picture, int quality, const RowReport &report);
std::vector<uint8_t> encode_pnm(const Picture &picture);

}  // namespace tool
