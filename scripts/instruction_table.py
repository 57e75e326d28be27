"""Holds executed instructions to the table of the compiler: instruction_table.py [--update] X86-64-PROGRAM AARCH64-PROGRAM

The programs are builds of bench/instruction_counts.cpp. The tables lie in bench/instructions/, one a compiler: another one
counts differently. Exit status 77: there is none for this compiler."""

import os
import re
import sys

import emulator

FOLDER = "bench/instructions"
TOLERANCE = 0.03
# Columns of the table: processors whose instructions, and the C library's choices, do not depend on the machine.
PROCESSORS = {
    "x86-64-v3": ["qemu-x86_64", "-cpu", "Haswell-v4"],
    "armv8.0": ["qemu-aarch64", "-cpu", "cortex-a57"],
    "dotprod": ["qemu-aarch64", "-cpu", "cortex-a76"],
}
# What is exported and has no kernel and no loop over samples or bits.
NOT_COUNTED = re.compile(
    r"qorv_(version|malloc_\w+|mfree_\w+|atomic_\w+|sync_\w+|get_\w+|imgb_(get_dimension|create|option|rebirth)|"
    r"(audb|bitb|mfal)_create|vdata_\w+|bs[rw]_(de)?init|tbl_\w+|imgp_get_fn_csc|irsz|irsz_(create|delete|tbl_\w+)|"
    r"r?list_\w+|rbuf_\w+|str_\w+|fcc2mt\w*|md5_init)")


def count(processor, program):
    """(compiler, {case: instructions})"""
    command = PROCESSORS[processor]
    lines, counts = emulator.run(command[0], command[1:], [program])
    compiler, cases = lines[0], lines[1:]
    if len(cases) != len(counts) or len(set(cases)) != len(cases):
        sys.exit(f"{program}: {len(cases)} cases, {len(counts)} counts")
    return compiler, {case: int(words[0]) for case, words in zip(cases, counts)}


def check_cover(cases):
    with open("qorv_skia.exports", encoding="utf-8") as file:
        exported = {line.strip() for line in file if re.match("[a-z]", line)}
    counted = {case.split()[0] for case in cases}
    missing = sorted(name for name in exported if not NOT_COUNTED.fullmatch(name) and name.removeprefix("qorv_") not in counted)
    if missing:
        sys.exit("Exported, but not called by bench/family_calls.cpp: " + ", ".join(missing))


def read_table(path):
    table = {}
    with open(path, encoding="utf-8") as file:
        for line in file:
            case, *numbers = re.split(r"  +", line.strip())
            if not line.startswith("#"):
                table[case] = dict(zip(PROCESSORS, map(int, numbers)))
    return table


def write_table(path, counted, compiler):
    os.makedirs(FOLDER, exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write(f"# Instructions of each call as built by {compiler}; written by scripts/instructions --update.\n")
        file.write(f"# {'case':60}" + "".join(f"  {processor:>10}" for processor in PROCESSORS) + "\n")
        for case, numbers in counted.items():
            file.write(f"{case:62}" + "".join(f"  {numbers[processor]:10}" for processor in PROCESSORS) + "\n")


def differences(table, counted):
    if list(table) != list(counted):
        changed = sorted(set(table) ^ set(counted))
        yield f"the cases are others, or in another order: {', '.join(changed[:10])}"
    for case in counted.keys() & table.keys():
        for processor, now in counted[case].items():
            before = table[case][processor]
            if abs(now - before) > max(1, TOLERANCE * before):
                yield f"{case}, {processor}: {now} instructions, {before} in the table ({now / before - 1:+.0%})"


def main():
    update = sys.argv[1:2] == ["--update"]
    x86_64, aarch64 = sys.argv[1 + update:]
    results = {processor: count(processor, x86_64 if processor.startswith("x86") else aarch64) for processor in PROCESSORS}
    compilers = {compiler for compiler, _ in results.values()}
    if len(compilers) != 1:
        sys.exit(f"The programs are of different compilers: {', '.join(compilers)}")
    compiler = compilers.pop()
    cases = next(iter(results.values()))[1]
    counted = {case: {processor: result[1][case] for processor, result in results.items()} for case in cases}
    check_cover(cases)

    path = os.path.join(FOLDER, compiler.replace(" ", "-") + ".txt")
    exists = os.path.exists(path)
    if not update and not exists:
        print(f"Nothing to compare with: there is no {path}; --update writes it")
        sys.exit(77)
    found = sorted(differences(read_table(path), counted)) if exists else []
    print("\n".join(found) or f"{len(counted)} calls on {len(PROCESSORS)} processors as in {path}, within {TOLERANCE:.0%}")
    if update:
        write_table(path, counted, compiler)
    elif found:
        sys.exit(f"{len(found)} calls execute more or fewer instructions than in {path}; if that is meant: --update")


if __name__ == "__main__":
    main()
