"""data/charset -> libkivxx/charset/tables, the double-byte charsets

Layouts as libkivxx/charset/tables/dbcs_tables.h explains them.
"""

from typing import NamedTuple

import charset_mapping
import tablegen

UNMAPPABLE = 0xDFFF
NO_BYTES = 0xFFFF
PADDING = 1  # 16-bit entries are read as 32 bits
PRIVATE_USE = range(0xE000, 0xF900)


SJIS_LEADS = [*range(0x81, 0xA0), *range(0xE0, 0xFD)]
SJIS_TRAILS = [*range(0x40, 0x7F), *range(0x80, 0xFD)]
LEADS = [*range(0x81, 0xFF)]
TRAILS = [*range(0x40, 0x7F), *range(0x80, 0xFF)]
BIG5_TRAILS = [*range(0x40, 0x7F), *range(0xA1, 0xFF)]


class Figures(NamedTuple):
    """The extent of the mapping."""

    two_byte: int  # codes that are decoded
    single: int  # bytes above 7F that are decoded alone
    private_use: int  # codes that decode to the Private Use Area
    supplementary: int = 0  # codes that decode above U+FFFF
    duplicate: int = 0  # codes whose character is encoded as another code
    one_way: int = 0  # code points that are only encoded

    def __str__(self):
        items = [f"{count} {name}" for name, count in self._asdict().items() if count]
        return ", ".join(items).replace("_", "-")


class Charset(NamedTuple):
    source: str
    table: str
    leads: list
    trails: list
    decode_bits: int
    encode_bits: int
    highest: int  # the highest code point that is encoded
    figures: Figures


CHARSETS = [
    Charset("Windows-31J", "micsft_932", SJIS_LEADS, SJIS_TRAILS, 6, 5, 0xFFE5,
            Figures(9604, 63, 1880, duplicate=398, one_way=12)),
    Charset("Shift_JIS", "shift_jis", SJIS_LEADS, SJIS_TRAILS, 6, 6, 0xFFE5,
            Figures(6879, 63, 0, one_way=2)),
    Charset("x-mswin-936", "micsft_936", LEADS, TRAILS, 14, 6, 0xFFE5, Figures(23940, 1, 2149)),
    Charset("GBK", "gbk", LEADS, TRAILS, 14, 6, 0xFFE5, Figures(23940, 0, 2148)),
    Charset("x-windows-949", "micsft_949", LEADS, TRAILS, 5, 5, 0xFFE6, Figures(17236, 0, 188)),
    Charset("x-windows-950", "micsft_950", LEADS, TRAILS, 5, 6, 0xFFE5,
            Figures(19720, 0, 6217, duplicate=10)),
    Charset("Big5", "big5", LEADS, TRAILS, 5, 6, 0xFF64, Figures(13708, 0, 0, duplicate=5)),
    Charset("Big5-HKSCS", "big5_hkscs", LEADS, BIG5_TRAILS, 5, 4, 0x2FFFD,
            Figures(18470, 0, 0, supplementary=1713, duplicate=19, one_way=4968 + 2)),
]


def key(lead, trail):
    return (lead - 0x80) * 192 + trail


def check_sequence(charset, path, sequence):
    lead, *trail = sequence
    if (len(trail) > 1 or (lead in charset.leads) != bool(trail)
            or any(byte not in charset.trails for byte in trail)):
        raise SystemExit(f"{path}: {sequence.hex().upper()} is no sequence of the charset")


def figures_of(mapping):
    code_points = mapping.decode.values()
    return Figures(
        two_byte=sum(len(sequence) == 2 for sequence in mapping.decode),
        single=sum(len(sequence) == 1 and sequence[0] > 0x7F for sequence in mapping.decode),
        private_use=sum(code_point in PRIVATE_USE for code_point in code_points),
        supplementary=sum(code_point > 0xFFFF for code_point in code_points),
        duplicate=len(mapping.duplicates()),
        one_way=len(mapping.one_way()))


def make(charset, root):
    source = f"data/charset/{charset.source}.txt"
    mapping = charset_mapping.read(root / source)
    for sequence in {*mapping.decode, *mapping.encode.values()}:
        check_sequence(charset, mapping.path, sequence)
    mapping.expect(highest_code_point=(f"{max(mapping.encode):04X}", f"{charset.highest:04X}"),
                   figures=(str(figures_of(mapping)), str(charset.figures)))

    # ASCII is not looked up in either direction.
    by_key = {sequence[0] if len(sequence) == 1 else key(*sequence): code_point
              for sequence, code_point in mapping.decode.items()
              if sequence[0] not in charset_mapping.ASCII}
    codes = {code_point: int.from_bytes(sequence, "big")
             for code_point, sequence in mapping.encode.items()
             if code_point not in charset_mapping.ASCII}
    last_key = key(max(charset.leads), max(charset.trails))
    decode = tablegen.sparse_blocks(by_key, last_key, charset.decode_bits, UNMAPPABLE, PADDING)
    encode = tablegen.sparse_blocks(codes, charset.highest, charset.encode_bits, NO_BYTES, PADDING)

    name = charset.table
    element, digits = ("char32_t", 5) if charset.figures.supplementary else ("char16_t", 4)
    arrays = [
        *decode.arrays(f"{name}_decode", element, lambda entry: f"0x{entry:0{digits}X}", 4),
        *encode.arrays(f"{name}_encode", "std::uint16_t", lambda entry: f"0x{entry:04X}", digits),
        f"constexpr DbcsTables<{element}> {name} = {{\n"
        f"    {name}_decode_index, {name}_decode_data,\n"
        f"    {name}_encode_index, {name}_encode_data}};",
    ]
    text = tablegen.cpp_file("dbcs.py", [source], "charset/tables/dbcs_tables.h", "kiv::tables",
                             arrays, root)
    size = decode.size(4 if element == "char32_t" else 2) + encode.size(2)
    return tablegen.Table(f"libkivxx/charset/tables/{name}.cpp", text,
                          f"{charset.figures}; {len(decode.index)} + {len(decode.data)} decode, "
                          f"{len(encode.index)} + {len(encode.data)} encode entries, {size} bytes")


def generate(root):
    return [make(charset, root) for charset in CHARSETS]
