#!/usr/bin/env python3
"""Turns a benchmark run into ratios: how many times faster than each peer.

    charset_bench --benchmark_format=json > run.json
    report.py run.json

Benchmarks are named subject/peer/text/size. Each row is a subject on a text; each
column the time of a peer divided by that of kivxx, both the least of the
repetitions of this one run. With repeated runs the least is what the machine can
do; the rest is what else it had to do.
"""

import json
import sys

OURS = "kivxx"


def least_times(run):
    times = {}
    for result in run["benchmarks"]:
        if result.get("error_occurred"):
            sys.exit(f"{result['name']}: {result.get('error_message')}")
        if result.get("run_type") != "iteration":
            continue
        name = result["run_name"].split("/")
        if len(name) < 4:
            sys.exit(f"{result['run_name']}: not subject/peer/text/size")
        subject, peer, text, size = name[:4]
        row = times.setdefault((subject, text, size), {})
        row[peer] = min(row.get(peer, float("inf")), result["cpu_time"])
    return times


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    with open(sys.argv[1], encoding="utf-8") as file:
        times = least_times(json.load(file))
    peers = sorted({peer for row in times.values() for peer in row} - {OURS})
    print(f"{'':32}{'text':10}{'size':>8}{'ns':>12}" + "".join(f"{p:>10}" for p in peers))
    for (subject, text, size), row in times.items():
        if OURS not in row:
            continue
        ratios = "".join(
            f"{row[p] / row[OURS]:10.2f}" if p in row else f"{'':10}" for p in peers
        )
        print(f"{subject:32}{text:10}{size:>8}{row[OURS]:12.1f}{ratios}")


if __name__ == "__main__":
    main()
