// Reader of YUV4MPEG2 streams, the uncompressed video format of FFmpeg and mjpegtools.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace tool {

struct Y4mPlane {
    uint32_t width = 0, height = 0;  // in samples
    size_t offset = 0;               // of its first byte in a frame
};

struct Y4mFormat {
    uint32_t width = 0, height = 0;  // in pixels
    std::string colour;              // the C tag, "420jpeg" where the stream has none
    std::string chroma;              // "mono", "420", "422", "444", "411" or "440"
    bool alpha = false;              // a fourth plane of the luma's size
    bool full_range = false;         // XCOLORRANGE=FULL
    int bits = 8;                    // significant bits; above 8, samples are little-endian 16-bit words
    uint32_t rate_num = 0, rate_den = 1;
    std::vector<Y4mPlane> planes;
    size_t frame_bytes = 0;  // of the samples of one frame, plane after plane without padding

    size_t sample_bytes() const { return bits > 8 ? 2 : 1; }
};

// Reads a stream frame by frame. Every failure is thrown as an Error that names the file, the offset and the reason.
class Y4mReader {
public:
    explicit Y4mReader(const std::string &path);  // "-" is standard input

    const Y4mFormat &format() const { return format_; }
    const std::string &path() const { return path_; }
    // Reads the next frame into `frame` (resized to frame_bytes); false at the end of the stream.
    bool next(std::vector<uint8_t> &frame);
    uint64_t frames_read() const { return frames_; }

private:
    [[noreturn]] void fail(uint64_t offset, const std::string &reason) const;
    void check_read() const;  // that the file has ended and not failed
    std::string read_line(const char *what);
    void parse_header(const std::string &line);
    void parse_colour(const std::string &tag);
    void lay_out();

    std::string path_;
    std::unique_ptr<std::FILE, int (*)(std::FILE *)> file_;
    uint64_t offset_ = 0;
    uint64_t frames_ = 0;
    Y4mFormat format_;
};

}  // namespace tool
