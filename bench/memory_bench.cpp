#include <wchar.h>

#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <thread>

#include "bench/compare.h"
#include "qorv_skia.h"

namespace {

// Bytes on a 64-byte boundary, so that chance does not decide which copy crosses cache lines.
class Bytes {
public:
    explicit Bytes(size_t size)
        : memory_(static_cast<uint8_t *>(aligned_alloc(64, (size + 63) / 64 * 64)), free), size_(size) {
        const std::vector<uint8_t> noise = bench::noise(size);
        memcpy(data(), noise.data(), size);
    }
    uint8_t *data() const { return memory_.get(); }
    size_t size() const { return size_; }

private:
    std::unique_ptr<uint8_t, void (*)(void *)> memory_;
    size_t size_;
};

// A size that the compiler does not know, so that a library call stays one.
template <class T>
T hidden(T value) {
    benchmark::DoNotOptimize(value);
    return value;
}

void add_byte_fill(int32_t n) {
    const auto dst = std::make_shared<Bytes>(static_cast<size_t>(n));
    const std::string name = "memory/mset_x128/" + std::to_string(n);
    bench::add(name, "ours", [dst, n] { qorv_mset_x128(dst->data(), 7, n); });
    bench::add(name, "memset", [dst] { memset(dst->data(), 7, hidden(dst->size())); });
}

void add_word_fill(size_t n) {
    const auto dst = std::make_shared<Bytes>(2 * n);
    const auto ours = [dst, n] { qorv_mset16(dst->data(), 0x1234, static_cast<int32_t>(n)); };
    const std::string size = std::to_string(n);
    bench::add("memory/mset16/" + size, "ours", ours);
    bench::add("memory/mset16/" + size, "wmemset", [dst, n] {  // two samples a wide character
        wmemset(reinterpret_cast<wchar_t *>(dst->data()), 0x12341234, hidden(n / 2));
    });
    bench::add("memory/mset16/" + size, "std_fill",
               [dst, n] { std::fill_n(reinterpret_cast<uint16_t *>(dst->data()), hidden(n), uint16_t{0x1234}); });
    bench::add("memory/mset16_bytes/" + size, "ours", ours);
    bench::add("memory/mset16_bytes/" + size, "byte_loop", [dst, n] {
        volatile uint8_t *to = dst->data();
        for (size_t i = 0; i < hidden(n); i++) {
            to[2 * i] = 0x34;
            to[2 * i + 1] = 0x12;
        }
    });
}

struct Picture {
    int32_t width, height, dst_stride, src_stride;
};

struct Planes {
    Bytes dst, src;
    explicit Planes(const Picture &p)
        : dst(static_cast<size_t>(p.dst_stride * p.height)), src(static_cast<size_t>(p.src_stride * p.height)) {}
};

void copy_rows(Planes &planes, const Picture &p) {
    for (int32_t row = 0; row < p.height; row++) {
        memcpy(planes.dst.data() + row * p.dst_stride, planes.src.data() + row * p.src_stride,
               hidden(static_cast<size_t>(p.width)));
    }
}

void add_copy(const char *family, const Picture &p,
              void (*copy)(void *, const void *, int32_t, int32_t, int32_t, int32_t)) {
    const auto planes = std::make_shared<Planes>(p);
    const std::string name = std::string("memory/") + family + "/" + std::to_string(p.width) + "x" +
                             std::to_string(p.height) + (p.width == p.dst_stride ? "_whole" : "");
    bench::add(name, "ours", [planes, p, copy] {
        copy(planes->dst.data(), planes->src.data(), p.dst_stride, p.src_stride, p.width, p.height);
    });
    bench::add(name, "memcpy_rows", [planes, p] { copy_rows(*planes, p); });
}

// A thread that answers each value with the next one.
class Echo {
public:
    Echo()
        : thread_([this] {
              for (int32_t turn = 1; qorv_sync_wait(&word_, turn) == 0; turn += 2) qorv_sync_wake(&word_, turn + 1);
          }) {}
    ~Echo() {
        qorv_sync_wake(&word_, -1);
        thread_.join();
    }
    void round_trip() {
        qorv_sync_wake(&word_, turn_ + 1);
        turn_ += 2;
        qorv_sync_wait(&word_, turn_);
    }

private:
    int32_t word_ = 0;
    int32_t turn_ = 0;
    std::thread thread_;
};

class EchoByCondition {
public:
    EchoByCondition()
        : thread_([this] {
              for (int32_t turn = 1; wait(turn); turn += 2) wake(turn + 1);
          }) {}
    ~EchoByCondition() {
        wake(-1);
        thread_.join();
    }
    void round_trip() {
        wake(turn_ + 1);
        turn_ += 2;
        wait(turn_);
    }

private:
    bool wait(int32_t value) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return word_ == value || word_ == -1; });
        return word_ != -1;
    }
    void wake(int32_t value) {
        {
            const std::lock_guard lock(mutex_);
            word_ = value;
        }
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    int32_t word_ = 0;
    int32_t turn_ = 0;
    std::thread thread_;
};

template <class Partner>
void add_round_trip(const char *who) {
    benchmark::RegisterBenchmark((std::string("sync/round_trip/") + who).c_str(), [](benchmark::State &state) {
        Partner partner;
        for (auto _ : state) partner.round_trip();
    })->UseRealTime();
}

const bench::Registration registration{[] {
    for (int32_t n : {128, 1024, 16384, 1 << 20}) add_byte_fill(n);
    for (size_t n : {size_t{16}, size_t{100}, size_t{1000}, size_t{10000}, size_t{1} << 20}) add_word_fill(n);
    for (const Picture &p : {Picture{1920, 1080, 2048, 1984}, {1920, 1080, 1920, 1920}, {100, 64, 128, 128}}) {
        add_copy("mcpy_pic", p, qorv_mcpy_pic);
    }
    for (int32_t width : {4, 8, 12, 16, 24, 32, 48, 64})
        add_copy("mcpy_blk", {width, std::min(width, 32), 256, 1984}, qorv_mcpy_blk);
    add_round_trip<Echo>("ours");
    add_round_trip<EchoByCondition>("condition_variable");
}};

}  // namespace
