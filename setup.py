"""Builds the Python package with CMake: pip install --no-build-isolation .

What pip cannot install has to be there: a C++ compiler, CMake, Ninja, TBB, fast_float, zlib, three.js r111 and
pybind11 (./dev setup).
TESSARY_CMAKE_BUILD names a build folder to use in the place of a new one.
"""

import os
import re
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = Path(__file__).resolve().parent


class BuildByCMake(build_ext):
    def run(self):
        build = os.environ.get("TESSARY_CMAKE_BUILD") or self.new_build()
        package = Path("python" if self.inplace else self.build_lib, "tessary").resolve()
        subprocess.run(["cmake", "--install", build, "--component", "wheel", "--prefix", package], check=True)
        name_by_soname(package)

    def new_build(self):
        build = Path(self.build_temp).resolve()
        options = {"CMAKE_BUILD_TYPE": "Release", "Python_EXECUTABLE": sys.executable, "TESSARY_BUILD_PYTHON": "ON",
                   "TESSARY_BUILD_TESTS": "OFF", "TESSARY_BUILD_PROGRAM": "OFF"}
        subprocess.run(["cmake", "-S", ROOT, "-B", build, "-G", "Ninja",
                        *(f"-D{name}={value}" for name, value in options.items())], check=True)
        subprocess.run(["cmake", "--build", build, "--target", "tessary_python"], check=True)
        return build


def name_by_soname(package):
    """Wheels hold no links: libraries take the names under which they are looked for."""
    for link in package.glob("lib*.so.*"):
        if link.is_symlink():
            link.resolve().replace(link)


version = re.search(r"project\(Tessary VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text())[1]
setup(version=version, ext_modules=[Extension("tessary._tessary", [])], cmdclass={"build_ext": BuildByCMake})
