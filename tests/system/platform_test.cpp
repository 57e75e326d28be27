#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <vector>

#include "qorv_skia.h"
#include "support/guarded_buffer.h"

namespace {

constexpr int kNotPermitted = 77;

TEST(TempPath, IsTmpWithItsLength) {
    char path[8];
    memset(path, 'x', sizeof path);
    EXPECT_EQ(qorv_get_temp_path(path), 5u);
    EXPECT_EQ(std::string(path, 8), std::string("/tmp/\0xx", 8));
}

TEST(MacAddress, IsZeroWithoutAnInterface) {
    test::GuardedBuffer addr(8);
    for (int32_t index : {-1, 987654321}) {
        addr.fill(0xEE);
        EXPECT_EQ(qorv_get_mac_addr(index, addr.data()), QORV_ERR);
        EXPECT_EQ(addr.bytes(), std::vector<uint8_t>(8, 0));
    }
}

struct Case {
    int32_t index;
    const char *text;
    int32_t status;
    const char *addr;  // six octets
};

constexpr Case kCases[] = {
    {0, "02:1a:ff:00:9c:41\n", QORV_OK, "\x02\x1A\xFF\x00\x9C\x41"},
    {12, "a0:B1:c2:D3:e4:F5", QORV_OK, "\xA0\xB1\xC2\xD3\xE4\xF5"},
    {3, "2:1:f:0:9:4\n", QORV_OK, "\x02\x01\x0F\x00\x09\x04"},
    {4, "02:1a:ff:00:9c\n", QORV_ERR, "\0\0\0\0\0\0"},
    {5, "02-1a-ff-00-9c-41\n", QORV_ERR, "\0\0\0\0\0\0"},
    {6, "", QORV_ERR, "\0\0\0\0\0\0"},
};

// Runs in a child that has a file system of its own over the class of network interfaces.
int check_in_private_namespace() {
    if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return kNotPermitted;
    if (mount("none", "/", "none", MS_REC | MS_PRIVATE, "") != 0) return kNotPermitted;
    if (mount("none", "/sys/class/net", "tmpfs", 0, "") != 0) return kNotPermitted;
    for (const Case &c : kCases) {
        const std::string folder = "/sys/class/net/wlan" + std::to_string(c.index);
        if (mkdir(folder.c_str(), 0755) != 0) return kNotPermitted;
        std::ofstream(folder + "/address") << c.text;
        uint8_t addr[8];
        memset(addr, 0xEE, sizeof addr);
        EXPECT_EQ(qorv_get_mac_addr(c.index, addr), c.status) << c.text;
        EXPECT_EQ(memcmp(addr, c.addr, 6), 0) << c.text;
        EXPECT_EQ(addr[6] | addr[7], 0);
    }
    return testing::Test::HasFailure() ? 1 : 0;
}

TEST(MacAddress, IsReadFromTheInterfacesFile) {
    fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        const int result = check_in_private_namespace();
        fflush(nullptr);
        _exit(result);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == kNotPermitted) GTEST_SKIP() << "no private mount namespace on this system";
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
