"""Builds the wheel where pip asks for one: the library by CMake, from the sources beside or around this folder."""

import os
import subprocess
import sys
import tarfile
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
SOURCES = HERE.parent


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    with tempfile.TemporaryDirectory() as folder:
        options = ["-DCMAKE_BUILD_TYPE=Release", "-DKIV_BUILD_TOOL=OFF", "-DBUILD_TESTING=OFF"]
        options += os.environ.get("CMAKE_ARGS", "").split()
        subprocess.run(["cmake", "-S", SOURCES, "-B", folder, *options], check=True)
        subprocess.run(["cmake", "--build", folder, "--target", "kiv_c", "--parallel"], check=True)
        names = ("libkiv.so.1", "bin/kiv.dll")
        library = next(path for name in names if (path := Path(folder) / name).exists())
        command = [sys.executable, HERE / "make-wheel", library, wheel_directory]
        made = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout
    return os.path.basename(made.strip())


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    """Without it pip would build the wheel twice."""
    with tempfile.TemporaryDirectory() as folder:
        name = _write_metadata(Path(folder) / "METADATA")
        info = Path(metadata_directory) / f"{name}.dist-info"
        info.mkdir()
        (info / "METADATA").write_bytes((Path(folder) / "METADATA").read_bytes())
    return info.name


def build_sdist(sdist_directory, config_settings=None):
    """What the wheel is built from, in the repository's own folders, with the two files that pip looks for on top."""
    with tempfile.TemporaryDirectory() as folder:
        top = Path(folder)
        project = (HERE / "pyproject.toml").read_text().replace('backend-path = ["."]', 'backend-path = ["python"]')
        (top / "pyproject.toml").write_text(project)
        name = _write_metadata(top / "PKG-INFO")
        archive = f"{name}.tar.gz"
        with tarfile.open(Path(sdist_directory) / archive, "w:gz", format=tarfile.PAX_FORMAT) as packed:
            for part in ("pyproject.toml", "PKG-INFO"):
                packed.add(top / part, f"{name}/{part}")
            for part in ("CMakeLists.txt", "LICENCE.md", "cmake", "include", "src", "python"):
                packed.add(SOURCES / part, f"{name}/{part}", filter=_without_caches)
    return archive


def _write_metadata(file):
    """Its name and version."""
    command = [sys.executable, HERE / "make-wheel", "--metadata", file]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout.strip()


def _without_caches(entry):
    return None if entry.name.endswith(("__pycache__", ".mypy_cache")) else entry
