// PPM and PGM, binary and as text, up to 16 bits a sample.
#include <algorithm>

#include "tools/base/error.h"
#include "tools/base/limits.h"
#include "tools/picture/picture_file.h"

namespace tool {

namespace {

[[noreturn]] void fail(const Input &input, const std::string &reason) {
    throw error_at(input.path(), input.offset(), "PNM: " + reason);
}

bool is_space(int c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// A number and the one white space behind it. Comments reach from '#' to the end of their line.
uint32_t read_number(Input &input, uint32_t most) {
    int c = input.get();
    for (; is_space(c) || c == '#'; c = input.get()) {
        while (c == '#' && (c = input.get()) != '\n') {
            if (c < 0) fail(input, "the file ends in a comment");
            c = '#';
        }
    }
    if (c < '0' || c > '9') fail(input, c < 0 ? "the file is truncated" : "a number was expected");
    uint32_t value = 0;
    for (; c >= '0' && c <= '9'; c = input.get()) {
        value = 10 * value + static_cast<uint32_t>(c - '0');
        if (value > most) fail(input, "a number is larger than " + std::to_string(most));
    }
    if (c >= 0 && !is_space(c)) fail(input, "white space was expected");
    return value;
}

struct Header {
    bool text;
    uint32_t most;  // the value of full scale
};

uint8_t to_8_bits(uint32_t value, uint32_t most) {
    return static_cast<uint8_t>((std::min(value, most) * 255 + most / 2) / most);
}

void read_row(Input &input, const Header &header, uint8_t *row, size_t samples) {
    if (header.text) {
        for (size_t i = 0; i < samples; i++) row[i] = to_8_bits(read_number(input, header.most), header.most);
        return;
    }
    const size_t width = header.most > 255 ? 2 : 1;
    std::vector<uint8_t> words(width == 2 ? 2 * samples : 0);
    uint8_t *const to = width == 2 ? words.data() : row;
    if (input.read(to, width * samples) != width * samples) fail(input, "the file is truncated");
    if (header.most == 255) return;
    for (size_t i = 0; i < samples; i++) {
        const uint32_t value = width == 2 ? static_cast<uint32_t>(to[2 * i] << 8 | to[2 * i + 1]) : to[i];
        row[i] = to_8_bits(value, header.most);
    }
}

}  // namespace

Picture read_pnm(Input &input, const RowReport &report) {
    input.get();
    const int kind = input.get();  // P2 and P3 are text, P2 and P5 gray
    Picture picture;
    picture.channels = kind == '2' || kind == '5' ? 1 : 3;
    picture.width = read_number(input, UINT16_MAX);
    picture.height = read_number(input, UINT16_MAX);
    check_sides(input.path(), picture.width, picture.height);
    const Header header = {kind == '2' || kind == '3', read_number(input, UINT16_MAX)};
    if (header.most == 0) fail(input, "full scale is 0");
    for (uint32_t y = 0; y < picture.height; y++) {
        picture.pixels.resize((y + 1) * picture.row_bytes());
        read_row(input, header, &picture.pixels[y * picture.row_bytes()], picture.row_bytes());
        if (report) report(y, picture.height);
    }
    return picture;
}

std::vector<uint8_t> encode_pnm(const Picture &picture) {
    const std::string header = (picture.channels == 1 ? "P5\n" : "P6\n") + std::to_string(picture.width) + " " +
                               std::to_string(picture.height) + "\n255\n";
    std::vector<uint8_t> file(header.begin(), header.end());
    file.insert(file.end(), picture.pixels.begin(), picture.pixels.end());
    return file;
}

}  // namespace tool
