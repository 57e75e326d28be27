"""Prints the ratios of a benchmark run: bench_table.py RESULTS.json GOALS.txt"""

import sys

from bench_results import ratios, read_goals, read_results


def main():
    minima = read_results(sys.argv[1])[1]
    goals = read_goals(sys.argv[2])
    width = max(map(len, minima), default=4)
    print(f"{'case':{width}}  {'ours ns':>12}  {'peer ns':>12}  {'ratio':>6}  {'goal':>5}  peer")
    short = 0
    for case, times in minima.items():
        ours = times["ours"]
        by_peer = ratios(times)
        if not by_peer:
            print(f"{case:{width}}  {ours:12.1f}")
            continue
        best = max(by_peer, key=by_peer.get)
        goal = goals.get(case)
        missed = goal is not None and by_peer[best] > goal
        short += missed
        goal_text = "" if goal is None else f"{goal:.2f}"
        print(f"{case:{width}}  {ours:12.1f}  {times[best]:12.1f}  {by_peer[best]:6.3f}  {goal_text:>5}  {best}"
              + ("  short" if missed else ""))
    print(f"{short} short of their goals")


if __name__ == "__main__":
    main()
