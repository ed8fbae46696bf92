# SPDX-License-Identifier: MIT
"""The demo as a visitor sees it: what it prints, how it ends, what it leaves behind."""
import os
import re
import signal
import subprocess
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import pytest

from lab.machine.private_machine import BUILD, REPOSITORY, place_of_state_folders, processes_inside
from lab.waiting import wait_until

PATIENCE = 120


def start(*options, build=BUILD):
    """The demo without its front, which would install and build."""
    command = ["/usr/bin/python3", "-B", "-m", "lab.machine.demo", *options]
    return subprocess.Popen(command, cwd=REPOSITORY, env=dict(os.environ, NORVIX_BUILD_DIR=str(build)),
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


def ending(demo):
    """The rest of what a run prints, of which some lines have been read, until it ends."""
    rest = demo.stdout.read()
    demo.wait(PATIENCE)
    demo.stdout.close()
    return rest


def leftovers(pid):
    """State folders of that demo, and processes that still know of them."""
    pattern = "nvx-%d-" % pid
    left = Path(place_of_state_folders()).glob(pattern + "*")
    return [*left, *processes_inside(pattern)]


def order_of(told, *texts):
    """The positions of some texts, each looked for behind the one before; fails on a missing one."""
    position = 0
    for text in texts:
        found = re.compile(text).search(told, position)
        assert found, "%r is missing, or too early, in:\n%s" % (text, told)
        position = found.end()


SCENARIOS = {
    "plain": ["--seconds", "8"],  # others take longer; a busy machine is slow to send
    "pppoa": ["--seconds", "1", "--protocol", "pppoa", "--verbose"],
    "eagle-e4": ["--seconds", "1", "--modem", "eagle-e4"],
    "eagle": ["--seconds", "1", "--modem", "eagle", "--protocol", "pppoa"],
    "speedtch": ["--seconds", "1", "--modem", "speedtch", "--line", "trains"],
    "unicorn": ["--seconds", "1", "--modem", "unicorn", "--verbose"],
    "cxacru": ["--seconds", "1", "--modem", "cxacru", "--line", "trains", "--protocol", "pppoa"],
    "never": ["--line", "never"],
    "wrong password pppoe": ["--wrong-password", "--protocol", "pppoe"],
    "wrong password pppoa": ["--wrong-password", "--protocol", "pppoa"],
    "wrong password unicorn": ["--wrong-password", "--modem", "unicorn"],
    "no concentrator pppoe": ["--no-concentrator"],
    "no concentrator pppoa": ["--no-concentrator", "--protocol", "pppoa"],
}


@pytest.fixture(scope="module")
def plays():
    """All scenarios at once: they mostly wait."""
    demos = {name: start(*options) for name, options in SCENARIOS.items()}
    yield demos
    for demo in demos.values():
        demo.kill()
        demo.wait()


def outcome(demo):
    """What a run that has to succeed printed; several tests may look at it."""
    if not hasattr(demo, "told"):
        demo.told = ending(demo)
    told = demo.told
    assert demo.returncode == 0, told
    assert leftovers(demo.pid) == []
    return told


def test_a_first_connection_is_told_from_plugging_to_unplugging(plays):
    order_of(outcome(plays["plain"]), "norvix-hald", r"modem +plugged in: 0572:cb00",
             "newModemPlugged +a new modem: CXACRU modem", "call +useNewModem",
             "modemPlugged +modem: CXACRU modem", "call +establishConnection",
             "establishingConnection", "connectionEstablished",
             r"IP +the address is 10\.64\.0\.100",
             "default route leads through ppp0",
             r"transmissionSpeed +[1-9][\d.]* kB/s down, [1-9][\d.]* kB/s up",
             r"transmissionBytes +[\d.]+ kB received", "connected for 00:00:0",
             "modem +unplugged", "connectionTerminated", "modemUnplugged", "not connected",
             r"connected and unplugged +[1-9]")


NAMES = {"eagle-e4": "Sagem F@st 800 E4", "eagle": "Sagem F@st 800", "unicorn": "ZTE ZXDSL 852",
         "speedtch": "Thomson Speedtouch 330", "cxacru": "CXACRU modem"}


@pytest.mark.parametrize("family", NAMES)
def test_each_family_is_recognised_connected_and_unplugged(plays, family):
    told = outcome(plays[family])
    order_of(told, "newModemPlugged +a new modem: %s\n" % NAMES[family], "connectionEstablished",
             "modemUnplugged", "connected and unplugged")
    assert told.count("newModemPlugged") == 1


@pytest.mark.parametrize("family, before, after",
                         [("eagle-e4", 0x9042, 0x9041), ("eagle", 0x9010, 0x900F)])
def test_a_modem_that_wants_firmware_comes_back_under_another_number(plays, family, before, after):
    order_of(outcome(plays[family]), "plugged in: 1110:%04x" % before,
             "is back as 1110:%04x" % after, "newModemPlugged")


def test_ppp_over_atm_uses_no_bridge(plays):
    told = outcome(plays["pppoa"])
    order_of(told, "connectionEstablished", r"10\.65\.0\.100")
    assert "prepareBridging" not in told


def test_the_unicorn_modem_brings_its_own_interface_up(plays):
    order_of(outcome(plays["unicorn"]), "ifconfig dsl0 up: success", "Connect: ppp0 <--> dsl0",
             "connectionEstablished")


def test_a_line_that_trains_first_is_waited_for(plays):
    order_of(outcome(plays["cxacru"]), "synchronizing", "line +ATM dev 0: ADSL line: training",
             "ADSL line: up", "connectionEstablished")
    order_of(outcome(plays["speedtch"]), "synchronizing", "ADSL line is synchronising",
             "ADSL line is up", "connectionEstablished")


@pytest.mark.parametrize("protocol", ["pppoe", "pppoa", "unicorn"])
def test_a_wrong_password_is_reported(plays, protocol):
    told = outcome(plays["wrong password " + protocol])
    order_of(told, "invalidAccountData", "not connected +as it was asked for")
    assert "connectionEstablished" not in told


def test_a_missing_concentrator_is_reported_as_a_time_out(plays):
    order_of(outcome(plays["no concentrator pppoe"]), "connectionTimeout",
             "not connected +as it was asked for")


def test_a_silent_far_end_of_ppp_over_atm_ends_without_a_connection(plays):
    order_of(outcome(plays["no concentrator pppoa"]), "connectionState +now not connected",
             "not connected +as it was asked for")


# Where in its course the demo is interrupted: at its very start, and behind these lines.
MOMENTS = [None, "private machine", "plugged in", "establishingConnection",
           "connectionEstablished", "transmissionSpeed", "modem                   unplugged"]


INTERRUPTS = [(moment, number) for moment in MOMENTS for number in (signal.SIGINT, signal.SIGTERM)]


def interrupt(demo, moment, number):
    """Sends a signal at a moment; returns what the demo then still prints."""
    if moment is None:
        wait_until(lambda: leftovers(demo.pid), what="the machine is being made")
    for line in demo.stdout if moment else ():
        if moment in line:
            break
    demo.send_signal(number)
    return ending(demo)


@pytest.fixture(scope="module")
def interrupted():
    """All of them at once: each mostly waits for its moment."""
    with ThreadPoolExecutor(len(INTERRUPTS)) as pool:
        demos = [start("--seconds", "2", "--protocol", "pppoa") for _ in INTERRUPTS]
        rests = [pool.submit(interrupt, demo, *when) for demo, when in zip(demos, INTERRUPTS)]
        yield {when: (demo, rest.result(PATIENCE))
               for when, demo, rest in zip(INTERRUPTS, demos, rests)}


@pytest.mark.parametrize("moment, number", INTERRUPTS)
def test_an_interrupt_ends_it_cleanly_at_any_time(interrupted, moment, number):
    demo, rest = interrupted[moment, number]
    assert demo.returncode == 130 or (moment == MOMENTS[-1] and demo.returncode == 0), rest
    assert "Traceback" not in rest
    assert leftovers(demo.pid) == []


def test_a_reader_that_goes_away_ends_it_cleanly():
    demo = start("--seconds", "2")
    demo.stdout.readline()
    demo.stdout.close()
    assert demo.wait(PATIENCE) != 0
    assert leftovers(demo.pid) == []


def test_killing_it_leaves_nothing_behind():
    demo = start("--seconds", "30")
    for line in demo.stdout:
        if "connectionEstablished" in line:
            break
    assert leftovers(demo.pid)
    demo.kill()
    ending(demo)
    wait_until(lambda: not leftovers(demo.pid), what="all is gone",
               detail=lambda: leftovers(demo.pid))


def processes_of(demo, name):
    """The processes of that name in the demo's machine, by their ids outside."""
    found = []
    for folder in processes_inside("nvx-%d-" % demo.pid):
        try:
            if name in (folder / "cmdline").read_bytes().decode(errors="replace"):
                found.append(int(folder.name))
        except OSError:
            pass
    return found


@pytest.mark.parametrize("program, moment, told", [
    ("norvix-daemon", "connectionEstablished", "the daemon has ended by itself"),
    ("norvix-hald", "norvix-hald", "norvix-hald has ended by itself")])
def test_a_program_that_dies_is_an_error(program, moment, told):
    demo = start("--seconds", "30", "--protocol", "pppoa")
    for line in demo.stdout:
        if moment in line:
            break
    # What it starts bears its name until it has become another program.
    [process] = wait_until(lambda: len(found := processes_of(demo, program)) == 1 and found,
                           what="just one " + program)
    os.kill(process, signal.SIGKILL)
    rest = ending(demo)
    assert demo.returncode == 1
    assert told in rest
    assert leftovers(demo.pid) == []


def test_what_the_front_builds_is_all_that_a_demo_needs(tmp_path):
    front = (REPOSITORY / "demo").read_text(encoding="utf-8")
    needed = re.search(r'(?m)^needed="(.*)"$', front)[1].split()
    for name in [word.removeprefix("$build/") for word in needed] + ["lib"]:
        (tmp_path / name).parent.mkdir(exist_ok=True)
        (tmp_path / name).symlink_to(BUILD / name)
    demo = start("--seconds", "1", build=tmp_path)
    order_of(outcome(demo), "connectionEstablished", "connected and unplugged")


def test_a_build_tree_in_which_nothing_is_built_is_an_error():
    environment = dict(os.environ, NORVIX_BUILD_DIR="/nonexistent")
    failed = subprocess.run(["/usr/bin/python3", "-B", "-m", "lab.machine.demo"], cwd=REPOSITORY,
                            env=environment, capture_output=True, text=True, timeout=PATIENCE)
    assert failed.returncode == 1
    assert "/nonexistent/lab/standin is not built" in failed.stderr


def test_help_names_every_option():
    told = subprocess.run([REPOSITORY / "demo", "--help"], capture_output=True, text=True, check=True)
    for family in NAMES:
        assert family in told.stdout
    source = (REPOSITORY / "lab/machine/demo.py").read_text(encoding="utf-8")
    options = re.findall(r'add_argument\([^)]*?"(--[a-z-]+)"', source)
    assert len(options) > 6
    for option in options:
        assert option in told.stdout


@pytest.mark.parametrize("options, told", [
    (["--modem", "unicorn", "--protocol", "pppoa"], "Ethernet interface of its own"), (["--protocol", "x25"], "x25")])
def test_what_no_demo_can_do_is_refused(options, told):
    demo = start(*options)
    assert told in demo.communicate(timeout=PATIENCE)[0]
    assert demo.returncode == 2


def test_a_line_that_never_comes_up_is_given_up(plays):
    order_of(outcome(plays["never"]), "synchronizing", "synchronizationFailed",
             "not connected +as it was asked for")
