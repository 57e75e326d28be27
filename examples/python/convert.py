"""Converts planes to pixels and back in numpy arrays, through slices and reversed views, and resizes a picture.

convert.py HEADER LIBRARY
"""
import hashlib
import sys

import numpy

import qorv_skia
from qorv_skia import ffi

lib = qorv_skia.load(*sys.argv[1:])
random = numpy.random.default_rng(1)

# Three planes of noise, in the middle of larger ones.
canvas = random.integers(0, 256, (3, 60, 90), dtype=numpy.uint8)
y, u, v = canvas[:, 5:53, 7:71]
rgb = numpy.zeros((48, 64, 3), numpy.uint8)
qorv_skia.convert(lib, (y, u, v), lib.QORV_CS_YUV444, (rgb,), lib.QORV_CS_RGB888)

# The same in numpy: full-range BT.601 in units of 1/256.
Y, U, V = y.astype(int), u.astype(int) - 128, v.astype(int) - 128
expected = numpy.stack([Y + (359 * V + 128 >> 8), Y - (183 * V + 88 * U + 128 >> 8), Y + (454 * U + 128 >> 8)], axis=2)
assert (rgb == expected.clip(0, 255)).all()

# Blue first, bottom row first: a view of the array says so, the library follows it.
bgr = numpy.zeros_like(rgb)
qorv_skia.convert(lib, (y, u, v), lib.QORV_CS_YUV444, (bgr[::-1, :, ::-1],), lib.QORV_CS_RGB888)
assert (bgr[::-1, :, ::-1] == rgb).all()

# Another size: the converter that is found scales as well.
small = numpy.zeros((20, 30, 4), numpy.uint8)
qorv_skia.convert(lib, (y, u, v), lib.QORV_CS_YUV444, (small,), lib.QORV_CS_RGBA8888)
assert (small[:, :, 3] == 255).all() and (small[0, 0, :3] == rgb[0, 0]).all()

# The resizer on the pixels themselves: strides count pixels there.
half = numpy.zeros((24, 32, 3), numpy.uint8)
param = ffi.new("QORV_IRSZ_PARAM *", {"format": 21, "mode": 10, "src_w": 64, "src_h": 48, "src_stride": 64,
                                      "dst_w": 32, "dst_h": 24, "dst_stride": 32, "dst": ffi.from_buffer(half)})
status = ffi.new("int32_t *")
resizer = lib.qorv_irsz_create(param, status)
assert resizer != ffi.NULL, status[0]
lib.qorv_irsz(resizer, ffi.from_buffer("uint8_t[]", rgb), 0, 0)
lib.qorv_irsz_delete(resizer)
assert (half[0, 0] == rgb[0, 0]).all()

assert qorv_skia.md5(lib, y) == hashlib.md5(y.tobytes()).digest()
for wrong in ((y, u, v), lib.QORV_CS_NV12, (rgb,), lib.QORV_CS_RGB888), ((rgb[:, ::2],), 400, (y[:, :32], u, v), 13):
    try:
        qorv_skia.convert(lib, *wrong)
    except ValueError as error:
        print("Refused:", error)
    else:
        sys.exit("taken, though it is wrong")
print("mean of the picture:", rgb.mean(axis=(0, 1)).round(1), "and of half of it:", half.mean(axis=(0, 1)).round(1))
