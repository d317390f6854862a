# SPDX-License-Identifier: Apache-2.0
"""The recipe for Conan 2, which builds the tree that it lies in."""

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
    topics = ("negotiation", "message-passing", "protocol")
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False]}
    default_options = {"shared": True, "onetbb/*:tbbmalloc": True}

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
        # Boost.Log is in the headers of the diagnostic logger; oneTBB is in no header.
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
        # Conan's generators write these for the consumer. gdb's folder names the place where the package was made.
        for folder in (("lib", "cmake"), ("lib", "pkgconfig"), ("share", "gdb")):
            rmdir(self, os.path.join(self.package_folder, *folder))

    def package_info(self):
        self.cpp_info.set_property("cmake_file_name", "corvane_common")
        self.cpp_info.set_property("pkg_config_name", "corvane_common_all")
        self._component("foundation", "foundation::foundation", "foundation", ["boost::headers", "boost::log"])
        self._component("common", "corvane::common", "corvane_common",
                        ["foundation", "onetbb::libtbb", "onetbb::tbbmalloc"])
        self._component("inspect", "corvane::inspect", "corvane_inspect", ["common"])
        self._component("testing", "corvane::testing", "corvane_testing", ["common"])

    def _component(self, name, target, library, requires):
        component = self.cpp_info.components[name]
        component.set_property("cmake_target_name", target)
        component.set_property("pkg_config_name", library)
        component.libs = [library]
        component.requires = requires
