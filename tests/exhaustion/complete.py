#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs the programs, and compares the operations that they say they have covered with what the libraries export.

Usage: complete.py NM PROGRAM... -- LIBRARY...

An operation is named as it is in the source, without `foundation`, `corvane`, `common` and `std`. Where the libraries
export several of a name, its parameters' types follow, without namespaces, const, & and the usual defaults of templates.
"""
import re
import subprocess
import sys
from collections import defaultdict

# How many arguments of a template are not its defaults.
ARGUMENTS = {"vector": 1, "map": 2, "unordered_map": 2, "basic_string": 1, "basic_string_view": 1}
ALIASES = {"basic_string<char>": "string", "basic_string_view<char>": "string_view"}
NAMESPACES = r"(?:std|__cxx11|foundation|corvane|common)::"


def closing(text, start):
    """Where the bracket that opens before `start` closes."""
    depth = 1
    for i in range(start, len(text)):
        depth += (text[i] in "<(") - (text[i] in ">)")
        if depth == 0:
            return i
    raise ValueError(text)


def split(text):
    parts, depth, start = [], 0, 0
    for i, c in enumerate(text):
        depth += (c in "<(") - (c in ">)")
        if c == "," and depth == 0:
            parts.append(text[start:i].strip())
            start = i + 1
    return parts + [text[start:].strip()]


def without_defaults(text):
    """Templates with no more arguments than somebody would write."""
    result, i = "", 0
    while i < len(text):
        word = re.match(r"[\w:]*operator<<|\w+<|\w+|.", text[i:]).group()
        i += len(word)
        if len(word) > 1 and word.endswith("<") and not word.endswith("operator<<"):
            end = closing(text, i)
            arguments = [without_defaults(argument) for argument in split(text[i:end])]
            template = word + ", ".join(arguments[: ARGUMENTS.get(word[:-1])]) + ">"
            result += ALIASES.get(template, template)
            i = end + 1
        else:
            result += word
    return result


def short_type(text):
    text = re.sub(r"\b[a-z_]\w*::", "", text)
    return re.sub(r" ?\bconst\b|(?<!&)&(?!&)", "", text)


def name_and_parameters(symbol):
    symbol = without_defaults(re.sub(NAMESPACES, "", symbol.replace("[abi:cxx11]", "")))
    depth, start = 0, 0
    for i, c in enumerate(symbol):
        if c == "(" and depth == 0 and not symbol[:i].endswith("operator"):
            break
        if c == " " and depth == 0:  # what precedes is the return type of a template
            start = i + 1
        if not symbol[:i].endswith(("operator", "operator<")):
            depth += (c == "<") - (c == ">")
    name = re.sub(r"<.*>", lambda match: short_type(match.group()), symbol[start:i])
    return name, short_type(symbol[i : closing(symbol, i + 1) + 1])


def exports(nm, libraries):
    parameters = defaultdict(set)
    for library in libraries:
        lines = subprocess.run([nm, "-DC", "--defined-only", library], capture_output=True, text=True, check=True)
        for line in lines.stdout.splitlines():
            _, kind, symbol = line.split(" ", 2)
            if kind == "T":
                name, types = name_and_parameters(symbol)
                parameters[name].add(types)
    return {name + (types if len(several) > 1 else "") for name, several in parameters.items() for types in several}


def covered(programs):
    operations, failed = set(), False
    for program in programs:
        run = subprocess.run([program], stdout=subprocess.PIPE, text=True)
        print(run.stdout, end="")
        failed = failed or run.returncode != 0
        table = run.stdout[run.stdout.index("points  operation\n") :]
        operations |= set(re.findall(r"^ *\d+  (?!inline |in \d)(.*)$", table, re.MULTILINE))
    return operations, failed


def main():
    nm, *rest = sys.argv[1:]
    programs, libraries = rest[: rest.index("--")], rest[rest.index("--") + 1 :]
    operations, failed = covered(programs)
    exported = exports(nm, libraries)
    for name in sorted(exported - operations):
        print(f"exported, but not covered: {name}")
    for name in sorted(operations - exported):
        print(f"covered, but not exported: {name}")
    print(f"{len(operations & exported)} of {len(exported)} exported operations covered")
    sys.exit(failed or exported != operations or not exported)


main()
