"""Compiles the library into the Python module; pyproject.toml holds the rest."""

import re
from glob import glob
from pathlib import Path

from pybind11.setup_helpers import ParallelCompile, Pybind11Extension, build_ext, has_flag
from setuptools import setup

VERSION = re.findall(r"#define VARN3D_VERSION_[A-Z]+ (\d+)", Path("dt3Library/version.h").read_text())


class BuildExact(build_ext):
    """Compiles as CMake does: see cmake/VarnTargets.cmake."""

    def build_extensions(self):
        if self.compiler.compiler_type == "msvc":
            options = ["/fp:precise", "/O2"]
        else:
            options = ["-O3", "-ffp-contract=off"]
            for option in "-mbranches-within-32B-boundaries", "-Wa,-mbranches-within-32B-boundaries":
                if has_flag(self.compiler, option):
                    options.append(option)
                    break
        for extension in self.extensions:
            extension.extra_compile_args += options
        super().build_extensions()


ParallelCompile("CMAKE_BUILD_PARALLEL_LEVEL", default=0).install()
setup(
    version=".".join(VERSION),
    cmdclass={"build_ext": BuildExact},
    ext_modules=[
        Pybind11Extension(
            "varn3d._core",
            sorted(glob("dt3Library/**/*.cpp", recursive=True) + glob("python/*.cpp")),
            depends=sorted(glob("dt3Library/**/*.h", recursive=True) + glob("python/*.h")),
            include_dirs=["."],
            cxx_std=17,
        )
    ],
)
