"""Reads data/charset/<name>.txt, the mapping of a charset:

    80 <-> 20AC                      both ways
    A1A1 <-> 3000 3001 E000..E003    each further code point belongs to the
                                     sequence whose last byte is one higher
    8790 -> 2252                     decoding only
    FEFD <- FFFD                     encoding only
    delta 815C <-> 2014  # reason    a difference from the published mapping
    delta FF undefined   # reason

in the order of the bytes; lines that only encode come later, then deltas.
"""

import re
from dataclasses import dataclass
from pathlib import Path

import tablegen

OPERATORS = BOTH_WAYS, DECODE_ONLY, ENCODE_ONLY = "<->", "->", "<-"
UNDEFINED = "undefined"
ASCII = range(0x80)


@dataclass(frozen=True)
class Mapping:
    path: Path
    decode: dict  # byte sequence -> code point
    encode: dict  # code point -> byte sequence; every decoded one is in it

    def duplicates(self):
        """The sequences whose character is encoded as another sequence."""
        return [sequence for sequence, code_point in self.decode.items()
                if self.encode[code_point] != sequence]

    def one_way(self):
        """The code points that are encoded but not decoded back."""
        return [code_point for code_point, sequence in self.encode.items()
                if self.decode.get(sequence) != code_point]

    def expect(self, **figures):
        """Refuses figures that differ: name=(what the data gives, what is right)."""
        for name, (found, right) in figures.items():
            if found != right:
                raise SystemExit(f"{self.path}: {name.replace('_', ' ')}: "
                                 f"{found} instead of {right}")


class Reader:
    def __init__(self, path):
        self.path = path
        self.number = 0  # of the line
        self.decode = {}
        self.encode = {}
        self.lines = {}  # decoded sequence -> line number
        self.latest = (0, b"")  # the kind of the line before, its sequence

    def fail(self, message):
        tablegen.fail(self.path, self.number, message)

    def parse_run(self, fields, operators):
        """The operator, and pairs of a sequence and its code point."""
        first, operator, *items = fields if len(fields) > 1 else ("", "")
        if operator not in operators or (operator == UNDEFINED) == bool(items):
            self.fail(f"not a mapping: {' '.join(fields)!r}")
        if not re.fullmatch("[0-9A-F]{2}|[0-9A-F]{4}|[0-9A-F]{8}", first):
            self.fail(f"not a sequence of 1, 2 or 4 bytes: {first!r}")
        first = bytes.fromhex(first)
        if operator == UNDEFINED:
            return operator, [(first, None)]
        code_points = []
        for item in items:
            code_points += tablegen.parse_range(self.path, self.number, item)
        if any(0xD800 <= code_point <= 0xDFFF for code_point in code_points):
            self.fail(f"a surrogate: {' '.join(items)!r}")
        if first[-1] + len(code_points) > 0x100:
            self.fail("the last byte runs past FF")
        return operator, [(first[:-1] + bytes([first[-1] + position]), code_point)
                          for position, code_point in enumerate(code_points)]

    def read_line(self, fields, comment):
        if fields[0] == "delta":
            if not comment.strip():
                self.fail("a delta without a reason")
            operator, pairs = self.parse_run(fields[1:], (*OPERATORS, UNDEFINED))
            self.latest = 2, b""
            for pair in pairs:
                self.change(operator, *pair)
            return
        operator, pairs = self.parse_run(fields, OPERATORS)
        one_way = operator == ENCODE_ONLY
        if (one_way, pairs[0][0]) < self.latest:
            self.fail(f"{fields[0]} is out of order")
        # Several code points may encode to one sequence, so these runs may overlap.
        self.latest = int(one_way), pairs[0 if one_way else -1][0]
        for sequence, code_point in pairs:
            if not one_way and sequence in self.decode:
                self.fail(f"{sequence.hex().upper()} is mapped twice")
            if operator != DECODE_ONLY and code_point in self.encode:
                self.fail(f"U+{code_point:04X} is mapped twice")
            if one_way and self.decode.get(sequence) == code_point:
                self.fail(f"U+{code_point:04X} is not one-way")
            self.change(operator, sequence, code_point)

    def change(self, operator, sequence, code_point):
        old = self.decode.get(sequence)
        before = old, self.encode.get(old), self.encode.get(code_point)
        if operator != ENCODE_ONLY:
            if self.encode.get(old) == sequence:
                del self.encode[old]
            self.decode.pop(sequence, None)
        if operator in (BOTH_WAYS, DECODE_ONLY):
            self.decode[sequence] = code_point
            self.lines[sequence] = self.number
        if operator in (BOTH_WAYS, ENCODE_ONLY):
            self.encode[code_point] = sequence
        if before == (self.decode.get(sequence), self.encode.get(old),
                      self.encode.get(code_point)):
            self.fail(f"nothing changes at {sequence.hex().upper()}")


def read(path):
    reader = Reader(path)
    for reader.number, raw in enumerate(Path(path).read_bytes().split(b"\n"), 1):
        if not raw.isascii():
            reader.fail("not ASCII")
        text, _, comment = raw.decode("ascii").partition("#")
        if text.strip():
            reader.read_line(text.split(), comment)
    for sequence, code_point in reader.decode.items():
        if reader.decode.get(reader.encode.get(code_point)) != code_point:
            tablegen.fail(path, reader.lines[sequence], f"U+{code_point:04X} has no round trip")
    for byte in ASCII:
        if reader.decode.get(bytes([byte])) != byte or reader.encode[byte] != bytes([byte]):
            raise SystemExit(f"{path}: {byte:02X} is not U+{byte:04X} both ways")
    return Mapping(path, reader.decode, reader.encode)
