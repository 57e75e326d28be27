// Takes a URI and a header line apart: the C functions, their fields as string views.
#include <cstdio>
#include <qorv_skia.hpp>
#include <string_view>

int main() {
    char scheme[64], host[64], port[64], path[64];  // each two bytes longer than the URI at least
    const char *next;
    if (qorv_str_parse_uri("rtsp://example.net:554/live", scheme, host, port, path, &next) != 0) return 1;
    std::printf("host %s, port %s\n", host, port);
    if (std::string_view(host) != "example.net" || std::string_view(port) != "554") return 1;

    const char *header = "Content-Type: video/H264\r\nCSeq: 2\r\n";
    std::uint32_t length;
    const char *value;
    if (qorv_str_parse_by_stok(header, ": ", &length, &value) != 0) return 1;
    const std::string_view field(header, length);
    if (qorv_str_parse_one_line(value, &length, &next) != 0) return 1;
    const std::string_view content(value, length);
    std::printf("field %.*s is %.*s\n", static_cast<int>(field.size()), field.data(), static_cast<int>(content.size()),
                content.data());
    return field == "Content-Type" && content == "video/H264" && std::string_view(next).substr(0, 4) == "CSeq" ? 0 : 1;
}
