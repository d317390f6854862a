#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Tells which lines and branches of foundation/ have been run, from the counters that gcov left in a build directory.

Usage: coverage.py BUILD-DIRECTORY

A branch counts if it is one of the source: not the way that an exception takes, not what only that way leads to, and
not one in a line that has no word or sign for a branch: the guard of a static variable, a comparison that is defaulted,
what destructors ask. A line counts if it has more than brackets that close. What a header has is counted over all
programs and all instances of a template.

A comment `// unreachable: REASON` excuses what it stands beside, or in a line of its own the statement below; so does
`// rarely: REASON`, for what threads may come by or not. Whatever is not run and not excused is listed, as is what is
said to be unreachable and is run, and the exit status is 1.
"""
import os
import re
import subprocess
import sys
from collections import defaultdict
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
EXCUSE = re.compile(r"// (unreachable|rarely): (\S.*)$")
WITHOUT_CODE = {"foundation/corvane/common/logging/processLogger.cpp"}  # no counters, then
BRANCHES = re.compile(r"\b(if|for|while|do|switch|case|default:|FOUNDATION_LOG)\b|\?|&&|\|\|")
GOES_ON = re.compile(r"(\b(if|for|while|switch) ?\(|&&|\|\||\?|[^:]:)$")  # on the next line
ONLY_CLOSES = re.compile(r"[\]})\s;,]*(//.*)?$")


class Block:
    """What runs as one piece, with the branches at its end. `exceptional`: only exceptions lead to it."""

    def __init__(self, count, exceptional):
        self.count = count
        self.exceptional = exceptional
        self.branches = []  # of each: how often it was taken

    def add(self, other):
        self.count += other.count
        self.exceptional = self.exceptional and other.exceptional
        self.branches = [mine + its for mine, its in zip(self.branches, other.branches)]


class Line:
    def __init__(self):
        self.count = 0
        self.shapes = defaultdict(list)  # the blocks of its instances, merged where their branches are the same

    def add(self, blocks):
        shape = tuple(len(block.branches) for block in blocks)
        known = self.shapes[shape]
        if not known:
            known.extend(blocks)
        else:
            for mine, its in zip(known, blocks):
                mine.add(its)

    def branches(self):
        """How often each was taken, of those in what was run: the others lie behind one that was not taken."""
        return [taken for blocks in self.shapes.values() for block in blocks if block.count for taken in block.branches]


def number(text):
    return int(text.rstrip("*")) if text[0].isdigit() else 0


def read(gcov_text, files):
    """Adds what `gcov --all-blocks --branch-counts` says to `files`."""
    lines, blocks, at = None, [], 0

    def finish():
        if lines is not None and blocks:
            lines[at].add(list(blocks))
        blocks.clear()

    for text in gcov_text.splitlines():
        if match := re.match(r" *([^ :]+): *(\d+)-block +\d+$", text):
            if int(match[2]) != at:
                finish()
                at = int(match[2])
            blocks.append(Block(number(match[1]), match[1].startswith("$")))
        elif match := re.match(r" *([^ :]+): *(\d+):(.*)$", text):
            finish()
            at = int(match[2])
            if at == 0 and match[3].startswith("Source:"):
                source = match[3][len("Source:") :]
                lines = files[source] if source.startswith("foundation/") else None
            elif at and match[1] != "-" and lines is not None:
                lines[at].count += number(match[1])
        elif match := re.match(r"branch +\d+ (?:taken (-?\d+)|never executed)(.*)$", text):
            if not blocks:  # a call that may throw ends the line's first block, which has no line of its own
                blocks.append(Block(0 if match[1] is None else 1, False))
            if "(throw)" in match[2]:
                blocks[-1].branches = []  # a call: it goes on, or throws
            else:
                blocks[-1].branches.append(max(int(match[1] or 0), 0))  # threads may leave -1
        elif text.startswith("-----") or text.startswith("function "):
            finish()
    finish()


def run_gcov(build, counters):
    command = ["gcov", "--all-blocks", "--branch-probabilities", "--branch-counts", "--stdout", "--relative-only",
               "--source-prefix", str(ROOT), str(counters.resolve())]
    return subprocess.run(command, cwd=build, capture_output=True, text=True, check=True).stdout


def excuses_of(source):
    """Of each excused line: the line of the excuse."""
    excused = {}
    for i, text in enumerate(source, 1):
        if not EXCUSE.search(text):
            continue
        last = first = i
        if text.strip().startswith("//"):
            last = first = i + 1
            while source[first - 1].strip().startswith("//"):
                last = first = first + 1
            depth = 0
            while True:
                depth += source[last - 1].count("{") - source[last - 1].count("}")
                if depth <= 0 and source[last - 1].rstrip().endswith((";", "}", ",", "{", ")")):
                    break
                last += 1
        for line in range(first, last + 1):
            excused[line] = i
    return excused


def main():
    build = Path(sys.argv[1])
    counters = sorted(build.rglob("*.gcda"))
    files = defaultdict(lambda: defaultdict(Line))
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        for text in pool.map(lambda path: run_gcov(build, path), counters):
            read(text, files)

    missing, listed = [], []
    totals = [0, 0, 0, 0]
    print(f"{'lines':>13} {'branches':>13}  file")
    for name in sorted(files):
        source = (ROOT / name).read_text().splitlines()
        excused, used = excuses_of(source), set()
        row = [0, 0, 0, 0]
        for at, line in sorted(files[name].items()):
            text = source[at - 1].strip()
            if ONLY_CLOSES.match(text):
                continue
            bare, before = (re.sub(r"//.*|\"[^\"]*\"", "", source[n]).strip() for n in (at - 1, at - 2))
            branches = line.branches() if BRANCHES.search(bare) or GOES_ON.search(before) else []
            gaps = ["never run"] if line.count == 0 else [
                f"branch {n} of {len(branches)} never taken" for n, taken in enumerate(branches) if taken == 0]
            if gaps and at in excused:
                used.add(excused[at])
                if line.count == 0:
                    continue
                branches, gaps = [taken for taken in branches if taken], []
            row = [row[0] + (line.count != 0), row[1] + 1, row[2] + sum(taken != 0 for taken in branches),
                   row[3] + len(branches)]
            missing += [f"{name}:{at}: {gap}: {text}" for gap in gaps]
        for at in sorted(set(excused.values())):
            kind, reason = EXCUSE.search(source[at - 1]).groups()
            listed.append(f"{name}:{at}: {reason}")
            if at not in used and kind == "unreachable":
                missing.append(f"{name}:{at}: excused, but run: {reason}")
        print(f"{row[0]:6} /{row[1]:5} {row[2]:6} /{row[3]:5}  {name}")
        totals = [a + b for a, b in zip(totals, row)]
    print(f"{totals[0]:6} /{totals[1]:5} {totals[2]:6} /{totals[3]:5}  in all")
    sources = {str(path.relative_to(ROOT)) for path in (ROOT / "foundation").rglob("*.cpp")}
    missing += [f"{name}: never loaded" for name in sorted(sources - files.keys() - WITHOUT_CODE)]
    for title, entries in (("unreachable", listed), ("missing", missing)):
        if entries:
            print(f"\n{title}:")
            print("\n".join(f"  {entry}" for entry in entries))
    sys.exit(bool(missing) or not files)


main()
