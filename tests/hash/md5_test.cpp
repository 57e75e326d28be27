#include <gtest/gtest.h>
#include <sys/mman.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "qorv_skia.h"
#include "support/guarded_buffer.h"
#include "support/random.h"

namespace {

using Bytes = std::vector<uint8_t>;

std::string hex(const uint8_t *digest) {
    std::string text;
    for (int i = 0; i < 16; i++) {
        for (const int shift : {4, 0}) text += "0123456789abcdef"[digest[i] >> shift & 15];
    }
    return text;
}

// RFC 1321, section 3, step by step.
std::string reference(Bytes message) {
    const uint64_t bits = message.size() * 8;
    message.push_back(0x80);
    while (message.size() % 64 != 56) message.push_back(0);
    for (int i = 0; i < 8; i++) message.push_back(static_cast<uint8_t>(bits >> (8 * i)));
    uint32_t state[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    for (size_t at = 0; at < message.size(); at += 64) {
        uint32_t x[16], a = state[0], b = state[1], c = state[2], d = state[3];
        std::memcpy(x, &message[at], sizeof x);
        for (uint32_t i = 0; i < 64; i++) {
            static const int rotate[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
            const uint32_t mixed[4] = {(b & c) | (~b & d), (b & d) | (c & ~d), b ^ c ^ d, c ^ (b | ~d)};
            const uint32_t word[4] = {i, 5 * i + 1, 3 * i + 5, 7 * i};
            const uint32_t sine = static_cast<uint32_t>(std::floor(std::fabs(std::sin(i + 1.0)) * 4294967296.0));
            const uint32_t sum = a + mixed[i / 16] + x[word[i / 16] % 16] + sine;
            a = d;
            d = c;
            c = b;
            b += std::rotl(sum, rotate[i / 16][i % 4]);
        }
        state[0] += a;
        state[1] += b;
        state[2] += c;
        state[3] += d;
    }
    return hex(reinterpret_cast<const uint8_t *>(state));
}

std::string finish(QORV_MD5 &md5) {
    uint8_t digest[16];
    qorv_md5_finish(&md5, digest);
    const QORV_MD5 zero = {};
    EXPECT_EQ(std::memcmp(&md5, &zero, sizeof md5), 0) << "the context is cleared";
    return hex(digest);
}

std::string digest_of(const void *data, size_t size) {
    QORV_MD5 md5;
    EXPECT_EQ(qorv_md5_init(&md5), &md5);
    qorv_md5_update(&md5, data, static_cast<uint32_t>(size));
    return finish(md5);
}

TEST(Md5, SuiteOfTheRfc) {
    const char *const suite[][2] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
    };
    for (const auto &[text, digest] : suite) EXPECT_EQ(digest_of(text, std::strlen(text)), digest) << text;
    EXPECT_EQ(digest_of(nullptr, 0), suite[0][1]);
}

TEST(Md5, EveryLengthInAnyPieces) {
    test::Random random;
    for (size_t length = 0; length <= 300; length++) {
        test::GuardedBuffer data(length);
        data.generate(random);
        data.make_read_only();
        const std::string expected = reference(data.bytes());
        EXPECT_EQ(digest_of(data.data(), length), expected) << length;
        QORV_MD5 md5;
        qorv_md5_init(&md5);
        for (size_t done = 0; done < length;) {
            const size_t piece = std::min<size_t>(random.below(random.below(4) == 0 ? 130 : 70), length - done);
            qorv_md5_update(&md5, data.data() + done, static_cast<uint32_t>(piece));
            done += piece;
            ASSERT_EQ(md5.count[0], 8 * done);
        }
        EXPECT_EQ(finish(md5), expected) << length;
    }
}

TEST(Md5, SixteenBitSamplesLowByteFirst) {
    test::Random random;
    for (const uint32_t n : {0u, 1u, 31u, 32u, 33u, 255u, 256u}) {
        test::GuardedBuffer samples(2 * n);
        Bytes bytes = {1, 2, 3};  // the samples need not begin on a word of a block
        for (uint32_t i = 0; i < n; i++) {
            const uint16_t sample = static_cast<uint16_t>(random());
            samples.as<uint16_t>()[i] = sample;
            bytes.push_back(static_cast<uint8_t>(sample & 255));
            bytes.push_back(static_cast<uint8_t>(sample >> 8));
        }
        QORV_MD5 md5;
        qorv_md5_init(&md5);
        qorv_md5_update(&md5, bytes.data(), 3);
        qorv_md5_update_16(&md5, samples.as<uint16_t>(), n);
        EXPECT_EQ(finish(md5), reference(bytes)) << n;
    }
}

// More bits than the low word of the count can hold, at once and by pieces. The digests are OpenSSL's.
TEST(Md5, MessagesBeyondTheLowWordOfTheCount) {
    constexpr size_t kBytes = (1u << 29) + 3;
    void *zeros = mmap(nullptr, kBytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(zeros, MAP_FAILED);
    QORV_MD5 md5;
    qorv_md5_init(&md5);
    qorv_md5_update(&md5, zeros, kBytes);
    EXPECT_EQ(md5.count[0], 24u);
    EXPECT_EQ(md5.count[1], 1u);
    EXPECT_EQ(finish(md5), "f477dd2300ffb741b990c4eac208d915");
    qorv_md5_init(&md5);
    md5.count[0] = 0xFFFFFE00;
    qorv_md5_update(&md5, zeros, 64);
    EXPECT_EQ(md5.count[0], 0u);
    EXPECT_EQ(md5.count[1], 1u) << "carried";
    munmap(zeros, kBytes);
}

// A picture of guarded planes: exactly the rows that are to be hashed, so that one byte more is a crash.
struct Picture {
    int32_t w, h, x, y, extra;  // extra bytes between rows; negative strides when below 0
};

TEST(Md5, Pictures) {
    test::Random random;
    const Picture pictures[] = {{5, 5, 0, 0, 0},   {16, 4, 0, 0, 8}, {33, 7, 3, 1, 1}, {64, 3, 0, 2, -70},
                                {130, 9, 9, 3, 5}, {1, 1, 0, 0, -1}, {8, 2, 0, 2, 0},  {7, 3, 1, 3, 2}};
    for (uint32_t cs = 10; cs <= 99; cs++) {
        const Picture &p = pictures[cs % std::size(pictures)];
        QORV_IMGB imgb;
        std::memset(&imgb, 0xEE, sizeof imgb);
        imgb.cs = cs;
        imgb.w = p.w;
        imgb.h = p.h;
        imgb.x = p.x;
        imgb.y = p.y;
        Bytes hashed;
        std::vector<test::GuardedBuffer> planes;
        for (int i = 0; i < (cs == QORV_CS_YUV400 ? 1 : 3); i++) {
            const int32_t width = i == 0 ? p.w - p.x : (p.w - p.x + 1) / 2;
            const int32_t first = i == 0 ? p.y : p.y / 2, rows = std::max(0, (i == 0 ? p.h : (p.h + 1) / 2) - first);
            const int32_t step = width + std::abs(p.extra);
            planes.emplace_back(rows > 0 ? static_cast<size_t>(step * (rows - 1) + width) : 0);
            planes.back().generate(random);
            const uint8_t *top = planes.back().data() + (p.extra < 0 ? step * std::max(0, rows - 1) : 0);
            imgb.s[i] = p.extra < 0 ? -step : step;
            imgb.a[i] = const_cast<uint8_t *>(top) - first * imgb.s[i];
            for (int32_t r = 0; r < rows; r++) {
                hashed.insert(hashed.end(), top + r * imgb.s[i], top + r * imgb.s[i] + width);
            }
        }
        uint8_t digest[16];
        ASSERT_EQ(qorv_md5_imgb(&imgb, digest), QORV_OK);
        EXPECT_EQ(hex(digest), reference(hashed)) << "colour space " << cs;
    }
    for (const uint32_t cs : {9u, 100u, 500u}) {
        QORV_IMGB imgb = {};
        imgb.cs = cs;
        uint8_t digest[16] = {77};
        EXPECT_EQ(qorv_md5_imgb(&imgb, digest), QORV_ERR_UNSUPPORTED_CS);
        EXPECT_EQ(digest[0], 77);
    }
}

}  // namespace
