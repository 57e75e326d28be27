"""What qorv says: help, wrong usage, progress on a terminal; and that the program is hardened and its manual complete."""
import json
import os
import pty
import re
import subprocess
import sys
import time

from program import QORV, WRAPPER, ffmpeg, qorv

COMMANDS = ("compare", "convert", "headers", "keyframes", "md5", "resize")
SOURCE = os.path.join(os.path.dirname(os.path.abspath(sys.argv[0])), "../..")

# Every command has the same options, and no name of a C++ type in its help.
options = {}
for command in COMMANDS:
    text = "\n".join(qorv(command, "--help"))
    assert not re.search(r"\b(TEXT|UINT|INT|FLOAT|REQUIRED|BOOLEAN)\b", text), text
    options[command] = set(re.findall(r"^  .*?(--[a-z0-9-]+)", text, re.M))
    assert {"--quiet", "--json", "--help"} <= options[command], command

# The manual and the completion know every command and option.
with open(f"{SOURCE}/tools/qorv.1.scd", encoding="utf-8") as file:
    manual = file.read()
with open(f"{SOURCE}/tools/qorv.bash", encoding="utf-8") as file:
    completion = file.read()
for command in COMMANDS:
    for option in options[command]:
        assert f"*{option}*" in manual, (command, option)
        word = subprocess.run(["bash", "-c", f"{completion}\nCOMP_WORDS=(qorv {command} {option}); COMP_CWORD=2; _qorv; echo ${{COMPREPLY[@]}}"],
                              capture_output=True, text=True, check=True).stdout.split()
        assert option in word, (command, option, word)

# What is wrong is named before what is missing.
for command in COMMANDS:
    error = qorv(command, "--bogus", status=2)
    assert "--bogus" in error and "required" not in error, error
    assert "is required" in qorv(command, status=2)
assert "no command or option 'md6'" in qorv("md6", "clip.y4m", status=2)
for arguments in (("--version",), ("--help",), ("convert", "--help")):
    with open("/dev/full", "wb") as full:
        assert "standard output" in qorv(*arguments, stdout=full, status=1), arguments
assert re.fullmatch(r"\d+\.\d+\.\d+", qorv("--version")[0])


# Progress: on a terminal, once a second has passed, and only there.
def on_terminal(*arguments, pieces, file_size=None):
    """Standard error of a run whose standard input comes slowly, where that is a terminal."""
    master, slave = pty.openpty()
    run = subprocess.Popen([*WRAPPER, QORV, *arguments], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=slave)
    os.close(slave)
    for piece in pieces:
        run.stdin.write(piece)
        run.stdin.flush()
        time.sleep(0.6)
    run.stdin.close()
    shown = b""
    try:
        while piece := os.read(master, 4096):
            shown += piece
    except OSError:  # the terminal's other end is closed
        pass
    os.close(master)
    assert run.wait(timeout=60) == 0
    return shown.decode()


ffmpeg("-f", "lavfi", "-i", "testsrc2=size=64x48", "-frames:v", "4", "-pix_fmt", "yuv420p", "a.y4m")
with open("a.y4m", "rb") as file:
    stream = file.read()
quarters = [stream[i * len(stream) // 4:(i + 1) * len(stream) // 4 + (i == 3)] for i in range(4)]
frames = r"\r\d frames, \d+\.\d a second"
assert re.search(frames, on_terminal("md5", "-", pieces=quarters))
assert on_terminal("convert", "-", "a-%d.png", "--quiet", pieces=quarters) == ""
assert on_terminal("md5", "-", pieces=[stream]) == ""  # less than a second

# JSON is JSON, and nothing else is on standard output.
for arguments in (("md5", "a.y4m"), ("compare", "a.y4m", "a.y4m"), ("convert", "a.y4m", "a.png"),
                  ("resize", "a.png", "b.png", "--size", "9x9")):
    json.loads("\n".join(qorv(*arguments, "--json")))

# The program is hardened. A sanitizer's build has other means.
with open(QORV, "rb") as file:
    data = file.read()
if b"__asan_init" not in data and not data.startswith(b"#!"):
    dynamic = subprocess.run(["readelf", "-Wdhs", "--dyn-syms", QORV], capture_output=True, text=True, check=True).stdout
    for what in (r"DYN \(Position-Independent Executable", r"BIND_NOW|FLAGS_1.*NOW", r"__stack_chk_fail", r"__\w+_chk\b"):
        assert re.search(what, dynamic), what
