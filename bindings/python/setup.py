"""Gives what is built the version of the project, as a constant. pyproject.toml says everything else."""

from pathlib import Path
from runpy import run_path

from setuptools import setup
from setuptools.command.build_py import build_py

VERSION = run_path("velora_ts/_version.py")["__version__"]


class BuildWithVersion(build_py):
    def run(self):
        super().run()
        if not self.editable_mode:
            Path(self.build_lib, "velora_ts/_version.py").write_text(f'__version__ = "{VERSION}"\n', encoding="utf-8")


setup(version=VERSION, cmdclass={"build_py": BuildWithVersion})
