#include "tools/picture/picture_file.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string_view>

#include "tools/base/error.h"

namespace tool {

namespace {

struct Extension {
    const char *text;
    FileKind kind;
};

constexpr Extension kExtensions[] = {
    {"png", FileKind::kPng}, {"jpeg", FileKind::kJpeg}, {"jpg", FileKind::kJpeg},
    {"ppm", FileKind::kPpm}, {"pgm", FileKind::kPgm},   {"y4m", FileKind::kY4m},
};

bool begins(std::span<const uint8_t> data, std::string_view text) {
    return data.size() >= text.size() && std::memcmp(data.data(), text.data(), text.size()) == 0;
}

}  // namespace

FileKind kind_of_name(const std::string &path) {
    const size_t dot = path.find_last_of("./");
    if (dot == std::string::npos || path[dot] != '.') return FileKind::kUnknown;
    std::string extension = path.substr(dot + 1);
    for (char &c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return kind_of_word(extension);
}

FileKind kind_of_word(const std::string &word) {
    for (const Extension &known : kExtensions) {
        if (word == known.text) return known.kind;
    }
    return FileKind::kUnknown;
}

std::vector<std::string> kind_words() {
    return {"png", "jpeg", "ppm", "pgm", "y4m"};
}

FileKind kind_of_data(std::span<const uint8_t> data) {
    if (begins(data, "\x89PNG\r\n\x1a\n")) return FileKind::kPng;
    if (begins(data, "\xff\xd8\xff")) return FileKind::kJpeg;
    if (begins(data, "YUV4MPEG2")) return FileKind::kY4m;
    for (const char *const pnm : {"P2", "P3", "P5", "P6"}) {
        if (begins(data, pnm)) return FileKind::kPpm;
    }
    return FileKind::kUnknown;
}

Picture read_picture(Input &input, const RowReport &report) {
    switch (kind_of_data(input.peek())) {
        case FileKind::kPng:
            return read_png(input, report);
        case FileKind::kJpeg:
            return read_jpeg(input, report);
        case FileKind::kPpm:
            return read_pnm(input, report);
        default:
            throw error_at(input.path(), 0,
                           input.peek().empty() ? "the file is empty" : "no PNG, JPEG, PPM or PGM picture");
    }
}

Picture read_picture(const std::string &path, const RowReport &report) {
    Input input(path);
    return read_picture(input, report);
}

std::vector<uint8_t> encode_picture(const Picture &picture, FileKind kind, int quality, const RowReport &report) {
    const int channels = kind == FileKind::kPgm                             ? 1
                         : kind == FileKind::kPpm                           ? 3
                         : kind == FileKind::kJpeg && picture.channels == 4 ? 3
                                                                            : picture.channels;
    if (channels != picture.channels) return encode_picture(with_channels(picture, channels), kind, quality, report);
    switch (kind) {
        case FileKind::kPng:
            return encode_png(picture, report);
        case FileKind::kJpeg:
            return encode_jpeg(picture, quality, report);
        default:
            return encode_pnm(picture);
    }
}

}  // namespace tool
