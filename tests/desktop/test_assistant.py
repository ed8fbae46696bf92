# SPDX-License-Identifier: MIT
"""The assistant for the first connection, used as a newcomer uses it."""
import os
import re
import signal

import pytest
from first_connection import (PEER, PRIVATE, SECRETS, Guide, furnish, hide_in_sysfs, show_in_sysfs,
                              stored, wait_stored)

from lab.desktop.session import join_group
from lab.machine.private_machine import REPOSITORY
from lab.machine.pppd_script import end, link_up, out, stay
from lab.waiting import read_text

AT_ONCE = 2  # seconds, for a busy machine; whoever waits for what hangs here waits for much longer
pytestmark = pytest.mark.skipif(os.geteuid() != 0, reason="other users exist inside only as root")


@pytest.fixture
def machine(new_machine):
    made = new_machine(private_folders=PRIVATE)
    furnish(made, REPOSITORY)
    made.path("/etc/group").chmod(0o644)
    return made


@pytest.fixture
def stranger(new_desktop):
    """Somebody who is not in the group."""
    return new_desktop(member=False)


def members(machine):
    names = re.search("^norvix:x:[0-9]+:(.*)$", machine.path("/etc/group").read_text(), re.MULTILINE)[1]
    return set(names.split(",")) - {"norvix-keeper"}


def plug(computer, family="speedtch"):
    show_in_sysfs(computer.machine, family)
    return computer.plug(family)


def secrets(machine):
    return [machine.path(path).read_text(encoding="utf-8").splitlines()[0] for path in SECRETS]


# ---- the whole way


def test_a_newcomer_gets_from_nothing_to_the_line(computer, stranger):
    machine = computer.machine
    computer.start_companion()
    device = plug(computer)  # as usual: before anything else runs
    computer.start_daemon()
    stranger.start()
    guide = Guide(stranger).open()
    guide.says("you are not one yet")
    guide.press("Let me use it…")
    assert stranger.pkexec.wait_call()[-1] == "/opt/norvix/libexec/norvix-desktop-join"
    guide.says("^You may use the modem")  # the program began anew by itself
    assert members(machine) == {"user"}
    guide.at("May I?").next("Modem")
    guide.says("plug it in again")
    computer.usb.unplug(device)
    hide_in_sysfs(machine)
    guide.says("No modem that is supported")
    plug(computer)
    guide.says("was just plugged in|was found")
    guide.says("^Thomson Speedtouch 330 was found")
    guide.press("Take it into use")
    guide.says("is ready")
    wait_stored(machine, modem="Thomson Speedtouch 330")
    guide.next("Provider")
    stranger.window.choose("Country", "Italy")
    stranger.window.choose("Provider", "TIM (Alice)")
    guide.press("Next").at("Account")
    wait_stored(machine, vpi="8", vci="35", protocol="PPPoE")
    stranger.window.fill("Login", "user@isp")
    stranger.window.fill("Password", "let me in")
    guide.next("Connect")
    assert secrets(machine) == ['"user@isp" * "let me in" *'] * 2
    machine.pppd.script([*link_up(), stay()])
    guide.press("Connect")
    guide.says("^You are connected")
    assert stranger.window.nameless() == []
    guide.press("Close")
    stranger.window.wait_text("Connected")


# ---- May I?


def at_the_beginning(desktop):
    desktop.start()
    return Guide(desktop).open()


def test_a_member_is_told_so_and_goes_on(computer, desktop):
    computer.start_daemon()
    guide = at_the_beginning(desktop)
    guide.says("^You may use the modem")
    assert not desktop.window.has("push button", "Let me use it…")


REFUSALS = {"refuse": "An administrator's rights were not given",
            "cancel": "The password was not entered"}


@pytest.mark.parametrize("behaviour", REFUSALS)
def test_a_password_that_does_not_come_is_told_and_asked_for_again(computer, stranger, behaviour):
    computer.start_daemon()
    guide = at_the_beginning(stranger)
    stranger.pkexec.behaviour = behaviour
    guide.press("Let me use it…").says(REFUSALS[behaviour])
    assert members(computer.machine) == set()
    stranger.pkexec.behaviour = "run"
    guide.press("Let me use it…").says("^You may use the modem")
    assert members(computer.machine) == {"user"}


def test_a_question_for_the_password_that_hangs_can_be_left(computer, stranger):
    computer.start_daemon()
    guide = at_the_beginning(stranger)
    stranger.pkexec.behaviour = "hang"
    guide.press("Let me use it…")
    guide.says("Waiting for an administrator's password for ")
    assert stranger.window.answer_time() < AT_ONCE
    guide.press("Stop waiting").says("Nobody waits")
    guide.press("Next").says("You may not use the modem yet")
    guide.press("Skip").at("Modem")


def test_without_pkexec_the_command_is_shown_to_copy(computer, stranger):
    computer.start_daemon()
    guide = at_the_beginning(stranger)
    stranger.pkexec.remove()
    guide.press("Let me use it…").says("pkexec.*is not installed")
    field = stranger.window.find("text", "Command")
    assert field.text == "sudo usermod -a -G norvix user"
    assert stranger.window.has("push button", "Copy command")


def test_a_missing_group_is_made_first(computer, stranger):
    machine = computer.machine
    group = machine.path("/etc/group")
    group.write_text(re.sub("^norvix:.*\n", "", group.read_text(), flags=re.MULTILINE))
    guide = at_the_beginning(stranger)
    guide.press("Create the group…").says("you are not one yet")
    guide.press("Let me use it…").says("^You may use the modem")


# ---- modem


def at_the_modem(desktop):
    guide = at_the_beginning(desktop)
    guide.says("^You may use the modem")
    return guide.next("Modem")


def test_a_modem_without_firmware_is_named_with_what_it_lacks(computer, desktop):
    computer.start_daemon()
    show_in_sysfs(computer.machine, "eagle-e4", before=True)
    guide = at_the_modem(desktop)
    guide.says("has not got its firmware")
    guide.press("Show command…")
    assert desktop.window.find("text", "Command").text == "sudo apt install firmware-misc-nonfree"


def test_a_modem_without_a_driver_is_named_with_what_it_lacks(computer, desktop):
    computer.start_daemon()
    show_in_sysfs(computer.machine, "cxacru")
    at_the_modem(desktop).says("There is no driver cxacru")
    assert desktop.window.has("push button", "What to do…")


def test_a_daemon_that_is_not_running_is_started_from_the_modems_page(computer, desktop):
    show_in_sysfs(computer.machine)
    guide = at_the_modem(desktop)
    guide.says("is not running")
    started = []
    guide.press("Start the daemon")
    assert desktop.pkexec.wait_call()[1:] == ["/opt/norvix/libexec/norvix-desktop-mend",
                                              "start-daemon"]
    started.append(computer.start_daemon())
    guide.says("plug it in again")


def test_a_modem_in_use_is_not_called_new_before_the_daemon_has_answered(computer, desktop):
    plug(computer)
    use_a_modem(computer)
    guide = at_the_beginning(desktop)
    guide.says("^You may use the modem")
    computer.daemon.signal(signal.SIGSTOP)
    guide.next("Modem")
    desktop.window.find("list item", re.compile("Thomson"))
    assert not [said for said in desktop.window.texts() if "plug it in again" in said]
    computer.daemon.signal(signal.SIGCONT)
    guide.says("is ready")


def test_next_takes_a_modem_that_was_found_into_use(computer, desktop):
    computer.start_daemon()
    guide = at_the_modem(desktop)
    plug(computer)
    guide.says("^Thomson Speedtouch 330 was found")
    guide.next("Provider")
    wait_stored(computer.machine, modem="Thomson Speedtouch 330")


def test_next_stays_while_no_modem_is_ready_and_skip_does_not(computer, desktop):
    computer.start_daemon()
    guide = at_the_modem(desktop)
    guide.says("No modem that is supported.*Thomson Speedtouch 330")
    guide.press("Next").says("No modem is ready yet")
    guide.at("Modem").press("Skip").at("Provider")


def test_somebody_who_became_a_member_elsewhere_goes_on_with_next(computer, stranger):
    computer.start_daemon()
    guide = at_the_beginning(stranger)
    guide.press("Next").says("You may not use the modem yet")
    join_group(computer.machine, "user")
    guide.press("Next").says("does not know it yet")
    guide.press("Use it now").says("^You may use the modem")
    guide.next("Modem")


# ---- provider and account


def test_values_that_nobody_has_chosen_are_not_shown_as_zeros(computer, desktop):
    computer.start_daemon()
    guide = at_the_modem(desktop).skip_to("Provider")
    fields = {name: desktop.window.find("spin box", name) for name in ("VPI", "VCI")}
    assert [field.text.strip() for field in fields.values()] == ["", ""]
    guide.press("Next").says("Choose your provider")
    fields["VPI"].set_value(0)
    guide.press("Next").says("Choose your provider")
    assert stored(computer.machine, "vpi") is None
    fields["VCI"].set_value(38)
    guide.next("Account")
    wait_stored(computer.machine, vpi="0", vci="38")


def test_what_was_entered_survives_a_frozen_and_a_new_daemon_and_going_back(computer, desktop):
    daemon = computer.start_daemon()
    guide = at_the_modem(desktop).skip_to("Provider")
    desktop.window.find("spin box", "VPI").set_value(1)
    desktop.window.find("spin box", "VCI").set_value(32)
    guide.press("Skip").at("Account")
    desktop.window.fill("Login", "me")
    daemon.signal(signal.SIGKILL)
    daemon.wait_exit()
    guide.press("Next")  # nobody can store it, and there is no password yet
    guide.says("The password is empty")
    desktop.window.fill("Password", "secret")
    guide.press("Next").says("is not stored yet")
    computer.start_daemon()
    guide.press("Back").at("Provider")
    assert [desktop.window.find("spin box", name).value for name in ("VPI", "VCI")] == [1, 32]
    guide.press("Skip").at("Account")
    assert desktop.window.find("text", "Login").text == "me"
    guide.press("Next").at("Connect")
    assert secrets(computer.machine) == ['"me" * "secret" *'] * 2


def test_what_can_not_be_stored_is_said_while_typing(computer, desktop):
    computer.start_daemon()
    guide = at_the_modem(desktop).skip_to("Account")
    desktop.window.fill("Login", "x" * 51)
    guide.says("The login has 51 characters")
    desktop.window.fill("Login", "me")
    desktop.window.fill("Password", "@/etc/shadow")
    guide.says("begins with “@/”")
    desktop.window.find("text", "Login").focus()
    guide.press("Next")
    desktop.window.find("text", "Password", {"focused"})  # it leads to what is to be mended
    guide.says("begins with “@/”")
    assert "shadow" not in secrets(computer.machine)[0]


def test_a_password_with_quotes_and_backslashes_is_stored_as_pppd_reads_it(computer, desktop):
    computer.start_daemon()
    guide = at_the_modem(desktop).skip_to("Account")
    desktop.window.fill("Login", "me")
    desktop.window.fill("Password", 'pass"word\\7\\x')
    guide.next("Connect")
    assert secrets(computer.machine) == [r'"me" * "pass\"word\x5c7\\x" *'] * 2


def test_values_for_the_other_protocol_come_with_a_file_that_fits_them(computer, desktop):
    machine = computer.machine
    computer.start_daemon()
    guide = at_the_modem(desktop).skip_to("Provider")
    desktop.window.choose("Country", "United Kingdom")
    desktop.window.choose("Provider", "BT and resellers")
    guide.press("Next").says("does not fit them yet")
    assert stored(machine, "protocol") == "PPPoA"
    guide.press("Put a fitting file in place…").says("The file fits now")
    assert "\n0.38\n" in machine.path(PEER).read_text(encoding="ascii")
    guide.next("Account")


@pytest.mark.parametrize("provider", (("Italy", "TIM (Alice)"), ("United Kingdom", "BT and resellers")))
def test_a_file_that_may_not_be_looked_for_is_not_taken_for_a_missing_one(computer, desktop, provider):
    computer.machine.path(PEER).parent.chmod(0o750)  # as the distribution has it
    computer.start_daemon()
    guide = at_the_modem(desktop).skip_to("Provider")
    desktop.window.choose("Country", provider[0])
    desktop.window.choose("Provider", provider[1])
    guide.press("Next")
    if "Italy" in provider:  # the shipped file fits
        guide.at("Account")
    else:
        guide.says("They stand in a file of the system, too")
        guide.press("Put a fitting file in place…").says("The file fits now")


def test_no_password_is_left_anywhere_but_in_its_files(computer, stranger):
    computer.start_daemon()
    guide = at_the_beginning(stranger).skip_to("Account")
    stranger.window.fill("Login", "me")
    stranger.window.fill("Password", "very-secret")
    guide.press("Next").says("You are not allowed to use the modem yet")
    guide.back_to("May I?")
    guide.press("Let me use it…").says("^You may use the modem")  # begun anew
    guide.skip_to("Account").next("Connect")
    assert secrets(computer.machine) == ['"me" * "very-secret" *'] * 2
    spoken = "".join(program.output() + program.errors() for program in stranger.started)
    written = [path for folder in ("/run/home/user", "/tmp", "/opt/norvix")
               for path in computer.machine.path(folder).rglob("*")
               if path.is_file() and "very-secret" in read_text(path)]
    assert ("very-secret" in spoken, written) == (False, [])


# ---- connecting


def use_a_modem(computer):
    computer.machine.settings(modem="Thomson Speedtouch 330", vendor_id=0x06B9, product_id=0x4061,
                              udi="/org/freedesktop/Hal/devices/usb_device_6b9_4061_0090D0123456",
                              protocol="PPPoE", vpi=8, vci=35)
    computer.start_daemon()


def at_connect(computer, desktop):
    use_a_modem(computer)
    return at_the_modem(desktop).skip_to("Connect")


TROUBLES = {
    "account": ("c1-chap-wrong-password", "refused login or password", "Back to the account",
                "Account"),
    "silence": (None, "provider does not answer",
                "Back to the provider", "Provider"),
}


@pytest.mark.parametrize("trouble", TROUBLES)
def test_a_failure_says_its_cause_and_leads_to_where_it_is_mended(computer, desktop, trouble):
    recording, cause, button, page = TROUBLES[trouble]
    computer.plug()
    guide = at_connect(computer, desktop)
    if recording:
        computer.machine.pppd.play(recording)
    else:
        computer.machine.pppd.script([out("Timeout waiting for PADO packets\n"), stay()])
    guide.press("Connect").says(cause)
    guide.press(button).at(page)
    guide.skip_to("Connect")
    computer.machine.pppd.script([*link_up(), stay()])
    guide.press("Try now").says("^You are connected")


def test_an_end_without_a_reason_leads_to_the_check_up(computer, desktop):
    computer.plug()
    guide = at_connect(computer, desktop)
    computer.machine.pppd.script([out("something went wrong\n"), end(1)])
    guide.press("Connect").says("The check-up tells why")
    guide.press("Check-up…")
    desktop.window.wait_text(re.compile("stop.? a connection"))


def test_the_keyboard_alone_leads_through_the_pages(computer, desktop):
    plug(computer)
    use_a_modem(computer)
    guide = at_the_beginning(desktop)
    guide.says("^You may use the modem")
    desktop.window.find("dialog", states={"active"})  # until then keys go to the window behind it
    desktop.keys("Return")
    guide.at("Modem").says("is ready")
    desktop.keys("Return")
    guide.at("Provider")
    names = [name for _, name in desktop.window.focus_order()]
    assert {"VPI", "VCI", "Back", "Skip", "Next"} <= set(names)


