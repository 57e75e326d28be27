"""qorv resize against the bilinear formula, pixel by pixel, whole and in bands."""
import json
import os
import subprocess

from program import QORV, WRAPPER, ffmpeg, pixels_of, qorv, shown_as_565

W, H = 61, 47
CHANNELS = {"gray": "gray", "rgb888": "rgb24", "rgba8888": "rgba"}


def axis(source, dest):
    """Step of 18 fraction bits, and the shift of the decimation."""
    shift = 0
    while shift < 4 and source // dest > 2 << shift:
        shift += 1
    return ((source - 1 >> shift) << 18) // dest, shift


def resized(pixels, w, h):
    (step_x, shift_x), (step_y, shift_y) = axis(W, w), axis(H, h)

    def sample(i, j):
        x, y = i * step_x, j * step_y
        fx, fy = x >> 15 & 7, y >> 15 & 7
        a = (y >> 18 << shift_y) * W + (x >> 18 << shift_x)
        b, below = a + (1 << shift_x if fx else 0), W << shift_y if fy else 0
        four = zip(pixels[a], pixels[b], pixels[a + below], pixels[b + below])
        return tuple((8 - fy) * ((8 - fx) * p + fx * q) + fy * ((8 - fx) * r + fx * s) >> 6 for p, q, r, s in four)

    return [sample(i, j) for j in range(h) for i in range(w)]


def run(source, w, h, *options):
    out = f"{w}x{h}.png"
    line, = qorv("resize", source, out, "--size", f"{w}x{h}", *options)
    assert line.startswith(f"{W}x{H} to {w}x{h}"), line
    return out


for name, pixel_format in CHANNELS.items():
    ffmpeg("-f", "lavfi", "-i", f"testsrc2=size=64x48,format=yuva444p,scale={W}:{H},noise=alls=60,format={pixel_format}",
           "-frames:v", "1", f"{name}.png")
pictures = {name: pixels_of(f"{name}.png", pixel_format) for name, pixel_format in CHANNELS.items()}

SIZES = (30, 29), (61, 47), (100, 64), (7, 90), (1, 1), (300, 3)
for w, h in SIZES[::5] if WRAPPER else SIZES:
    for name, pixels in pictures.items():
        assert pixels_of(run(f"{name}.png", w, h), CHANNELS[name]) == resized(pixels, w, h), (name, w, h)
    words = [shown_as_565(pixel) for pixel in resized(pictures["rgb888"], w, h)]
    assert pixels_of(run("rgb888.png", w, h, "--format", "rgb565"), "rgb24") == words, (w, h)
    for name in (*pictures, "rgb565"):
        options = (name.replace("rgb565", "rgb888") + ".png", w, h, "--format", name)
        with open(run(*options), "rb") as file:
            whole = file.read()
        for band_height in ("1", "7", "64"):
            with open(run(*options, "--band-height", band_height), "rb") as file:
                assert file.read() == whole, (options, band_height)

# Another layout than the picture's own.
luma = [((77 * r + 150 * g + 29 * b + 128) >> 8,) for r, g, b in pictures["rgb888"]]
opaque = [(*pixel, 255) for pixel in pictures["rgb888"]]
for source, name, pixels in (("rgb888", "gray", luma), ("gray", "rgb888", [3 * p for p in pictures["gray"]]),
                             ("rgb888", "rgba8888", opaque), ("rgba8888", "rgb888", [p[:3] for p in pictures["rgba8888"]])):
    out = run(f"{source}.png", 20, 70, "--format", name)
    assert pixels_of(out, CHANNELS[name]) == resized(pixels, 20, 70), (source, name)

# A pipe stays one.
os.mkfifo("pipe.png")
with subprocess.Popen(["cat", "pipe.png"], stdout=subprocess.PIPE) as reader, open(run("rgb888.png", 9, 5), "rb") as file:
    qorv("resize", "rgb888.png", "pipe.png", "--size", "9x5")
    assert reader.communicate(timeout=30)[0] == file.read()

# Other files, and standard input and output with nothing but the picture.
ffmpeg("-i", "rgb888.png", "in.ppm")
with open("in.ppm", "rb") as file:
    done = subprocess.run([*WRAPPER, QORV, "resize", "-", "-", "--to", "ppm", "--size", "9x5", "--json"], stdin=file,
                          capture_output=True, check=True)
assert done.stdout[:11] == b"P6\n9 5\n255\n" and len(done.stdout) == 11 + 9 * 5 * 3
assert json.loads(done.stderr)["from"] == {"width": W, "height": H}
assert [tuple(done.stdout[i:i + 3]) for i in range(11, len(done.stdout), 3)] == resized(pictures["rgb888"], 9, 5)

with open("broken.png", "wb") as broken, open("rgb888.png", "rb") as file:
    broken.write(file.read()[:200])
for paths, reason in ((("missing.png", "no.png"), "missing.png: cannot be opened"),
                      (("broken.png", "no.png"), "broken.png: cannot be read as PNG"),
                      (("rgb888.png", "missing/no.png"), "missing/no.png: cannot be written")):
    error = qorv("resize", *paths, "--size", "4x4", status=1)
    assert reason in error, (paths, error)
for arguments, reason in (((), "--size is required"),
                          *((("--size", size), "WIDTHxHEIGHT") for size in ("0x4", "12", "40000x2", "3x4x5", "-1x4")),
                          (("--size", "4x4", "--format", "cmyk"), "rgb565"),
                          (("--size", "4x4", "--band-height", "0"), "not in range")):
    error = qorv("resize", "rgb888.png", "no.png", *arguments, status=2)
    assert reason in error, (arguments, error)
assert not [name for name in os.listdir() if name.startswith(("no.", ".qorv"))]
