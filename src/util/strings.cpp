#include <string.h>

#include "qorv_skia.h"

namespace {

constexpr bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

constexpr bool is_line_end(char c) {
    return c == '\n' || c == '\r';
}

int32_t length_of(const char *str) {
    return static_cast<int32_t>(strlen(str));
}

void set(const char **where, const char *value) {
    if (where != nullptr) *where = value;
}

// The text at `pos`, or null at the end of the string.
const char *text_at(const char *pos) {
    return *pos != 0 ? pos : nullptr;
}

const char *find_blank(const char *from, const char *end) {
    for (; from < end; from++) {
        if (is_blank(*from)) return from;
    }
    return nullptr;
}

const char *find_text(const char *from, const char *end) {
    for (; from < end; from++) {
        if (!is_blank(*from)) return from;
    }
    return nullptr;
}

void copy_text(char *dst, const char *src, uint32_t bytes) {
    memcpy(dst, src, bytes);
    dst[bytes] = 0;
}

// The path begins with "/" whether the text does or not, and ends with the string at the latest.
void copy_path(char *dst, const char *src, uint32_t bytes) {
    if (src == nullptr || bytes == 0) return;
    if (*src != '/') *dst++ = '/';
    copy_text(dst, src, static_cast<uint32_t>(strnlen(src, bytes)));
}

constexpr int32_t decimal_digit(char c) {
    return c >= '0' && c <= '9' ? c - '0' : 0;
}

// Host and path of a text without a port.
void split_host_and_path(const char *rest, char *host, char *path, const char **next) {
    uint32_t len;
    const char *text;
    qorv_str_parse_by_ctok(rest, '/', &len, &text);
    if (len == 0) {
        copy_path(path, rest, static_cast<uint32_t>(length_of(rest)));
        return;
    }
    copy_text(host, rest, len);
    if (text == nullptr) return;
    qorv_str_parse_one_line(text, &len, next);
    copy_path(path, text, len);
}

}  // namespace

extern "C" const char *qorv_str_move_to_validw(const char *str) {
    return str != nullptr ? find_text(str, str + length_of(str)) : nullptr;
}

extern "C" const char *qorv_str_move_to_eow(const char *str) {
    const int32_t len = length_of(str);
    if (len == 0) return nullptr;
    if (len == 1) return str;
    const char *end = str + len;
    const char *word = find_text(str, end);
    if (word == nullptr) return nullptr;
    if (word + 1 == end) return word;
    const char *blank = find_blank(word + 1, end - 1);
    return blank != nullptr ? blank - 1 : nullptr;
}

extern "C" const char *qorv_str_move_to_nextw(const char *str) {
    return find_text(str, str + length_of(str) - 1);
}

extern "C" const char *qorv_str_move_to_nextl(const char *str) {
    const char *last = str + length_of(str) - 1;
    for (; str < last; str++) {
        if (!is_line_end(*str)) continue;
        if (str[0] == '\r' && str[1] == '\n') str++;
        return str != last ? str : nullptr;
    }
    return nullptr;
}

extern "C" int32_t qorv_str_parse_by_ctok(const char *str, char c, uint32_t *len, const char **next) {
    *len = 0;
    set(next, nullptr);
    if (*str == 0) return -1;
    const char *pos = str;
    while (*pos != 0 && *pos != c && !is_line_end(*pos)) pos++;
    *len = static_cast<uint32_t>(pos - str);
    if (*pos != 0) set(next, text_at(pos + 1));
    return 0;
}

extern "C" int32_t qorv_str_parse_by_stok(const char *str, const char *tok, uint32_t *len, const char **next) {
    *len = 0;
    set(next, nullptr);
    const size_t tok_len = strlen(tok);
    for (const char *pos = str; *pos != 0; pos++) {
        const bool found = strncmp(pos, tok, tok_len) == 0;
        if (!found && !is_line_end(*pos)) continue;
        *len = static_cast<uint32_t>(pos - str);
        set(next, text_at(found ? pos + tok_len : pos + 1));
        return 0;
    }
    return -1;
}

extern "C" int32_t qorv_str_parse_one_line(const char *str, uint32_t *len, const char **next) {
    *len = 0;
    set(next, nullptr);
    const size_t line = strcspn(str, "\r\n");
    const char *end = str + line;
    if (end[0] == '\r' && end[1] != '\n') return -1;
    *len = static_cast<uint32_t>(line);
    if (*end == 0) return -1;
    set(next, text_at(*end == '\r' ? end + 2 : end + 1));
    return 0;
}

extern "C" int32_t qorv_str_get_one_az09(const char * /*str*/) {
    return 0;
}

extern "C" int32_t qorv_str_conv_a2uri(const char *src, char *dst) {
    const char *start = dst;
    for (; *src != 0; src++) {
        if (*src == ' ') {
            memcpy(dst, "%20", 3);
            dst += 3;
        } else {
            *dst++ = *src;
        }
    }
    *dst = 0;
    return static_cast<int32_t>(dst - start);
}

extern "C" int32_t qorv_str_conv_uri2a(const char *src, char *dst) {
    const char *start = dst;
    while (*src != 0) {
        if (*src != '%') {
            *dst++ = *src++;
            continue;
        }
        src++;
        int32_t byte = 0;
        for (int digit = 0; digit < 2; digit++) {
            byte = 16 * byte + decimal_digit(*src);
            if (*src != 0) src++;
        }
        *dst++ = static_cast<char>(byte);
    }
    *dst = 0;
    return static_cast<int32_t>(dst - start);
}

extern "C" int32_t qorv_str_parse_uri(const char *uri, char *scheme, char *host, char *port, char *path,
                                      const char **next) {
    *scheme = *host = *port = *path = 0;
    *next = nullptr;
    const char *start = qorv_str_move_to_validw(uri);
    if (start == nullptr) return -1;

    uint32_t len;
    const char *rest;
    if (qorv_str_parse_by_stok(start, "://", &len, &rest) != 0) return -1;
    copy_text(scheme, start, len);
    if (rest == nullptr) return -1;

    const char *port_text;
    qorv_str_parse_by_ctok(rest, ':', &len, &port_text);
    if (port_text == nullptr) {
        split_host_and_path(rest, host, path, next);
        return 0;
    }
    copy_text(host, rest, len);

    const char *path_text;
    qorv_str_parse_by_ctok(port_text, '/', &len, &path_text);
    if (len == 0) return -1;
    copy_text(port, port_text, len);
    if (path_text == nullptr) return 0;
    // The length is that of the path, the bytes are those of the line after it: kept, since callers see it so.
    qorv_str_parse_one_line(path_text, &len, next);
    copy_path(path, *next, len);
    return 0;
}
