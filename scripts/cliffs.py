"""What bench/cliffs.cpp found: cliffs.py RESULTS. Prints the cliffs, draws docs/cliffs.svg and writes the section of
docs/benchmarks.md; bench/cliffs.txt has the reasons of those that stay."""

import re
import sys
from html import escape

from bench_results import read_reasons, table

SVG, PAGE, REASONS = "docs/cliffs.svg", "docs/benchmarks.md", "bench/cliffs.txt"
# (title, [(member, arrangement)]): time a pixel over the width.
CHARTS = [
    ("yuv444_to_rgba8888", [("csc_yuv444_to_rgba8888", a) for a in ("apart", "tight", "permuted", "in-place")]),
    ("rgb888_to_yuv444", [("csc_rgb888_to_yuv444", a) for a in ("apart", "tight", "permuted", "in-place")]),
    ("rsz_yuv444_to_rgba8888, 3:2", [("csc_rsz_yuv444_to_rgba8888 3:2", a) for a in ("apart", "permuted")]),
    ("Resizer, 3:2, rows apart", [("irsz8b 3:2", "apart"), ("irsz8b8b8b 3:2", "apart"), ("irsz8b8b8b8b 3:2", "apart")]),
    ("Areas of any size", [("sad", "apart"), ("ssd", "apart"), ("satd", "apart"), ("diff", "apart")]),
    ("Fills and copies", [("mset16", "apart"), ("mset_x64", "apart"), ("mcpy_pic", "apart")]),
]
ROWS = 8
WIDTH, HEIGHT, LEFT, TOP, PLOT_W, PLOT_H = 430, 250, 46, 40, 360, 150
COLOURS = ("#1a7f64", "#bc4c00", "#0969da", "#8250df")


def read(path):
    """(cliffs, {(member, arrangement): [ns of width 1, 2, ...]})"""
    cliffs, times = [], {}
    with open(path, encoding="utf-8") as file:
        for line in file:
            kind, rest = line.rstrip("\n").split(" ", 1)
            fields = [part.strip() for part in rest.split("|")]
            if kind == "times":
                times[fields[0], fields[1]] = [float(ns) for ns in fields[2].split()]
            else:
                ratio, ns, beside, direction = fields[0].split(" ", 3)
                cliffs.append({"ratio": float(ratio), "ns": float(ns), "beside": float(beside), "direction": direction,
                               "member": fields[1], "arrangement": fields[2], "at": fields[3], "than": fields[4],
                               "count": int(fields[5])})
    return cliffs, times


def plot(title, series, x0, y0):
    widths = range(4, 1 + max(len(values) for _, values in series))
    pixel = {name: [values[w - 1] / (w * ROWS) for w in widths] for name, values in series}
    highest = max(max(values) for values in pixel.values())
    place_x = lambda w: x0 + LEFT + PLOT_W * (w - widths[0]) / (widths[-1] - widths[0])
    place_y = lambda ns: y0 + TOP + PLOT_H * (1 - ns / highest)
    parts = [f'<text class="head" x="{x0 + LEFT}" y="{y0 + 18}">{escape(title)}</text>']
    for i in range(3):
        y = place_y(highest * i / 2)
        parts += [f'<line class="grid" x1="{x0 + LEFT}" x2="{x0 + LEFT + PLOT_W}" y1="{y:.1f}" y2="{y:.1f}"/>',
                  f'<text class="small" x="{x0 + LEFT - 5}" y="{y + 4:.1f}" text-anchor="end">{highest * i / 2:.2g}</text>']
    for w in (8, 16, 32, 64, 96, 128):
        parts.append(f'<text class="small" x="{place_x(w):.1f}" y="{y0 + TOP + PLOT_H + 15}" text-anchor="middle">{w}</text>')
    for i, (name, values) in enumerate(pixel.items()):
        points = " ".join(f"{place_x(w):.1f},{place_y(ns):.1f}" for w, ns in zip(widths, values))
        parts += [f'<polyline points="{points}" fill="none" stroke="{COLOURS[i]}"/>',
                  f'<text class="small" x="{x0 + LEFT + 92 * i}" y="{y0 + TOP + PLOT_H + 34}" style="fill:{COLOURS[i]}">{escape(name)}</text>']
    return parts


def draw(times):
    parts, shown = [], 0
    for title, keys in CHARTS:
        same_member = len({member for member, _ in keys}) == 1
        series = [(arrangement if same_member else member.split()[0], times[member, arrangement])
                  for member, arrangement in keys if (member, arrangement) in times]
        if not series:
            continue
        parts += plot(title, series, WIDTH * (shown % 2), 34 + HEIGHT * (shown // 2))
        shown += 1
    width, height = 2 * WIDTH, 44 + HEIGHT * -(-shown // 2)
    style = ("text{font:12px sans-serif;fill:#1f2328}.head{font-weight:bold}.small{font-size:11px}.grid{stroke:#d1d9e0}"
             ".card{fill:#f6f8fa;stroke:#d1d9e0}")
    return "\n".join([f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" height="{height}">',
                      "<title>Time a pixel over the width</title>", f"<style>{style}</style>",
                      f'<rect class="card" x="0.5" y="0.5" width="{width - 1}" height="{height - 1}" rx="8"/>',
                      '<text class="head" x="16" y="24">Time a pixel (ns) over the width, 8 rows</text>', *parts, "</svg>", ""])


SECTION = """\
<!-- cliffs -->
## Small, odd, rearranged and overlapping pictures

`scripts/bench --cliffs` walks widths 1 to 130, heights 1 to 8, every arrangement (rows apart or one after the other, upside
down, a packed picture's channels reversed or unrelated, in place) and places off a boundary for every member, and looks
where a call takes more than twice the time of a neighbour: one column or row more, one column less (beyond what the
columns make), on a boundary, apart.

![Time a pixel over the width](cliffs.svg)

{found}
<!-- end of cliffs -->
"""


def section(path):
    """Draws the chart; returns the section of the report."""
    cliffs, times = read(path)
    with open(SVG, "w", encoding="utf-8") as file:
        file.write(draw(times))
    reasons, groups = read_reasons(REASONS), {}
    for cliff in sorted(cliffs, key=lambda cliff: -cliff["ratio"]):
        name = f"{cliff['direction']}/{cliff['arrangement']}/{cliff['member']}"
        reason = next((text for pattern, text in reasons if re.fullmatch(pattern, name)), None)
        print(f"{cliff['ratio']:6.2f}  {name}: {cliff['at']} {cliff['ns']:.0f} ns, {cliff['than']} {cliff['beside']:.0f} ns"
              + ("" if reason else "  (no reason noted)"))
        groups.setdefault(reason or "", []).append(cliff)
    rows = []
    for reason, found in groups.items():
        worst = found[0]
        members = sorted({cliff["member"].split()[0] for cliff in found})
        shown = ", ".join(f"`{member}`" for member in members[:6]) + (f" and {len(members) - 6} more" if len(members) > 6 else "")
        rows.append([shown, f"`{worst['member']}` {worst['at']}: {worst['ns']:.0f} ns, {worst['than']}: {worst['beside']:.0f} ns",
                     f"{worst['ratio']:.1f}", reason])
    header = ["members", "worst", "ratio", "reason"]
    text = table(header, rows).replace("|--:|--:|--:|", "|---|--:|---|") if rows else "None.\n"
    return SECTION.format(found="What is left:\n\n" + text if rows else "There is none left.\n")


def main():
    text = section(sys.argv[1])
    with open(PAGE, encoding="utf-8") as file:
        page = file.read()
    if "<!-- cliffs -->" in page:
        page = re.sub(r"<!-- cliffs -->\n.*<!-- end of cliffs -->\n", lambda match: text, page, flags=re.S)
    else:
        page = page.replace("## Size\n", text + "\n## Size\n")
    with open(PAGE, "w", encoding="utf-8") as file:
        file.write(page)


if __name__ == "__main__":
    main()
