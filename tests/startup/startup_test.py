"""What the library does while it is loaded: the choice of the default charset from the
environment, and its readiness for static objects of the program."""

import argparse
import os
import subprocess
import sys
import unittest

PROGRAMS = argparse.Namespace()


def run(program, *arguments, **variables):
    """The lines that a program prints, in an environment without locale but these variables."""
    environment = {
        name: value
        for name, value in os.environ.items()
        if not name.startswith("LC_") and name not in ("LANG", "KIV_DEFAULT_CHARSET")
    }
    done = subprocess.run(
        [program, *arguments], env=environment | variables, capture_output=True, timeout=60
    )
    if done.returncode != 0:
        raise AssertionError(f"{program} returned {done.returncode}: {done.stdout} {done.stderr}")
    return done.stdout.decode().splitlines()


class DefaultCharset(unittest.TestCase):
    def expect(self, wanted, **variables):
        with self.subTest({name: value[:40] for name, value in variables.items()}):
            known, default = run(PROGRAMS.default_charset, wanted, **variables)
            self.assertEqual((known, default), (wanted, wanted))

    def test_variable(self):
        for value, wanted in (
            ("Latin 01", "ISO-8859-1"),
            ("default", "US-ASCII"),
            ("no-such-charset", "US-ASCII"),
            ("-", "US-ASCII"),
            (b"\xff\xfelatin\xe91\x80", "ISO-8859-1"),  # what is not ASCII does not count
            ("-" * 100_000 + "utf-" + "0" * 10_000 + "8", "UTF-8"),
        ):
            self.expect(wanted, KIV_DEFAULT_CHARSET=value, LC_ALL="xx_XX.CP1252")

    def test_locale(self):
        for codeset, wanted in (
            ("TIS-620", "windows-874"),
            ("SHIFT_JIS", "Windows-31J"),
            ("GBK", "x-mswin-936"),
            ("EUC-KR", "x-windows-949"),
            ("big5", "Big5"),
            *((f"CP{n}", f"windows-{n}") for n in range(1250, 1259)),
            *((other, "US-ASCII") for other in ("CP437", "KOI8-R", "ISO-8859-1", "UTF-8", "")),
        ):
            self.expect(wanted, LC_ALL="xx_XX." + codeset)
        for name in ("C", "C.UTF-8", "xx_XX", "xx_XX@euro", "\u00e9." * 1000):
            self.expect("US-ASCII", LC_ALL=name)
        self.expect("US-ASCII")

    def test_precedence(self):
        latin, cyrillic = "xx_XX.CP1252@modifier", "xx_XX.cp1251"
        self.expect("windows-1252", KIV_DEFAULT_CHARSET="", LC_ALL=latin)
        self.expect("windows-1252", LC_ALL=latin, LC_CTYPE=cyrillic, LANG=cyrillic)
        self.expect("windows-1252", LC_ALL="", LC_CTYPE=latin, LANG=cyrillic)
        self.expect("windows-1252", LC_CTYPE="", LANG=latin, LC_NUMERIC=cyrillic)
        self.expect("US-ASCII", KIV_DEFAULT_CHARSET="us", LC_ALL=latin)
        self.expect("Big5-HKSCS", KIV_DEFAULT_CHARSET="big5hk", LC_ALL=latin)


class StaticObjects(unittest.TestCase):
    def test_construction_and_destruction(self):
        for program in PROGRAMS.static_objects:
            with self.subTest(program):
                self.assertEqual(run(program), ["constructed", "main", "destroyed"])


class Loading(unittest.TestCase):
    def test_load_and_unload(self):
        if not PROGRAMS.load_and_unload:
            self.skipTest("the library is not shared")
        self.assertEqual(run(*PROGRAMS.load_and_unload), ["unloaded"])


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--default-charset", required=True)
    parser.add_argument("--static-objects", nargs="+", required=True)
    parser.add_argument("--load-and-unload", nargs=2, metavar=("PROGRAM", "LIBRARY"))
    PROGRAMS, rest = parser.parse_known_args()
    unittest.main(argv=[sys.argv[0], *rest])
