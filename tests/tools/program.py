"""What the tests of the program share: running it and FFmpeg in a directory of their own, and damaging files."""
import math
import os
import random
import re
import resource
import signal
import subprocess
import sys
import tempfile

QORV = os.path.abspath(sys.argv[1])
SEED = int(os.environ.get("QORV_TEST_SEED", random.randrange(1 << 32)))
WRAPPER = os.environ.get("QORV_TEST_WRAPPER", "").split()  # a command that runs the program, slowly: valgrind
MEMORY = 1 << 31  # bytes of address space: no damaged file may make the program ask for more
SECONDS = 600 if WRAPPER else 60

_directory = tempfile.TemporaryDirectory()
os.chdir(_directory.name)
with open(QORV, "rb") as program:
    # Sanitizers and a wrapper take more than that for themselves.
    LIMITED = not WRAPPER and not re.search(b"__[at]san_init", program.read())
print(f"QORV_TEST_SEED={SEED}", flush=True)


def _limit():
    signal.alarm(SECONDS)  # what takes longer hangs
    if LIMITED:
        resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))


def peak_megabytes(*arguments, stdin=None):
    """Runs the program, which succeeds in silence or says why not: how much memory it held at once, and the message."""
    with open("stderr", "w+b") as error:
        process = subprocess.Popen([*WRAPPER, QORV, *arguments], stdin=stdin, stdout=subprocess.DEVNULL, stderr=error,
                                   preexec_fn=_limit)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        error.seek(0)
        text = error.read().decode(errors="replace")
        assert process.returncode == (1 if text else 0), (arguments, process.returncode, text)
        return usage.ru_maxrss / 1024, text


def qorv(*arguments, stdin=None, stdout=subprocess.PIPE, status=0):
    """Runs the program, which must end with `status`."""
    done = subprocess.run([*WRAPPER, QORV, *arguments], input=stdin, stdout=stdout, stderr=subprocess.PIPE,
                          preexec_fn=_limit)
    error = done.stderr.decode(errors="replace")
    assert done.returncode == status, (arguments, done.returncode, error)
    return done.stdout.decode(errors="replace").splitlines() if done.returncode == 0 else error


def ffmpeg(*arguments):
    command = ["ffmpeg", "-v", "error", "-nostdin", "-y", *arguments]
    return subprocess.run(command, check=True, capture_output=True).stdout


def ffprobe(*arguments):
    command = ["ffprobe", "-v", "error", "-of", "csv=p=0", *arguments]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.split()


def pixels_of(path, pixel_format="rgba"):
    raw = ffmpeg("-i", path, "-f", "rawvideo", "-pix_fmt", pixel_format, "-")
    channels = {"gray": 1, "rgb24": 3, "rgba": 4}[pixel_format]
    return [tuple(raw[i:i + channels]) for i in range(0, len(raw), channels)]


def bytes_of(path, pixel_format, *options):
    """FFmpeg's own conversion of the first frame."""
    return ffmpeg("-i", path, *options, "-frames:v", "1", "-f", "rawvideo", "-pix_fmt", pixel_format, "-")


def psnr(a, b):
    assert len(a) == len(b) > 0
    error = sum((x - y) ** 2 for x, y in zip(a, b)) / len(a)
    return 99.0 if error == 0 else 10 * math.log10(255 * 255 / error)


def shown_as_565(rgb):
    """The colour of a 5-6-5 word made of 8-bit channels, the high bits once more below."""
    r, g, b = rgb[0] >> 3, rgb[1] >> 2, rgb[2] >> 3
    return (r << 3 | r >> 2, g << 2 | g >> 4, b << 3 | b >> 2)


def survives_damage(path, *arguments, out=None, rounds=60):
    """Cuts the file short everywhere and changes bytes at random: a clear error or a result, in 64 MB and ten times
    the file. Much damage leaves a file that reads well: an error is sure only of the first, which leaves nothing."""
    generator = random.Random(SEED)
    with open(path, "rb") as file:
        whole = file.read()
    damaged = "damaged" + os.path.splitext(path)[1]
    for i in range(rounds // 10 if WRAPPER else rounds):
        data = bytearray(whole)
        if i == 0:
            data.clear()
        elif i % 2 == 0:
            del data[generator.randrange(len(data) if i % 4 == 0 else min(len(data), 300)):]
        else:
            for _ in range(generator.randrange(1, 8)):
                data[generator.randrange(min(len(data), 1 << generator.randrange(5, 24)))] = generator.randrange(256)
        with open(damaged, "wb") as file:
            file.write(data)
        megabytes, error = peak_megabytes(*arguments, damaged, *([out] if out else []))
        assert error == "" or damaged in error and len(error) < 400, error
        assert error or i > 0, "an empty file is no error"
        assert not LIMITED or megabytes < 64 + 10 * len(data) / 1e6, (arguments, megabytes, len(data))
