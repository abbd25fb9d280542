"""Reads data files strictly and lays out C++ tables.

A data file that is not understood ends the program with "file:line: why", so
that a damaged file cannot become a table.
"""

import hashlib
import re
import sys
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
CODE_SPACE = 0x110000


@dataclass(frozen=True)
class Table:
    """One generated file: its path below the root of the tree, its text, and
    the figures that tell a reader how large it is."""

    path: str
    text: str
    figures: str


def fail(path, number, message):
    sys.exit(f"{path}:{number}: {message}")


# --- Reading ----------------------------------------------------------------


def read_fields(path, count, separator=";"):
    """Yields (line number, fields) for each line that is neither empty nor a
    comment. Every line has exactly count fields and none is empty; separator
    None splits at white space."""
    for number, raw in enumerate(Path(path).read_bytes().split(b"\n"), 1):
        try:
            line = raw.decode("utf-8").split("#")[0].strip()
        except UnicodeDecodeError:
            fail(path, number, "not UTF-8")
        if not line:
            continue
        fields = [field.strip() for field in line.split(separator)]
        if len(fields) != count or not all(fields):
            fail(path, number, f"expected {count} fields: {line!r}")
        yield number, fields


def parse_hex(path, number, text, digits, limit):
    """A bare upper-case hexadecimal number with a digit count in the range
    digits (least, most) that is below limit."""
    if not re.fullmatch(f"[0-9A-F]{{{digits[0]},{digits[1]}}}", text):
        fail(path, number, f"not a number of {digits[0]} to {digits[1]} hexadecimal digits: {text!r}")
    value = int(text, 16)
    if value >= limit:
        fail(path, number, f"{text} is out of range")
    return value


def parse_code_point(path, number, text):
    return parse_hex(path, number, text, (4, 6), CODE_SPACE)


def parse_range(path, number, text):
    """first..last or one code point, as a Python range."""
    first, dots, last = text.partition("..")
    begin = parse_code_point(path, number, first)
    end = parse_code_point(path, number, last) if dots else begin
    if dots and end <= begin:
        fail(path, number, f"the range {text} is not ascending")
    return range(begin, end + 1)


def read_partition(path, values):
    """A file of "first..last ; value" lines that gives every code point exactly
    one of the known values; returns the value of each code point."""
    table = [None] * CODE_SPACE
    for number, (span, value) in read_fields(path, 2):
        if value not in values:
            fail(path, number, f"unknown value {value!r}")
        for code_point in parse_range(path, number, span):
            if table[code_point] is not None:
                fail(path, number, f"U+{code_point:04X} is listed twice")
            table[code_point] = value
    if None in table:
        sys.exit(f"{path}: U+{table.index(None):04X} has no value")
    return table


def read_properties(path, names):
    """A file of "first..last ; property" lines; returns the set of code points
    of each of the known properties, all of which must be present."""
    sets = {name: set() for name in names}
    for number, (span, name) in read_fields(path, 2):
        if name not in sets:
            fail(path, number, f"unknown property {name!r}")
        for code_point in parse_range(path, number, span):
            if code_point in sets[name]:
                fail(path, number, f"U+{code_point:04X} is listed twice as {name}")
            sets[name].add(code_point)
    for name, members in sets.items():
        if not members:
            sys.exit(f"{path}: no code point is {name}")
    return sets


def read_mappings(path, columns):
    """A file of "code point ; result ; ..." lines with the given number of
    results; returns a dictionary from code points to tuples of results."""
    table = {}
    for number, fields in read_fields(path, columns + 1):
        key, *results = (parse_code_point(path, number, field) for field in fields)
        if key in table:
            fail(path, number, f"U+{key:04X} is mapped twice")
        table[key] = tuple(results)
    if not table:
        sys.exit(f"{path}: no mappings")
    return table


# --- Two-stage layout -------------------------------------------------------


def distinct_blocks(values, size):
    """Cuts values into blocks of the given size; returns the number of each
    block's content, and the distinct contents in the order of appearance."""
    if len(values) % size:
        sys.exit(f"{len(values)} values are not whole blocks of {size}")
    numbers = {}
    index = [numbers.setdefault(tuple(values[start:start + size]), len(numbers))
             for start in range(0, len(values), size)]
    return index, list(numbers)


@dataclass(frozen=True)
class Blocks:
    """An index with the position in data of the entries of each block of keys,
    2^bits in number; firsts are the first keys of the blocks in data. As C++
    arrays, both end with padding zeros more."""

    bits: int
    index: list
    data: list
    firsts: list
    padding: int

    def size(self, entry_bytes):
        return (2 * (len(self.index) + self.padding)
                + entry_bytes * (len(self.data) + self.padding))

    def arrays(self, name, element, entry_text, digits):
        """The C++ arrays <name>_index and <name>_data; each row ends
        with its first key as a comment."""

        zeros = [0] * self.padding
        firsts = [*self.firsts, len(self.index) << self.bits]

        def key(position):
            return firsts[position >> self.bits] + position % (1 << self.bits)

        return [
            cpp_array("std::uint16_t", f"{name}_index",
                      [f"0x{entry:04X}" for entry in self.index + zeros], 16,
                      lambda position: f"{position << self.bits:0{digits}X}"),
            cpp_array(element, f"{name}_data",
                      [entry_text(entry) for entry in self.data + zeros], 16,
                      lambda position: f"{key(position):0{digits}X}"),
        ]


def sparse_blocks(values, last, bits, missing, padding=0, limit=0xFFFF,
                  special=lambda first: None):
    """Blocks for the keys from 0 to last. values has the mapped keys; the others
    in their blocks get missing. A block without a mapped key has the index entry
    0xFFFF and no data; nor has one for which special(first key) is an index
    entry. Positions are below limit."""
    index, data, firsts = [], [], []
    for first in range(0, last + 1, 1 << bits):
        keys = range(first, first + (1 << bits))
        entry = special(first)
        if entry is None and any(key in values for key in keys):
            entry = len(data)
            if entry >= limit:
                sys.exit(f"data from position {entry:04X} on is out of reach")
            data += [values.get(key, missing) for key in keys]
            firsts.append(first)
        index.append(0xFFFF if entry is None else entry)
    return Blocks(bits, index, data, firsts, padding)


# --- C++ --------------------------------------------------------------------


def sha256_head(path):
    return hashlib.sha256(Path(path).read_bytes()).hexdigest()[:16]


def cpp_file(generator, sources, header, namespace, arrays, root=ROOT):
    """A source file that defines the arrays and says what it was made from.
    sources are paths below root, none for a table of computed facts; header is what a
    quoted include names."""
    lines = [f"// Generated by tools/tablegen/{generator}" + (" from" if sources else ".")]
    lines += [f"//   {source} (sha256 {sha256_head(root / source)})" for source in sources]
    lines += ["// Do not edit.", "", f'#include "{header}"', "", "// clang-format off",
              f"namespace {namespace} {{", ""]
    lines += [array + "\n" for array in arrays]
    lines += [f"}}  // namespace {namespace}", ""]
    return "\n".join(lines)


def cpp_array(element, name, items, columns, row_label=None):
    """items are the elements' texts; row_label(index of the row's first
    element) ends each row as a comment."""
    rows = []
    for start in range(0, len(items), columns):
        row = "    " + ", ".join(items[start:start + columns]) + ","
        if row_label is not None:
            row += f"  // {row_label(start)}"
        rows.append(row)
    return "\n".join([f"constexpr {element} {name}[{len(items)}] = {{", *rows, "};"])
