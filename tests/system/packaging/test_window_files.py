# SPDX-License-Identifier: MIT
"""The files with which the window is installed, compared with each other and with the program."""
import re
import xml.etree.ElementTree as ElementTree
from pathlib import Path

from shipped_files import settings

REPOSITORY = Path(__file__).resolve().parents[3]
FILES = REPOSITORY / "packaging/desktop"
NAME = "com.norvix.Desktop"
LAUNCHER, SERVICE, AUTOSTART = (FILES / (NAME + end) for end in (".desktop", ".service", ".autostart"))
PROGRAM = "/opt/norvix/bin/norvix-desktop"


def test_launcher_activation_and_description_are_of_one_name():
    entry, service = settings(LAUNCHER)["Desktop Entry"], settings(SERVICE)["D-BUS Service"]
    assert entry["DBusActivatable"] == "true" and service["Name"] == LAUNCHER.stem == NAME
    assert entry["Exec"] == PROGRAM and service["Exec"] == PROGRAM + " --background"
    described = ElementTree.parse(FILES / (NAME + ".metainfo.xml")).getroot()
    assert described.findtext("id") == NAME
    assert described.findtext("launchable") == LAUNCHER.name
    assert described.findtext("icon") == entry["Icon"] == "norvix-desktop"


def test_the_description_names_the_projects_version():
    [version] = re.findall(r"project\(norvix VERSION ([0-9.]+)",
                           (REPOSITORY / "CMakeLists.txt").read_text(encoding="utf-8"))
    releases = ElementTree.parse(FILES / (NAME + ".metainfo.xml")).getroot().iter("release")
    assert next(releases).get("version") == version


def test_the_example_of_an_autostart_is_what_the_program_writes():
    source = (REPOSITORY / "desktop/session/preferences.cpp").read_text(encoding="utf-8")
    [text] = re.findall(r"autostartText\[\]\s*=\s*((?:\"[^\"]*\"\s*)+);", source)
    written = "".join(re.findall(r'"([^"]*)"', text)).replace("\\n", "\n")
    assert written == AUTOSTART.read_text(encoding="utf-8")


def test_every_drawing_has_its_pictures_and_its_symbol():
    icons = REPOSITORY / "desktop/icons"
    names = {file.stem for file in icons.glob("*.svg") if not file.stem.endswith("-symbolic")}
    assert len(names) == 6
    for name in names:
        assert (icons / (name + "-symbolic.svg")).exists()
        for size in (16, 22, 24, 32, 48, 64, 128):
            head = (icons / str(size) / (name + ".png")).read_bytes()[16:24]
            assert head == size.to_bytes(4, "big") * 2, name


def test_the_manual_page_names_every_option():
    page = (REPOSITORY / "docs/norvix-desktop.1").read_text(encoding="utf-8").replace("\\-", "-")
    usage = (REPOSITORY / "desktop/session/options.cpp").read_text(encoding="utf-8")
    options = set(re.findall(r'"(--[a-z]+)"', usage))
    assert options == {"--background", "--help", "--version"}
    assert [option for option in options if option not in page] == []
