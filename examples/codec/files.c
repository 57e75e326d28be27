/* Files: Y4M of 8-bit 4:2:0, one that a thread of its own writes, and previews. */
#include "codec.h"
enum { RING_BYTES = 1 << 20 };

bool y4m_read_header(FILE *file, Header *header) {
    char line[256];
    uint32_t length;
    *header = (Header){.rate_num = 25, .rate_den = 1};
    if (fgets(line, sizeof line, file) == NULL || strncmp(line, "YUV4MPEG2 ", 10) != 0) return false;
    for (const char *field = line, *next; field != NULL; field = next) {
        if (qorv_str_parse_by_ctok(field, ' ', &length, &next) != 0) break;
        if (*field == 'W') header->width = atoi(field + 1);
        if (*field == 'H') header->height = atoi(field + 1);
        if (*field == 'F') sscanf(field + 1, "%u:%u", &header->rate_num, &header->rate_den);
        if (*field == 'C' && (strncmp(field, "C420", 4) != 0 || field[4] == 'p')) return false;
    }
    return header->width > 0 && header->height > 0 && header->width <= MAX_SIDE && header->height <= MAX_SIDE;
}

bool y4m_copy_picture(FILE *from, QORV_IMGB *picture, Output *to) {
    char line[256];
    uint32_t w[4] = {(uint32_t)picture->w}, h[4] = {(uint32_t)picture->h}, planes, units[4];
    qorv_imgb_get_dimension(picture->cs, w, h, &planes, units);
    if (from != NULL && (fgets(line, sizeof line, from) == NULL || strncmp(line, "FRAME", 5) != 0)) return false;
    if (to != NULL) output_write(to, "FRAME\n", 6);
    for (int plane = 0; plane < 3; plane++) {
        for (int y = 0; y < (int)h[plane]; y++) {
            uint8_t *row = sample_at(picture, plane, 0, y);
            if (from != NULL && fread(row, w[plane], 1, from) != 1) return clearerr(from), false;
            if (to != NULL) output_write(to, row, w[plane]);
        }
    }
    return true;
}

/* Waits for half a ring, so that many small pieces cost one wake-up. They stay in the ring while they are written. */
static void *write_out(void *context) {
    Output *output = context;
    void *bytes;
    int32_t n;
    pthread_mutex_lock(&output->lock);
    do {
        while (!output->closing && qorv_rbuf_get_fill_len(output->ring) < RING_BYTES / 2) {
            pthread_cond_wait(&output->changed, &output->lock);
        }
        qorv_rbuf_get_tail(output->ring, &bytes, &n);
        pthread_mutex_unlock(&output->lock);
        const bool good = n == 0 || fwrite(bytes, (size_t)n, 1, output->file) == 1;
        pthread_mutex_lock(&output->lock);
        output->failed |= !good;
        qorv_rbuf_skip_tail(output->ring, n);
        pthread_cond_signal(&output->changed);
    } while (n > 0);
    pthread_mutex_unlock(&output->lock);
    return NULL;
}

bool output_open(Output *output, const char *path) {
    *output = (Output){.lock = PTHREAD_MUTEX_INITIALIZER, .changed = PTHREAD_COND_INITIALIZER};
    output->ring = qorv_rbuf_create(RING_BYTES);
    output->file = fopen(path, "wb");
    return output->ring && output->file && pthread_create(&output->thread, NULL, write_out, output) == 0;
}

void output_write(void *context, const void *bytes, size_t n) {
    Output *output = context;
    pthread_mutex_lock(&output->lock);
    for (size_t done = 0, some; done < n; done += some) {
        void *room;
        int32_t size;
        while (qorv_rbuf_is_full(output->ring)) pthread_cond_wait(&output->changed, &output->lock);
        qorv_rbuf_get_head(output->ring, &room, &size);
        some = n - done < (size_t)size ? n - done : (size_t)size;
        memcpy(room, (const uint8_t *)bytes + done, some);
        qorv_rbuf_skip_head(output->ring, (int32_t)some);
        if (qorv_rbuf_get_fill_len(output->ring) >= RING_BYTES / 2) pthread_cond_signal(&output->changed);
    }
    pthread_mutex_unlock(&output->lock);
}

bool output_close(Output *output) {
    pthread_mutex_lock(&output->lock);
    output->closing = true;
    pthread_cond_signal(&output->changed);
    pthread_mutex_unlock(&output->lock);
    pthread_join(output->thread, NULL);
    const bool good = fclose(output->file) == 0 && !output->failed;
    qorv_rbuf_delete(output->ring);
    return good;
}

/* The resizer makes chroma as large as luma, a scaling converter does the rest. */
static bool convert(const QORV_IMGB *picture, QORV_IMGB *yuv, QORV_IMGB *rgb) {
    const void *const planes[3] = {picture->a[0], yuv->a[1], yuv->a[2]};
    const int32_t strides[3] = {picture->s[0], yuv->s[1], yuv->s[2]};
    for (int plane = 1; plane < 3; plane++) {
        const int32_t w = (picture->w + 1) / 2, h = (picture->h + 1) / 2, stride = picture->s[plane];
        const QORV_IRSZ_PARAM param = {20, 10, w, h, stride, 0, yuv->w, yuv->h, strides[plane], yuv->a[plane]};
        QORV_IRSZ *resizer = qorv_irsz_create(&param, NULL);
        if (resizer == NULL) return false;
        qorv_irsz(resizer, picture->a[plane], 0, 0);
        qorv_irsz_delete(resizer);
    }
    void *const channels[3] = {rgb->a[0], sample_at(rgb, 0, 1, 0), sample_at(rgb, 0, 2, 0)};
    const int32_t w = rgb->w, h = rgb->h, strides_to[3] = {rgb->s[0], rgb->s[0], rgb->s[0]};
    const qorv_csc_fn scale = qorv_imgp_get_fn_csc(yuv->w, yuv->h, QORV_CS_YUV444, w, h, QORV_CS_RGB888, NULL);
    scale(planes, yuv->w, yuv->h, strides, 0, channels, w, h, strides_to, 0);
    return true;
}

bool preview_write(const QORV_IMGB *picture, int width, int height, const char *path) {
    QORV_IMGB *yuv = qorv_imgb_create(picture->w, picture->h, QORV_CS_YUV444, 0, NULL, NULL, NULL, NULL, NULL);
    QORV_IMGB *rgb = qorv_imgb_create(width, height, QORV_CS_RGB888, 0, NULL, NULL, NULL, NULL, NULL);
    FILE *file = yuv != NULL && rgb != NULL && convert(picture, yuv, rgb) ? fopen(path, "wb") : NULL;
    bool good = file != NULL && fprintf(file, "P6\n%d %d\n255\n", width, height) > 0;
    good = good && fwrite(rgb->a[0], (size_t)rgb->s[0] * (size_t)height, 1, file) == 1; /* rows lie end to end */
    if (file != NULL) good = fclose(file) == 0 && good;
    picture_release(&yuv);
    picture_release(&rgb);
    return good;
}
