# SPDX-License-Identifier: Apache-2.0
"""The bill of materials is a whole: takes the folders of the sources and of a build."""

import hashlib
import json
import pathlib
import sys
import unittest

SOURCE, BUILD = (pathlib.Path(argument) for argument in sys.argv[1:3])
sys.path.insert(0, str(SOURCE / "packaging"))
import sbom  # noqa: E402

SUMS = ["b" * 40, "a" * 40]
FROM_REUSE = """SPDXVersion: SPDX-2.1
SPDXID: SPDXRef-DOCUMENT
DocumentName: folder
DocumentNamespace: http://spdx.org/spdxdocs/spdx-v2.1-1234
Creator: Person: Anonymous ()
Creator: Organization: Anonymous ()
Creator: Tool: reuse-1.1.2
Relationship: SPDXRef-DOCUMENT describes SPDXRef-1
Relationship: SPDXRef-DOCUMENT describes SPDXRef-2

""" + "\n\n".join(f"""FileName: ./{number}
SPDXID: SPDXRef-{number}
FileChecksum: SHA1: {checksum}
LicenseInfoInFile: Apache-2.0""" for number, checksum in enumerate(SUMS, 1)) + "\n"


class Sbom(unittest.TestCase):
    def setUp(self):
        self.project = json.loads((BUILD / "dependencies.json").read_text())
        self.lines = sbom.complete(FROM_REUSE, self.project).splitlines()

    def test_names_each_dependency_with_the_version_that_the_build_found(self):
        self.assertEqual(set(self.project["dependencies"]), {"Boost", "oneTBB"})
        for name, version in self.project["dependencies"].items():
            self.assertRegex(version, r"^\d+\.\d+")
            begin = self.lines.index(f"PackageName: {name}")
            self.assertEqual(self.lines[begin + 2], f"PackageVersion: {version}")
            self.assertIn(f"Relationship: SPDXRef-Package DEPENDS_ON SPDXRef-{name}", self.lines)

    def test_describes_the_package_and_not_each_file(self):
        described = [line for line in self.lines if "SPDXRef-DOCUMENT describes" in line or " DESCRIBES " in line]
        self.assertEqual(described, ["Relationship: SPDXRef-DOCUMENT DESCRIBES SPDXRef-Package"])
        self.assertNotIn("Creator: Person: Anonymous ()", self.lines)

    def test_has_the_files_behind_the_package_that_they_belong_to(self):
        names = [line.split(": ")[1] for line in self.lines if line.startswith(("PackageName", "FileName"))]
        self.assertEqual(names, ["corvane_common", "./1", "./2", "Boost", "oneTBB"])

    def test_sums_up_the_files_whatever_their_order(self):
        code = hashlib.sha1(b"a" * 40 + b"b" * 40).hexdigest()
        self.assertIn(f"PackageVerificationCode: {code}", self.lines)

    def test_refuses_what_is_no_document_of_reuse(self):
        for text in ["", "SPDXVersion: SPDX-2.1\n", FROM_REUSE + "\nPackageName: other\n"]:
            with self.assertRaises(ValueError):
                sbom.complete(text, self.project)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
