"""With the library inside, a wheel is for one system and any Python; without it, for every system."""

from pathlib import Path
from typing import Tuple

from setuptools import Distribution, setup
from wheel.bdist_wheel import bdist_wheel

PACKAGE = Path(__file__).resolve().parent / "quillon"
HAS_LIBRARY = any((PACKAGE / name).exists() for name in ("libQuillon.so", "Quillon.dylib"))


class Package(Distribution):
    """Its files are laid where those of one system belong if the library is among them."""

    def has_ext_modules(self) -> bool:
        return HAS_LIBRARY


class Wheel(bdist_wheel):
    """The tag names the system that --plat-name gives, and no version of Python."""

    def get_tag(self) -> Tuple[str, str, str]:
        return "py3", "none", self.plat_name if HAS_LIBRARY else "any"


setup(distclass=Package, cmdclass={"bdist_wheel": Wheel})
