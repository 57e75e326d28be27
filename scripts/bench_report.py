"""Writes docs/benchmarks.md, docs/benchmarks.svg and the claims in README.md from the raw results of
`scripts/bench --report`, without running anything: bench_report.py RESULTS-FOLDER"""

import json
import math
import os
import re
import sys
from dataclasses import dataclass, field

import bench_aarch64
import bench_chart
import cliffs
from bench_results import (destination_pixels, first_number, geometric_mean, ratio_text, ratios, read_goals, read_reasons,
                           read_results, table)

COMPILERS = ("g++", "clang")


@dataclass
class Family:
    """Cases whose name matches `pattern`; its group is the label in the tables."""

    title: str
    pattern: str
    note: str = ""
    calls: int = 1  # in one iteration of the benchmark
    quantity: str = ""  # "pixel" or "byte": what the throughput counts
    amount: object = None  # of it in a case, from the label
    chart: bool = True  # its peers do the same work
    cases: dict = field(default_factory=dict)  # label: {compiler: {who: ns}}


def md5_bytes(label):
    return 1 << 20 if "1MiB" in label else first_number(256)(label)


def families():
    return [
        Family("Colour converters, 256x256", r"csc/(.*)/256x256", "The pictures stay in the cache.", 1, "pixel",
               lambda label: 256 * 256),
        Family("Colour converters, 1920x1080", r"csc/(.*)/1920x1080",
               "6 to 12 MB a call: most of these run at the speed of the memory, ours and the peers alike.", 1, "pixel",
               lambda label: 1920 * 1080),
        Family("Small pictures", r"csc_small/(.*)", "Beside libyuv on the same picture: rows one after the other, or apart."),
        Family("Pictures in another order", r"csc_(?:order|narrow)/(.*)",
               "`canonical` is our own converter on a tidy picture.", chart=False),
        Family("Overlapping pictures", r"csc_overlap/(.*)", "`loop` is a plain loop over pixels.", chart=False),
        Family("Scaling converters", r"scaling/(.*)",
               "libyuv scales each plane, then converts; libswscale does both.", 1, "pixel", destination_pixels),
        Family("Resizer", r"resize/((?!.*640x360_320x180).*)", "", 1, "pixel", destination_pixels),
        Family("Resizer at exactly 2:1", r"resize/(.*/640x360_320x180)",
               "Here OpenCV and libyuv average four pixels, which is another, cheaper operation than the bilinear one "
               "that ours keeps to.", 1, "pixel", destination_pixels),
        Family("Block metrics, fixed sizes", r"metric/((?!diff|.*_of_).*)",
               "Time of one call. Those of x264 are hand-written assembly.", 64),
        Family("Block metrics, any size", r"metric/((?!diff).*_of_.*)",
               "Time of one call. `fixed` is our own member of that size.", 64),
        Family("Differences of blocks", r"metric/(diff.*)",
               "Time of one call. `fixed` is our own member of that size, `by_hand` one of AVX2 intrinsics.", 64),
        Family("Bit reader", r"bsr/(.*)",
               "Time of one field or code. `inline64` is a reader that is inlined into its caller, `call` the least "
               "that an exported function can do to a reader.", 1 << 16),
        Family("Bit writer", r"bsw/(.*)", "Time of one field or code. `inline64` is a writer that is inlined.", 1 << 16),
        Family("Key frames", r"key_frame/(.*)",
               "Data without a start code, so that all of it is scanned; the peer only copies it.", 1, "byte",
               lambda label: 1 << 20, chart=False),
        Family("MD5", r"md5/(.*)", "One message, or 256 rows of so many bytes.", 1, "byte", md5_bytes),
        Family("Fills of bytes", r"memory/(mset_.*)", "", 1, "byte", first_number(1)),
        Family("Fills of 16-bit samples", r"memory/(mset16/.*)",
               "`wmemset` fills wide characters, two samples each; `std_fill` is std::fill_n.", 1, "byte",
               first_number(2)),
        Family("Fills of 16-bit samples beside a byte at a time", r"memory/(mset16_bytes/.*)", "", 1, "byte",
               first_number(2)),
        Family("Copies", r"memory/(mcpy.*)", "The peer calls memcpy for each row.", 1, "byte", destination_pixels),
        Family("Borders of 64 samples", r"border/((?!.*_(?:bytes|fills)).*)", "OpenCV copies the picture too."),
        Family("Borders of 64 samples beside a copy", r"border/(.*)_bytes",
               "memcpy of as many bytes as the border has."),
        Family("Borders of 16 samples", r"border/(.*)_fills", "A fill of each row's ends and copies of the outermost rows."),
        Family("Wait and wake", r"sync/(.*)", "A value handed to another thread and back.", chart=False),
        Family("Containers", r"container/(.*)",
               "4000 buffers of a pool in use beside one; 100 elements added to and taken from a list."),
    ]


def sort_into_families(minima):
    result = families()
    for compiler in COMPILERS:
        for case, times in minima[compiler].items():
            family = next((f for f in result if re.fullmatch(f.pattern, case)), None)
            if family is None:
                sys.exit(f"No family for {case}")
            label = re.fullmatch(family.pattern, case).group(1)
            entry = family.cases.setdefault(label, {"case": case})
            entry[compiler] = {who: time / family.calls for who, time in times.items()}
    return [family for family in result if family.cases]


def peers_of(entry):
    return [who for who in entry[COMPILERS[0]] if who != "ours"]


def peers_of_family(family):
    return list(dict.fromkeys(who for entry in family.cases.values() for who in peers_of(entry)))


def best_ratio(entry, compiler):
    return max(ratios(entry[compiler]).values())


def time_text(ns):
    for unit, scale in (("ms", 1e6), ("µs", 1e3), ("ns", 1)):
        if ns >= scale or scale == 1:
            value = ns / scale
            return f"{value:.{max(0, 2 - int(math.log10(max(value, 1))))}f} {unit}"


def throughput_text(family, label, entry):
    rate = family.amount(label) / entry[COMPILERS[0]]["ours"]  # per ns
    return f"{rate * 1e3:.0f} Mpixel/s" if family.quantity == "pixel" else f"{rate:.{2 if rate < 1 else 1}f} GB/s"


def goal_texts(entry, goals):
    goal = goals.get(entry["case"])
    if goal is None:
        return "", ""
    met = [compiler for compiler in COMPILERS if best_ratio(entry, compiler) <= goal]
    return f"{goal:.3g}", {0: "short", 1: f"{met[0]} only" if met else "", 2: "met"}[len(met)]


def table_of_peers(family, goals):
    compared = {label: entry for label, entry in family.cases.items() if peers_of(entry)}
    if not compared:
        return ""
    peers = peers_of_family(family)
    one_each = all(len(peers_of(entry)) == 1 for entry in compared.values())
    header = ["case", *COMPILERS, *([f"{COMPILERS[0]} rate"] if family.amount else [])]
    if one_each:
        header += ["peer", *(f"ratio {c}" for c in COMPILERS)]
    else:
        header += [f"{who} {c}" for who in peers for c in COMPILERS]
    rows = []
    for label, entry in compared.items():
        row = [f"`{label}`", *(time_text(entry[c]["ours"]) for c in COMPILERS)]
        if family.amount:
            row.append(throughput_text(family, label, entry))
        if one_each:
            row += [peers_of(entry)[0], *(f"**{ratio_text(best_ratio(entry, c))}**" for c in COMPILERS)]
        else:
            for who in peers:
                for compiler in COMPILERS:
                    ratio = ratios(entry[compiler]).get(who)
                    text = "" if ratio is None else ratio_text(ratio)
                    row.append(f"**{text}**" if ratio == best_ratio(entry, compiler) else text)
        rows.append(row + list(goal_texts(entry, goals)))
    return table(header + ["goal", ""], rows)


def table_without_peers(family, columns=3):
    alone = [(label, entry) for label, entry in family.cases.items() if not peers_of(entry)]
    if not alone:
        return ""
    columns = min(columns, len(alone))
    cells = [[f"`{label}`", *(time_text(entry[c]["ours"]) for c in COMPILERS)] for label, entry in alone]
    height = -(-len(cells) // columns)
    rows = []
    for y in range(height):
        picked = cells[y::height]
        rows.append(sum(picked, []) + [""] * 3 * (columns - len(picked)))
    return "Without a peer:\n\n" + table(["case", *COMPILERS] * columns, rows)


def summary(all_families, goals):
    rows = []
    for family in all_families:
        compared = [entry for entry in family.cases.values() if peers_of(entry)]
        if not compared:
            continue
        row = [family.title, str(len(compared))]
        for compiler in COMPILERS:
            best = [best_ratio(entry, compiler) for entry in compared]
            row += [ratio_text(geometric_mean(best)), f"{ratio_text(min(best))} to {ratio_text(max(best))}"]
        with_goal = [entry for entry in compared if entry["case"] in goals]
        met = sum(best_ratio(e, c) <= goals[e["case"]] for e in with_goal for c in COMPILERS)
        rows.append(row + [f"{met} of {len(COMPILERS) * len(with_goal)}" if with_goal else ""])
    header = ["family", "cases"] + [text for c in COMPILERS for text in (f"{c} mean", f"{c} range")] + ["goals met"]
    return table(header, rows)


def machine(contexts):
    context = contexts[COMPILERS[0]]
    caches = [f"L{c['level']}{ {'Data': 'd', 'Instruction': 'i'}.get(c['type'], '')} {c['size'] // 1024} KiB"
              for c in context["caches"]]
    peers = [f"{key.removeprefix('peer/')} {value}" for key, value in context.items() if key.startswith("peer/")]
    rows = [
        ["processor", f"{context['processor']}, {context['num_cpus']} cores at {context['mhz_per_cpu'] / 1000:.1f} GHz"
         + (", a virtual machine" if "virtual machine" in context else "")],
        ["caches", ", ".join(caches)],
        ["system", context["system"]],
        ["kernel set chosen", context["kernel set"]],
        ["compilers", ", ".join(contexts[c]["compiler"] for c in COMPILERS) + ", both -O2"],
        ["peers", ", ".join(peers)],
        ["date", context["date"][:10]],
    ]
    return "| | |\n|---|---|\n" + "\n".join(f"| {key} | {value} |" for key, value in rows) + "\n"


def size_table(sizes, goals):
    rows = []
    for architecture, by_compiler in sizes.items():
        goal = goals["size/" + architecture] / 1000
        rows.append([architecture, *(f"{by_compiler[c] / 1000:.0f} KB" for c in COMPILERS), f"{goal:.0f} KB"])
    return table(["stripped shared library", *COMPILERS, "goal"], rows)


def worst_cases(all_families):
    """[(family, ratio, case, where)]: of all compilers."""
    found = []
    for family in all_families:
        ratios_of = [(best_ratio(entry, c), entry["case"], c) for entry in family.cases.values() if peers_of(entry)
                     for c in COMPILERS]
        if ratios_of:
            found.append((family.title, *max(ratios_of)))
    return found


def worst_table(processor, found, reasons):
    rows = []
    for title, ratio, case, where in found:
        reason = next((text for pattern, text in reasons if re.fullmatch(pattern, f"{processor}/{case}")), None)
        if reason is None and ratio > 1:
            print(f"bench/reasons.txt has no reason for {processor}/{case}, {ratio:.2f} ({where})")
        rows.append([title, f"`{case}`", where, ratio_text(ratio), "as fast" if ratio <= 1 else reason or ""])
    return table(["family", "worst case", "where", "ratio", "reason"], rows).replace("|--:|--:|--:|--:|", "|---|---|--:|---|")


CLAIMS = """\
- **Fast**: on x86-64 (AVX2), {x86}; on AArch64 (modelled cycles, mean of three processors), {arm}. Slowest beside its
  peers: on x86-64 {x86_worst}, on AArch64 {arm_worst}; resizing by exactly 2:1, for which the peers have a cheaper
  operation, takes {exact} on x86-64 and {exact_arm} on AArch64. [All figures](docs/benchmarks.md), short ones included, are
  written by `scripts/bench --report`.
"""


def mean_of(family):
    return geometric_mean([best_ratio(e, c) for e in family.cases.values() if peers_of(e) for c in COMPILERS])


def write_claims(path, x86, arm):
    """The bullet of README.md between the marks, means over both compilers."""
    x86_means = {f.title: mean_of(f) for f in x86 if f.chart and any(peers_of(e) for e in f.cases.values())}
    arm_means = {title: geometric_mean([r for values in members.values() for ratios_of in values.values() for r in ratios_of])
                 for title, _, members in bench_aarch64.chart_groups(arm, COMPILERS) if members}
    work = (("Resizer", "resizing"), ("Scaling converters", "conversion with scaling"))
    def told(means, converters, metrics):
        (first, text), *others = (*work, converters, metrics)
        parts = [f"{text} takes {means[first]:.2f} of the best peer's time"]
        return ", ".join(parts + [f"{text} {means[title]:.2f}" for title, text in others])
    def worst(means):
        title = max((t for t in means if "2:1" not in t), key=means.get)
        return f"{title[0].lower() if title[1].islower() else title[0]}{title[1:]} ({means[title]:.2f})"
    text = CLAIMS.format(
        x86=told(x86_means, ("Colour converters, 256x256", "conversion"), ("Block metrics, fixed sizes", "block metrics")),
        arm=told(arm_means, ("Colour converters", "conversion"), ("SAD", "SAD")), x86_worst=worst(x86_means),
        arm_worst=worst(arm_means), exact=f"{x86_means['Resizer at exactly 2:1']:.2f}",
        exact_arm=f"{arm_means['Resizer at exactly 2:1']:.2f}")
    words = text.replace("\n  ", " ").split()
    lines = [""]
    for word in words:
        if len(lines[-1]) + len(word) > 118:
            lines.append(" ")
        lines[-1] += (" " if lines[-1] else "") + word
    with open(path, encoding="utf-8") as file:
        page = file.read()
    page, replaced = re.subn(r"(<!-- speed -->\n).*?(<!-- end -->)", lambda m: m[1] + "\n".join(lines) + "\n" + m[2], page,
                             flags=re.S)
    if replaced != 1:
        sys.exit(f"{path}: no place for the claims")
    with open(path, "w", encoding="utf-8") as file:
        file.write(page)


INTRODUCTION = """\
# Benchmarks

Ours beside the libraries that one would otherwise take, on the same input, in one program, one thread each. Every
benchmark is repeated, the repetitions of all of them in random order, so that a neighbour's load falls on ours and on
the peers alike; of the repetitions the least time counts. **A ratio is our time by the peer's: below 1 ours is
faster.** The ratio to the best peer is bold, and the one that a goal is set for. Where no library does what a function
does, the peer is a stand-in that the text names.

`scripts/bench --report` writes this file. It installs the peers, or with `--peers new` takes Debian 13's in a folder of
their own, builds with both compilers, runs everything (some twenty minutes, best on an idle machine) and keeps the raw
results in `build-release/report/`. For AArch64 it counts instead of taking time, on any machine.

![Ratios to the best peer](benchmarks.svg)

## Machine

{machine}
## Summary

Mean (geometric) and range of the ratios to the best peer.

{summary}
The worst single case of each family:

{worst}
"""

SIZE = """\
## Size

{sizes}
"""


def read_json(folder, name):
    with open(os.path.join(folder, name), encoding="utf-8") as file:
        return json.load(file)


def chart_of(all_families, arm):
    groups = [(f.title, peers_of_family(f), bench_chart.members(f.cases, COMPILERS, best_ratio, peers_of))
              for f in all_families if f.chart]
    return bench_chart.chart([("x86-64, time", groups),
                              ("AArch64, modelled cycles of three processors", bench_aarch64.chart_groups(arm, COMPILERS))],
                             COMPILERS)


def write(path, text):
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def main():
    folder = sys.argv[1]
    goals, reasons = read_goals("bench/goals.txt"), read_reasons("bench/reasons.txt")
    results = {c: read_results(os.path.join(folder, c + ".json")) for c in COMPILERS}
    all_families = sort_into_families({c: results[c][1] for c in COMPILERS})
    text = INTRODUCTION.format(machine=machine({c: results[c][0] for c in COMPILERS}), summary=summary(all_families, goals),
                               worst=worst_table("x86-64", worst_cases(all_families), reasons))
    for family in all_families:
        parts = (f"## {family.title}\n", family.note and family.note + "\n", table_of_peers(family, goals),
                 table_without_peers(family))
        text += "\n".join(part for part in parts if part) + "\n"
    aarch64, arm = bench_aarch64.report(read_json(folder, "aarch64.json"), COMPILERS, goals)
    worst = worst_table("AArch64", bench_aarch64.worst_cases(arm, COMPILERS), reasons)
    text += aarch64 + "### Worst cases\n\n" + worst + "\n"
    text += cliffs.section(os.path.join(folder, "cliffs.txt")) + "\n"
    text += SIZE.format(sizes=size_table(read_json(folder, "sizes.json"), goals))
    write("docs/benchmarks.md", text)
    write("docs/benchmarks.svg", chart_of(all_families, arm))
    write_claims("README.md", all_families, arm)


if __name__ == "__main__":
    main()
