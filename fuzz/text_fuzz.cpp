// Strings and URIs within the buffer sizes that callers must give.
#include <cstring>
#include <string>

#include "input.h"
#include "qorv_skia.h"

using fuzz::require;

namespace {

void require_inside(const char *result, const std::vector<char> &text) {
    require(result == nullptr || (result >= text.data() && result < text.data() + text.size()),
            "a result is in the text");
}

std::vector<char> buffer(size_t n) {
    return std::vector<char>(n);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    const char separator = static_cast<char>(input.byte() | 1);
    const std::vector<uint8_t> bytes = input.rest();
    std::vector<char> text(bytes.begin(), bytes.end());
    text.push_back(0);
    text.resize(std::strlen(text.data()) + 1);
    text.shrink_to_fit();
    const char *str = text.data();
    const size_t length = text.size() - 1;

    require_inside(qorv_str_move_to_validw(str), text);
    require_inside(qorv_str_move_to_eow(str), text);
    require_inside(qorv_str_move_to_nextw(str), text);
    require_inside(qorv_str_move_to_nextl(str), text);

    uint32_t len;
    const char *next;
    qorv_str_parse_by_ctok(str, separator, &len, &next);
    require(len <= length, "a field lies in the text");
    require_inside(next, text);
    const char token[] = {separator, 'x', 0};
    qorv_str_parse_by_stok(str, token, &len, &next);
    require(len <= length, "a field lies in the text");
    require_inside(next, text);
    qorv_str_parse_one_line(str, &len, &next);
    require(len <= length, "a line lies in the text");
    require_inside(next, text);

    std::vector<char> escaped = buffer(3 * length + 1), plain = buffer(3 * length + 2);
    require(qorv_str_conv_a2uri(str, escaped.data()) == static_cast<int32_t>(std::strlen(escaped.data())),
            "the length returned is that of the text");
    qorv_str_conv_uri2a(str, plain.data());

    std::vector<char> scheme = buffer(length + 2), host = buffer(length + 2), port = buffer(length + 2),
                      path = buffer(length + 2);
    if (qorv_str_parse_uri(str, scheme.data(), host.data(), port.data(), path.data(), &next) == 0) {
        require(path[0] == 0 || path[0] == '/', "a path begins with a slash");
    }
    require_inside(next, text);
    return 0;
}
