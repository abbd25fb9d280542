#!/usr/bin/env python3
"""Checks that every #include obeys the layers of docs/architecture.md.

    layers_are_kept.py SOURCE_FOLDER

A file may use its own layer and those that its row names. A file or header that no
row knows is an error, so that whoever adds one says where it stands.
"""

import re
import sys
from pathlib import Path

# A layer is a folder of libkivxx/ together with its public headers; what it may use.
LAYERS = {
    "platform": "",
    "char": "companion",
    "string": "char platform",
    "buffer": "char",
    "charset": "char string buffer platform",
    "bigint": "char platform",
    "numconv": "char string bigint platform",
    "decimal": "char string numconv bigint companion",
    "stream": "char string buffer charset platform",
}

# Views count as char/ does, though string/ compiles them: Char16's functions take them.
PUBLIC_HEADERS = {
    "char": "export char16 character kdecimal string_ref",
    "string": "case_insensitive utility code_points",
    "buffer": "buffer",
    "charset": "charset convert",
    "bigint": "big_uint",
    "numconv": "numconv",
    "decimal": "decimal decimal_literals format fmt",
    "stream": "locale stream",
    "": "kiv",
}

# All that the companion sees of the library.
COMPANION_SEES = {"char/companion.h", "char/companion_decimal.h", "kiv/kdecimal.h"}

# Beside the standard library: instructions of the processor anywhere, and the
# runtime's own exceptions in streams, which must let a cancelled thread go. All
# else that is not C++ is asked for in platform/.
INTRINSICS = {"emmintrin.h", "immintrin.h"}
OTHER_HEADERS = {"stream": {"cxxabi.h"}, "platform": {"cxxabi.h", "langinfo.h",
                                                      "locale.h", "cpuid.h"}}

OWNER = {f"kiv/{name}.h": layer
         for layer, names in PUBLIC_HEADERS.items() for name in names.split()}

INCLUDE = re.compile(r'\s*#\s*include\s*([<"])([^>"]+)[>"]')


def includes(path):
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if match := INCLUDE.match(line):
            yield number, match[1] == "<", match[2]


def layer_of(header):
    """The layer of a header of the library, None for any other."""
    if header.startswith("kiv/"):
        return OWNER[header]
    folder = header.split("/")[0]
    return folder if "/" in header and folder in (*LAYERS, "companion") else None


def library_fault(layer, in_brackets, header):
    allowed = {layer, *LAYERS[layer].split()}
    if in_brackets and not header.startswith("kiv/"):
        known = INTRINSICS | OTHER_HEADERS.get(layer, set())
        if "." in header and header not in known and header != "fmt/format.h":
            return "is not of the standard library"
    elif (target := layer_of(header)) not in allowed:
        return f"is of {target or 'no layer'}, which {layer}/ may not use"
    return None


def companion_fault(_layer, in_brackets, header):
    if in_brackets and not header.startswith("kiv/"):
        return None if "." not in header else "is not of the standard library"
    if header in COMPANION_SEES or header.startswith("companion/"):
        return None
    return "is nothing that the companion may see"


def user_fault(_layer, in_brackets, header):
    if in_brackets:
        return None
    return "is private to the library" if layer_of(header) else None


def rule_for(path, root):
    """The layer of a file and the rule for what it includes."""
    folder, *rest = path.relative_to(root).parts
    if folder == "include":
        return OWNER[f"kiv/{path.name}"], library_fault
    if folder == "libkivxx":
        return rest[0], library_fault
    return folder, companion_fault if folder == "companion" else user_fault


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    root = Path(sys.argv[1])
    faults, checked = [], 0
    for folder in ("include", "libkivxx", "companion", "tools", "examples"):
        for path in sorted((root / folder).rglob("*")):
            if path.suffix not in (".h", ".cpp") or path.name == "kiv.h":
                continue
            try:
                layer, rule = rule_for(path, root)
                for number, in_brackets, header in includes(path):
                    checked += 1
                    if fault := rule(layer, in_brackets, header):
                        faults.append(f"{path}:{number}: {header} {fault}")
            except KeyError as error:
                faults.append(f"{path}: no layer is known for {error}")
    if checked < 100:
        faults.append(f"only {checked} includes in {root}: is it the source folder?")
    print("\n".join(faults) or f"{checked} includes keep to their layers")
    sys.exit(bool(faults))


if __name__ == "__main__":
    main()
