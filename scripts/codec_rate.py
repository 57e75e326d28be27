"""Sizes of what examples/codec encodes beside x264 (-preset ultrafast -tune psnr, constant quantiser) at equal PSNR, of
clips that FFmpeg's sources draw: codec_rate.py QCODEC prints the table of docs/tutorial.md."""

import math
import os
import re
import subprocess
import sys
import tempfile

# Title, source of FFmpeg, pictures. The seeds make them the same each time.
CLIPS = [
    ("`testsrc2`", "testsrc2=size=1280x720", 60),
    ("`mandelbrot`", "mandelbrot=size=1280x720", 60),
    ("`life` (mold 10, ratio 0.3)", "life=size=640x360:mold=10:ratio=0.3:seed=1", 30),
    ("`gradients`", "gradients=size=1280x720:seed=1", 60),
]
OURS, PEERS = (24, 28, 32), (16, 20, 24, 28, 32, 36, 40)  # quantisers


def run(*command):
    return subprocess.run([str(part) for part in command], check=True, capture_output=True, text=True).stderr


def ffmpeg(*arguments):
    return run("ffmpeg", "-nostdin", "-hide_banner", "-y", *arguments)


def psnr(path, original):
    told = ffmpeg("-i", path, "-i", original, "-lavfi", "psnr", "-f", "null", "-")
    return float(re.search(r"average:([\d.]+)", told).group(1))


def bytes_at(quality, points):
    """On the line between the two points, (PSNR, bytes), next to it: of the logarithm of bytes over PSNR."""
    points = sorted(points)
    after = next((i for i in range(1, len(points) - 1) if quality <= points[i][0]), len(points) - 1)
    (q0, b0), (q1, b1) = points[after - 1], points[after]
    return b0 * math.exp(math.log(b1 / b0) * (quality - q0) / (q1 - q0))


def row(qcodec, folder, title, source, pictures):
    clip, stream, decoded = (os.path.join(folder, name) for name in ("clip.y4m", "stream", "decoded.y4m"))
    ffmpeg("-f", "lavfi", "-i", source + ":rate=25", "-frames:v", pictures, "-pix_fmt", "yuv420p", clip)
    points, cells = [], [title]
    for quantiser in PEERS:
        x264 = ("-c:v", "libx264", "-preset", "ultrafast", "-tune", "psnr", "-qp", quantiser, "-f", "h264")
        ffmpeg("-i", clip, *x264, stream)
        points.append((psnr(stream, clip), os.path.getsize(stream)))
    for quantiser in OURS:
        run(qcodec, "encode", clip, stream, "--qp", quantiser)
        run(qcodec, "decode", stream, decoded)
        quality = psnr(decoded, clip)
        cells += [f"{quality:.1f} dB", f"{os.path.getsize(stream) / bytes_at(quality, points):.2f} x"]
    return cells


def main():
    head = ["source"] + [cell for quantiser in OURS for cell in (f"qp {quantiser}", "bits")]
    print("| " + " | ".join(head) + " |\n" + "|---" * len(head) + "|")
    with tempfile.TemporaryDirectory() as folder:
        for clip in CLIPS:
            print("| " + " | ".join(row(sys.argv[1], folder, *clip)) + " |", flush=True)


if __name__ == "__main__":
    main()
