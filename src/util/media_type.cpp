#include "qorv_skia.h"

namespace {

struct Known {
    uint32_t tag;
    int32_t id;
};

constexpr uint32_t fcc(const char (&text)[5]) {
    return QORV_FCC(text[0], text[1], text[2], text[3]);
}

constexpr Known kVideo[] = {
    {fcc("DX50"), QORV_MT_VID_MPEG4}, {fcc("dx50"), QORV_MT_VID_MPEG4}, {fcc("DIV4"), QORV_MT_VID_MPEG4},
    {fcc("div4"), QORV_MT_VID_MPEG4}, {fcc("DIVX"), QORV_MT_VID_MPEG4}, {fcc("divx"), QORV_MT_VID_MPEG4},
    {fcc("XVID"), QORV_MT_VID_MPEG4}, {fcc("xvid"), QORV_MT_VID_MPEG4}, {fcc("FMP4"), QORV_MT_VID_MPEG4},
    {fcc("M4S2"), QORV_MT_VID_MPEG4}, {fcc("m4s2"), QORV_MT_VID_MPEG4}, {fcc("MP4V"), QORV_MT_VID_MPEG4},
    {fcc("mp4v"), QORV_MT_VID_MPEG4}, {fcc("H263"), QORV_MT_VID_H263},  {fcc("h263"), QORV_MT_VID_H263},
    {fcc("d263"), QORV_MT_VID_H263},  {fcc("s263"), QORV_MT_VID_H263},  {fcc("AVC1"), QORV_MT_VID_H264},
    {fcc("avc1"), QORV_MT_VID_H264},  {fcc("avcC"), QORV_MT_VID_H264},  {fcc("H264"), QORV_MT_VID_H264},
    {fcc("h264"), QORV_MT_VID_H264},  {fcc("x264"), QORV_MT_VID_H264},  {fcc("WMV1"), QORV_MT_VID_WMV1},
    {fcc("wmv1"), QORV_MT_VID_WMV1},  {fcc("WMV2"), QORV_MT_VID_WMV2},  {fcc("wmv2"), QORV_MT_VID_WMV2},
    {fcc("WMV3"), QORV_MT_VID_WMV3},  {fcc("wmv3"), QORV_MT_VID_WMV3},  {fcc("DIV3"), QORV_MT_VID_DIV3},
    {fcc("div3"), QORV_MT_VID_DIV3},  {fcc("RV10"), QORV_MT_VID_RV10},  {fcc("RV20"), QORV_MT_VID_RV20},
    {fcc("RV30"), QORV_MT_VID_RV30},  {fcc("RV40"), QORV_MT_VID_RV40},  {fcc("MP43"), QORV_MT_VID_MP43},
    {fcc("mp43"), QORV_MT_VID_MP43},  {fcc("WVC1"), QORV_MT_VID_VC1},   {fcc("wvc1"), QORV_MT_VID_VC1},
    {fcc("VP80"), QORV_MT_VID_VP8},   {fcc("HVC1"), QORV_MT_VID_HEVC},  {fcc("hvc1"), QORV_MT_VID_HEVC},
    {fcc("hvcC"), QORV_MT_VID_HEVC},  {fcc("H265"), QORV_MT_VID_HEVC},  {fcc("h265"), QORV_MT_VID_HEVC},
    {fcc("x265"), QORV_MT_VID_HEVC},  {fcc("HFYU"), QORV_MT_VID_HFYU},
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
    {fcc("aac "), QORV_MT_AUD_AAC},
    {fcc("mp4a"), QORV_MT_AUD_AAC},
    {fcc("samr"), QORV_MT_AUD_AMR_NB},
    {fcc("sawb"), QORV_MT_AUD_AMR_WB},
    {fcc("sqcp"), QORV_MT_AUD_QCELP},
    {fcc("dqcp"), QORV_MT_AUD_QCELP},
    {fcc("evrc"), QORV_MT_AUD_EVRC},
    {fcc("sipr"), QORV_MT_AUD_SIPR},
    {fcc("cook"), QORV_MT_AUD_COOK},
};

constexpr Known kSubtitle[] = {
    {fcc("SSRT"), QORV_MT_SUB_SRT},  {fcc("TX3G"), QORV_MT_SUB_TX3G}, {fcc("tx3g"), QORV_MT_SUB_TX3G},
    {fcc("SBTL"), QORV_MT_SUB_TX3G}, {fcc("sbtl"), QORV_MT_SUB_TX3G}, {fcc("SASS"), QORV_MT_SUB_ASS},
    {fcc("SSSA"), QORV_MT_SUB_SSA},
};

constexpr Known kDrm[] = {
    {fcc("divx"), QORV_MT_DRM_DIVX},
    {fcc("DIVX"), QORV_MT_DRM_DIVX},
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
