import os

from conan import ConanFile
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy

# The recipe builds the source tree that it lies in.
SOURCES = ("CMakeLists.txt", "CHANGELOG.md", "README.md", "cmake/*", "lib/*", "packaging/copyright", "tools/*")


class KetraQtConan(ConanFile):
    name = "ketra-qt"
    version = "1.0.0"
    description = "Reads, edits and writes QuickTime, MPEG-4, 3GPP and 3GPP2 movie files"
    license = "Proprietary"
    topics = ("quicktime", "mp4", "3gpp", "media")
    package_type = "shared-library"
    settings = "os", "arch", "compiler", "build_type"

    def layout(self):
        cmake_layout(self)

    def export_sources(self):
        root = os.path.join(self.recipe_folder, os.pardir, os.pardir)
        for pattern in SOURCES:
            copy(self, pattern, src=root, dst=self.export_sources_folder)

    def requirements(self):
        self.requires("zlib/[>=1.2.11 <2]")

    def generate(self):
        CMakeDeps(self).generate()
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["KETRAQT_BUILD_TESTS"] = False
        toolchain.cache_variables["KETRAQT_BUILD_TOOLS"] = False
        toolchain.cache_variables["KETRAQT_WERROR"] = False
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        copy(self, "copyright", src=os.path.join(self.source_folder, "packaging"),
             dst=os.path.join(self.package_folder, "licenses"))
        CMake(self).install()

    def package_info(self):
        self.cpp_info.libs = ["ketraqt"]
        self.cpp_info.includedirs = [os.path.join("include", "ketra")]
        self.cpp_info.set_property("cmake_file_name", "KetraQT")
        self.cpp_info.set_property("cmake_target_name", "Ketra::qt")
        self.cpp_info.set_property("pkg_config_name", "ketra-qt")
