#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Lets the search find a page by every word of its title, not only by the first: search.py FOLDER-OF-THE-SEARCH.

Doxygen's index is a list for each first letter. What it has for the pages' files, by their names, makes room.
"""
import pathlib
import re
import sys

ENTRY = re.compile(r"^  \['(\w+)_\d+',(\[.*\])\],?$")


def entries_of(path):
    lines = [line for line in path.read_text().splitlines() if line.startswith("  [")]
    return [ENTRY.match(line).groups() for line in lines]


def write(path, entries):
    lines = [f"  ['{key}_{number}',{value}]" for number, (key, value) in enumerate(sorted(entries))]
    path.write_text("var searchData=\n[\n" + ",\n".join(lines) + "\n];\n")


def ends_of(key):
    """A title from each of its words on; short words lead nowhere."""
    words = key.split("_20")
    return ["_20".join(words[first:]) for first in range(1, len(words)) if len(words[first]) > 2]


def main(folder):
    letters = re.search(r'0: "(.*)"', (folder / "searchdata.js").read_text())[1]
    pages = [entry for path in folder.glob("pages_*.js") for entry in entries_of(path)]
    found = [(end, value) for key, value in pages for end in ends_of(key)]
    for number, letter in enumerate(letters):
        path = folder / f"all_{number:x}.js"
        kept = [entry for entry in entries_of(path) if not entry[0].endswith("_2emd")]
        write(path, kept + [entry for entry in found if entry[0][0] == letter])


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]))
