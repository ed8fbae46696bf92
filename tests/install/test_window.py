# SPDX-License-Identifier: MIT
"""The window as ./install leaves it, used by people who have never seen it: from the desktop's menu to the
line, with nothing but the window. The system's own bus, polkit and PAM; modem and provider are stand-ins.

With NORVIX_PICTURES each page that a person meets is kept there as a picture."""
import os
import re
import sys
from pathlib import Path

import pytest
from conftest import REPOSITORY, USER

sys.path.append(str(REPOSITORY / "tests/desktop"))
from first_connection import MODULES, Guide, hide_in_sysfs, show_in_sysfs  # noqa: E402

from lab.clean.installed_machine import (  # noqa: E402
    PACKAGES, InstalledComputer, InstalledMachine, InstalledPolkit, InstalledSession)
from lab.desktop.polkit import NUMBER, PASSWORD  # noqa: E402
from lab.machine.daemon_process import Process  # noqa: E402
from lab.machine.pppd_script import link_up, stay  # noqa: E402

PARENT = "emma"  # whom nobody has let use the modem
# The pages of the window, and what says that they have got their facts.
PAGES = {"History": "^Still connected", "Check-up": "^Nothing stops a connection",
         "Account and line": "emma@isp", "Modem and driver": "^speedtch$",
         "Log": "pppd|Norvix", "Preferences": "Tell me when"}
PICTURES = os.environ.get("NORVIX_PICTURES")


@pytest.fixture(scope="module")
def installed(from_clone):
    """What ./install was called on, with a desktop, and a kernel that has drivers."""
    from_clone.run("apt-get", "-q", "-y", "install", "--no-install-recommends", *PACKAGES)
    from_clone.run("useradd", "--create-home", PARENT)
    modules = from_clone.path("/usr/lib/modules/%s" % os.uname().release)
    modules.mkdir(parents=True)
    (modules / "modules.dep").write_text(MODULES, encoding="ascii")
    return from_clone


@pytest.fixture
def machine(installed):
    with InstalledMachine(installed) as running:
        yield running


@pytest.fixture
def computer(machine):
    return InstalledComputer(machine)


class Person:
    """Somebody before the desktop. Looks at each page, and may be asked for the administrator's password."""

    def __init__(self, computer, user):
        self.computer, self.machine = computer, computer.machine
        self.desktop = InstalledSession(self.machine, user)
        self.window = self.desktop.window
        self.guide = Guide(self.desktop)
        self._pages = 0

    def look(self, role="dialog"):
        self._pages += 1
        if PICTURES:
            file = Path(PICTURES) / ("%s-%02d.png" % (self.desktop.user, self._pages))
            self.desktop.picture(file, self.window.find(role))

    def begin(self):
        """Chooses the program in the desktop's menu and presses what is offered."""
        self.desktop.launch()
        self.window.find("push button", "Set up…", {"sensitive"})
        self.look("frame")
        self.guide.open()

    def plug_anew(self, modem):
        self.computer.usb.unplug(modem)
        hide_in_sysfs(self.machine)
        self.guide.says("^No modem that is supported")
        self.look()
        self.plug()

    def plug(self):
        show_in_sysfs(self.machine)
        return self.computer.plug()

    def get_onto_the_line(self, login):
        """From a modem that was found."""
        guide, window = self.guide, self.window
        guide.says("^Thomson Speedtouch 330 was found")
        self.look()
        guide.next("Provider")
        self.look()
        window.choose("Country", "Italy")
        window.choose("Provider", "TIM (Alice)")
        self.look()
        guide.next("Account")
        window.fill("Login", login)
        window.fill("Password", "let me in")
        self.look()
        guide.next("Connect")
        self.look()
        self.machine.pppd.script([*link_up(), stay()])
        guide.press("Connect").says("^You are connected")
        self.look()
        guide.press("Close")
        window.wait_text("Connected")
        self.look("frame")

    def read_the_other_pages(self):
        """In the hope that none knows of a trouble."""
        for page, text in PAGES.items():
            self.window.select("Pages", page)
            self.window.wait_text(re.compile(text))
            self.look("frame")


class Administrator:
    """Who types the password where the desktop asks a person for it."""

    def __init__(self, person):
        self.person = person
        self.agent = InstalledPolkit(person.machine).agent(person.desktop)
        self.answers, self.asked = self.agent.answers, self.agent.asked

    def watch(self):
        """Is asked when the window that is open now wants rights."""
        machine = self.person.machine
        [window] = machine.processes("norvix-desktop")
        self.agent.watch(Process(machine, window["pid"], machine.state / "out/window"))


def test_somebody_of_the_family_gets_from_the_menu_to_the_line_with_the_window_alone(machine, computer):
    person = Person(computer, PARENT)
    modem = person.plug()  # as usual: before anything else runs
    computer.start_daemon()
    administrator = Administrator(person)
    person.begin()
    person.guide.says("you are not one yet")
    person.look()
    administrator.watch()
    administrator.answers += [None, PASSWORD]
    person.guide.press("Let me use it…").says("The password was not entered")
    person.look()
    person.guide.press("Let me use it…").says("^You may use the modem")
    assert administrator.asked[0][::2] == ("com.norvix.desktop.join", [NUMBER])
    assert PARENT in machine.members_of("norvix")
    person.look()
    person.guide.next("Modem")
    person.guide.says("plug it in again")
    person.look()
    person.plug_anew(modem)
    person.get_onto_the_line("emma@isp")
    assert machine.path("/etc/ppp/pap-secrets").read_text().startswith('"emma@isp" * "let me in" *\n')
    [call] = machine.calls("pppd")
    assert call.argv[-2:] == ["call", "norvix"]
    person.read_the_other_pages()
    assert person.window.nameless() == []


def test_whoever_has_installed_it_needs_no_new_login(machine, computer):
    computer.start_daemon()
    person = Person(computer, USER)  # in the group since ./install, and logged in before
    administrator = Administrator(person)
    assert USER in machine.members_of("norvix")
    person.begin()
    person.guide.says("does not know it yet")
    person.look()
    person.guide.press("Use it now").says("^You may use the modem")
    person.look()
    person.guide.skip_to("Provider")
    person.window.choose("Country", "United Kingdom")
    person.window.choose("Provider", "BT and resellers")
    person.guide.press("Next").says("They stand in a file of the system, too")
    person.look()
    administrator.watch()
    administrator.answers.append(PASSWORD)
    person.guide.press("Put a fitting file in place…").says("The file fits now")
    person.look()
    assert "\n0.38\n" in machine.path("/etc/ppp/peers/norvix").read_text(encoding="ascii")
    person.guide.next("Account")
