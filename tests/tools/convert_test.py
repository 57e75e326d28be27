"""qorv convert against the colour formulas, pixel by pixel, on real pictures of awkward sizes."""
import json
import os
import shutil
import subprocess

from program import QORV, WRAPPER, bytes_of, ffmpeg, pixels_of, psnr, qorv, shown_as_565

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


def qorv_bytes(*arguments, stdin=b""):
    """What the program writes to standard output, with nothing on standard error."""
    done = subprocess.run([*WRAPPER, QORV, *arguments], input=stdin, capture_output=True, check=True)
    assert done.stderr == b"", done.stderr
    return done.stdout


def bytes_of_png(data, pixel_format):
    with open("shown.png", "wb") as file:
        file.write(data)
    return bytes_of("shown.png", pixel_format)


def make(pixel_format, path):
    """A stream with colours everywhere; its frames as planes of samples."""
    ffmpeg("-f", "lavfi", "-i", f"testsrc2=size=64x48:rate=25,scale={W}:{H},noise=alls=60", "-frames:v", str(FRAMES), "-pix_fmt",
           pixel_format, "-strict", "-1", "-color_range", "pc", path)
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

# Every file of pictures, by its name in any letter case or by --to; each of them back again.
WRITTEN = [("A.PNG", "rgb24", 99), ("a.Jpg", "rgb24", 15), ("b.JPEG", "rgb24", 15), ("a.ppm", "rgb24", 99), ("a.PGM", "gray", 99)]
picture = bytes_of("rgb888.png", "rgb24")
luma = bytes(to_yuv(*picture[i:i + 3])[0] for i in range(0, len(picture), 3))
for name, pixel_format, least in WRITTEN:
    qorv("convert", "plain.y4m", name, "--frame", "1", "--quality", "95")
    shown = bytes_of(name, pixel_format)
    assert psnr(shown, luma if pixel_format == "gray" else picture) >= least, name
    word = {"jpg": "jpeg"}.get(name[2:].lower(), name[2:].lower())
    with open(name, "rb") as file:
        data = file.read()
    assert qorv_bytes("convert", "plain.y4m", "-", "--to", word, "--frame", "1", "--quality", "95") == data, name
    assert bytes_of_png(qorv_bytes("convert", "-", "-", "--to", "png", stdin=data), pixel_format) == (
        shown if word != "jpeg" else bytes_of_png(qorv_bytes("convert", name, "-", "--to", "png"), pixel_format)), name
    assert psnr(bytes_of_png(qorv_bytes("convert", name, "-", "--to", "png"), pixel_format), shown) >= least, name
ffmpeg("-i", "rgb888.png", "-pix_fmt", "rgb48be", "deep.ppm")
with open("text.ppm", "wb") as file:
    file.write(f"P3 # text\n{W} {H}\n# of 255\n255\n".encode() + b" ".join(b"%d" % value for value in picture))
ffmpeg("-i", "rgb888.png", "-c:v", "mjpeg", "-q:v", "1", "-pix_fmt", "yuvj444p", "theirs.jpg")
for name, least in (("deep.ppm", 45), ("text.ppm", 99), ("theirs.jpg", 40)):
    qorv("convert", name, "shown.png")
    assert psnr(bytes_of("shown.png", "rgb24"), bytes_of(name, "rgb24")) >= least, name
ffmpeg("-i", "rgb888.png", "-vf", "format=pal8", "palette.png")
ffmpeg("-i", "rgba8888.png", "-pred", "mixed", "-pix_fmt", "ya8", "gray_alpha.png")
for name in ("palette.png", "gray_alpha.png"):
    qorv("convert", name, "shown.png")
    assert pixels_of("shown.png") == pixels_of(name), name
qorv("convert", "rgb888.png", "565.png", "--format", "rgb565")
assert [pixel[:3] for pixel in pixels_of("565.png")] == [shown_as_565(pixel) for pixel in rgb[1]]

# A stream with alpha keeps it.
qorv("convert", "alpha.y4m", "default.png")
assert pixels_of("default.png") == pixels_of("rgba8888.png")

# Streams to streams, to numbered pictures and from these; standard input and output; any number of threads.
for threads in ("1", "2", "7"):
    qorv("convert", "plain.y4m", f"t{threads}-%02d.png", "--threads", threads)
    for i in range(FRAMES):
        assert pixels_of(f"t{threads}-{i:02}.png") == pixels_of(f"all-{i:05}.png")
    qorv("convert", "all.png", "joined.y4m", "--all", "--fps", "29.97", "--threads", threads)
    again = qorv_bytes("convert", f"t{threads}-%02d.png", "-", "--to", "y4m", "--fps", "29970/1000", "--threads", threads)
    with open("joined.y4m", "rb") as file:
        joined = file.read()
    assert again == joined and b"F29970:1000 " in joined and joined.count(b"FRAME\n") == FRAMES, joined[:80]
    with open("plain.y4m", "rb") as file:
        small = qorv_bytes("convert", "-", "-", "--to", "y4m", "--size", "20x30", "--threads", threads, stdin=file.read())
    assert small.startswith(b"YUV4MPEG2 W20 H30 ") and small.count(b"FRAME\n") == FRAMES
    assert len(small) == small.index(b"\n") + 1 + FRAMES * (6 + 3 * 20 * 30)
qorv("convert", "all-%05d.png", "again-%d.jpg")
assert psnr(bytes_of("again-2.jpg", "rgb24"), bytes_of("all-00002.png", "rgb24")) > 12

# Raw planes are the same stream without its headers.
raw = ffmpeg("-i", "deep.y4m", "-f", "rawvideo", "-")
for frame in ("0", "2"):
    one = qorv_bytes("convert", "-", "-", "--raw", f"{W}x{H}", "--pix", "yuv444p10le", "--range", "full", "--to", "ppm",
                     "--frame", frame, stdin=raw)
    assert one == qorv_bytes("convert", "deep.y4m", "-", "--to", "ppm", "--frame", frame)
ffmpeg("-i", "plain.y4m", "-pix_fmt", "yuv420p", "420.y4m")
raw = ffmpeg("-i", "420.y4m", "-f", "rawvideo", "-")
joined = qorv_bytes("convert", "-", "-", "--raw", f"{W}x{H}", "--pix", "yuv420p", "--to", "y4m", "--fps", "50", stdin=raw)
assert joined.startswith(f"YUV4MPEG2 W{W} H{H} F50:1 ".encode()) and b" C420mpeg2 " in joined
with open("raw.y4m", "wb") as file:
    file.write(joined)
assert ffmpeg("-i", "raw.y4m", "-f", "rawvideo", "-pix_fmt", "yuv420p", "-") == raw

# What cannot be done is said, and leaves nothing behind.
shutil.copy("rgb888.png", "mixed-0.png")
ffmpeg("-i", "rgb888.png", "-vf", "scale=9:9", "mixed-1.png")
with open("absurd.y4m", "wb") as file:
    file.write(b"YUV4MPEG2 W99999 H9\nFRAME\n")
with open("claims.y4m", "wb") as file:  # more than the memory limit, and nothing behind it
    file.write(b"YUV4MPEG2 W32768 H32768 C444\nFRAME\n")
for arguments, reason in (
        (("plain.y4m", "no.png", "--frame", "3"), "there is no frame 3: the stream has 3"),
        (("plain.y4m", "no.png", "--format", "argb8888"), "without alpha to argb8888; there are: rgb888 rgba8888 bgra8888"),
        (("plain.y4m", "no.png", "--format", "bgra8888", "--size", "9x9"), "with scaling; there are: rgb888 rgba8888 rgb565"),
        (("rgb888.png", "no.y4m", "--format", "bgra8888"), "from bgra8888 to YUV; there are: rgb888"),
        (("missing-%d.png", "no.y4m"), "there is no picture missing-0.png"),
        (("mixed-%d.png", "no.y4m"), "where the first picture has"),
        (("absurd.y4m", "no.png"), "absurd size 99999x9"),
        (("claims.y4m", "no.png"), "the stream is truncated"),
        (("missing.y4m", "no.png"), "cannot be opened"),
        (("/dev/zero", "no.png"), "no YUV4MPEG2 stream and no PNG"),
        (("/dev/null", "no.png"), "empty"),
        (("plain.y4m", "missing/no.png"), "cannot be written")):
    error = qorv("convert", *arguments, status=1)
    assert reason in error, (arguments, error)
for arguments, reason in (
        (("no.bmp",), "give OUT.png"),
        (("no.png", "--to", "y4m"), "says something else"),
        (("-",), "--to"),
        (("no.y4m", "--fps", "fast"), "frames a second"),
        (("no.png", "--raw", "4x4"), "need each other"),
        (("no.png", "--raw", "4x4", "--pix", "yuv420q"), "--pix yuv420q"),
        (("-", "--to", "png", "--all"), "standard output"),
        (("no.png", "--size", "0x4"), "WIDTHxHEIGHT"),
        (("no.png", "--frame", "-1"), "not in range"),
        (("no.png", "--format", "cmyk"), "rgb565"),
        ((), "OUT is required")):
    error = qorv("convert", "plain.y4m", *arguments, status=2)
    assert reason in error, (arguments, error)
assert "give OUT.png" in qorv("convert", "missing.y4m", "no.tiff", status=2)  # before any work
assert not [name for name in os.listdir() if name.startswith(("no.", ".qorv"))]
assert "the stream is truncated" in qorv("md5", "claims.y4m", status=1)
told = json.loads("\n".join(qorv("convert", "plain.y4m", "told.png", "--json", "--frame", "1")))
assert (told["frames"], told["width"], told["height"], told["format"]) == (1, W, H, "rgb888")
assert qorv("convert", "plain.y4m", "told.png", "--quiet") == []
