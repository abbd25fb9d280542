#!/usr/bin/env python3
"""The generators refuse data that they do not understand."""

import shutil
import tempfile
import unittest
from pathlib import Path

import charset_mapping
import classification
import companion
import dbcs
import gb18030
import sbcs
import tablegen

GOOD = ["0000..0040 ; Cc", "0041 ; Lu", "0042..10FFFF ; Cn"]
VALUES = {"Cc", "Lu", "Cn"}


class TemporaryTree(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)

    def write(self, content):
        path = self.root / "file.txt"
        path.write_bytes(content if isinstance(content, bytes) else "\n".join(content).encode())
        return path

    def assert_refused(self, pattern, function, *arguments):
        with self.assertRaises(SystemExit) as caught:
            function(*arguments)
        self.assertRegex(str(caught.exception), pattern)


class Readers(TemporaryTree):
    def test_partition(self):
        table = tablegen.read_partition(self.write(["# about", "", *GOOD]), VALUES)
        self.assertEqual([table[0], table[0x40], table[0x41], table[0x42], table[-1]],
                         ["Cc", "Cc", "Lu", "Cn", "Cn"])

    def test_partition_refusals(self):
        rows = [
            (["0040 ; Lu"], r"file.txt:4: U\+0040 is listed twice"),
            (["0030..0050 ; Lu"], r"file.txt:4: U\+0030 is listed twice"),
            (["110000 ; Cn"], r"file.txt:4: 110000 is out of range"),
            (["10FFF0..110000 ; Cn"], r"file.txt:4: 110000 is out of range"),
            (["0050..0041 ; Lu"], "file.txt:4: the range .* is not ascending"),
            (["0041.0042 ; Lu"], "file.txt:4: not a number"),
            (["0041...0042 ; Lu"], "file.txt:4: not a number"),
            (["0041.. ; Lu"], "file.txt:4: not a number"),
            (["U+0041 ; Lu"], "file.txt:4: not a number"),
            (["004g ; Lu"], "file.txt:4: not a number"),
            (["41 ; Lu"], "file.txt:4: not a number"),
            (["00000041 ; Lu"], "file.txt:4: not a number"),
            (["-041 ; Lu"], "file.txt:4: not a number"),
            (["\u0660\u0660\u0660\u0660 ; Lu"], "file.txt:4: not a number"),
            (["0041 ; Xx"], "file.txt:4: unknown value 'Xx'"),
            (["0041 Lu"], "file.txt:4: expected 2 fields"),
            (["0041 ; Lu ; Ll"], "file.txt:4: expected 2 fields"),
            (["0041 ;"], "file.txt:4: expected 2 fields"),
            (["<html>"], "file.txt:4: expected 2 fields"),
        ]
        for extra, pattern in rows:
            with self.subTest(extra):
                path = self.write(GOOD + extra)
                self.assert_refused(pattern, tablegen.read_partition, path, VALUES)

    def test_partition_needs_every_code_point(self):
        for lines, pattern in [(GOOD[:2], r"U\+0042 has no value"), ([], r"U\+0000 has no value")]:
            self.assert_refused(pattern, tablegen.read_partition, self.write(lines), VALUES)

    def test_bytes_that_are_no_text(self):
        self.assert_refused("file.txt:2: not UTF-8", tablegen.read_partition,
                            self.write(b"0000 ; Cc\n0001 ; \xFF\n"), VALUES)

    def test_properties(self):
        path = self.write(["0041..0043 ; A", "0042 ; B"])
        self.assertEqual(tablegen.read_properties(path, ["A", "B"]),
                         {"A": {0x41, 0x42, 0x43}, "B": {0x42}})
        self.assert_refused("unknown property 'B'", tablegen.read_properties, path, ["A"])
        self.assert_refused("no code point is C", tablegen.read_properties, path, ["A", "B", "C"])
        path = self.write(["0041..0043 ; A", "0043 ; A"])
        self.assert_refused(r"file.txt:2: U\+0043 is listed twice as A",
                            tablegen.read_properties, path, ["A"])

    def test_mappings(self):
        path = self.write(["0041 ; 0061 ; 0041"])
        self.assertEqual(tablegen.read_mappings(path, 2), {0x41: (0x61, 0x41)})
        self.assert_refused("expected 4 fields", tablegen.read_mappings, path, 3)
        for lines, pattern in [
            (["0041 ; 0061", "0041 ; 0062"], r"file.txt:2: U\+0041 is mapped twice"),
            (["0041 ; 110000"], "file.txt:1: 110000 is out of range"),
            (["0041..0042 ; 0061"], "file.txt:1: not a number"),
            ([], "no mappings"),
        ]:
            with self.subTest(lines):
                self.assert_refused(pattern, tablegen.read_mappings, self.write(lines), 1)


class CharsetReader(TemporaryTree):
    BASE = ["# about", "00 <-> 0000..007F", "80 <-> 20AC", "8140 <-> 3000 4E00..4E02 3001",
            "8145 -> 4E01", "5C <- 00A5"]

    def read(self, *lines):
        return charset_mapping.read(self.write([*self.BASE, *lines]))

    def test_mappings(self):
        mapping = self.read("5C <- 00A6 00A7")  # to one sequence from two code points
        self.assertEqual([*mapping.decode.items()][0x80:], [(b"\x80", 0x20AC), *(
            (bytes([0x81, 0x40 + at]), code_point) for at, code_point in
            enumerate([0x3000, 0x4E00, 0x4E01, 0x4E02, 0x3001, 0x4E01]))])
        self.assertEqual(mapping.encode[0x4E01], b"\x81\x42")
        self.assertEqual(mapping.duplicates(), [b"\x81\x45"])
        self.assertEqual([(unit, mapping.encode[unit]) for unit in mapping.one_way()],
                         [(0xA5, b"\\"), (0xA6, b"\\"), (0xA7, b"]")])

    @staticmethod
    def changes(old, new):
        return {key: new.get(key) for key in old.keys() | new if old.get(key) != new.get(key)}

    def test_deltas(self):
        base = self.read()
        for lines, decode, encode in [  # what they change; None is no mapping
            (["8146 <-> 00B7"], {"8146": 0xB7}, {0xB7: "8146"}),
            (["8144 <-> 00B7"], {"8144": 0xB7}, {0xB7: "8144", 0x3001: None}),
            (["8144 -> 3000"], {"8144": 0x3000}, {0x3001: None}),
            (["8145 <- 4E01"], {}, {0x4E01: "8145"}),
            (["8142 undefined", "8145 <-> 4E01"], {"8142": None}, {0x4E01: "8145"}),
            (["80 undefined"], {"80": None}, {0x20AC: None}),
            (["A1 <-> 00B7 00B8"], {"A1": 0xB7, "A2": 0xB8}, {0xB7: "A1", 0xB8: "A2"}),
        ]:
            with self.subTest(lines):
                mapping = self.read(*(f"delta {line} # reason" for line in lines))
                self.assertEqual(self.changes(base.decode, mapping.decode),
                                 {bytes.fromhex(key): value for key, value in decode.items()})
                self.assertEqual(self.changes(base.encode, mapping.encode),
                                 {key: value and bytes.fromhex(value)
                                  for key, value in encode.items()})

    def test_refusals(self):
        for line, pattern in [
            *((line, "not a mapping") for line in (
                "80", "80 20AC", "80 <->", "80 undefined", "delta 80 undefined 20AC # r")),
            ("8 <- 20AD", "not a sequence"), ("814000 <- 20AD", "not a sequence"),
            ("a1 <- 20AD", "not a sequence"), ("A1 <- AD", "not a number"),
            ("A1 <- 20AD..20AC", "not ascending"), ("A1 <- 110000", "out of range"),
            ("A1 <- D7FF..D801", "a surrogate"), ("FE <- E000..E002", "runs past FF"),
            ("A1 <-> 20AD", "A1 is out of order"), ("5B <- 20AD", "5B is out of order"),
            ("80 <- 00A5", r"U\+00A5 is mapped twice"), ("A1 <- 20AD 20AD", r"U\+20AD is mapped"),
            ("delta A1 <-> 20AD", "without a reason"), ("delta A1 <-> 20AD #", "without a reason"),
            *((f"delta {change} # r", "nothing changes") for change in (
                "80 <-> 20AC", "8145 -> 4E01", "5C <- 00A5", "A1 undefined", "80 <-> 20AC 20AD")),
        ]:
            with self.subTest(line):
                self.assert_refused(f"file.txt:7: .*{pattern}", self.read, line)
        for lines, pattern in [
            (["delta A1 <-> 20AD # r", "A2 <- 20AE"], "file.txt:8: A2 is out of order"),
            (["delta A1 -> 20AD # r"], r"file.txt:7: U\+20AD has no round trip"),
            (["delta 80 -> 20AC # r"], r"file.txt:7: U\+20AC has no round trip"),
            (["delta 8142 undefined # r"], r"file.txt:5: U\+4E01 has no round trip"),
            (["delta 5C undefined # r"], r"5C is not U\+005C both ways"),
        ]:
            self.assert_refused(pattern, self.read, *lines)
        for lines, pattern in [
            (["80 <-> 20AC", "80 <-> 20AD"], "file.txt:2: 80 is mapped twice"),
            (["80 <-> 20AC 20AD", "81 <-> 20AE"], "file.txt:2: 81 is mapped twice"),
            (["80 <-> 20AC", "81 <-> 20AC"], r"file.txt:2: U\+20AC is mapped twice"),
            (["81 <-> 20AC", "80 <-> 20AD"], "file.txt:2: 80 is out of order"),
            (["80 <-> 20AC", "81 -> 20AC", "81 <- 20AC"], r"file.txt:3: U\+20AC is mapped twice"),
            (["80 -> 20AC", "80 <- 20AC"], r"file.txt:2: U\+20AC is not one-way"),
            ([], r"00 is not U\+0000 both ways"), (["\u0660"], "file.txt:1: not ASCII"),
        ]:
            self.assert_refused(pattern, charset_mapping.read, self.write(lines))


class Generators(TemporaryTree):
    """Well-formed data that contradicts what a table relies on."""

    def changed_tree(self, path, old, new):
        shutil.rmtree(self.root / "data", ignore_errors=True)
        shutil.copytree((tablegen.ROOT / path).parent, (self.root / path).parent)
        text = (self.root / path).read_text(encoding="utf-8")
        self.assertEqual(text.count(old), 1, old)
        (self.root / path).write_text(text.replace(old, new), encoding="utf-8")
        return self.root

    def test_classification(self):
        for old, new, pattern in [
            ("\n0030..0039 ; Nd\n", "\n0030..0039 ; No\n", r"U\+0030 is .* decimal digit"),
            ("\n00AD ; Cf\n", "\n00AD ; Po\n", r"U\+00AD is .* control"),
            ("\n01C5 ; Lt\n", "\n01C5 ; Lu\n", r"U\+01C5 is .* title case"),
            ("\n2028 ; Zl\n", "\n2028 ; Zs\n", r"U\+2028 is .* space that is not blank"),
            ("\n0600..0603 ; Cf\n", "\n0600..0603 ; Cn\n", r"U\+0600 is .* control"),
            # A unit unlike the others of its block costs one more run.
            ("\n10A0..10C5 ; Lu\n", "\n10A0..10A4 ; Lu\n10A5 ; Ll\n10A6..10C5 ; Lu\n",
             "367 runs instead of 366"),
        ]:
            with self.subTest(new):
                root = self.changed_tree(classification.SOURCE, old, new)
                self.assert_refused(pattern, classification.generate, root)

    def test_digits_that_are_no_set_of_ten(self):
        root = self.changed_tree(companion.CATEGORIES, "\n0660..0669 ; Nd\n",
                                 "\n0660..0668 ; Nd\n0669 ; No\n")
        self.assert_refused(r"digits from U\+0660 on are not a set of ten",
                            companion.generate, root)

    def test_mapping_to_itself(self):
        root = self.changed_tree(companion.CASE_MAPPINGS, "\n0041 ; 0061 ; 0041 ; 0041\n",
                                 "\n0041 ; 0041 ; 0041 ; 0041\n")
        self.assert_refused(r"U\+0041 is listed but maps to itself", companion.generate, root)


    def test_charsets(self):
        charsets = {charset.source: (module.make, charset) for module in (sbcs, dbcs)
                    for charset in module.CHARSETS}
        for name, deltas, pattern in [
            ("ISO-8859-2", ["FF undefined"], "undefined bytes: 1 instead of 0"),
            ("ISO-8859-2", ["FF <-> 20AC"], "highest code point: 20AC instead of 02DD"),
            ("ISO-8859-2", ["FF <- 0100"], "one way entries: 1 instead of 0"),
            ("ISO-8859-2", ["FF -> 0041"], "duplicates: 1 instead of 0"),
            ("ISO-8859-2", ["FF41 <- 0100"], "bytes of a sequence: 2 instead of 1"),
            ("Windows-31J", ["81 <- F8F0"], "81 is no sequence"),
            ("Windows-31J", ["817F <- F8F0"], "817F is no sequence"),
            ("Windows-31J", ["A040 <- F8F0"], "A040 is no sequence"),
            ("Windows-31J", ["81408140 <- F8F0"], "81408140 is no sequence"),
            ("Windows-31J", ["8140 <- FFE6"], "highest code point: FFE6 instead of FFE5"),
            ("Big5", ["A1C3 -> 4E00"], "13709 two-byte, 6 duplicate instead of 13708 two-byte"),
            ("GB18030", ["817F -> 0080"], "817F is no sequence"),
            ("GB18030", ["8431A439 undefined"], "63359.* instead of .*63360"),
            # One uniform block fewer of an offset that just so many have.
            ("GB18030", ["8233A736 <-> 44FD", "8233A737 <-> 44FC"], "shared offsets"),
        ]:
            make = charsets.get(name, (lambda _, root: gb18030.generate(root), None))
            path = f"data/charset/{name}.txt"
            text = (tablegen.ROOT / path).read_text(encoding="ascii")
            changed = text + "".join(f"delta {change} # r\n" for change in deltas)
            with self.subTest((name, deltas)):
                self.assert_refused(pattern, make[0], make[1],
                                    self.changed_tree(path, text, changed))


class Layout(unittest.TestCase):
    def test_distinct_blocks(self):
        self.assertEqual(tablegen.distinct_blocks([1, 2, 3, 3, 1, 2], 2),
                         ([0, 1, 0], [(1, 2), (3, 3)]))
        with self.assertRaises(SystemExit):
            tablegen.distinct_blocks([1, 2, 3], 2)

    def test_sparse_blocks(self):
        blocks = tablegen.sparse_blocks({5: 50, 6: 60, 8: 1, 13: 7}, 14, 2, -1, 1, 8,
                                        {8: 0xFFFE}.get)
        self.assertEqual((blocks.index, blocks.data),
                         ([0xFFFF, 0, 0xFFFE, 4], [-1, 50, 60, -1, -1, 7, -1, -1]))
        self.assertEqual(blocks.arrays("x", "int", str, 2)[1].split("\n"),
                         ["constexpr int x_data[9] = {",
                          "    -1, 50, 60, -1, -1, 7, -1, -1, 0,  // 04", "};"])
        self.assertRaises(SystemExit, tablegen.sparse_blocks, {0: 1, 1: 1, 2: 1}, 2, 0, -1, 0, 2)

    def test_array(self):
        self.assertEqual(tablegen.cpp_array("int", "a", ["1", "2", "3"], 2, lambda i: f"from {i}"),
                         "constexpr int a[3] = {\n    1, 2,  // from 0\n    3,  // from 2\n};")


if __name__ == "__main__":
    unittest.main()
