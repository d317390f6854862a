#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Mutation testing of foundation/ (see scripts/mutate).

All mutants of all files are compiled in at once; an environment variable says which one is alive (see mutants.py and
tests/mutation/mutant.hpp). So there is one build. Each test is run once to see which mutants it comes by; then each
mutant meets the tests that come by it, the quickest ones first, until one of them fails or takes far too long.

What is kept in build/mutation: tree (the rewritten copy), build, mutants.json (all mutants, by file), reached.json (by
test), results.json (of each mutant, by what it changes, so that it outlives a new numbering; a kill is not asked for
again, unless with --again). Mutants that tests/mutation/equivalent.txt names are left out: a line there is
"file: old -> new :: reason". tests/mutation/surviving.txt says in the same way why others survive. The exit status is 1
if one survives that is not there, or if fewer than 97 of 100 are killed; with --equivalents, if one is killed.
"""
import argparse
import fnmatch
import hashlib
import json
import os
import random
import re
import resource
import signal
import shutil
import subprocess
import sys
import tempfile
import textwrap
import time
from collections import defaultdict
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))
import mutants as finder  # noqa: E402

ROOT = Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "mutation"
TREE, BUILD = WORK / "tree", WORK / "build"
MOST_OF_A_FILE = 1000  # mutants
FLAGS = f"-O1 -w -Wno-narrowing -include {TREE}/tests/mutation/mutant.hpp"
# They look at the package, at symbols or at texts.
UNFIT_TESTS = re.compile(r"package|^build\.|^tools\.gdb|symbols")


def load(name, default):
    path = WORK / name
    return json.loads(path.read_text()) if path.exists() else default


def save(name, value):
    path = WORK / name
    path.with_suffix(".new").write_text(json.dumps(value, indent=0))
    path.with_suffix(".new").replace(path)


def write_if_new(path, text):
    if not path.exists() or path.read_text() != text:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)


def tracked_files():
    command = ["git", "ls-files", "--cached", "--others", "--exclude-standard"]
    names = subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=True).stdout.splitlines()
    return [name for name in names if (ROOT / name).is_file()]


def sources(names):
    """The sources of foundation/, and the headers that are not installed, each with a unit that includes it."""
    units = {name: name for name in names if name.startswith("foundation/") and name.endswith(".cpp")}
    texts = {name: (ROOT / name).read_text() for name in units}
    for name in names:
        folder = Path(name).parent
        if not name.startswith("foundation/") or not name.endswith(".hpp") or not (ROOT / folder / "CMakeLists.txt").exists():
            continue
        if re.search(rf"\b{Path(name).name}\b", (ROOT / folder / "CMakeLists.txt").read_text()):
            continue  # installed
        unit = next((unit for unit in sorted(texts) if f'"{name}"' in texts[unit]), None)
        if unit:
            units[name] = unit
    return dict(sorted(units.items()))


def compile_command(compiler, root, unit):
    return [compiler, "-std=c++20", f"-I{root}", "-DBOOST_LOG_DYN_LINK", str(root / unit)]


def find_all(units, clang):
    """The mutants of each file."""
    def find(item):
        name, unit = item
        text = (ROOT / name).read_bytes()
        command = compile_command(clang, ROOT, unit)
        return finder.find(name, text, command, lambda path: path == str(ROOT / name))

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        return dict(zip(units, pool.map(find, units.items())))


def compiles(source, unit, numbers, without):
    """None, or the lines of the file that do not compile."""
    write_if_new(TREE / source.path, source.rewritten(numbers, without))
    command = compile_command("g++", TREE, unit) + FLAGS.split() + ["-fsyntax-only"]
    run = subprocess.run(command, capture_output=True, text=True)
    if run.returncode == 0:
        return None
    lines = re.findall(rf"{re.escape(str(TREE / source.path))}:(\d+)", run.stderr)
    return {int(line) for line in lines} or {mutant["line"] for mutant in source.mutants}


def digest(*paths):
    return hashlib.sha256(b"".join(path.read_bytes() for path in paths)).hexdigest()


def rewrite(source, unit, first):
    """Puts the file with its mutants, numbered from `first`, into the tree, but for those that do not compile."""
    numbers, without = range(first, first + len(source.mutants)), set()
    while (bad := compiles(source, unit, numbers, without)) is not None:
        more = {i for i, mutant in enumerate(source.mutants) if mutant["line"] in bad} - without
        if not more:
            sys.exit(f"{source.path} does not compile even without mutants in lines {sorted(bad)}")
        without |= more
    for i, mutant in enumerate(source.mutants):
        mutant["number"] = first + i
        mutant["invalid"] = i in without


def prepare(units, clang):
    """Rewrites what has changed of the tree. Returns all mutants.

    Each file has a range of numbers of its own, so that a change of one file does not change the others.
    """
    for name in tracked_files():
        if name not in units:
            (TREE / name).parent.mkdir(parents=True, exist_ok=True)
            if not (TREE / name).exists() or (TREE / name).read_bytes() != (ROOT / name).read_bytes():
                shutil.copy(ROOT / name, TREE / name)  # with a new time
    tool = digest(ROOT / "scripts/lib/mutants.py", ROOT / "tests/mutation/mutant.hpp")
    known = load("mutants.json", {})
    files = known.get("files", {}) if known.get("tool") == tool else {}
    changed = {name: unit for name, unit in units.items() if files.get(name, {}).get("of") != digest(ROOT / name)}
    found = find_all(changed, clang)
    # First all of them without mutants, for they include each other.
    for name in changed:
        write_if_new(TREE / name, (ROOT / name).read_text())
    ranges = max((entry["range"] for entry in files.values()), default=0)
    for name, source in found.items():
        if name not in files:
            ranges += 1
            files[name] = {"range": ranges}
        rewrite(source, units[name], files[name]["range"] * MOST_OF_A_FILE)
        files[name].update({"of": digest(ROOT / name), "mutants": source.mutants})
    save("mutants.json", {"tool": tool, "files": files})
    return [mutant for name in units for mutant in files[name]["mutants"]]


def build():
    if not (BUILD / "build.ninja").exists():
        # Debug, for the assertions of the standard library's fast paths are off anyway.
        subprocess.run(["cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None",
                        f"-DCMAKE_CXX_FLAGS={FLAGS}"], check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", BUILD, "--parallel", str(os.cpu_count())], check=True)


class Test:
    def __init__(self, name, command, directory):
        self.name, self.command, self.directory = name, command, directory
        filters = [word for word in command if word.startswith("--gtest_filter=")]
        self.program = command[0] if filters else None  # of a test that can be run together with others
        self.filter = filters[0].split("=", 1)[1] if filters else None

    def stamp(self, mutants):
        """Of the files that its command names, when the last one changed; and of the mutants."""
        changed = max((os.stat(word).st_mtime_ns for word in self.command if os.path.isfile(word)), default=0)
        return f"{changed} {mutants}"


def tests():
    text = subprocess.run(["ctest", "--show-only=json-v1"], cwd=BUILD, capture_output=True, text=True, check=True).stdout
    for test in json.loads(text)["tests"]:
        properties = {entry["name"]: entry["value"] for entry in test.get("properties", [])}
        if "command" in test and not UNFIT_TESTS.search(test["name"]) and not properties.get("DISABLED"):
            yield Test(test["name"], test["command"], properties.get("WORKING_DIRECTORY", str(BUILD)))


def run(command, directory, timeout, **environment):
    """Whether it succeeded, and how long it took; everything that it started is gone afterwards."""
    start = time.monotonic()
    process = subprocess.Popen(command, cwd=directory, env={**os.environ, **environment}, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
    try:
        code = process.wait(timeout)
    except subprocess.TimeoutExpired:
        code = "timeout"
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()
    return code, time.monotonic() - start


def see_what_is_reached(count, jobs, wanted):
    """Of each wanted test: its time, and the numbers of the mutants that it comes by. Failing ones are left out."""
    known = load("reached.json", {})
    mutants = digest(WORK / "mutants.json")

    def see(test):
        with tempfile.NamedTemporaryFile(dir=WORK) as file:
            file.write(bytes(count + 1))
            file.flush()
            code, seconds = run(test.command, test.directory, 600, MUTANT="0", MUTANTS_REACHED=file.name)
            file.seek(0)
            marks = file.read()
        return {"code": code, "seconds": seconds, "stamp": test.stamp(mutants),
                "mutants": [i for i, mark in enumerate(marks) if mark]}

    everything = [test for test in tests() if re.search(wanted, test.name)]
    todo = [test for test in everything if known.get(test.name, {}).get("stamp") != test.stamp(mutants)]
    with ThreadPoolExecutor(jobs) as pool:
        seen = dict(zip((test.name for test in todo), pool.map(see, todo)))
    reached = {test.name: seen.get(test.name) or known[test.name] for test in everything}
    save("reached.json", {**known, **reached})
    for name, entry in reached.items():
        if entry["code"] != 0:
            print(f"left out, for it fails without a mutant: {name} ({entry['code']})", flush=True)
    return {name: entry for name, entry in reached.items() if entry["code"] == 0}


class Hunt:
    def __init__(self, reached, most_seconds):
        self.most_seconds = most_seconds
        self.tests = {test.name: test for test in tests() if test.name in reached}
        self.seconds = {name: entry["seconds"] for name, entry in reached.items()}
        self.by_mutant = defaultdict(list)
        for name, entry in reached.items():
            if name in self.tests:
                for number in entry["mutants"]:
                    self.by_mutant[number].append(name)

    def commands(self, mutant):
        """What is run for the mutant: tests of one program together, those of the same folder first, the quickest
        first. No others are begun once they have taken too long."""
        folder = str(BUILD / "tests" / Path(mutant["file"]).relative_to("foundation").parent)
        groups = defaultdict(list)
        for name in self.by_mutant[mutant["number"]]:
            groups[self.tests[name].program or name].append(name)

        def order(names):
            elsewhere = not (self.tests[names[0]].program or "").startswith(folder)
            return elsewhere, sum(self.seconds[name] for name in names)

        spent = 0
        for names in sorted(groups.values(), key=order):
            spent += order(names)[1]
            if order(names)[0] and spent > self.most_seconds:
                return
            test = self.tests[names[0]]
            command = test.command
            if test.program:
                filters = ":".join(self.tests[name].filter for name in names)
                command = [test.program, f"--gtest_filter={filters}", "--gtest_fail_fast", "--gtest_brief=1"]
            seconds = sum(self.seconds[name] for name in names)
            yield command, test.directory, seconds, names[0] if len(names) == 1 else Path(command[0]).name

    def result(self, mutant):
        if mutant["number"] not in self.by_mutant:
            return {"outcome": "survived", "by": "no test comes by"}
        for command, directory, seconds, name in self.commands(mutant):
            code, _ = run(command, directory, 3 + 6 * seconds, MUTANT=str(mutant["number"]))
            if code != 0:
                return {"outcome": "killed", "by": name, "code": code}
        return {"outcome": "survived", "by": "every test passes"}


def key_of(mutant, occurrence):
    """What tells a mutant from the others when lines above it change."""
    return f"{mutant['file']}: {mutant['old']} -> {mutant['new']} #{occurrence}"


def reasons_of(name):
    """By "file: old -> new", why the mutant is none, or why it survives."""
    path = ROOT / "tests" / "mutation" / name
    reasons = {}
    for line in path.read_text().splitlines() if path.exists() else []:
        if line.strip() and not line.startswith("#"):
            what, reason = line.rsplit(" :: ", 1)
            reasons[what.strip()] = reason.strip()
    return reasons


def main():
    options = argparse.ArgumentParser(description="Mutation testing of foundation/.")
    options.add_argument("--files", default="*", help="only mutants of these files, a pattern")
    options.add_argument("--tests", default="", help="only with those tests, a regular expression")
    options.add_argument("--sample", type=int, help="only so many mutants, taken at random")
    options.add_argument("--seed", type=int, default=1)
    options.add_argument("--jobs", type=int, default=os.cpu_count())
    options.add_argument("--most-seconds", type=float, default=600, help="of tests from other folders, for each mutant")
    options.add_argument("--equivalents", action="store_true", help="only those that are held to change nothing")
    options.add_argument("--write", action="store_true", help="write tests/mutation/survivors.md")
    options.add_argument("--again", action="store_true", help="meet even those mutants that have a result")
    options.add_argument("--clang", default="clang++", help="the compiler whose syntax tree is used")
    options = options.parse_args()

    WORK.mkdir(parents=True, exist_ok=True)
    units = sources(tracked_files())
    everything = prepare(units, options.clang)
    build()
    # A mutant may ask for memory without end, or crash thousands of times.
    resource.setrlimit(resource.RLIMIT_AS, (4 << 30, resource.getrlimit(resource.RLIMIT_AS)[1]))
    resource.setrlimit(resource.RLIMIT_CORE, (0, resource.getrlimit(resource.RLIMIT_CORE)[1]))
    reached = see_what_is_reached(max(mutant["number"] for mutant in everything), options.jobs,
                                  options.tests)
    hunt = Hunt(reached, options.most_seconds)

    occurrences, keys = defaultdict(int), {}
    for mutant in everything:
        base = key_of(mutant, "")
        occurrences[base] += 1
        keys[mutant["number"]] = key_of(mutant, occurrences[base])
    excused = reasons_of("equivalent.txt")
    is_excused = lambda mutant: key_of(mutant, "").removesuffix(" #") in excused or keys[mutant["number"]] in excused
    valid = [mutant for mutant in everything if not mutant.get("invalid")]
    chosen = [mutant for mutant in valid if fnmatch.fnmatch(mutant["file"], options.files)
              and is_excused(mutant) == options.equivalents]
    if options.sample is not None:
        chosen = sorted(random.Random(options.seed).sample(chosen, min(options.sample, len(chosen))),
                        key=lambda mutant: mutant["number"])

    results = load("results.json", {})
    todo = [m for m in chosen if options.again or results.get(keys[m["number"]], {}).get("outcome") != "killed"]
    started = time.monotonic()
    with ThreadPoolExecutor(options.jobs) as pool:
        for done, (mutant, result) in enumerate(zip(todo, pool.map(hunt.result, todo)), 1):
            results[keys[mutant["number"]]] = result
            if done % 50 == 0 or done == len(todo):
                save("results.json", results)
                print(f"{done} of {len(todo)}, {time.monotonic() - started:.0f} s", flush=True)

    if options.equivalents:
        killed = [keys[m["number"]] for m in chosen if results[keys[m["number"]]]["outcome"] == "killed"]
        print("\n".join(f"not equivalent, for a test notices it: {key}" for key in killed))
        print(f"{len(chosen) - len(killed)} of {len(chosen)} change nothing that a test sees")
        sys.exit(bool(killed))
    left_out = defaultdict(int)
    for mutant in valid:
        left_out[mutant["file"]] += is_excused(mutant)
    sys.exit(report(chosen, results, keys, len(everything) - len(valid), left_out, options.write))


def report(chosen, results, keys, invalid, left_out, is_written):
    """The exit status."""
    rows = defaultdict(lambda: [0, 0])
    survivors = []
    for mutant in chosen:
        killed = results[keys[mutant["number"]]]["outcome"] == "killed"
        rows[mutant["file"]][0] += 1
        rows[mutant["file"]][1] += killed
        if not killed:
            survivors.append(mutant)
    for mutant in survivors:
        print(f"\n{mutant['file']}:{mutant['line']}: {results[keys[mutant['number']]]['by']}")
        print(f"  - {mutant['old']}\n  + {mutant['new']}")
    print(f"\n{'mutants':>8} {'killed':>7} {'survived':>9} {'':>7}")
    rows["in all"] = [sum(row[0] for row in rows.values()), sum(row[1] for row in rows.values())]
    for name, (count, killed) in rows.items():
        print(f"{count:8} {killed:7} {count - killed:9} {100 * killed / max(count, 1):6.1f}%  {name}")
    equivalent = sum(left_out.values())
    print(f"left out: {equivalent} that change nothing that can be seen, {invalid} that do not compile")

    reasons = reasons_of("surviving.txt")
    unexplained = [m for m in survivors if keys[m["number"]] not in reasons]
    for mutant in unexplained:
        print(f"no reason is known: {keys[mutant['number']]}")
    if is_written:
        (ROOT / "tests" / "mutation" / "survivors.md").write_text(page(rows, left_out, survivors, keys, reasons))
    count, killed = rows["in all"]
    return int(bool(unexplained) or killed < 0.97 * count)


def page(rows, left_out, survivors, keys, reasons):
    count, killed = rows["in all"]
    equivalent = sum(left_out.values())
    cell = lambda text: text.replace("|", "\\|")
    lines = [
        "<!-- SPDX-License-Identifier: Apache-2.0 -->",
        "<!-- Written by scripts/mutate --write. -->",
        "# The mutants that survive",
        "",
        *textwrap.wrap(
            f"Of {count + equivalent} mutants of the sources of `foundation/` and of its headers that are not "
            f"installed, {equivalent} are held to change nothing that anybody could see, for the reasons in "
            f"`equivalent.txt`. Of the others {killed} are killed: {100 * killed / count:.1f} %. "
            f"{count - killed} survive. One that ran into the time limit counts as killed. Left out are tests that "
            "look at the package, at symbols or at texts.", 120),
        "",
        "| file | mutants | killed | equivalent | survive |",
        "|---|--:|--:|--:|--:|"]
    for name, (all_of_it, its_killed) in rows.items():
        its_equivalent = equivalent if name == "in all" else left_out[name]
        lines.append(f"| {name.removeprefix('foundation/')} | {all_of_it + its_equivalent} | {its_killed} | "
                     f"{its_equivalent} | {all_of_it - its_killed} |")
    lines += ["", "| file, line | change | why |", "|---|---|---|"]
    for m in survivors:
        place = f"{m['file'].removeprefix('foundation/')}:{m['line']}"
        lines.append(f"| {place} | `{cell(m['old'])}` to `{cell(m['new'])}` | "
                     f"{reasons.get(keys[m['number']], 'not known')} |")
    return "\n".join(lines) + "\n"


main()
