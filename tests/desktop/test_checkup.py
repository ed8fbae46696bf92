# SPDX-License-Identifier: MIT
"""The check-up page: findings with the buttons that mend them, as an ordinary user sees them."""
import os
import re
import signal

import pytest
from first_connection import PEER, PRIVATE, SECRETS, furnish, show_in_sysfs

from lab.machine.private_machine import REPOSITORY

pytestmark = pytest.mark.skipif(os.geteuid() != 0, reason="other users exist inside only as root")
AT_ONCE = 2  # seconds, for a busy machine; a daemon that hangs is waited for at least twice as long
MEND = "/opt/norvix/libexec/norvix-desktop-mend"


@pytest.fixture
def machine(new_machine):
    """Everything is in order, but for the first account."""
    made = new_machine(private_folders=PRIVATE)
    furnish(made, REPOSITORY)
    for path in SECRETS:
        made.path(path).write_text('"me@isp" * "topsecret" *\n', encoding="ascii")
    peer = made.path(PEER)
    peer.write_text(peer.read_text(encoding="ascii").replace('"norvix"', '"me@isp"'), encoding="ascii")
    made.settings(modem="Thomson Speedtouch 330", vendor_id=0x06B9, product_id=0x4061,
                  udi="/org/freedesktop/Hal/devices/usb_device_6b9_4061_0090D0123456",
                  protocol="PPPoE", vpi=8, vci=35)
    made.path("/opt/norvix/.daemon_ng.ini").chmod(0o644)
    show_in_sysfs(made)
    return made


def open_page(desktop):
    desktop.start()
    desktop.window.select("Pages", "Check-up")
    desktop.window.wait_text(re.compile("a connection"))


def has_row(desktop, title):
    return title in desktop.window.texts()


def test_what_is_well_is_one_line_and_unfolds(computer, desktop):
    computer.plug()
    computer.start_daemon()
    open_page(desktop)
    fold = desktop.window.wait_text(re.compile("checks? .*found nothing wrong|check.s. found nothing"))
    assert not has_row(desktop, "Daemon")
    desktop.window.find(None, fold).press()
    desktop.window.wait_text("Daemon")
    assert desktop.window.nameless() == []


def test_what_only_an_administrator_sees_is_looked_at_with_a_password(computer, desktop):
    for path in SECRETS:
        computer.machine.path(path).write_text('# nothing first\n"me" * "topsecret" *\n')
    computer.plug()
    computer.start_daemon()
    open_page(desktop)
    desktop.window.wait_text(re.compile("Only an administrator can look at this: .*Account files"))
    desktop.window.press_button("Look as administrator…")
    assert desktop.pkexec.wait_call()[-3:] == [MEND, "look", "en"]
    desktop.window.wait_text(re.compile("does not begin with the account's entry"))
    desktop.window.press_button("Put yours first…")
    assert desktop.pkexec.wait_call(2)[-2:] == [MEND, "mend-files"]
    desktop.window.wait_gone(None, re.compile("does not begin with"))
    assert computer.machine.path(SECRETS[0]).read_text().startswith('"me" * "topsecret" *')


def test_what_the_administrator_sees_is_told_in_the_users_language(computer, desktop):
    for path in SECRETS:
        computer.machine.path(path).write_text('# nothing first\n"me" * "topsecret" *\n')
    computer.plug()
    computer.start_daemon()
    desktop.speak("de_DE")
    desktop.start()
    desktop.window.select("Seiten", "Überprüfung")
    desktop.window.press_button("Als Verwalter nachsehen …")
    desktop.window.wait_text(re.compile("beginnt nicht mit dem Eintrag des Kontos"))


def test_a_missing_peer_file_is_put_back_by_its_button(computer, desktop):
    computer.machine.path(PEER).unlink()
    computer.start_daemon()
    open_page(desktop)
    desktop.window.wait_text(re.compile("%s is missing" % PEER))
    desktop.window.press_button("Put it there…")
    desktop.window.wait_gone(None, re.compile("%s is missing" % PEER))
    assert computer.machine.path(PEER).exists()


def test_a_file_that_somebody_has_edited_is_left_to_a_person(computer, desktop):
    peer = computer.machine.path(PEER)
    edited = peer.read_text(encoding="ascii").replace("noauth\n", "# noauth\n") + "mtu 1400\n"
    peer.write_text(edited, encoding="ascii")
    computer.start_daemon()
    open_page(desktop)
    desktop.window.press_button("Put yours in place…")
    desktop.pkexec.wait_call()
    desktop.window.press_button("Show command…")
    desktop.window.wait_text(re.compile("One that somebody has edited is left alone"))
    assert peer.read_text(encoding="ascii") == edited


def test_a_frozen_daemon_freezes_nothing_and_is_restarted_by_its_button(computer, desktop):
    daemon = computer.start_daemon()
    open_page(desktop)
    daemon.signal(signal.SIGSTOP)
    desktop.window.press_button("Check again")
    desktop.window.wait_text(re.compile("Looking for .* already"))
    assert desktop.window.answer_time() < AT_ONCE
    assert desktop.window.has("push button", "Copy report")
    desktop.window.wait_text(re.compile("is on the bus but does not answer"), timeout=60)
    desktop.window.press_button("Restart the daemon…")
    assert desktop.pkexec.wait_call()[-2:] == [MEND, "restart-daemon"]
    daemon.signal(signal.SIGCONT)


def test_where_nobody_can_be_asked_for_a_password_the_command_is_shown(computer, desktop):
    computer.machine.path(PEER).unlink()
    computer.start_daemon()
    open_page(desktop)
    desktop.pkexec.remove()
    desktop.window.press_button("Put it there…")
    desktop.window.wait_text(re.compile("pkexec.*is not installed"))
    assert desktop.window.find("text", "Command").text == "sudo norvixctl doctor --fix"


def test_a_stranger_is_let_in_from_here_and_comes_back_here(computer, new_desktop):
    computer.start_daemon()
    stranger = new_desktop(member=False)
    open_page(stranger)
    stranger.window.press_button("Let me use it…")
    stranger.window.wait_gone("push button", "Let me use it…")
    stranger.window.wait_text(re.compile("a connection"))  # of the program that began anew
    assert not stranger.window.has("push button", "Let me use it…")


def test_the_keyboard_stays_at_a_button_that_a_new_look_leaves_as_it_was(computer, desktop):
    computer.machine.settings(protocol="PPPoE")
    computer.machine.path("/opt/norvix/.daemon_ng.ini").chmod(0o644)
    daemon = computer.start_daemon()
    open_page(desktop)
    desktop.window.find("push button", "Set the line…").focus()
    daemon.signal(signal.SIGSTOP)
    desktop.window.press_button("Check again")
    desktop.window.wait_text(re.compile("^Looking"))
    daemon.signal(signal.SIGCONT)
    desktop.window.find("push button", "Check again", {"sensitive"})
    assert desktop.window.has("push button", "Set the line…", {"focused"})


def test_a_finding_leads_to_the_page_that_mends_it(computer, desktop):
    computer.machine.settings(protocol="PPPoE")
    computer.machine.path("/opt/norvix/.daemon_ng.ini").chmod(0o644)
    computer.start_daemon()
    open_page(desktop)
    desktop.window.press_button("Set the line…")
    desktop.window.wait_gone("push button", "Check again")
    desktop.window.select("Pages", "Check-up")
    desktop.window.find("push button", "Check again", {"sensitive"})  # what is found anew takes the place of the old
    desktop.window.press_button("Take into use…")
    desktop.window.wait_text("2 of 5")


