#include <stdio.h>
#include <string.h>

#include "qorv_skia.h"

namespace {
constexpr char kTempPath[] = "/tmp/";
constexpr int kOctets = 6;
}  // namespace

extern "C" uint32_t qorv_get_temp_path(char *path) {
    memcpy(path, kTempPath, sizeof kTempPath);
    return sizeof kTempPath - 1;
}

extern "C" int32_t qorv_get_mac_addr(int32_t index, uint8_t *addr) {
    memset(addr, 0, 8);
    char name[80];
    snprintf(name, sizeof name, "/sys/class/net/wlan%d/address", index);
    FILE *file = fopen(name, "r");
    if (file == nullptr) return QORV_ERR;

    unsigned field[kOctets];
    const int found =
        fscanf(file, "%02x:%02x:%02x:%02x:%02x:%02x", &field[0], &field[1], &field[2], &field[3], &field[4], &field[5]);
    fclose(file);
    if (found != kOctets) return QORV_ERR;
    for (int i = 0; i < kOctets; i++) addr[i] = static_cast<uint8_t>(field[i]);
    return QORV_OK;
}
