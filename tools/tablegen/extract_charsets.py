#!/usr/bin/python3
"""Published mappings of 35 charsets -> data/charset/*.txt

    tools/tablegen/extract_charsets.py [DIR]

Asks CPython's codecs, perl's Encode and glibc's charmap for the mappings,
applies the deltas that this file lists, checks what is known about the result
and only then writes, into data/charset or into DIR. The files state the
versions of their sources, so other versions are refused. charset_facts.py has
the checks.
"""

import argparse
import collections
import gzip
import hashlib
import itertools
import re
import subprocess
import sys
import textwrap
from pathlib import Path

from charset_facts import BMP, PRIVATE_USE, check, require

ROOT = Path(__file__).resolve().parents[2]

PYTHON_VERSION = "3.11.2"
PERL_VERSION = "5.36.0"
ENCODE_VERSION = "3.17"
CHARMAP = Path("/usr/share/i18n/charmaps/BIG5-HKSCS.gz")
CHARMAP_SHA256 = "ab6af172a348597e15bfafc510eed259e00eeab6225f8943eb64b5f20741b568"

PYTHON = f"CPython {PYTHON_VERSION}, codec"
PERL = f"perl {PERL_VERSION}, Encode {ENCODE_VERSION}, encoding"
GLIBC = "glibc 2.36, charmap BIG5-HKSCS (Debian package locales 2.36-9+deb12u14)"

PYTHON_LICENCE = "CPython is under PSF-2.0"
PERL_LICENCE = "perl's Encode is under Artistic-1.0-Perl OR GPL-1.0-or-later"
GLIBC_LICENCE = "glibc is under LGPL-2.1-or-later"

NOTATION = ("8140 <-> 3000 3001: 8140 is U+3000, 8141 U+3001; "
            "-> decodes only, <- encodes only, a..b is a range; "
            "delta: where the charset differs from its source")

# A mapping: decode from bytes to code point, encode from code point to bytes.
Mapping = collections.namedtuple("Mapping", "decode encode")

# op is one of <-> -> <- undefined; code is None for the last.
Delta = collections.namedtuple("Delta", "sequence op code reason")

# A mapping with the deltas that turn the source's mapping, base, into it.
Charset = collections.namedtuple("Charset", "name sources licences notes base deltas mapping")


# --- Sources -----------------------------------------------------------------

def byte_sequences(four_bytes=False):
    """One and two bytes, and the four-byte forms of the BMP in GB18030."""
    for lead in range(0x100):
        yield bytes([lead])
    for lead, trail in itertools.product(range(0x80, 0x100), range(0x100)):
        yield bytes([lead, trail])
    if four_bytes:
        digits = range(0x30, 0x3A)
        for sequence in itertools.product(range(0x81, 0x85), digits, range(0x81, 0xFF), digits):
            if sequence <= (0x84, 0x31, 0xA4, 0x39):
                yield bytes(sequence)


def read_python(codec, sequences=None):
    """The mapping as CPython's codec gives it, both directions unchanged."""
    decode, encode = {}, {}
    for sequence in sequences or byte_sequences():
        if sequence[:1] in decode:
            continue
        try:
            text = sequence.decode(codec)
        except UnicodeDecodeError:
            continue
        require(len(text) == 1, f"{codec}: {sequence.hex()} is {len(text)} characters")
        decode[sequence] = ord(text)
    for code in BMP:
        try:
            encode[code] = chr(code).encode(codec)
        except UnicodeEncodeError:
            pass
    return Mapping(decode, encode)


PERL_PROGRAM = r"""
use Encode;
my $encoding = find_encoding($ARGV[0]) or die "no encoding $ARGV[0]";
printf "version %vd %s\n", $^V, $Encode::VERSION;
sub decoded {
    my ($bytes) = @_;
    my $name = unpack "H*", $bytes;
    my $text = $encoding->decode($bytes, Encode::FB_QUIET);
    return if length $bytes || length $text != 1;
    printf "decode %s %X\n", $name, ord $text;
    return 1;
}
for my $lead (0 .. 255) {
    next if decoded(chr $lead);
    decoded(chr($lead) . chr($_)) for 0 .. 255;
}
for my $code (0 .. 0xD7FF, 0xE000 .. 0xFFFF) {
    my $text = chr $code;
    my $bytes = $encoding->encode($text, Encode::FB_QUIET);
    printf "encode %s %X\n", unpack("H*", $bytes), $code if length $bytes;
}
"""


def read_perl(encoding):
    """The mapping of perl's Encode and the number of best-fit entries left out:
    an encode entry is kept only where it decodes back to the same character."""
    run = subprocess.run(["perl", "-e", PERL_PROGRAM, encoding], check=True,
                         capture_output=True, text=True)
    version, *lines = run.stdout.splitlines()
    require(version == f"version {PERL_VERSION} {ENCODE_VERSION}",
            f"perl and Encode: {version}, not {PERL_VERSION} {ENCODE_VERSION}")
    decode, encode, best_fit = {}, {}, 0
    for line in lines:
        direction, sequence, code = line.split()
        sequence, code = bytes.fromhex(sequence), int(code, 16)
        if direction == "decode":
            decode[sequence] = code
        elif decode.get(sequence) == code:
            encode[code] = sequence
        else:
            best_fit += 1
    return Mapping(decode, encode), best_fit


def read_charmap():
    """The two-byte codes of glibc's charmap, and the ones that stand for a
    letter with a combining mark."""
    text = gzip.decompress(CHARMAP.read_bytes())
    require(hashlib.sha256(text).hexdigest() == CHARMAP_SHA256, f"{CHARMAP} is another version")
    decode, combining = {}, set()
    line_form = re.compile(r"(?:%IRREVERSIBLE%|%)?((?:<U[0-9A-F]+>)+) +/x(..)/x(..)(?= |$)")
    for line in text.decode("latin-1").splitlines():
        match = line_form.match(line)
        if not match:
            continue
        sequence = bytes.fromhex(match[2] + match[3])
        codes = re.findall("[0-9A-F]+", match[1].replace("U", ""))
        if len(codes) > 1:
            combining.add(sequence)
        else:
            require(sequence not in decode, f"{CHARMAP}: {sequence.hex()} twice")
            decode[sequence] = int(codes[0], 16)
    return decode, combining


# --- Deltas ----------------------------------------------------------------------

def delta(text, reason):
    """A Delta from "815C <-> 2014" or "80 undefined"."""
    sequence, op, *code = text.split()
    return Delta(bytes.fromhex(sequence), op, int(code[0], 16) if code else None, reason)


def undefined(sequences, reason):
    return [delta(f"{sequence} undefined", reason) for sequence in sequences.split()]


def apply_delta(change, mapping):
    sequence, op, code, _ = change
    decode, encode = mapping
    before = decode.get(sequence), encode.get(code)
    if op != "<-":
        old = decode.pop(sequence, None)
        if encode.get(old) == sequence:
            del encode[old]
        if op != "undefined":
            decode[sequence] = code
    if op in ("<->", "<-"):
        encode[code] = sequence
    require(before != (decode.get(sequence), encode.get(code)), f"{change} changes nothing")


def make_charset(name, sources, licences, base, deltas=(), notes=()):
    mapping = Mapping(dict(base.decode), dict(base.encode))
    deltas = sorted(deltas, key=lambda change: change.sequence)
    for change in deltas:
        apply_delta(change, mapping)
    return Charset(name, sources, licences, notes, base, deltas, mapping)


# --- Single-byte charsets -------------------------------------------------------

SINGLE_BYTE_CODECS = {
    "ISO-8859-2": "iso8859_2",
    "ISO-8859-3": "iso8859_3",
    "ISO-8859-4": "iso8859_4",
    "ISO-8859-5": "iso8859_5",
    "ISO-8859-6": "iso8859_6",
    "ISO-8859-7": "iso8859_7",
    "ISO-8859-8": "iso8859_8",
    "ISO-8859-9": "iso8859_9",
    "ISO-8859-10": "iso8859_10",
    "x-iso-8859-11": "iso8859_11",
    "ISO-8859-13": "iso8859_13",
    "ISO-8859-14": "iso8859_14",
    "ISO-8859-15": "iso8859_15",
    "ISO-8859-16": "iso8859_16",
    "windows-1250": "cp1250",
    "windows-1251": "cp1251",
    "windows-1252": "cp1252",
    "windows-1253": "cp1253",
    "windows-1254": "cp1254",
    "windows-1255": "cp1255",
    "windows-1256": "cp1256",
    "windows-1257": "cp1257",
    "windows-1258": "cp1258",
    "windows-874": "cp874",
    "KOI8-R": "koi8_r",
    "KOI8-U": "koi8_u",
}


def single_byte_charset(name, codec):
    base = read_python(codec, [bytes([byte]) for byte in range(0x100)])
    return make_charset(name, [f"{PYTHON} {codec}."], [PYTHON_LICENCE], base)


# --- Double-byte charsets and GB18030 -------------------------------------------

NO_CHARACTER = "no character; the source fills the gap"

WINDOWS_31J_DELTAS = undefined("80 A0 FD FE FF", NO_CHARACTER) + [
    delta("5C <- 00A5", "one-way: the yen sign has the place of the backslash in JIS X 0201"),
    delta("7E <- 203E", "one-way: the overline has the place of the tilde in JIS X 0201"),
    delta("8143 <- 00B8", "one-way: the cedilla as the fullwidth comma"),
    delta("8145 <- 00B7", "one-way: the middle dot as the katakana middle dot"),
    delta("8150 <- 00AF", "one-way: the macron as the fullwidth macron"),
    delta("8191 <- 00A2", "one-way: the cent sign as the fullwidth cent sign"),
    delta("8192 <- 00A3", "one-way: the pound sign as the fullwidth pound sign"),
    delta("81CA <- 00AC", "one-way: the not sign as the fullwidth not sign"),
    delta("81E1 <- 00AB", "one-way: the left guillemet as the much-less-than sign"),
    delta("81E2 <- 00BB", "one-way: the right guillemet as the much-greater-than sign"),
    delta("8394 <- 3094", "one-way: hiragana vu as katakana vu, the only vu of JIS X 0208 rows"),
    delta("83CA <- 00B5", "one-way: the micro sign as the Greek small letter mu"),
]

SHIFT_JIS_DELTAS = [
    delta("815C <-> 2014", "the em dash, where the source has the horizontal bar U+2015"),
]

CP936_DELTAS = undefined("FF", NO_CHARACTER)

GBK_DELTAS = undefined("80", "the euro sign stands at A2E3") + undefined("FF", NO_CHARACTER) + [
    delta("A2E3 <-> 20AC", "the euro sign, where code page 936 has a private-use character"),
    delta("A892 <-> 2641", "the earth sign, where code page 936 has the circled plus U+2295"),
]

CP949_CP950_DELTAS = undefined("80 FF", NO_CHARACTER)

BIG5_DELTAS = [
    delta("A15A -> FF3F", "a second low line, encoded as A1C4; the source has U+2574"),
    delta("A1C3 undefined", "no character; the source has the fullwidth macron U+FFE3"),
    delta("A1C5 undefined", "no character; the source has the modifier letter U+02CD"),
    delta("A1FE -> 2571", "a second diagonal, encoded as A2AC; the source has a second U+FF0F"),
    delta("A240 -> 2572", "a second diagonal, encoded as A2AD; the source has a second U+FF3C"),
]

BIG5_HKSCS_DELTAS = BIG5_DELTAS + [
    delta("FEFD <- FFFD", "one-way: the replacement character; in the charset, not in a source"),
    delta("FEFE <- 2FFFD", "one-way: the end of plane 2; in the charset, not in a source"),
]

# Codes of the charmap that stand for two characters.
COMBINING = {"8862": "00CA 0304", "8864": "00CA 030C", "88A3": "00EA 0304", "88A5": "00EA 030C"}


def perl_charset(name, encoding, deltas):
    base, best_fit = read_perl(encoding)
    notes = [f"Left out: {best_fit} best-fit encode entries, which do not decode back."]
    return make_charset(name, [f"{PERL} {encoding}."], [PERL_LICENCE], base, deltas, notes)


def python_charset(name, codec, deltas=(), notes=()):
    base = read_python(codec)
    return make_charset(name, [f"{PYTHON} {codec}."], [PYTHON_LICENCE], base, deltas, notes)


def is_hkscs(sequence):
    """Whether the supplementary character set defines this part of the code space."""
    return len(sequence) == 2 and (
        b"\x87" <= sequence < b"\xA1" or b"\xC6\xA1" <= sequence <= b"\xC8\xFE"
        or b"\xF9\xD6" <= sequence)


def big5_hkscs_charset(code_page_950):
    base = read_python("big5")
    charmap, combining = read_charmap()
    supplement = {sequence: code for sequence, code in charmap.items() if is_hkscs(sequence)}
    base.decode.update(supplement)
    for code in [code for code, sequence in base.encode.items() if sequence in supplement]:
        del base.encode[code]
    base.encode.update({code: sequence for sequence, code in supplement.items()})
    for sequence in combining | set(supplement):
        code = code_page_950.decode.get(sequence)
        if code in PRIVATE_USE:
            base.encode[code] = sequence
    sources = [f"{PYTHON} big5;",
               f"the codes 8740..A0FE, C6A1..C8FE and F9D6..FEFE of {GLIBC} over it;",
               f"the encode-only lines: the characters of {PERL} cp950."]
    notes = [
        "A character that both sources have is encoded as the charmap's code.",
        *(f"Left out: {code} <-> {sequence}, two characters: a letter and a combining mark."
          for code, sequence in COMBINING.items()),
        "The encode-only lines are the private-use characters that code page 950 has at these "
        "codes, as earlier versions of the character set did.",
    ]
    licences = [PYTHON_LICENCE, GLIBC_LICENCE, PERL_LICENCE]
    charset = make_charset("Big5-HKSCS", sources, licences, base, BIG5_HKSCS_DELTAS, notes)
    require(sorted(combining) == [bytes.fromhex(code) for code in COMBINING],
            "the charmap's combining codes")
    return charset


def make_charsets():
    charsets = [single_byte_charset(name, codec) for name, codec in SINGLE_BYTE_CODECS.items()]
    charsets += [
        perl_charset("Windows-31J", "cp932", WINDOWS_31J_DELTAS),
        python_charset("Shift_JIS", "shift_jis", SHIFT_JIS_DELTAS),
        perl_charset("x-mswin-936", "cp936", CP936_DELTAS),
        perl_charset("GBK", "cp936", GBK_DELTAS),
        perl_charset("x-windows-949", "cp949", CP949_CP950_DELTAS),
        perl_charset("x-windows-950", "cp950", CP949_CP950_DELTAS),
        python_charset("Big5", "big5", BIG5_DELTAS),
    ]
    charsets.append(big5_hkscs_charset(charsets[-2].mapping))
    gb18030 = read_python("gb18030", byte_sequences(four_bytes=True))
    charsets.append(make_charset(
        "GB18030", [f"{PYTHON} gb18030."], [PYTHON_LICENCE], gb18030,
        notes=["The mapping of GB 18030-2000 for the BMP; 90308130 to E3329A35 stand for "
               "U+10000 to U+10FFFF in order and are not listed."]))
    return {charset.name: charset for charset in charsets}


# --- Files ------------------------------------------------------------------------

ITEMS_PER_LINE = 16
LINE_WIDTH = 99


def runs(entries):
    """Groups (sequence, op, code) whose sequences differ in the last byte by one."""
    run = []
    for entry in entries:
        if run and (entry[1] != run[-1][1] or entry[0][:-1] != run[-1][0][:-1]
                    or entry[0][-1] != run[-1][0][-1] + 1):
            yield run
            run = []
        run.append(entry)
    yield run


def code_items(codes):
    """Pairs (text, count); three or more consecutive code points make a range."""
    start = 0
    while start < len(codes):
        end = start + 1
        while end < len(codes) and codes[end] == codes[end - 1] + 1:
            end += 1
        if end - start < 3:
            end = start + 1
            yield f"{codes[start]:04X}", 1
        else:
            yield f"{codes[start]:04X}..{codes[end - 1]:04X}", end - start
        start = end


def mapping_lines(entries):
    for run in runs(entries):
        position, line, items = 0, "", 0
        for text, count in code_items([code for _, _, code in run]):
            if not line or items == ITEMS_PER_LINE or len(line) + 1 + len(text) > LINE_WIDTH:
                if line:
                    yield line
                sequence, op, _ = run[position]
                line, items = f"{sequence.hex().upper()} {op}", 0
            line += " " + text
            items += 1
            position += count
        yield line


def file_text(charset, figures):
    decode, encode = charset.base
    head = [charset.name, f"{figures}.", f"Source: {' '.join(charset.sources)}",
            f"Licence: the mapping is a published fact; {', '.join(charset.licences)}.",
            *charset.notes, NOTATION]
    wrapper = textwrap.TextWrapper(LINE_WIDTH, initial_indent="# ", subsequent_indent="#   ",
                                   break_on_hyphens=False)
    lines = [line for paragraph in head for line in wrapper.wrap(paragraph)] + [""]
    both = sorted((s, "<->" if encode.get(code) == s else "->", code) for s, code in decode.items())
    encode_only = sorted((s, "<-", code) for code, s in encode.items() if decode.get(s) != code)
    lines += mapping_lines(both)
    if encode_only:
        lines += mapping_lines(encode_only)
    if charset.deltas:
        lines.append("")
    for sequence, op, code, reason in charset.deltas:
        target = "" if code is None else f" {code:04X}"
        lines.append(f"delta {sequence.hex().upper()} {op}{target}  # {reason}")
    longest = max(lines, key=len)
    require(len(longest) <= LINE_WIDTH, f"{charset.name}: {longest!r} is too long")
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser(description="Extracts the files of data/charset/.")
    parser.add_argument("out", type=Path, nargs="?", default=ROOT / "data/charset", metavar="DIR",
                        help="write into DIR instead of data/charset")
    out = parser.parse_args().out
    version = sys.version.split()[0]
    require(version == PYTHON_VERSION, f"this is Python {version}, not {PYTHON_VERSION}")
    charsets = make_charsets()
    figures = check(charsets)
    texts = {name: file_text(charsets[name], figures[name]) for name in charsets}
    out.mkdir(parents=True, exist_ok=True)
    for name, text in texts.items():
        (out / f"{name}.txt").write_bytes(text.encode("ascii"))
        print(f"{name}: {figures[name]}")


if __name__ == "__main__":
    main()
