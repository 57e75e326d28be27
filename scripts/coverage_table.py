"""Prints a coverage summary of llvm-cov: coverage_table.py SUMMARY.json MINIMUM < names of the library's sources"""

import json
import os
import sys


def share(counts):
    covered, total = counts
    return f"{covered:5}/{total:<5} {100 * covered / total:6.2f} %" if total else f"{'-':>20}"


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        data = json.load(file)["data"][0]
    minimum = float(sys.argv[2])
    measured = {}
    for entry in data["files"]:
        summary = entry["summary"]
        if summary["lines"]["count"]:
            measured[os.path.relpath(entry["filename"])] = summary

    totals = {"lines": [0, 0], "branches": [0, 0]}
    print(f"{'':28} {'lines':>20}  {'branches':>20}")
    for name in sorted(measured):
        row = []
        for kind, total in totals.items():
            counts = measured[name][kind]["covered"], measured[name][kind]["count"]
            total[0] += counts[0]
            total[1] += counts[1]
            row.append(share(counts))
        print(f"{name:28} {row[0]:>20}  {row[1]:>20}")
    print(f"{'all':28} {share(totals['lines']):>20}  {share(totals['branches']):>20}")

    unmeasured = [name for name in sys.stdin.read().split() if name not in measured]
    print("Nothing to measure on this machine in:", " ".join(unmeasured))
    if any(covered * 100 < minimum * total for covered, total in totals.values()):
        sys.exit(f"Below {minimum:g} %")


if __name__ == "__main__":
    main()
