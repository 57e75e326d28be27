"""Prints the ratios of a benchmark run: bench_table.py RESULTS.json GOALS.txt"""

import json
import sys
from collections import defaultdict


def read_minima(path):
    """{case: {who: least time in ns}}; a benchmark is named <case>/<who>."""
    minima = defaultdict(dict)
    with open(path, encoding="utf-8") as file:
        results = json.load(file)
    for run in results["benchmarks"]:
        if run.get("run_type") == "aggregate":
            continue
        case, who = run["run_name"].rsplit("/", 1)
        scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[run["time_unit"]]
        time = run["cpu_time"] * scale
        minima[case][who] = min(time, minima[case].get(who, time))
    return minima


def read_goals(path):
    goals = {}
    with open(path, encoding="utf-8") as file:
        for line in file:
            words = line.split("#")[0].split()
            if len(words) == 2:
                goals[words[0]] = float(words[1])
    return goals


def main():
    minima = read_minima(sys.argv[1])
    goals = read_goals(sys.argv[2])
    width = max(map(len, minima), default=4)
    print(f"{'case':{width}}  {'ours ns':>12}  {'peer ns':>12}  {'ratio':>6}  {'goal':>5}  peer")
    short = 0
    for case, times in minima.items():
        ours = times.get("ours")
        peers = {who: time for who, time in times.items() if who != "ours"}
        if ours is None:
            continue
        if not peers:
            print(f"{case:{width}}  {ours:12.1f}")
            continue
        best = min(peers, key=peers.get)
        ratio = ours / peers[best]
        goal = goals.get(case)
        mark = ""
        if goal is not None and ratio > goal:
            mark = "  short"
            short += 1
        goal_text = "" if goal is None else f"{goal:.2f}"
        print(f"{case:{width}}  {ours:12.1f}  {peers[best]:12.1f}  {ratio:6.3f}  {goal_text:>5}  {best}{mark}")
    print(f"{short} short of their goals")


if __name__ == "__main__":
    main()
