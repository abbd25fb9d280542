"""data/charset/GB18030.txt -> libkivxx/charset/tables/gb18030.cpp

Layouts as libkivxx/charset/tables/gb18030_tables.h explains them.
"""

import re
from collections import Counter

import charset_mapping
import tablegen

SOURCE = "data/charset/GB18030.txt"
OUTPUT = "libkivxx/charset/tables/gb18030.cpp"

BITS = 6
BLOCK = 1 << BITS
FIRST_TWO_BYTE_KEY = 256
FIRST_FOUR_BYTE_KEY = 24322
LAST_KEY = 63741  # of the Basic Multilingual Plane
TWO_BYTE_CODES = 23940
BMP_CODES = 63360
# What keys exceed code points by: in uniform blocks, up to the last four-byte
# key, and of supplementary code points. Index entries name only the first ones.
UNIFORM_OFFSETS = [24036, 23746, 23444, 23435, 23433, 23428, 23422, 23411, 2495, -1621, -1642]
OFFSETS = [*UNIFORM_OFFSETS, -1794, 147786]
LEAST_USES = 5  # decoder blocks that make an offset worth sharing
ENTRIES = {offset: 0xFFFE - place for place, offset in enumerate(UNIFORM_OFFSETS)}
DATA_LIMIT = 0xFFF2
PADDING = 1  # 16-bit entries are read as 32 bits
NO_CHARACTER = 0xDFFF  # for the keys of trail byte 7F, which are never looked up


def key_of(path, sequence):
    """Refuses sequences that are not of the form of the charset."""
    code = sequence.decode("latin-1")
    if re.fullmatch("[\x81-\xFE][\x40-\x7E\x80-\xFE]", code):
        lead, trail = sequence
        return FIRST_TWO_BYTE_KEY + (lead - 0x81) * 191 + trail - 0x40
    if re.fullmatch("([\x81-\xFE][0-9]){2}", code):
        b1, b2, b3, b4 = sequence
        linear = ((b1 - 0x81) * 10 + b2 - 0x30) * 1260 + (b3 - 0x81) * 10 + b4 - 0x30
        return FIRST_FOUR_BYTE_KEY + linear
    raise SystemExit(f"{path}: {sequence.hex().upper()} is no sequence of the charset")


def uniform_blocks(values):
    """First key -> value minus key, of the blocks whose values count up."""
    differences = {}
    for first in range(0, max(values) + 1, BLOCK):
        block = [values.get(key) for key in range(first, first + BLOCK)]
        if None not in block and block == [*range(block[0], block[0] + BLOCK)]:
            differences[first] = block[0] - first
    return differences


def generate(root):
    mapping = charset_mapping.read(root / SOURCE)
    units = {key_of(mapping.path, sequence): unit for sequence, unit in mapping.decode.items()
             if unit not in charset_mapping.ASCII}
    keys = {unit: key for key, unit in units.items()}
    offsets = {first: -difference for first, difference in uniform_blocks(units).items()}
    uses = Counter(offsets.values())
    frequent = sorted((offset for offset in uses if uses[offset] >= LEAST_USES), reverse=True)
    mapping.expect(
        two_byte_codes=(sum(key < FIRST_FOUR_BYTE_KEY for key in units), TWO_BYTE_CODES),
        codes_and_characters=((len(units), len(keys)), (BMP_CODES, BMP_CODES)),
        highest_key_and_character=((max(units), max(keys)), (LAST_KEY, 0xFFFF)),
        one_way_entries=(len(mapping.one_way()), 0),
        shared_offsets=(frequent, UNIFORM_OFFSETS))

    unit_offsets = uniform_blocks(keys)
    decode = tablegen.sparse_blocks(units, LAST_KEY, BITS, NO_CHARACTER, PADDING, DATA_LIMIT,
                                    lambda first: ENTRIES.get(offsets.get(first)))
    # The decoder finds two-byte keys without the index.
    first, last = (key >> BITS for key in (FIRST_TWO_BYTE_KEY, FIRST_FOUR_BYTE_KEY - 1))
    mapping.expect(two_byte_blocks=(decode.index[first:last + 1],
                                    [*range(0, (last - first + 1) * BLOCK, BLOCK)]))
    encode = tablegen.sparse_blocks(keys, 0xFFFF, BITS, 0, PADDING, DATA_LIMIT,
                                    lambda first: ENTRIES.get(unit_offsets.get(first)))
    arrays = [
        tablegen.cpp_array("std::int32_t", "gb18030_offsets", [str(o) for o in OFFSETS], 13),
        *decode.arrays("gb18030_decode", "char16_t", lambda unit: f"0x{unit:04X}", 5),
        *encode.arrays("gb18030_encode", "std::uint16_t", str, 4),
    ]
    text = tablegen.cpp_file("gb18030.py", [SOURCE], "charset/tables/gb18030_tables.h",
                             "kiv::tables", arrays, root)
    size = 4 * len(OFFSETS) + decode.size(2) + encode.size(2)
    return [tablegen.Table(OUTPUT, text,
                           f"{TWO_BYTE_CODES} two-byte, {BMP_CODES - TWO_BYTE_CODES} four-byte; "
                           f"{len(decode.index)} + {len(decode.data)} decode, "
                           f"{len(encode.index)} + {len(encode.data)} encode entries, "
                           f"{sum(uses[offset] for offset in frequent)} decoder blocks by offset, "
                           f"{size} bytes")]
