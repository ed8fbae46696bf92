# SPDX-License-Identifier: MIT
"""A driver's source archive where the daemon looks for it: the old package that its tests build too."""

import io
import pathlib
import tarfile

SOURCES = pathlib.Path(__file__).resolve().parents[2] / "tests/data/drivers/ueagle-atm-1.4"
TARBALL = pathlib.Path("/opt/norvix/drivers/ueagle-atm-1.4.tar")
# What the module says when it is loaded.
LOADED = "[ueagle-atm] stand-in loaded"


def source(name):
    """The text of one of the driver's files."""
    return (SOURCES / name).read_text(encoding="utf-8")


def write_tarball(path=TARBALL, changed=()):
    """Writes the archive. `changed` has other texts for some of its files, by name."""
    with tarfile.open(path, "w") as archive:
        for file in sorted(SOURCES.iterdir()):
            text = {file.name: source(file.name), **dict(changed)}[file.name].encode()
            entry = tarfile.TarInfo(f"{SOURCES.name}/{file.name}")
            entry.size = len(text)
            archive.addfile(entry, io.BytesIO(text))
    path.chmod(0o644)
