#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Completes the SPDX document that `reuse spdx` prints: the files become those of a package, which depends on others.

Reads reuse's document from standard input; writes the complete one, in the tag-value form of SPDX 2.2, to standard
output.
"""

import argparse
import hashlib
import json
import re
import sys

HOLDER = "The Corvane Common maintainers"
LICENCE = "Apache-2.0"
LICENCES_OF_DEPENDENCIES = {"Boost": "BSL-1.0", "oneTBB": "Apache-2.0"}


def verification_code(paragraphs):
    """What SPDX has in place of a checksum of many files."""
    sums = sorted(re.search(r"^FileChecksum: SHA1: (\w+)$", text, re.MULTILINE).group(1) for text in paragraphs)
    return hashlib.sha1("".join(sums).encode()).hexdigest()


def heading(paragraph, project):
    """The document's own paragraph. What it describes is the package, instead of every file."""
    dropped = "Relationship:|Creator: (Person|Organization):"
    text = "\n".join(line for line in paragraph.splitlines() if not re.match(dropped, line))
    title = f"{project['name']}-{project['version']}"
    text = re.sub("^SPDXVersion: .*$", "SPDXVersion: SPDX-2.2", text, flags=re.MULTILINE)
    text = re.sub("^DocumentName: .*$", f"DocumentName: {title}", text, flags=re.MULTILINE)
    text = re.sub("(?<=/spdxdocs/)spdx-v2.1", title, text)
    text = text.replace("Creator: Tool:", f"Creator: Organization: {HOLDER} ()\nCreator: Tool:")
    return f"{text}\nRelationship: SPDXRef-DOCUMENT DESCRIBES SPDXRef-Package"


def package(files, project):
    names = set(re.findall("^LicenseInfoInFile: (.*)$", "\n".join(files), re.MULTILINE))
    return "\n".join([
        f"PackageName: {project['name']}",
        "SPDXID: SPDXRef-Package",
        f"PackageVersion: {project['version']}",
        f"PackageSupplier: Organization: {HOLDER} ()",
        "PackageDownloadLocation: NOASSERTION",
        "FilesAnalyzed: true",
        f"PackageVerificationCode: {verification_code(files)}",
        f"PackageLicenseConcluded: {LICENCE}",
        *(f"PackageLicenseInfoFromFiles: {name}" for name in sorted(names)),
        f"PackageLicenseDeclared: {LICENCE}",
        f"PackageCopyrightText: <text>{HOLDER}</text>",
    ])


def dependency(name, version):
    return "\n".join([
        f"PackageName: {name}",
        f"SPDXID: SPDXRef-{name}",
        f"PackageVersion: {version}",
        "PackageDownloadLocation: NOASSERTION",
        "FilesAnalyzed: false",
        "PackageLicenseConcluded: NOASSERTION",
        f"PackageLicenseDeclared: {LICENCES_OF_DEPENDENCIES[name]}",
        "PackageCopyrightText: NOASSERTION",
        f"ExternalRef: PACKAGE-MANAGER purl pkg:generic/{name.lower()}@{version}",
        f"Relationship: SPDXRef-Package DEPENDS_ON SPDXRef-{name}",
    ])


def complete(document, project):
    """The complete document, of reuse's and of what a build has found: name, version and dependencies."""
    first, *files = document.strip().split("\n\n")
    if not files or any(not text.startswith("FileName: ") for text in files):
        raise ValueError("this is no document of reuse, or of one that has changed its ways")
    paragraphs = [heading(first, project), package(files, project), *files]
    paragraphs += [dependency(name, version) for name, version in sorted(project["dependencies"].items())]
    return "\n\n".join(paragraphs) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("dependencies", help="dependencies.json of a build")
    with open(parser.parse_args().dependencies, encoding="utf-8") as file:
        project = json.load(file)
    sys.stdout.write(complete(sys.stdin.read(), project))


if __name__ == "__main__":
    main()
