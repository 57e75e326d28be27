// A list of items, a pool of buffers that go round, and a ring of bytes that is read line by line.
#include <cstdio>
#include <cstring>
#include <qorv_skia.hpp>

namespace {
bool use_list() {
    auto [list, status] = qorv::List<int>::create();
    if (!list) return false;
    for (int pts = 0; pts < 5; pts++) list.add(pts);  // stores a copy
    for (auto at = list.begin(); at != list.end();) {
        if (*at % 2 == 1) {
            at = list.remove(at);
        } else {
            ++at;
        }
    }
    std::printf("list: %d items left\n", static_cast<int>(list.size()));
    return list.size() == 3;
}

bool use_pool() {
    struct Packet {
        char text[64];
    };
    auto [pool, status] = qorv::Pool<Packet>::create(2);
    if (!pool) return false;
    Packet *const first = pool.take(), *const second = pool.take();
    const bool exhausted = pool.take() == nullptr;
    std::strcpy(first->text, "oldest");
    std::strcpy(second->text, "newest");
    std::printf("pool: %s comes first\n", pool.oldest()->text);
    const bool in_order = pool.oldest() == first;
    pool.give_back();
    return exhausted && in_order && pool.available() == 1;
}

bool use_ring() {
    constexpr int kSize = 64;
    auto [ring, status] = qorv::Ring::create(kSize);  // holds kSize - 1 bytes
    if (!ring) return false;
    const char request[] = "OPTIONS * RTSP/1.0\r\nCSeq: 1\r\n\r\n";
    if (!ring.put({reinterpret_cast<const std::uint8_t *>(request), std::strlen(request)})) return false;
    char line[kSize + 2];
    int lines = 0;
    while (ring.take_line(line) > 0) {
        lines++;
        std::printf("ring: %s", line);
    }
    return lines == 3;
}
}  // namespace

int main() {
    return use_list() && use_pool() && use_ring() ? 0 : 1;
}
