#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Shows what scripts/bench has measured; with --write DOCS also as DOCS/performance.md and its charts.

Reads RESULTS/<subject>.json, in Google Benchmark's format, and benchmarks/<subject>/targets.json, which says what the
tables show. The first row of a table is ours. Each other row is what it is compared with: the ratio is ours divided by
that row, each being the median of its repetitions, unless the row names a counter that holds the ratio.
"""
import argparse
import json
import os
import platform
import re
import statistics
import subprocess
import sys
from dataclasses import dataclass, field
from pathlib import Path
from typing import Optional

sys.dont_write_bytecode = True  # no litter beside the sources
import chart  # noqa: E402

ROOT = Path(__file__).resolve().parents[2]
NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
# What Google Benchmark adds to a name that we gave.
SUFFIX = re.compile(r"/(manual_time|real_time|process_time|iterations:\d+|repeats:\d+|min_time:[\d.]+|threads:1)(?=/|$)")


@dataclass
class Row:
    name: str
    role: str  # ours, limit or peer
    value: Optional[float] = None  # in the table's quantity; nanoseconds unless it says otherwise
    ratio: Optional[float] = None  # ours / this
    aim: str = ""  # the figure that is to be kept
    wanted: Optional[float] = None  # the same as what ours may cost
    kept: Optional[bool] = None
    missing: str = ""
    obstacle: str = ""  # what stands in the way where it is missed


@dataclass
class Table:
    title: str
    unit: str
    quantity: str
    note: str = ""
    rows: list = field(default_factory=list)

    def measured_in(self):
        return f"{self.quantity} per {self.unit}" if self.unit else self.quantity

    def wanted(self):
        """What ours may cost at most; None if nothing is wanted."""
        return min((row.wanted for row in self.rows if row.wanted is not None), default=None)


class Results:
    """The repetitions of one run of one program."""

    def __init__(self, path):
        document = json.loads(path.read_text())
        self.date = document["context"]["date"]
        self.runs = {}
        for run in document["benchmarks"]:
            if run.get("run_type") == "aggregate" or run.get("error_occurred"):
                continue
            self.runs.setdefault(SUFFIX.sub("", run["run_name"]), []).append(run)

    def median(self, benchmark, counter=None):
        values = [self.value(run, counter) for run in self.runs.get(benchmark, [])]
        return statistics.median(values) if values else None

    @staticmethod
    def value(run, counter):
        if counter:
            return run[counter]
        if "items_per_second" in run:
            return 1e9 / run["items_per_second"]
        # The thread's processor time, unless the benchmark asked for another: what else runs on the machine counts
        # only by the caches that it takes away.
        other = re.search(r"/(manual|real)_time", run["run_name"])
        return run["real_time" if other else "cpu_time"] * NANOSECONDS[run["time_unit"]]


def value_of(results, entry):
    if "value" in entry:
        return entry["value"]
    return results.median(entry["benchmark"], entry.get("counter"))


def judge(row, entry, ours, results):
    """Fills in what compares a row with ours."""
    if row.value is None or ours is None:
        return
    row.ratio = results.median(entry["benchmark"], entry["ratio"]) if "ratio" in entry else ours / row.value
    if "at_most" in entry:
        row.aim = f"at most {entry['at_most']:g} x"
        row.wanted = row.value * entry["at_most"]
        row.kept = row.ratio <= entry["at_most"]
    elif "faster_at_least" in entry:
        row.aim = f"at most 1/{entry['faster_at_least']:g}"
        row.wanted = row.value / entry["faster_at_least"]
        row.kept = row.ratio * entry["faster_at_least"] <= 1


def read_table(entry, results):
    table = Table(entry["title"], entry["unit"], entry.get("quantity", "ns"), entry.get("note", ""))
    ours = value_of(results, entry["rows"][0])
    for index, row_entry in enumerate(entry["rows"]):
        row = Row(row_entry["name"], "ours" if index == 0 else row_entry.get("role", "peer"))
        row.value = value_of(results, row_entry)
        row.obstacle = row_entry.get("obstacle", "")
        if row.value is None:
            row.missing = row_entry.get("missing", "not measured")
        if index > 0:
            judge(row, row_entry, ours, results)
        table.rows.append(row)
    return table


def number(value):
    """Three digits that count."""
    if value >= 1000 or value == int(value):
        return f"{value:,.0f}"
    return f"{value:.3g}" if value >= 100 else f"{value:#.3g}"


def ratio_text(row):
    if row.ratio is None:
        return ""
    if row.role != "peer" or row.ratio >= 1:
        return f"{row.ratio:.2f} x" if row.ratio >= 0.1 else f"{row.ratio:.3f} x"
    return f"1/{1 / row.ratio:.1f}" if row.ratio > 0.01 else f"1/{1 / row.ratio:,.0f}"


def cells(row):
    value = number(row.value) if row.value is not None else "-"
    ratio = ratio_text(row)
    verdict = {True: "kept", False: "**missed**", None: ""}[row.kept]
    return [row.name, value, ratio or row.missing, row.aim, verdict]


def heading(table):
    return ["", table.measured_in(), "ours is", "wanted", ""]


def as_text(subject, tables):
    lines = [f"\n{subject}"]
    for table in tables:
        rows = [cells(row) for row in table.rows]
        lines.append(f"\n  {table.title} ({heading(table)[1]})")
        lines += [f"    {name:<46} {value:>12}  {ratio:>10}  {aim:<22} {verdict.strip('*')}".rstrip()
                  for name, value, ratio, aim, verdict in rows]
    return "\n".join(lines)


def as_markdown(subject, title, tables):
    lines = [f"## {title}", "", f"![{title}: ours, limits and peers](performance/{subject}.svg)", ""]
    for table in tables:
        lines += [f"### {table.title}", ""]
        lines += [table.note, ""] if table.note else []
        lines += ["| " + " | ".join(heading(table)) + " |", "|---|---:|---:|---|---|"]
        lines += ["| " + " | ".join(cells(row)) + " |" for row in table.rows] + [""]
    return lines


def output_of(command, text=None):
    try:
        done = subprocess.run(command, input=text, capture_output=True, text=True, check=True)
        return done.stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        return ""


def processor():
    for line in Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


# Name, header, and what the header calls its version.
LIBRARIES = [
    ("Boost", "boost/version.hpp", "BOOST_LIB_VERSION"),
    ("oneTBB", "oneapi/tbb/version.h", "TBB_VERSION_MAJOR.TBB_VERSION_MINOR.TBB_VERSION_PATCH"),
    ("libstdc++", "version", "_GLIBCXX_RELEASE"),
    ("glibc", "features.h", "__GLIBC__.__GLIBC_MINOR__"),
    ("nlohmann/json", "nlohmann/json.hpp",
     "NLOHMANN_JSON_VERSION_MAJOR.NLOHMANN_JSON_VERSION_MINOR.NLOHMANN_JSON_VERSION_PATCH"),
    ("RapidJSON", "rapidjson/rapidjson.h",
     "RAPIDJSON_MAJOR_VERSION.RAPIDJSON_MINOR_VERSION.RAPIDJSON_PATCH_VERSION"),
    ("simdjson", "simdjson.h", "SIMDJSON_VERSION"),
    ("spdlog", "spdlog/version.h", "SPDLOG_VER_MAJOR.SPDLOG_VER_MINOR.SPDLOG_VER_PATCH"),
    ("LTTng-UST", "lttng/ust-version.h",
     "LTTNG_UST_MAJOR_VERSION.LTTNG_UST_MINOR_VERSION.LTTNG_UST_PATCHLEVEL_VERSION"),
    ("nghttp2", "nghttp2/nghttp2ver.h", "NGHTTP2_VERSION"),
    ("Cap'n Proto", "capnp/common.h", "CAPNP_VERSION_MAJOR.CAPNP_VERSION_MINOR.CAPNP_VERSION_MICRO"),
]


def version(compiler, header, macro):
    text = output_of([compiler, "-std=c++20", "-E", "-P", "-x", "c++", "-"], f"#include <{header}>\n{macro}\n")
    last = text.splitlines()[-1].replace(" ", "").replace('"', "").replace("_", ".") if text else ""
    return last if re.fullmatch(r"[0-9.]+", last) else ""


def machine():
    compiler = os.environ.get("CXX", "c++")
    versions = [(name, version(compiler, header, macro)) for name, header, macro in LIBRARIES]
    return [
        f"- Processor: {processor()}, {os.cpu_count()} of them",
        f"- Kernel: {platform.system()} {platform.release()}",
        f"- Compiler: {output_of([compiler, '--version']).splitlines()[0]}, the preset `release`",
        "- Libraries: " + ", ".join(f"{name} {number}" for name, number in versions if number),
    ]


def write(docs, measured, date):
    judged = [row for _, _, tables in measured for table in tables for row in table.rows if row.kept is not None]
    missed = [(table, row) for _, _, tables in measured for table in tables for row in table.rows
              if row.kept is False]
    lines = [
        "<!-- SPDX-License-Identifier: Apache-2.0 -->",
        "<!-- Written by scripts/bench. -->",
        "# What it costs",
        "",
        "Each figure of ours stands beside the least that is possible, where that is known, and beside other",
        "libraries. A figure is the median of several repetitions, which take turns in random order; a ratio is of",
        "two medians of one run, ours divided by the other: with 1.02 x ours costs two hundredths more, with 1/29 a",
        "twenty-ninth of the other. Judge by the ratios: the nanoseconds are those of one machine on one day.",
        "",
        f"Of {len(judged)} figures that we want to keep, {len(judged) - len(missed)} are kept.",
        "",
    ]
    lines += [f"- Missed: {table.title}, against {row.name}: {ratio_text(row)}, wanted {row.aim}. {row.obstacle}".strip()
              for table, row in missed]
    absent = [f"{table.title}: {row.name}" for _, _, tables in measured for table in tables for row in table.rows
              if row.value is None and row.role != "peer"]
    lines += [f"- Not measured: {name}." for name in absent]
    lines += [""] if missed or absent else []
    lines += ["    scripts/bench", "", f"- Date: {date[:10]}", *machine(), ""]
    charts = docs / "performance"
    charts.mkdir(parents=True, exist_ok=True)
    for subject, title, tables in measured:
        lines += as_markdown(subject, title, tables)
        (charts / f"{subject}.svg").write_text(chart.draw(title, tables, number))
    (docs / "performance.md").write_text("\n".join(lines).rstrip() + "\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--results", type=Path, required=True)
    parser.add_argument("--write", type=Path, metavar="DOCS")
    parser.add_argument("subjects", nargs="+")
    arguments = parser.parse_args()

    measured = []
    for subject in arguments.subjects:
        targets = json.loads((ROOT / "benchmarks" / subject / "targets.json").read_text())
        results = Results(arguments.results / f"{subject}.json")
        measured.append((subject, targets["title"], [read_table(entry, results) for entry in targets["tables"]]))
    for _, title, tables in measured:
        print(as_text(title, tables))
    if arguments.write:
        write(arguments.write, measured, results.date)


if __name__ == "__main__":
    main()
