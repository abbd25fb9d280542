#!/usr/bin/env python3
"""The generators refuse data that they do not understand."""

import shutil
import tempfile
import unittest
from pathlib import Path

import classification
import companion
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


class Generators(TemporaryTree):
    """Well-formed data that contradicts what a table relies on."""

    def changed_tree(self, path, old, new):
        shutil.rmtree(self.root / "data", ignore_errors=True)
        shutil.copytree(tablegen.ROOT / "data/unicode", self.root / "data/unicode")
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


class Layout(unittest.TestCase):
    def test_distinct_blocks(self):
        self.assertEqual(tablegen.distinct_blocks([1, 2, 3, 3, 1, 2], 2),
                         ([0, 1, 0], [(1, 2), (3, 3)]))
        with self.assertRaises(SystemExit):
            tablegen.distinct_blocks([1, 2, 3], 2)

    def test_array(self):
        self.assertEqual(tablegen.cpp_array("int", "a", ["1", "2", "3"], 2, lambda i: f"from {i}"),
                         "constexpr int a[3] = {\n    1, 2,  // from 0\n    3,  // from 2\n};")


if __name__ == "__main__":
    unittest.main()
