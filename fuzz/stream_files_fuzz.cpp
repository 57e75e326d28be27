// The program's readers of Y4M, AVI and NAL streams: any file ends in a result or in an error that is reported.
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "input.h"
#include "tools/avi.h"
#include "tools/command.h"
#include "tools/nal.h"
#include "tools/y4m.h"

namespace {

void read_y4m(const std::string &path) {
    tool::Y4mReader reader(path);
    std::vector<uint8_t> frame;
    while (reader.next(frame)) fuzz::require(frame.size() == reader.format().frame_bytes, "a frame is whole");
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
    tool::Nal nal;
    while (reader.next(nal)) {
        try {
            hevc ? tool::parse_hevc_sequence(path, nal) : tool::parse_h264_sequence(path, nal);
        } catch (const tool::Error &) {  // the next unit may be sound
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    const int file = memfd_create("input", 0);
    fuzz::require(write(file, data + 1, size - 1) == static_cast<ssize_t>(size - 1), "the input is written");
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    try {
        switch (data[0] % 4) {
            case 0:
                read_y4m(path);
                break;
            case 1:
                read_avi(path);
                break;
            default:
                read_nal(path, data[0] % 4 == 3);
                break;
        }
    } catch (const tool::Error &) {
    }
    close(file);
    return 0;
}
