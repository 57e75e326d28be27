#include "tools/base/text.h"

#include <charconv>
#include <cstdio>

#include "tools/base/limits.h"

namespace tool {

namespace {

// Bytes of the UTF-8 sequence that the text begins with; 0 where it is none, or a control character (C1: U+0080 to
// U+009F, bytes C2 80 to C2 9F). Overlong forms are not looked for but in two bytes.
size_t visible_sequence(std::string_view text) {
    const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
    const uint8_t first = byte(0);
    if (first < 0x80) return first >= 0x20 && first != 0x7F ? 1 : 0;
    const size_t length = first >= 0xC2 && first < 0xE0   ? 2
                          : first >= 0xE0 && first < 0xF0 ? 3
                          : first >= 0xF0 && first < 0xF5 ? 4
                                                          : 0;
    if (length == 0 || text.size() < length) return 0;
    for (size_t i = 1; i < length; i++) {
        if ((byte(i) & 0xC0) != 0x80) return 0;
    }
    return first == 0xC2 && byte(1) < 0xA0 ? 0 : length;
}

std::string hexadecimal(char byte, const char *format) {
    char text[8];
    std::snprintf(text, sizeof text, format, static_cast<unsigned>(static_cast<uint8_t>(byte)));
    return text;
}

}  // namespace

std::string printable(std::string_view text) {
    std::string shown;
    for (size_t i = 0; i < text.size();) {
        const size_t length = text[i] == '\n' ? 1 : visible_sequence(text.substr(i));
        shown += length == 0 ? hexadecimal(text[i], "\\x%02x") : std::string(text.substr(i, length));
        i += length == 0 ? 1 : length;
    }
    return shown;
}

std::string json_string(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : printable(text)) {
        if (c == '\n') {
            quoted += "\\n";
        } else {
            if (c == '"' || c == '\\') quoted += '\\';
            quoted += c;
        }
    }
    return quoted + '"';
}

bool parse_number(std::string_view text, uint32_t &value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc{} && end == text.data() + text.size();
}

bool parse_dimensions(const std::string &text, uint32_t &width, uint32_t &height) {
    const size_t x = text.find('x');
    const auto side = [](std::string_view digits, uint32_t &value) {
        return parse_number(digits, value) && value >= 1 && value <= kMaxSide;
    };
    return x != std::string::npos && side(std::string_view(text).substr(0, x), width) &&
           side(std::string_view(text).substr(x + 1), height);
}

}  // namespace tool
