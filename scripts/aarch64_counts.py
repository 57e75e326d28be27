"""Counts instructions and models cycles of the benchmarks on AArch64: aarch64_counts.py PROGRAM ROOT OUT.json NAME=FOLDER...

PROGRAM and ROOT are those of scripts/aarch64_peers; each FOLDER holds a build of the library, NAME its compiler. OUT.json:
{"context": ..., "processors": {processor: {compiler: {case: {who: {figure: number}}}}}}. Of long calls, llvm-mca sees
evenly spaced pieces."""

import hashlib
import json
import os
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

import emulator

MODELS = ("cortex-a55", "neoverse-n1", "neoverse-v2")
# What lies in memory rather than in caches, and what waits for other threads, is not what a count tells of.
CASES = r"^(?!.*1920x1080|.*1MiB|.*1048576|sync|container|border|md5/rows/(176|250|720|1280))"
# Processors, and which cases are of interest there.
PROCESSORS = {"ARMv8.0": ("cortex-a57", CASES), "with dot products": ("cortex-a76", r"^metric/(ssd_of|sad\d+x\d+$|sad\d+x\d+/)")}
# What the models know nothing of, and what costs next to nothing.
HINTS = re.compile(r"\s*(hint|bti|paci|auti)")


def disassemble(words):
    """{word: text}"""
    words = sorted(words)
    code = "\n".join(" ".join("0x" + word[i:i + 2] for i in range(0, 8, 2)) for word in words)
    done = subprocess.run(["llvm-mc-19", "--disassemble", "-triple=aarch64", "-mattr=+all"], input=code, capture_output=True,
                          text=True)
    lines = [line for line in done.stdout.splitlines() if line.strip() and not line.strip().startswith(".")]
    if len(lines) != len(words):
        sys.exit(f"{len(lines)} of {len(words)} instructions disassembled: {done.stderr[:300]}")
    return {word: "\tnop" if HINTS.match(line) else line for word, line in zip(words, lines)}


def model_cycles(traces, texts, model):
    """{key: cycles of one execution}, from two runs of llvm-mca with a region for every trace: short ones are repeated."""
    cycles = {}
    for short in (True, False):
        iterations = 20 if short else 1
        regions = []
        for key, words in traces.items():
            if (len(words) < 600) == short:
                regions += [f"# LLVM-MCA-BEGIN {key}", *(texts[word] for word in words), f"# LLVM-MCA-END {key}"]
        if not regions:
            continue
        done = subprocess.run(
            ["llvm-mca-19", "-mtriple=aarch64", "-mattr=+all", f"-mcpu={model}", f"-iterations={iterations}",
             "-instruction-info=0", "-resource-pressure=0", "-call-latency=1", "-skip-unsupported-instructions=lack-sched"],
            input="\n".join(regions) + "\n", capture_output=True, text=True)
        for match in re.finditer(r"Code Region - (\S+)\n(?:.*\n)*?Total Cycles:\s+(\d+)", done.stdout):
            cycles[match.group(1)] = int(match.group(2)) / iterations
    return cycles


def run(program, root, library, processor):
    """({who by case}, context): each with its count and its trace"""
    cpu, cases = PROCESSORS[processor]
    folders = f"{os.path.abspath(library)}:/usr/lib/aarch64-linux-gnu/blas:/usr/lib/aarch64-linux-gnu/lapack"
    lines, counts = emulator.run("qemu-aarch64", ["-cpu", cpu, "-L", os.path.abspath(root), "-E", f"LD_LIBRARY_PATH={folders}"],
                                 [program, cases])
    names = [line.removeprefix("name ") for line in lines if line.startswith("name ")]
    context = dict(line.split(" ", 2)[1:] for line in lines if line.startswith("context peer/"))
    if len(names) != len(counts):
        sys.exit(f"{len(names)} cases, {len(counts)} counts")
    found = {}
    for name, (count, *words) in zip(names, counts):
        case, who = name.rsplit("/", 1)
        found.setdefault(case, {})[who] = (int(count), words)
    return found, context


def main():
    program, root, out = sys.argv[1:4]
    result, traces, context = {}, {}, {}
    for library in sys.argv[4:]:
        compiler, folder = library.split("=")
        for processor in PROCESSORS:
            found, context = run(program, root, folder, processor)
            at = result.setdefault(processor, {}).setdefault(compiler, {})
            for case, by_who in found.items():
                if "ours" not in by_who:
                    continue
                for who, (count, words) in by_who.items():
                    # An empty function, such as a packaged library has where it was built without one, is fast.
                    if count < by_who["ours"][0] / 20 and count < 200:
                        print(f"{case}: {who} does nothing, left out")
                        continue
                    key = hashlib.sha1(" ".join(words).encode()).hexdigest()
                    traces[key] = words
                    at.setdefault(case, {})[who] = {"instructions": count, "trace": key}
    texts = disassemble({word for words in traces.values() for word in words})
    with ThreadPoolExecutor(len(MODELS)) as pool:
        cycles = dict(zip(MODELS, pool.map(lambda model: model_cycles(traces, texts, model), MODELS)))
    for by_compiler in result.values():
        for cases in by_compiler.values():
            for by_who in cases.values():
                for figures in by_who.values():
                    key = figures.pop("trace")
                    for model in MODELS:
                        if key in cycles[model]:
                            figures[model] = cycles[model][key] * figures["instructions"] / len(traces[key])
    with open(out, "w", encoding="utf-8") as file:
        json.dump({"context": context, "processors": result}, file, indent=1)


if __name__ == "__main__":
    main()
