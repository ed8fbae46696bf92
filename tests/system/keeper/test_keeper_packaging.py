# SPDX-License-Identifier: MIT
"""The files with which norvix-keeper is installed: user, unit, policy, settings, manual."""
import re
from pathlib import Path

from lab.machine import keeper_service
from lab.machine.keeper_service import NAME, PROGRAM, USER
from shipped_files import exposure, run, settings

PACKAGING = keeper_service.REPOSITORY / "packaging"
DOCUMENTS = keeper_service.REPOSITORY / "docs"
UNIT = PACKAGING / "norvix-keeper.service"
SETTINGS = PACKAGING / "norvix-keeper.settings"
SETTINGS_PAGE = DOCUMENTS / "norvix-keeper.conf.5"
INTERFACE_PAGE = DOCUMENTS / "com.norvix.Keeper1.7"
DESCRIPTION = keeper_service.REPOSITORY / "dbus" / "com.norvix.Keeper1.xml"


def text(file):
    return Path(file).read_text(encoding="utf-8").replace("\\-", "-")


def service():
    return settings(UNIT)["Service"]


def test_the_unit_exposes_next_to_nothing():
    level, off = exposure(UNIT)
    assert float(level) <= 1.0, off


def test_a_reason_stands_beside_each_switch_that_is_off():
    # These follow from others: sockets of the bus and the kernel, and what a closed policy still has.
    off = set(exposure(UNIT)[1]) - {"RestrictAddressFamilies", "DeviceAllow"}
    comments = "".join(line for line in text(UNIT).splitlines() if line.startswith("#"))
    assert [switch for switch in off if switch not in comments] == []


def test_the_unit_has_no_capability():
    assert service()["CapabilityBoundingSet"] == "" and service()["AmbientCapabilities"] == ""
    assert service()["NoNewPrivileges"] == "yes"


def test_unit_policy_and_user_agree():
    assert service()["ExecStart"] == PROGRAM and service()["BusName"] == NAME
    assert service()["User"] == USER and service()["SupplementaryGroups"] == "norvix"
    assert '<policy user="%s">' % USER in text(keeper_service.POLICY)


def test_the_user_is_made_and_belongs_to_the_group(tmp_path):
    (tmp_path / "etc").mkdir()
    result = run("systemd-sysusers", "--root=%s" % tmp_path, str(PACKAGING / "norvix-keeper.sysusers"))
    assert result.returncode == 0, result.stdout
    assert re.search(r"(?m)^norvix:.*:norvix-keeper$", text(tmp_path / "etc/group"))
    assert re.search(r"(?m)^norvix-keeper:.*:/usr/sbin/nologin$", text(tmp_path / "etc/passwd"))


def test_the_policy_names_every_method():
    methods = set(re.findall(r'<method name="(\w+)"', text(DESCRIPTION)))
    named = set(re.findall(r'send_interface="com.norvix.Keeper1" send_member="(\w+)"',
                           text(keeper_service.POLICY)))
    assert methods == named and len(methods) == 10


def test_the_manuals_have_no_faults():
    for page in (DOCUMENTS / "norvix-keeper.8", SETTINGS_PAGE, INTERFACE_PAGE):
        result = run("groff", "-man", "-Tutf8", "-ww", "-z", str(page))
        assert result.returncode == 0 and result.stdout == "", (page, result.stdout)


def test_the_settings_page_tells_every_key_and_its_default():
    shipped = dict(re.findall(r"(?m)^# (pause_\w+) = (\d+)$", text(SETTINGS)))
    told = dict(re.findall(r"(?m)^\.B (pause_\w+)\n.*? Default (\d+)\.$", text(SETTINGS_PAGE)))
    assert shipped == told and len(told) == 9


def test_the_shipped_settings_are_understood_and_change_nothing(machine):
    keeper_service.prepare(machine, text(SETTINGS).replace("# pause", "pause"))
    machine.start_bus(policies=[keeper_service.POLICY])
    keeper = keeper_service.Keeper(machine)
    assert "norvix-keeper.conf" not in keeper.process.errors()


def test_a_mistake_in_the_settings_is_told(machine):
    keeper_service.prepare(machine, "pause_unanswered = soon\n")
    machine.start_bus(policies=[keeper_service.POLICY])
    keeper = keeper_service.Keeper(machine)
    assert "/etc/norvix-keeper.conf, line 1: " in keeper.process.errors()


def test_the_interface_page_tells_every_member():
    page = text(INTERFACE_PAGE)
    for name in re.findall(r'<(?:property|method|signal) name="(\w+)"', text(DESCRIPTION)):
        assert re.search(r"\b%s\b" % name, page), name


def test_every_reason_and_state_is_told():
    page = text(INTERFACE_PAGE)
    contract = text(keeper_service.REPOSITORY / "dbus" / "contract.h")
    keepers = contract[contract.index("namespace KeeperPhase"):]
    words = set(re.findall(r'\] = "([a-z-]+)";', keepers))
    assert len(words) > 25
    assert [word for word in words if not re.search(r"\b%s\b" % word, page)] == []
