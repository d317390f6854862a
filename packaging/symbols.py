#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Prints the symbols file of a Debian package, from the libraries that were built for it.

Names are written as C++ has them. Those that name a `long` are so on 64 bits only: what stands behind it, a size or a
fixed number of bits, has another type elsewhere.
"""

import argparse
import pathlib
import re
import subprocess

HEADING = """\
# SPDX-License-Identifier: Apache-2.0
# Written by scripts/debian --symbols."""


def output(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout


def written(line):
    """A line ' name@version since' of a symbols file, in terms of C++."""
    name, since = line.split()
    mangled, version = name.split("@")
    readable = output("c++filt", mangled).strip()
    if readable == mangled:
        return f" {name} {since}"
    tags = "(c++|arch-bits=64)" if re.search(r"\blong\b", readable) else "(c++)"
    return f' {tags}"{readable}@{version}" {since}'


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--package", required=True)
    parser.add_argument("--dev", required=True, help="the package that one builds against")
    parser.add_argument("--built", required=True, type=pathlib.Path, help="the folder that the package is made of")
    arguments = parser.parse_args()

    libraries = sorted(path for path in arguments.built.glob("usr/lib/*/*.so.*") if not path.is_symlink())
    # Started from nothing, so that nothing of the old list is carried over.
    lines = output("dpkg-gensymbols", f"-p{arguments.package}", f"-P{arguments.built}", "-I/dev/null", "-O", "-c0",
                   "-q", *(f"-e{library}" for library in libraries)).splitlines()
    print(HEADING)
    symbols = set()
    for line in lines:
        if line.startswith(" "):
            # Several names in the binary are one in C++: the constructors of complete objects and of bases, say.
            symbols.add(written(line))
            continue
        print("\n".join([*sorted(symbols), line, f"* Build-Depends-Package: {arguments.dev}"]))
        symbols.clear()
    print("\n".join(sorted(symbols)))


if __name__ == "__main__":
    main()
