# SPDX-License-Identifier: MIT
"""Debian's suites and their packages, fetched by an apt of the laboratory's own: the host's sources,
lists and installed packages neither count nor change. Only the mirror is the host's."""

import os
import pathlib
import re
import subprocess

# By the names that people choose them by.
CODENAMES = {"12": "bookworm", "13": "trixie", "newest": "sid"}

KEYRING = "/usr/share/keyrings/debian-archive-keyring.gpg"
SECONDS = 1200


def own():
    """The codename of the system that this runs on."""
    text = pathlib.Path("/etc/os-release").read_text()
    return re.search(r"(?m)^VERSION_CODENAME=(\w+)$", text).group(1)


def codename(name=None):
    """The suite of that name; without one this system's own."""
    return CODENAMES[name] if name else own()


def host_sources():
    """The texts of the files that tell the host's apt where packages are."""
    files = [pathlib.Path("/etc/apt/sources.list"),
             *sorted(pathlib.Path("/etc/apt/sources.list.d").glob("*"))]
    return [file.read_text() for file in files if file.suffix in (".list", ".sources")
            and file.is_file()]


def mirror(texts, archive):
    """The address of an archive ("debian", "debian-security") in sources of either format, if any."""
    for line in "\n".join(texts).splitlines():
        for word in line.partition("#")[0].split():
            if "://" in word and word.rstrip("/").endswith("/" + archive):
                return word
    return None


def sources(texts, suite):
    """The source list for one suite, with its security updates where it has such."""
    wanted = [("debian", suite)]
    if suite != CODENAMES["newest"]:
        wanted.append(("debian-security", f"{suite}-security"))
    lines = [f"deb [arch=amd64 signed-by={KEYRING}] {mirror(texts, archive)} {name} main\n"
             for archive, name in wanted if mirror(texts, archive)]
    if not lines:
        raise RuntimeError("the sources of apt name no mirror of Debian")
    return "".join(lines)


class Apt:
    """An apt that knows one suite and believes that nothing is installed."""

    def __init__(self, folder, suite):
        self._archives = pathlib.Path(folder) / "archives"
        lists, state = pathlib.Path(folder) / "lists", pathlib.Path(folder) / "nothing-installed"
        for path in (lists / "partial", self._archives / "partial"):
            path.mkdir(parents=True, exist_ok=True)
        state.write_text("")
        list_file = pathlib.Path(folder) / "sources.list"
        list_file.write_text(sources(host_sources(), suite))
        self._options = [
            f"Dir::Etc::SourceList={list_file}", "Dir::Etc::SourceParts=/dev/null",
            "Dir::Etc::Preferences=/dev/null", "Dir::Etc::PreferencesParts=/dev/null",
            f"Dir::State={folder}", f"Dir::State::Lists={lists}", f"Dir::State::status={state}",
            f"Dir::Cache={folder}", f"Dir::Cache::archives={self._archives}",
            "APT::Architecture=amd64", "APT::Install-Recommends=false",
            "APT::Sandbox::User=root"]

    def fetch(self, packages):
        """The archives of the packages and of all that they need. Those that were fetched before
        are taken from the folder; those that are of no use any more leave it."""
        self._run("update")
        self._run("install", "--yes", "--download-only", *packages)
        plan = self._run("install", "--simulate", *packages)
        archives = [self._archives / name for name in archive_names(plan)]
        for stored in self._archives.glob("*.deb"):
            if stored not in archives:
                stored.unlink()
        return archives

    def _run(self, *arguments):
        command = ["apt-get", "-q"]
        for option in self._options:
            command += ["-o", option]
        done = subprocess.run([*command, *arguments], timeout=SECONDS, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              env=dict(os.environ, LC_ALL="C.UTF-8"), check=False)
        if done.returncode != 0:
            raise RuntimeError(f"apt-get {' '.join(arguments)}:\n{done.stdout}")
        return done.stdout


def archive_names(plan):
    """How apt calls the files of what a simulated installation installs."""
    found = re.findall(r"(?m)^Inst (\S+) \((\S+) .*\[(\w+)\]\)", plan)
    return [f"{name}_{version.replace(':', '%3a')}_{architecture}.deb"
            for name, version, architecture in found]
