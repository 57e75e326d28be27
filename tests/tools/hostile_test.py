"""Files that claim what they have not, that are damaged, or that speak to the terminal; and the memory they cost."""
import os
import struct
import subprocess
import zlib

from program import LIMITED, QORV, WRAPPER, ffmpeg, peak_megabytes, qorv, survives_damage


MOST = 100  # MB for what is 32768x32768 with no data behind it
SIDE = 32768


def write(path, *pieces):
    with open(path, "wb") as file:
        for piece in pieces:
            file.write(piece)
    return path


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png(interlaced):
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", SIDE, SIDE, 8, 6, 0, 0, interlaced))
            + chunk(b"IDAT", zlib.compress(bytes(5000))))


def jpeg(path, progressive):
    """A small picture whose header claims to be large."""
    ffmpeg("-f", "lavfi", "-i", "testsrc2=size=32x32", "-frames:v", "1", "-pix_fmt", "yuvj420p", path)
    with open(path, "rb") as file:
        data = bytearray(file.read())
    at = data.index(b"\xff\xc0")
    data[at + 1] = 0xC2 if progressive else 0xC0
    data[at + 5:at + 9] = struct.pack(">HH", SIDE, SIDE)
    return write(path, data)


claims = [write("c.png", png(0)), write("i.png", png(1)), jpeg("c.jpg", False), jpeg("p.jpg", True),
          write("c.ppm", b"P6 32768 32768 255\n"), write("c.pgm", b"P2 32768 32768 255\n1 2 3")]
streams = [write(f"c{tag}.y4m", b"YUV4MPEG2 W32768 H32768 C%s\nFRAME\n" % tag.encode(), bytes(1000))
           for tag in ("420", "444p16", "444alpha")]
runs = [("convert", name, "no.y4m") for name in claims] + [("resize", name, "no.png", "--size", "9x9") for name in claims]
for name in streams:
    runs += [("convert", name, "no.png"), ("convert", name, "no.y4m", "--size", "9x9"), ("md5", name), ("compare", name, name),
             ("compare", "--json", name, name)]
raw = write("c.yuv", bytes(1000))
runs += [("md5", raw, "--raw", f"{SIDE}x{SIDE}", "--pix", "gray"), ("headers", "c.png"), ("keyframes", "c.png")]
for arguments in runs:
    megabytes, error = peak_megabytes(*arguments)
    assert arguments[1] in error or arguments[2] in error, (arguments, error)
    assert not LIMITED or megabytes < MOST, (arguments, megabytes)
if LIMITED:
    assert peak_megabytes("convert", "-", "no.ppm", stdin=open("i.png", "rb"))[0] < MOST
    # JSON is written as it comes, and memory does not grow with the number of frames.
    frame = b"FRAME\n" + bytes(16)
    with open("many.y4m", "wb") as file:
        file.write(b"YUV4MPEG2 W4 H4 Cmono\n" + frame * 300000)
    megabytes, error = peak_megabytes("compare", "--json", "many.y4m", "many.y4m")
    assert megabytes < 64 and error == "", (megabytes, error)

# Nothing from a file steers the terminal.
for evil in (b"\x1b]0;evil\x07", b"\x9b31m", b"\xc2\x9b31m", b"\x7f\x08"):
    for header in (b"YUV4MPEG2 W4 H4 C" + evil + b"\n", b"YUV4MPEG2 W" + evil + b" H4\n", b"YUV4MPEG2 W4 H4 F" + evil + b"\n"):
        write("evil.y4m", header)
        done = subprocess.run([*WRAPPER, QORV, "md5", "evil.y4m"], capture_output=True)
        assert done.returncode == 1 and b"\\x" in done.stderr, done
        assert all(byte == 10 or 32 <= byte < 127 for byte in done.stderr), done.stderr
assert "größe.y4m: cannot be opened" in qorv("md5", "größe.y4m", status=1)

# Mutations of every kind of file: a result or a message. The fuzz target of the readers runs many more.
ffmpeg("-f", "lavfi", "-i", "testsrc2=size=33x17", "-frames:v", "1", "a.png")
ffmpeg("-i", "a.png", "a.jpg")
ffmpeg("-i", "a.png", "a.ppm")
ffmpeg("-i", "a.png", "-pix_fmt", "yuv420p", "-frames:v", "2", "a.y4m")
ffmpeg("-i", "a.png", "-pix_fmt", "yuv444p12le", "-strict", "-1", "b.y4m")
survives_damage("a.y4m", "md5", rounds=20)
for name in ("a.png", "a.jpg", "a.ppm", "a.y4m", "b.y4m"):
    survives_damage(name, "convert", out="damaged.out.png", rounds=40)
assert not [name for name in os.listdir() if name.startswith((".qorv", "no."))]
