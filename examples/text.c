/* Takes a URI and a header line apart. */
#include <qorv_skia.h>
#include <stdio.h>
#include <string.h>

int main(void) {
    const char *uri = "rtsp://example.net:554/live/stream%201";
    char scheme[64], host[64], port[64], path[64]; /* each two bytes longer than the URI at least */
    const char *next;
    /* The path is that of the text before an end of line: with a port it is looked for behind one. */
    if (qorv_str_parse_uri("rtsp://example.net/live", scheme, host, port, path, &next) != 0) return 1;
    printf("scheme %s, host %s, path %s\n", scheme, host, path);
    if (strcmp(scheme, "rtsp") != 0 || strcmp(host, "example.net") != 0 || strcmp(path, "/live") != 0) return 1;
    if (qorv_str_parse_uri(uri, scheme, host, port, path, &next) != 0) return 1;
    printf("host %s, port %s\n", host, port);
    if (strcmp(port, "554") != 0) return 1;

    char plain[64]; /* as long as the source and its zero byte */
    qorv_str_conv_uri2a("stream%201", plain);
    printf("unescaped: %s\n", plain);
    if (strcmp(plain, "stream 1") != 0) return 1;

    const char *header = "Content-Type: video/H264\r\nCSeq: 2\r\n";
    uint32_t length;
    const char *value;
    if (qorv_str_parse_by_stok(header, ": ", &length, &value) != 0) return 1;
    printf("field %.*s", (int)length, header);
    if (qorv_str_parse_one_line(value, &length, &next) != 0) return 1;
    printf(" is %.*s, then %s", (int)length, value, next);
    return strncmp(value, "video/H264", length) == 0 && strncmp(next, "CSeq", 4) == 0 ? 0 : 1;
}
