#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Takes the examples out of the documentation, so that they are compiled and run.

    examples.py generate SOURCE OUTPUT PROGRAM...   writes OUTPUT/PROGRAM.cpp for each, and OUTPUT/fragments.cpp
    examples.py printed PAGE                        runs what PAGE says that it prints, in the current folder

In a page a comment in the line before a block says what the block is:

    <!-- test: from FILE -->          of C++: it stands in FILE word for word, and FILE is compiled elsewhere
    <!-- test: NAME -->               of C++: one piece of NAME; pieces of one name are joined in their order
    <!-- test: printed by COMMAND --> what the command prints; of JSON: apart from white space, else "..." stands for
                                      any text within a line, or alone on its line for any lines

What has a main is a program, called NAME, or, without a name, as the page is; of the latter the block after "It
prints" is what it prints. Everything else, and each example in a comment of a public header, is a fragment: a line
@PAGE NAME@ or @HEADER@ in fragments.cpp.in is the place to which it belongs. There a fragment's includes move to the
top of the file, and a line "..." is left out. Of an example in two columns, @HEADER until "HEADING"@ is the left one,
and @HEADER from "HEADING"@ the right one.
"""
import json
import pathlib
import re
import shlex
import subprocess
import sys

MARK = re.compile(r"<!-- test: (.*) -->")


class Block:
    """A fenced block of a page: its language, marker, first line, and lines."""

    def __init__(self, language, marker, before, line):
        self.language, self.marker, self.before, self.line, self.lines = language, marker, before, line, []

    def text(self):
        return "".join(line + "\n" for line in self.lines)


def blocks_of(page):
    block, marker, before = None, None, ""
    for number, line in enumerate(page.read_text().splitlines(), 1):
        if block is not None:
            if line.startswith("```"):
                yield block
                block, marker, before = None, None, ""
            else:
                block.lines.append(line)
        elif line.startswith("```"):
            block = Block(line[3:].strip(), marker, before, number + 1)
        elif match := MARK.fullmatch(line):
            marker = match[1]
        elif line.strip():
            before, marker = line, None


def is_program(lines):
    return any(line.startswith("int main(") for line in lines)


def located(path, line, lines):
    return [f'#line {line} "{path}"', *lines]


def examples_of_page(source, path, problems):
    """The programs and fragments of a page, by name: their lines."""
    pieces = {}
    for block in blocks_of(source / path):
        if block.language != "cpp":
            continue
        if block.marker is None and not is_program(block.lines):
            problems.append(f"{path}:{block.line}: a fragment needs a name")
        elif block.marker is not None and block.marker.startswith("from "):
            file = block.marker.removeprefix("from ")
            if "\n" + block.text() not in "\n" + (source / file).read_text():
                problems.append(f"{path}:{block.line}: this does not stand in {file} word for word")
        else:
            pieces.setdefault(block.marker or path.stem, []).extend(located(path, block.line, block.lines))
    return pieces


def examples_of_header(source, path):
    """Each indented block of a comment that follows an empty line of it."""
    example, after_blank = [], False
    for number, line in enumerate((source / path).read_text().splitlines() + [""], 1):
        comment = line.strip()
        if comment.startswith("///     ") and (example or after_blank):
            example = example or located(path, number, [])
            example.append(comment.removeprefix("///     "))
        elif comment == "///" and example:
            example.append("")
        elif example:
            yield example
            example = []
        after_blank = comment == "///"


def half(lines, side, heading):
    """Of an example in two columns the one that ends until, or begins from, the column of a heading."""
    column = next(line.index(heading) for line in lines if heading in line)
    return [lines[0], *(line[:column] if side == "until" else line[column:] for line in lines[1:])]


def fill(template, fragments, problems):
    """The template with each fragment in its place, and the includes of them all in front."""
    used, includes, out = set(), [], []
    for number, line in enumerate(template.read_text().splitlines(), 1):
        match = re.fullmatch(r"\s*@(.+?)(?: (until|from) \"(.*)\")?@", line)
        if not match:
            out.append(line)
            continue
        name = match[1]
        if name not in fragments:
            problems.append(f"{template.name}:{number}: there is no fragment {name}")
            continue
        used.add(name)
        lines = half(fragments[name], match[2], match[3]) if match[2] else fragments[name]
        includes += [line for line in lines if line.startswith("#include")]
        out += ["" if line.startswith("#include") or line == "..." else line for line in lines]
        out.append(f'#line {number + 1} "tests/docs/{template.name}"')
    problems += [f"{name} has no place in {template.name}" for name in fragments if name not in used]
    return "\n".join([*dict.fromkeys(includes), f'#line 1 "tests/docs/{template.name}"', *out, ""])


def public_headers(source):
    """Those that are installed, and so named in a list of headers."""
    for listing in sorted((source / "foundation").rglob("CMakeLists.txt")):
        for name in re.findall(r"[\w./]+\.hpp", listing.read_text()):
            yield (listing.parent / name).resolve().relative_to(source)


def generate(source, output, wanted):
    problems, programs, fragments = [], {}, {}
    for page in [source / "README.md", *sorted((source / "docs").glob("*.md"))]:
        path = page.relative_to(source)
        for name, lines in examples_of_page(source, path, problems).items():
            if not is_program(lines):
                fragments[f"{path} {name}"] = lines
            elif programs.setdefault(name, lines) is not lines:
                problems.append(f"{path}: there is a program {name} already")
    for path in public_headers(source):
        for number, lines in enumerate(examples_of_header(source, path), 1):
            fragments[f"{path}" if number == 1 else f"{path} {number}"] = lines
    for name in sorted(programs.keys() ^ wanted):
        problems.append(f"the program {name} is not both in a page and in CMakeLists.txt")

    text = fill(pathlib.Path(__file__).with_name("fragments.cpp.in"), fragments, problems)
    if problems:
        sys.exit("\n".join(problems))
    output.mkdir(parents=True, exist_ok=True)
    (output / "fragments.cpp").write_text(text)
    for name in wanted:
        (output / f"{name}.cpp").write_text("\n".join([*programs[name], ""]))


def documents_in(text):
    """The JSON documents that follow each other in a text, as compact texts, members in the order of the text."""
    decoder, documents = json.JSONDecoder(), []
    while text := text.strip():
        value, end = decoder.raw_decode(text)
        documents.append(json.dumps(value, separators=(",", ":"), ensure_ascii=False))
        text = text[end:]
    return documents


def pattern_of(lines):
    parts = [r"(?:.*\n)*?" if line == "..." else re.escape(line).replace(r"\.\.\.", ".*") + r"\n" for line in lines]
    return "".join(parts)


def matches(block, printed):
    if block.language == "json":
        return documents_in(block.text()) == documents_in(printed)
    return re.fullmatch(pattern_of(block.lines), printed) is not None


def printed(page):
    failures, checked = 0, 0
    for block in blocks_of(page):
        if block.marker is not None and block.marker.startswith("printed by "):
            command = shlex.split(block.marker.removeprefix("printed by "))
        elif block.language == "" and block.before == "It prints":
            command = [f"./{page.stem}"]
        else:
            continue
        checked += 1
        result = subprocess.run(command, capture_output=True, text=True, check=False)
        if result.returncode != 0 or not matches(block, result.stdout):
            failures += 1
            print(f"{page}:{block.line}: the page says\n\n{block.text()}\nbut {shlex.join(command)} prints\n\n"
                  f"{result.stdout}{result.stderr}\nand ends with status {result.returncode}\n")
    if checked == 0:
        print(f"{page} does not say what is printed")
    return 1 if failures or checked == 0 else 0


def main(arguments):
    if len(arguments) > 3 and arguments[0] == "generate":
        return generate(pathlib.Path(arguments[1]).resolve(), pathlib.Path(arguments[2]), set(arguments[3:]))
    if len(arguments) == 2 and arguments[0] == "printed":
        return printed(pathlib.Path(arguments[1]))
    sys.exit(__doc__)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
