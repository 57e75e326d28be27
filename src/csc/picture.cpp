#include "csc/picture.h"

#include <string.h>

namespace qorv {

namespace {

// Interleaved pointers share a plane if they stand at the bytes of one pixel, in any order.
template <class Void>
void share_plane(const Picture<Void> &picture, Planes<typename Picture<Void>::Byte> &planes) {
    auto *lowest = picture.at(0);
    for (int k = 1; k < planes.count; k++) {
        if (picture.at(k) < lowest) lowest = picture.at(k);
    }
    unsigned taken = 0;
    memset(planes.place, 0, sizeof planes.place);
    for (int k = 0; k < planes.count; k++) {
        const ptrdiff_t place = picture.at(k) - lowest;
        if (place >= planes.count) return;
        taken |= 1u << place;
        planes.place[k] = static_cast<uint8_t>(place);
    }
    if (taken + 1 != 1u << planes.count) return;
    planes.reordered = true;
    planes.plane[0] = {lowest, picture.stride(0), planes.count, planes.count};
    planes.count = 1;
}

}  // namespace

template <class Void>
Planes<typename Picture<Void>::Byte> planes_of(const Picture<Void> &picture) {
    const Layout &layout = picture.layout;
    Planes<typename Picture<Void>::Byte> planes;
    planes.count = 0;
    planes.canonical = canonical(picture);
    planes.reordered = false;
    const bool packed = layout.arrangement == Arrangement::kInterleaved;
    if (packed && planes.canonical) {
        planes.plane[planes.count++] = {picture.at(0), picture.stride(0), layout.count, layout.count};
        return planes;
    }
    for (int i = layout.first; i < layout.count; i++) {
        const Channel c = layout.channels[i];
        planes.plane[planes.count++] = {picture.at(i), picture.stride(i), c.bytes, c.step};
    }
    if (packed && one_stride(picture)) share_plane(picture, planes);
    return planes;
}

template Planes<const uint8_t> planes_of(const SourcePicture &);
template Planes<uint8_t> planes_of(const DestPicture &);

}  // namespace qorv
