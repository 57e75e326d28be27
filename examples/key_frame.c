/* From a container's four-character code to the codec, and whether a packet can be the first to be decoded. */
#include <qorv_skia.h>
#include <stdio.h>

int main(void) {
    const int32_t id = qorv_fcc2mt_vid(QORV_FCC('a', 'v', 'c', '1'));
    if (id != QORV_MT_VID_H264) return 1;
    if (qorv_fcc2mt_vid(QORV_FCC('n', 'o', 'n', 'e')) != QORV_MT_VID_UNKNOWN) return 1;
    if (qorv_fcc2mt_aud(85) != QORV_MT_AUD_MP3) return 1; /* audio tags of AVI and WAVE are small numbers */

    /* Annex B: parameter sets, then a slice of an IDR picture (NAL type 5) or of another one (type 1). */
    static const uint8_t idr[] = {0, 0, 0, 1, 0x67, 0x42, 0, 0, 1, 0x68, 0xCE, 0, 0, 1, 0x65, 0x88, 0x84};
    static const uint8_t other[] = {0, 0, 0, 1, 0x41, 0x9A, 0x24, 0x6C, 0x41, 0x4F};
    const int32_t first = qorv_is_vkeyfrm(id, idr, sizeof idr), second = qorv_is_vkeyfrm(id, other, sizeof other);
    printf("IDR slice: %d, other slice: %d\n", (int)first, (int)second);
    return first == 1 && second == 0 ? 0 : 1;
}
