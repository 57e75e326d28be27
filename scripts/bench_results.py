"""Reads what qorv_bench writes and the goals beside it; what both parts of the report write numbers with."""

import json
import math
import re
from collections import defaultdict

SCALE = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def read_results(path):
    """(context, {case: {who: least time in ns}}) in the order of registration; a benchmark is named <case>/<who>."""
    with open(path, encoding="utf-8") as file:
        results = json.load(file)
    minima = defaultdict(dict)
    for run in sorted(results["benchmarks"], key=lambda run: run["family_index"]):
        if run.get("run_type") == "aggregate":
            continue
        name = run["run_name"].removesuffix("/real_time")
        case, who = name.rsplit("/", 1)
        time = run["real_time" if run["run_name"] != name else "cpu_time"] * SCALE[run["time_unit"]]
        minima[case][who] = min(time, minima[case].get(who, time))
    return results["context"], {case: times for case, times in minima.items() if "ours" in times}


def ratios(times):
    """{peer: our time / its time}; the best peer has the highest."""
    return {who: times["ours"] / time for who, time in times.items() if who != "ours"}


def read_goals(path):
    goals = {}
    with open(path, encoding="utf-8") as file:
        for line in file:
            words = line.split("#")[0].split()
            if len(words) == 2:
                goals[words[0]] = float(words[1])
    return goals


def destination_pixels(label):
    w, h = re.findall(r"(\d+)x(\d+)", label)[-1]
    return int(w) * int(h)


def first_number(factor):
    return lambda label: factor * int(re.search(r"/(\d+)", label).group(1))


def ratio_text(ratio):
    return f"{ratio:.3f}" if ratio < 0.1 else f"{ratio:.2f}"


def table(header, rows):
    """Markdown; every column but the first is aligned to the right."""
    lines = ["| " + " | ".join(header) + " |", "|---" + "|--:" * (len(header) - 1) + "|"]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows]) + "\n"


def geometric_mean(values):
    return math.exp(sum(map(math.log, values)) / len(values))


def read_reasons(path):
    """[(pattern, reason)]: a line each, two spaces between them."""
    with open(path, encoding="utf-8") as file:
        lines = [line.strip() for line in file if line.strip() and not line.startswith("#")]
    return [tuple(re.split(r"\s{2,}", line, maxsplit=1)) for line in lines]
