"""What pyproject.toml cannot say: the version is that of the headers, and a wheel with a library is for one machine."""

import runpy
from pathlib import Path

from setuptools import setup
from wheel.bdist_wheel import bdist_wheel

HERE = Path(__file__).parent


class Wheel(bdist_wheel):
    """Without a library beside the package it is for any machine, and finds the library that is installed there."""

    def finalize_options(self) -> None:
        super().finalize_options()
        self.root_is_pure = not any(HERE.glob("bda/*.so.*"))

    def get_tag(self) -> tuple[str, str, str]:
        return ("py3", "none", "any" if self.root_is_pure else super().get_tag()[2])


setup(version=runpy.run_path(str(HERE / "bda" / "_header.py"))["version"](), cmdclass={"bdist_wheel": Wheel})
