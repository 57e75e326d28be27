/* Buffers with reference counts, memory from an allocator of the caller's, and owned bytes. */
#include <qorv_skia.h>
#include <stdio.h>
#include <stdlib.h>

static int blocks = 0;

static void *pool_alloc(uint32_t size, uint64_t *aux) {
    blocks++;
    *aux = 0x80000000u; /* for instance the address that a device knows the block by */
    return malloc(size);
}

static void pool_free(void *block, uint64_t aux) {
    (void)aux;
    blocks--;
    free(block);
}

int main(void) {
    int32_t status;
    QORV_BITB *packet = qorv_bitb_create(1500, 1, 0, pool_alloc, pool_free, &status);
    if (packet == NULL) return printf("no buffer: status %d\n", (int)status);
    printf("%d block, device address %#llx\n", blocks, (unsigned long long)packet->aux);
    packet->addref(packet);                     /* a second holder */
    if (packet->release(packet) != 1) return 1; /* which lets go */
    if (packet->release(packet) != 0) return 1; /* the last one frees block and record */
    if (blocks != 0) return 1;

    /* 20 ms of stereo in 16 bits at 48 kHz, both channels in one buffer. */
    QORV_AUDB *audio = qorv_audb_create(960, 2, 16, 0, 1, 0, NULL, NULL, &status);
    if (audio == NULL) return printf("no buffer: status %d\n", (int)status);
    printf("%d channels in %u bytes\n", (int)audio->channels, (unsigned)audio->size[0]);
    audio->release(audio);

    QORV_VDATA title = {0, 0, NULL}; /* the empty value */
    if (qorv_vdata_set(&title, "Clip", 4, 7) != QORV_OK) return 1;
    printf("title: %s\n", (const char *)title.data); /* zero bytes follow the copy */
    qorv_vdata_free(&title);
    return 0;
}
