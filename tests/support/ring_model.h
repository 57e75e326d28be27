// The ring buffer's formulas once more, over bounds-checked vectors.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace test {

using Bytes = std::vector<uint8_t>;

struct RingModel {
    int wr = 0, rd = 0, size;
    Bytes buf;

    explicit RingModel(int bytes) : size(bytes), buf(static_cast<size_t>(bytes)) {}

    bool full() const { return wr == (rd + size - 1) % size; }
    uint8_t &at(int i) { return buf.at(static_cast<size_t>(i)); }
    int free_len() const { return rd > wr ? rd - wr - 1 : rd - wr + size + 1; }
    int freec_len() const { return rd > wr ? rd - wr - 1 : rd != 0 ? size - wr : size - wr - 1; }
    int fill_len() const { return wr >= rd ? wr - rd : wr + size - rd - 1; }
    int fillc_len() const { return (rd > wr ? size : wr) - rd; }

    int put(const Bytes &data) {
        const int n = static_cast<int>(data.size());
        const auto store = [&](int to, int from, int count) {
            for (int i = 0; i < count; i++) at(to + i) = data.at(static_cast<size_t>(from + i));
        };
        if (full()) return 0;
        if (rd > wr && rd - wr - 1 < n) return 0;
        const int c = size - wr;
        if (rd <= wr && n >= c && rd != 0) {
            store(wr, 0, c);
            if (n - c >= rd) return 0;
            store(0, c, n - c);
            return wr = n - c, n;
        }
        if (rd <= wr && n > c) return 0;
        store(wr, 0, n);
        return wr += n, n;
    }
    // The result's length may differ from the returned count when that is negative.
    int get(int n, Bytes &out) {
        if (wr == rd) return 0;
        const int c = size - rd;
        const bool wraps = wr <= rd && n > c;
        const int taken = wraps ? c + std::min(n - c, wr) : wr <= rd ? n : std::min(wr - rd, n);
        for (int i = 0; i < taken; i++) out.push_back(at(wraps && i >= c ? i - c : rd + i));
        rd = wraps ? std::min(n - c, wr) : wr <= rd ? (rd + n) % size : rd + taken;
        return taken;
    }
    int skip_head(int n) {
        if (full()) return 0;
        const int c = size - wr;
        if (rd > wr) return n = std::min(rd - wr - 1, n), wr += n, n;
        if (n < c) return wr += n, n;
        if (rd == 0) return std::min(c - 1, n);
        wr = n - c < rd ? n - c : rd - 1;
        return wr + c;
    }
    int skip_tail(int n) {
        if (wr == rd) return 0;
        const int c = size - rd;
        if (wr > rd) return n = std::min(wr - rd, n), rd += n, n;
        if (n < c) return rd += n, n;
        rd = std::min(n - c, wr);
        return rd + c;
    }
    // Index i of the line is dest[i + 1]: a line may begin at -1.
    int line(int dsize, Bytes &dest) {
        const auto out = [&](int i) -> uint8_t & { return dest.at(static_cast<size_t>(i + 1)); };
        const auto finish = [&](int i, bool cr) {
            if (!cr) out(i++) = '\r';
            out(i) = '\n';
            out(i + 1) = 0;
            return i + 1;
        };
        if (wr == rd) return 0;
        const int t = size - rd, limit = wr > rd ? std::min(wr - rd, dsize - 1) : t;
        for (int k = 0; k < limit; k++) {
            out(k) = at(rd + k);
            if (out(k) == '\n') {
                const int length = finish(k, k > 0 && out(k - 1) == '\r');
                return rd += length, length;
            }
            if (out(k) == 0) break;
        }
        if (wr > rd || dsize <= t) return 0;
        if (at(size - 1) == '\r' && at(0) == '\n') {
            out(t) = '\n';
            out(t + 2) = 0;
            return rd = 1, t + 2;
        }
        for (int j = 0; j < std::min(wr, dsize - t); j++) {
            out(t + j) = at(j);
            if (at(j) == 0) return 0;
            if (at(j) == '\n') {
                const int length = finish(t + j, j > 0 && out(t + j - 1) == '\r');
                return rd = length - t, length;
            }
        }
        return 0;
    }
};

}  // namespace test
