"""That qorv never loses or damages a file, whatever stops it; and scripts/demo neither."""
import os
import resource
import signal
import stat
import subprocess
import sys
import threading
import time

from program import QORV, WRAPPER, ffmpeg, pixels_of, qorv

os.umask(0o027)
ffmpeg("-f", "lavfi", "-i", "testsrc2=size=96x64:rate=25", "-frames:v", "40", "-pix_fmt", "yuv420p", "a.y4m")
ffmpeg("-f", "lavfi", "-i", "testsrc=size=96x64:rate=25", "-frames:v", "40", "-pix_fmt", "yuv420p", "b.y4m")


def contents(path):
    with open(path, "rb") as file:
        return file.read()


def write(path, data):
    with open(path, "wb") as file:
        file.write(data)


def leftovers():
    return [name for name in os.listdir() if name.startswith(".qorv")]


# Two runs with one OUT: one of the two files, whole. Somebody's OUT.partial is nobody's business.
for name in "ab":
    qorv("convert", f"{name}.y4m", f"{name}.small.y4m", "--size", "90x60", "--quiet")
write("victim", b"mine")
write("out.y4m.partial", b"mine")
os.symlink("victim", "link.y4m.partial")
for _ in range(4):
    runs = [threading.Thread(target=qorv, args=("convert", f"{name}.y4m", "out.y4m", "--size", "90x60")) for name in "ab"]
    for run in runs:
        run.start()
    for run in runs:
        run.join()
    assert contents("out.y4m") in (contents("a.small.y4m"), contents("b.small.y4m"))
qorv("convert", "a.y4m", "link.y4m")
assert contents("out.y4m.partial") == contents("victim") == b"mine"

# Modes, links and long names.
assert stat.S_IMODE(os.stat("out.y4m").st_mode) == 0o640
os.chmod("out.y4m", 0o604)
os.mkdir("folder")
os.symlink("folder/target.png", "link.png")  # to nothing yet
os.symlink(os.path.abspath("out.y4m"), "link.out.y4m")
for _ in range(2):
    qorv("convert", "a.y4m", "link.png")
    qorv("convert", "b.y4m", "link.out.y4m")
assert stat.S_IMODE(os.stat("out.y4m").st_mode) == 0o604 and os.path.islink("link.out.y4m")
assert os.path.islink("link.png") and pixels_of("folder/target.png") and contents("out.y4m")[-9:] == contents("b.y4m")[-9:]
long_name = "n" * 251 + ".png"
qorv("convert", "a.y4m", long_name)
assert pixels_of(long_name) == pixels_of("link.png")

# A signal ends the run, by the signal, and leaves what was there. The clip's second half never comes.
write("keep.y4m", b"old")
for number in (signal.SIGINT, signal.SIGTERM):
    for threads in ("1", "3"):
        run = subprocess.Popen([*WRAPPER, QORV, "convert", "-", "keep.y4m", "--threads", threads], stdin=subprocess.PIPE)
        run.stdin.write(contents("a.y4m")[:100000])
        run.stdin.flush()
        deadline = time.monotonic() + 60
        while not leftovers() and time.monotonic() < deadline:
            time.sleep(0.01)
        assert leftovers()
        run.send_signal(number)
        assert run.wait(timeout=60) == -number
        run.stdin.close()
        assert not leftovers() and contents("keep.y4m") == b"old"

# What cannot be written is said with the reason, and what was there stays.
def with_small_files():
    resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000))
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)


write("keep.png", b"old")
for command, out in (("convert", "keep.png"), ("convert", "keep.y4m"), ("resize", "keep.png")):
    source, size = ("link.png", ["--size", "80x80"]) if command == "resize" else ("a.y4m", [])
    done = subprocess.run([*WRAPPER, QORV, command, source, out, *size], stderr=subprocess.PIPE,
                          preexec_fn=with_small_files, restore_signals=False)
    assert done.returncode == 1 and b"cannot be written: File too large" in done.stderr, done
    assert contents(out) == b"old"
assert "/dev/full: cannot be written: No space left" in qorv("convert", "a.y4m", "/dev/full", "--to", "png", status=1)
with open("/dev/full", "wb") as full:
    assert "No space left" in qorv("convert", "a.y4m", "-", "--to", "jpeg", stdout=full, status=1)
for out, reason in (("folder", "extension"), ("missing/x.png", "No such file"), ("folder/../keep.png/x.png", "Not a directory")):
    if out != "folder":
        assert reason in qorv("convert", "a.y4m", out, status=1)
assert "truncated" in qorv("convert", "-", "keep.y4m", stdin=contents("a.y4m")[:-5], status=1)
assert contents("keep.y4m") == b"old" and not leftovers()

# scripts/demo, with a stand-in for cmake: the build is there already.
demo = os.path.join(os.path.dirname(os.path.abspath(sys.argv[0])), "../../scripts/demo")


def run_demo(*arguments, cmake="exit 0"):
    os.makedirs("bin", exist_ok=True)
    write("bin/cmake", b"#!/bin/sh\n" + cmake.encode() + b"\n")
    os.chmod("bin/cmake", 0o755)
    return subprocess.run([demo, *arguments], capture_output=True, text=True, timeout=120,
                          env={**os.environ, "PATH": os.path.abspath("bin") + ":" + os.environ["PATH"]})


done = run_demo("--help")
assert done.returncode == 0 and "--output DIR" in done.stdout and not done.stderr
for arguments in (("--output",), ("--build-dir",), ("--outptu", "x")):
    done = run_demo(*arguments)
    assert done.returncode == 2 and arguments[0] in done.stderr and "unbound" not in done.stderr, done
done = run_demo("--small", "--output", "shown", cmake="echo here: error: no such type >&2; exit 1")
assert done.returncode != 0 and "no such type" in done.stderr
if not WRAPPER:
    for _ in range(2):
        write("shown/mine.png", b"mine")
        done = run_demo("--small", "--output", "shown", "--build-dir", os.path.dirname(QORV))
        assert done.returncode == 0 and "Building" in done.stdout, done
        assert contents("shown/mine.png") == b"mine" and len(pixels_of("shown/contact-sheet.png")) > 0
        os.rename("shown/frame.jpg", "shown/kept.jpg")
    assert os.path.exists("shown/kept.jpg")
