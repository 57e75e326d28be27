"""qorv md5 against FFmpeg's digests of the same raw pictures."""
import hashlib
import json
import re

from program import ffmpeg, qorv

# pixel format, size
STREAMS = [
    ("yuv420p", "176x144"),
    ("yuv420p", "35x33"),
    ("yuv422p", "64x48"),
    ("yuv444p", "63x47"),
    ("yuv411p", "66x10"),
    ("gray", "17x9"),
    ("yuva444p", "30x20"),
    ("yuv420p10le", "178x146"),
    ("yuv444p12le", "34x21"),
]

for pixel_format, size in STREAMS:
    ffmpeg("-f", "lavfi", "-i", f"testsrc2=size={size}:rate=25,noise=alls=20", "-frames:v", "5", "-pix_fmt",
           pixel_format, "-strict", "-1", "stream.y4m")
    frames = [line.split(",")[-1].strip() for line in
              ffmpeg("-i", "stream.y4m", "-f", "framemd5", "-").decode().splitlines() if not line.startswith("#")]
    total = ffmpeg("-i", "stream.y4m", "-c:v", "rawvideo", "-f", "md5", "-").decode().strip()
    raw = ffmpeg("-i", "stream.y4m", "-f", "rawvideo", "-")
    assert len(frames) == 5 and total == "MD5=" + hashlib.md5(raw).hexdigest()
    expected = ["# frame, bytes, md5"] + [f"{i}, {len(raw) // 5}, {md5}" for i, md5 in enumerate(frames)] + [total]
    assert qorv("md5", "stream.y4m") == expected, (pixel_format, size)
    with open("stream.y4m", "rb") as file:
        data = file.read()
    assert qorv("md5", "-", "--threads", "1", stdin=data) == qorv("md5", "--threads", "5", "stream.y4m") == expected
    width, height = re.match(rb"YUV4MPEG2 W(\d+) H(\d+)", data).groups()  # FFmpeg may have made it even
    assert qorv("md5", "-", "--raw", f"{int(width)}x{int(height)}", "--pix", pixel_format, stdin=raw) == expected
    told = json.loads("\n".join(qorv("md5", "--json", "stream.y4m")))
    assert [frame["md5"] for frame in told["frames"]] == frames and "MD5=" + told["md5"] == total
    assert "at byte " + str(len(data) - 1) in qorv("md5", "-", stdin=data[:-1], status=1)

# A real decoder's pictures.
ffmpeg("-f", "lavfi", "-i", "testsrc2=size=352x288", "-frames:v", "20", "-c:v", "libx264", "clip.mp4")
ffmpeg("-i", "clip.mp4", "clip.y4m")
assert qorv("md5", "clip.y4m")[-1] == ffmpeg("-i", "clip.mp4", "-c:v", "rawvideo", "-f", "md5", "-").decode().strip()
qorv("md5", "missing.y4m", status=1)
assert "empty" in qorv("md5", "-", stdin=b"", status=1)
assert ".: at byte 0: cannot be read: Is a directory" in qorv("md5", ".", status=1)
with open("/dev/full", "wb") as full:
    assert "standard output" in qorv("md5", "clip.y4m", stdout=full, status=1)
assert "no command or option 'md6'" in qorv("md6", "clip.y4m", status=2)
