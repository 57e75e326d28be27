// Rows of a picture handed from one thread to the next: the second waits until the first has finished the last.
#include <cstdio>
#include <qorv_skia.hpp>
#include <thread>

int main() {
    constexpr std::int32_t kRows = 8;
    std::int32_t rows_done = 0;  // the shared word
    std::int32_t row[kRows] = {};
    std::thread decoder([&] {
        for (std::int32_t y = 0; y < kRows; y++) {
            row[y] = y * y;
            qorv::wake(rows_done, y + 1);  // publishes what was written before, and wakes
        }
    });
    // Waits for one exact value. A value that is replaced before the waiter looks is missed, so wait for the last one.
    const bool finished = qorv::wait(rows_done, kRows);
    std::printf("last row %d\n", static_cast<int>(row[kRows - 1]));
    decoder.join();
    return finished && row[kRows - 1] == 49 ? 0 : 1;
}
