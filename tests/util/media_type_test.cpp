#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>

#include "qorv_skia.h"

namespace {

constexpr uint32_t fcc(const char *text) {
    return QORV_FCC(text[0], text[1], text[2], text[3]);
}

struct Class {
    int32_t (*find)(uint32_t);
    int32_t unknown;
    std::map<int32_t, std::string> codes;  // of four characters each, one after the other
    std::map<uint32_t, int32_t> tags;
};

const Class kClasses[] = {
    {qorv_fcc2mt_aud,
     499,
     {{306, "aac mp4a"}, {309, "samr"}, {310, "sawb"}, {311, "sqcpdqcp"}, {321, "evrc"}, {331, "sipr"}, {332, "cook"}},
     {{1, 300},
      {6, 301},
      {7, 302},
      {80, 304},
      {85, 305},
      {255, 306},
      {8192, 307},
      {8193, 308},
      {352, 312},
      {353, 312},
      {354, 313},
      {355, 314}}},
    {qorv_fcc2mt_vid,
     299,
     {{102, "DX50dx50DIV4div4DIVXdivxXVIDxvidFMP4M4S2m4s2MP4Vmp4v"},
      {103, "H263h263d263s263"},
      {104, "AVC1avc1avcCH264h264x264"},
      {105, "WMV1wmv1"},
      {106, "WMV2wmv2"},
      {107, "WMV3wmv3"},
      {110, "DIV3div3"},
      {113, "RV10"},
      {114, "RV20"},
      {115, "RV30"},
      {116, "RV40"},
      {117, "MP43mp43"},
      {118, "WVC1wvc1"},
      {119, "VP80"},
      {120, "HVC1hvc1hvcCH265h265x265"},
      {122, "HFYU"}},
     {}},
    {qorv_fcc2mt_sub, 3199, {{3000, "SSRT"}, {3006, "TX3Gtx3gSBTLsbtl"}, {3007, "SASS"}, {3008, "SSSA"}}, {}},
    {qorv_fcc2mt_drm, 1299, {{1100, "divxDIVX"}}, {}},
};

TEST(MediaType, EveryTagInItsClassAndNoOther) {
    std::map<uint32_t, int32_t> combined;
    for (const Class &known : kClasses) {
        std::map<uint32_t, int32_t> tags = known.tags;
        for (const auto &[id, codes] : known.codes) {
            for (size_t i = 0; i < codes.size(); i += 4) tags[fcc(&codes[i])] = id;
        }
        combined.insert(tags.begin(), tags.end());  // what an earlier class knows stays
        for (const Class &other : kClasses) {
            for (const auto &[id, codes] : other.codes) {
                for (size_t i = 0; i < codes.size(); i += 4) tags.insert({fcc(&codes[i]), known.unknown});
            }
        }
        for (uint32_t tag = 0; tag < 10000; tag++) tags.insert({tag, known.unknown});
        for (const char *stranger : {"X264", "l263", "fmp4", "hfyu", "abcd", "mp4A"})
            tags[fcc(stranger)] = known.unknown;
        for (const auto &[tag, id] : tags) EXPECT_EQ(known.find(tag), id) << tag;
    }
    for (const auto &[tag, id] : combined) EXPECT_EQ(qorv_fcc2mt(tag), id) << tag;
    EXPECT_EQ(qorv_fcc2mt(fcc("divx")), QORV_MT_VID_MPEG4);
    for (const uint32_t tag : {0u, 2u, fcc("abcd"), fcc("X264")}) EXPECT_EQ(qorv_fcc2mt(tag), QORV_MT_NONE);
}

}  // namespace
