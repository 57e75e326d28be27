// What the figures hold for, written into the results: compiler, processor, system, versions of the peers.
#include <benchmark/benchmark.h>
#include <gnu/libc-version.h>
#include <sys/utsname.h>

#include <fstream>
#include <string>

#include "core/processor.h"

#ifdef QORV_BENCH_AVUTIL
extern "C" {
#include <libavutil/avutil.h>
}
#endif
#ifdef QORV_BENCH_CRYPTO
#include <openssl/crypto.h>
#endif
#ifdef QORV_BENCH_LIBYUV
#include <libyuv/version.h>
#endif
#ifdef QORV_BENCH_OPENCV
#include <opencv2/core/version.hpp>
#endif
#ifdef QORV_BENCH_X264
#include <x264_config.h>
#endif
#ifdef QORV_BENCH_ZIMG
#include <zimg.h>
#endif

namespace {

// The value of the first line of /proc/cpuinfo that begins with `key`.
std::string cpuinfo(const std::string &key) {
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);) {
        if (line.rfind(key, 0) == 0) return line.substr(line.find(": ") + 2);
    }
    return {};
}

std::string kernel_set() {
#if defined(__x86_64__)
    return qorv::has_x86_64_v3() ? "x86-64-v3 (AVX2)" : "x86-64-v2 (SSE4.2)";
#elif defined(__aarch64__)
    return qorv::has_dot_products() ? "NEON, dot products" : "NEON";
#else
    return "plain C++";
#endif
}

void add_machine() {
#ifdef __clang__
    benchmark::AddCustomContext("compiler", "clang " __clang_version__);
#else
    benchmark::AddCustomContext("compiler", "g++ " __VERSION__);
#endif
    benchmark::AddCustomContext("processor", cpuinfo("model name"));
    if (cpuinfo("flags").find(" hypervisor") != std::string::npos) {
        benchmark::AddCustomContext("virtual machine", "yes");
    }
    benchmark::AddCustomContext("kernel set", kernel_set());
    utsname system;
    if (uname(&system) == 0) benchmark::AddCustomContext("system", std::string(system.sysname) + " " + system.release);
}

void add_peers() {
    benchmark::AddCustomContext("peer/C library", std::string("glibc ") + gnu_get_libc_version());
#ifdef QORV_BENCH_AVUTIL
    benchmark::AddCustomContext("peer/libavutil, libswscale", std::string("FFmpeg ") + av_version_info());
#endif
#ifdef QORV_BENCH_CRYPTO
    benchmark::AddCustomContext("peer/OpenSSL", OpenSSL_version(OPENSSL_VERSION_STRING));
#endif
#ifdef QORV_BENCH_LIBYUV
    benchmark::AddCustomContext("peer/libyuv", std::to_string(LIBYUV_VERSION));
#endif
#ifdef QORV_BENCH_OPENCV
    benchmark::AddCustomContext("peer/OpenCV", CV_VERSION);
#endif
#ifdef QORV_BENCH_X264
    benchmark::AddCustomContext("peer/x264", X264_POINTVER);
#endif
#ifdef QORV_BENCH_ZIMG
    unsigned version[3];
    zimg_get_version_info(&version[0], &version[1], &version[2]);
    benchmark::AddCustomContext(
        "peer/zimg", std::to_string(version[0]) + "." + std::to_string(version[1]) + "." + std::to_string(version[2]));
#endif
}

[[maybe_unused]] const bool added = (add_machine(), add_peers(), true);

}  // namespace
