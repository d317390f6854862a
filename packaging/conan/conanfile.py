# SPDX-License-Identifier: Apache-2.0
"""The recipe for Conan 2. It builds the tree that it lies in. Nobody has run it here, because we have no Conan."""

import os
import re

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load, rmdir

required_conan_version = ">=2.0"


class CorvaneCommon(ConanFile):
    name = "corvane_common"
    description = "The common layer of a message-passing framework: negotiation, registries, identifiers, event log"
    license = "Apache-2.0"
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False]}
    default_options = {"shared": True}

    def set_version(self):
        project = load(self, os.path.join(self.recipe_folder, "..", "..", "CMakeLists.txt"))
        self.version = re.search(r"^\s+VERSION ([0-9.]+)$", project, re.MULTILINE).group(1)

    def export_sources(self):
        tree = os.path.join(self.recipe_folder, "..", "..")
        for pattern in ("CMakeLists.txt", "LICENSE", "cmake/*", "foundation/*", "packaging/archive.cmake", "tools/*"):
            copy(self, pattern, src=tree, dst=self.export_sources_folder)

    def layout(self):
        self.folders.root = os.path.join("..", "..")
        cmake_layout(self, build_folder=os.path.join("build", "conan"))

    def requirements(self):
        self.requires("boost/[>=1.74 <2]", transitive_headers=True, transitive_libs=True)
        self.requires("onetbb/[>=2021 <2023]")

    def validate(self):
        check_min_cppstd(self, 20)
        if self.settings.os != "Linux":
            raise ConanInvalidConfiguration("corvane_common is a library for Linux")

    def generate(self):
        CMakeDeps(self).generate()
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["BUILD_TESTING"] = False
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        copy(self, "LICENSE", src=self.source_folder, dst=os.path.join(self.package_folder, "licenses"))
        rmdir(self, os.path.join(self.package_folder, "share", "gdb"))  # it names the folder of the build

    def package_info(self):
        # Users find the libraries through the project's own CMake files, so this recipe does not list them again.
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.builddirs = [os.path.join("lib", "cmake", "corvane_common")]
