#!/usr/bin/env python3
"""Only what the public headers name is exported: things in kiv, and standard
templates made for kiv::char16.

    exported_symbols.py LIBRARY INCLUDE_DIR
"""
import pathlib
import re
import subprocess
import sys

library, include = sys.argv[1:]
public = set()
for header in pathlib.Path(include, "kiv").glob("*.h"):
    public.update(re.findall(r"\w+", header.read_text()))

listing = subprocess.run(["nm", "-DC", "--defined-only", library], check=True,
                         capture_output=True, text=True).stdout
names = [line.split(" ", 2)[2].split("@@")[0] for line in listing.splitlines()]
names = [name for name in names if not name.startswith("KIVXX_")]

wrong = []
for name in names:
    own = re.findall(r"\bkiv::(\w+)", name)
    if not own or not public.issuperset(own):
        wrong.append(f"exported: {name}")
for required in ("kiv::Charset::forName(", "typeinfo for kiv::MalformedInputError",
                 "kiv::Charset::UTF_8", "std::__cxx11::basic_string<kiv::char16,"):
    if not any(name.startswith(required) for name in names):
        wrong.append(f"missing: {required}")
print("\n".join(wrong) or f"{len(names)} exported symbols, all public")
sys.exit(1 if wrong else 0)
