"""Recipe for Conan 2, which builds the checkout that it lies in: conan create packaging/conan

With mesh=True it needs three.min.js of three.js r111, which Conan's packages lack: -o three_js=FILE names it.
"""

import os

from conan import ConanFile
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain
from conan.tools.files import copy

REQUIRED_OF_MESH = ("zlib/[>=1.2.13 <2]", "minizip/[>=1.2.13 <2]", "fast_float/[>=3.9 <8]", "nlohmann_json/[>=3.11 <4]",
                    "tinygltf/[>=2.7 <3]")
SOURCES = ("CMakeLists.txt", "cmake/*", "embedded/*", "include/*", "src/*", "mesh/*", "viewer/*", "packaging/debian/copyright")


class TessaryConan(ConanFile):
    name = "tessary"
    version = "2.11.0"
    package_type = "shared-library"
    description = "Geometry kernels for polygon meshes: triangles, topology, samples, spheres, boxes, contacts"
    settings = "os", "arch", "compiler", "build_type"
    options = {"mesh": [True, False], "three_js": ["", "ANY"]}
    default_options = {"mesh": False, "three_js": ""}

    def export_sources(self):
        checkout = os.path.join(self.recipe_folder, "..", "..")
        for pattern in SOURCES:
            copy(self, pattern, src=checkout, dst=self.export_sources_folder)

    def requirements(self):
        self.requires("onetbb/[>=2021.8 <2023]", transitive_headers=True, transitive_libs=True)
        if self.options.mesh:
            for reference in REQUIRED_OF_MESH:
                self.requires(reference)

    def layout(self):
        self.folders.build = "build"
        self.folders.generators = "build/generators"

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["TESSARY_BUILD_MESH"] = bool(self.options.mesh)
        for part in ("PROGRAM", "PYTHON", "TESTS"):
            toolchain.cache_variables[f"TESSARY_BUILD_{part}"] = False
        if self.options.mesh and self.options.three_js:
            toolchain.cache_variables["TESSARY_THREE_JS"] = str(self.options.three_js)
        toolchain.generate()
        CMakeDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        copy(self, "copyright", src=os.path.join(self.source_folder, "packaging", "debian"),
             dst=os.path.join(self.package_folder, "licenses"))
        CMake(self).install()

    def package_info(self):
        # The project's own CMake package is the one to find: it has the same targets, and knows of the host.
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.builddirs = [os.path.join("lib", "cmake")]
        self.cpp_info.libs = ["tessary_mesh"] * bool(self.options.mesh) + ["tessary", "korvane_embedded"]
