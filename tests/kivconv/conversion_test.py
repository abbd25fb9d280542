#!/usr/bin/env python3
"""What kivconv writes, and where and how it reports what does not convert."""
import random
import select
import subprocess
import unittest

from program import (BLOCK, CHARSETS, NATIONAL, ProgramTest, characters_of, encode, feed, run,
                     start)

# Where a fault or a cut is put in the input: at its start, about the block
# boundary, and some blocks in.
PADDINGS = [0, 1, BLOCK - 3, BLOCK - 2, BLOCK - 1, BLOCK, BLOCK + 1, BLOCK + 3,
            3 * BLOCK + 17]


def random_text(seed, charset_limit, length):
    """Runs of characters from one range each, as texts have them."""
    ranges = [r for r in [(0x20, 0x7E), (0xA0, 0xFF), (0x370, 0x7FF), (0x800, 0xD7FF),
                          (0xE000, 0xFDFF), (0x10000, 0x10FFFF)] if r[0] <= charset_limit]
    chooser = random.Random(seed)
    text = []
    while len(text) < length:
        low, high = chooser.choice(ranges)
        text += [chr(chooser.randint(low, high)) for _ in range(chooser.randint(1, 40))]
    return "".join(text)


def national_text(*charsets):
    """Words of ASCII and of characters that all the charsets have."""
    chooser = random.Random(" ".join(charsets))
    common = set.intersection(*(set(characters_of(charset)) for charset in charsets))
    alphabets = ["etaoin shrdlu", sorted(common) or "0123456789"]
    return "".join(letter for _ in range(10000) for letter in
                   chooser.choices(chooser.choice(alphabets), k=chooser.randint(1, 20)))


def limit_of(*charsets):
    limits = {"US-ASCII": 0x7E, "ISO-8859-1": 0xFF, "GB18030": 0x10FFFF}
    limits |= {charset: 0x7E for charset in NATIONAL if charset not in limits}
    return min(limits.get(charset, 0x10FFFF) for charset in charsets)


class ValidText(ProgramTest):
    def test_every_pair_of_charsets(self):
        for source in CHARSETS:
            for target in CHARSETS:
                text = random_text(f"{source} {target}", limit_of(source, target), 90000)
                data = encode(text, source)
                with self.subTest(source=source, target=target):
                    result = run("-f", source, "-t", target, stdin=data)
                    self.expect(result, 0, encode(text, target), "")
                    if "CESU-8" not in (source, target):
                        peer = subprocess.run(["iconv", "-f", source, "-t", target],
                                              input=data, capture_output=True, check=True)
                        self.assertEqual(result.out, peer.stdout)

    def test_national_charsets(self):
        for source, target in zip(NATIONAL, NATIONAL[1:] + NATIONAL[:1]):
            text = national_text(source)
            self.assertGreater(len(set(text)), 60, source)
            for text, start, end in [(text, source, "UTF-8"), (text, "UTF-8", source),
                                     (national_text(source, target), source, target)]:
                with self.subTest(source=start, target=end):
                    result = run("-f", start, "-t", end, stdin=encode(text, start))
                    self.expect(result, 0, encode(text, end), "")

    def test_characters_across_the_block_boundary(self):
        for source, target, characters in [
                ("UTF-8", "UTF-16LE", "é€\U0001F600"), ("CESU-8", "UTF-8", "é€\U0001F600"),
                ("UTF-16BE", "UTF-8", "é€\U0001F600"), ("UTF-16LE", "CESU-8", "é€\U0001F600"),
                ("Shift_JIS", "UTF-8", "ア漢"), ("GB18030", "UTF-16BE", "汉é\U0001F600"),
                ("Big5-HKSCS", "GB18030", "字\U00020547"), ("x-windows-949", "Big5", "漢")]:
            unit = len(encode("x", source))
            for character in characters:
                for padding in range(BLOCK - 8, BLOCK + 3):
                    text = "x" * (padding // unit) + character * 3 + "y"
                    result = run("-f", source, "-t", target, stdin=encode(text, source))
                    with self.subTest(source=source, character=character, padding=padding):
                        self.expect(result, 0, encode(text, target), "")

    def test_input_that_comes_in_pieces(self):
        text = "aé€\U0001F600\U0010FFFFz"
        for source in ["UTF-8", "CESU-8", "UTF-16BE", "UTF-16LE"]:
            data = encode(text, source)
            for cut in range(1, len(data)):
                process = start("-f", source, "-t", "UTF-8", stdout=subprocess.PIPE)
                with self.subTest(source=source, cut=cut):
                    feed(process, data[:cut])
                    out, _ = process.communicate(data[cut:], timeout=60)
                    self.assertEqual((process.returncode, out), (0, text.encode()))

    def test_nothing_waits_for_more_input(self):
        process = start("-t", "UTF-16BE", stdout=subprocess.PIPE)
        feed(process, b"ab\xC3")
        ready, _, _ = select.select([process.stdout], [], [], 60)
        if not ready:
            process.kill()
            self.fail("it holds the text back")
        self.assertEqual(process.stdout.read1(100), b"\0a\0b")
        out, _ = process.communicate(b"\xA9", timeout=60)
        self.assertEqual(out, b"\0\xE9")

    def test_ignorable_characters_that_the_target_lacks_are_dropped(self):
        text = "\uFEFFa\u200Db\u00ADc\uFE0F"
        self.expect(run("-t", "ISO-8859-1", stdin=text.encode()), 0, b"ab\xADc", "")
        self.expect(run("-t", "UTF-16BE", stdin=text.encode()), 0,
                    text.encode("utf-16-be"), "")


# From, to, the fault, what is reported of it: the bytes and the reason.
FAULTS = [
    ("UTF-8", "UTF-16LE", b"\x80", "80 is not UTF-8: the byte 80 can only continue"),
    ("UTF-8", "UTF-16LE", b"\xF8", "F8 is not UTF-8: the byte F8 never occurs"),
    ("UTF-8", "UTF-16LE", b"\xE2\x28", "E2 28 is not UTF-8: the byte after the lead byte E2 "
                                       "must be 80 to BF"),
    ("UTF-8", "UTF-16LE", b"\xE2\x82\x28", "E2 82 28 is not UTF-8: byte 3 of 3 must be"),
    ("UTF-8", "UTF-16LE", b"\xF0\x9F\x98\x28", "F0 9F 98 28 is not UTF-8: byte 4 of 4 must"),
    ("UTF-8", "UTF-16LE", b"\xC0\x80", "C0 80 is not UTF-8: U+0000 has a shorter form"),
    ("UTF-8", "UTF-16LE", b"\xE0\x9F\xBF", "E0 9F BF is not UTF-8: U+07FF has a shorter form"),
    ("UTF-8", "UTF-16LE", b"\xED\xA0\x80", "ED A0 80 is not UTF-8: U+D800 is half of"),
    ("UTF-8", "UTF-16LE", b"\xF4\x90\x80\x80", "F4 90 80 80 is not UTF-8: U+110000 is beyond"),
    ("CESU-8", "UTF-8", b"\xF0\x9F\x98\x80", "F0 is not CESU-8: characters above U+FFFF are"),
    ("CESU-8", "UTF-8", b"\xED\xB0\x80", "ED B0 80 (U+DC00) is half of a surrogate pair"),
    ("CESU-8", "UTF-8", b"\xED\xA0\xBD", "ED A0 BD (U+D83D) is half of a surrogate pair"),
    ("CESU-8", "UTF-8", b"\xED\xA0\xBD\xFF", "ED A0 BD (U+D83D) is half of a surrogate pair"),
    ("UTF-16BE", "UTF-8", b"\xDC\x00", "DC 00 is not UTF-16BE: a low surrogate must follow a"),
    ("UTF-16BE", "UTF-8", b"\xD8\x00", "D8 00 is not UTF-16BE: a low surrogate (DC00 to DFFF)"),
    ("UTF-16LE", "UTF-8", b"\xFE\xFF", "FE FF is not UTF-16LE: it is a byte-order mark with its "
                                       "bytes swapped; the input may be UTF-16BE"),
    ("US-ASCII", "UTF-8", b"\xE9", "E9 is not US-ASCII: its bytes are 00 to 7F"),
    ("UTF-8", "US-ASCII", "é".encode(), "C3 A9 (U+00E9) cannot be written in US-ASCII"),
    ("UTF-8", "ISO-8859-1", "€".encode(), "E2 82 AC (U+20AC) cannot be written in ISO-8859-1"),
    ("UTF-8", "ISO-8859-1", "\U0001F600".encode(), "F0 9F 98 80 (U+1F600) cannot be written"),
    ("CESU-8", "US-ASCII", encode("\U0001F600", "CESU-8"),
     "ED A0 BD ED B8 80 (U+1F600) cannot be written in US-ASCII"),
    ("UTF-16LE", "US-ASCII", b"\x3D\xD8\x00\xDE", "3D D8 00 DE (U+1F600) cannot be written"),
    ("UTF-16BE", "ISO-8859-1", b"\x20\xAC", "20 AC (U+20AC) cannot be written in ISO-8859-1, "
                                                "which has U+0000 to U+00FF"),
    ("ISO-8859-1", "US-ASCII", b"\xE9", "E9 (U+00E9) cannot be written in US-ASCII"),
    ("windows-1255", "UTF-8", b"\xCA", "CA stands for no character in windows-1255"),
    ("Shift_JIS", "UTF-8", b"\x83\x20", "83 is not Shift_JIS: no character is encoded so"),
    ("Windows-31J", "UTF-8", b"\x85\x40", "85 40 stands for no character in Windows-31J"),
    ("GB18030", "UTF-8", b"\x81\x30\x81\x20", "81 30 81 20 is not GB18030: no character"),
    ("Big5-HKSCS", "Big5", b"\xFA\x40", "FA 40 (U+20547) cannot be written in Big5\n"),
    ("GB18030", "KOI8-R", b"\x90\x30\x81\x30", "90 30 81 30 (U+10000) cannot be written in KOI8-R"),
]

# The same for what only the end of the input makes a fault.
FAULTS_AT_END = [
    ("UTF-8", "UTF-16LE", b"\xE2\x82", "E2 82 is not UTF-8: the input ends within a character "
                                       "of 3 bytes"),
    ("UTF-8", "UTF-16LE", b"\xF0", "F0 is not UTF-8: the input ends within a character of 4"),
    ("UTF-8", "UTF-16LE", b"\xE2\x28", "E2 28 is not UTF-8: the byte after the lead byte E2"),
    ("CESU-8", "UTF-8", b"\xED\xA0\xBD\xED\xB8", "ED A0 BD (U+D83D) is half of a surrogate"),
    ("UTF-16LE", "UTF-8", b"\x41", "41 is not UTF-16LE: the input ends within a unit of 2"),
    ("Shift_JIS", "UTF-8", b"\x83", "83 is not Shift_JIS: the input ends within a character\n"),
    ("GB18030", "UTF-8", b"\x81\x30\x81", "81 30 81 is not GB18030: the input ends within a"),
    ("UTF-16BE", "UTF-8", b"\xD8\x3D", "D8 3D is not UTF-16BE: the input ends within a "
                                       "surrogate pair"),
]


def paddings(source, target):
    """Legal text before a fault: its bytes in the source and in the target."""
    for n in PADDINGS:
        n -= n % len(encode("x", source))
        texts = ["x" * (n // len(encode("x", source)))]
        if limit_of(source, target) > 0xFF:
            # Byte offset and number of units drift apart.
            texts.append("€\U0001F600é" * (n // 9))
        for text in texts:
            yield encode(text, source), encode(text, target)


class Faults(ProgramTest):
    def check(self, source, target, fault, tail, message):
        for before, converted in paddings(source, target):
            self.write("in.txt", before + fault + tail)
            with self.subTest(source=source, fault=message, offset=len(before)):
                result = run("-f", source, "-t", target, "in.txt")
                self.expect(result, 1, converted)
                start_of_message = f"kivconv: in.txt: byte {len(before)}: {message}"
                self.assertEqual(result.err[:len(start_of_message)], start_of_message)

    def test_fault_within_the_text(self):
        for source, target, fault, message in FAULTS:
            self.check(source, target, fault, encode("tail", source), message)

    def test_fault_at_the_end(self):
        for source, target, fault, message in FAULTS_AT_END:
            self.check(source, target, fault, b"", message)

    def test_standard_input_is_named(self):
        self.expect(run("-t", "us-ascii", stdin="abcé".encode()), 1, b"abc",
                    "kivconv: standard input: byte 3: C3 A9 (U+00E9) cannot be written in "
                    "US-ASCII, which has U+0000 to U+007F\n")

    def test_silence(self):
        self.expect(run("-s", "-t", "us-ascii", stdin=b"abc\xC3\xA9"), 1, b"abc", "")
        self.expect(run("-s", "-c", "-t", "us-ascii", stdin=b"abc\xC3\xA9d"), 0, b"abcd", "")


class SkipAndReplace(ProgramTest):
    # Bytes at fault, characters that US-ASCII lacks, and the text between.
    BROKEN = b"a\xFFb" + "é".encode() + b"c\xE2\x28d" + "\U0001F600".encode() + b"e\xE2"

    def test_skip(self):
        summary = ("kivconv: standard input: 5 skipped, first byte 1: FF is not UTF-8: the "
                   "byte FF never occurs in it\n")
        for how in [["-c"], ["--on-error=skip"], ["--on-error", "skip", "-c"]]:
            result = run("-f", "UTF-8", "-t", "US-ASCII", *how, stdin=self.BROKEN)
            self.expect(result, 0, b"abcde", summary)
        self.expect(run("-t", "US-ASCII//IGNORE", stdin=self.BROKEN), 0, b"abcde", summary)

    def test_replace(self):
        result = run("-t", "US-ASCII", "--on-error=replace", stdin=self.BROKEN)
        self.expect(result, 0, b"a?b?c?d?e?", ["5 replaced, first byte 1: FF"])
        result = run("-t", "UTF-8", "--on-error=replace", stdin=self.BROKEN)
        self.expect(result, 0, "a\uFFFDbéc\uFFFDd\U0001F600e\uFFFD".encode(), ["3 replaced"])
        result = run("-t", "UTF-16BE", "--on-error=replace", stdin=b"\x80")
        self.expect(result, 0, b"\xFF\xFD", ["1 replaced: byte 0: 80"])

    def test_replacement_of_any_length(self):
        for text in ["", "_", "[?]", "<" + "-" * 70000 + ">"]:
            result = run("-t", "US-ASCII", "--replacement", text, stdin=self.BROKEN)
            expected = text.join(["a", "b", "c", "d", "e", ""]).encode()
            self.expect(result, 0, expected, ["5 replaced"])
        result = run("-t", "UTF-16LE", "--replacement", "«\U0001F600»", stdin=b"a\xFFb")
        self.expect(result, 0, "a«\U0001F600»b".encode("utf-16-le"))

    def test_replacements_across_the_blocks(self):
        data = (b"x" * 40 + b"\xFF" + "€".encode()) * 5000
        result = run("-t", "ISO-8859-1", "--replacement", "[?]", stdin=data)
        self.expect(result, 0, (b"x" * 40 + b"[?][?]") * 5000,
                    ["10000 replaced, first byte 40: FF"])

    def test_half_pairs_do_not_meet_over_a_fault(self):
        data = b"\xED\xA0\xBD\xFF\xED\xB8\x80"
        self.expect(run("-f", "CESU-8", "-t", "UTF-8", "-c", stdin=data), 0, b"",
                    ["3 skipped, first byte 0: ED A0 BD (U+D83D)"])

    def test_replacement_that_cannot_be_written(self):
        for text, reason in [("a€", "U+20AC cannot be written in US-ASCII"),
                             ("a\u200B", "U+200B cannot be written in US-ASCII"),
                             (b"\xFF", "the text is not UTF-8")]:
            result = run("-t", "US-ASCII", "--replacement", text, stdin=b"abc")
            self.expect(result, 2, b"", ["--replacement: " + reason])


class Usage(ProgramTest):
    def test_wrong_usage(self):
        for args, reason in [
                (["-f", "UTF-16"], "no charset is known as 'UTF-16': did you mean UTF-16BE or "
                                   "UTF-16LE?"),
                (["-t", "no-such"], "no charset is known as 'no-such'"),
                (["-t", "ASCII//TRANSLIT"], "kivconv does not transliterate"),
                (["-t", "ASCII//NONSENSE"], "unknown suffix //NONSENSE"),
                (["--on-error=ignore"], "must be report, replace or skip"),
                (["-c", "--on-error=replace"], "-c contradicts --on-error=replace"),
                (["-c", "--replacement=x"], "only with --on-error=replace"),
                (["--on-error=report", "--replacement=x"], "only with --on-error=replace"),
                (["--no-such-option"], "--no-such-option"),
                (["-f"], "-f"),
                (["-o", ""], "--output")]:
            with self.subTest(args=args):
                self.expect(run(*args, stdin=b"abc"), 2, b"", ["kivconv: ", reason, "--help"])

    def test_default_charsets(self):
        latin1 = b"\xE9"
        for env, status in [({"LC_ALL": "C"}, 1), ({"LC_ALL": "C.UTF-8"}, 1),
                            ({"KIV_DEFAULT_CHARSET": "latin1"}, 0),
                            ({"KIV_DEFAULT_CHARSET": "no-such"}, 2)]:
            with self.subTest(env=env):
                self.expect(run("-t", "utf-8", stdin=latin1, env=env), status)
        self.expect(run("-f", "latin1", stdin=latin1, env={"LC_ALL": "C"}), 0, b"\xC3\xA9")
        self.expect(run("-f", "", "-t", "", stdin=b"\xC3\xA9", env={"LC_ALL": "C"}), 0,
                    b"\xC3\xA9")

    def test_names_of_options_that_iconv_has(self):
        result = run("--from-code=latin1", "--to-code", "utf-8//", stdin=b"\xE9")
        self.expect(result, 0, b"\xC3\xA9")

    def test_the_last_of_repeated_options_counts(self):
        self.expect(run("-f", "utf-8", "-flatin1", "-tutf-8", stdin=b"\xE9"), 0, b"\xC3\xA9")

    def test_list(self):
        result = run("--list")
        self.expect(result, 0, err="")
        rows = {line.split()[0]: line.split()[1:]
                for line in result.out.decode().splitlines()[1:]}
        for name, mib in [("UTF-8", "106"), ("CESU-8", "1016"), ("UTF-16BE", "1013"),
                          ("UTF-16LE", "1014"), ("US-ASCII", "3"), ("ISO-8859-1", "4")]:
            self.assertEqual(rows[name][0], mib)
            for alias in rows[name][1:]:
                self.expect(run("-f", name, "-t", alias, stdin=encode("x", name)), 0,
                            encode("x", name))
        self.assertIn("latin1", rows["ISO-8859-1"])
        self.assertIn("csUTF8", rows["UTF-8"])
        self.assertEqual(rows.keys(), {*CHARSETS, *NATIONAL})
        self.assertEqual(run("-l").out, result.out)

    def test_every_listed_charset_converts(self):
        for line in run("--list").out.decode().splitlines()[1:]:
            name = line.split()[0]
            there = run("-f", "UTF-8", "-t", name, stdin=b"plain text")
            back = run("-f", name, "-t", "UTF-8", stdin=there.out)
            self.expect(back, 0, b"plain text", "")

    def test_help_and_version(self):
        help_text = run("--help")
        self.expect(help_text, 0, err="")
        for option in ["--from", "--to", "--output", "--list", "-c", "--on-error",
                       "--replacement", "--progress", "--silent", "Examples:"]:
            self.assertIn(option, help_text.out.decode())
        self.assertLessEqual(max(map(len, help_text.out.decode().splitlines())), 80)
        self.assertRegex(run("--version").out.decode(), r"^kivconv \d+\.\d+\.\d+\n$")


if __name__ == "__main__":
    unittest.main()
