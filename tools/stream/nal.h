// The NAL units of an H.264 or HEVC byte stream, and their sequence parameter sets.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/base/input.h"

namespace tool {

struct Nal {
    uint64_t offset = 0;        // of its first byte, behind the start code
    uint64_t size = 0;          // bytes, trailing zero bytes not counted
    std::vector<uint8_t> head;  // its first bytes, enough for a parameter set
};

// Splits a byte stream at its start codes. Holds the beginning of one unit at a time, whatever the file's size.
class NalReader {
public:
    explicit NalReader(const std::string &path) : input_(path) {}  // "-" is standard input

    // The next unit; false at the end of the stream.
    bool next(Nal &nal);
    Input &input() { return input_; }

private:
    void find_first();

    Input input_;
    bool in_unit_ = false;
};

// What a byte stream is, from the types of the NAL units that it begins with.
enum class NalCodec : uint8_t { kUnknown, kH264, kHevc };
NalCodec guess_codec(std::span<const uint8_t> beginning);

struct SequenceHeader {
    uint32_t profile = 0, level = 0;  // as the standard codes them
    uint32_t id = 0;
    uint32_t chroma_format = 1;  // 0 to 3: monochrome, 4:2:0, 4:2:2, 4:4:4
    uint32_t luma_bits = 8, chroma_bits = 8;
    uint32_t coded_width = 0, coded_height = 0;
    uint32_t width = 0, height = 0;  // after cropping
    // H.264 alone
    uint32_t reference_frames = 0;
    bool frames_only = true;
    // HEVC alone
    uint32_t tier = 0, sub_layers = 0;
};

// Both throw an Error that names the file, the unit's offset and the reason.
SequenceHeader parse_h264_sequence(const std::string &path, const Nal &nal);
SequenceHeader parse_hevc_sequence(const std::string &path, const Nal &nal);

}  // namespace tool
