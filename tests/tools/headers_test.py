"""qorv headers on byte streams that FFmpeg's encoders made."""
import json
import re
import shutil

from program import ffmpeg, ffprobe, qorv, survives_damage

X264 = ["-c:v", "libx264", "-preset", "ultrafast"]
X265 = ["-c:v", "libx265", "-preset", "ultrafast", "-x265-params"]
CHROMA = {"gray": "4:0:0", "yuv420p": "4:2:0", "yuv422p": "4:2:2", "yuv444p": "4:4:4"}
PROFILES = {"Constrained Baseline": 66, "Main": 77, "High": 100, "High 10": 110, "High 4:2:2": 122,
            "High 4:4:4 Predictive": 244}
HEVC_PROFILES = {"Main": 1, "Main 10": 2, "Rext": 4}

# size, pixel format, encoder
H264 = [
    ("176x144", "yuv420p", X264 + ["-profile:v", "baseline"]),
    ("178x148", "yuv420p", X264 + ["-bf", "2", "-refs", "4", "-flags", "+ildct+ilme"]),
    ("320x180", "yuv420p10le", X264 + ["-level", "4.1"]),
    ("98x50", "yuv422p", X264),
    ("641x479", "yuv444p", X264 + ["-x264-params", "cqm=jvt:8x8dct=1"]),
    ("176x144", "gray", X264),
]
HEVC = [
    ("176x144", "yuv420p", X265 + ["log-level=none"]),
    ("178x146", "yuv420p10le", X265 + ["log-level=none:temporal-layers=3"]),
    ("322x182", "yuv444p", X265 + ["log-level=none:repeat-headers=1:keyint=3"]),
    ("98x66", "yuv422p", X265 + ["log-level=none:aud=1"]),
]


def units(data):
    """(offset, size) of the NAL units, by searching."""
    starts = [match.end() for match in re.finditer(b"\0\0\1", data)]
    ends = [start - 3 for start in starts[1:]] + [len(data)]
    return [(start, len(data[start:end].rstrip(b"\0"))) for start, end in zip(starts, ends)]


def check(name, size, pixel_format, options, hevc):
    ffmpeg("-f", "lavfi", "-i", f"testsrc2=size={size}:rate=25", "-frames:v", "8", "-pix_fmt", pixel_format, *options,
           name)
    lines = qorv("headers", name)
    units_of_json = json.loads("\n".join(qorv("headers", "--json", name)))["units"]
    with open(name, "rb") as file:
        data = file.read()
    listed = [tuple(map(int, line.split(", ")[:2])) for line in lines if re.match(r"\d+, ", line)]
    assert listed == units(data) == [(unit["offset"], unit["bytes"]) for unit in units_of_json], (name, listed)
    types = [data[at] >> 1 & 63 if hevc else data[at] & 31 for at, _ in listed]
    for kind in set(types):
        assert any(line.startswith(f"{types.count(kind)} of type {kind} (") for line in lines), (name, kind)
    headers = [line for line in lines if line.startswith("    ")]
    assert len(headers) == types.count(33 if hevc else 7) > 0, name

    probed = " ".join(ffprobe("-show_entries", "stream=profile,width,height,level", name))
    profile, width, height, level = probed.split(",")
    interlaced = "+ildct+ilme" in options
    down = 32 if interlaced else 16  # coded sizes are multiples of blocks
    coded_width, coded_height = -(-int(width) // 16) * 16, -(-int(height) // down) * down
    bits = 10 if "10" in pixel_format else 8
    number = (HEVC_PROFILES if hevc else PROFILES)[profile]
    unit = 30 if hevc else 10
    expected = (f"    id 0, profile {number}, level {int(level) // unit}.{int(level) % unit * 10 // unit}, "
                f"{CHROMA[pixel_format.replace('10le', '')]}, {bits} and {bits} bits, "
                f"{coded_width}x{coded_height} coded, {width}x{height} shown, ")
    if not hevc:
        expected += f"{4 if '-refs' in options else 1} reference frames, frames {'and fields' if interlaced else 'only'}"
    assert headers[0].startswith(expected), (name, headers[0], expected)
    sequence = next(unit["sequence"] for unit in units_of_json if "sequence" in unit)
    assert (sequence["width"], sequence["height"]) == (int(width), int(height)), sequence
    # Whatever the name says, the data tell the codec.
    shutil.copy(name, "stream.h264" if hevc else "stream.hevc")
    assert qorv("headers", "stream.h264" if hevc else "stream.hevc") == lines
    assert qorv("headers", "-", stdin=data) == lines


for stream in H264:
    check("a.h264", *stream, hevc=False)
for stream in HEVC:
    check("a.hevc", *stream, hevc=True)

with open("a.hevc", "rb") as file:
    data = file.read()
at = next(start for start, _ in units(data) if data[start] >> 1 == 33)
for kept in range(2, 20):
    with open("cut.hevc", "wb") as file:
        file.write(data[:at + kept])
    assert f"cut.hevc: at byte {at}: sequence parameter set: " in qorv("headers", "cut.hevc", status=1), kept
for content, offset in [(b"", 0), (b"\0\0\0", 3), (b"\0\0\1", 3), (b"\0\0\0\1\0\0\1", 4), (b"text", 1),
                        (b"\0\0\1\xe7", 3)]:
    with open("odd.h264", "wb") as file:
        file.write(content)
    assert f"odd.h264: at byte {offset}: " in qorv("headers", "odd.h264", status=1), content
assert "no start code" in qorv("headers", "/dev/zero", status=1)
assert "--codec" in qorv("headers", "a.hevc", "--codec", "av1", status=2)
survives_damage("a.h264", "headers")
survives_damage("a.hevc", "headers")
