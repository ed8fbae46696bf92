# SPDX-License-Identifier: MIT
"""The two programs that the window has started with an administrator's rights, as root gets to run
them: what they do, and that nothing else can be made of them."""
import json
import os
import stat
import xml.etree.ElementTree as ElementTree

import pytest

from lab.machine.private_machine import REPOSITORY

JOIN, MEND = "/opt/norvix/libexec/norvix-desktop-join", "/opt/norvix/libexec/norvix-desktop-mend"
POLICY = REPOSITORY / "packaging/com.norvix.desktop.policy"
DONE, FAILED, MISUSED, NO_PROGRAM, NO_GROUP = range(5)
VERBS = {"look", "mend-files", "start-daemon", "restart-daemon", "restart-hald", "start-keeper",
         "restart-keeper", "load-modules", "create-group"}
PAP = "/etc/ppp/pap-secrets"
# Says where it was called, with what, and in which environment.
TELLTALE = """#!/bin/sh
{ echo "$0" "$@"; env; pwd; ls /proc/$$/fd; } >> /run/lab/told
exit %d
"""


def plant(machine, *names, status=0):
    for name in names:
        file = machine.path("/usr/local/sbin/" + name)
        file.unlink(missing_ok=True)
        file.write_text(TELLTALE % status, encoding="ascii")
        file.chmod(0o755)


def told(machine):
    file = machine.path("/run/lab/told")
    return file.read_text(encoding="utf-8").splitlines() if file.exists() else []


def run(machine, *argv, caller="1000", uid=0, **env):
    return machine.run(argv, uid=uid, env={"PKEXEC_UID": caller, **env}, label="rights")


def files_of(folder):
    """Everything below a folder with all that could have been changed."""
    return {path: (path.lstat().st_mode, path.lstat().st_uid, path.lstat().st_gid,
                   path.read_bytes() if path.is_file() and not path.is_symlink() else None)
            for path in sorted(folder.rglob("*"))}


def members(machine, group="norvix"):
    for line in machine.path("/etc/group").read_text(encoding="ascii").splitlines():
        name, _, _, users = line.split(":")
        if name == group:
            return users


# ---- joining


def test_who_asks_becomes_a_member_and_nothing_else_changes(machine):
    before = files_of(machine.path("/etc"))
    assert run(machine, JOIN).status == DONE
    assert members(machine) == "user"
    assert members(machine, "root") == members(machine, "dip") == ""
    group = machine.path("/etc/group")
    after = files_of(machine.path("/etc"))
    changed = {path.name for path in after if after[path] != before.get(path)}
    assert changed <= {"group", "group-", ".pwd.lock"}
    assert stat.S_IMODE(group.stat().st_mode) == 0o644


def test_joining_twice_is_no_mistake(machine):
    assert [run(machine, JOIN).status for _ in range(2)] == [DONE, DONE]
    assert members(machine) == "user"


HOSTILE_CALLERS = ["0", "00", "01000", "+1000", "-1", " 1000", "1000 ", "1000\n", "0x3e8", "1e3", "",
                   "user", "root", "4294967295", "4294967296", "18446744073709552616",
                   "1" * 5000, "1000;id", "1000,0", "١٠٠٠"]


@pytest.mark.parametrize("program", [(JOIN,), (MEND, "mend-files")])
def test_a_caller_that_is_no_plain_number_of_a_user_is_refused(machine, program):
    before = files_of(machine.path("/etc"))
    for caller in HOSTILE_CALLERS:
        assert run(machine, *program, caller=caller).status == MISUSED, caller
    assert run(machine, *program, caller=None).status == MISUSED
    assert files_of(machine.path("/etc")) == before


def test_a_number_that_nobody_has_joins_nobody(machine):
    assert run(machine, JOIN, caller="4711").status == MISUSED
    assert members(machine) == ""


def test_joining_takes_no_argument(machine):
    for words in (["norvix"], ["root"], ["--help"], ["-G", "root"], [""], ["user", "sudo"]):
        assert run(machine, JOIN, *words).status == MISUSED
    assert members(machine) == members(machine, "root") == ""


def test_a_user_whose_name_is_an_option_is_refused(machine):
    with machine.path("/etc/passwd").open("a", encoding="ascii") as file:
        file.write("-Rfoo:x:1001:1001::/tmp:/bin/sh\na,root:x:1002:1002::/tmp:/bin/sh\n")
    for caller in ("1001", "1002"):
        assert run(machine, JOIN, caller=caller).status == MISUSED
    assert members(machine) == ""


def test_without_the_group_it_says_so(machine):
    group = machine.path("/etc/group")
    group.write_text(group.read_text().replace("norvix:x:64999:\n", ""), encoding="ascii")
    result = run(machine, JOIN)
    assert (result.status, "no group norvix" in result.stderr) == (NO_GROUP, True)


def test_without_the_program_that_changes_groups_it_says_so(machine):
    machine.request("hide", path="/usr/bin/gpasswd")
    assert run(machine, JOIN).status == NO_PROGRAM


def test_a_group_file_that_can_not_be_written_is_a_failure(machine):
    plant(machine, "gpasswd", status=3)
    assert run(machine, JOIN).status == FAILED
    assert told(machine)[0] == "/usr/local/sbin/gpasswd -a user norvix"


@pytest.mark.parametrize("program", [(JOIN,), (MEND, "restart-daemon")])
def test_an_ordinary_user_gets_nothing_done(machine, program):
    plant(machine, "gpasswd", "systemctl")
    assert run(machine, *program, uid=1000).status == MISUSED
    assert told(machine) == []


@pytest.mark.parametrize("program", [(JOIN,), (MEND, "restart-daemon")])
def test_nothing_of_the_callers_surroundings_reaches_what_root_runs(machine, program):
    plant(machine, "gpasswd", "systemctl")
    machine.path("/tmp/evil").mkdir()
    for name in ("gpasswd", "systemctl"):
        evil = machine.path("/tmp/evil/" + name)
        evil.write_text("#!/bin/sh\ntouch /tmp/evil/was-here\n", encoding="ascii")
        evil.chmod(0o755)
    shell = 'cd /tmp && exec 7</etc/passwd && exec "$@"'
    result = machine.run(["/bin/sh", "-c", shell, "sh", *program], label="rights",
                         env={"PKEXEC_UID": "1000", "PATH": "/tmp/evil:/usr/bin", "IFS": "n",
                              "BASH_ENV": "/tmp/evil/gpasswd", "ENV": "/tmp/evil/gpasswd",
                              "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/tmp/evil/bus",
                              "SYSTEMD_PAGER": "/tmp/evil/gpasswd", "QT_PLUGIN_PATH": "/tmp/evil"})
    assert result.status == DONE
    assert not machine.path("/tmp/evil/was-here").exists()
    text = told(machine)
    names = {line.partition("=")[0] for line in text if "=" in line}
    assert names <= {"PATH", "HOME", "LC_ALL", "PWD", "OLDPWD", "_", "SHLVL"}
    assert "/tmp" not in "\n".join(text)
    assert "/" in text and "7" not in text


# ---- mending


def test_only_its_own_words_are_taken(machine):
    plant(machine, "systemctl", "modprobe", "groupadd")
    hostile = [[], [""], ["restart-daemon "], ["Restart-Daemon"], ["restart"], ["--help"],
               ["restart-daemon", "ssh"], ["/etc/shadow"], ["../look"], ["look\n"], ["-platform"],
               ["restart-daemon;id"], ["mend-files", "/etc/passwd"], ["restart-hald"] * 2,
               ["look", ""], ["look", "fr"], ["look", "../de"], ["look", "de_DE"], ["look", "de\n"],
               ["look", "DE"], ["look", "de", "de"], ["de"], ["mend-files", "de"]]
    before = files_of(machine.path("/etc"))
    for words in hostile:
        assert run(machine, MEND, *words).status == MISUSED, words
    assert told(machine) == []
    assert files_of(machine.path("/etc")) == before


SERVICES = {"start-daemon": "start norvix-daemon.service",
            "restart-daemon": "restart norvix-daemon.service",
            "restart-hald": "restart norvix-hald.service",
            "start-keeper": "start norvix-keeper.service",
            "restart-keeper": "restart norvix-keeper.service"}


@pytest.mark.parametrize("verb", SERVICES)
def test_services_are_started_by_their_own_words(machine, verb):
    plant(machine, "systemctl")
    assert run(machine, MEND, verb).status == DONE
    assert told(machine)[0] == "/usr/local/sbin/systemctl " + SERVICES[verb]
    plant(machine, "systemctl", status=1)
    assert run(machine, MEND, verb).status == FAILED


def test_the_secrets_are_mended_as_the_terminal_client_mends_them(bus_machine):
    secrets = bus_machine.path(PAP)
    secrets.write_text('# comment\n"me" * "old" *\n"me" * "pw" *\n', encoding="ascii")
    secrets.chmod(0o644)
    assert run(bus_machine, MEND, "mend-files").status == DONE
    assert secrets.read_text(encoding="ascii").startswith('"me" * "pw" *\n')
    assert stat.S_IMODE(secrets.stat().st_mode) == 0o600


def test_what_can_not_be_mended_is_a_failure_that_names_the_file(bus_machine):
    secrets = bus_machine.path(PAP)
    secrets.unlink()
    secrets.mkdir()
    result = run(bus_machine, MEND, "mend-files")
    assert (result.status, PAP in result.stderr) == (FAILED, True)


def test_looking_tells_findings_and_no_password(bus_machine):
    for name in (PAP, "/etc/ppp/chap-secrets"):
        bus_machine.path(name).write_text('"mylogin" * "mysecret" *\n', encoding="ascii")
    result = run(bus_machine, MEND, "look")
    assert result.status == DONE
    found = {row["check"]: row for row in json.loads(result.stdout)}
    assert found["secrets"]["facts"][0]["text"] == "order and modes are right"
    assert "mysecret" not in result.stdout + result.stderr


def test_looking_speaks_the_language_that_it_is_told(bus_machine):
    for name in (PAP, "/etc/ppp/chap-secrets"):
        bus_machine.path(name).write_text('"mylogin" * "mysecret" *\n', encoding="ascii")
    texts = {}
    for language in ("de", "en"):
        result = run(bus_machine, MEND, "look", language)
        assert result.status == DONE
        texts[language] = {row["check"]: row["facts"][0]["text"] for row in json.loads(result.stdout)}
    assert texts["de"]["secrets"] == "Reihenfolge und Rechte stimmen"
    assert texts["en"]["secrets"] == "order and modes are right"


def test_modules_are_loaded_as_far_as_the_kernel_has_them(machine):
    plant(machine, "modprobe")
    assert run(machine, MEND, "load-modules").status == DONE
    calls = [line for line in told(machine) if line.startswith("/usr/local/sbin/modprobe")]
    assert calls[-1].endswith("modprobe ppp_generic")
    assert {line.split()[-1] for line in calls} == {"pppoe", "pppoatm", "br2684", "ppp_generic"}


def test_a_missing_group_is_made_and_the_bus_knows_it_at_once(bus_machine):
    machine = bus_machine
    group = machine.path("/etc/group")
    group.write_text(group.read_text().replace("norvix:x:64999:\n", ""), encoding="ascii")
    assert run(machine, MEND, "create-group").status == DONE
    assert members(machine) == ""
    assert run(machine, JOIN).status == DONE
    assert members(machine) == "user"


# ---- the policy


def test_a_word_says_what_is_done_to_a_service_and_so_does_the_question_for_the_password():
    actions = ElementTree.parse(POLICY).getroot().findall("action")
    for verb, command in SERVICES.items():
        done = command.split()[0]
        assert verb.split("-")[0] == done
        action, = (one for one in actions if one.get("id") == "com.norvix.desktop." + verb)
        english, german = (message.text for message in action.findall("message"))
        assert " to %s the " % done in english
        assert ("neu zu starten" in german) == (done == "restart")


def test_every_way_to_roots_rights_asks_for_an_administrators_password_each_time():
    actions = ElementTree.parse(POLICY).getroot().findall("action")
    ways = set()
    for action in actions:
        notes = {note.get("key").rpartition(".")[2]: note.text for note in action.findall("annotate")}
        ways.add((os.path.basename(notes["path"]), notes.get("argv1")))
        assert os.path.dirname(notes["path"]) == "/opt/norvix/libexec"
        assert [allowed.text for allowed in action.find("defaults")] == ["auth_admin"] * 3
        languages = {message.get("{http://www.w3.org/XML/1998/namespace}lang")
                     for message in action.findall("message")}
        assert languages == {None, "de"}
    assert ways == {("norvix-desktop-join", None),
                    *(("norvix-desktop-mend", verb) for verb in VERBS)}
