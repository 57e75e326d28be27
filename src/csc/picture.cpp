#include "csc/picture.h"

namespace qorv {

// Interleaved pointers share a plane if they stand at the bytes of one pixel, in any order.
template <class Byte>
Planes<Byte> planes_of(const Picture<Byte> &picture) {
    const Layout &layout = picture.layout;
    Planes<Byte> planes{};
    Byte *lowest = picture.p[layout.first];
    for (int i = layout.first; i < layout.count; i++) {
        const Channel c = layout.channels[i];
        planes.plane[planes.count++] = {picture.p[i], picture.stride[i], c.bytes, c.step};
        if (picture.p[i] < lowest) lowest = picture.p[i];
    }
    if (layout.arrangement != Arrangement::kInterleaved) return planes;
    unsigned taken = 0;
    for (int k = 0; k < planes.count; k++) {
        const ptrdiff_t place = picture.p[k] - lowest;
        if (place >= planes.count || picture.stride[k] != picture.stride[0]) return planes;
        taken |= 1u << place;
        planes.place[k] = static_cast<uint8_t>(place);
    }
    if (taken + 1 != 1u << planes.count) return planes;
    planes.packed = true;
    planes.plane[0] = {lowest, picture.stride[0], planes.count, planes.count};
    planes.count = 1;
    return planes;
}

template Planes<const uint8_t> planes_of(const SourcePicture &);
template Planes<uint8_t> planes_of(const DestPicture &);

}  // namespace qorv
