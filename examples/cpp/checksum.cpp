// MD5 of bytes that come in pieces, and of a picture, as decoders are compared with.
#include <cstdio>
#include <cstring>
#include <qorv_skia.hpp>

int main() {
    const qorv::Digest digest = qorv::Md5().update("message ", 8).update("digest", 6).finish();
    std::printf("message digest: %s\n", digest.hex().text);
    if (std::strcmp(digest.hex().text, "f96b697d7cb7938d525a2f31aaf161d0") != 0) return 1;  // RFC 1321, A.5

    auto [picture, status] = qorv::Image::create(4, 2, QORV_CS_YUV420);
    if (!picture) return std::printf("no picture: %s\n", to_text(status));
    qorv::Md5 planes;
    for (std::uint32_t i = 0; i < picture.plane_count(); i++) {
        const qorv::Plane<std::uint8_t> plane = picture.plane(i);
        for (std::int32_t y = 0; y < plane.height(); y++) std::memset(plane.row(y).data(), 'x', plane.row(y).size());
        planes.update(plane);
    }
    qorv::Digest whole;
    if (picture.md5(whole) != qorv::Status::ok) return 1;
    return whole == planes.finish() ? 0 : 1;
}
