#include <memory>

#include "bench/compare.h"
#include "qorv_skia.h"

#ifdef QORV_BENCH_CRYPTO
#include <openssl/evp.h>
#endif

namespace {

// One message handed over in rows of `row` bytes that lie `stride` bytes apart.
struct Message {
    size_t row, rows, stride;
};

void add_message(const std::string &name, Message message) {
    const auto data = std::make_shared<std::vector<uint8_t>>(bench::noise(message.stride * message.rows));
    bench::add(name, "ours", [data, message] {
        QORV_MD5 md5;
        uint8_t digest[16];
        qorv_md5_init(&md5);
        for (size_t i = 0; i < message.rows; i++) {
            qorv_md5_update(&md5, data->data() + i * message.stride, static_cast<uint32_t>(message.row));
        }
        qorv_md5_finish(&md5, digest);
        benchmark::DoNotOptimize(digest);
    });
#ifdef QORV_BENCH_CRYPTO
    const std::shared_ptr<EVP_MD_CTX> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    bench::add(name, "OpenSSL", [data, message, context] {
        uint8_t digest[16];
        EVP_DigestInit_ex(context.get(), EVP_md5(), nullptr);
        for (size_t i = 0; i < message.rows; i++) {
            EVP_DigestUpdate(context.get(), data->data() + i * message.stride, message.row);
        }
        EVP_DigestFinal_ex(context.get(), digest, nullptr);
        benchmark::DoNotOptimize(digest);
    });
#endif
}

void add_cases() {
    add_message("md5/message/1MiB", {1 << 20, 1, 1 << 20});
    for (const size_t width : {64u, 176u, 250u, 352u, 720u, 1280u, 1920u}) {
        add_message("md5/rows/" + std::to_string(width), {width, 256, width + 32});
    }
}

const bench::Registration registration{add_cases};

}  // namespace
