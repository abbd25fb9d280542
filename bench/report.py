#!/usr/bin/env python3
"""Turns benchmark runs into ratios: how many times faster than each peer.

    charset_bench --benchmark_format=json > charset_bench.json
    report.py charset_bench.json                  a table for the terminal
    report.py --markdown *.json > performance.md  all programs as one page

Benchmarks are named subject/peer/text/size. Each row is a subject on a text; each
column the time of a peer divided by that of kivxx, both the least of the
repetitions of one run. With repeated runs the least is what the machine can
do; the rest is what else it had to do.
"""

import argparse
import datetime
import json
import math
import platform
import subprocess
import sys
from pathlib import Path

OURS = "kivxx"

# What the pages says of each program, in the order of the page.
PROGRAMS = {
    "charset_bench": "UTF-8, UTF-16, US-ASCII and ISO-8859-1",
    "national_bench": "The charsets with tables",
    "classification_bench": "Classification and look-up of names",
    "bigint_bench": "big_uint",
    "numconv_parse_bench": "Numbers from text",
    "numconv_format_bench": "Numbers to text",
    "decimal_bench": "Decimal arithmetic",
    "decimal_text_bench": "Decimals from and to text",
    "stream_bench": "UTF-16 streams",
    "kernels_bench": "Inner loops of UTF-8 beside their plain versions",
}

# Peers that are the library itself by another way, or a bound that no rival reaches:
# rows to read, not races.
NOT_RIVALS = {"memcpy", "char", "buffer", "pointer", "view", "portable", "double"}


class Row:
    def __init__(self, subject, text, size):
        self.name = (subject, text, size)
        self.times = {}

    def add(self, peer, time):
        self.times[peer] = min(self.times.get(peer, math.inf), time)

    def ratio(self, peer):
        if peer not in self.times:
            return None
        return self.times[peer] / self.times[OURS]


def read_rows(path):
    rows = {}
    with open(path, encoding="utf-8") as file:
        results = json.load(file)["benchmarks"]
    for result in results:
        if result.get("error_occurred"):
            sys.exit(f"{result['name']}: {result.get('error_message')}")
        if result.get("run_type") != "iteration":
            continue
        parts = result["run_name"].split("/")
        if len(parts) < 4:
            sys.exit(f"{result['run_name']}: not subject/peer/text/size")
        subject, peer, text, size = parts[:4]
        row = rows.setdefault((subject, text, size), Row(subject, text, size))
        row.add(peer, result["cpu_time"])
    return [row for row in rows.values() if OURS in row.times]


def peers_of(rows):
    return sorted({peer for row in rows for peer in row.times} - {OURS})


def print_text(rows):
    peers = peers_of(rows)
    print(f"{'':32}{'text':10}{'size':>8}{'ns':>12}" + "".join(f"{p:>10}" for p in peers))
    for row in rows:
        subject, text, size = row.name
        ratios = (row.ratio(peer) for peer in peers)
        print(f"{subject:32}{text:10}{size:>8}{row.times[OURS]:12.1f}" +
              "".join(f"{r:10.2f}" if r else f"{'':10}" for r in ratios))


# --- Markdown ------------------------------------------------------------------------


def processor():
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        for line in file:
            if line.startswith("model name"):
                return line.split(":", 1)[1].strip()
    return platform.processor()


def first_line(*command):
    return subprocess.run(command, capture_output=True, text=True,
                          check=True).stdout.splitlines()[0]


def table(header, lines, align):
    yield "| " + " | ".join(header) + " |"
    yield "|" + "|".join(align) + "|"
    for line in lines:
        yield "| " + " | ".join(line) + " |"


def summary_lines(programs):
    for title, rows in programs:
        for peer in peers_of(rows):
            if peer in NOT_RIVALS:
                continue
            ratios = sorted(r for r in (row.ratio(peer) for row in rows) if r)
            mean = math.exp(sum(map(math.log, ratios)) / len(ratios))
            behind = sum(r < 1 for r in ratios)
            yield [title, peer, str(len(ratios)), f"{mean:.2f}", f"{ratios[0]:.2f}",
                   f"{ratios[-1]:.2f}", str(behind)]


def behind_lines(programs):
    for title, rows in programs:
        for row in rows:
            for peer in peers_of(rows):
                ratio = row.ratio(peer)
                if ratio and ratio < 1 and peer not in NOT_RIVALS:
                    yield [title, " / ".join(row.name), peer, f"{ratio:.2f}"]


def program_lines(rows, peers):
    for row in rows:
        ratios = (row.ratio(peer) for peer in peers)
        yield [*row.name, f"{row.times[OURS]:.4g}",
               *(f"{r:.2f}" if r else "" for r in ratios)]


def print_markdown(paths):
    by_name = {Path(path).stem: path for path in paths}
    if unknown := by_name.keys() - PROGRAMS.keys():
        sys.exit(f"not a benchmark program: {', '.join(sorted(unknown))}")
    programs = [(title, read_rows(by_name[name]))
                for name, title in PROGRAMS.items() if name in by_name]
    print(f"""# Performance

Written by `scripts/bench` on {datetime.date.today().isoformat()}.
Processor: {processor()}; {first_line("c++", "--version")}; Release build.

Every figure is the time of a peer divided by that of kivxx in the same run, the least of
the repetitions of each: above 1, kivxx is faster. [bench/README.md](../bench/README.md)
says what each program measures and how. Times differ between runs, on a shared machine by
a tenth and more; the ratios of one run are comparable, the nanoseconds are not.

## In short

The mean is geometric, over the rows of the tables below.
""")
    header = ["", "peer", "rows", "mean", "least", "most", "rows below 1"]
    print("\n".join(table(header, summary_lines(programs),
                          ["---", "---"] + ["---:"] * 5)))
    print("\n### Where a peer is faster\n")
    header = ["", "row", "peer", "ratio"]
    print("\n".join(table(header, behind_lines(programs), ["---", "---", "---", "---:"])))
    for title, rows in programs:
        peers = peers_of(rows)
        print(f"\n## {title}\n")
        header = ["what", "text", "size", "ns", *peers]
        print("\n".join(table(header, program_lines(rows, peers),
                              ["---", "---"] + ["---:"] * (len(peers) + 2))))


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--markdown", action="store_true")
    parser.add_argument("run", nargs="+")
    options = parser.parse_args()
    if options.markdown:
        print_markdown(options.run)
    else:
        for run in options.run:
            print_text(read_rows(run))


if __name__ == "__main__":
    main()
