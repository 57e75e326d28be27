/* A crash in the library, or in a callback that it calls, has to show who called: the stack is walked inside an
 * allocator and inside a refill, and has to lead back to main(). */
#include <stdio.h>
#include <unwind.h>

#include "qorv_skia.h"

int main(void);

static int traces, reached_main;

static _Unwind_Reason_Code visit(struct _Unwind_Context *context, void *unused) {
    (void)unused;
    const _Unwind_Ptr address = _Unwind_GetIP(context);
    /* 0 ends the walk. The return address may be the one after the function's last byte. */
    if (address != 0 && _Unwind_FindEnclosingFunction((void *)(address - 1)) == (void *)main) reached_main++;
    return _URC_NO_REASON;
}

static void trace(void) {
    traces++;
    _Unwind_Backtrace(visit, NULL);
}

static void *allocate(uint32_t size, uint64_t *aux) {
    static char block[64];
    (void)aux;
    trace();
    return size <= sizeof block ? block : NULL;
}

static void release(void *block, uint64_t aux) {
    (void)block;
    (void)aux;
    trace();
}

static int32_t refill(QORV_BSR *bsr, int32_t count) {
    trace();
    return qorv_bsr_flush(bsr, count);
}

int main(void) {
    static const uint8_t bytes[6] = {0xA5, 0x3C};
    QORV_BSR bsr;
    QORV_IMGB *imgb = qorv_imgb_create(4, 4, QORV_CS_YUV400, 0, NULL, NULL, allocate, release, NULL);
    if (imgb == NULL) return 1;
    imgb->release(imgb);
    qorv_bsr_init(&bsr, bytes, sizeof bytes, refill);
    qorv_bsr_read(&bsr, 8);
    qorv_bsr_peek(&bsr, 32);
    printf("%d of %d traces lead to main()\n", reached_main, traces);
    return traces == 4 && reached_main == traces ? 0 : 1;
}
