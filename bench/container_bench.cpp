#include <list>
#include <memory>

#include "bench/compare.h"
#include "qorv_skia.h"

namespace {

// A pool through which buffers circulate while `used` of them stay out.
std::shared_ptr<QORV_RLIST> pool_with(int used) {
    const std::shared_ptr<QORV_RLIST> rlist(qorv_rlist_create(64, 4096), qorv_rlist_delete);
    for (int i = 0; i < used; i++) qorv_rlist_get_buf(rlist.get());
    return rlist;
}

// The peer is the same pool with one buffer out: the number used is not to matter.
void add_circulation(const char *who, int used) {
    bench::add("container/rlist_get_buf/4000_used", who, [rlist = pool_with(used)] {
        benchmark::DoNotOptimize(qorv_rlist_get_buf(rlist.get()));
        qorv_rlist_rem_data(rlist.get());
    });
}

struct Item {
    int64_t values[4];
};

void add_list() {
    const std::shared_ptr<QORV_LIST> list(qorv_list_create(sizeof(Item), nullptr), qorv_list_delete);
    bench::add("container/list_queue", "ours", [list] {
        const Item item = {};
        for (int i = 0; i < 100; i++) qorv_list_add(list.get(), &item);
        for (int i = 0; i < 100; i++) qorv_list_rem_first(list.get());
    });
    bench::add("container/list_queue", "std_list", [other = std::make_shared<std::list<Item>>()] {
        const Item item = {};
        for (int i = 0; i < 100; i++) other->push_back(item);
        for (int i = 0; i < 100; i++) other->pop_front();
    });
}

const bench::Registration registration{[] {
    add_circulation("ours", 4000);
    add_circulation("one_used", 1);
    add_list();
}};

}  // namespace
