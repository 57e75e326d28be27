"""qorv keyframes on AVI files that FFmpeg's encoders made."""
import json
import os
import subprocess
import time

from program import QORV, WRAPPER, ffmpeg, ffprobe, qorv, survives_damage

FRAMES = 40
NO_PARAMETER_SETS = ["-bsf:v", "filter_units=remove_types=32-40"]
X265 = ["-c:v", "libx265", "-preset", "ultrafast", "-vtag", "H265",
        "-x265-params", "log-level=none:open-gop=0:keyint=10:min-keyint=10:scenecut=0"]

# name, encoder, media type, whether the frames' data tell what the container's index tells
STREAMS = [
    ("h264", ["-c:v", "libx264", "-bf", "2"], 104, True),
    ("hevc", X265 + NO_PARAMETER_SETS, 120, True),
    # A frame that begins with a parameter set is no key frame by the rule, and x265 puts one before every key frame.
    ("hevc_headers", X265, 120, False),
    ("mpeg4", ["-c:v", "mpeg4", "-bf", "0"], 102, True),
    ("mpeg4_b", ["-c:v", "mpeg4", "-bf", "2", "-vtag", "XVID"], 102, True),
    ("h263", ["-c:v", "h263"], 103, True),
    ("wmv1", ["-c:v", "wmv1"], 105, True),
    ("wmv2", ["-c:v", "wmv2"], 106, True),
    ("div3", ["-c:v", "msmpeg4", "-vtag", "DIV3"], 110, True),
    ("hfyu", ["-c:v", "huffyuv", "-pix_fmt", "yuv422p"], 122, True),
]


def encode(name, options, audio=()):
    source = ["-f", "lavfi", "-i", f"testsrc2=size=176x144:rate=25,noise=alls=8"]
    if audio:
        source += ["-f", "lavfi", "-i", "sine=sample_rate=44100"]
    ffmpeg(*source, "-frames:v", str(FRAMES), "-t", "1.6", "-g", "10", *options, *audio, name)


def check(name, media_type, told_by_data):
    packets = [packet.split(",") for packet in ffprobe(
        "-fflags", "noparse", "-select_streams", "v", "-show_entries", "packet=size,pos,flags", name)]
    keys = ["K" in flags for _, _, flags in packets]
    assert len(keys) == FRAMES and sum(keys) >= 4, (name, keys)
    lines = qorv("keyframes", "--list", name)
    assert f"media type {media_type} (" in lines[0] and "176x144, 25/1" in lines[0], lines[0]
    listed = [line.split(", ") for line in lines if line[0].isdigit() and ", key frames" not in line]
    frames = [frame for frame in listed if frame[2] != "0"]  # the muxer fills gaps with frames without data
    expected = [("K" if told_by_data else "-") if key else "." for key in keys]
    assert [frame[3] for frame in frames] == expected, (name, lines)
    assert [frame[2:0:-1] for frame in frames] == [packet[:2] for packet in packets], name
    by_data = sum(keys) if told_by_data else 0
    assert lines[-1] == (f"{len(listed)} frames, key frames: {by_data} by data, {sum(keys)} by index; "
                         f"{len(listed) - sum(keys) + by_data} agree, {sum(keys) - by_data} differ, 0 not in the index")
    strip = [line.split()[1] for line in qorv("keyframes", name) if line.startswith("  ")]
    assert "".join(strip) == "".join(frame[3] for frame in listed), (name, strip)


for stream, encoder, media_type, told_by_data in STREAMS:
    encode(stream + ".avi", encoder)
    check(stream + ".avi", media_type, told_by_data)

for encoder, tag, media_type in [("pcm_s16le", 1, 300), ("pcm_mulaw", 7, 302), ("mp2", 80, 304), ("ac3", 8192, 307),
                                 ("wmav2", 353, 312)]:
    encode("audio.avi", ["-c:v", "mpeg4"], ["-c:a", encoder])
    check("audio.avi", 102, True)
    line = qorv("keyframes", "audio.avi")[1]
    assert f"WAVE tag {tag}, media type {media_type} (" in line and "44100 Hz, 1 channels" in line, line

# Without the index nothing is left to compare with.
with open("mpeg4.avi", "rb") as file:
    data = file.read()
with open("no_index.avi", "wb") as file:
    file.write(data.replace(b"idx1", b"JUNK"))
assert qorv("keyframes", "no_index.avi")[-1].endswith("4 by data, 0 by index; 0 agree, 0 differ, 40 not in the index")

with open("half.avi", "wb") as file:
    file.write(data[:len(data) // 2])
# A byte too many is no reason to refuse.
with open("stray.avi", "wb") as file:
    file.write(data + b"\n")
plain, stray = (subprocess.run([*WRAPPER, QORV, "keyframes", name], capture_output=True, check=True)
                for name in ("mpeg4.avi", "stray.avi"))
assert stray.stdout == plain.stdout and plain.stderr == b"" and b"1 stray byte" in stray.stderr
quiet = subprocess.run([*WRAPPER, QORV, "keyframes", "--quiet", "stray.avi"], capture_output=True, check=True)
assert quiet.stderr == b""
assert qorv("keyframes", "-", stdin=data) == qorv("keyframes", "mpeg4.avi")
with open("mpeg4.avi", "rb") as file:
    assert subprocess.run([*WRAPPER, QORV, "keyframes", "-"], stdin=file, capture_output=True).stdout == plain.stdout

# A codec without a test of its own: the index alone tells.
encode("mjpeg.avi", ["-c:v", "mjpeg", "-pix_fmt", "yuvj420p"])
lines = qorv("keyframes", "mjpeg.avi")
assert lines[-1] == f"{FRAMES} frames, key frames: cannot tell by data, {FRAMES} by index; 0 not in the index", lines
told = json.loads("\n".join(qorv("keyframes", "--json", "mjpeg.avi")))
assert (told["keys_by_data"], told["differ"], told["cannot_tell"]) == (None, 0, FRAMES), told
told = json.loads("\n".join(qorv("keyframes", "--json", "mpeg4.avi")))
assert (told["keys_by_data"], told["agree"], len(told["frames"])) == (4, FRAMES, FRAMES), told

# Other containers, and what is no file.
ffmpeg("-i", "mpeg4.avi", "-c", "copy", "a.mkv")
ffmpeg("-i", "mpeg4.avi", "-c", "copy", "a.mp4")
ffmpeg("-i", "mpeg4.avi", "-c", "copy", "a.ts")
for name in ("a.mkv", "a.mp4", "a.ts", "/dev/zero"):
    assert f"{name}: at byte 0: not an AVI file" in qorv("keyframes", name, status=1)

# A file that is cut off while it is read. The list fills a pipe that is read only afterwards.
ffmpeg("-f", "lavfi", "-i", "color=size=16x16:rate=25", "-frames:v", "9000", "-c:v", "mpeg4", "long.avi")
run = subprocess.Popen([*WRAPPER, QORV, "keyframes", "--list", "long.avi"], stdout=subprocess.PIPE, stderr=subprocess.PIPE)
time.sleep(0.2 if not WRAPPER else 20)
os.truncate("long.avi", os.path.getsize("long.avi") // 50)
_, error = run.communicate(timeout=60)
assert run.returncode == 1 and b"long.avi: at byte" in error and b"truncated while it was read" in error, error

assert "half.avi: at byte 0: truncated or damaged: chunk 'RIFF'" in qorv("keyframes", "half.avi", status=1)
with open("text.avi", "w") as file:
    file.write("not at all an AVI file")
assert "text.avi: at byte 0: " in qorv("keyframes", "text.avi", status=1)
qorv("keyframes", "missing.avi", status=1)
qorv("keyframes", status=2)
survives_damage("audio.avi", "keyframes", rounds=120)
