"""The chart of the benchmark report: a bar a member and compiler, from 1.0 to the ratio, on a log scale."""

import math
import re
from html import escape

WIDTH, LEFT, RIGHT = 860, 250, 120  # the plot lies between LEFT and WIDTH - RIGHT
BAR, GAP, HEAD = 5, 5, 26
LOWEST, HIGHEST = 0.01, 8
# On a card of its own, so that it reads the same on light and dark pages.
STYLE = """\
text{font:12px sans-serif;fill:#1f2328}
.head{font-weight:bold}.section{font-size:15px;font-weight:bold}.plain{font-weight:normal}.small{font-size:11px;fill:#59636e}
.card{fill:#f6f8fa;stroke:#d1d9e0}.grid{stroke:#d1d9e0}.one{stroke:#1f2328;stroke-width:1.5}.range{stroke:#59636e}
.fast0{fill:#1a7f64}.fast1{fill:#5fc2a5}.slow0{fill:#bc4c00}.slow1{fill:#f0a15e}"""


def members(cases, compilers, best_ratio, peers_of):
    """{member: {compiler: ratios}}: cases that differ in their size only are one member."""
    result = {}
    for label, entry in cases.items():
        if peers_of(entry):
            member = re.sub(r"(/[^/]*|_of_\d+x\d+)$", "", label)
            for compiler in compilers:
                result.setdefault(member, {}).setdefault(compiler, []).append(best_ratio(entry, compiler))
    return result


def place(ratio):
    span = math.log(HIGHEST / LOWEST)
    return LEFT + (WIDTH - RIGHT - LEFT) * math.log(min(max(ratio, LOWEST), HIGHEST) / LOWEST) / span


def bar(values, y, index):
    mean = math.exp(sum(map(math.log, values)) / len(values))
    x, one = place(mean), place(1)
    kind = "fast" if mean <= 1 else "slow"
    parts = [f'<rect class="{kind}{index}" x="{min(x, one):.1f}" y="{y}" width="{abs(x - one):.1f}" height="{BAR}"/>']
    if len(values) > 1:
        middle = y + BAR / 2
        parts.append(f'<line class="range" x1="{place(min(values)):.1f}" x2="{place(max(values)):.1f}" '
                     f'y1="{middle}" y2="{middle}"/>')
    return mean, parts


def rows(group, compilers, y):
    parts = []
    for member, by_compiler in group.items():
        means = []
        for index, compiler in enumerate(compilers):
            mean, drawn = bar(by_compiler[compiler], y + index * BAR, index)
            means.append(f"{mean:.2f}")
            parts += drawn
        parts.append(f'<text x="{LEFT - 8}" y="{y + BAR + 4}" text-anchor="end">{escape(member)}</text>')
        parts.append(f'<text class="small" x="{WIDTH - RIGHT + 12}" y="{y + BAR + 4}">{" / ".join(means)}</text>')
        y += 2 * BAR + GAP
    return y, parts


def legend(compilers):
    parts = [f'<text x="16" y="26" class="head">Our time or cycles by those of the best peer ({" / ".join(compilers)})</text>']
    x = 16
    for index, compiler in enumerate(compilers):
        for kind, word in (("fast", "faster"), ("slow", "slower")):
            parts.append(f'<rect class="{kind}{index}" x="{x}" y="38" width="18" height="8"/>')
            parts.append(f'<text class="small" x="{x + 23}" y="46">{compiler}, {word}</text>')
            x += 115
    parts.append(f'<text class="small" x="{x}" y="46">bar: geometric mean of the sizes, line: their range</text>')
    return parts


def chart(sections, compilers):
    """Sections of (title, groups), groups of (title, peers, members)."""
    y = top = 84
    body = []
    for section, groups in sections:
        body.append(f'<text class="section" x="16" y="{y + 18}">{escape(section)}</text>')
        y += 30
        for title, peers, group in groups:
            if not group:
                continue
            body.append(f'<text class="head" x="16" y="{y + 14}">{escape(title)}'
                        f'<tspan class="small plain" dx="6">{escape(", ".join(peers))}</tspan></text>')
            y, drawn = rows(group, compilers, y + HEAD - 4)
            body += drawn
            y += 8
    grid = []
    for tick in (0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5):
        x = f"{place(tick):.1f}"
        grid.append(f'<line class="{"one" if tick == 1 else "grid"}" x1="{x}" x2="{x}" y1="{top - 8}" y2="{y}"/>')
        for at in (top - 13, y + 14):
            grid.append(f'<text class="small" x="{x}" y="{at}" text-anchor="middle">{tick:g}</text>')
    height = y + 28
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" width="{WIDTH}" height="{height}">',
        "<title>Ratios of our times to those of the best peers</title>", f"<style>{STYLE}</style>",
        f'<rect class="card" x="0.5" y="0.5" width="{WIDTH - 1}" height="{height - 1}" rx="8"/>',
        *legend(compilers), *grid, *body, "</svg>", ""])
