// Band mode step by step, as its record is defined to change: a destination row whose lower source row lies beyond the
// band is set aside and made with the next one. The steps do not know every case (bands shorter than a step, one side
// growing and the other not), so they say of a job whether they got it right.
#pragma once

#include <cstdint>
#include <vector>

#include "qorv_skia.h"

namespace test {

// What a call may change of a record.
struct BandFields {
    int32_t dst_row, row_cached, band_flag, saved_off;
    uint32_t pos_y;
    bool operator==(const BandFields &) const = default;
};

class BandSteps {
public:
    bool complete = true;           // every row once, in order, from its own pair of source rows
    std::vector<BandFields> after;  // each call

    // A job of a record that has just been created. Heights of bands that are no power of two are not covered.
    BandSteps(const QORV_IRSZ &record, int src_h, int band_h) : rsz(record) {
        for (int first = 0; first < src_h; first += band_h) {
            take(first, band_h);
            after.push_back({rsz.dst_row, rsz.row_cached, rsz.band_flag, rsz.saved_off, rsz.pos_y});
        }
        complete = complete && made == rsz.dst_h && (band_h & (band_h - 1)) == 0;
    }

private:
    int64_t row(uint32_t y) const { return int64_t{y >> 18} << rsz.shift_y; }

    void take(int first, int band_h) {
        const int64_t end = first + band_h;
        const uint32_t mask = static_cast<uint32_t>(band_h - 1);
        const int from_band = 18 - rsz.shift_y;
        if (row(rsz.pos_y) < end) make_rows(first, end, mask);
        const uint32_t moved = (rsz.pos_y - rsz.step_y) ^ rsz.pos_y;
        if (rsz.upscale == 1 && (moved >> from_band & mask) == 0) rsz.band_flag = 1;
    }

    void make_rows(int first, int64_t end, uint32_t mask) {
        const int from_band = 18 - rsz.shift_y;
        while (true) {
            int32_t j = rsz.dst_row;
            uint32_t y = rsz.pos_y;
            int64_t upper = held, lower = first + rsz.saved_off / rsz.src_pitch;
            if (j >= rsz.dst_h && rsz.row_cached == 0) return;
            if (j < rsz.dst_h && rsz.row_cached == 0) {
                if (rsz.band_flag == 0) {
                    const int64_t in_band = row(y) & mask;
                    const int64_t offset = in_band * rsz.src_pitch + rsz.row_step;
                    upper = first + in_band;
                    lower = first + offset / rsz.src_pitch;
                    if (offset >= rsz.band_bytes) {
                        rsz.saved_off = static_cast<int32_t>(offset - rsz.band_bytes);
                        rsz.row_cached = 1;
                        rsz.dst_row = j + 1;
                        rsz.pos_y = y + rsz.step_y;
                        held = upper;
                        return;
                    }
                }
            } else {
                if (rsz.saved_off >= rsz.band_bytes) return;  // with all as it was
                rsz.row_cached = 0;
                j--;
                y -= rsz.step_y;
            }
            make(j, upper, lower);
            rsz.dst_row = j + 1;
            rsz.pos_y = y + rsz.step_y;
            if (rsz.band_flag == 1 && (rsz.pos_y >> from_band & mask) < (y >> from_band & mask)) rsz.band_flag = 0;
            if (row(rsz.pos_y) >= end) return;
        }
    }

    void make(int32_t j, int64_t upper, int64_t lower) {
        const int64_t right = row(static_cast<uint32_t>(j) * rsz.step_y);
        complete = complete && j == made && upper == right && lower == right + (1 << rsz.shift_y);
        made++;
    }

    QORV_IRSZ rsz;
    int64_t held = -1;  // number of the row in line_buf
    int made = 0;
};

}  // namespace test
