"""data/unicode/17.0.0 -> companion/tables/unicode_tables.cpp

The properties of each code point, in the layout that
companion/tables/unicode_tables.h explains.
"""

import sys

import tablegen

FOLDER = "data/unicode/17.0.0"
CATEGORIES = f"{FOLDER}/general_category.txt"
PROPERTIES = f"{FOLDER}/binary_properties.txt"
CASE_MAPPINGS = f"{FOLDER}/simple_case_mapping.txt"
OUTPUT = "companion/tables/unicode_tables.cpp"

BLOCK = 256
NO_DIGIT = -1

CLASS_NAMES = {
    "Lu": "UNI_UPPERCASE_LETTER", "Ll": "UNI_LOWERCASE_LETTER", "Lt": "UNI_TITLECASE_LETTER",
    "Lm": "UNI_MODIFIER_LETTER", "Lo": "UNI_OTHER_LETTER",
    "Mn": "UNI_NONSPACING_MARK", "Mc": "UNI_SPACING_MARK", "Me": "UNI_ENCLOSING_MARK",
    "Nd": "UNI_DECIMAL_NUMBER", "Nl": "UNI_LETTER_NUMBER", "No": "UNI_OTHER_NUMBER",
    "Pc": "UNI_CONNECTOR_PUNCTUATION", "Pd": "UNI_DASH_PUNCTUATION",
    "Ps": "UNI_OPEN_PUNCTUATION", "Pe": "UNI_CLOSE_PUNCTUATION",
    "Pi": "UNI_INITIAL_PUNCTUATION", "Pf": "UNI_FINAL_PUNCTUATION",
    "Po": "UNI_OTHER_PUNCTUATION",
    "Sm": "UNI_MATH_SYMBOL", "Sc": "UNI_CURRENCY_SYMBOL", "Sk": "UNI_MODIFIER_SYMBOL",
    "So": "UNI_OTHER_SYMBOL",
    "Zs": "UNI_SPACE_SEPARATOR", "Zl": "UNI_LINE_SEPARATOR", "Zp": "UNI_PARAGRAPH_SEPARATOR",
    "Cn": "UNI_UNASSIGNED", "Cc": "UNI_CONTROL", "Cf": "UNI_FORMAT", "Cs": "UNI_SURROGATE",
    "Co": "UNI_PRIVATE_USE",
}

# Default_Ignorable_Code_Point is in the file for other readers of it: no
# function of the companion answers it.
PROPERTY_NAMES = {
    "Alphabetic": "ALPHABETIC",
    "Lowercase": "LOWERCASE",
    "Uppercase": "UPPERCASE",
    "ID_Start": "UNI_IDENTIFIER_START",
    "ID_Continue": "UNI_IDENTIFIER_PART",
    "White_Space": "UNI_WHITESPACE",
    "Default_Ignorable_Code_Point": None,
}


def digit_values(categories):
    """Digits stand in ascending order in whole sets of ten, two sets without a
    gap included; that is checked, then position gives the value."""
    values = [NO_DIGIT] * tablegen.CODE_SPACE
    code_point = 0
    while code_point < tablegen.CODE_SPACE:
        if categories[code_point] != "Nd":
            code_point += 1
            continue
        if any(category != "Nd" for category in categories[code_point:code_point + 10]):
            sys.exit(f"{CATEGORIES}: the digits from U+{code_point:04X} on are not a set of ten")
        values[code_point:code_point + 10] = range(10)
        code_point += 10
    return values


def case_deltas(root):
    """(lower, upper, title) - code point, for those that map elsewhere."""
    mappings = tablegen.read_mappings(root / CASE_MAPPINGS, 3)
    deltas = {}
    for code_point, results in mappings.items():
        deltas[code_point] = tuple(result - code_point for result in results)
        if not any(deltas[code_point]):
            sys.exit(f"{CASE_MAPPINGS}: U+{code_point:04X} is listed but maps to itself")
    return deltas


def record_text(category, properties, digit, deltas):
    bits = [CLASS_NAMES[category], *properties]
    if digit != NO_DIGIT:
        bits.append(f"digit({digit})")
    return f"{{{' | '.join(bits)}, {', '.join(map(str, deltas))}}}"


def generate(root):
    categories = tablegen.read_partition(root / CATEGORIES, CLASS_NAMES.keys())
    members = tablegen.read_properties(root / PROPERTIES, PROPERTY_NAMES.keys())
    deltas = case_deltas(root)
    digits = digit_values(categories)

    # Record 0 also answers for values beyond the code space.
    records = {("Cn", (), NO_DIGIT, (0, 0, 0)): 0}
    numbers = []
    for code_point, category in enumerate(categories):
        properties = tuple(text for name, text in PROPERTY_NAMES.items()
                           if text is not None and code_point in members[name])
        key = (category, properties, digits[code_point], deltas.get(code_point, (0, 0, 0)))
        numbers.append(records.setdefault(key, len(records)))
    index, blocks = tablegen.distinct_blocks(numbers, BLOCK)
    if len(records) > 256 or len(blocks) > 256:
        sys.exit(f"{len(records)} records and {len(blocks)} blocks: more than a byte can number")

    flat = [number for block in blocks for number in block]
    first_use = {}
    for position, block in enumerate(index):
        first_use.setdefault(block, position * BLOCK)
    arrays = [
        tablegen.cpp_array("std::uint8_t", "unicode_blocks", [str(block) for block in index], 16,
                           lambda first: f"{first * BLOCK:06X}"),
        tablegen.cpp_array("std::uint8_t", "unicode_numbers", [str(number) for number in flat], 16,
                           lambda first: f"{first_use[first // BLOCK] + first % BLOCK:06X}"),
        tablegen.cpp_array("CharacterRecord", "unicode_records",
                           [record_text(*key) for key in records], 1),
    ]
    text = tablegen.cpp_file("companion.py", [CATEGORIES, PROPERTIES, CASE_MAPPINGS],
                             "companion/tables/unicode_tables.h", "kiv::companion", arrays, root)
    size = len(index) + len(flat) + 16 * len(records)
    return [tablegen.Table(OUTPUT, text, f"{len(index)} index entries, {len(blocks)} blocks of "
                                         f"{BLOCK}, {len(records)} records, {size} bytes")]
