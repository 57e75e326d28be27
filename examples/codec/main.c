/* qcodec: the commands. */
#include "codec.h"
static const char usage[] =
    "usage: qcodec encode IN.y4m OUT.qv [--qp 0..51] [--key N] [--threads N]\n"
    "       qcodec decode IN.qv OUT.y4m [--from N] [--threads N] [--preview WxH DIR]\n"
    "       qcodec info IN.qv\n"
    "--key: a key picture every N. --from: begin with picture N. --preview: key pictures, scaled, as DIR/NUMBER.ppm.\n";

static int qp = 28, key_interval = 250, from = 0, threads = 1, width = 1, height = 1;
static const char *preview;

static bool read_options(char **argv) {
    for (char text[64]; argv[0] != NULL && argv[1] != NULL; argv += 2) {
        snprintf(text, sizeof text, "%s %s", argv[0], argv[1]);
        int known = sscanf(text, "--qp %d", &qp) + sscanf(text, "--key %d", &key_interval);
        known += sscanf(text, "--from %d", &from) + sscanf(text, "--threads %d", &threads);
        if (sscanf(text, "--preview %dx%d", &width, &height) == 2) known = (preview = argv++[2]) != NULL;
        if (known != 1) return false;
    }
    return argv[0] == NULL && qp >= 0 && qp <= MAX_QP && key_interval > 0 && from >= 0 && threads > 0 &&
           threads <= MAX_THREADS && width > 0 && width <= MAX_SIDE && height > 0 && height <= MAX_SIDE;
}

/* Ends the program if something does not hold. */
static void need(bool holds, const char *path, const char *what) {
    if (holds) return;
    fprintf(stderr, "\nqcodec: %s %s\n", path, what);
    exit(1);
}

static int encode(const char *in, const char *out) {
    Codec codec = {.encoding = true, .threads = threads, .key_interval = key_interval, .qp = qp};
    Output output;
    FILE *file = fopen(in, "rb");
    need(file != NULL && y4m_read_header(file, &codec.header), in, "is not a Y4M file of 8-bit 4:2:0");
    need(output_open(&output, out) && codec_start(&codec), out, "cannot be written");
    while ((codec.source = picture_take(&codec)) != NULL && y4m_copy_picture(file, codec.source, NULL) &&
           encode_picture(&codec, output_write, &output)) {
        fprintf(stderr, "\r%u pictures", codec.header.number);
        picture_release(&codec.source);
    }
    need(feof(file), in, "ends inside a picture, or needs more memory than there is");
    encode_unit(&codec, 'E', output_write, &output);
    codec_stop(&codec);
    fclose(file);
    need(output_close(&output), out, "was not written");
    return 0;
}

static void put_picture(const Codec *codec, Output *output, bool first) {
    const Header *h = &codec->header;
    char text[4096];
    snprintf(text, sizeof text, "YUV4MPEG2 W%d H%d F%u:%u Ip C420jpeg\n", h->width, h->height, h->rate_num,
             h->rate_den);
    if (first) output_write(output, text, strlen(text));
    y4m_copy_picture(NULL, codec->reference, output);
    if (preview == NULL || !h->key) return;
    snprintf(text, sizeof text, "%s/%u.ppm", preview, h->number);
    need(preview_write(codec->reference, width, height, text), text, "cannot be written");
}

static QORV_BITB *load(const char *path, int32_t *size) {
    FILE *file = fopen(path, "rb");
    const long end = file != NULL && fseek(file, 0, SEEK_END) == 0 ? ftell(file) : -1;
    QORV_BITB *bytes = end > 0 && end <= INT32_MAX ? qorv_bitb_create((uint32_t)end, 0, 0, NULL, NULL, NULL) : NULL;
    need(bytes != NULL && fseek(file, 0, SEEK_SET) == 0, path, "cannot be read");
    *size = (int32_t)fread(bytes->buf, 1, (size_t)end, file);
    fclose(file);
    return bytes;
}

/* Without an output it tells of the pictures. */
static int decode(const char *in, const char *out) {
    Codec codec = {.threads = threads};
    const Header *h = &codec.header;
    Output output;
    Header first = {0};
    int count = 0, failed = 0;
    QORV_BITB *bytes = load(in, &codec.size);
    codec.stream = bytes->buf;
    need(out == NULL || output_open(&output, out), out, "cannot be written");
    if (from > 0) decode_from(&codec, (uint32_t)from);
    while (decode_next(&codec)) {
        const char *wrong = codec.error;
        if (wrong != NULL) {
            failed = fprintf(stderr, "\nqcodec: picture %u, byte %d: %s\n", h->number, codec.offset, wrong) > 0;
        } else if (out == NULL) {
            printf("picture %u, %s, at byte %d, qp %u\n", h->number, h->key ? "key" : "inter", codec.offset, h->qp);
        } else if (h->number >= (uint32_t)from) {
            if (count == 0) first = *h;
            need(h->width == first.width && h->height == first.height, in, "has pictures of two sizes");
            put_picture(&codec, &output, count++ == 0);
            fprintf(stderr, "\r%d pictures", count);
        }
    }
    if (out == NULL) printf("%dx%d, %u/%u a second\n", h->width, h->height, h->rate_num, h->rate_den);
    codec_stop(&codec);
    bytes->release(bytes);
    need(out == NULL || output_close(&output), out, "was not written");
    return failed;
}

int main(int argc, char **argv) {
    const char *command = argc > 2 ? argv[1] : "";
    if (argc == 3 && strcmp(command, "info") == 0) return decode(argv[2], NULL);
    if (argc > 3 && strcmp(command, "encode") == 0 && read_options(argv + 4)) return encode(argv[2], argv[3]);
    if (argc > 3 && strcmp(command, "decode") == 0 && read_options(argv + 4)) return decode(argv[2], argv[3]);
    fputs(usage, stderr);
    return 2;
}
