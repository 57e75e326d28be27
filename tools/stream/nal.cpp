#include "tools/stream/nal.h"

#include <algorithm>

#include "qorv_skia.h"
#include "tools/base/error.h"

namespace tool {

namespace {

constexpr size_t kHeadBytes = 4096;

constexpr uint64_t kMostLeadingZeros = 1 << 16;

// The payload of a NAL unit. The bit reader stands first, so that the refill, which is handed the reader, can tell the
// rest that the data has ended.
struct Payload {
    QORV_BSR bits;
    bool ended;
};

// A refill in place of the library's: in the byte stream an emulation-prevention byte 03 stands behind every two zero
// bytes that would otherwise look like a start code, and does not belong to the payload.
int32_t refill_without_emulation_prevention(QORV_BSR *bits, int32_t count) {
    bits->code = 0;
    bits->leftbits = 0;
    while (bits->leftbits < 8 * std::min(count, 4) && bits->cur <= bits->end) {
        const uint8_t *const at = bits->cur++;
        if (*at == 3 && at - bits->beg >= 2 && at[-1] == 0 && at[-2] == 0) continue;
        bits->code |= static_cast<uint32_t>(*at) << (24 - bits->leftbits);
        bits->leftbits += 8;
    }
    if (bits->leftbits != 0) return QORV_OK;
    reinterpret_cast<Payload *>(bits)->ended = true;
    return QORV_ERR;
}

// Syntax elements of a parameter set, with a name for each so that a bad one can be reported.
class Syntax {
public:
    Syntax(const std::string &path, const Nal &nal, size_t header_bytes) : path_(path), offset_(nal.offset) {
        if (nal.head.size() <= header_bytes) fail("the parameter set is empty");
        payload_.ended = false;
        qorv_bsr_init(&payload_.bits, nal.head.data() + header_bytes,
                      static_cast<int32_t>(nal.head.size() - header_bytes), refill_without_emulation_prevention);
    }

    uint32_t u(int32_t bits) { return checked(qorv_bsr_read(&payload_.bits, bits)); }
    bool flag() { return checked(qorv_bsr_read1(&payload_.bits)) != 0; }
    int32_t se() {
        const int32_t value = qorv_bsr_read_se(&payload_.bits);
        checked(0);
        return value;
    }
    uint32_t ue(const char *name, uint32_t max) {
        const uint32_t value = checked(qorv_bsr_read_ue(&payload_.bits));
        if (value > max) fail(std::string(name) + " is " + std::to_string(value) + ", at most " + std::to_string(max));
        return value;
    }
    void skip(int32_t bits) {
        for (; bits > 0; bits -= 32) qorv_bsr_skip(&payload_.bits, std::min(bits, 32));
        checked(0);
    }
    [[noreturn]] void fail(const std::string &reason) const {
        throw error_at(path_, offset_, "sequence parameter set: " + reason);
    }

private:
    // The reader's failure values may be data too. What tells is a refill that failed, or a debt left by a short one.
    uint32_t checked(uint32_t value) const {
        if (payload_.ended || payload_.bits.leftbits < 0) fail("truncated");
        return value;
    }

    std::string path_;
    uint64_t offset_;
    Payload payload_;
};

constexpr uint32_t kMaxSide = 65534;  // the largest number that the reader's Exp-Golomb codes hold

// Width and height after the cropping window, whose offsets count units of the chroma format's samples.
void crop(Syntax &syntax, SequenceHeader &header, uint32_t vertical_unit) {
    header.width = header.coded_width;
    header.height = header.coded_height;
    if (!syntax.flag()) return;
    const uint32_t unit_x = header.chroma_format == 1 || header.chroma_format == 2 ? 2 : 1;
    const uint32_t unit_y = (header.chroma_format == 1 ? 2 : 1) * vertical_unit;
    uint32_t sides[4];  // left, right, top, bottom
    for (uint32_t &side : sides) side = syntax.ue("a cropping offset", kMaxSide);
    const uint32_t x = unit_x * (sides[0] + sides[1]), y = unit_y * (sides[2] + sides[3]);
    if (x >= header.width || y >= header.height) syntax.fail("the cropping window is empty");
    header.width -= x;
    header.height -= y;
}

bool has_chroma_format(uint32_t h264_profile) {
    static const uint32_t profiles[] = {100, 110, 122, 244, 44, 83, 86, 118, 128, 138, 139, 134, 135};
    return std::find(std::begin(profiles), std::end(profiles), h264_profile) != std::end(profiles);
}

void skip_scaling_list(Syntax &syntax, int size) {
    int32_t last = 8, next = 8;
    for (int i = 0; i < size && next != 0; i++) {
        next = (last + syntax.se()) & 0xFF;
        if (next != 0) last = next;
    }
}

void parse_chroma_format(Syntax &syntax, SequenceHeader &header) {
    header.chroma_format = syntax.ue("chroma_format_idc", 3);
    if (header.chroma_format == 3) syntax.flag();  // separate_colour_plane_flag
}

void parse_high_profile(Syntax &syntax, SequenceHeader &header) {
    parse_chroma_format(syntax, header);
    header.luma_bits = 8 + syntax.ue("bit_depth_luma_minus8", 6);
    header.chroma_bits = 8 + syntax.ue("bit_depth_chroma_minus8", 6);
    syntax.flag();  // qpprime_y_zero_transform_bypass_flag
    if (!syntax.flag()) return;
    for (int i = 0; i < (header.chroma_format == 3 ? 12 : 8); i++) {
        if (syntax.flag()) skip_scaling_list(syntax, i < 6 ? 16 : 64);
    }
}

void skip_picture_order(Syntax &syntax) {
    const uint32_t type = syntax.ue("pic_order_cnt_type", 2);
    if (type == 0) {
        syntax.ue("log2_max_pic_order_cnt_lsb_minus4", 12);
    } else if (type == 1) {
        syntax.flag();  // delta_pic_order_always_zero_flag
        syntax.se();    // offset_for_non_ref_pic
        syntax.se();    // offset_for_top_to_bottom_field
        const uint32_t cycle = syntax.ue("num_ref_frames_in_pic_order_cnt_cycle", 255);
        for (uint32_t i = 0; i < cycle; i++) syntax.se();
    }
}

// General profile, tier and level, and those of the sub-layers, which are passed over.
void parse_profile_tier_level(Syntax &syntax, SequenceHeader &header) {
    syntax.u(2);  // general_profile_space
    header.tier = syntax.u(1);
    header.profile = syntax.u(5);
    syntax.skip(32 + 48);  // compatibility and constraint flags
    header.level = syntax.u(8);
    const uint32_t others = header.sub_layers - 1;
    uint32_t present[8] = {};  // bit 1: a profile, bit 0: a level
    for (uint32_t i = 0; i < (others > 0 ? 8 : 0); i++) present[i] = syntax.u(2);
    for (uint32_t i = 0; i < others; i++) {
        if ((present[i] & 2) != 0) syntax.skip(88);
        if ((present[i] & 1) != 0) syntax.skip(8);
    }
}

}  // namespace

// A stream may begin with any number of zero bytes; a device of nothing else must come to an end.
void NalReader::find_first() {
    uint64_t zeros = 0;
    int c;
    while ((c = input_.get()) == 0 && zeros < kMostLeadingZeros) zeros++;
    if (c != 1 || zeros < 2) {
        throw error_at(input_.path(), input_.offset(),
                       c < 0 ? "the file ends before a start code" : "no start code at its beginning");
    }
    in_unit_ = true;
}

bool NalReader::next(Nal &nal) {
    if (input_.offset() == 0) find_first();
    if (!in_unit_) return false;
    nal.offset = input_.offset();
    nal.size = 0;
    nal.head.clear();
    uint64_t zeros = 0;
    for (;;) {
        const int c = input_.get();
        if (c == 0) {
            zeros++;
            continue;
        }
        in_unit_ = c >= 0;
        if (c < 0 || (c == 1 && zeros >= 2)) break;
        // Zeros count once something other than a start code follows them.
        nal.size += zeros + 1;
        nal.head.insert(nal.head.end(), std::min<uint64_t>(zeros, kHeadBytes - nal.head.size()), 0);
        if (nal.head.size() < kHeadBytes) nal.head.push_back(static_cast<uint8_t>(c));
        zeros = 0;
    }
    if (nal.size == 0) throw error_at(input_.path(), nal.offset, "a NAL unit without a byte");
    return true;
}

// Streams begin with parameter sets, delimiters or messages, and each codec's types make no sense to the other one:
// H.264's header byte of these has a zero in bit 7 and types 6 to 9; HEVC's two bytes hold types 32 to 40, layer 0 and
// a temporal sub-layer that counts from 1. As H.264 these would be types 0 to 16 and a second byte 1.
NalCodec guess_codec(std::span<const uint8_t> beginning) {
    for (size_t i = 3; i + 1 < beginning.size(); i++) {
        if (beginning[i - 3] != 0 || beginning[i - 2] != 0 || beginning[i - 1] != 1) continue;
        const int first = beginning[i], second = beginning[i + 1];
        const int hevc_type = first >> 1, h264_type = first & 0x1F;
        if (hevc_type >= 32 && hevc_type <= 40 && (first & 1) == 0 && second == 1) return NalCodec::kHevc;
        if (h264_type >= 6 && h264_type <= 9 && first < 0x80) return NalCodec::kH264;
    }
    // Without any of them: slices.
    for (size_t i = 3; i + 1 < beginning.size(); i++) {
        if (beginning[i - 3] != 0 || beginning[i - 2] != 0 || beginning[i - 1] != 1) continue;
        const int first = beginning[i], second = beginning[i + 1];
        const bool hevc_slice = first >> 1 <= 21 && (first & 1) == 0 && second >= 1 && second <= 7;
        if (hevc_slice) return NalCodec::kHevc;
        if ((first & 0x1F) >= 1 && (first & 0x1F) <= 5 && first < 0x80) return NalCodec::kH264;
    }
    return NalCodec::kUnknown;
}

SequenceHeader parse_h264_sequence(const std::string &path, const Nal &nal) {
    Syntax syntax(path, nal, 1);
    SequenceHeader header;
    header.profile = syntax.u(8);
    syntax.u(8);  // constraint flags
    header.level = syntax.u(8);
    header.id = syntax.ue("seq_parameter_set_id", 31);
    if (has_chroma_format(header.profile)) parse_high_profile(syntax, header);
    syntax.ue("log2_max_frame_num_minus4", 12);
    skip_picture_order(syntax);
    header.reference_frames = syntax.ue("max_num_ref_frames", 16);
    syntax.flag();  // gaps_in_frame_num_value_allowed_flag
    header.coded_width = 16 * (syntax.ue("pic_width_in_mbs_minus1", kMaxSide / 16) + 1);
    header.coded_height = 16 * (syntax.ue("pic_height_in_map_units_minus1", kMaxSide / 16) + 1);
    header.frames_only = syntax.flag();
    if (!header.frames_only) {
        header.coded_height *= 2;
        syntax.flag();  // mb_adaptive_frame_field_flag
    }
    syntax.flag();  // direct_8x8_inference_flag
    crop(syntax, header, header.frames_only ? 1 : 2);
    return header;
}

SequenceHeader parse_hevc_sequence(const std::string &path, const Nal &nal) {
    Syntax syntax(path, nal, 2);
    SequenceHeader header;
    syntax.u(4);  // sps_video_parameter_set_id
    header.sub_layers = syntax.u(3) + 1;
    syntax.flag();  // sps_temporal_id_nesting_flag
    parse_profile_tier_level(syntax, header);
    header.id = syntax.ue("sps_seq_parameter_set_id", 15);
    parse_chroma_format(syntax, header);
    header.coded_width = syntax.ue("pic_width_in_luma_samples", kMaxSide);
    header.coded_height = syntax.ue("pic_height_in_luma_samples", kMaxSide);
    crop(syntax, header, 1);
    header.luma_bits = 8 + syntax.ue("bit_depth_luma_minus8", 8);
    header.chroma_bits = 8 + syntax.ue("bit_depth_chroma_minus8", 8);
    return header;
}

}  // namespace tool
