"""Runs programs under qemu-user with bench/count_plugin.c, which counts the instructions between a program's marks."""

import os
import re
import subprocess
import tempfile

PLUGIN_SOURCE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "bench", "count_plugin.c")


def build_plugin(emulator, path):
    version = subprocess.run([emulator, "--version"], capture_output=True, text=True, check=True).stdout
    major = int(re.search(r"version (\d+)", version).group(1))
    subprocess.run(["gcc", "-O2", "-shared", "-fPIC", f"-DQEMU_PLUGIN_API={3 if major >= 10 else 1}", PLUGIN_SOURCE,
                    "-o", path], check=True)


def run(emulator, options, program):
    """(the program's lines, for each pair of marks its words: the count, and the instructions where they are traced)."""
    with tempfile.TemporaryDirectory() as folder:
        plugin, out = os.path.join(folder, "count.so"), os.path.join(folder, "counts")
        build_plugin(emulator, plugin)
        command = [emulator, *options, "-plugin", f"{plugin},out={out}", *program]
        done = subprocess.run(command, capture_output=True, text=True)
        if done.returncode != 0:
            raise SystemExit(f"{' '.join(command)}: exit status {done.returncode}\n{done.stdout[-500:]}{done.stderr[-500:]}")
        with open(out, encoding="ascii") as file:
            return done.stdout.splitlines(), [line.split() for line in file]
