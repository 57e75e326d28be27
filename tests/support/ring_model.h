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

    void store(int to, const Bytes &data, int from, int count) {
        for (int i = 0; i < count; i++) at(to + i) = data.at(static_cast<size_t>(from + i));
    }
    int put(const Bytes &data) {
        const int n = static_cast<int>(data.size()), to_end = size - wr;
        if (full()) return 0;
        if (rd > wr) {
            if (rd - wr - 1 < n) return 0;
            store(wr, data, 0, n);
            wr += n;
            return n;
        }
        if (rd != 0 && n >= to_end) {
            store(wr, data, 0, to_end);
            if (n - to_end >= rd) return 0;
            store(0, data, to_end, n - to_end);
            wr = n - to_end;
            return n;
        }
        if (n > to_end) return 0;
        store(wr, data, 0, n);
        wr += n;
        return n;
    }
    // The result's length may differ from the returned count when that is negative.
    int get(int n, Bytes &out) {
        if (wr == rd) return 0;
        if (wr > rd) {
            const int taken = std::min(wr - rd, n);
            for (int i = 0; i < taken; i++) out.push_back(at(rd + i));
            rd += taken;
            return taken;
        }
        const int to_end = size - rd;
        if (n <= to_end) {
            for (int i = 0; i < n; i++) out.push_back(at(rd + i));
            rd = (rd + n) % size;
            return n;
        }
        const int rest = std::min(n - to_end, wr);
        for (int i = 0; i < to_end + rest; i++) out.push_back(i < to_end ? at(rd + i) : at(i - to_end));
        rd = rest;
        return to_end + rest;
    }
    int skip_head(int n) {
        const int to_end = size - wr;
        if (full()) return 0;
        if (rd > wr) {
            const int put = std::min(rd - wr - 1, n);
            wr += put;
            return put;
        }
        if (n < to_end) {
            wr += n;
            return n;
        }
        if (rd == 0) return std::min(to_end - 1, n);
        wr = n - to_end < rd ? n - to_end : rd - 1;
        return wr + to_end;
    }
    int skip_tail(int n) {
        const int to_end = size - rd;
        if (wr == rd) return 0;
        if (wr > rd) {
            const int taken = std::min(wr - rd, n);
            rd += taken;
            return taken;
        }
        if (n < to_end) {
            rd += n;
            return n;
        }
        rd = std::min(n - to_end, wr);
        return rd + to_end;
    }
    // Index i of the line is dest[i + 1]: a line may begin at -1.
    static uint8_t &out(Bytes &dest, int i) { return dest.at(static_cast<size_t>(i + 1)); }
    // Ends a line whose LF is to stand at index i, after a CR that is there or not. Returns the line's length.
    static int end_line(Bytes &dest, int i, bool has_cr) {
        if (!has_cr) {
            out(dest, i) = '\r';
            i++;
        }
        out(dest, i) = '\n';
        out(dest, i + 1) = 0;
        return i + 1;
    }
    int line(int dsize, Bytes &dest) {
        if (wr == rd) return 0;
        const int to_end = size - rd, limit = wr > rd ? std::min(wr - rd, dsize - 1) : to_end;
        for (int k = 0; k < limit; k++) {
            const uint8_t byte = at(rd + k);
            out(dest, k) = byte;
            if (byte == 0) break;
            if (byte == '\n') {
                const int length = end_line(dest, k, k > 0 && at(rd + k - 1) == '\r');
                rd += length;
                return length;
            }
        }
        if (wr > rd || dsize <= to_end) return 0;
        return line_from_front(to_end, std::min(wr, dsize - to_end), dest);
    }
    // The rest of a line, of whose bytes `before` stand at the end of the storage.
    int line_from_front(int before, int limit, Bytes &dest) {
        if (wr > 0 && at(size - 1) == '\r' && at(0) == '\n') {
            out(dest, before) = '\n';
            out(dest, before + 2) = 0;
            rd = 1;
            return before + 2;
        }
        for (int j = 0; j < limit; j++) {
            out(dest, before + j) = at(j);
            if (at(j) == 0) return 0;
            if (at(j) == '\n') {
                const int length = end_line(dest, before + j, j > 0 && at(j - 1) == '\r');
                rd = length - before;
                return length;
            }
        }
        return 0;
    }
};

}  // namespace test
