#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Measures the libraries as files, and the umbrella header as something to compile. Prints what Google Benchmark would.

Usage: benchmarks/library/measure.py --build BUILD [--quick]
"""
import argparse
import datetime
import json
import os
import re
import resource
import subprocess
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
UMBRELLA = "foundation/corvane/common.hpp"
FOR_PRIVATE_MEMBERS = {"<array>", "<atomic>"}
LIBRARIES = {"common": "foundation/corvane/libcorvane_common.so", "foundation": "foundation/libfoundation.so"}


def output_of(*command, text=None):
    return subprocess.run(command, input=text, capture_output=True, text=True, check=True, cwd=ROOT).stdout


def compiler(*options):
    return [os.environ.get("CXX", "c++"), "-std=c++20", "-I", ".", "-x", "c++", *options]


def named_headers():
    """The standard and Boost headers that the umbrella's own headers include and its signatures name."""
    lines = output_of(*compiler("-E", UMBRELLA))
    ours = set(re.findall(r'^# \d+ "(?:\./)?(foundation/[^"]+)"', lines, re.MULTILINE))
    text = "\n".join((ROOT / path).read_text() for path in sorted(ours))
    return sorted(set(re.findall(r"^#include (<[^>]+>)", text, re.MULTILINE)) - FOR_PRIVATE_MEMBERS)


def user_seconds(source):
    before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
    subprocess.run(compiler("-c", source, "-o", os.devnull), check=True, cwd=ROOT)
    return resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before


def compile_times(repetitions):
    """Both sources take turns; of each turn a run."""
    with tempfile.TemporaryDirectory() as folder:
        sources = {"umbrella": Path(folder) / "umbrella.cpp", "named": Path(folder) / "named.cpp"}
        sources["umbrella"].write_text(f'#include "{UMBRELLA}"\n')
        sources["named"].write_text("".join(f"#include {header}\n" for header in named_headers()))
        for source in sources.values():
            user_seconds(source)  # the files are in the machine's memory then
        return [{"run_name": f"compile/{name}", "milliseconds": 1e3 * user_seconds(source)}
                for _ in range(repetitions) for name, source in sources.items()]


def exported(library):
    """The demangled names that a library exports."""
    lines = output_of("nm", "-D", "-C", "--defined-only", str(library)).splitlines()
    return [line.split(" ", 2)[2] for line in lines]


def library_sizes(build):
    for name, path in LIBRARIES.items():
        library = build / path
        listed = set((ROOT / "abi" / f"{library.stem}.symbols").read_text().splitlines())
        names = exported(library)
        text = int(output_of("size", str(library)).splitlines()[1].split()[0])
        yield {"run_name": f"library/{name}", "text": text, "exported": len(names),
               "intended": sum(each in listed for each in names)}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=Path, required=True)
    parser.add_argument("--quick", action="store_true")
    arguments = parser.parse_args()

    runs = compile_times(5 if arguments.quick else 21) + list(library_sizes(arguments.build.resolve()))
    context = {"date": datetime.datetime.now(datetime.timezone.utc).isoformat(timespec="seconds")}
    print(json.dumps({"context": context, "benchmarks": runs}, indent=1))


if __name__ == "__main__":
    main()
