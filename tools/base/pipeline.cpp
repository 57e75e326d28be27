#include "tools/base/pipeline.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <new>
#include <thread>
#include <vector>

namespace tool {

namespace {

// Signals are for the calling thread, which knows of unfinished files: threads that are made meanwhile block all.
class AllSignalsBlocked {
public:
    AllSignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &before_);
    }
    ~AllSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    AllSignalsBlocked(const AllSignalsBlocked &) = delete;
    AllSignalsBlocked &operator=(const AllSignalsBlocked &) = delete;

private:
    sigset_t before_;
};

void run_alone(const Stages &stages) {
    while (stages.read(0)) {
        stages.work(0);
        stages.write(0);
    }
}

class Pipeline {
public:
    Pipeline(int threads, const Stages &stages)
        : stages_(stages),
          pool_(pipeline_items(threads)),
          queue_(pipeline_items(threads)),
          states_(static_cast<size_t>(pipeline_items(threads))) {}
    ~Pipeline() {
        pool_.stop();
        queue_.close();
        for (std::thread &thread : threads_) thread.join();
    }
    Pipeline(const Pipeline &) = delete;
    Pipeline &operator=(const Pipeline &) = delete;

    void start(int threads) {
        const AllSignalsBlocked blocked;
        threads_.emplace_back([this] { read_all(); });
        for (int i = 0; i < threads; i++) threads_.emplace_back([this] { work_all(); });
    }

    void write_all() {
        for (;; pool_.end_oldest()) {
            const int32_t item = pool_.oldest();
            const State &state = state_of(item);
            if (state.failure) std::rethrow_exception(state.failure);
            if (state.last) return;
            stages_.write(item);
        }
    }

private:
    struct State {
        bool last = false;  // there is no such item: the reader is at its end
        std::exception_ptr failure;
    };

    State &state_of(int32_t item) { return states_[static_cast<size_t>(item)]; }

    template <class Stage>
    void guarded(int32_t item, Stage stage) {
        try {
            stage();
        } catch (...) {
            state_of(item).failure = std::current_exception();
        }
    }

    void read_all() {
        for (;;) {
            const int32_t item = pool_.begin();
            if (item < 0) return;
            guarded(item, [&] { state_of(item).last = !stages_.read(item); });
            if (state_of(item).last || state_of(item).failure) {
                pool_.done(item);
                return;
            }
            queue_.put(item);
        }
    }

    void work_all() {
        for (int32_t item; queue_.take(item);) {
            guarded(item, [&] { stages_.work(item); });
            pool_.done(item);
        }
    }

    const Stages &stages_;
    ItemPool pool_;
    WorkQueue queue_;
    std::vector<State> states_;
    std::vector<std::thread> threads_;
};

}  // namespace

// A put that would exactly fill the ring's storage is an odd case of its own, so there is room for one item more.
WorkQueue::WorkQueue(int capacity) : ring_(qorv_rbuf_create((capacity + 2) * static_cast<int32_t>(sizeof(int32_t)))) {
    if (!ring_) throw std::bad_alloc();
}

void WorkQueue::put(int32_t item) {
    const std::lock_guard lock(mutex_);
    qorv_rbuf_put(ring_.get(), &item, sizeof item);
    if (!closed_) qorv_sync_wake(&filled_, 1);
}

// A waiter that misses the 1 because another thread was quicker has missed nothing: the queue is empty again.
bool WorkQueue::take(int32_t &item) {
    for (;;) {
        {
            const std::lock_guard lock(mutex_);
            const bool taken = qorv_rbuf_get(ring_.get(), &item, sizeof item) == sizeof item;
            if (taken || closed_) {
                if (qorv_rbuf_is_empty(ring_.get()) != 0 && !closed_) qorv_sync_wake(&filled_, 0);
                return taken;
            }
        }
        qorv_sync_wait(&filled_, 1);
    }
}

void WorkQueue::close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    qorv_sync_wake(&filled_, -1);
}

ItemPool::ItemPool(int count) : list_(qorv_rlist_create(sizeof(int32_t), count)), ready_(static_cast<size_t>(count)) {
    if (!list_) throw std::bad_alloc();
    // The list hands its buffers out in a fixed order, round and round: each gets its number once.
    for (int32_t i = 0; i < count; i++) std::memcpy(qorv_rlist_get_buf(list_.get()), &i, sizeof i);
    qorv_rlist_rem_all(list_.get());
}

int32_t ItemPool::begin() {
    for (;;) {
        {
            const std::lock_guard lock(mutex_);
            if (stopped_) return -1;
            if (const void *const data = qorv_rlist_get_buf(list_.get())) {
                int32_t item;
                std::memcpy(&item, data, sizeof item);
                ready_[static_cast<size_t>(item)] = 0;
                if (qorv_rlist_get_free_cnt(list_.get()) == 0) qorv_sync_wake(&free_, 0);
                qorv_sync_wake(&used_, 1);
                return item;
            }
        }
        qorv_sync_wait(&free_, 1);
    }
}

int32_t ItemPool::oldest() {
    qorv_sync_wait(&used_, 1);
    int32_t item;
    {
        const std::lock_guard lock(mutex_);
        std::memcpy(&item, qorv_rlist_get_data(list_.get()), sizeof item);
    }
    qorv_sync_wait(&ready_[static_cast<size_t>(item)], 1);
    return item;
}

void ItemPool::end_oldest() {
    const std::lock_guard lock(mutex_);
    qorv_rlist_rem_data(list_.get());
    if (qorv_rlist_get_used_cnt(list_.get()) == 0) qorv_sync_wake(&used_, 0);
    if (!stopped_) qorv_sync_wake(&free_, 1);
}

void ItemPool::stop() {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    qorv_sync_wake(&free_, -1);
}

// Two more than work at a time: one being read, one being written.
int pipeline_items(int threads) {
    return threads == 1 ? 1 : threads + 2;
}

void run_pipeline(int threads, const Stages &stages) {
    if (threads == 1) return run_alone(stages);
    Pipeline pipeline(threads, stages);
    pipeline.start(threads);
    pipeline.write_all();
}

int processor_count() {
    return static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
}

}  // namespace tool
