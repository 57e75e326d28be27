"""qorv compare against FFmpeg's psnr filter and against sums over the raw pictures."""
import json
import math
import re
import subprocess

from program import ffmpeg, qorv

# pixel format, size: whole and broken blocks, every number of planes, more than 8 bits
STREAMS = [
    ("yuv420p", "176x144"),
    ("yuv420p", "67x35"),
    ("yuv422p", "130x66"),
    ("yuv444p", "63x47"),
    ("gray", "17x9"),
    ("yuva444p", "30x20"),
    ("yuv420p10le", "178x146"),
    ("yuv444p12le", "34x21"),
    ("yuv444p14le", "40x22"),
]


def number(text):
    return math.inf if text == "inf" else float(text)


def ffmpeg_psnr(a, b):
    """Lists of {plane: PSNR}, plane avg included: of the frames, and of all of them."""
    done = subprocess.run(["ffmpeg", "-v", "info", "-nostdin", "-i", a, "-i", b, "-lavfi", "psnr=stats_file=psnr.log",
                           "-f", "null", "-"], check=True, capture_output=True, text=True)
    with open("psnr.log", encoding="utf-8") as log:
        frames = [dict(re.findall(r"psnr_(\w+):(\S+)", line)) for line in log]
    total = dict(re.findall(r"(\w+):(\S+)", re.search(r"PSNR (.*)", done.stderr).group(1)))
    return frames, total


def agree(costs, psnr, average):
    def close(mine, theirs):
        return number(theirs) == mine if mine is math.inf else abs(mine - number(theirs)) < 0.0051
    planes = {name: math.inf if cost["psnr"] is None else cost["psnr"] for name, cost in costs["planes"].items()}
    assert all(close(value, psnr[name]) for name, value in planes.items()), (costs, psnr)
    assert close(math.inf if costs["psnr"] is None else costs["psnr"], psnr[average]), (costs, psnr)


def check(a, b):
    """Compares every number and returns the JSON."""
    result = json.loads("\n".join(qorv("compare", "--json", a, b)))
    frames, total = ffmpeg_psnr(a, b)
    assert len(result["frames"]) == len(frames) > 0
    for costs, psnr in zip(result["frames"], frames):
        agree(costs, psnr, "avg")
    agree(result["total"], total, "average")
    for name in ("sad", "ssd", "satd"):
        assert result["total"][name] == sum(frame[name] for frame in result["frames"])
    table = qorv("compare", a, b)
    assert len(table) == len(frames) + 2 and table[-1].split()[:4] == (
        ["total"] + [str(result["total"][name]) for name in ("sad", "ssd", "satd")]), table
    return result


def samples(path, bits):
    raw = ffmpeg("-i", path, "-f", "rawvideo", "-")
    return list(raw) if bits == 8 else [raw[i] | raw[i + 1] << 8 for i in range(0, len(raw), 2)]


for pixel_format, size in STREAMS:
    for name, level in (("a", 5), ("b", 40)):
        ffmpeg("-f", "lavfi", "-i", f"testsrc2=size={size}:rate=25,format={pixel_format},noise=alls={level}",
               "-frames:v", "3", "-pix_fmt", pixel_format, "-strict", "-1", name + ".y4m")
    found = check("a.y4m", "b.y4m")
    depth = int(re.search(r"p(\d+)le", pixel_format).group(1)) if "le" in pixel_format else 8
    differences = [x - y for x, y in zip(samples("a.y4m", depth), samples("b.y4m", depth))]
    assert found["total"]["sad"] == sum(map(abs, differences)), pixel_format
    assert found["total"]["ssd"] == sum(d * d for d in differences), pixel_format
    same = json.loads("\n".join(qorv("compare", "--json", "a.y4m", "a.y4m")))["total"]
    assert (same["sad"], same["ssd"], same["satd"], same["psnr"]) == (0, 0, 0, None)

# A constant difference of 1 has one coefficient of 16 in every tile, also in those that reach beyond the picture.
for name, level in (("a", 100), ("b", 101)):
    ffmpeg("-f", "lavfi", "-i", f"nullsrc=size=66x35,format=gray,geq=lum={level}", "-frames:v", "1", name + ".y4m")
assert json.loads("\n".join(qorv("compare", "--json", "a.y4m", "b.y4m")))["total"]["satd"] == 17 * 9 * 8

# A real clip before and after an encoder.
ffmpeg("-f", "lavfi", "-i", "testsrc2=size=352x288,noise=alls=10", "-frames:v", "12", "-pix_fmt", "yuv420p", "clip.y4m")
ffmpeg("-i", "clip.y4m", "-c:v", "libx264", "-qp", "32", "clip.mp4")
ffmpeg("-i", "clip.mp4", "decoded.y4m")
psnr_of_clip = check("clip.y4m", "decoded.y4m")["total"]["psnr"]
assert 20 < psnr_of_clip < 45, psnr_of_clip
with open("clip.y4m", "rb") as file:
    clip = file.read()
assert qorv("compare", "-", "decoded.y4m", stdin=clip) == qorv("compare", "clip.y4m", "decoded.y4m")

# What is refused, and why.
ffmpeg("-i", "clip.y4m", "-vf", "scale=176:144", "small.y4m")
ffmpeg("-i", "clip.y4m", "-pix_fmt", "yuv444p", "444.y4m")
ffmpeg("-i", "clip.y4m", "-frames:v", "5", "short.y4m")
assert "352x288" in qorv("compare", "clip.y4m", "small.y4m", status=1)
assert "C444" in qorv("compare", "clip.y4m", "444.y4m", status=1)
assert "short.y4m ends after 5 frames" in qorv("compare", "--json", "clip.y4m", "short.y4m", status=1)
assert "at byte" in qorv("compare", "-", "clip.y4m", stdin=clip[:-1], status=1)
for threads in ("1", "5"):
    assert qorv("compare", "clip.y4m", "decoded.y4m", "--threads", threads) == qorv("compare", "clip.y4m", "decoded.y4m")
for name in ("clip", "decoded"):
    ffmpeg("-i", name + ".y4m", "-f", "rawvideo", name + ".yuv")
assert qorv("compare", "clip.yuv", "decoded.yuv", "--raw", "352x288", "--pix", "yuv420p") == (
    qorv("compare", "clip.y4m", "decoded.y4m"))
qorv("compare", "-", "-", stdin=clip, status=2)
qorv("compare", "clip.y4m", status=2)
