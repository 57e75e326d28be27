// A pipeline of threads: one reads items, several work on them, the caller's own writes them, in the order in which
// they were read. The items are a fixed number and go round, so that their memory is used again.
#pragma once

#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>

#include "qorv_skia.h"

namespace tool {

// The numbers of items that wait for a worker. Any thread puts and takes.
class WorkQueue {
public:
    explicit WorkQueue(int capacity);
    void put(int32_t item);
    // False when the queue is closed and nothing is left in it.
    bool take(int32_t &item);
    void close();

private:
    struct DeleteRing {
        void operator()(QORV_RBUF *ring) const { qorv_rbuf_delete(ring); }
    };
    std::mutex mutex_;
    std::unique_ptr<QORV_RBUF, DeleteRing> ring_;
    bool closed_ = false;
    int32_t filled_ = 0;  // shared word: 1 while something is there, -1 for good once closed
};

// The items on their way, oldest first: one thread begins them, another one ends them.
class ItemPool {
public:
    explicit ItemPool(int count);
    // The next free item, waited for; -1 once stopped.
    int32_t begin();
    // The work on an item is done.
    void done(int32_t item) { qorv_sync_wake(&ready_[static_cast<size_t>(item)], 1); }
    // The oldest item, waited for until its work is done.
    int32_t oldest();
    void end_oldest();
    void stop();

private:
    struct DeleteList {
        void operator()(QORV_RLIST *list) const { qorv_rlist_delete(list); }
    };
    std::mutex mutex_;
    std::unique_ptr<QORV_RLIST, DeleteList> list_;  // of item numbers
    std::deque<int32_t> ready_;                     // shared words, one an item: 1 when its work is done
    bool stopped_ = false;
    int32_t free_ = 1, used_ = 0;  // shared words: 1 while there are such items, -1 for good once stopped
};

// What happens to item number `item`, 0 to items - 1; it is in the hands of one of these at a time.
struct Stages {
    std::function<bool(int item)> read;   // false: there are no more
    std::function<void(int item)> work;   // on one of several threads
    std::function<void(int item)> write;  // on the calling thread
};

// The items that a number of threads keeps busy.
int pipeline_items(int threads);

// Runs everything on the calling thread when `threads` is 1, else on that many threads for the work, one that reads and
// the calling one. What a stage throws is thrown here, after everything before it has been written.
void run_pipeline(int threads, const Stages &stages);

// The processors that this process may use.
int processor_count();

}  // namespace tool
