"""Counts executed AArch64 instructions under qemu: instruction_counts.py PROGRAM OUT.json

PROGRAM is bench/instruction_counts.cpp, linked statically. The emulator, told to translate one instruction at a time,
names the function of each one that it executes; those between a pair of marks that are not the program's own count.
The counts are exact and the same on every run."""

import json
import subprocess
import sys


def count_instructions(log):
    """One number for every pair of marks in the emulator's log."""
    counts, counting = [], False
    for line in log:
        if not line.startswith("Trace"):
            continue
        function = line[line.rindex("]") + 2 :].rstrip()
        if "harness" in function:
            if not counting and "harness5begin" in function:
                counts.append(0)
            counting = "harness3end" not in function and (counting or "harness5begin" in function)
        elif counting:
            counts[-1] += 1
    return counts


def main():
    program, out = sys.argv[1:3]
    command = ["qemu-aarch64", "-singlestep", "-d", "nochain,exec", program]
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True) as run:
        counts = count_instructions(run.stderr)
        lines = run.stdout.read().splitlines()
    compiler, cases = lines[0].split(" ", 1)[1], [line.split() for line in lines[1:]]
    if run.returncode != 0 or len(cases) != len(counts) or 0 in counts:
        sys.exit(f"{program}: {len(cases)} cases, {len(counts)} counts, exit code {run.returncode}")
    results = {name: count / int(units) for (name, units), count in zip(cases, counts)}
    with open(out, "w", encoding="utf-8") as file:
        json.dump({"compiler": compiler, "instructions": results}, file, indent=1)


if __name__ == "__main__":
    main()
