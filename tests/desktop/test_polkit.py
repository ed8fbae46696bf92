# SPDX-License-Identifier: MIT
"""An administrator's rights by the distribution's own polkit: polkitd, pkexec and PAM with the policy
that is installed. The test is the program of the session that asks for the password."""
import os
import re

import pytest
from first_connection import PEER, PRIVATE, Guide, furnish

from lab.desktop import polkit
from lab.desktop.polkit import NUMBER, PASSWORD
from lab.machine.private_machine import REPOSITORY

pytestmark = pytest.mark.skipif(os.geteuid() != 0, reason="other users exist inside only as root")
JOIN = "com.norvix.desktop.join"
NOBODY_MAY = 'polkit.addRule(function(action, subject) { return polkit.Result.NO; });\n'
UNCHANGED = "Nothing was changed."


@pytest.fixture
def machine(new_machine):
    made = new_machine(private_folders=[*PRIVATE, *polkit.FOLDERS])
    furnish(made, REPOSITORY)
    made.path("/etc/group").chmod(0o644)
    return made


@pytest.fixture
def authority(computer):
    computer.start_daemon()
    return polkit.Polkit(computer.machine)


@pytest.fixture
def stranger(new_desktop, authority):
    """A session of somebody who is not in the group, with a window and who asks for passwords."""
    made = new_desktop(member=False)
    made.pkexec.stand_aside()
    made.agent = authority.agent(made)
    made.agent.watch(made.start())
    return made


def members(machine):
    return re.search("^norvix:x:[0-9]+:(.*)$", machine.path("/etc/group").read_text(), re.MULTILINE)[1]


def test_polkit_takes_every_action_of_the_policy(machine, authority):
    result = machine.run(["/usr/bin/pkaction", "--verbose"])
    told = dict(re.findall(r"(com\.norvix\.desktop\.[a-z-]+):\n((?: .*\n)+)", result.stdout))
    written = re.findall('<action id="(.*)">', polkit.OUR_POLICY.read_text(encoding="utf-8"))
    assert sorted(told) == sorted(written) and len(written) > 1
    for text in told.values():
        assert re.findall(r"implicit \w+: +(\w+)", text) == ["auth_admin"] * 3


def test_the_right_password_lets_a_person_in_at_once(machine, stranger):
    stranger.agent.answers.append(PASSWORD)
    guide = Guide(stranger).open().press("Let me use it…")
    assert stranger.agent.wait_asked() == (
        JOIN, "Authentication is required to let you use the ADSL modem: you join the group norvix.",
        [NUMBER])
    guide.says("^You may use the modem")
    assert "user" in members(machine).split(",")


def test_a_wrong_password_changes_nothing_and_can_be_mended(machine, stranger):
    before = members(machine)
    stranger.agent.answers += ["wrong"] * stranger.agent.TRIES
    guide = Guide(stranger).open().press("Let me use it…")
    guide.says("rights were not given.*" + UNCHANGED)
    assert members(machine) == before
    stranger.agent.answers += ["wrong", PASSWORD]
    guide.press("Let me use it…").says("^You may use the modem")


def test_a_question_that_is_closed_changes_nothing(machine, stranger):
    before = members(machine)
    stranger.agent.answers.append(None)
    guide = Guide(stranger).open().press("Let me use it…")
    guide.says("The password was not entered. " + UNCHANGED)
    assert members(machine) == before


def test_where_nobody_may_it_is_said_without_a_question(machine, authority, stranger):
    rules = machine.path("/etc/polkit-1/rules.d") / "10-nobody.rules"
    rules.write_text(NOBODY_MAY, encoding="ascii")
    authority.restart()
    stranger.agent.watch(stranger.started[0])
    guide = Guide(stranger).open().press("Let me use it…")
    guide.says("rights were not given.*this system does not allow it")
    assert stranger.agent.asked == []


def test_where_nobody_asks_for_passwords_the_command_is_shown(new_desktop, authority):
    lonely = new_desktop(member=False)
    lonely.pkexec.stand_aside()
    lonely.start()
    guide = Guide(lonely).open().press("Let me use it…")
    guide.says("No program of this session can ask")
    assert "usermod" in lonely.window.find("text", "Command").text


def test_each_remedy_asks_anew(machine, stranger):
    machine.path(PEER).unlink()
    stranger.agent.answers += [PASSWORD, PASSWORD]
    stranger.window.select("Pages", "Check-up")
    stranger.window.press_button("Put it there…")
    stranger.window.wait_gone(None, re.compile("%s is missing" % PEER))
    assert machine.path(PEER).exists()
    stranger.window.press_button("Look as administrator…")
    assert [stranger.agent.wait_asked(count)[0] for count in (1, 2)] == [
        "com.norvix.desktop.mend-files", "com.norvix.desktop.look"]
    stranger.window.wait_gone("push button", "Look as administrator…")
