# SPDX-License-Identifier: MIT
"""The files with which norvix-hald is installed: user, unit, activation, policy, manual."""
import re
import shutil

from hald_fixtures import client, place  # noqa: F401

from lab.machine import companion
from lab.machine.companion import NAME, PROGRAM, USER, devices
from lab.waiting import wait_until
from shipped_files import exposure, run, settings

PACKAGING = companion.REPOSITORY / "packaging"
UNIT = PACKAGING / "norvix-hald.service"
ACTIVATION = PACKAGING / "org.freedesktop.Hal.service"
MANUAL = companion.REPOSITORY / "docs" / "norvix-hald.8"


def test_the_unit_exposes_next_to_nothing():
    level, off = exposure(UNIT)
    assert float(level) <= 1.0, off


def test_the_unit_has_no_capability():
    service = settings(UNIT)["Service"]
    assert service["CapabilityBoundingSet"] == "" and service["AmbientCapabilities"] == ""
    assert service["NoNewPrivileges"] == "yes"


def test_unit_activation_policy_and_user_agree():
    service, activation = settings(UNIT)["Service"], settings(ACTIVATION)["D-BUS Service"]
    assert service["ExecStart"] == activation["Exec"] == PROGRAM
    assert service["BusName"] == activation["Name"] == NAME
    assert service["User"] == activation["User"] == USER
    assert activation["SystemdService"] == UNIT.name
    assert ACTIVATION.name == NAME + ".service"  # systemd insists
    assert '<policy user="%s">' % USER in companion.POLICY.read_text(encoding="utf-8")


def test_the_user_and_the_folder_are_made(tmp_path):
    (tmp_path / "etc").mkdir()
    result = run("systemd-sysusers", "--root=%s" % tmp_path, str(PACKAGING / "norvix-hald.sysusers"))
    assert result.returncode == 0, result.stdout
    [user] = [line for line in (tmp_path / "etc/passwd").read_text(encoding="ascii").splitlines()
              if line.startswith(USER + ":")]
    assert user.endswith(":/usr/sbin/nologin")
    result = run("systemd-tmpfiles", "--create", "--root=%s" % tmp_path,
                 str(PACKAGING / "norvix-hald.tmpfiles"))
    folder = tmp_path / "run/norvix-hal"
    assert folder.is_dir() and folder.stat().st_mode & 0o777 == 0o755, result.stdout
    if result.returncode == 0:
        assert folder.stat().st_uid == int(user.split(":")[2])


def test_the_first_call_starts_it(machine):
    companion.prepare(machine)
    shutil.copy(ACTIVATION, machine.path("/etc/dbus-1/services"))
    machine.start_bus(policies=[companion.POLICY])
    caller = machine.client()
    assert caller.owner_of(NAME) is None
    assert devices(caller)[0] == "computer"
    assert caller.owner_of(NAME) is not None


def test_a_client_that_called_before_is_answered_once_the_service_is_there(place, client):
    """A call to a name without an owner fails at once and does no harm to later ones."""
    try:
        devices(client)
        raise AssertionError("somebody else answered")
    except companion.BusError as error:
        assert error.name == "org.freedesktop.DBus.Error.ServiceUnknown"
    companion.HalCompanion(place)
    wait_until(lambda: devices(client)[0] == "computer", what="the same client is answered")


def test_the_manual_has_no_faults_and_names_every_option(machine):
    result = run("groff", "-man", "-Tutf8", "-ww", "-z", str(MANUAL))
    assert result.returncode == 0 and result.stdout == ""
    help_text = machine.run([PROGRAM, "--help"]).stdout
    manual = MANUAL.read_text(encoding="utf-8").replace("\\-", "-")
    options = set(re.findall(r"--[a-z]+(?:=[a-z]+\b)?", help_text))
    assert options == set(re.findall(r"--[a-z]+(?:=[a-z]+\b)?", manual)) and len(options) == 5
