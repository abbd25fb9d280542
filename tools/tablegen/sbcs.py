"""data/charset -> libkivxx/charset/tables, the single-byte charsets

Layouts as libkivxx/charset/tables/sbcs_tables.h explains them.
"""

from typing import NamedTuple

import charset_mapping
import tablegen

UNMAPPABLE = 0xDFFF
NO_BYTE = -1
PAGE_SIZE = 128
PAGED_UNITS = 128 * PAGE_SIZE


class Charset(NamedTuple):
    source: str
    table: str
    undefined: int  # bytes; the decoder of a charset without any never looks for them
    bits: int  # of the encoder's blocks; 0 for a flat table
    highest: int


CHARSETS = [
    Charset("ISO-8859-2", "iso_8859_2", 0, 0, 0x02DD),
    Charset("ISO-8859-3", "iso_8859_3", 7, 0, 0x02D9),
    Charset("ISO-8859-4", "iso_8859_4", 0, 0, 0x02DB),
    Charset("ISO-8859-5", "iso_8859_5", 0, 7, 0x2116),
    Charset("ISO-8859-6", "iso_8859_6", 45, 6, 0x0652),
    Charset("ISO-8859-7", "iso_8859_7", 3, 6, 0x20AF),
    Charset("ISO-8859-8", "iso_8859_8", 36, 6, 0x2017),
    Charset("ISO-8859-9", "iso_8859_9", 0, 0, 0x015F),
    Charset("ISO-8859-10", "iso_8859_10", 0, 7, 0x2015),
    Charset("x-iso-8859-11", "iso_8859_11", 8, 6, 0x0E5B),
    Charset("ISO-8859-13", "iso_8859_13", 0, 7, 0x201E),
    Charset("ISO-8859-14", "iso_8859_14", 0, 7, 0x1EF3),
    Charset("ISO-8859-15", "iso_8859_15", 0, 7, 0x20AC),
    Charset("ISO-8859-16", "iso_8859_16", 0, 6, 0x20AC),
    Charset("windows-1250", "micsft_1250", 5, 6, 0x2122),
    Charset("windows-1251", "micsft_1251", 1, 6, 0x2122),
    Charset("windows-1252", "micsft_1252", 5, 5, 0x2122),
    Charset("windows-1253", "micsft_1253", 17, 5, 0x2122),
    Charset("windows-1254", "micsft_1254", 7, 5, 0x2122),
    Charset("windows-1255", "micsft_1255", 23, 5, 0x2122),
    Charset("windows-1256", "micsft_1256", 0, 5, 0x2122),
    Charset("windows-1257", "micsft_1257", 12, 6, 0x2122),
    Charset("windows-1258", "micsft_1258", 9, 5, 0x2122),
    Charset("windows-874", "micsft_874", 31, 6, 0x20AC),
    Charset("KOI8-R", "koi8_r", 0, 7, 0x25A0),
    Charset("KOI8-U", "koi8_u", 0, 5, 0x25A0),
]

SPARSE_ENTRIES = range(320, 896 + 1)  # the extent of the sparse encoders' data


def byte_text(byte):
    return "  -1" if byte == NO_BYTE else f"0x{byte:02X}"


def encode_table(charset, encode):
    """The C++ arrays, what the struct says of them, their figures and bytes."""
    name = f"{charset.table}_encode"
    if charset.bits == 0:
        entries = [encode.get(unit, NO_BYTE) for unit in range(charset.highest + 1)]
        array = tablegen.cpp_array("std::int16_t", name, [byte_text(byte) for byte in entries], 16,
                                   lambda unit: f"{unit:04X}")
        return [array], f"nullptr, {name}", f"flat {len(entries)}", 2 * len(entries)
    blocks = tablegen.sparse_blocks(encode, charset.highest, charset.bits, NO_BYTE)
    if len(blocks.data) not in SPARSE_ENTRIES:
        raise SystemExit(f"{charset.source}: {len(blocks.data)} entries in the encoder's data")
    return (blocks.arrays(name, "std::int16_t", byte_text, 4), f"{name}_index, {name}_data",
            f"{len(blocks.index)} + {len(blocks.data)}", blocks.size(2))


def paged(encode):
    """The slot of each page, then the slots; see the header."""
    numbers, slots = [0], [0] * PAGE_SIZE
    for first in range(PAGE_SIZE, PAGED_UNITS, PAGE_SIZE):
        page = [encode.get(unit, 0) for unit in range(first, first + PAGE_SIZE)]
        numbers.append(len(slots) // PAGE_SIZE if any(page) else 0)
        if any(page):
            slots += page
    return numbers + slots


def make(charset, root):
    source = f"data/charset/{charset.source}.txt"
    mapping = charset_mapping.read(root / source)
    mapping.expect(
        bytes_of_a_sequence=(max(map(len, [*mapping.decode, *mapping.encode.values()])), 1),
        undefined_bytes=(256 - len(mapping.decode), charset.undefined),
        highest_code_point=(f"{max(mapping.encode):04X}", f"{charset.highest:04X}"),
        units_beyond_the_pages=(charset.highest >= PAGED_UNITS, False),
        duplicates=(len(mapping.duplicates()), 0),
        one_way_entries=(len(mapping.one_way()), 0))

    name = charset.table
    decode = [mapping.decode.get(bytes([byte]), UNMAPPABLE) for byte in range(256)]
    encode = {unit: sequence[0] for unit, sequence in mapping.encode.items()}
    encode_arrays, pointers, figures, size = encode_table(charset, encode)
    pages = paged(encode)
    arrays = [
        tablegen.cpp_array("char16_t", f"{name}_decode", [f"0x{unit:04X}" for unit in decode], 16,
                           lambda byte: f"{byte:02X}"),
        *encode_arrays,
        tablegen.cpp_array("unsigned char", f"{name}_pages", [f"0x{byte:02X}" for byte in pages],
                           16, lambda position: f"{position:04X}"),
        f"constexpr SbcsTables {name} = {{\n"
        f"    {name}_decode, 0x{charset.highest:04X}, {pointers}, {name}_pages}};",
    ]
    text = tablegen.cpp_file("sbcs.py", [source], "charset/tables/sbcs_tables.h", "kiv::tables",
                             arrays, root)
    return tablegen.Table(f"libkivxx/charset/tables/{name}.cpp", text,
                          f"{len(mapping.decode)} characters; {figures} encode entries, "
                          f"{size + len(pages) + 2 * 256} bytes")


def generate(root):
    return [make(charset, root) for charset in CHARSETS]
