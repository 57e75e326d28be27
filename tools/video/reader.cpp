#include "tools/video/reader.h"

#include <algorithm>
#include <sstream>

#include "tools/base/error.h"
#include "tools/base/limits.h"
#include "tools/base/text.h"

namespace tool {

namespace {

constexpr size_t kMaxLine = 1024;  // bytes of a header or frame line
constexpr size_t kReadBytes = 1 << 20;
constexpr const char kMagic[] = "YUV4MPEG2";

}  // namespace

VideoReader::VideoReader(Input input, const VideoOptions &options)
    : input_(std::move(input)), raw_(!options.raw_size.empty()) {
    if (raw_) {
        set_raw(options);
    } else {
        parse_header(read_line("stream header"));
    }
    if (!options.range.empty()) {
        format_.range = options.range == "full" ? Range::kFull : Range::kLimited;
        set_header_word(format_, "XCOLORRANGE=", format_.range == Range::kFull ? "FULL" : "LIMITED");
    }
    lay_out(format_);
}

void VideoReader::fail(uint64_t offset, const std::string &reason) const {
    throw error_at(path(), offset, reason);
}

std::string VideoReader::read_line(const char *what) {
    const uint64_t start = input_.offset();
    std::string line;
    for (int c; (c = input_.get()) >= 0;) {
        if (c == '\n') return line;
        if (line.size() == kMaxLine) fail(start, std::string("the ") + what + " is longer than 1024 bytes");
        line.push_back(static_cast<char>(c));
    }
    fail(start, input_.offset() == 0 ? "the stream is empty" : std::string("the stream ends inside the ") + what);
}

void VideoReader::set_raw(const VideoOptions &options) {
    if (!parse_dimensions(options.raw_size, format_.width, format_.height) ||
        !set_raw_pixels(format_, options.raw_pixels)) {
        throw UsageError("--raw " + options.raw_size + " --pix " + options.raw_pixels + ": no format of raw planes");
    }
    format_.header = kMagic;
    format_.header += " F25:1 Ip A1:1 C" + format_.chroma;
    if (format_.alpha) {
        format_.header += "alpha";
    } else if (format_.bits > 8) {
        if (format_.chroma != "mono") format_.header += 'p';
        format_.header += std::to_string(format_.bits);
    } else if (format_.chroma == "420" && format_.horizontal.first == 0) {
        format_.header += "mpeg2";
    }
    set_header_word(format_, "XCOLORRANGE=", format_.range == Range::kFull ? "FULL" : "LIMITED");
}

void VideoReader::parse_header(const std::string &line) {
    std::istringstream words(line);
    std::string word, colour = "420jpeg";
    words >> word;
    if (word != kMagic) fail(0, "not a YUV4MPEG2 stream");
    while (words >> word) parse_word(word, colour);
    if (format_.width == 0 || format_.height == 0) fail(0, "the stream header gives no width or no height");
    check_sides(path(), format_.width, format_.height);
    const bool has_range = format_.header.find(" XCOLORRANGE=") != std::string::npos;
    const Range range = format_.range;
    if (!set_y4m_chroma(format_, colour)) fail(0, "unknown chroma format '" + colour + "'");
    if (has_range) format_.range = range;
}

void VideoReader::parse_word(const std::string &word, std::string &colour) {
    const std::string value = word.substr(1);
    const size_t colon = value.find(':');
    switch (word[0]) {
        case 'W':
            if (!parse_number(value, format_.width)) fail(0, "bad width '" + value + "'");
            return;
        case 'H':
            if (!parse_number(value, format_.height)) fail(0, "bad height '" + value + "'");
            return;
        case 'F':
            if (colon == std::string::npos || !parse_number(value.substr(0, colon), format_.rate_num) ||
                !parse_number(value.substr(colon + 1), format_.rate_den)) {
                fail(0, "bad frame rate '" + value + "'");
            }
            break;
        case 'C':
            colour = value;
            break;
        case 'X':
            if (value == "COLORRANGE=FULL") format_.range = Range::kFull;
            if (value == "COLORRANGE=LIMITED") format_.range = Range::kLimited;
            if (value.starts_with("COLORRANGE=") && value != "COLORRANGE=FULL" && value != "COLORRANGE=LIMITED") return;
            break;
        default:
            break;  // interlacing, aspect ratio and comments do not change the layout
    }
    format_.header += " " + word;
}

bool VideoReader::read_frame_header() {
    if (input_.peek().empty()) return false;
    if (raw_) return true;
    const uint64_t start = input_.offset();
    const std::string line = read_line("frame header");
    if (line != "FRAME" && !line.starts_with("FRAME ")) {
        fail(start, "a frame header was expected for frame " + std::to_string(frames_));
    }
    return true;
}

bool VideoReader::next(std::vector<uint8_t> &frame) {
    if (!read_frame_header()) return false;
    size_t had = 0;
    while (had < format_.frame_bytes) {
        const size_t wanted = std::min(kReadBytes, format_.frame_bytes - had);
        if (frame.size() < had + wanted) frame.resize(had + wanted);
        const size_t got = input_.read(frame.data() + had, wanted);
        had += got;
        if (got != wanted) {
            fail(input_.offset(), "the stream is truncated: frame " + std::to_string(frames_) + " has " +
                                      std::to_string(had) + " of " + std::to_string(format_.frame_bytes) + " bytes");
        }
    }
    frame.resize(format_.frame_bytes);
    frames_++;
    return true;
}

}  // namespace tool
