/* Writes a small header and reads it back, the second time through a refill that drops emulation-prevention bytes. */
#include <qorv_skia.h>
#include <stdio.h>

/* A reader of NAL units: the record comes first, the refill's own state behind it. */
typedef struct {
    QORV_BSR bsr;
    int zeros; /* zero bytes passed just now, at most 2 */
} NalReader;

/* Loads up to `count` bytes without the 03 of each 00 00 03. */
static int32_t refill_from_nal(QORV_BSR *bsr, int32_t count) {
    NalReader *nal = (NalReader *)bsr;
    uint32_t code = 0;
    int32_t loaded = 0;
    while (loaded < count && bsr->cur <= bsr->end) {
        const uint8_t byte = *bsr->cur++;
        if (nal->zeros == 2 && byte == 3) {
            nal->zeros = 0;
            continue;
        }
        nal->zeros = byte != 0 ? 0 : nal->zeros < 2 ? nal->zeros + 1 : 2;
        code |= (uint32_t)byte << (24 - 8 * loaded);
        loaded++;
    }
    bsr->code = code;
    bsr->leftbits = 8 * loaded;
    return loaded > 0 ? 0 : QORV_ERR;
}

int main(void) {
    uint8_t bytes[16]; /* at least one more than is written: see qorv_bsw_init() */
    QORV_BSW bsw;
    qorv_bsw_init(&bsw, bytes, sizeof bytes, NULL);
    if (qorv_bsw_write(&bsw, 0x42, 8) != QORV_OK) return 1; /* a profile */
    qorv_bsw_write1(&bsw, 1);                               /* a flag */
    qorv_bsw_write_ue(&bsw, 119);                           /* width in macroblocks - 1 */
    qorv_bsw_write_se(&bsw, -2);                            /* an offset */
    if (qorv_bsw_sink(&bsw) != QORV_OK) return 1;
    const int32_t size = (int32_t)(bsw.cur - bsw.beg);
    printf("%d bytes written\n", (int)size);

    QORV_BSR bsr;
    qorv_bsr_init(&bsr, bytes, size, NULL);
    const uint32_t profile = qorv_bsr_read(&bsr, 8), flag = qorv_bsr_read1(&bsr), width = qorv_bsr_read_ue(&bsr);
    const int32_t offset = qorv_bsr_read_se(&bsr);
    printf("profile %u, flag %u, width %u, offset %d\n", (unsigned)profile, (unsigned)flag, (unsigned)width,
           (int)offset);
    if (profile != 0x42 || flag != 1 || width != 119 || offset != -2) return 1;

    const uint8_t escaped[] = {0x00, 0x00, 0x03, 0x01, 0xFF};
    NalReader nal = {.zeros = 0};
    qorv_bsr_init(&nal.bsr, escaped, sizeof escaped, refill_from_nal);
    const uint32_t word = qorv_bsr_read(&nal.bsr, 32);
    printf("without the escape: %08x\n", (unsigned)word);
    return word == 0x000001FF ? 0 : 1;
}
