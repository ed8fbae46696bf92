# SPDX-License-Identifier: MIT
"""norvixctl doctor with each fault planted in a machine that is otherwise sound."""
import os
import re
import shutil

import pytest
from norvixctl import FAILED, FAULTS, NORVIX_GROUP, NOT_PERMITTED, OK, Ctl, without_resolvconf

from lab.machine import keeper_service
from lab.machine.fake_hal import SERVICE, FakeHal
from lab.machine.private_machine import REPOSITORY
from lab.machine.pppd_script import end, out, wait_for
from lab.waiting import wait_until

PEER = ("plugin pppoe.so\nnic-nas0\nuser \"user@isp\"\nnoauth\nnoipdefault\ndefaultroute\n"
        "usepeerdns\nhide-password\nupdetach\nnoipv6\n")
SECRETS = '"user@isp" * "secret" *\n'
# As the package writes it, so that its removal knows it again.
GUARD = re.search("^guard='(.*?)'", (REPOSITORY / "debian/norvix-daemon.postinst").read_text(),
                  re.MULTILINE | re.DOTALL)[1] + "\n"
# Compressed or not, as distributions do it.
MODULES = ["kernel/drivers/usb/atm/cxacru.ko: kernel/drivers/usb/atm/usbatm.ko kernel/net/atm/atm.ko",
           "kernel/drivers/usb/atm/usbatm.ko: kernel/net/atm/atm.ko", "kernel/net/atm/atm.ko:",
           "kernel/drivers/net/ppp/ppp_generic.ko:", "kernel/drivers/net/ppp/pppoe.ko:",
           "kernel/net/atm/pppoatm.ko.xz:", "kernel/net/atm/br2684.ko.xz:"]
PAP, CHAP, PEER_FILE = "/etc/ppp/pap-secrets", "/etc/ppp/chap-secrets", "/etc/ppp/peers/norvix"


def plug(machine, vendor, product):
    device = machine.path("/sys/bus/usb/devices/1-1")
    device.mkdir(parents=True, exist_ok=True)
    (device / "idVendor").write_text("%04x\n" % vendor, encoding="ascii")
    (device / "idProduct").write_text("%04x\n" % product, encoding="ascii")


def configure(machine, **changes):
    keys = {"modem": "CXACRU modem", "vendor_id": 0x0572, "product_id": 0xCAFE,
            "udi": "/org/freedesktop/Hal/devices/usb_device_572_cafe_noserial",
            "protocol": "PPPoE", "vpi": 8, "vci": 35}
    keys.update(changes)
    machine.settings(**{key: value for key, value in keys.items() if value is not None})


@pytest.fixture(name="sound")
def sound_fixture(new_machine):
    """Everything in place, but neither daemon, companion nor keeper runs yet."""
    machine = new_machine(private_folders=["/sys/bus", "/usr/lib/firmware", "/usr/lib/modules"])
    plug(machine, 0x0572, 0xCAFE)
    configure(machine)
    modules = machine.path("/usr/lib/modules") / os.uname().release
    modules.mkdir()
    (modules / "modules.dep").write_text("\n".join(MODULES) + "\n", encoding="ascii")
    machine.path(PEER_FILE).write_text(PEER, encoding="ascii")
    for name in (PAP, CHAP):
        machine.path(name).write_text(SECRETS, encoding="ascii")
    machine.kernel_log.line_up()
    without_resolvconf(machine)
    keeper_service.prepare(machine)
    machine.start_bus(policies=[keeper_service.POLICY], names=[SERVICE])
    return machine


def run_all(machine, companion=True):
    """Starts companion and daemon, and asks for the check-up's findings by their names."""
    if companion:
        hal = FakeHal.start(machine)
        hal.plug("usb_device_572_cafe_noserial", 0x0572, 0xCAFE, announce=False)
    machine.start_daemon().wait_for_log("debugHandler: i: 0")
    keeper_service.Keeper(machine).wait_for(State="idle")
    return findings(machine)


def findings(machine, **user):
    checks = Ctl(machine, **user).json("doctor")["checks"]
    return {check["id"]: check for check in checks}


def without(text, line):
    return text.replace(line + "\n", "")


def test_nothing_is_said_against_a_sound_machine(sound):
    found = run_all(sound)
    assert {check["id"]: check["text"] for check in found.values()
            if check["verdict"] not in ("ok",)} == {}
    result = Ctl(sound)("doctor")
    assert (result.status, "Nothing that stops a connection" in result.stdout) == (OK, True)


def planted_modules(machine, *missing):
    file = machine.path("/usr/lib/modules") / os.uname().release / "modules.dep"
    file.write_text("".join(line + "\n" for line in MODULES
                            if not any("/%s.ko" % name in line.partition(":")[0]
                                       for name in missing)))


def over_atm_without(machine, missing):
    configure(machine, protocol="PPPoA")
    planted_modules(machine, missing)


FAULTS_PLANTED = {
    "no modem": ("modem", "fault", "Plug it in",
                 lambda m: (m.path("/sys/bus/usb/devices/1-1/idVendor").unlink())),
    "another modem in use": ("modem", "fault", "modem adopt",
                             lambda m: configure(m, vendor_id=0x06B9, product_id=0x4061)),
    "no driver": ("driver", "fault", "no driver cxacru", lambda m: planted_modules(m, "cxacru")),
    "a kernel for clouds": ("driver", "fault", "atm, usbatm, cxacru. Install the distribution's full",
                            lambda m: planted_modules(m, "atm", "usbatm", "cxacru")),
    "no usbatm": ("driver", "fault", "needs: usbatm.", lambda m: planted_modules(m, "usbatm")),
    "firmware that the distribution has": (
        "firmware", "fault", "apt install firmware-misc-nonfree",
        lambda m: plug(m, 0x1110, 0x9042)),
    "no firmware": ("firmware", "fault", "1110:9010", lambda m: plug(m, 0x1110, 0x9010)),
    "firmware refused": ("firmware", "fault", "/lib/firmware", lambda m: m.kernel_log.append(
        "speedtch 1-1:1.0: speedtch_heavy_init: firmware upload failed (-32)!")),
    "line down": ("line", "fault", "telephone cable",
                  lambda m: m.kernel_log.append("ATM dev 0: ADSL line: down")),
    "line training": ("line", "warning", "synchronising",
                      lambda m: m.kernel_log.append("ATM dev 0: ADSL line: training")),
    "no line settings": ("line-settings", "fault", "line set",
                         lambda m: configure(m, protocol=None, vpi=None, vci=None)),
    "VPI and VCI zero": ("line-settings", "fault", "both 0", lambda m: configure(m, vpi=0, vci=0)),
    "no PPP in the kernel": ("ppp", "fault", "linux-image",
                             lambda m: planted_modules(m, "ppp_generic")),
    "no PPP over ATM in the kernel": ("ppp", "fault", "needs: pppoatm.",
                                      lambda m: over_atm_without(m, "pppoatm")),
    "no bridge program": ("bridge", "fault", "br2684ctl",
                          lambda m: m.standin("br2684ctl_amd64").set(missing=True)),
    "bridge program not executable": (
        "bridge", "fault", "br2684ctl",
        lambda m: m.standin("br2684ctl_amd64").set(not_executable=True)),
    "no bridge module": ("bridge", "fault", "br2684", lambda m: planted_modules(m, "br2684")),
    "no peer file": ("peer", "fault", "is missing", lambda m: m.path(PEER_FILE).unlink()),
    "peer file that detaches at once": (
        "peer", "fault", "updetach",
        lambda m: m.path(PEER_FILE).write_text(without(PEER, "updetach"))),
    "peer file without noauth": (
        "peer", "fault", "noauth", lambda m: m.path(PEER_FILE).write_text(without(PEER, "noauth"))),
    "no secrets": ("secrets", "fault", "doctor --fix", lambda m: m.path(CHAP).unlink()),
    "secrets for all to read": ("secrets", "fault", "others than root",
                                lambda m: m.path(PAP).chmod(0o644)),
    "comment before the entry": ("secrets", "fault", "never take effect",
                                 lambda m: m.path(CHAP).write_text("# hello\n" + SECRETS)),
    "two logins": ("secrets", "fault", "is not the login",
                   lambda m: m.path(PEER_FILE).write_text(PEER.replace("user@isp", "other"))),
    "no resolver": ("resolver", "warning", "names no server",
                    lambda m: m.path("/etc/resolv.conf").write_text("")),
}


@pytest.mark.parametrize("fault", FAULTS_PLANTED)
def test_a_planted_fault_is_found_and_its_remedy_named(sound, fault):
    id_, verdict, words, plant = FAULTS_PLANTED[fault]
    plant(sound)
    found = run_all(sound)
    assert found[id_]["verdict"] == verdict, found[id_]
    assert words in found[id_]["text"] + " " + found[id_]["remedy"]
    assert Ctl(sound)("doctor").status == (FAULTS if verdict == "fault" else OK)


def test_a_module_that_the_protocol_does_not_need_is_not_missed(sound):
    over_atm_without(sound, "br2684")
    found = run_all(sound)
    assert {id_: found[id_]["verdict"] for id_ in ("driver", "ppp", "bridge")} == {
        "driver": "ok", "ppp": "ok", "bridge": "ok"}
    configure(sound)
    planted_modules(sound, "pppoatm")
    assert findings(sound)["ppp"]["verdict"] == "ok"


def test_before_there_is_a_modem_what_nearly_all_of_them_need_is_missed(sound):
    (sound.path("/sys/bus/usb/devices/1-1") / "idVendor").unlink()
    configure(sound, vendor_id=None, product_id=None, modem=None, udi=None)
    planted_modules(sound, "atm", "usbatm", "cxacru")
    driver = run_all(sound)["driver"]
    assert driver["verdict"] == "warning"
    assert "%s lacks what this connection needs: atm, usbatm." % os.uname().release in driver["text"]
    assert "linux-image" in driver["remedy"]
    planted_modules(sound)
    assert findings(sound)["driver"]["verdict"] == "not-checked"


@pytest.mark.parametrize("missing, word, text", [((), "available", "there, not loaded"),
                                                 (("cxacru",), "missing", "missing for this kernel"),
                                                 (None, "unknown", "unknown")])
def test_the_driver_command_tells_where_the_module_stands(sound, missing, word, text):
    if missing is None:
        shutil.rmtree(sound.path("/usr/lib/modules") / os.uname().release)
    else:
        planted_modules(sound, *missing)
    sound.start_daemon()
    shown = Ctl(sound).json("driver", "show")
    assert (shown["driver"], shown["state"]) == ("cxacru", word)
    assert text in Ctl(sound)("driver", "show").stdout


@pytest.mark.parametrize("ending, package", ((".ko.xz", "xz-utils"), (".ko", None)))
def test_what_compresses_a_built_driver_is_asked_for_where_it_is_missing(sound, ending, package):
    """Debian 13's kernel compresses what it installs, and fails without the program."""
    plug(sound, 0x1110, 0x9041)
    sound.path("/opt/norvix/drivers").mkdir()
    sound.path("/opt/norvix/drivers/ueagle-atm-1.4.tar").touch()
    file = sound.path("/usr/lib/modules") / os.uname().release / "modules.dep"
    file.write_text("".join("kernel/drivers/%s%s:\n" % (name, ending) for name in ("atm", "usbatm")))
    assert "xz" not in findings(sound)["driver"]["remedy"]
    sound.request("hide", path="/usr/bin/xz")
    remedy = findings(sound)["driver"]["remedy"]
    assert "linux-headers-%s" % os.uname().release in remedy
    assert (package in remedy) if package else ("xz" not in remedy)


def test_a_missing_policy_is_found(sound):
    run_all(sound)  # which needs the policy
    sound.path("/etc/dbus-1/system.d/norvix.conf").unlink()
    found = findings(sound)["policy"]
    assert (found["verdict"], "reload dbus" in found["remedy"]) == ("fault", True)


def test_a_missing_pppd_is_found(sound):
    sound.standin("pppd").set(missing=True)
    assert findings(sound)["ppp"]["verdict"] == "fault"


def test_a_missing_daemon_is_found(sound):
    found = findings(sound)
    assert found["daemon"]["verdict"] == "fault"
    assert "systemctl start norvix-daemon" in found["daemon"]["remedy"]


def test_a_missing_companion_is_found(sound):
    found = run_all(sound, companion=False)
    assert found["companion"]["verdict"] == "fault"
    assert "norvix-hald" in found["companion"]["remedy"]


def test_a_missing_bus_is_found(machine):
    assert findings(machine)["daemon"]["remedy"].startswith("Start it: “sudo systemctl start dbus")


def test_a_user_outside_the_group_is_told_to_join_it(sound):
    run_all(sound)
    found = findings(sound, uid=1000)
    assert (found["permission"]["verdict"], "usermod -a -G" in found["permission"]["remedy"]) == (
        "fault", True)
    sound.path("/etc/group").write_text("root:x:0:\n", encoding="ascii")
    assert "groupadd" in findings(sound, uid=1000)["permission"]["remedy"]


@pytest.mark.parametrize("place", ("file", "folder"))
def test_what_only_root_may_read_is_not_called_a_fault(sound, place):
    if place == "file":
        sound.path(PEER_FILE).chmod(0o640)
    else:  # as the distribution has it
        sound.path(PEER_FILE).parent.chmod(0o750)
    run_all(sound)
    found = findings(sound, uid=1000, groups=[NORVIX_GROUP])
    assert found["permission"]["verdict"] == "ok"
    for id_ in ("secrets", "peer"):
        assert found[id_]["verdict"] == "not-checked" and "sudo" in found[id_]["remedy"]


def test_another_pppd_is_found(sound):
    sound.pppd.script([wait_for("never")])
    other = sound.spawn(["/usr/local/sbin/pppd", "call", "office"])
    wait_until(lambda: sound.processes("pppd"), what="the other pppd runs")
    found = run_all(sound)
    assert found["other-pppd"]["verdict"] == "warning" and str(other.pid) in found["other-pppd"]["text"]


def test_the_last_lines_of_pppd_are_explained(sound):
    sound.pppd.script([out("Plugin pppoe.so loaded.\n"),
                       out("sent [LCP TermReq id=0x2 \"Failed to authenticate ourselves to peer\"]\n"),
                       end(19)])
    run_all(sound)
    assert Ctl(sound)("connect", "--wait").status == 12
    last = findings(sound)["last-attempt"]
    assert last["verdict"] == "warning" and "account set" in last["remedy"]


def test_the_newest_lines_of_a_long_log_are_explained(sound):
    run_all(sound)
    with sound.path("/opt/norvix/daemon.log").open("a", encoding="ascii") as log:
        for words in ("Plugin pppoe.so loaded.\n", "Modem hangup\n" + "x" * 99 + "\n" * (3 << 20),
                      "Plugin pppoe.so loaded.\n", "LCP terminated by peer\n"):
            log.write("01-01-2026 00:00:00 Norvix_Daemon::debugConnecting(): " + words)
    assert "terminated by peer" in findings(sound)["last-attempt"]["text"]


# ---- mending

def test_mending_puts_the_account_first_and_keeps_the_rest_and_a_copy(sound):
    old = "# comment\nguest isp word\n" + SECRETS.replace("secret", "old") + SECRETS
    sound.path(PAP).write_text(old, encoding="ascii")
    sound.path(PAP).chmod(0o644)
    sound.path(CHAP).unlink()
    run_all(sound)
    result = Ctl(sound)("doctor", "--fix")
    assert result.status == FAULTS  # no account in the file that was missing
    assert sound.path(PAP).read_text() == SECRETS + GUARD + "# comment\nguest isp word\n"
    assert sound.path(PAP + ".norvix-backup").read_text() == old
    assert sound.path(CHAP).read_text() == '"login" * "password" *\n' + GUARD
    for name in (PAP, CHAP, PAP + ".norvix-backup"):
        assert sound.path(name).stat().st_mode & 0o777 == 0o600
    again = Ctl(sound)("doctor", "--fix")
    assert again.stderr == ""


def test_mending_keeps_all_of_a_large_file(sound):
    old = "# comment\n" + "# a line of some length, again and again\n" * 40000 + SECRETS
    sound.path(PAP).write_text(old, encoding="ascii")
    Ctl(sound)("doctor", "--fix")
    assert sound.path(PAP).read_text() == SECRETS + GUARD + old.replace(SECRETS, "")
    assert sound.path(PAP + ".norvix-backup").read_text() == old


@pytest.fixture(name="shipped")
def shipped_fixture(sound):
    """The shipped peer files where packages put them."""
    shutil.copytree(REPOSITORY / "packaging/peers", sound.path("/opt/norvix/share") / "peers")
    return sound


def shipped_peer(name):
    return (REPOSITORY / "packaging/peers" / name).read_text()


def test_mending_puts_a_missing_peer_file_there(shipped):
    shipped.path(PEER_FILE).unlink()
    Ctl(shipped)("doctor", "--fix")
    assert shipped.path(PEER_FILE).read_text() == shipped_peer("norvix").replace(
        'user "login"', 'user "user@isp"')
    assert shipped.path(PEER_FILE).stat().st_mode & 0o777 == 0o640


def test_mending_turns_the_shipped_peer_file_into_that_of_the_protocol(shipped):
    before = shipped_peer("norvix").replace('user "login"', 'user "user@isp"')
    shipped.path(PEER_FILE).write_text(before)
    configure(shipped, protocol="PPPoA", vpi=0, vci=38)
    Ctl(shipped)("doctor", "--fix")
    assert shipped.path(PEER_FILE).read_text() == shipped_peer("norvix-pppoa").replace(
        'user "login"', 'user "user@isp"').replace("\n8.35\n", "\n0.38\n")
    assert shipped.path(PEER_FILE + ".norvix-backup").read_text() == before
    assert findings(shipped)["peer"]["verdict"] == "ok"
    # And back, with a copy of its own.
    configure(shipped)
    Ctl(shipped)("doctor", "--fix")
    assert shipped.path(PEER_FILE).read_text() == before
    assert "0.38" in shipped.path(PEER_FILE + ".norvix-backup.1").read_text()


def test_mending_leaves_a_peer_file_that_somebody_has_edited(shipped):
    mine = shipped_peer("norvix") + "mtu 1400\n"
    shipped.path(PEER_FILE).write_text(mine)
    configure(shipped, protocol="PPPoA")
    Ctl(shipped)("doctor", "--fix")
    assert shipped.path(PEER_FILE).read_text() == mine
    assert findings(shipped)["peer"]["verdict"] == "fault"


def test_only_root_may_mend(sound):
    assert Ctl(sound, uid=1000)("doctor", "--fix").status == NOT_PERMITTED


def test_a_file_that_can_not_be_written_stops_the_mending(sound):
    sound.path(PAP).unlink()
    sound.path(PAP).mkdir()
    assert Ctl(sound)("doctor", "--fix").status == FAILED
