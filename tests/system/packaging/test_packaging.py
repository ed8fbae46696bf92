# SPDX-License-Identifier: MIT
"""The files with which the daemon is installed: unit, activation, group, folders, and what the
package does to pppd's files."""
import fnmatch
import os
import re
import shlex
import shutil
import time
from pathlib import Path

import pytest
from machine_fixtures import ROOT_ONLY
from shipped_files import exposure, run, settings

from lab.machine.private_machine import USUAL_PATH
from lab.waiting import wait_until

REPOSITORY = Path(__file__).resolve().parents[3]
PACKAGING = REPOSITORY / "packaging"
UNIT = PACKAGING / "norvix-daemon.service"
ACTIVATION = PACKAGING / "com.norvix.Daemon.service"
RULES = PACKAGING / "norvix-daemon.rules"
PAP, CHAP = "/etc/ppp/pap-secrets", "/etc/ppp/chap-secrets"
PEERS = ("/etc/ppp/peers/norvix", "/etc/ppp/peers/norvix_unicorn")
ENTRY = '"login" * "password" *\n'
BACKUP = ".norvix-backup"
# As Debian's package ppp brings it.
STOCK_CHAP = "# Secrets for authentication using CHAP\n# client\tserver\tsecret\t\t\tIP addresses\n"
OTHERS = STOCK_CHAP + '"me@elsewhere" * "mine" *\n'


def test_the_unit_exposes_less_than_its_like():
    level, _ = exposure(UNIT)
    assert float(level) <= 6.5
    # Each systemd has its own idea of what counts how much.
    told = dict((version, value) for value, version in re.findall(
        r"([0-9.]+) with systemd (\d+)",
        (PACKAGING / "norvix-daemon.service.md").read_text(encoding="utf-8")))
    [version] = re.findall(r"^systemd (\d+)", run("systemd-analyze", "--version").stdout)
    assert {"252", "257"} <= set(told) and told.get(version, level) == level


def test_each_protection_that_is_off_has_its_reason():
    reasons = (PACKAGING / "norvix-daemon.service.md").read_text(encoding="utf-8")
    table = "".join(line for line in reasons.splitlines(True) if line.startswith("| `"))
    _, off = exposure(UNIT)
    assert len(off) > 10
    assert [switch for switch in off if "`%s=" % switch not in table] == []


def test_the_unit_lets_a_connection_live_on_and_counts_255_as_an_end():
    service = settings(UNIT)["Service"]
    assert service["Type"] == "forking" and service["KillMode"] == "process"
    assert service["SuccessExitStatus"] == "255"
    assert "LD_LIBRARY_PATH" in service["UnsetEnvironment"]


def test_the_unit_finds_the_daemons_process_in_its_lock(bus_machine):
    daemon = bus_machine.start_daemon()
    pid_file = bus_machine.path(settings(UNIT)["Service"]["PIDFile"])
    assert pid_file.read_text(encoding="ascii") == "%d\n" % daemon.pid
    assert pid_file.stat().st_uid == os.geteuid()


def test_unit_and_activation_agree():
    service, activation = settings(UNIT)["Service"], settings(ACTIVATION)["D-BUS Service"]
    assert service["ExecStart"] == activation["Exec"] == "/opt/norvix/bin/norvix-daemon"
    assert service["ExecStartPre"] == "-/opt/norvix/libexec/end-ghosts"  # may fail
    assert activation["SystemdService"] == UNIT.name
    assert ACTIVATION.name == activation["Name"] + ".service"  # systemd insists


def test_the_first_call_starts_the_daemon(machine):
    shutil.copy(ACTIVATION, machine.path("/etc/dbus-1/services"))
    machine.start_bus()
    client = machine.client()
    assert client.owner_of("com.norvix.Daemon") is None
    assert client.call("reply") is True


@ROOT_ONLY
def test_group_and_folders_are_made(tmp_path):
    (tmp_path / "etc").mkdir()
    result = run("systemd-sysusers", "--root=%s" % tmp_path,
                 str(PACKAGING / "norvix-daemon.sysusers"))
    assert result.returncode == 0, result.stdout
    group = re.findall(r"^norvix:x:(\d+):", (tmp_path / "etc/group").read_text(), re.MULTILINE)
    result = run("systemd-tmpfiles", "--create", "--root=%s" % tmp_path,
                 str(PACKAGING / "norvix-daemon.tmpfiles"))
    assert result.returncode == 0, result.stdout
    made = {name: (tmp_path / name).stat() for name in
            ("opt/norvix", "opt/norvix/drivers", "var/log/norvix", "opt/norvix/.daemon_ng.ini",
             "run/lock/norvixdaemon")}
    assert {name: (oct(facts.st_mode & 0o7777), facts.st_uid, str(facts.st_gid))
            for name, facts in made.items()} == {
        "opt/norvix": ("0o2755", 0, group[0]), "opt/norvix/drivers": ("0o755", 0, "0"),
        "var/log/norvix": ("0o2750", 0, group[0]),
        "opt/norvix/.daemon_ng.ini": ("0o640", 0, group[0]),
        "run/lock/norvixdaemon": ("0o600", 0, "0")}


@ROOT_ONLY
def test_an_administrators_mode_of_the_settings_stays(tmp_path):
    file = tmp_path / "opt/norvix/.daemon_ng.ini"
    file.parent.mkdir(parents=True)
    file.write_text("[General]\nvpi=8\n")
    file.chmod(0o600)
    (tmp_path / "etc").mkdir()
    for tool, name in (("systemd-sysusers", "sysusers"), ("systemd-tmpfiles", "tmpfiles")):
        create = ["--create"] if name == "tmpfiles" else []
        run(tool, *create, "--root=%s" % tmp_path, str(PACKAGING / ("norvix-daemon." + name)))
    assert file.stat().st_mode & 0o777 == 0o600 and file.read_text() == "[General]\nvpi=8\n"


def test_the_packages_version_is_the_projects():
    [project] = re.findall(r"project\(norvix VERSION ([0-9.]+)",
                           (REPOSITORY / "CMakeLists.txt").read_text())
    [package, *_] = re.findall(r"^norvix \(([^)]+)\)", (REPOSITORY / "debian/changelog").read_text())
    assert package == project


def test_a_bridge_ends_with_the_first_atm_device_and_no_other(machine):
    rule = RULES.read_text(encoding="ascii")
    [pattern] = re.findall(r'KERNEL=="([^"]+)"', rule)
    names = ("cxacru0", "speedtch0", "ueagle-atm0", "cxacru1", "cxacru10", "speedtch20")
    assert [name for name in names if fnmatch.fnmatchcase(name, pattern)] == list(names[:3])
    [command] = re.findall(r'RUN\+="([^"]+)"', rule)
    bridge = ["/opt/norvix/bin/br2684ctl_amd64", "-b", "-c", "0", "-e", "0", "-a", "8.35"]
    assert machine.run(bridge).status == 0
    for _ in range(2):  # none is there to be ended the second time, which is nobody's fault
        done = machine.run(shlex.split(command))
        assert (done.status, done.stdout, done.stderr) == (0, "", "")
        wait_until(lambda: not machine.processes("br2684ctl_amd64"), what="the bridge has ended")


def test_the_daily_logs_are_rotated_a_day_after_their_last_line(machine):
    folder = machine.path("/var/log/norvix")
    folder.mkdir()
    folder.chmod(0o750)
    texts = {"19-11-2026.log": "yesterday's\n", "20-11-2026.log": "today's\n"}
    for name, text in texts.items():
        (folder / name).write_text(text)
    ago = time.time() - 4 * 24 * 3600
    os.utime(folder / "19-11-2026.log", (ago, ago))
    config = machine.path("/etc/norvix-daemon.logrotate")
    shutil.copy(PACKAGING / "norvix-daemon.logrotate", config)
    # Of today's kind of date: a log that it has never seen is not old enough for it otherwise.
    machine.path("/tmp/state").write_text(
        'logrotate state -- version 2\n"/var/log/norvix/19-11-2026.log" 2020-1-1-0:0:0\n'
        '"/var/log/norvix/20-11-2026.log" 2020-1-1-0:0:0\n')
    machine.path("/tmp/state").chmod(0o600)
    result = machine.run(["/usr/sbin/logrotate", "--state", "/tmp/state",
                          "/etc/norvix-daemon.logrotate"])
    assert result.status == 0, result.stderr
    assert sorted(path.name for path in folder.iterdir()) == ["19-11-2026.log.1.gz", "20-11-2026.log"]


class Installation:
    """What the package's scripts do in a machine."""

    def __init__(self, machine):
        self.machine = machine
        shutil.copytree(PACKAGING / "peers", machine.path("/opt/norvix/share/peers"))
        for tool in ("systemd-sysusers", "groupdel"):
            stub = machine.path("/usr/local/sbin") / tool
            stub.write_text("#!/bin/sh\n")
            stub.chmod(0o755)

    def run(self, script, *arguments, package="norvix-daemon"):
        shutil.copy(REPOSITORY / "debian" / (package + "." + script),
                    self.machine.path("/tmp/" + script))
        result = self.machine.run(["/bin/sh", "/tmp/" + script, *arguments],
                                  env={"PATH": USUAL_PATH})
        assert result.status == 0, result.stderr
        return result.stdout

    def configure(self):
        return self.run("postinst", "configure")

    def purge(self, package="norvix-daemon"):
        return self.run("postrm", "purge", package=package)

    def files(self):
        """What is below /etc/ppp, with modes."""
        root = self.machine.path("/etc/ppp")
        return {str(path.relative_to(root)): (oct(path.stat().st_mode & 0o7777), path.read_bytes())
                for path in sorted(root.rglob("*")) if path.is_file()}


@pytest.fixture
def installation(machine):
    return Installation(machine)


def write(machine, name, text, mode=0o600):
    path = machine.path(name)
    path.write_text(text)
    path.chmod(mode)


@ROOT_ONLY
def test_an_account_takes_effect_on_files_as_debian_ships_them(installation):
    machine = installation.machine
    for name in (PAP, CHAP):
        write(machine, name, OTHERS)
    installation.configure()
    machine.start_bus()
    machine.start_daemon()
    client = machine.client()
    for password in ("first", "second"):
        client.call("setAccountData", "user@isp", password)
        assert client.wait_signal("accountDataChanged", count=1 if password == "first" else 2).args == (
            True,)
        assert client.call("getLoginAndPassword") == ["user@isp", password]
        for name in (PAP, CHAP):
            text = machine.path(name).read_text()
            assert text.startswith('"user@isp" * "%s" *\n' % password) and text.endswith(OTHERS)
            assert machine.path(name).stat().st_mode & 0o777 == 0o600
    for name in PEERS:
        assert 'user "user@isp"\n' in machine.path(name).read_text()
        assert machine.path(name).stat().st_mode & 0o777 == 0o640


@ROOT_ONLY
def test_a_short_account_does_not_swallow_what_follows(installation):
    machine = installation.machine
    for name in (PAP, CHAP):
        write(machine, name, '"b" * "c" *x\n"d" * "e" *\n"f" * "g" *\n' if name == CHAP else
              '# mine\n"d" * "e" *\n"f" * "g" *\n')
    installation.configure()
    machine.start_bus()
    machine.start_daemon()
    client = machine.client()
    for count in (1, 2):
        client.call("setAccountData", "a", "b")
        client.wait_signal("accountDataChanged", count=count)
    assert machine.path(PAP).read_text().endswith('# mine\n"d" * "e" *\n"f" * "g" *\n')


def test_a_second_installation_changes_nothing(installation):
    write(installation.machine, PAP, STOCK_CHAP)
    installation.configure()
    before = installation.files()
    installation.configure()
    assert installation.files() == before


def test_files_of_a_user_who_was_here_before_stay(installation):
    machine = installation.machine
    write(machine, PAP, '"user@isp" * "secret" *\n')
    write(machine, PEERS[0], "plugin pppoatm.so\n8.48\nuser \"user@isp\"\nnodetach\n", 0o644)
    installation.configure()
    assert machine.path(PAP).read_text() == '"user@isp" * "secret" *\n'
    assert not machine.path(PAP + BACKUP).exists()
    assert machine.path(PEERS[0]).read_text().startswith("plugin pppoatm.so\n8.48\n")


def test_missing_files_are_made_and_taken_back(installation):
    for name in (PAP, CHAP):
        installation.machine.path(name).unlink()
    installation.configure()
    assert installation.machine.path(PAP).read_text().startswith(ENTRY)
    assert installation.files()["chap-secrets"][0] == "0o600"
    installation.purge()
    assert installation.files() == {}


def test_a_link_stays_a_link(installation):
    machine = installation.machine
    write(machine, "/etc/ppp/secrets-of-all", STOCK_CHAP)
    for name in (PAP, CHAP):
        machine.path(name).unlink()
        machine.path(name).symlink_to("secrets-of-all")
    installation.configure()
    assert os.readlink(machine.path(PAP)) == "secrets-of-all"
    text = machine.path("/etc/ppp/secrets-of-all").read_text()
    assert text.startswith(ENTRY) and text.count(ENTRY) == 1 and text.endswith(STOCK_CHAP)


def test_without_an_account_removal_leaves_the_files_as_they_were(installation):
    machine = installation.machine
    write(machine, PAP, OTHERS, 0o640)
    write(machine, CHAP, STOCK_CHAP, 0o600)
    before = installation.files()
    installation.configure()
    assert installation.files()["pap-secrets" + BACKUP] == before["pap-secrets"]
    assert "left" not in installation.purge()
    assert installation.files() == before


def test_removal_leaves_an_account_and_says_so(installation):
    machine = installation.machine
    for name in (PAP, CHAP):
        write(machine, name, STOCK_CHAP)
    installation.configure()
    machine.start_bus()
    daemon = machine.start_daemon()
    client = machine.client()
    client.call("setAccountData", "user@isp", "secret")
    client.wait_signal("accountDataChanged")
    daemon.stop()
    said = installation.purge()
    for name in (PAP, CHAP, PAP + BACKUP, *PEERS):
        assert name in said and machine.path(name).exists()
    assert machine.path(PAP).read_text().startswith('"user@isp" * "secret" *\n')
    assert not machine.path("/opt/norvix/daemon.log").exists()


def test_lines_that_were_added_since_outlive_removal(installation):
    machine = installation.machine
    write(machine, PAP, STOCK_CHAP)
    installation.configure()
    with open(machine.path(PAP), "a", encoding="ascii") as file:
        file.write('"other" * "word" *\n')
    said = installation.purge()
    assert machine.path(PAP).read_text() == STOCK_CHAP + '"other" * "word" *\n'
    assert PAP + BACKUP in said


def test_removal_leaves_source_archives_of_drivers(installation):
    archive = installation.machine.path("/opt/norvix/drivers/unicorn-neo.tar")
    archive.parent.mkdir()
    archive.write_bytes(b"")
    assert "/opt/norvix/drivers" in installation.purge() and archive.exists()


@pytest.fixture
def both(installation):
    """The daemon's and the keeper's package, with what belongs to them both."""
    machine = installation.machine
    write(machine, "/usr/local/sbin/groupdel", "#!/bin/sh\necho \"$1\" >>/tmp/groups-gone\n", 0o755)
    write(machine, "/usr/local/sbin/userdel", "#!/bin/sh\nsed -i \"/^$1:/d\" /etc/passwd\n", 0o755)
    write(machine, "/usr/local/sbin/dpkg-query", "#!/bin/sh\ncat /tmp/daemon-status\n", 0o755)
    with open(machine.path("/etc/passwd"), "a", encoding="ascii") as file:
        file.write("norvix-keeper:x:64997:64997::/:/usr/sbin/nologin\n")
    return installation


def groups_gone(machine):
    path = machine.path("/tmp/groups-gone")
    return path.read_text(encoding="ascii").split() if path.exists() else []


@ROOT_ONLY
def test_the_group_outlives_the_daemon_while_the_keeper_needs_it(both):
    both.purge()
    assert groups_gone(both.machine) == []
    write(both.machine, "/tmp/daemon-status", "")
    both.purge("norvix-keeper")
    assert groups_gone(both.machine) == ["norvix"]


@ROOT_ONLY
@pytest.mark.parametrize("status", ("installed", "config-files"))
def test_the_group_outlives_the_keeper_while_the_daemon_needs_it(both, status):
    write(both.machine, "/tmp/daemon-status", status)
    both.purge("norvix-keeper")
    assert groups_gone(both.machine) == []
    both.purge()
    assert groups_gone(both.machine) == ["norvix"]
