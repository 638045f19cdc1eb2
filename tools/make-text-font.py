#!/usr/bin/python3
"""Makes a small font of a large one: the characters of the program's own texts, Latin letters, and
what Qt draws in place of a password and at the end of a shortened text.

make-text-font.py FONT FAMILY OUTPUT TRANSLATION...

FAMILY is the new font's name. It is as long as the old one, whose place it takes in the file: under
the old name the small font would stand in the way of the large one. hb-subset (HarfBuzz) does the
rest. Without hints, which the program does not ask for, and without vertical metrics and layout.
"""

import argparse
import subprocess
import tempfile
import xml.etree.ElementTree as ET
from pathlib import Path

LATIN = [*range(0x20, 0x7F), *range(0xA0, 0x100)]
DRAWN_BY_QT = "\u2026\u25cf"
DROPPED = "GDEF,GPOS,GSUB,vhea,vmtx,FFTM"


def texts(translation):
    """All texts of a .ts file, in both languages."""
    root = ET.parse(translation).getroot()
    return "".join(element.text or "" for element in root.iter() if element.tag in ("source", "translation"))


def subset(font, characters, output):
    with tempfile.NamedTemporaryFile("w", encoding="utf-8", suffix=".txt") as file:
        file.write(characters)
        file.flush()
        subprocess.run(["hb-subset", f"--font-file={font}", f"--text-file={file.name}", "--no-hinting",
                        f"--drop-tables={DROPPED}", f"--output-file={output}"], check=True)


def family_of(font):
    return subprocess.run(["fc-scan", "-f", "%{family[0]}", font], check=True,
                          stdout=subprocess.PIPE, encoding="utf-8").stdout


def renamed(data, old, new):
    if len(old) != len(new):
        raise SystemExit(f'make-text-font: "{new}" is not as long as "{old}"')
    name = old.encode("utf-16-be")
    if name not in data:
        raise SystemExit(f'make-text-font: the font does not name itself "{old}"')
    return data.replace(name, new.encode("utf-16-be"))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("font", type=Path)
    parser.add_argument("family")
    parser.add_argument("output", type=Path)
    parser.add_argument("translations", type=Path, nargs="+")
    options = parser.parse_args()
    characters = {*map(chr, LATIN), *DRAWN_BY_QT}
    for translation in options.translations:
        characters.update(texts(translation))
    subset(options.font, "".join(sorted(characters)), options.output)
    data = options.output.read_bytes()
    options.output.write_bytes(renamed(data, family_of(options.output), options.family))



if __name__ == "__main__":
    main()
