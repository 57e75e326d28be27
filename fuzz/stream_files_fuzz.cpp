// The program's readers: any file, of video, pictures, AVI or NAL units, ends in a result or in an error that is
// reported.
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "input.h"
#include "tools/base/error.h"
#include "tools/picture/picture_file.h"
#include "tools/stream/avi.h"
#include "tools/stream/nal.h"
#include "tools/video/converter.h"
#include "tools/video/reader.h"
#include "tools/video/scaler.h"

namespace {

void read_video(const std::string &path, const tool::VideoOptions &options) {
    tool::VideoReader reader(path, options);
    std::vector<uint8_t> frame;
    while (reader.next(frame)) fuzz::require(frame.size() == reader.format().frame_bytes, "a frame is whole");
}

// The first frame as a picture, whatever its format, and at another size.
void convert_video(const std::string &path) {
    tool::VideoReader reader(path, {});
    const tool::VideoFormat &format = reader.format();
    std::vector<uint8_t> frame;
    if (!reader.next(frame)) return;
    const tool::FrameConversion conversion = tool::choose_conversion(path, format, "", format.width, format.height);
    const tool::Picture picture = tool::FrameConverter(format, conversion).convert(frame);
    fuzz::require(picture.pixels.size() == picture.row_bytes() * format.height, "a picture is whole");
    const tool::VideoFormat small = tool::scaled_format(format, 7, 5);
    std::vector<uint8_t> scaled;
    tool::FrameScaler(format, small).scale(frame, scaled);
    fuzz::require(scaled.size() == small.frame_bytes, "a scaled frame is whole");
}

// A picture that can be read can be written and read again; all but JPEG without loss.
void read_picture(const std::string &path) {
    const tool::Picture picture = tool::read_picture(path);
    fuzz::require(picture.pixels.size() == picture.row_bytes() * picture.height, "a picture is whole");
    if (picture.pixels.size() > (1u << 20)) return;
    for (const tool::FileKind kind : {tool::FileKind::kPng, tool::FileKind::kPpm, tool::FileKind::kJpeg}) {
        fuzz::require(!tool::encode_picture(picture, kind, 75).empty(), "every picture is written");
    }
}

void read_avi(const std::string &path) {
    tool::AviReader reader(path);
    std::vector<uint8_t> data;
    for (size_t i = 0; i < reader.streams().size(); i++) {
        for (const tool::AviFrame &frame : reader.frames(i)) reader.read(frame, data);
    }
}

void read_nal(const std::string &path, bool hevc) {
    tool::NalReader reader(path);
    tool::guess_codec(reader.input().peek());
    tool::Nal nal;
    while (reader.next(nal)) {
        try {
            hevc ? tool::parse_hevc_sequence(path, nal) : tool::parse_h264_sequence(path, nal);
        } catch (const tool::Error &) {  // the next unit may be sound
        }
    }
}

// The first byte of an input chooses the reader.
void read(const std::string &path, int choice) {
    switch (choice % 8) {
        case 0:
            return read_video(path, {});
        case 1:
            return read_avi(path);
        case 4:
            return read_picture(path);
        case 5:
            return convert_video(path);
        default:
            return read_nal(path, choice % 4 == 3);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    const int file = memfd_create("input", 0);
    fuzz::require(write(file, data + 1, size - 1) == static_cast<ssize_t>(size - 1), "the input is written");
    try {
        read("/proc/self/fd/" + std::to_string(file), data[0]);
    } catch (const tool::Error &) {
    }
    close(file);
    return 0;
}
