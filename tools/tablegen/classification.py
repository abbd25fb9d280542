"""data/unicode/4.1.0 -> libkivxx/char/tables/classification.cpp

The class mask of each UTF-16 code unit, in the layout that
libkivxx/char/tables/classification.h explains. The repertoire is frozen at
Unicode 4.1, so the lists that the table must agree with are written out here
and compared with what the categories give.
"""

import sys

import tablegen

SOURCE = "data/unicode/4.1.0/general_category.txt"
OUTPUT = "libkivxx/char/tables/classification.cpp"

UNITS = 0x10000
BLOCK = 16
UNIFORM = 0x8000
RUNS = 366  # what these rules give for Unicode 4.1

UPPER = 0x001
LOWER = 0x002
DIGIT = 0x004
SPACE = 0x008
PUNCT = 0x010
CONTROL = 0x020
BLANK = 0x040
XDIGIT = 0x080
OTHER_ALPHA = 0x100

CATEGORY_MASKS = {
    "Lu": UPPER, "Ll": LOWER, "Lt": UPPER | LOWER,
    "Lm": OTHER_ALPHA, "Lo": OTHER_ALPHA,
    "Mn": OTHER_ALPHA, "Mc": OTHER_ALPHA, "Nl": OTHER_ALPHA,
    # Enclosing marks and numbers without digit value are symbols here.
    "Me": PUNCT, "No": PUNCT,
    "Nd": DIGIT,
    "Pc": PUNCT, "Pd": PUNCT, "Ps": PUNCT, "Pe": PUNCT, "Pi": PUNCT, "Pf": PUNCT, "Po": PUNCT,
    "Sm": PUNCT, "Sc": PUNCT, "Sk": PUNCT, "So": PUNCT,
    "Zs": SPACE | BLANK,
    # Line and paragraph separator end a line, so they are not blank.
    "Zl": SPACE, "Zp": SPACE,
    "Cc": CONTROL, "Cf": CONTROL,
    "Cs": 0, "Co": 0, "Cn": 0,
}


def units(text):
    """The set of units in a list like "0041 0061..007A"."""
    members = set()
    for item in text.split():
        members.update(tablegen.parse_range(__file__, 0, item))
    return members


# The control characters that are white space, all of them blank too.
SPACE_CONTROLS = units("0009..000D 0085")

# Modifier letters, marks and Roman numerals that have case without being Lu,
# Ll or Lt. The circled letters U+24B6..U+24E9 have case in the standard as
# well, but are symbols (So) and stay symbols. U+0294 is Ll in 4.1 and caseless
# from 5.0 on: named so that a newer file cannot change it unseen.
CASED_AS_LOWER = units("""
    00AA 00BA 0294 02B0..02B8 02C0..02C1 02E0..02E4 0345 037A 1D2C..1D6A 1D78
    1D9B..1DBF 2071 207F 2090..2094 2170..217F""")
CASED_AS_UPPER = units("2160..216F")

# ASCII and its full-width forms; other scripts' digits are not hexadecimal.
HEX_DIGITS = units("0030..0039 0041..0046 0061..0066 FF10..FF19 FF21..FF26 FF41..FF46")

# The full membership of the classes that are small enough to be written out:
# the units whose mask, cut to the bits of the first column, is the second.
EXACT = [
    ("title case", UPPER | LOWER, UPPER | LOWER, units("""
        01C5 01C8 01CB 01F2 1F88..1F8F 1F98..1F9F 1FA8..1FAF 1FBC 1FCC 1FFC""")),
    ("decimal digit", DIGIT, DIGIT, units("""
        0030..0039 0660..0669 06F0..06F9 0966..096F 09E6..09EF 0A66..0A6F
        0AE6..0AEF 0B66..0B6F 0BE6..0BEF 0C66..0C6F 0CE6..0CEF 0D66..0D6F
        0E50..0E59 0ED0..0ED9 0F20..0F29 1040..1049 17E0..17E9 1810..1819
        1946..194F 19D0..19D9 FF10..FF19""")),
    ("space", SPACE, SPACE, units("""
        0009..000D 0020 0085 00A0 1680 180E 2000..200A 2028 2029 202F 205F 3000""")),
    ("space that is not blank", SPACE | BLANK, SPACE, units("2028 2029")),
    ("blank that is not space", SPACE | BLANK, BLANK, set()),
    ("control", CONTROL, CONTROL, units("""
        0000..001F 007F..009F 00AD 0600..0603 06DD 070F 17B4..17B5 200B..200F
        202A..202E 2060..2063 206A..206F FEFF FFF9..FFFB""")),
]


def unit_mask(unit, category):
    if unit in CASED_AS_LOWER:
        mask = LOWER
    elif unit in CASED_AS_UPPER:
        mask = UPPER
    else:
        mask = CATEGORY_MASKS[category]
    if unit in HEX_DIGITS:
        mask |= XDIGIT
    if unit in SPACE_CONTROLS:
        mask |= SPACE | BLANK
    return mask


def check_exact(masks):
    for name, bits, value, expected in EXACT:
        members = {unit for unit, mask in enumerate(masks) if mask & bits == value}
        for unit in sorted(members ^ expected):
            sys.exit(f"{SOURCE}: U+{unit:04X} is wrongly {name} or wrongly not {name}")


def two_level(masks):
    """The index and the runs; equal mixed blocks are not shared."""
    index = []
    data = []
    for start in range(0, UNITS, BLOCK):
        block = masks[start:start + BLOCK]
        if len(set(block)) == 1:
            index.append(UNIFORM | block[0])
        else:
            index.append(len(data))
            data += block
    return index, data


def generate(root):
    categories = tablegen.read_partition(root / SOURCE, CATEGORY_MASKS.keys())
    masks = [unit_mask(unit, categories[unit]) for unit in range(UNITS)]
    check_exact(masks)
    index, data = two_level(masks)
    if len(data) != RUNS * BLOCK:
        sys.exit(f"{SOURCE}: {len(data) // BLOCK} runs instead of {RUNS}")

    starts = [entry << 4 for entry in range(len(index)) if not index[entry] & UNIFORM]
    arrays = [
        tablegen.cpp_array("std::uint16_t", "classification_index",
                           [f"0x{entry:04X}" for entry in index], 16,
                           lambda first: f"{first << 4:04X}"),
        tablegen.cpp_array("std::uint16_t", "classification_data",
                           [f"0x{mask:03X}" for mask in data], BLOCK,
                           lambda first: f"{starts[first // BLOCK]:04X}"),
    ]
    text = tablegen.cpp_file("classification.py", [SOURCE], "char/tables/classification.h",
                             "kiv::tables", arrays, root)
    size = 2 * (len(index) + len(data))
    return [tablegen.Table(OUTPUT, text, f"{len(index)} index entries, {len(data) // BLOCK} runs, "
                                         f"{len(data)} masks, {size} bytes")]
