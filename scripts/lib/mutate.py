#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Mutation testing: changes the sources in small ways, one at a time, and lists the changes that no test notices.

All changes ("mutants") are compiled into a copy of the tree at once, and an environment variable switches one of them
on. So one build is enough. A first run of each test shows which mutants it reaches. Each mutant then meets the tests
that reach it, until one of them fails or takes far too long. A change that does not compile is left out.
"""
import argparse
import json
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import time
from collections import defaultdict
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from clang.cindex import CursorKind as Kind
from clang.cindex import Index, TypeKind

BAR = 0.94  # of the whole tree's mutants, at least so many must be noticed
UNFIT_TESTS = r"^(package|packaging|build|docs|mutation|tools\.gdb)\b"  # they look at files, symbols or texts
COMPARISONS = {"<": ("<=", ">="), ">": (">=", "<="), "<=": ("<", ">"), ">=": (">", "<"), "==": ("!=",), "!=": ("==",)}
ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "<<": ">>", ">>": "<<", "&": "|", "|": "&", "^": "&"}
JUMPS = {Kind.BREAK_STMT, Kind.CONTINUE_STMT, Kind.RETURN_STMT}
CONDITIONS = {Kind.IF_STMT, Kind.WHILE_STMT, Kind.DO_STMT, Kind.CONDITIONAL_OPERATOR, Kind.RETURN_STMT}
WITH_BODIES = {Kind.IF_STMT, Kind.FOR_STMT, Kind.WHILE_STMT, Kind.CXX_FOR_RANGE_STMT}
LITERALS = {Kind.STRING_LITERAL, Kind.CXX_BOOL_LITERAL_EXPR, Kind.CHARACTER_LITERAL, Kind.INTEGER_LITERAL}
POINTERS = {TypeKind.POINTER, TypeKind.CONSTANTARRAY, TypeKind.INCOMPLETEARRAY}
HEADER = Path(__file__).resolve().parents[2] / "tests" / "mutation" / "mutant.hpp"
ROOT, WORK = Path.cwd(), Path.cwd() / "build" / "mutation"
TREE, BUILD = WORK / "tree", WORK / "build"
MACRO = re.compile(r"([A-Z][A-Z0-9_]+|assert)\(")


class Source:
    """A file and its mutants. Offsets count bytes, as clang's do."""

    def __init__(self, name, text):
        self.name, self.text = name, text
        self.mutants = []  # dictionaries
        self.edits = []  # what to insert around which bytes, and what replaces the operator in their middle
        self.seen = set()

    def code(self, begin, end):
        return self.text[begin:end].decode()

    def add(self, begin, end, news, prefix, suffix, gap=None, between=""):
        """Adds mutants that turn the bytes into one of `news`. In the inserted texts #0, #1, ... stand for them."""
        if (begin, end, news) in self.seen:
            return
        self.seen.add((begin, end, news))
        line, last = (self.text.count(b"\n", 0, offset) + 1 for offset in (begin, end))
        self.edits.append((begin, end, prefix, suffix, gap, between, len(self.mutants)))
        for new in news:
            self.mutants.append({"file": self.name, "line": line, "last": last, "valid": True,
                                 "change": " ".join(f"{self.code(begin, end)} -> {new or 'nothing'}".split())})

    def rewritten(self):
        """The text with all valid mutants in it. Outer insertions stand outside of inner ones."""
        insertions, gaps = [], {}
        for order, (begin, end, prefix, suffix, gap, between, first) in enumerate(self.edits):
            if not self.mutants[first]["valid"]:
                continue

            def numbered(text):
                return re.sub("#([0-9])", lambda m: f"::mutant::on({self.mutants[first + int(m[1])]['number']})", text)
            insertions.append(((begin, 1, begin - end, order), numbered(prefix)))
            insertions.append(((end, 0, end - begin, -order), numbered(suffix)))
            if gap:
                gaps[gap[0]] = gap[1]
                insertions.append(((gap[0], 0, sys.maxsize, 0), numbered(between) + "\n" * self.code(*gap).count("\n")))
        out, at = [f'#include "{HEADER}"\n#line 1\n'], 0
        for (offset, *_), text in sorted(insertions):
            out += [self.code(at, offset), text]
            at = max(at, offset)
            if offset in gaps:
                at = gaps.pop(offset)
        return "".join(out) + self.code(at, len(self.text))


class Finder:
    """Finds the mutants of one file in clang's syntax tree of a unit that contains it."""

    def __init__(self, source, unit, arguments):
        self.source = source
        for cursor in Index.create().parse(unit, arguments).cursor.get_children():
            if cursor.location.file and os.path.samefile(cursor.location.file.name, TREE / source.name):
                self.visit(cursor, None)

    def at(self, node):
        return node.extent.start.offset, node.extent.end.offset

    def code(self, node):
        return self.source.code(*self.at(node))

    def visit(self, node, parent):
        kids = list(node.get_children())
        text = self.code(node)
        # Of what a macro is made, clang gives the place of the macro. Constants could not be switched at run time.
        if node.kind in (Kind.ENUM_DECL, Kind.STATIC_ASSERT) or MACRO.match(text) or text.endswith("= default"):
            return
        if node.kind == Kind.VAR_DECL and re.match(r"(static |inline )*constexpr ", text):
            return
        if node.kind in CONDITIONS and kids:
            if node.kind != Kind.RETURN_STMT or kids[0].type.kind == TypeKind.BOOL:
                self.condition(kids[1] if node.kind == Kind.DO_STMT or kids[0].kind == Kind.DECL_STMT else kids[0])
        elif node.kind in LITERALS:
            self.literal(node, text)
        elif node.kind == Kind.UNARY_OPERATOR and len(kids) == 1:
            self.unary(node, kids[0], text)
        elif found := self.operator(node, kids):
            self.binary(node, kids, *found)
        if node.kind == Kind.COMPOUND_STMT:
            ends_function = parent is not None and (parent.kind.is_declaration() or parent.kind == Kind.LAMBDA_EXPR)
            for kid in kids:
                if not (ends_function and kid == kids[-1] and kid.kind == Kind.RETURN_STMT):
                    self.statement(kid)
        elif node.kind in WITH_BODIES:
            for kid in kids[1:] if node.kind == Kind.IF_STMT else kids[-1:]:
                self.statement(kid)
        for kid in kids:
            self.visit(kid, node)

    def statement(self, node):
        begin, end = self.at(node)
        is_statement = node.kind.is_expression() or node.kind in JUMPS or MACRO.match(self.code(node))
        semicolon = re.match(rb"\s*;", self.source.text[end:])
        if is_statement and semicolon and not self.code(node).startswith("static_cast<void>"):
            self.source.add(begin, end + semicolon.end(), ("",), "{ if (!#0) { ", " } }")

    def operator(self, node, kids):
        """Left operand, operator, right operand, and the bytes of the operator; None if this is not what it is."""
        begin, end = self.at(node)
        if len(kids) not in (2, 3) or self.at(kids[0])[0] != begin or self.at(kids[-1])[1] != end:
            return None
        gap = (self.at(kids[0])[1], self.at(kids[-1])[0])
        text = self.source.code(*gap).strip()
        return (self.code(kids[0]), text, self.code(kids[-1]), gap) if gap[0] < gap[1] else None

    def binary(self, node, kids, left, sign, right, gap):
        types = {kid.type.get_canonical().kind for kid in kids}
        is_number = node.kind == Kind.BINARY_OPERATOR and not types & {TypeKind.DEPENDENT, TypeKind.UNEXPOSED}
        if sign in ("&&", "||"):  # each side in turn loses its say
            force = ") || #" if sign == "&&" else ") && !#"
            self.source.add(*self.at(node), (right, left), "((static_cast<bool>(", f"{force}1))", gap,
                            f"{force}0) {sign} (static_cast<bool>(")
            return
        if sign in COMPARISONS:
            others = COMPARISONS[sign]
        elif sign in ARITHMETIC and is_number and not types <= POINTERS:
            others = (ARITHMETIC[sign],)
        elif sign[:-1] in ARITHMETIC and node.kind == Kind.COMPOUND_ASSIGNMENT_OPERATOR:
            others = (ARITHMETIC[sign[:-1]] + "=",)
        else:
            return
        choice = "".join(f"#{i} ? a {other} b : " for i, other in enumerate(others))
        self.source.add(*self.at(node), tuple(f"{left} {other} {right}" for other in others),
                        f"[](auto&& a, auto&& b) -> decltype(auto) {{ return ({choice}a {sign} b); }}(", ")", gap, ", ")

    def unary(self, node, operand, text):
        begin, end, inner_begin, inner_end = *self.at(node), *self.at(operand)
        is_prefix, inner = inner_begin > begin, self.code(operand)
        sign = text[:2] if is_prefix else text[-2:]
        if text[0] == "!" and text[:2] != "!=":  # which clang shows where == stands behind it
            self.source.add(begin, end, (inner,), "(#0 != (", "))")
        elif sign in ("++", "--"):
            other = "--" if sign == "++" else "++"
            write = (lambda what, sign: sign + what) if is_prefix else (lambda what, sign: what + sign)
            call = f"[](auto& a) -> decltype(auto) {{ return (#0 ? {write('a', other)} : {write('a', sign)}); }}("
            gap = (begin, inner_begin) if is_prefix else (inner_end, end)
            self.source.add(begin, end, (write(inner, other),), call, ")", gap)

    def condition(self, node):
        """Negates a condition that no other mutant negates."""
        at, text = self.at(node), self.code(node)
        while node.kind in (Kind.UNEXPOSED_EXPR, Kind.PAREN_EXPR) and len(kids := list(node.get_children())) == 1:
            node = kids[0]
        found = self.operator(node, list(node.get_children()))
        if node.kind == Kind.VAR_DECL:
            self.source.add(*at, (f"{text}; !{node.spelling}",), "", f"; #0 != static_cast<bool>({node.spelling})")
        elif not (found and found[1] in (*COMPARISONS, "&&", "||") or text[:1] in "!" or text in ("true", "false")):
            self.source.add(*at, (f"!({text})",), "(#0 != static_cast<bool>(", "))")

    def literal(self, node, text):
        news = []
        if re.match(r'R?".*"$', text, re.DOTALL):
            news = ['"mutant"' if text == '""' else '""']
        elif text in ("true", "false"):
            news = ["false" if text == "true" else "true"]
        elif text.startswith("'"):
            news = [f"static_cast<char>({text} + 1)"]
        elif text[:1].isdigit():
            news = [f"({text} + 1)", f"({text} - 1)"][:1 if text == "0" else 2]
        if news:
            choice = "".join(f"#{i} ? {new} : " for i, new in enumerate(news))
            self.source.add(*self.at(node), tuple(news), f"({choice}", ")")


def output(*command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True, **options).stdout


def units_of(names):
    """The files that can have mutants, with a unit that contains each: the sources, and the headers not installed."""
    installed = {os.path.normpath(Path(name).parent / header)
                 for name in names if re.match(r"foundation/(.*/)?CMakeLists\.txt$", name)
                 for header in re.findall(r"[\w./]+\.hpp", (ROOT / name).read_text())}
    texts = {name: (ROOT / name).read_text() for name in names if re.match(r"(foundation|tools)/.*\.[ch]pp$", name)}

    def unit(name):
        if name.endswith(".cpp"):
            return name
        folder, base = os.path.split(name)
        users = [user for user, text in texts.items()
                 if f'"{name}"' in text or (os.path.dirname(user) == folder and f'"{base}"' in text)]
        return next(filter(None, map(unit, sorted(users))), None)
    return {name: found for name in sorted(texts.keys() - installed) if (found := unit(name))}


def rewrite(name, unit, sources, command):
    """Puts its mutants into a file of the tree. Leaves out those in lines of which the compiler complains."""
    changed = [sources[name]]
    while changed:
        for source in changed:
            (TREE / source.name).write_text(source.rewritten())
        errors = subprocess.run([*command, "-fsyntax-only", TREE / unit], capture_output=True, text=True)
        if errors.returncode == 0:
            return
        places = set(re.findall(r"([^\s:]+):(\d+):\d+:(?! warning)", errors.stderr))
        valid = [mutant for source in sources.values() for mutant in source.mutants if mutant["valid"]]
        bad = [mutant for mutant in valid if any(
            (str(TREE / mutant["file"]), str(line)) in places for line in range(mutant["line"], mutant["last"] + 1))]
        bad = bad or [mutant for mutant in valid if mutant["file"] == name]
        for mutant in bad:
            mutant["valid"] = False
        changed = [sources[name] for name in {mutant["file"] for mutant in bad}]
    sys.exit(f"{unit} does not compile without mutants, either:\n{errors.stderr}")


def prepare(names, chosen):
    """Builds the tree with all mutants of the chosen files in it, and returns the mutants."""
    for name in names:
        if not (copy := TREE / name).exists() or copy.read_bytes() != (ROOT / name).read_bytes():
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, copy)
    subprocess.run(["cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
                    "-DCMAKE_CXX_FLAGS=-O1 -Wno-narrowing -Werror=vla"], check=True, stdout=subprocess.DEVNULL)
    commands = {}
    for entry in json.loads((BUILD / "compile_commands.json").read_text()):
        words = shlex.split(entry["command"])
        commands[os.path.relpath(entry["file"], TREE)] = words[:words.index("-o")]
    chosen = {name: unit for name, unit in chosen.items() if unit in commands}
    sources = {name: Source(name, (ROOT / name).read_bytes()) for name in chosen}
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        list(pool.map(lambda item: Finder(sources[item[0]], TREE / item[1], commands[item[1]][1:]), chosen.items()))
        mutants = [mutant for source in sources.values() for mutant in sorted(source.mutants, key=lambda m: m["line"])]
        for number, mutant in enumerate(mutants, 1):
            mutant["number"] = number
        headers = {name for name in chosen if name.endswith(".hpp")}  # first, because the sources contain them
        for part, mapping in ((headers, map), (chosen.keys() - headers, pool.map)):
            list(mapping(lambda name: rewrite(name, chosen[name], sources, commands[chosen[name]]), sorted(part)))
    subprocess.run(["cmake", "--build", BUILD, "--parallel", str(os.cpu_count())], check=True)
    return [mutant for mutant in mutants if mutant["valid"]], sum(not mutant["valid"] for mutant in mutants)


def run(command, directory, timeout, **environment):
    """The exit code, which is not 0 after the timeout, and the seconds."""
    start = time.monotonic()
    silent = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
    done = subprocess.run(["timeout", "--signal=KILL", str(timeout), *command], cwd=directory, **silent,
                          env={**os.environ, **environment})
    return done.returncode, time.monotonic() - start


def tests_of_build(pool):
    """The tests that pass, by the mutants that they reach."""
    tests = []
    for test in json.loads(output("ctest", "--show-only=json-v1", cwd=BUILD))["tests"]:
        if "command" in test and not re.search(UNFIT_TESTS, test["name"]):
            folder = next(entry["value"] for entry in test["properties"] if entry["name"] == "WORKING_DIRECTORY")
            filters = [word[len("--gtest_filter="):] for word in test["command"] if word.startswith("--gtest_filter=")]
            tests.append({"name": test["name"], "command": test["command"], "folder": folder, "filters": filters})

    def see(test):
        with tempfile.NamedTemporaryFile(dir=WORK) as file:
            file.truncate(1 << 20)  # as mutant.hpp maps it
            code, test["seconds"] = run(test["command"], test["folder"], 600, MUTANT="0", MUTANTS_REACHED=file.name)
            if code != 0:
                print(f"left out, because it fails without a mutant: {test['name']}", flush=True)
            return [number for number, mark in enumerate(file.read()) if mark and code == 0]
    reaching = defaultdict(list)
    for test, numbers in zip(tests, pool.map(see, tests)):
        for number in numbers:
            reaching[number].append(test)
    return reaching


def is_noticed(mutant, tests):
    """Whether a test fails. Tests of one GoogleTest program run together; those nearest to the file come first."""
    groups = defaultdict(list)
    for test in tests:
        groups[test["command"][0] if test["filters"] else test["name"]].append(test)

    def order(group):
        folder = f"{BUILD}/tests/{mutant['file'].removeprefix('foundation/')}"
        return -len(os.path.commonprefix([group[0]["folder"], folder])), sum(test["seconds"] for test in group)

    for group in sorted(groups.values(), key=order):
        command = group[0]["command"]
        if len(group) > 1:
            names = ":".join(name for test in group for name in test["filters"])
            command = [command[0], f"--gtest_filter={names}", "--gtest_fail_fast"]
        if run(command, group[0]["folder"], 10 + 6 * order(group)[1], MUTANT=str(mutant["number"]))[0] != 0:
            return True
    return False


def main():
    options = argparse.ArgumentParser(description="Changes the sources, and lists the changes that no test notices.")
    options.add_argument("paths", nargs="*", help="files and folders; without them, the files that have changed")
    options.add_argument("--base", default="HEAD", help="the revision since which files have changed (default: HEAD)")
    options.add_argument("--all", action="store_true", help=f"the whole tree; fails below {100 * BAR:.0f} %%")
    options = options.parse_args()
    others = output("git", "ls-files", "--others", "--exclude-standard").splitlines()
    names = {name for name in output("git", "ls-files").splitlines() + others if (ROOT / name).is_file()}
    changed = options.paths if options.all or options.paths else others + output(
        "git", "diff", "--name-only", options.base).splitlines()
    chosen = {name: unit for name, unit in units_of(names).items()
              if options.all or any(f"{name}/".startswith(path.rstrip("/") + "/") for path in changed)}
    if not chosen:
        sys.exit("no file that has mutants was chosen, or has changed")
    mutants, left_out = prepare(names, chosen)
    started, noticed = time.monotonic(), 0
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        reaching = tests_of_build(pool)
        results = pool.map(lambda mutant: is_noticed(mutant, reaching[mutant["number"]]), mutants)
        for mutant, result in zip(mutants, results):
            noticed += result
            if not result:
                print(f"{mutant['file']}:{mutant['line']}: survives: {mutant['change']}", flush=True)
    rate = noticed / max(len(mutants), 1)
    print(f"{noticed} of {len(mutants)} mutants noticed, {100 * rate:.1f} %; {left_out} left out, because they do not "
          f"compile; {time.monotonic() - started:.0f} s for the tests")
    sys.exit(options.all and rate < BAR)


main()
