#include "qorv_skia.h"

namespace {

struct Known {
    uint32_t tag;
    int32_t id;
};

constexpr uint32_t code(const char (&text)[5]) {
    return QORV_FCC(text[0], text[1], text[2], text[3]);
}

constexpr Known kVideo[] = {
    {code("DX50"), QORV_MT_VID_MPEG4}, {code("dx50"), QORV_MT_VID_MPEG4}, {code("DIV4"), QORV_MT_VID_MPEG4},
    {code("div4"), QORV_MT_VID_MPEG4}, {code("DIVX"), QORV_MT_VID_MPEG4}, {code("divx"), QORV_MT_VID_MPEG4},
    {code("XVID"), QORV_MT_VID_MPEG4}, {code("xvid"), QORV_MT_VID_MPEG4}, {code("FMP4"), QORV_MT_VID_MPEG4},
    {code("M4S2"), QORV_MT_VID_MPEG4}, {code("m4s2"), QORV_MT_VID_MPEG4}, {code("MP4V"), QORV_MT_VID_MPEG4},
    {code("mp4v"), QORV_MT_VID_MPEG4}, {code("H263"), QORV_MT_VID_H263},  {code("h263"), QORV_MT_VID_H263},
    {code("d263"), QORV_MT_VID_H263},  {code("s263"), QORV_MT_VID_H263},  {code("AVC1"), QORV_MT_VID_H264},
    {code("avc1"), QORV_MT_VID_H264},  {code("avcC"), QORV_MT_VID_H264},  {code("H264"), QORV_MT_VID_H264},
    {code("h264"), QORV_MT_VID_H264},  {code("x264"), QORV_MT_VID_H264},  {code("WMV1"), QORV_MT_VID_WMV1},
    {code("wmv1"), QORV_MT_VID_WMV1},  {code("WMV2"), QORV_MT_VID_WMV2},  {code("wmv2"), QORV_MT_VID_WMV2},
    {code("WMV3"), QORV_MT_VID_WMV3},  {code("wmv3"), QORV_MT_VID_WMV3},  {code("DIV3"), QORV_MT_VID_DIV3},
    {code("div3"), QORV_MT_VID_DIV3},  {code("RV10"), QORV_MT_VID_RV10},  {code("RV20"), QORV_MT_VID_RV20},
    {code("RV30"), QORV_MT_VID_RV30},  {code("RV40"), QORV_MT_VID_RV40},  {code("MP43"), QORV_MT_VID_MP43},
    {code("mp43"), QORV_MT_VID_MP43},  {code("WVC1"), QORV_MT_VID_VC1},   {code("wvc1"), QORV_MT_VID_VC1},
    {code("VP80"), QORV_MT_VID_VP8},   {code("HVC1"), QORV_MT_VID_HEVC},  {code("hvc1"), QORV_MT_VID_HEVC},
    {code("hvcC"), QORV_MT_VID_HEVC},  {code("H265"), QORV_MT_VID_HEVC},  {code("h265"), QORV_MT_VID_HEVC},
    {code("x265"), QORV_MT_VID_HEVC},  {code("HFYU"), QORV_MT_VID_HFYU},
};

// WAVE format tags and four-character codes side by side: no code is as small as a tag.
constexpr Known kAudio[] = {
    {1, QORV_MT_AUD_PCM},
    {6, QORV_MT_AUD_ALAW},
    {7, QORV_MT_AUD_MULAW},
    {80, QORV_MT_AUD_MPEG},
    {85, QORV_MT_AUD_MP3},
    {255, QORV_MT_AUD_AAC},
    {352, QORV_MT_AUD_WMA},
    {353, QORV_MT_AUD_WMA},
    {354, QORV_MT_AUD_WMA_PRO},
    {355, QORV_MT_AUD_WMA_LOSSLESS},
    {8192, QORV_MT_AUD_AC3},
    {8193, QORV_MT_AUD_DTS},
    {code("aac "), QORV_MT_AUD_AAC},
    {code("mp4a"), QORV_MT_AUD_AAC},
    {code("samr"), QORV_MT_AUD_AMR_NB},
    {code("sawb"), QORV_MT_AUD_AMR_WB},
    {code("sqcp"), QORV_MT_AUD_QCELP},
    {code("dqcp"), QORV_MT_AUD_QCELP},
    {code("evrc"), QORV_MT_AUD_EVRC},
    {code("sipr"), QORV_MT_AUD_SIPR},
    {code("cook"), QORV_MT_AUD_COOK},
};

constexpr Known kSubtitle[] = {
    {code("SSRT"), QORV_MT_SUB_SRT},  {code("TX3G"), QORV_MT_SUB_TX3G}, {code("tx3g"), QORV_MT_SUB_TX3G},
    {code("SBTL"), QORV_MT_SUB_TX3G}, {code("sbtl"), QORV_MT_SUB_TX3G}, {code("SASS"), QORV_MT_SUB_ASS},
    {code("SSSA"), QORV_MT_SUB_SSA},
};

constexpr Known kDrm[] = {
    {code("divx"), QORV_MT_DRM_DIVX},
    {code("DIVX"), QORV_MT_DRM_DIVX},
};

template <size_t kCount>
int32_t find(const Known (&table)[kCount], uint32_t tag, int32_t unknown) {
    for (const Known &known : table) {
        if (known.tag == tag) return known.id;
    }
    return unknown;
}

}  // namespace

extern "C" int32_t qorv_fcc2mt_aud(uint32_t tag) {
    return find(kAudio, tag, QORV_MT_AUD_UNKNOWN);
}

extern "C" int32_t qorv_fcc2mt_vid(uint32_t fcc) {
    return find(kVideo, fcc, QORV_MT_VID_UNKNOWN);
}

extern "C" int32_t qorv_fcc2mt_sub(uint32_t fcc) {
    return find(kSubtitle, fcc, QORV_MT_SUB_UNKNOWN);
}

extern "C" int32_t qorv_fcc2mt_drm(uint32_t fcc) {
    return find(kDrm, fcc, QORV_MT_DRM_UNKNOWN);
}

extern "C" int32_t qorv_fcc2mt(uint32_t tag) {
    int32_t id = find(kAudio, tag, QORV_MT_NONE);
    if (id == QORV_MT_NONE) id = find(kVideo, tag, QORV_MT_NONE);
    if (id == QORV_MT_NONE) id = find(kSubtitle, tag, QORV_MT_NONE);
    if (id == QORV_MT_NONE) id = find(kDrm, tag, QORV_MT_NONE);
    return id;
}
