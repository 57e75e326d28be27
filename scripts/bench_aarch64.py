"""The AArch64 part of the benchmark report: instructions and modelled cycles of ours and of the peers."""

import re
from dataclasses import dataclass, field

from bench_results import destination_pixels, first_number, geometric_mean, ratio_text, table

FIGURES = {"instructions": "instructions", "cortex-a55": "A55", "neoverse-n1": "N1", "neoverse-v2": "V2"}
MODELS = list(FIGURES)[1:]
# Peers that are not: our own members of one size.
OURS_TOO = ("fixed", "canonical", "loop")


@dataclass
class Family:
    """Cases whose name matches `pattern`; `unit` is what a figure is for, `units` how many of it a case has."""

    title: str
    pattern: str
    unit: str
    units: object
    cases: dict = field(default_factory=dict)  # label: {compiler: {who: {figure: number}}}


def families():
    calls = lambda label: 64
    return [
        Family("Colour converters", r"csc/(.*)/256x256", "pixel", lambda label: 256 * 256),
        Family("Small pictures", r"csc_small/(.*)", "call", lambda label: 1),
        Family("Scaling converters", r"scaling/(.*)", "pixel", destination_pixels),
        Family("Resizer", r"resize/((?!.*640x360_320x180).*)", "pixel", destination_pixels),
        Family("Resizer at exactly 2:1", r"resize/(.*640x360_320x180)", "pixel", destination_pixels),
        Family("SAD", r"metric/(sad.*)", "call", calls),
        Family("SSD", r"metric/(ssd.*)", "call", calls),
        Family("SATD", r"metric/((?:satd|hadamard).*)", "call", calls),
        Family("Differences", r"metric/(diff.*)", "call", calls),
        Family("Bit reader", r"bsr/(.*)", "code", lambda label: 1 << 16),
        Family("Bit writer", r"bsw/(.*)", "code", lambda label: 1 << 16),
        Family("MD5", r"md5/(.*)", "byte", first_number(256)),
        Family("Fills", r"memory/(mset_.*|mset16/.*)", "call", lambda label: 1),
        Family("Copies", r"memory/(mcpy.*)", "call", lambda label: 1),
    ]


def sort_into_families(by_compiler):
    result = families()
    for compiler, cases in by_compiler.items():
        for case, by_who in cases.items():
            for family in result:
                match = re.fullmatch(family.pattern, case)
                if match:
                    entry = family.cases.setdefault(match.group(1), {"case": case})
                    entry[compiler] = {who: figures for who, figures in by_who.items() if who not in OURS_TOO}
    return [family for family in result if family.cases]


def best_peer(entry, compiler, figure):
    """(number, who), or None: a peer of which a model knows no cycles has none."""
    known = [(figures[figure], who) for who, figures in entry[compiler].items() if who != "ours" and figure in figures]
    return min(known, default=None)


def ratio(entry, compiler, figure):
    best = best_peer(entry, compiler, figure)
    return entry[compiler]["ours"][figure] / best[0] if best and figure in entry[compiler]["ours"] else None


def compared(family, compilers):
    return {label: entry for label, entry in family.cases.items()
            if all(best_peer(entry, c, "instructions") for c in compilers)}


def number(value):
    return f"{value:.0f}" if value >= 100 else f"{value:.3g}"


def family_table(family, compilers):
    rows = []
    for label, entry in compared(family, compilers).items():
        units, row = family.units(label), [f"`{label}`"]
        for figure in FIGURES:
            ours = [entry[c]["ours"].get(figure) for c in compilers]
            row.append(" / ".join("" if value is None else number(value / units) for value in ours))
            best = best_peer(entry, compilers[0], figure)
            row.append("" if best is None else f"{best[1]} {number(best[0] / units)}: **"
                       + " / ".join(ratio_text(ratio(entry, c, figure)) for c in compilers) + "**")
        rows.append(row)
    if not rows:
        return ""
    header = ["case"] + [text for shown in FIGURES.values() for text in (shown, "beside the best peer")]
    return f"### {family.title}\n\nFor a {family.unit}.\n\n" + table(header, rows) + "\n"


def alone_table(all_families, compilers, columns=3):
    cells = []
    for family in all_families:
        for label, entry in family.cases.items():
            if label not in compared(family, compilers):
                ours = [number(entry[c]["ours"]["instructions"] / family.units(label)) for c in compilers]
                cells.append([f"`{label}`", " / ".join(ours)])
    height = -(-len(cells) // columns)
    rows = [sum(cells[y::height], []) for y in range(height)]
    rows = [row + [""] * (2 * columns - len(row)) for row in rows]
    return "### Without a peer\n\nInstructions.\n\n" + table(["case", " / ".join(compilers)] * columns, rows) + "\n"


def summary(all_families, compilers, goals):
    rows = []
    for family in all_families:
        entries = compared(family, compilers).values()
        if not entries:
            continue
        goal = goals.get(f"AArch64/{family.title}".replace(" ", "-"))
        row, worst = [family.title, str(len(entries))], []
        for model in MODELS:
            for compiler in compilers:
                known = [r for r in (ratio(entry, compiler, model) for entry in entries) if r]
                mean = geometric_mean(known)
                worst += [(r, entry["case"], compiler, model) for entry in entries if (r := ratio(entry, compiler, model))]
                row.append(ratio_text(mean) + ("" if goal is None or mean <= goal else " (short)"))
        rows.append(row + ["" if goal is None else f"{goal:.2f}"])
    header = ["family", "cases"] + [f"{FIGURES[m]} {c}" for m in MODELS for c in compilers] + ["goal"]
    return table(header, rows)


def worst_cases(all_families, compilers):
    """[(family, ratio, case, where)]: of all compilers and models."""
    found = []
    for family in all_families:
        ratios = [(r, entry["case"], f"{compiler}, {FIGURES[model]}") for entry in compared(family, compilers).values()
                  for compiler in compilers for model in MODELS if (r := ratio(entry, compiler, model))]
        if ratios:
            found.append((family.title, *max(ratios)))
    return found


def chart_groups(all_families, compilers):
    """What bench_chart.chart() draws: all sizes and models of a member together."""
    groups = []
    for family in all_families:
        members, peers = {}, {}
        for label, entry in compared(family, compilers).items():
            member = re.sub(r"(/[^/]*|_of_\d+x\d+)$", "", label)
            for compiler in compilers:
                known = [r for r in (ratio(entry, compiler, model) for model in MODELS) if r]
                members.setdefault(member, {}).setdefault(compiler, []).extend(known)
                peers.update(dict.fromkeys(who for who in entry[compiler] if who != "ours"))
        groups.append((family.title, list(peers), members))
    return groups


TEXT = """\
## AArch64

Instructions, counted one by one under an emulator, and the cycles that llvm-mca models for them on a Cortex-A55, a
Neoverse N1 and a Neoverse V2: exact, and the same on every run. `a / b` are the builds of {compilers}. **A ratio is our
cycles by those of the best peer**; a mean marked short is above its goal. The peers are those of Debian 13, and
assembly of x264, x265, libvpx and libaom:

{peers}.

What the models do not see: caches (all data is in the first one), mispredicted branches, and what the processor does
between a call's last instruction and its caller. The one of the Neoverse N1 knows no forwarding between accumulations;
all see dependencies between registers that an instruction only names together (`tbl` of two, `st4`). Of calls of more than
2000 instructions they see eight pieces, evenly spaced.

{summary}
"""


def report(results, compilers, goals):
    """(markdown, families) of what scripts/aarch64_counts.py wrote."""
    peers = ", ".join(f"{key.removeprefix('peer/')} {value}" for key, value in results["context"].items())
    text, plain = "", None
    for processor, by_compiler in results["processors"].items():
        at = sort_into_families(by_compiler)
        if plain is None:
            plain = at
            text += TEXT.format(compilers=" and ".join(compilers), peers=peers, summary=summary(at, compilers, goals))
            text += "".join(family_table(family, compilers) for family in at) + alone_table(at, compilers)
        else:
            text += f"### Processors {processor}\n\n" + summary(at, compilers, {}) + "\n"
            text += "".join(family_table(family, compilers).replace("### ", "#### ") for family in at)
    return text, plain
