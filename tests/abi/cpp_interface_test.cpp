// The C++ interface over the C one: what handles own, what views cover, what converters are handed. Built as C++17
// without exceptions and RTTI, with assertions.
#undef NDEBUG
#include <gtest/gtest.h>

#include <qorv_skia.hpp>
#include <set>
#include <string>
#include <vector>

namespace {

using qorv::Image;
using qorv::Plane;
using qorv::Status;

int blocks = 0;

void *counting_alloc(uint32_t size, uint64_t *) {
    blocks++;
    return malloc(size);
}

void counting_free(void *block, uint64_t) {
    blocks--;
    free(block);
}

void *failing_alloc(uint32_t, uint64_t *) {
    return nullptr;
}

qorv::Layout counted() {
    qorv::Layout layout;
    layout.alloc = counting_alloc;
    layout.free = counting_free;
    return layout;
}

TEST(CppInterface, HandlesOwnOneReferenceEach) {
    {
        auto [image, status] = Image::create(8, 4, QORV_CS_YUV420, counted());
        ASSERT_EQ(status, Status::ok);
        QORV_IMGB *const record = image.get();
        EXPECT_EQ(image.count(), 1);
        Image copy = image;
        EXPECT_EQ(copy.count(), 2);
        Image moved = std::move(copy);
        EXPECT_EQ(moved.count(), 2);
        EXPECT_FALSE(copy);  // NOLINT(bugprone-use-after-move): a moved handle is empty
        EXPECT_EQ(copy.count(), 0);
        Image &same = moved;
        moved = same;
        EXPECT_EQ(moved.count(), 2);
        moved = Image();
        EXPECT_EQ(image.count(), 1);
        moved = image;
        image.reset();
        EXPECT_EQ(moved.count(), 1);
        EXPECT_EQ(moved.detach(), record);
        EXPECT_FALSE(moved);
        const Image adopted(record);
        EXPECT_EQ(adopted.count(), 1);
        EXPECT_EQ(blocks, 1);
    }
    EXPECT_EQ(blocks, 0);
}

TEST(CppInterface, FailuresGiveEmptyHandlesAndStatuses) {
    qorv::Layout layout = counted();
    layout.alloc = failing_alloc;
    EXPECT_EQ(Image::create(8, 4, QORV_CS_YUV420, layout).status, Status::alloc_failed);
    EXPECT_FALSE(Image::create(8, 4, QORV_CS_YUV420, layout));
    layout.free = nullptr;
    EXPECT_EQ(Image::create(8, 4, QORV_CS_YUV420, layout).status, Status::invalid_argument);
    EXPECT_EQ(Image::create(8, 4, 600).status, Status::unsupported_colour_space);
    EXPECT_EQ(Image().rebirth(1, 1, QORV_CS_YUV400), Status::invalid_argument);
    EXPECT_EQ(qorv::BitstreamBuffer::create(8, 0, failing_alloc, counting_free).status, Status::bitb_alloc_failed);
    EXPECT_EQ(qorv::AudioBuffer::create(8, 1, 16, 0, failing_alloc, counting_free).status, Status::alloc_failed);
    QORV_IRSZ_PARAM param = {};
    param.format = 20;
    param.mode = 9;
    EXPECT_EQ(qorv::Resizer::create(param).status, Status::irsz_mode);

    std::set<std::string> texts;
    for (const int32_t code : {0, -1, -2, -3, -4, -102, -105, -203, -204, -211, -7}) {
        EXPECT_TRUE(texts.insert(to_text(Status{code})).second) << code;
    }
}

struct Shape {
    uint32_t cs;
    std::vector<std::pair<int, int>> planes;  // width and height of a picture of 5x3, in samples
    int bytes;                                // of a sample
};

TEST(CppInterface, PlanesCoverTheVisibleSamples) {
    const Shape shapes[] = {
        {QORV_CS_YUV400, {{5, 3}}, 1},
        {QORV_CS_YUV420, {{5, 3}, {3, 2}, {3, 2}}, 1},
        {QORV_CS_NV12, {{5, 3}, {6, 2}}, 1},
        {QORV_CS_YUVA444, {{5, 3}, {5, 3}, {5, 3}, {5, 3}}, 1},
        {QORV_CS_P210, {{5, 3}, {3, 3}, {3, 3}}, 2},
        {QORV_CS_RGB565, {{5, 3}}, 2},
        {QORV_CS_RGB888, {{15, 3}}, 1},
        {QORV_CS_BGRA8888, {{20, 3}}, 1},
    };
    for (const Shape &shape : shapes) {
        SCOPED_TRACE(shape.cs);
        qorv::Layout layout;
        layout.padding = qorv::PlaneWords::all(4, 2);
        const auto [image, status] = Image::create(5, 3, shape.cs, layout);
        ASSERT_EQ(status, Status::ok);
        ASSERT_EQ(image.plane_count(), shape.planes.size());
        for (uint32_t i = 0; i < image.plane_count(); i++) {
            const auto plane = image.plane(i);
            EXPECT_EQ(plane.data(), image->a[i]);
            EXPECT_EQ(plane.stride(), image->s[i]);
            EXPECT_EQ(plane.width(), shape.planes[i].first * shape.bytes);
            EXPECT_EQ(plane.height(), shape.planes[i].second);
            if (shape.bytes == 2) {
                EXPECT_EQ(image.plane<uint16_t>(i).width(), shape.planes[i].first);
            }
        }
    }
}

TEST(CppInterface, ViewsStayInsideTheirBounds) {
    uint16_t samples[4 * 6];
    for (int i = 0; i < 24; i++) samples[i] = static_cast<uint16_t>(i);
    const Plane<uint16_t> plane(samples, 5, 4, 12);
    EXPECT_EQ(plane(4, 3), 22);
    EXPECT_EQ(plane.stride_in_samples(), 6);
    const Plane<const uint16_t> part = plane.part(1, 1, 3, 2);
    EXPECT_EQ(part(0, 0), 7);
    EXPECT_EQ(part(2, 1), 15);
    const Plane<uint16_t> flipped = plane.upside_down();
    EXPECT_EQ(flipped(0, 0), 18);
    EXPECT_EQ(flipped(0, 3), 0);
    EXPECT_EQ(flipped.upside_down()(2, 1), plane(2, 1));

    EXPECT_DEATH((void)plane(5, 0), "");
    EXPECT_DEATH((void)plane(0, 4), "");
    EXPECT_DEATH((void)plane.row(-1), "");
    EXPECT_DEATH((void)plane.part(3, 0, 3, 1), "");
    EXPECT_DEATH((void)part.row(0)[3], "");
    EXPECT_DEATH((void)Image().width(), "");
}

TEST(CppInterface, ConvertersAreHandedWhatTheyCount) {
    // Strides of the views are bytes; these converters count samples.
    uint16_t yuv[3][2 * 8], rgb[3][2 * 12] = {}, expected[3][2 * 12] = {};
    for (int i = 0; i < 3 * 16; i++) yuv[i / 16][i % 16] = static_cast<uint16_t>(i * 21);
    const auto plane = [](auto *at, int stride) { return Plane(at, 6, 2, 2 * stride); };
    const auto source = qorv::planar(QORV_CS_P410, plane(yuv[0], 8), plane(yuv[1], 8), plane(yuv[2], 8));
    const auto destination = qorv::planar(QORV_CS_R10G10B10, plane(rgb[0], 12), plane(rgb[1], 12), plane(rgb[2], 12));
    ASSERT_EQ(convert(source, destination), Status::ok);
    const void *const from[3] = {yuv[0], yuv[1], yuv[2]};
    void *const to[3] = {expected[0], expected[1], expected[2]};
    const int32_t from_strides[3] = {8, 8, 8}, to_strides[3] = {12, 12, 12};
    qorv_csc_p410_to_r10g10b10(from, 6, 2, from_strides, 0, to, 6, 2, to_strides, QORV_CS_R10G10B10);
    EXPECT_EQ(memcmp(rgb, expected, sizeof rgb), 0);

    // An image to packed pixels in two orders, upside down.
    const auto [image, status] = Image::create(7, 2, QORV_CS_YUV444);
    ASSERT_EQ(status, Status::ok);
    for (uint32_t i = 0; i < 3; i++) {
        for (int y = 0; y < 2; y++) {
            for (int x = 0; x < 7; x++) image.plane(i)(x, y) = static_cast<uint8_t>(40 * int(i) + 20 * y + 3 * x);
        }
    }
    uint8_t rgba[2][28], bgra[2][28];
    ASSERT_EQ(convert(image.view(), qorv::packed(QORV_CS_RGBA8888, rgba[0], 7, 2, 28)), Status::ok);
    ASSERT_EQ(convert(image.view(), qorv::packed(QORV_CS_BGRA8888, bgra[1], 7, 2, -28)), Status::ok);
    for (int i = 0; i < 28; i++) {
        const int swapped = i % 4 == 3 ? i : i / 4 * 4 + 2 - i % 4;
        EXPECT_EQ(rgba[0][i], bgra[1][swapped]) << i;
        EXPECT_EQ(rgba[1][i], bgra[0][swapped]) << i;
    }
    EXPECT_EQ(convert(image.view(), image.view()), Status::ok);  // plane copier, in place
    EXPECT_EQ(convert(image.view(), qorv::packed(QORV_CS_BGR888, rgba[0], 7, 2, 28)), Status::unsupported_colour_space);
}

TEST(CppInterface, DigestsOfRowsLongerThanACall) {
    std::vector<uint16_t> samples(600 * 2);
    for (size_t i = 0; i < samples.size(); i++) samples[i] = static_cast<uint16_t>(i * 77);
    const Plane<const uint16_t> plane(samples.data(), 600, 2, 1200);
    const qorv::Digest by_rows = qorv::Md5().update(plane).finish();
    EXPECT_TRUE(by_rows == qorv::Md5().update(samples.data(), 2 * samples.size()).finish());
    qorv::Md5 md5;
    md5.update("a", 1).finish();
    EXPECT_STREQ(md5.finish().hex().text, "d41d8cd98f00b204e9800998ecf8427e");  // begun anew
}

TEST(CppInterface, BytesKeepWhatTheyHaveWhenASetFails) {
    qorv::Bytes bytes, other;
    const uint8_t text[] = {1, 2, 3};
    ASSERT_EQ(bytes.set(text, 5), Status::ok);
    EXPECT_EQ(bytes.set({}), Status::invalid_argument);
    EXPECT_EQ(bytes.bytes()[2], 3);
    other = std::move(bytes);
    EXPECT_EQ(other.type(), 5u);
    EXPECT_EQ(other.bytes().size(), 3u);
}

TEST(CppInterface, ReadersKnowWhatIsLeft) {
    uint8_t buffer[8];
    qorv::BitWriter writer(buffer);
    EXPECT_EQ(writer.write(0xABC, 12), Status::ok);
    writer.write_te(2, 5);
    EXPECT_EQ(writer.sink(), Status::ok);
    qorv::BitReader reader(writer.written());
    EXPECT_EQ(reader.bits_left(), 16);
    EXPECT_EQ(reader.peek(4), 0xAu);
    EXPECT_EQ(reader.bits_left(), 16);
    EXPECT_EQ(reader.read(12), 0xABCu);
    EXPECT_EQ(reader.read_te(5), 2u);
    EXPECT_EQ(reader.bits_left(), 1);
    reader.skip_align8();
    EXPECT_EQ(reader.bits_left(), 0);
    EXPECT_EQ(reader.read(3), 0xFFFFFFFFu);
}

TEST(CppInterface, ContainersOfValues) {
    auto [list, list_status] = qorv::List<double>::create();
    ASSERT_EQ(list_status, Status::ok);
    for (const double value : {2.0, 3.0}) ASSERT_NE(list.add(value), nullptr);
    list.add_first(1.0);
    EXPECT_EQ(*list.first(), 1.0);
    double sum = 0;
    for (const double value : list) sum = 10 * sum + value;
    EXPECT_EQ(sum, 123);
    EXPECT_TRUE(list.remove(++list.begin()) != list.end());
    EXPECT_EQ(*list.last(), 3);
    EXPECT_EQ(list.size(), 2);
    qorv::List<double> taken;
    taken = std::move(list);
    EXPECT_EQ(taken.size(), 2);

    auto [pool, pool_status] = qorv::Pool<int>::create(2);
    ASSERT_EQ(pool_status, Status::ok);
    int *const oldest = pool.take();
    pool.take();
    EXPECT_EQ(pool.take(), nullptr);
    EXPECT_EQ(pool.oldest(), oldest);
    pool.give_back();
    EXPECT_EQ(pool.used(), 1);

    auto [ring, ring_status] = qorv::Ring::create(8);
    ASSERT_EQ(ring_status, Status::ok);
    const uint8_t line[] = {'a', 'b', '\r', '\n', 'c'};
    EXPECT_TRUE(ring.put(line));
    EXPECT_FALSE(ring.put(line));
    char text[10];
    EXPECT_EQ(ring.take_line(text), 4);
    uint8_t rest[4];
    EXPECT_EQ(ring.take(rest), 1);
    EXPECT_TRUE(ring.empty());
}

}  // namespace
