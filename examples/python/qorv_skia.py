"""libqorv_skia in Python: its header read by cffi, numpy arrays handed over without a copy.

Copy this file into a project and change it as needed. It needs the packages cffi and numpy, the header and the shared
library; no compiler.
"""
import re

import cffi
import numpy

ffi = cffi.FFI()

_P410, _R10G10B10 = 62, 603  # these converters count strides in samples, all others in bytes


def load(header="/usr/include/qorv_skia.h", library="libqorv_skia.so.1"):
    """Declares what the header declares and loads the library: load().qorv_version() and so on, constants included."""
    with open(header, encoding="utf-8") as file:
        text = file.read()
    text = re.sub(r"/\*.*?\*/", "", text, flags=re.S).replace("\\\n", " ")
    text = re.sub(r"#ifdef __cplusplus.*?#endif", "", text, flags=re.S)
    constants = re.findall(r"^#define (QORV_\w+) (\d+)u?$", text, flags=re.M)
    text = re.sub(r"^#.*$", "", text, flags=re.M).replace("QORV_API ", "")
    ffi.cdef("".join(f"#define {name} {value}\n" for name, value in constants) + text)
    return ffi.dlopen(library)


def _channels(arrays):
    """Each plane of two dimensions, and each channel of a picture of three, as an array of rows."""
    for array in arrays:
        yield from [array] if array.ndim == 2 else [array[:, :, i] for i in range(array.shape[2])]


def picture(*arrays, cs):
    """Pointers and strides of a picture, as a converter takes them.

    Each array is a plane (rows x columns) or interleaved pixels (rows x columns x channels), of any strides between
    rows: slices of rows and columns, upside-down views and, for channels, reversed ones are taken as they are.
    """
    pointers, strides = [], []
    for channel in _channels(arrays):
        pixel = arrays[0].shape[2] if arrays[0].ndim == 3 else channel.itemsize
        if channel.shape[1] > 1 and channel.strides[1] != pixel:
            raise ValueError(f"pixels lie {channel.strides[1]} bytes apart, not {pixel}")
        pointers.append(ffi.cast("void *", channel.__array_interface__["data"][0]))
        strides.append(channel.strides[0] // (2 if cs in (_P410, _R10G10B10) else 1))
    return pointers, strides


def convert(lib, source, source_cs, destination, destination_cs):
    """Converts pictures given as tuples of arrays; where the sizes differ it scales as well. The destination's arrays
    must be writable."""
    if not all(array.flags.writeable for array in destination):
        raise ValueError("the destination cannot be written")
    (from_h, from_w), (to_h, to_w) = source[0].shape[:2], destination[0].shape[:2]
    converter = lib.qorv_imgp_get_fn_csc(from_w, from_h, source_cs, to_w, to_h, destination_cs, ffi.NULL)
    if converter == ffi.NULL:
        raise ValueError(f"no converter from {source_cs} to {destination_cs}")
    from_pointers, from_strides = picture(*source, cs=source_cs)
    to_pointers, to_strides = picture(*destination, cs=destination_cs)
    converter(from_pointers, from_w, from_h, from_strides, 0, to_pointers, to_w, to_h, to_strides, destination_cs)


def md5(lib, array):
    """The digest of an array's bytes, row by row."""
    context, digest = ffi.new("QORV_MD5 *"), ffi.new("uint8_t[16]")
    lib.qorv_md5_init(context)
    for row in numpy.atleast_2d(array):
        lib.qorv_md5_update(context, ffi.from_buffer(numpy.ascontiguousarray(row)), row.nbytes)
    lib.qorv_md5_finish(context, digest)
    return bytes(digest)
