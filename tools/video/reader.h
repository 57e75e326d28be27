// Reader of uncompressed video, frame by frame: YUV4MPEG2 streams, the format of FFmpeg and mjpegtools, and raw planes.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/base/input.h"
#include "tools/video/format.h"

namespace tool {

// What the command line says of a stream.
struct VideoOptions {
    std::string raw_size, raw_pixels;  // WIDTHxHEIGHT and a name as "yuv420p", or empty for Y4M
    std::string range;                 // "full" or "limited"; empty: as the stream says
};

// Every failure is thrown as an Error that names the file, the offset and the reason.
class VideoReader {
public:
    VideoReader(Input input, const VideoOptions &options);
    VideoReader(const std::string &path, const VideoOptions &options) : VideoReader(Input(path), options) {}

    const VideoFormat &format() const { return format_; }
    const std::string &path() const { return input_.path(); }
    // Reads the next frame into `frame` (resized to frame_bytes); false at the end of the stream. Memory is taken as
    // the bytes come: a header may claim any size.
    bool next(std::vector<uint8_t> &frame);
    uint64_t frames_read() const { return frames_; }
    uint64_t bytes_read() const { return input_.offset(); }
    std::optional<uint64_t> all_bytes() const { return input_.size(); }

private:
    [[noreturn]] void fail(uint64_t offset, const std::string &reason) const;
    std::string read_line(const char *what);
    void parse_header(const std::string &line);
    void parse_word(const std::string &word, std::string &colour);
    void set_raw(const VideoOptions &options);
    bool read_frame_header();

    Input input_;
    bool raw_;
    uint64_t frames_ = 0;
    VideoFormat format_;
};

}  // namespace tool
