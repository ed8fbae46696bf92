# SPDX-License-Identifier: MIT
"""What norvixctl prints: every reading command in every form, compared with recorded outputs."""
import base64
import json
import os

import jsonschema
import pytest
from norvixctl import (FAILED, FAULTS, GOLDEN, NO_DAEMON, NOT_PERMITTED, OK, PROGRAM, SCHEMA, USAGE,
                       Ctl, golden, without_resolvconf, without_times)

from lab.machine.modem_families import FAMILIES, identity
from lab.waiting import wait_for_line
from lab.machine.pppd_script import link_up, stay

FORMS = {"human": [], "terse": ["--terse"], "json": ["--json"]}
READING = ["status", "account show", "modem show", "modem known", "modem plugged", "line show",
           "line providers", "autoconnect", "idle", "driver show", "dns", "log", "doctor", "help"]
SECRETS = '"user@isp" * "secret" *\n'


@pytest.fixture(name="set_up")
def set_up_fixture(new_machine):
    """A machine with a modem on the USB, an account, settings and a running daemon."""
    machine = new_machine(private_folders=["/sys/bus", "/usr/lib/firmware", "/usr/lib/modules"])
    device = machine.path("/sys/bus/usb/devices/1-1")
    device.mkdir(parents=True)
    (device / "idVendor").write_text("0572\n", encoding="ascii")
    (device / "idProduct").write_text("cafe\n", encoding="ascii")
    modules = machine.path("/usr/lib/modules") / os.uname().release
    modules.mkdir()
    (modules / "modules.dep").write_text(
        "".join("a/%s.ko:\n" % name for name in ("atm", "usbatm", "cxacru", "ppp_generic", "pppoatm")),
        encoding="ascii")
    for name in ("pap-secrets", "chap-secrets"):
        machine.path("/etc/ppp/" + name).write_text(SECRETS, encoding="ascii")
    machine.settings(modem="CXACRU modem", vendor_id=1394, product_id=51966, protocol="PPPoA",
                     vpi=8, vci=35, service="home", autoconnect=True)
    machine.kernel_log.line_up()
    without_resolvconf(machine)
    machine.start_bus()
    machine.start_daemon().wait_for_log("getIsModemPlugged")
    return machine


def check_schema(path, object_):
    schema = json.loads(SCHEMA.read_text(encoding="utf-8"))
    jsonschema.Draft7Validator.check_schema(schema)
    name = path.replace(" ", "-")
    jsonschema.validate(object_, {"$ref": "#/definitions/" + name,
                                  "definitions": schema["definitions"]})


def shown(ctl, path, form):
    result = ctl(*path.split(), *FORMS[form])
    if path == "log":  # that of a start is long, and other tests look at it
        result = result._replace(stdout="".join(result.stdout.splitlines(True)[:1]))
    return result


@pytest.mark.parametrize("path", [path for path in READING
                                  if path not in ("help", "doctor")])
def test_every_reading_command_prints_text_lines_and_json(set_up, path):
    ctl = Ctl(set_up)
    for form in FORMS:
        result = shown(ctl, path, form)
        assert (result.status, result.stderr) == (OK, ""), form
        golden("%s.%s" % (path.replace(" ", "-"), form), without_times(result.stdout))
        if form == "json":
            for line in [result.stdout] if path != "log" else result.stdout.splitlines():
                check_schema(path, json.loads(line))


def test_the_laboratorys_modems_are_those_that_are_supported(machine):
    supported = {modem["name"]: modem for modem in Ctl(machine).json("modem", "known")["modems"]}
    assert sorted(family.name for family in FAMILIES.values()) == sorted(supported)
    for family in FAMILIES.values():
        modem = supported[family.name]
        products = [family.product] + [family.product_before] * bool(family.product_before)
        assert family.driver == modem["driver"]
        assert {identity(family.vendor, product) for product in products} <= set(modem["ids"])


def test_doctor_prints_text_lines_and_json(set_up):
    ctl = Ctl(set_up)
    for form in FORMS:
        result = ctl("doctor", *FORMS[form])
        assert (result.status, result.stderr) == (FAULTS, "")
        golden("doctor." + form, without_times(result.stdout))
    check_schema("doctor", json.loads(result.stdout))


def test_the_account_is_shown_with_its_password_only_when_asked(set_up):
    ctl = Ctl(set_up)
    assert "secret" not in ctl("account", "show").stdout
    assert "password" not in ctl.json("account", "show")
    revealed = ctl("account", "show", "--reveal", "--json").stdout
    check_schema("account show", json.loads(revealed))
    assert json.loads(revealed)["password"] == "secret"


def test_a_running_connection_is_shown_with_all_its_figures(set_up):
    set_up.pppd.script(link_up(device="8.35") + [stay()])
    ctl = Ctl(set_up)
    assert ctl("connect", "--wait").status == OK
    shown_now = ctl.json("status")
    check_schema("status", shown_now)
    connection = shown_now["connection"]
    assert connection.pop("seconds") >= 0
    assert connection.pop("receivedBytes") >= 0 and connection.pop("sentBytes") >= 0
    assert connection == {"state": "connected", "interface": "ppp0", "address": "10.64.0.100",
                          "route": "ppp0", "isUsed": True}
    assert shown_now["line"] == {"state": "up", "downKbit": 8128, "upKbit": 832}


@pytest.mark.parametrize("path", READING)
def test_without_bus_reading_says_so_or_shows_what_can_be_known(machine, path):
    result = Ctl(machine)(*path.split(), "--json")
    without_daemon = {"modem known": OK, "modem plugged": OK, "line providers": OK, "dns": OK,
                      "help": OK, "log": FAILED, "doctor": FAULTS}
    assert result.status == without_daemon.get(path, NO_DAEMON)
    if result.status == NO_DAEMON:
        assert "system bus can not be reached" in " ".join(result.stderr.split())
    if result.stdout and path != "help":
        check_schema(path, json.loads(result.stdout))


@pytest.mark.parametrize("words", ["status", "modem show", "account show", "autoconnect", "idle",
                                   "driver show", "line show"])
def test_without_the_daemon_reading_names_the_remedy_and_does_not_start_it(bus_machine, words):
    result = Ctl(bus_machine)(*words.split())
    assert result.status == NO_DAEMON
    assert "systemctl start norvix-daemon" in " ".join(result.stderr.split())


def test_line_and_resolver_are_shown_without_the_daemon(machine):
    machine.settings(protocol="PPPoE", vpi=1, vci=32)
    assert Ctl(machine).json("line") == {"protocol": "PPPoE", "vpi": "1", "vci": "32",
                                         "service": None}
    assert Ctl(machine).json("dns")["servers"] == ["192.0.2.53"]


def test_a_resolver_that_others_manage_is_named(machine):
    machine.path("/etc/resolv.conf").unlink()
    machine.path("/etc/resolv.conf").symlink_to("/run/other/resolv.conf")
    shown_now = Ctl(machine).json("dns")
    assert shown_now == {"file": "/etc/resolv.conf", "managedBy": "/run/other/resolv.conf",
                         "servers": []}


def test_anybody_may_look_at_the_status(set_up):
    assert Ctl(set_up, uid=1000)("status").status == OK
    refused = Ctl(set_up, uid=1000)("account", "show")
    assert refused.status == NOT_PERMITTED
    assert "usermod -a -G" in " ".join(refused.stderr.split())


def test_the_log_is_printed_from_its_end(set_up):
    ctl = Ctl(set_up)
    # The line state is the last thing that the daemon logs at its start.
    wait_for_line(set_up.path("/opt/norvix/daemon.log"), r"debugHandler: i: \d|klogctl\(\) <= 0")
    everything = ctl("log").stdout.splitlines()
    assert "ctor invoked" in everything[0]
    assert ctl("log", "-n", "2").stdout.splitlines() == everything[-2:]
    assert ctl("log", "-n", "0").stdout == ""
    set_up.path("/opt/norvix/daemon.log").chmod(0o600)
    refused = Ctl(set_up, uid=1000)("log")
    assert (refused.status, "sudo" in refused.stderr) == (NOT_PERMITTED, True)


@pytest.mark.parametrize("content", ["", "one", "one\n", "one\ntwo", "one\n\nthree\n\n",
                                     "x" * 70000 + "\n" + "y" * 140000 + "\nz\n"],
    ids=lambda text: "%d-characters" % len(text))
def test_the_last_lines_are_those_at_the_end(machine, content):
    machine.path("/opt/norvix/daemon.log").write_text(content)
    for count in range(5):
        expected = content.splitlines()[-count:] if count else []
        assert Ctl(machine)("log", "-n", str(count)).stdout.splitlines() == expected


def peak_memory(machine, *words):
    """In kB, of a run whose output nobody keeps."""
    script = ("import resource, subprocess, sys; subprocess.run(sys.argv[1:], check=True, "
              "stdout=subprocess.DEVNULL); "
              "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)")
    result = machine.run(["/usr/bin/python3", "-IBc", script, PROGRAM, *words],
                         env=Ctl(machine).environment())
    return int(result.stdout)


@pytest.mark.parametrize("words", [["-n", "3"], ["-n", "100000"], []])
def test_a_large_log_takes_no_more_memory_than_a_small_one(machine, words):
    file = machine.path("/opt/norvix/daemon.log")
    file.write_bytes(b"01-01-2026 00:00:00 a line\n")
    small = peak_memory(machine, "log", *words)
    file.write_bytes(b"x" * 2000000 + b"\n" + b"01-01-2026 00:00:00 a line\n" * 200000
                     + b"y" * 15000000)
    assert peak_memory(machine, "log", *words) < small + 20000


@pytest.mark.parametrize("words", ["status", "status --json", "--help", "--version", "help status",
                                   "completion bash", "line providers --terse", "log"])
@pytest.mark.parametrize("where", [">/dev/full", ">&-"])
def test_output_that_can_not_be_written_is_a_failure(set_up, words, where):
    result = set_up.run(["/bin/sh", "-c", "exec %s %s %s" % (PROGRAM, words, where)],
                        env=Ctl(set_up).environment())
    assert (result.status, result.stdout) == (FAILED, "")
    assert len(result.stderr.splitlines()) == 1 and "can not be written" in result.stderr


def test_without_standard_streams_the_bus_gets_only_its_own_messages(set_up):
    result = set_up.run(["/bin/sh", "-c", "exec %s idle 7 <&- >&- 2>&-" % PROGRAM],
                        env=Ctl(set_up).environment())
    assert result.status == FAILED
    assert set_up.client().call("getIdlenessTime") == 7


def test_control_characters_of_the_log_do_not_reach_the_terminal(machine):
    machine.path("/opt/norvix/daemon.log").write_bytes(b"01-01-2026 00:00:00 a\x1b[2Jb\xff\n")
    assert "\x1b" not in Ctl(machine)("log").stdout
    text = json.loads(Ctl(machine)("log", "--json").stdout)["text"]
    assert text.startswith("a\x1b[2Jb")


STEERING = "\x1b[2J\x7f\x85\x9b\u061c\u200e\u202e\u2066\u2028"


@pytest.mark.parametrize("form", FORMS.values(), ids=FORMS)
def test_nothing_that_others_wrote_steers_the_terminal(machine, form):
    machine.settings(service="home")
    settings = machine.path("/opt/norvix/.daemon_ng.ini")
    escaped = "".join(sign if sign in "[2J" else "\\x%x" % ord(sign) for sign in STEERING)
    settings.write_text(settings.read_text().replace("home", '"a%sz"' % escaped))
    machine.path("/opt/norvix/daemon.log").write_text("01-01-2026 00:00:00 a%sz\n" % STEERING)
    for command in ("line", "log", "doctor"):
        result = Ctl(machine)(command, *form)
        shown_now = result.stdout + result.stderr
        assert "a" in shown_now
        assert not set(STEERING) - set("[2J") & set(shown_now), (command, ascii(shown_now))
    if "--json" in form:
        assert Ctl(machine).json("line")["service"] == "a%sz" % STEERING


def test_nothing_on_the_command_line_steers_the_terminal(machine):
    for words in (["a%sz" % STEERING], ["status", "--a%sz" % STEERING], ["help", "a%sz" % STEERING],
                  ["status", "a%sz" % STEERING], ["--color=a%sz" % STEERING, "status"]):
        result = Ctl(machine)(*words)
        assert result.status == USAGE
        assert not set(STEERING) - set("[2J") & set(result.stdout + result.stderr), result


def test_todays_facts_are_printed(machine):
    assert Ctl(machine)("log", "--daily").status == FAILED
    machine.path("/var/log/norvix").mkdir()
    # Tomorrow's, too: it may be midnight.
    machine.run(["/bin/sh", "-c", "for day in now tomorrow; do"
                 " echo fact > /var/log/norvix/$(date -d $day +%d-%m-%Y).log; done"], env={"TZ": "UTC"})
    assert Ctl(machine)("log", "--daily").stdout == "fact\n"
    machine.add_locale("fa_IR")  # which has digits of its own; the daemon's names have not
    assert Ctl(machine)("log", "--daily", env={"LC_ALL": "fa_IR.UTF-8"}).stdout == "fact\n"


def test_colours_are_for_terminals_only(set_up):
    ctl = Ctl(set_up)
    assert "\x1b[" not in ctl("status").stdout
    assert "\x1b[32m" in ctl("status", "--color=always").stdout
    assert "\x1b[32m" in ctl.on_terminal("status").stdout
    assert "\x1b[" not in ctl.on_terminal("status", env={"NO_COLOR": "1"}).stdout
    assert "\x1b[" not in ctl.on_terminal("status", env={"TERM": "dumb"}).stdout
    assert "\x1b[" not in ctl.on_terminal("status", "--color=never").stdout


def test_text_wraps_at_the_terminals_width(set_up):
    for columns in (40, 80):
        lines = Ctl(set_up).on_terminal("doctor", "--color=never", columns=columns).stdout
        words = "".join(line for line in lines.splitlines(True) if "/" not in line)  # long names
        assert max(len(line) for line in words.splitlines()) <= columns


def test_it_speaks_german_and_machines_get_the_same_words(set_up):
    ctl = Ctl(set_up)
    german = {"LANG": "de_DE.UTF-8", "LC_ALL": "", "LANGUAGE": ""}
    golden("status.german", without_times(ctl("status", env=german).stdout))
    golden("help.german", ctl("--help", env=german).stdout)
    assert without_times(ctl("status", "--terse", env=german).stdout) == (
        GOLDEN / "status.terse.txt").read_text(encoding="utf-8")


@pytest.mark.parametrize("env, is_german", [
    ({"LANGUAGE": "de", "LC_ALL": "C"}, False), ({"LANGUAGE": "de", "LC_ALL": "POSIX"}, False),
    ({"LANGUAGE": "de", "LC_ALL": "C.UTF-8"}, False), ({"LANGUAGE": "de", "LANG": ""}, False),
    ({"LANG": "de_DE.UTF-8"}, True), ({"LANGUAGE": "de", "LANG": "en_GB.UTF-8"}, True),
    ({"LANG": "de_DE.UTF-8", "LC_MESSAGES": "C"}, False)])
def test_the_locale_c_is_english_whatever_the_language_says(machine, env, is_german):
    assert Ctl(machine)("--help", env=env).stdout.startswith("Aufruf" if is_german else "Usage")


def test_who_likes_english_better_than_german_reads_no_german(machine):
    english = {"LANG": "en_GB.UTF-8"}
    both = {"LANGUAGE": "en_GB:de", **english}
    assert Ctl(machine)("doctor", env=both).stdout == Ctl(machine)("doctor", env=english).stdout


def test_text_is_in_the_character_set_of_the_locale(set_up):
    env = {"LANG": "de_DE.ISO-8859-1", "LC_ALL": "", "LANGUAGE": ""}
    for name in ("norvix", "norvix_unicorn"):
        set_up.path("/etc/ppp/peers/" + name).write_text("noauth\n", encoding="ascii")
    script = '"$@" | base64 -w0'

    def run(*words, stdin=b""):
        feed = base64.b64encode(stdin).decode()
        result = set_up.run(["/bin/sh", "-c", "echo %s | base64 -d | %s" % (feed, script), "sh",
                             PROGRAM, *words], env=Ctl(set_up).environment(**env))
        return base64.b64decode(result.stdout)
    assert "für".encode("latin-1") in run("--help") and b"\xc3" not in run("--help")
    run("account", "set", "me", stdin="gr\u00fcn".encode("latin-1"))
    assert Ctl(set_up).json("account", "show", "--reveal")["password"] == "gr\u00fcn"
    assert run("account", "show", "--reveal", "--terse").endswith(b"gr\xfcn\n")
    revealed = run("account", "show", "--reveal", "--json")
    assert revealed.isascii() and json.loads(revealed)["password"] == "gr\u00fcn"


def test_marks_are_plain_where_the_locale_is_not_utf8(machine):
    text = Ctl(machine)("frob", env={"LANG": "C"}).stderr
    assert text.isascii() and '"frob"' in text


@pytest.mark.parametrize("words, status", [
    ([], USAGE), (["--help"], OK), (["-h"], OK), (["--version"], OK), (["line", "--help"], OK),
    (["frob"], USAGE), (["status", "--frob"], USAGE),
    (["connect", "--timeout"], USAGE), (["connect", "--timeout", "0"], USAGE),
    (["watch", "--count", "x"], USAGE), (["log", "-n", "x"], USAGE), (["help", "frob"], USAGE),
    (["help", "line"], OK), (["help", "line", "set"], OK), (["completion", "fish"], USAGE),
    (["completion"], USAGE), (["line", "frob"], USAGE), (["--color=red", "status"], USAGE),
    (["--", "dns"], OK), (["--", "line", "providers"], OK), (["--"], USAGE), (["--", "dns", "-h"], USAGE),
])
def test_usage(machine, words, status):
    result = Ctl(machine)(*words)
    assert result.status == status, result
    assert bool(result.stderr) == (status != OK)


@pytest.mark.parametrize("group", ["account", "line", "modem", "driver"])
def test_a_groups_help_names_all_of_its_commands(machine, group):
    told = Ctl(machine)(group, "--help").stdout
    for command in Ctl(machine).json("help")["commands"]:
        assert ("  %s" % command["command"] in told) == command["command"].startswith(group + " ")


def test_every_command_explains_itself(machine):
    ctl = Ctl(machine)
    for command in ctl.json("help")["commands"]:
        result = ctl(*command["command"].split(), "--help")
        assert result.status == OK
        assert result.stdout.startswith("Usage: norvixctl " + command["command"])
        for option in command["options"]:
            assert "--" + option["name"] in result.stdout
    golden("help.human", ctl("--help").stdout)
    golden("help-connect.human", ctl("connect", "--help").stdout)
