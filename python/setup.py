"""What pyproject.toml cannot say: the version is that of the headers, and a wheel with a library is for one machine."""

import runpy
from pathlib import Path

from setuptools import Distribution, setup
from wheel.bdist_wheel import bdist_wheel

HERE = Path(__file__).parent


class Package(Distribution):
    """Without a library beside it, it is for any machine, and finds the library that is installed there."""

    def has_ext_modules(self) -> bool:
        return any(HERE.glob("bda/*.so.*"))


class Wheel(bdist_wheel):
    """Nothing in it was compiled for one Python."""

    def get_tag(self) -> tuple[str, str, str]:
        return ("py3", "none", super().get_tag()[2])


setup(
    version=runpy.run_path(str(HERE / "bda" / "_header.py"))["version"](),
    distclass=Package,
    cmdclass={"bdist_wheel": Wheel},
)
