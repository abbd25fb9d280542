"""What is known about the charsets of data/charset/ beforehand.

extract_charsets.py writes nothing that differs from it.
"""

import collections
import sys

BMP = [*range(0xD800), *range(0xE000, 0x10000)]
PRIVATE_USE = range(0xE000, 0xF900)

# name: the highest character, whether every byte has a character.
SINGLE_BYTE = {
    "ISO-8859-2": (0x02DD, True),
    "ISO-8859-3": (0x02D9, False),
    "ISO-8859-4": (0x02DB, True),
    "ISO-8859-5": (0x2116, True),
    "ISO-8859-6": (0x0652, False),
    "ISO-8859-7": (0x20AF, False),
    "ISO-8859-8": (0x2017, False),
    "ISO-8859-9": (0x015F, True),
    "ISO-8859-10": (0x2015, True),
    "x-iso-8859-11": (0x0E5B, False),
    "ISO-8859-13": (0x201E, True),
    "ISO-8859-14": (0x1EF3, True),
    "ISO-8859-15": (0x20AC, True),
    "ISO-8859-16": (0x20AC, True),
    "windows-1250": (0x2122, False),
    "windows-1251": (0x2122, False),
    "windows-1252": (0x2122, False),
    "windows-1253": (0x2122, False),
    "windows-1254": (0x2122, False),
    "windows-1255": (0x2122, False),
    "windows-1256": (0x2122, True),
    "windows-1257": (0x2122, False),
    "windows-1258": (0x2122, False),
    "windows-874": (0x20AC, False),
    "KOI8-R": (0x25A0, True),
    "KOI8-U": (0x25A0, True),
}

# name: two-byte codes, single bytes above 7F, highest character encoded,
# characters with more than one code, private-use characters decoded.
FIGURES = {
    "Windows-31J": (9604, 63, 0xFFE5, 396, 1880),
    "Shift_JIS": (6879, 63, 0xFFE5, 0, 0),
    "x-mswin-936": (23940, 1, 0xFFE5, 0, 2149),
    "GBK": (23940, 0, 0xFFE5, 0, 2148),
    "x-windows-949": (17236, 0, 0xFFE6, 0, 188),
    "x-windows-950": (19720, 0, 0xFFE5, 10, 6217),
    "Big5": (13708, 0, 0xFF64, 5, 0),
    "Big5-HKSCS": (18470, 0, 0x2FFFD, 19, 0),
    "GB18030": (23940, 0, 0xFFFF, 0, 6400),
}

# The codes that characters with several codes are encoded as.
BIG5_DUPLICATES = "FF3F A1C4, 2571 A2AC, 2572 A2AD, 5341 A451, 5345 A4CA"
DUPLICATES = {
    "x-windows-950": "2550 F9F9, 255E F9E9, 2561 F9EB, 256A F9EA, 256D A27E, 256E A2A1, "
                     "256F A2A3, 2570 A2A2, 5341 A451, 5345 A4CA",
    "Big5": BIG5_DUPLICATES,
    "Big5-HKSCS": BIG5_DUPLICATES + ", 2550 F9F9, 255E F9E9, 2561 F9EB, 256A F9EA, 256D F9FA, "
                  "256E F9FB, 256F F9FD, 2570 F9FC, "
                  "306B C752, 306F C756, 3071 C758, 3073 C75A, 307A C761, 307B C762",
}

UNDEFINED_BYTES = {"windows-1251": "98", "windows-1252": "818D8F909D"}

# Bytes and what they decode to, "-" for nothing.
SAMPLES = {
    "ISO-8859-2": "80 80, BD 2DD",
    "windows-1252": "80 20AC, 81 -",
    "windows-1255": "CA -",
    "KOI8-U": "AE 255D, BE 256C",
    "Windows-31J": "82A0 3042, 80 -, A0 -, FD -, FE -, FF -, B1 FF71, F040 E000",
    "Shift_JIS": "815C 2014, 815F FF3C, 5C 5C, 7E 7E, A1 FF61, DF FF9F, 80 -, A0 -, FD -",
    "x-mswin-936": "80 20AC, A2E3 E76C, A892 2295, FF -",
    "GBK": "80 -, A2E3 20AC, A892 2641, FF -",
    "x-windows-949": "80 -, FF -",
    "x-windows-950": "80 -, FF -",
    "Big5": "A440 4E00, A1C3 -, A1C5 -, A15A FF3F, A1FE 2571, A240 2572, C6A1 30FE, C7FC 247D",
    "Big5-HKSCS": "8862 -, 8864 -, 88A3 -, 88A5 -, FF -",
    "GB18030": "A8BC E7C7, 8135F437 1E3F, 81308130 80, 8431A439 FFFF, 8140 4E02, A2E3 20AC, "
               "81308436 A5, 8431A530 -",
}

# Encode-only entries, apart from the ones from code page 950.
ONE_WAY = {
    "Windows-31J": "A2 8191, A3 8192, A5 5C, AB 81E1, AC 81CA, AF 8150, B5 83CA, B7 8145, "
                   "B8 8143, BB 81E2, 203E 7E, 3094 8394",
    "Shift_JIS": "A5 5C, 203E 7E",
    "Big5-HKSCS": "FFFD FEFD, 2FFFD FEFE, E000 FA40, F325 8862",
}

# Private-use areas: first and last code, first and last character.
PRIVATE_AREAS = {
    "Windows-31J": [("F040", "F9FC", 0xE000, 0xE757)],
    "x-windows-949": [("C9A1", "C9FE", 0xE000, 0xE05D), ("FEA1", "FEFE", 0xE05E, 0xE0BB)],
    "x-windows-950": [("FA40", "FEFE", 0xE000, 0xE310), ("8E40", "A0FE", 0xE311, 0xEEB7),
                      ("8140", "8DFE", 0xEEB8, 0xF6B0), ("C6A1", "C8FE", 0xF6B1, 0xF848)],
}


def require(condition, what):
    if not condition:
        sys.exit(f"extract_charsets.py: {what}; nothing written")


def pairs(text):
    return [item.split() for item in text.split(",") if item.strip()]


def check_single_byte(name, mapping, highest, complete):
    decode, encode = mapping
    require(max(decode.values()) == highest, f"{name}: highest character")
    require((len(decode) == 0x100) == complete, f"{name}: completeness")
    require({code: sequence for sequence, code in decode.items()} == encode
            and len(encode) == len(decode), f"{name}: not one to one")
    if name in UNDEFINED_BYTES:
        missing = bytes(byte for byte in range(0x100) if bytes([byte]) not in decode)
        require(missing == bytes.fromhex(UNDEFINED_BYTES[name]), f"{name}: undefined bytes")
    if "8859" in name:
        require(all(decode.get(bytes([byte])) == byte for byte in range(0xA0)), f"{name}: controls")
    return f"{len(decode)} bytes, up to U+{highest:04X}"


def duplicates(mapping):
    codes = collections.defaultdict(list)
    for sequence, code in sorted(mapping.decode.items()):
        codes[code].append(sequence)
    return {code: sequences for code, sequences in codes.items() if len(sequences) > 1}


def check_multi_byte(name, mapping):
    decode, encode = mapping
    twice = duplicates(mapping)
    if name == "Windows-31J":
        for code, sequences in twice.items():
            lowest = min(s for s in sequences if s[0] not in (0xED, 0xEE))
            require(encode[code] == lowest, f"{name}: U+{code:04X} is not its lowest code")
    else:
        stated = {int(code, 16): bytes.fromhex(sequence)
                  for code, sequence in pairs(DUPLICATES.get(name, ""))}
        require({code: encode[code] for code in twice} == stated, f"{name}: duplicates")

    one_way = {code: s for code, s in encode.items() if decode.get(s) != code}
    for code, sequence in pairs(ONE_WAY.get(name, "")):
        require(one_way.get(int(code, 16)) == bytes.fromhex(sequence), f"{name}: one-way {code}")
    require(set(decode.values()) <= set(encode), f"{name}: a character that is not encoded")
    for first, last, low, high in PRIVATE_AREAS.get(name, []):
        area = [code for s, code in sorted(decode.items())
                if bytes.fromhex(first) <= s <= bytes.fromhex(last)]
        require(area == list(range(low, high + 1)), f"{name}: private-use area {first}")

    if "J" in name:
        kana = [decode.get(bytes([byte])) for byte in range(0xA1, 0xE0)]
        require(kana == list(range(0xFF61, 0xFFA0)), f"{name}: halfwidth katakana")

    two_byte = sum(len(s) == 2 for s in decode)
    single = sum(len(s) == 1 and s > b"\x7F" for s in decode)
    private = sum(code in PRIVATE_USE for code in decode.values())
    figures = (two_byte, single, max(encode), len(twice), private)
    stated = FIGURES[name]
    require(figures == stated, f"{name}: {figures}, not {stated}")
    one_ways = 4968 + 2 if name == "Big5-HKSCS" else len(pairs(ONE_WAY.get(name, "")))
    require(len(one_way) == one_ways, f"{name}: {len(one_way)} one-way entries")
    counts = {"two-byte codes": two_byte, "four-byte codes": sum(len(s) == 4 for s in decode),
              "single codes above 7F": single, "characters with several codes": len(twice),
              "encode-only": len(one_way), "private-use": private}
    return ", ".join([*(f"{count} {what}" for what, count in counts.items() if count),
                      f"up to U+{max(encode):04X}"])


def check_chinese(charsets):
    """How the charsets that share a table differ from each other."""
    def two_byte(name):
        return {s: code for s, code in charsets[name].mapping.decode.items() if len(s) == 2}

    def different(one, other):
        return {s for s in one.keys() | other.keys() if one.get(s) != other.get(s)}

    def codes(text):
        return {bytes.fromhex(code) for code in text.split()}

    cp936, gbk, gb18030 = two_byte("x-mswin-936"), two_byte("GBK"), two_byte("GB18030")
    require(different(cp936, gbk) == codes("A2E3 A892"), "GBK against x-mswin-936")
    assigned = different(cp936, gb18030)
    rest = assigned - codes("A2E3 A8BF") - {bytes([0xA9, trail]) for trail in range(0x89, 0x96)}
    require(len(assigned) == 81 and len(rest) == 66, "x-mswin-936 against GB18030")
    require(all(bytes.fromhex("FE50") <= s <= bytes.fromhex("FE9F") for s in rest), "rows FE")
    require(all(cp936[s] in range(0xE000, 0xE865) for s in assigned), "assigned private-use codes")
    private = sorted(code for code in cp936.values() if code in PRIVATE_USE)
    require(private == list(range(0xE000, 0xE865)), "private-use characters of x-mswin-936")

    decode, encode = charsets["GB18030"].mapping
    multi_byte = {s: code for s, code in decode.items() if s > b"\x7F"}
    require(len(multi_byte) == 63360 and sorted(multi_byte.values()) == BMP[0x80:],
            "GB18030 is not a bijection")
    require(all(encode[code] == s for s, code in decode.items()), "GB18030: not the inverse")
    supplementary = sum(c > 0xFFFF for c in charsets["Big5-HKSCS"].mapping.decode.values())
    require(supplementary == 1713, f"Big5-HKSCS: {supplementary} supplementary characters")


def check(charsets):
    """Refuses mappings that are not the known ones; returns a line of figures for each."""
    figures = {name: check_single_byte(name, charsets[name].mapping, highest, complete)
               for name, (highest, complete) in SINGLE_BYTE.items()}
    for name in FIGURES:
        figures[name] = check_multi_byte(name, charsets[name].mapping)
    check_chinese(charsets)
    for name, text in SAMPLES.items():
        for sequence, code in pairs(text):
            got = charsets[name].mapping.decode.get(bytes.fromhex(sequence))
            require(got == (None if code == "-" else int(code, 16)), f"{name}: {sequence}")
    require(figures.keys() == charsets.keys(), "a charset without figures")
    return figures
