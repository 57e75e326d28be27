"""qorv convert against the colour formulas, pixel by pixel, on real pictures of awkward sizes."""
import os

from program import ffmpeg, pixels_of, qorv, shown_as_565, survives_damage

W, H, FRAMES = 37, 29, 3


def clamp(value, limit=255):
    return max(0, min(limit, value))


def to_rgb(y, u, v):
    u, v = u - 128, v - 128
    return (clamp(y + ((359 * v + 128) >> 8)), clamp(y - ((183 * v + 88 * u + 128) >> 8)),
            clamp(y + ((454 * u + 128) >> 8)))


def to_rgb10(y, u, v):
    u, v = u - 512, v - 512
    rgb = (y + ((1436 * v + 512) >> 10), y - ((732 * v + 352 * u + 512) >> 10), y + ((1816 * u + 512) >> 10))
    return tuple((clamp(c, 1023) * 255 + 511) // 1023 for c in rgb)


def to_yuv(r, g, b):
    return ((77 * r + 150 * g + 29 * b + 128) >> 8, min(((-43 * r - 85 * g + 128 * b + 128) >> 8) + 128, 255),
            min(((128 * r - 107 * g - 21 * b + 128) >> 8) + 128, 255))


def make(pixel_format, path):
    """A stream with colours everywhere; its frames as planes of samples."""
    ffmpeg("-f", "lavfi", "-i", f"testsrc2=size=64x48:rate=25,scale={W}:{H},noise=alls=60", "-frames:v", str(FRAMES), "-pix_fmt",
           pixel_format, "-strict", "-1", path)
    raw = ffmpeg("-i", path, "-f", "rawvideo", "-pix_fmt", pixel_format, "-")
    size, words = W * H, "10le" in pixel_format
    if words:
        raw = [raw[i] | raw[i + 1] << 8 for i in range(0, len(raw), 2)]
    planes = 4 if "yuva" in pixel_format else 3
    return [[raw[(f * planes + p) * size:(f * planes + p + 1) * size] for p in range(planes)] for f in range(FRAMES)]


frames = make("yuv444p", "plain.y4m")
rgb = [[to_rgb(*yuv) for yuv in zip(*frame)] for frame in frames]
for name in ("rgb888", "rgba8888", "bgra8888", "rgb565", "r8g8b8"):
    qorv("convert", "plain.y4m", f"{name}.png", "--format", name, "--frame", "1")
    shown = shown_as_565 if name == "rgb565" else tuple
    assert pixels_of(f"{name}.png") == [(*shown(pixel), 255) for pixel in rgb[1]], name

qorv("convert", "plain.y4m", "all.png", "--all")
for i in range(FRAMES):
    assert pixels_of(f"all-{i:05}.png") == [(*pixel, 255) for pixel in rgb[i]], i

frames = make("yuva444p", "alpha.y4m")
for name in ("rgba8888", "bgra8888", "argb8888"):
    qorv("convert", "alpha.y4m", f"{name}.png", "--format", name)
    assert pixels_of(f"{name}.png") == [(*to_rgb(*yuva[:3]), yuva[3]) for yuva in zip(*frames[0])], name

frames = make("yuv444p10le", "deep.y4m")
qorv("convert", "deep.y4m", "deep.png", "--frame", "2")
assert pixels_of("deep.png") == [(*to_rgb10(*yuv), 255) for yuv in zip(*frames[2])]

for source, names in (("rgb888.png", ("rgb888", "r8g8b8")), ("rgba8888.png", ("rgba8888",))):
    picture = pixels_of(source)
    for name in names:
        qorv("convert", source, "back.y4m", "--format", name)
        with open("back.y4m", "rb") as file:
            back = file.read().split(b"FRAME\n", 1)[1]
        planes = list(zip(*(to_yuv(*pixel[:3]) for pixel in picture)))
        if name == "rgba8888":
            planes.append([pixel[3] for pixel in picture])
        assert back == b"".join(bytes(plane) for plane in planes), name
qorv("convert", "rgb888.png", "back.y4m", "--format", "r10g10b10")
qorv("convert", "back.y4m", "again.png")
near = zip(pixels_of("again.png"), pixels_of("rgb888.png"))
assert all(abs(a - b) <= 2 for pixels in near for a, b in zip(*pixels)), "10 bits there and back"

# What cannot be done is said, and leaves nothing behind.
ffmpeg("-f", "lavfi", "-i", "testsrc2=size=16x16", "-frames:v", "1", "subsampled.y4m")
with open("absurd.y4m", "wb") as file:
    file.write(b"YUV4MPEG2 W99999 H9\nFRAME\n")
with open("claims.y4m", "wb") as file:  # more than the memory limit, and nothing behind it
    file.write(b"YUV4MPEG2 W32768 H32768 C444\nFRAME\n")
for arguments, reason in (
        (("plain.y4m", "no.png", "--frame", "3"), "there is no frame 3: the stream has 3"),
        (("plain.y4m", "no.png", "--format", "argb8888"), "needs a stream with alpha"),
        (("subsampled.y4m", "no.png"), "chroma format '420"),
        (("absurd.y4m", "no.png"), "absurd size 99999x9"),
        (("claims.y4m", "no.png"), "no picture buffer of 32768x32768"),
        (("missing.y4m", "no.png"), "cannot be opened"),
        (("rgb888.png", "no.png"), "not a YUV4MPEG2 stream"),
        (("plain.y4m", "missing/no.png"), "cannot be written")):
    error = qorv("convert", *arguments, status=1)
    assert reason in error, (arguments, error)
for arguments, reason in (
        (("no.bmp",), "give OUT.png"),
        (("no.png", "--size", "0x4"), "WIDTHxHEIGHT"),
        (("no.png", "--frame", "-1"), "not in range"),
        (("no.png", "--format", "cmyk"), "rgb565"),
        ((), "OUT is required")):
    error = qorv("convert", "plain.y4m", *arguments, status=2)
    assert reason in error, (arguments, error)
assert not [name for name in os.listdir() if name.startswith("no.") or name.endswith(".partial")]
assert "the stream is truncated" in qorv("md5", "claims.y4m", status=1)
survives_damage("plain.y4m", "md5")
