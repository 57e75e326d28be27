"""Reads what qorv_bench writes and the goals beside it."""

import json
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
