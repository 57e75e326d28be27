#include "tools/video/format.h"

#include <string_view>

#include "tools/base/text.h"

namespace tool {

namespace {

struct Chroma {
    const char *tag;  // of Y4M
    const char *family;
    ChromaAxis horizontal, vertical;
};

// A centre of 2 luma samples is 0.5 behind the first. Without a word 4:2:0 is JPEG's; 4:2:2 and 4:1:1 lie on the
// left-hand sample. The two chroma planes of PAL DV lie on alternating lines; the upper one is taken for both.
constexpr Chroma kChromas[] = {
    {"mono", "mono", {0, 0}, {0, 0}},      {"420", "420", {2, 0.5}, {2, 0.5}},  {"420jpeg", "420", {2, 0.5}, {2, 0.5}},
    {"420mpeg2", "420", {2, 0}, {2, 0.5}}, {"420paldv", "420", {2, 0}, {2, 0}}, {"422", "422", {2, 0}, {1, 0}},
    {"444", "444", {1, 0}, {1, 0}},        {"411", "411", {4, 0}, {1, 0}},      {"440", "440", {1, 0}, {2, 0.5}},
};

bool set_chroma(VideoFormat &format, std::string_view tag) {
    for (const Chroma &known : kChromas) {
        if (tag != known.tag) continue;
        format.chroma = known.family;
        format.horizontal = known.horizontal;
        format.vertical = known.vertical;
        const bool subsampled = known.horizontal.step > 1 || known.vertical.step > 1;
        format.range = subsampled ? Range::kLimited : Range::kFull;
        return true;
    }
    return false;
}

bool set_bits(VideoFormat &format, std::string_view digits) {
    uint32_t bits;
    if (!parse_number(digits, bits) || bits < 9 || bits > 16) return false;
    format.bits = static_cast<int>(bits);
    return true;
}

}  // namespace

bool set_y4m_chroma(VideoFormat &format, const std::string &tag) {
    format.name = tag;
    if (tag == "444alpha") {
        format.alpha = true;
        return set_chroma(format, "444");
    }
    if (set_chroma(format, tag)) return true;
    // "mono12", "420p10"
    const std::string_view text = tag;
    const size_t family = text.starts_with("mono") ? 4 : text.find('p') == 3 ? 3 : text.size();
    const size_t digits = family == 3 ? 4 : family;
    return digits < text.size() && set_chroma(format, text.substr(0, family)) && set_bits(format, text.substr(digits));
}

bool set_raw_pixels(VideoFormat &format, const std::string &name) {
    format.name = name;
    std::string_view text = name;
    if (text.starts_with("gray")) {
        text.remove_prefix(4);
        if (text.ends_with("le")) text.remove_suffix(2);
        return set_chroma(format, "mono") && (text.empty() || set_bits(format, text));
    }
    const bool jpeg = text.starts_with("yuvj");
    format.alpha = text.starts_with("yuva");
    if (!text.starts_with("yuv")) return false;
    text.remove_prefix(jpeg || format.alpha ? 4 : 3);
    if (text.size() < 4 || text[3] != 'p') return false;
    const std::string_view family = text.substr(0, 3);
    if (!set_chroma(format, !jpeg && family == "420" ? "420mpeg2" : family)) return false;
    if (jpeg) format.range = Range::kFull;
    text.remove_prefix(4);
    if (text.ends_with("le")) text.remove_suffix(2);
    return text.empty() || (!jpeg && set_bits(format, text));
}

void lay_out(VideoFormat &format) {
    format.planes.clear();
    format.frame_bytes = 0;
    const auto add = [&](uint32_t width, uint32_t height) {
        format.planes.push_back({width, height, format.frame_bytes});
        format.frame_bytes += size_t{width} * height * format.sample_bytes();
    };
    const uint32_t across = format.horizontal.step, down = format.vertical.step;
    add(format.width, format.height);
    for (int i = 0; i < 2 && across != 0; i++)
        add((format.width + across - 1) / across, (format.height + down - 1) / down);
    if (format.alpha) add(format.width, format.height);
}

void set_header_word(VideoFormat &format, const std::string &begin, const std::string &value) {
    const size_t at = format.header.find(" " + begin);
    const size_t end = at == std::string::npos ? at : format.header.find(' ', at + 1);
    const std::string rest = end == std::string::npos ? "" : format.header.substr(end);
    format.header = format.header.substr(0, at) + " " + begin + value + rest;
}

std::string y4m_header(const VideoFormat &format) {
    const size_t magic = format.header.find(' ');
    return format.header.substr(0, magic) + " W" + std::to_string(format.width) + " H" + std::to_string(format.height) +
           (magic == std::string::npos ? "" : format.header.substr(magic)) + "\n";
}

}  // namespace tool
