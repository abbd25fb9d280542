#!/usr/bin/env python3
"""Makes every generated table, most from the files in data/.

    tools/tablegen/generate.py [--out DIR]

Writes into the tree itself, or with --out to the same relative paths below
DIR, and prints what it made.
"""

import argparse
from pathlib import Path

import classification
import companion
import dbcs
import gb18030
import powers_of_five
import sbcs
import tablegen

# Each module has generate(root), which returns a list of tablegen.Table.
GENERATORS = [
    companion,
    classification,
    sbcs,
    dbcs,
    gb18030,
    powers_of_five,
]


def main():
    parser = argparse.ArgumentParser(description="Makes every generated table from data/.")
    parser.add_argument("--out", type=Path, default=tablegen.ROOT, metavar="DIR",
                        help="write below DIR instead of into the tree")
    out = parser.parse_args().out
    made = set()
    for generator in GENERATORS:
        for table in generator.generate(tablegen.ROOT):
            if table.path in made:
                raise SystemExit(f"{table.path} is made twice")
            made.add(table.path)
            target = out / table.path
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(table.text.encode("utf-8"))
            print(f"{table.path}: {table.figures}")


if __name__ == "__main__":
    main()
