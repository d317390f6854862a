#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares the event log's accesses to shared memory with the table beside the model.

Usage: accesses.py SOURCES TABLE [--print]

SOURCES is the folder of the event log's sources, TABLE is docs/model/accesses.txt. --print writes what was found, as
lines of the table. An access is a use of an atomic variable, of the ring, of a text of a record, of a fence, or a copy
that the kernel makes. A use in a form that is not known here is an error: nothing is passed over.
"""

import collections
import pathlib
import re
import sys

OPERATIONS = ("load", "store", "exchange", "fetch_add", "fetch_sub", "compare_exchange_strong", "compare_exchange_weak")
# Other ways to share memory between threads. None is used, so none is understood.
REFUSED = r"\b(volatile|atomic_ref|atomic_flag|atomic_signal_fence|__sync_\w+|mutex|call_once|thread_local|memory_order\()"


def code_of(path):
    """The text without comments, literals and the lines of the preprocessor; lines keep their numbers."""

    def blank(match):
        return "\n" * match.group().count("\n") or " "

    text = path.read_text()
    text = re.sub(r'//[^\n]*|/\*.*?\*/|"(?:[^"\\\n]|\\.)*"|\'(?:[^\'\\\n]|\\.)+\'', blank, text, flags=re.S)
    return re.sub(r"^[ \t]*#(?:[^\n\\]|\\.)*(?:\\\n[^\n]*)*", blank, text, flags=re.M)


def closing(text, start):
    """The position of the bracket that closes the one at `start`."""
    pairs = {"(": ")", "[": "]", "<": ">", "{": "}"}
    opening, depth = text[start], 0
    for position in range(start, len(text)):
        if text[position] == opening:
            depth += 1
        elif text[position] == pairs[opening]:
            depth -= 1
            if depth == 0:
                return position
    raise ValueError("a bracket is open")


def plain(text):
    return re.sub(r"\s+", " ", text).strip()


def order_of(arguments):
    orders = re.findall(r"memory_order(?:_|::)(\w+)", arguments)
    return "+".join(orders) if orders else "seq_cst"


class Source:
    def __init__(self, path):
        self.name = path.name
        self.text = code_of(path)

    def where(self, position):
        return "%s:%d" % (self.name, self.text.count("\n", 0, position) + 1)

    def atomics(self):
        """Each declaration of an atomic variable: its name, and the position of the name."""
        for match in re.finditer(r"std::atomic<", self.text):
            end = closing(self.text, match.end() - 1)
            name = re.match(r"\s+(\w+)\s*[;{=(]", self.text[end + 1 :])
            if name:
                yield name.group(1), end + 1 + name.start(1)


def accesses(sources):
    """What was found: (file, object, operation, order) -> how often; and the uses that are not understood."""
    found, strange = collections.Counter(), []
    declared = {(source.name, position) for source in sources for _, position in source.atomics()}
    shared = {name for source in sources for name, _ in source.atomics()} | {"ring_"}
    for source in sources:
        text = source.text
        for match in re.finditer(REFUSED, text):
            strange.append("%s: %s" % (source.where(match.start()), match.group()))

        for match in re.finditer(r"\b(%s)\b" % "|".join(sorted(shared)), text):
            name, before, after = match.group(), text[: match.start()], text[match.end() :]
            operation = re.match(r"\s*\.\s*(%s)\s*\(" % "|".join(OPERATIONS), after)
            if (source.name, match.start()) in declared or re.search(r"std::array<[\w, :]+>\s+$", before):
                continue  # its declaration
            if re.search(r"offsetof\(\w+, $", before):
                continue
            if operation:
                opening = match.end() + operation.end() - 1
                order = order_of(text[opening : closing(text, opening)])
                found[source.name, name, operation.group(1), order] += 1
            elif name == "ring_" and re.match(r"\[|\.(begin|end)\(\)", after):
                found[source.name, name, "address", "-"] += 1
            elif re.search(r"&$", before):
                found[source.name, name, "address", "-"] += 1
            elif re.search(r"[:,]\s*$", before) and re.match(r"[({]", after):
                found[source.name, name, "initialise", "-"] += 1
            else:
                strange.append("%s: %s" % (source.where(match.start()), plain(before[-40:] + name + after[:40])))

        for match in re.finditer(r"\b(?:__|std::)?atomic_\w+\s*\(|\b__atomic_\w+\s*\(", text):
            call = text[match.start() : closing(text, match.end() - 1) + 1]
            form = re.fullmatch(r"__atomic_(load_n|store_n)\(&(.*?)(?:, [\w.*]+)?, __ATOMIC_(\w+)\)", plain(call))
            fence = re.fullmatch(r"__atomic_thread_fence\(__ATOMIC_(\w+)\)", plain(call))
            if form:
                found[source.name, form.group(2).strip("()"), form.group(1)[:-2], form.group(3).lower()] += 1
            elif fence:
                found[source.name, "fence", "fence", fence.group(1).lower()] += 1
            else:
                strange.append("%s: %s" % (source.where(match.start()), plain(call)))

        # A text of a record, or of a copy of one.
        for match in re.finditer(r"\b(\w+(?:\[\w+\])?)\s*(?:\.|->)\s*(\*\s*(?:[\w:]+(?:\[\w+\])?\.)?text|text\d)\b", text):
            found[source.name, re.sub(r"\s", "", match.group()), "member", "-"] += 1

        # Copies that the kernel makes.
        for match in re.finditer(r"\breader_\.(readShared|read)\s*\(", text):
            arguments = text[match.end() : closing(text, match.end() - 1)]
            object_ = plain(re.split(r",(?![^()]*\))", arguments)[0])
            order = "acquire" if match.group(1) == "readShared" else "-"
            found[source.name, object_, "copy", order] += 1
    return found, strange


def table(path):
    """What the table has: the same as `accesses` found."""
    rows = collections.Counter()
    for line in path.read_text().splitlines():
        if line.strip() and not line.startswith("#"):
            *key, times, _ = (cell.strip() for cell in line.split("|"))
            rows[tuple(key)] += int(times)
    return rows


def main(arguments):
    folder, listed = pathlib.Path(arguments[0]), pathlib.Path(arguments[1])
    sources = [Source(path) for path in sorted(folder.glob("*.[ch]pp"))]
    found, strange = accesses(sources)
    if "--print" in arguments:
        for key, times in sorted(found.items()):
            print("%-17s| %-33s| %-23s| %-8s| %d | " % (*key, times))
        return 0
    wanted = table(listed)
    problems = ["not understood: " + use for use in strange]
    for key in sorted(found.keys() | wanted.keys()):
        if found[key] != wanted[key]:
            problems.append("%s, %s, %s, %s: %d in the code, %d in the table" % (*key, found[key], wanted[key]))
    for problem in problems:
        print(problem)
    if not sources or not found:
        problems.append("nothing found")
    print("%d accesses of the event log, %d differ from the table" % (sum(found.values()), len(problems)))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
