# SPDX-License-Identifier: Apache-2.0
"""Runs the recipe with stand-ins for Conan: what it says of the package is what the project builds.

Takes the folder of the sources, the project's version, and CMake.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import types
import unittest
from collections import defaultdict
from unittest import mock

SOURCE, VERSION, CMAKE = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3]


class CppInfo:
    def __init__(self):
        self.properties = {}
        self.libs = []
        self.requires = []
        self.components = defaultdict(CppInfo)

    def set_property(self, name, value):
        self.properties[name] = value


class ConanFile:
    def __init__(self, folder):
        self.recipe_folder = str(folder)
        self.cpp_info = CppInfo()
        self.folders = types.SimpleNamespace()
        self.required = []

    def requires(self, reference, **traits):
        self.required.append(reference)


def copy(_, pattern, src, dst):
    for path in pathlib.Path(src).glob(pattern):
        target = pathlib.Path(dst) / path.relative_to(src)
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copytree(path, target) if path.is_dir() else shutil.copy(path, target)


def load_recipe(path):
    names = ["conan", "conan.errors", "conan.tools", "conan.tools.build", "conan.tools.cmake", "conan.tools.files"]
    stand_ins = {name: mock.MagicMock() for name in names}
    stand_ins["conan"].ConanFile = ConanFile
    stand_ins["conan.tools.files"].load = lambda _, name: pathlib.Path(name).read_text()
    stand_ins["conan.tools.files"].copy = copy
    module = types.ModuleType("recipe")
    with mock.patch.dict(sys.modules, stand_ins):
        exec(compile(path.read_text(), str(path), "exec"), module.__dict__)
    return module


class Recipe(unittest.TestCase):
    def setUp(self):
        folder = SOURCE / "packaging" / "conan"
        self.recipe = load_recipe(folder / "conanfile.py").CorvaneCommon(folder)

    def test_takes_its_version_from_the_project(self):
        self.recipe.set_version()
        self.assertEqual(self.recipe.version, VERSION)

    def test_has_a_component_for_each_library_under_its_name_in_cmake(self):
        text = "".join(path.read_text() for path in sorted((SOURCE / "foundation").rglob("CMakeLists.txt")))
        built = dict(re.findall(r"corvane_add_library\((\w+) ([\w:]+)\)", text))
        self.assertGreaterEqual(len(built), 4)

        self.recipe.package_info()

        components = self.recipe.cpp_info.components
        self.assertEqual({part.libs[0]: part.properties["cmake_target_name"] for part in components.values()}, built)
        for part in components.values():
            for name in part.requires:
                package, _, _ = name.partition("::")
                self.assertTrue(name in components or package in ("boost", "onetbb"), name)

    def test_requires_the_packages_that_its_components_do(self):
        self.recipe.requirements()
        self.assertEqual([reference.partition("/")[0] for reference in self.recipe.required], ["boost", "onetbb"])

    def test_exports_everything_that_the_build_reads(self):
        with tempfile.TemporaryDirectory() as folder:
            self.recipe.export_sources_folder = folder
            self.recipe.export_sources()
            subprocess.run([CMAKE, "-S", folder, "-B", f"{folder}/build", "-G", "Ninja", "-DBUILD_TESTING=OFF"],
                           stdout=subprocess.DEVNULL, check=True)
            self.assertTrue((pathlib.Path(folder) / "LICENSE").exists())

    def test_is_tried_by_a_recipe_that_can_be_read(self):
        tried = load_recipe(SOURCE / "packaging" / "conan" / "test_package" / "conanfile.py").Consumer
        self.assertTrue(callable(tried.test))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
