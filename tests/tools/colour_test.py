"""The colours of qorv convert against FFmpeg's own conversions of the same streams: range, chroma siting, depth."""
import subprocess

from program import QORV, WRAPPER, bytes_of, ffmpeg, psnr, qorv

W, H = 144, 96
# A detailed picture with colours that change from pixel to pixel, and a smooth one.
DETAILED = f"testsrc2=size={W}x{H}:rate=25"
SMOOTH = f"gradients=size={W}x{H}:x0=0:y0=0:x1={W}:y1={H}:c0=0xd04030:c1=0x3060c0:c2=0x40b050:nb_colors=3:speed=0.00001"


def make(source, pixel_format, name="in.y4m"):
    # A newer FFmpeg says nothing of the range where it is not told.
    colour_range = ["-color_range", "tv"] if pixel_format.startswith("yuv4") else []
    ffmpeg("-f", "lavfi", "-i", source, "-frames:v", "1", "-pix_fmt", pixel_format, *colour_range, "-strict", "-1", name)


# Without options FFmpeg takes the nearest chroma sample; what it interpolates lies where it is told.
INTERPOLATED = "scale=in_h_chr_pos={}:in_v_chr_pos={}:flags=bicubic+accurate_rnd+full_chroma_int+full_chroma_inp"


def shown(name, *options):
    """The samples of the picture that the program makes."""
    done = subprocess.run([*WRAPPER, QORV, "convert", name, "-", "--to", "ppm", *options], capture_output=True, check=True)
    return done.stdout[done.stdout.index(b"\n255\n") + 5:]


def against_ffmpeg(*options, name="in.y4m", siting=None):
    """How near the picture is to FFmpeg's, in dB. `siting`: of the chroma, in units of 1/256 of its distance."""
    theirs = bytes_of(name, "rgb24", *(["-vf", INTERPOLATED.format(*siting)] if siting else []))
    return psnr(shown(name, *options), theirs)


def header(name):
    with open(name, "rb") as file:
        return file.readline()


# Limited range is expanded, with the word and, where chroma is subsampled, without.
for source in (DETAILED, SMOOTH):
    make(source, "yuv444p")
    assert b"LIMITED" in header("in.y4m")
    assert against_ffmpeg() > 45, source
    assert against_ffmpeg("--range", "full") < 40
    make(source, "yuvj444p")
    assert b"FULL" in header("in.y4m") and against_ffmpeg() > 45
    assert against_ffmpeg("--range", "limited") < 40
for pixel_format, siting in (("yuv420p", (128, 128)), ("yuv422p", (0, -513))):
    make(SMOOTH, pixel_format)
    with open("in.y4m", "rb") as file:
        data = file.read()
    with open("untagged.y4m", "wb") as file:
        file.write(data.replace(b" XCOLORRANGE=LIMITED", b""))
    assert b"RANGE" not in header("untagged.y4m") and against_ffmpeg(name="untagged.y4m", siting=siting) > 42
    assert against_ffmpeg("--range", "full", name="untagged.y4m", siting=siting) < 40

# Every format that the reader knows; 10 bits go through the library's own converter of 10 bits.
FORMATS = ["yuv420p", "yuv422p", "yuv444p", "yuv411p", "gray", "yuvj420p", "yuvj422p",
           "yuv420p9le", "yuv420p10le", "yuv422p12le", "yuv422p14le", "yuv420p16le", "yuv444p9le", "yuv444p16le",
           "gray9le", "gray12le", "gray16le"]
SITINGS = {"420mpeg2": (0, 128), "420jpeg": (128, 128), "420paldv": (0, 0)}
for pixel_format, tag in [(name, "420jpeg") for name in FORMATS] + [("yuv420p", "420mpeg2"), ("yuv420p", "420paldv")]:
    siting = (SITINGS[tag] if "420" in pixel_format
              else (0, -513) if "422" in pixel_format or "411" in pixel_format else None)
    for source, least in ((DETAILED, 30), (SMOOTH, 42)):
        make(source, pixel_format)
        with open("in.y4m", "rb") as file:
            data = file.read()
        with open("in.y4m", "wb") as file:
            file.write(data.replace(b" C420jpeg ", b" C%s " % tag.encode(), 1))
        found = against_ffmpeg(siting=siting)
        assert found > (least if siting else 45), (pixel_format, tag, found)
        if pixel_format.endswith("10le"):
            assert against_ffmpeg("--format", "rgb888", siting=siting) > least

# Chroma lies where the stream says, measured at an edge in colour alone: without a shift its mean position is the same
# as that of a picture which was never subsampled.
for tag, across, down in (("420jpeg", 0.5, 0.5), ("420mpeg2", 0, 0.5), ("420paldv", 0, 0), ("422", 0, None)):
    width, height = 64, 64
    columns, rows = width // 2, height if down is None else height // 2
    # Cr rises along the diagonal of the picture: its value tells the position.
    chroma = bytes(round(64 + 2 * across + (2 * x + across) + ((2 * y + (down or 0)) if down is not None else y))
                   for y in range(rows) for x in range(columns))
    with open("siting.y4m", "wb") as file:
        file.write(b"YUV4MPEG2 W64 H64 C%s XCOLORRANGE=FULL\nFRAME\n" % tag.encode() + b"\x60" * width * height
                   + b"\x80" * len(chroma) + chroma)
    red = shown("siting.y4m")[::3]
    expected = [max(0, min(255, 0x60 + (359 * (round(64 + 2 * across + x + y) - 128) + 128 >> 8)))
                for y in range(height) for x in range(width)]
    inner = [y * width + x for y in range(4, 60) for x in range(4, 60)]
    assert all(abs(red[i] - expected[i]) <= 3 for i in inner), (tag, max(abs(red[i] - expected[i]) for i in inner))

# 16-bit PNGs are brought to 8 bits by dividing.
for value in (0x0000, 0x0101, 0x7F7E, 0xABCD, 0xFFFF):
    with open("gray16.raw", "wb") as file:
        file.write(value.to_bytes(2, "big") * 16)
    ffmpeg("-f", "rawvideo", "-pix_fmt", "gray16be", "-s", "4x4", "-i", "gray16.raw", "gray16.png")
    ffmpeg("-f", "rawvideo", "-pix_fmt", "gray16be", "-s", "4x4", "-i", "gray16.raw", "-pix_fmt", "rgb48be", "rgb48.png")
    for name in ("gray16.png", "rgb48.png"):
        qorv("convert", name, "8.pgm")
        with open("8.pgm", "rb") as file:
            assert file.read()[-16:] == bytes([round(value / 257)] * 16), (name, value)

# Scaling to the same size changes nothing, in any format; to another size FFmpeg does the same.
for tag in ("420mpeg2", "422", "411", "444alpha", "420p10", "mono16"):
    samples = bytes(i * i * 7 % 251 & (3 if i % 2 and "0p" in tag else 255) for i in range(64 * 32 * 8))
    with open("in.y4m", "wb") as file:
        file.write(b"YUV4MPEG2 W64 H32 C%s\nFRAME\n" % tag.encode())
        file.write(samples[:64 * 32 * {"420mpeg2": 3, "422": 4, "411": 3, "444alpha": 8, "420p10": 6, "mono16": 4}[tag] // 2])
    qorv("convert", "in.y4m", "scaled.y4m", "--size", "64x32")
    with open("in.y4m", "rb") as a, open("scaled.y4m", "rb") as b:
        assert a.read().split(b"FRAME")[1] == b.read().split(b"FRAME")[1], tag
make(DETAILED, "yuv420p")
for size in ("48x35", "192x140", "131x33", "30x90"):
    width, height = size.split("x")
    qorv("convert", "in.y4m", "scaled.y4m", "--size", size)
    theirs = bytes_of("in.y4m", "yuv420p", "-vf", f"scale={width}:{height}:flags=bilinear+accurate_rnd")
    found = psnr(bytes_of("scaled.y4m", "yuv420p"), theirs)
    assert found > 30, (size, found)

# Chroma formats that are not known are refused by name.
for tag in ("444alpha10", "420foo", "420p8", "420p17", "mono7", "", "444p10x"):
    with open("odd.y4m", "wb") as file:
        file.write(f"YUV4MPEG2 W4 H4 C{tag}\nFRAME\n".encode() + bytes(400))
    for command in (("convert", "odd.y4m", "odd.png"), ("md5", "odd.y4m")):
        assert f"unknown chroma format '{tag}'" in qorv(*command, status=1)
