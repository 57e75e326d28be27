#include "tools/y4m.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <sstream>

#include "tools/command.h"

namespace tool {

namespace {

constexpr size_t kMaxLine = 1024;     // bytes of a header or frame line
constexpr uint32_t kMaxSide = 32768;  // pixels
constexpr size_t kReadBytes = 1 << 24;
constexpr const char kMagic[] = "YUV4MPEG2";

int close_unless_stdin(std::FILE *file) {
    return file == stdin ? 0 : std::fclose(file);
}

bool parse_number(std::string_view text, uint32_t &value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc{} && end == text.data() + text.size();
}

struct Subsampling {
    const char *chroma;
    uint32_t horizontal, vertical;  // luma samples for each chroma sample; 0: no chroma
};

constexpr Subsampling kSubsamplings[] = {
    {"mono", 0, 0}, {"420", 2, 2}, {"422", 2, 1}, {"444", 1, 1}, {"411", 4, 1}, {"440", 1, 2},
};

}  // namespace

Y4mReader::Y4mReader(const std::string &path)
    : path_(path), file_(path == "-" ? stdin : std::fopen(path.c_str(), "rb"), close_unless_stdin) {
    if (!file_) throw Error(path + ": cannot be opened: " + std::strerror(errno));
    parse_header(read_line("stream header"));
    lay_out();
}

void Y4mReader::fail(uint64_t offset, const std::string &reason) const {
    throw error_at(path_, offset, reason);
}

void Y4mReader::check_read() const {
    if (std::ferror(file_.get()) != 0) fail(offset_, std::string("cannot be read: ") + std::strerror(errno));
}

std::string Y4mReader::read_line(const char *what) {
    const uint64_t start = offset_;
    std::string line;
    for (int c; (c = std::fgetc(file_.get())) != EOF;) {
        offset_++;
        if (c == '\n') return line;
        if (line.size() == kMaxLine) fail(start, std::string("the ") + what + " is longer than 1024 bytes");
        line.push_back(static_cast<char>(c));
    }
    check_read();
    fail(start, offset_ == 0 ? "the stream is empty" : std::string("the stream ends inside the ") + what);
}

void Y4mReader::parse_header(const std::string &line) {
    std::istringstream words(line);
    std::string word;
    words >> word;
    if (word != kMagic) fail(0, "not a YUV4MPEG2 stream");
    std::string colour = "420jpeg";
    while (words >> word) {
        const std::string value = word.substr(1);
        switch (word[0]) {
            case 'W':
                if (!parse_number(value, format_.width)) fail(0, "bad width '" + value + "'");
                break;
            case 'H':
                if (!parse_number(value, format_.height)) fail(0, "bad height '" + value + "'");
                break;
            case 'F': {
                const size_t colon = value.find(':');
                if (colon == std::string::npos || !parse_number(value.substr(0, colon), format_.rate_num) ||
                    !parse_number(value.substr(colon + 1), format_.rate_den)) {
                    fail(0, "bad frame rate '" + value + "'");
                }
                break;
            }
            case 'C':
                colour = value;
                break;
            case 'X':
                if (value == "COLORRANGE=FULL") format_.full_range = true;
                break;
            default:
                break;  // interlacing, aspect ratio and comments do not change the layout
        }
    }
    if (format_.width == 0 || format_.height == 0) fail(0, "the stream header gives no width or no height");
    if (format_.width > kMaxSide || format_.height > kMaxSide) {
        fail(0, "absurd size " + std::to_string(format_.width) + "x" + std::to_string(format_.height) +
                    " (at most 32768 a side)");
    }
    parse_colour(colour);
}

void Y4mReader::parse_colour(const std::string &tag) {
    format_.colour = tag;
    std::string rest;
    for (const Subsampling &known : kSubsamplings) {
        if (tag.compare(0, std::strlen(known.chroma), known.chroma) == 0) {
            format_.chroma = known.chroma;
            rest = tag.substr(format_.chroma.size());
        }
    }
    if (format_.chroma.empty()) fail(0, "unknown chroma format '" + tag + "'");
    if (rest == "alpha") {
        format_.alpha = true;
        return;
    }
    // Chroma siting ("jpeg", "mpeg2", "paldv") does not change the layout; a number is the bit depth.
    if (!rest.empty() && rest[0] == 'p' && rest != "paldv") rest.erase(0, 1);
    uint32_t bits = 8;
    if (!rest.empty() && rest[0] >= '0' && rest[0] <= '9' && (!parse_number(rest, bits) || bits < 9 || bits > 16)) {
        fail(0, "unknown chroma format '" + tag + "'");
    }
    format_.bits = static_cast<int>(bits);
}

void Y4mReader::lay_out() {
    const auto known = std::find_if(std::begin(kSubsamplings), std::end(kSubsamplings),
                                    [&](const Subsampling &s) { return format_.chroma == s.chroma; });
    const auto add = [&](uint32_t width, uint32_t height) {
        format_.planes.push_back({width, height, format_.frame_bytes});
        format_.frame_bytes += size_t{width} * height * format_.sample_bytes();
    };
    add(format_.width, format_.height);
    for (int i = 0; i < 2 && known->horizontal != 0; i++) {
        add((format_.width + known->horizontal - 1) / known->horizontal,
            (format_.height + known->vertical - 1) / known->vertical);
    }
    if (format_.alpha) add(format_.width, format_.height);
}

bool Y4mReader::next(std::vector<uint8_t> &frame) {
    const int first = std::fgetc(file_.get());
    if (first == EOF) {
        check_read();
        return false;
    }
    std::ungetc(first, file_.get());
    const uint64_t start = offset_;
    const std::string line = read_line("frame header");
    if (line != "FRAME" && line.compare(0, 6, "FRAME ") != 0) {
        fail(start, "a frame header was expected for frame " + std::to_string(frames_));
    }
    // Grown as the bytes come: a header may claim any size.
    frame.clear();
    while (frame.size() < format_.frame_bytes) {
        const size_t had = frame.size(), wanted = std::min(kReadBytes, format_.frame_bytes - had);
        frame.resize(had + wanted);
        const size_t got = std::fread(frame.data() + had, 1, wanted, file_.get());
        offset_ += got;
        if (got != wanted) {
            check_read();
            fail(offset_, "the stream is truncated: frame " + std::to_string(frames_) + " has " +
                              std::to_string(had + got) + " of " + std::to_string(format_.frame_bytes) + " bytes");
        }
    }
    frames_++;
    return true;
}

}  // namespace tool
