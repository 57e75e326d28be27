// Calls of every member of every family on pictures of any width, height, arrangement and place in memory: what the
// instruction table holds and what the search for cliffs walks.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace calls {

enum class Arrangement {
    kApart,       // rows apart, each beginning on a cache line
    kTight,       // rows one after the other
    kPermuted,    // a packed picture's channels in reverse order
    kUnrelated,   // a packed picture's channels each in a picture of its own
    kUpsideDown,  // negative strides
    kInPlace,     // the destination over the source
};
const char *name_of(Arrangement arrangement);

struct Shape {
    int w, h;  // of the destination
    Arrangement arrangement = Arrangement::kApart;
    int offset = 0;  // samples from the cache line's first to the picture's
};

using Call = std::function<void()>;

// An exported function, or one way to use it: "csc_rsz_yuv444_to_rgb888 3:2".
struct Member {
    std::string name;
    std::vector<Arrangement> arrangements;
    std::function<Call(const Shape &)> prepare;
};

// Every member that takes a size.
const std::vector<Member> &members();

// Calls of the rest: fixed blocks, bits, digests, key frames, as {name, call}.
struct Fixed {
    std::string name;
    Call call;
};
const std::vector<Fixed> &fixed_calls();

}  // namespace calls
