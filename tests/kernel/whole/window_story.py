# SPDX-License-Identifier: MIT
"""Runs inside the emulated computer, beside the whole system that systemd has booted: somebody who has
never seen the window gets a new modem onto the line with it."""
import pathlib
import sys
import time

import story

sys.path.append(str(story.REPOSITORY / "tests/desktop"))
from first_connection import Guide  # noqa: E402

from lab.clean.installed_machine import InstalledSession  # noqa: E402
from lab.desktop.polkit import PASSWORD  # noqa: E402
from lab.kernel import chain as world  # noqa: E402
from lab.kernel import provider, system  # noqa: E402
from lab.kernel.booted_machine import BootedMachine, BootedPolkit  # noqa: E402
from lab.machine.daemon_process import Process  # noqa: E402

PARENT = "emma"  # whom nobody has let use the modem
PICTURES = pathlib.Path("/results")


def say_since(began, what):
    story.say("%s after %.1f s" % (what, time.monotonic() - began))


def read(desktop, role):
    """What is to be read there now, and a picture of it."""
    shown = desktop.window.find(role)
    story.say(" | ".join(shown.texts()))
    desktop.picture(PICTURES / (role + ".png"), shown)


def the_assistant_brings_the_line_up(computer):
    story.inside("useradd", "--create-home", PARENT)
    # What its package has left leads nowhere while systemd-resolved does not run.
    story.write("/etc/resolv.conf", system.GOOD_RESOLVER)
    with BootedMachine() as machine:
        desktop = InstalledSession(machine, PARENT)
        try:
            get_onto_the_line(computer, machine, desktop)
        except BaseException:
            for title, text in desktop.evidence():
                print("----", title, text, sep="\n", flush=True)
            raise


def get_onto_the_line(computer, machine, desktop):
    agent, window, guide = BootedPolkit(machine).agent(desktop), desktop.window, Guide(desktop)
    chosen = time.monotonic()
    desktop.launch()
    window.find("push button", "Set up…", {"sensitive"})
    say_since(chosen, "the window is there")
    guide.open().says("you are not one yet")
    [process] = machine.processes("norvix-desktop")
    agent.watch(Process(machine, process["pid"], machine.state / "out/window"))
    agent.answers.append(PASSWORD)
    guide.press("Let me use it…").says("^You may use the modem")
    assert PARENT in machine.members_of("norvix")
    guide.next("Modem").says("^No modem that is supported")
    plugged = time.monotonic()
    computer.plug()
    guide.says("^%s was found" % world.NAMES["cxacru"])
    say_since(plugged, "the modem is found")
    guide.next("Provider")
    window.choose("Country", "Italy")
    window.choose("Provider", "TIM (Alice)")
    guide.next("Account")
    window.fill("Login", provider.LOGIN)
    window.fill("Password", provider.PASSWORD)
    guide.next("Connect")
    pressed = time.monotonic()
    guide.press("Connect").says("^You are connected")
    say_since(pressed, "connected")
    say_since(chosen, "from the menu to the line")
    read(desktop, "dialog")
    guide.press("Close")
    window.wait_text("Connected")
    window.wait_text(provider.CLIENT_ADDRESS)
    read(desktop, "frame")
    assert [entry["local"] for entry in story.addresses("ppp0")] == [provider.CLIENT_ADDRESS]
    story.say(system.run("busybox", "ping", "-c", "3", "-I", "ppp0", provider.ADDRESS).stdout)
    assert world.carries_traffic()
    computer.keeper.wait_for(State="connected")


if __name__ == "__main__":
    sys.exit(story.tell([the_assistant_brings_the_line_up], story.Computer()))
