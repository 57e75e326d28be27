// The codec of examples/codec: what is encoded is decoded, whatever the number of threads, and damage is noticed.
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

extern "C" {
#include "codec.h"
}
#include "support/random.h"

namespace {

using Bytes = std::vector<uint8_t>;

struct Clip {
    int width, height, qp, threads = 1, pictures = 3, key_interval = 2;
};

// Two gratings that move against each other under a little noise, so that all kinds of blocks occur.
uint8_t sample(int plane, int x, int y, uint32_t number) {
    const int moved = static_cast<int>(number) * 3, noise = (x * 7 + y * 13 + moved) % 5;
    const int tile = (x / 24 + y / 24) % 3;
    const int value = tile == 0 ? 8 * (x - moved) : tile == 1 ? 5 * (y + moved) : 40 * plane + 90;
    return static_cast<uint8_t>((value & 127) + 60 + noise);
}

template <class Function>
void for_each_sample(const QORV_IMGB &picture, Function function) {
    for (int plane = 0; plane < 3; plane++) {
        const int w = plane == 0 ? picture.w : (picture.w + 1) / 2, h = plane == 0 ? picture.h : (picture.h + 1) / 2;
        for (int y = 0; y < h; y++) {
            for (int x = 0; x < w; x++) function(*sample_at(&picture, plane, x, y), plane, x, y);
        }
    }
}

void append(void *to, const void *bytes, size_t n) {
    const uint8_t *begin = static_cast<const uint8_t *>(bytes);
    static_cast<Bytes *>(to)->insert(static_cast<Bytes *>(to)->end(), begin, begin + n);
}

Bytes encode(const Clip &clip) {
    const auto codec = std::make_unique<Codec>();
    codec->encoding = true;
    codec->threads = clip.threads;
    codec->key_interval = clip.key_interval;
    codec->qp = clip.qp;
    codec->header.width = clip.width;
    codec->header.height = clip.height;
    codec->header.rate_den = 1;
    EXPECT_TRUE(codec_start(codec.get()));
    Bytes stream;
    for (int i = 0; i < clip.pictures; i++) {
        picture_release(&codec->source);
        codec->source = picture_take(codec.get());
        for_each_sample(*codec->source, [&](uint8_t &value, int plane, int x, int y) {
            value = sample(plane, x, y, codec->header.number);
        });
        EXPECT_TRUE(encode_picture(codec.get(), append, &stream));
    }
    encode_unit(codec.get(), 'E', append, &stream);
    codec_stop(codec.get());
    return stream;
}

struct Outcome {
    std::vector<uint32_t> numbers;  // of the pictures that came out
    int errors = 0;
    double worst = 0;  // mean squared error of the worst picture
};

// Every picture that comes out without an error has the MD5 of what the encoder made of it.
Outcome decode(const Bytes &stream, int threads = 1, uint32_t from = 0) {
    const auto codec = std::make_unique<Codec>();
    codec->threads = threads;
    codec->stream = stream.data();
    codec->size = static_cast<int32_t>(stream.size());
    if (from > 0) decode_from(codec.get(), from);
    Outcome outcome;
    for (size_t steps = 0; decode_next(codec.get()); steps++) {
        if (steps > stream.size()) {
            ADD_FAILURE() << "does not end";
            break;
        }
        outcome.errors += codec->error != nullptr;
        if (codec->error != nullptr) continue;
        outcome.numbers.push_back(codec->header.number);
        double sum = 0, count = 0;
        for_each_sample(*codec->reference, [&](uint8_t value, int plane, int x, int y) {
            const int error = value - sample(plane, x, y, codec->header.number);
            sum += error * error;
            count++;
        });
        outcome.worst = std::max(outcome.worst, sum / count);
    }
    codec_stop(codec.get());
    return outcome;
}

void expect_round_trip(const Clip &clip) {
    SCOPED_TRACE(std::to_string(clip.width) + "x" + std::to_string(clip.height) + " qp " + std::to_string(clip.qp));
    const Outcome outcome = decode(encode(clip));
    EXPECT_EQ(outcome.numbers, (std::vector<uint32_t>{0, 1, 2}));
    EXPECT_EQ(outcome.errors, 0);
    // Of errors spread evenly over a quantiser's step the square is a twelfth of the step's; dead zone and skipping
    // make it more.
    const double step = 0.625 * (1 << clip.qp / 6) * (1 + clip.qp % 6 / 6.0);
    EXPECT_LE(outcome.worst, step * step / 3 + 0.5);
}

TEST(Codec, DecodesWhatItEncodes) {
    for (int qp = 0; qp <= MAX_QP; qp++) expect_round_trip({70, 50, qp});
    const int sides[] = {1, 2, 15, 16, 17, 33, 130};
    for (int width : sides) {
        for (int height : sides) expect_round_trip({width, height, 24});
    }
}

TEST(Codec, NeedsNoCertainNumberOfThreads) {
    const Clip clip = {333, 181, 20};
    const Bytes stream = encode(clip);
    for (int threads = 2; threads <= 8; threads++) {
        Clip other = clip;
        other.threads = threads;
        EXPECT_EQ(encode(other), stream) << threads;
        EXPECT_EQ(decode(stream, threads).numbers.size(), 3u) << threads;
    }
}

TEST(Codec, BeginsAtTheKeyPictureBefore) {
    const Bytes stream = encode({64, 48, 30, 1, 6, 3});
    EXPECT_EQ(decode(stream, 1, 4).numbers, (std::vector<uint32_t>{3, 4, 5}));
    EXPECT_EQ(decode(stream, 1, 99).numbers, (std::vector<uint32_t>{3, 4, 5}));
    EXPECT_EQ(decode(stream, 1, 2).numbers, (std::vector<uint32_t>{0, 1, 2, 3, 4, 5}));
}

TEST(Codec, NoticesDamage) {
    const Bytes stream = encode({24, 24, 34});
    for (size_t size = 0; size < stream.size(); size++) {
        EXPECT_GT(decode(Bytes(stream.begin(), stream.begin() + static_cast<ptrdiff_t>(size))).errors, 0) << size;
    }
    // Rate and number may change, and vectors and quantisers where nothing depends on them: the pictures may not.
    size_t unnoticed = 0;
    for (size_t bit = 0; bit < 8 * stream.size(); bit++) {
        Bytes damaged = stream;
        damaged[bit / 8] = static_cast<uint8_t>(damaged[bit / 8] ^ 1 << bit % 8);
        const Outcome outcome = decode(damaged, bit % 16 == 0 ? 2 : 1);
        if (outcome.errors > 0) continue;
        unnoticed++;
        EXPECT_EQ(outcome.numbers.size(), 3u) << bit;
    }
    EXPECT_LT(unnoticed, stream.size());  // of eight times as many bits
    test::Random &random = test::random_numbers();
    for (int i = 0; i < 300; i++) {
        Bytes damaged = stream;
        for (uint32_t k = 1 + random.below(20); k > 0; k--) {
            damaged[random.below(static_cast<uint32_t>(damaged.size()))] = static_cast<uint8_t>(random());
        }
        decode(damaged, 2);
    }
}

}  // namespace
