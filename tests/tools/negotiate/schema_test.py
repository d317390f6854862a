# SPDX-License-Identifier: Apache-2.0
"""Holds the verdicts of a validator with the JSON schemas against the findings of the program.

Usage: schema_test.py PROGRAM SCHEMA-FOLDER
"""
import json
import pathlib
import random
import subprocess
import sys
import tempfile

from jsonschema import Draft202012Validator

SEED = 4711
DOCUMENTS = 2000
KINDS = ("protocolConfigs", "protocolResolutions", "protocolOffers")
INVISIBLE = {"RepeatedMember"}  # a schema sees only what the parser leaves, and that is the last member

NUMBERS = ["0", "1", "2.0", "1e0", "10e-1", "65534", "65535", "65535.0", "65536", "4294967295", "4294967296",
           "4294967295.0", "1.5", "-1", "-0", "-0.0", "-0.5", "0.005", "65534.995", "1e400", "18446744073709551616"]
WORDS = ["required", "optional", "preferred", "undefined", "Required", "success", "unsupported_error",
         "unsupported_warning", "invalid_value_error", "invalid_value_warning", "invalid_handling", ""]
STRANGERS = ["null", "true", "7", "2.5", '""', '"text"', "[]", "{}", "[{}]", '{"name":"x"}', '[[],1]']


class Writer:
    """Writes documents that are sound but for a fault here and there."""

    def __init__(self, rng):
        self.rng = rng
        self.faults = 0.0  # how likely each member is spoilt

    def spoilt(self):
        return self.rng.random() < self.faults

    def any_of(self, values):
        return self.rng.choice(values)

    def text(self, *least):
        return json.dumps(self.any_of(["A", "compression", "lz4", "é", "\u0007", 'a"b', *least]))

    def word(self, words):
        return json.dumps(self.any_of(WORDS if self.spoilt() else words))

    def number(self, sound):
        return self.any_of(NUMBERS if self.spoilt() else sound)

    def record(self, members):
        """An object of (name, text of the value), some of them lost, strange, repeated or unknown."""
        parts = []
        for name, value in members:
            if self.spoilt():
                fault = self.rng.randrange(4)
                if fault == 0:
                    continue
                if fault == 1:
                    value = self.any_of(STRANGERS)
                if fault == 2:
                    parts.append((name, self.any_of(STRANGERS)))
                if fault == 3:
                    name = self.any_of([name + "s", name.capitalize(), ""])
            parts.append((name, value))
        self.rng.shuffle(parts)
        return "{" + ",".join(json.dumps(name) + ": " + value for name, value in parts) + "}"

    def array(self, element):
        elements = [self.any_of(STRANGERS) if self.spoilt() else element() for _ in range(self.rng.randrange(4))]
        return "[" + ", ".join(elements) + "]"

    def version(self):
        return self.record([("major", self.number(["0", "2", "2.0", "1e0", "65534", "65536", "4294967295"])),
                            ("minor", self.number(["0", "1", "3.0", "65535", "4294967295"]))])

    def name(self):
        return '""' if self.spoilt() else self.text()

    def config(self):
        def feature():
            return self.record([("name", self.text("")), ("value", self.text("")),
                                ("handling", self.word(WORDS[:3]))])
        return self.record([("name", self.name()), ("version", self.version()), ("features", self.array(feature))])

    def resolution(self):
        def feature():
            return self.record([("name", self.text("")), ("message", self.text("")),
                                ("status", self.word(WORDS[5:11]))])
        return self.record([("name", self.name()), ("version", self.version()), ("resolutions", self.array(feature))])

    def offer(self):
        def feature():
            return self.record([("name", self.name()), ("value", self.text("")),
                                ("handling", self.word(WORDS[:4]))])
        return self.record([("name", self.name()), ("features", self.array(feature))])

    def document(self, kind):
        self.faults = self.any_of([0.0, 0.0, 0.01, 0.03, 0.1])
        if kind == "protocolConfigs":
            return self.record([(kind, self.array(self.config))])
        if kind == "protocolResolutions":
            return self.record([(kind, self.array(self.resolution))])
        software = self.record([("name", self.text("")), ("version", self.text(""))])
        return self.record([(kind, self.array(self.offer)), ("software", software)])


def spoil_bytes(rng, text):
    """One byte is lost or doubled: mostly no JSON any more."""
    place = rng.randrange(len(text))
    return text[:place] + text[place] * rng.choice([0, 2]) + text[place + 1:]


def findings_of(program, files):
    findings = {str(file): [] for file in files}
    run = subprocess.run([program, "lint", "--json", *findings], stdout=subprocess.PIPE, check=False)
    if run.returncode != 1:
        sys.exit(f"lint ends with status {run.returncode}")
    for line in run.stdout.splitlines():
        finding = json.loads(line)
        findings[finding["file"]].append(finding)
    return findings


def strange_constant(name):
    raise ValueError(name)


def parses(text):
    try:
        json.loads(text, parse_constant=strange_constant)
        return True
    except ValueError:
        return False


def complaint(validators, text, findings):
    """What is wrong with the two verdicts on the text; None if they agree."""
    rules = {finding["rule"] for finding in findings}
    if "Syntax" in rules:
        return "lint refuses a text that is JSON" if parses(text) else None
    if not parses(text):
        return "lint accepts a text that is no JSON"
    # Where there is no list that tells, the program takes the document for a request, and so does this.
    kind = findings[0]["document"] if findings else next(name for name in json.loads(text) if name in KINDS)
    sound = validators[kind].is_valid(json.loads(text))
    visible = rules - INVISIBLE
    if sound and visible:
        return f"the schema accepts what lint finds: {sorted(visible)}"
    if not sound and not visible:
        return f"the schema refuses what lint accepts: {next(validators[kind].iter_errors(json.loads(text))).message}"
    return None


def main():
    program, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    validators = {}
    for kind in KINDS:
        schema = json.loads((folder / f"{kind}.schema.json").read_text())
        Draft202012Validator.check_schema(schema)
        validators[kind] = Draft202012Validator(schema)

    rng = random.Random(SEED)
    writer = Writer(rng)
    texts = [writer.document(rng.choice(KINDS)) for _ in range(DOCUMENTS)]
    texts = [spoil_bytes(rng, text) if rng.random() < 0.05 else text for text in texts]
    with tempfile.TemporaryDirectory() as scratch:
        files = [pathlib.Path(scratch, str(number)) for number in range(len(texts))]
        for file, text in zip(files, texts):
            file.write_text(text, encoding="utf-8")
        findings = list(findings_of(program, files).values())

    rules = {finding["rule"] for each in findings for finding in each}
    clean = sum(not each for each in findings)
    print(f"{len(texts)} documents, {clean} of them sound; rules: {sorted(rules)}")
    failures = 0
    for text, each in zip(texts, findings):
        wrong = complaint(validators, text, each)
        if wrong:
            failures += 1
            print(f"{wrong}\n  {text}")
    if len(rules) < 10 or clean < DOCUMENTS / 4:
        failures += 1
        print("the documents do not try every rule, or too few are sound")
    sys.exit(1 if failures else 0)


main()
