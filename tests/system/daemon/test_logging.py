# SPDX-License-Identifier: MIT
"""The main log, the daily log and what is printed."""
import re
import time

from lab.machine.pppd_script import link_up, out, stay
from lab.waiting import wait_for_line, wait_until
from machine_fixtures import ROOT_ONLY
from obstacles import mount

STAMP = r"\d\d-\d\d-\d{4} \d\d:\d\d:\d\d "
LOG = "/opt/norvix/daemon.log"


def connected(machine, client):
    """With a daemon whose start is over: before, no line of pppd means anything."""
    machine.kernel_log.line_up()
    machine.pppd.script(link_up() + [stay()])
    client.call("establishConnection")
    client.wait_signal("connectionEstablished")


def test_each_line_has_its_time_and_its_text(bus_machine):
    before = time.time()
    bus_machine.start_daemon()
    for line in bus_machine.daemon_log().splitlines():
        assert re.match(STAMP + r"\S", line), line
    stamp = bus_machine.daemon_log()[:19]
    logged = time.mktime(time.strptime(stamp, "%d-%m-%Y %H:%M:%S"))
    assert before - 1 <= logged <= time.time()


def test_the_time_is_local(bus_machine):
    begun = time.time()
    bus_machine.start_daemon(env={"TZ": "XYZ-11:00"})
    expected = [time.strftime("%d-%m-%Y %H:", time.gmtime(moment + 11 * 3600)) for moment in (begun, time.time())]
    assert bus_machine.daemon_log().startswith(tuple(expected))  # two when it has just struck the hour


def test_messages_of_the_library_carry_the_handlers_prefix_and_their_blank(bus_machine):
    daemon = bus_machine.start_daemon()
    bus_machine.kernel_log.line_up()
    bus_machine.client().call("establishConnection")
    assert re.search("^" + STAMP + "Norvix_Daemon::debugHandler: i: 0 $", bus_machine.daemon_log(),
                     re.MULTILINE)
    assert "Debug: i: 0 \n" in daemon.output()


def test_without_the_switch_log_lines_are_not_printed(bus_machine):
    daemon = bus_machine.start_daemon()
    bus_machine.client().call("getIP", "none0")
    assert "getIP(): interface none0 is invalid!" in bus_machine.daemon_log()
    assert "getIP()" not in daemon.output()


def test_with_the_switch_log_lines_are_printed_without_a_prefix(bus_machine):
    daemon = bus_machine.start_daemon("-d")
    bus_machine.client().call("getIP", "none0")
    assert "\nNorvix_Daemon::getIP(): interface none0 is invalid!\n" in daemon.output()


def test_every_start_begins_a_fresh_log(bus_machine):
    bus_machine.path(LOG).write_text("from the last start\n", encoding="ascii")
    bus_machine.start_daemon()
    assert "from the last start" not in bus_machine.daemon_log()


def test_a_log_that_was_taken_away_is_made_again(bus_machine):
    bus_machine.start_daemon().wait_for_log("klogctl() <= 0!")  # the last line of the start
    bus_machine.path(LOG).unlink()
    bus_machine.client().call("getIP", "none0")
    assert len(bus_machine.daemon_log().splitlines()) == 1


def test_a_log_that_cannot_be_opened_is_skipped_silently(bus_machine):
    bus_machine.path(LOG).mkdir()
    daemon = bus_machine.start_daemon("-d")
    client = bus_machine.client()
    client.call("getIP", "none0")
    assert client.call("reply") is True
    assert "getIP(): interface none0 is invalid!" in daemon.output()
    assert bus_machine.path(LOG).is_dir()


def test_a_full_disk_does_not_stop_the_daemon(bus_machine):
    bus_machine.path(LOG).touch()
    bus_machine.path("/opt/norvix/.daemon_ng.ini").touch()
    client = bus_machine.client()
    daemon = bus_machine.start_daemon("-d")
    daemon.wait_started()
    bus_machine.run(["mount", "--bind", "/dev/full", LOG])
    bus_machine.run(["mount", "-t", "tmpfs", "-o", "size=4k", "none", "/var/log"])
    bus_machine.write("/var/log/full", b"x" * 4096)
    connected(bus_machine, client)
    client.wait_signal("transmissionSpeed")
    client.call("setIdlenessTime", 5)
    client.call("terminateConnection")
    assert client.call("getIdlenessTime") == 5
    assert daemon.running()


def test_without_its_folder_the_daemon_works_on(bus_machine):
    client = bus_machine.client()
    bus_machine.start_daemon("-d").wait_started()
    bus_machine.run(["mv", "/opt/norvix", "/opt/elsewhere"])
    connected(bus_machine, client)
    client.call("setIdlenessTime", 5)
    assert client.call("getIdlenessTime") == 5
    client.call("terminateConnection")
    assert client.call("reply") is True


def test_non_ascii_text_comes_through_unchanged(bus_machine):
    bus_machine.kernel_log.line_up()
    text = "Zugangsdaten für Björn – ünïcode ✓"
    bus_machine.pppd.script([out(text + "\n"), stay()])
    daemon = bus_machine.start_daemon("-d", env={"LC_ALL": "C"})
    bus_machine.client().call("establishConnection")
    daemon.wait_for_log("Norvix_Daemon::debugConnecting(): " + text + "\n")
    daemon.wait_for_output("Norvix_Daemon::debugConnecting(): " + text + "\n")


def test_what_a_client_sends_is_cut_and_makes_no_line_of_its_own(bus_machine):
    daemon = bus_machine.start_daemon("-d")
    client = bus_machine.client()
    forged = "x\n21-11-2026 20:00:00 Norvix_Daemon::debugConnecting(): PAP authentication failed"
    client.call("getIP", forged)
    client.call("getIP", "\x1b[31m\u202e")
    client.call("getIP", "y" * 10_000_000)
    client.call("getIP", "ünïq %1\\")
    log = bus_machine.daemon_log()
    texts = [line[20:] for line in log.splitlines() if "getIP(): interface" in line]
    assert texts == ["Norvix_Daemon::getIP(): interface %s is invalid!" % name for name in (
        forged.replace("\n", "\\u000a"), "\\u001b[31m\\u202e", "y" * 256, "ünïq %1\\")]
    assert not [line for line in log.splitlines() if line[20:].startswith("Norvix_Daemon::debugConn")]
    assert len(log) < 100_000 and len(daemon.output()) < 100_000


def test_a_pppd_that_prints_without_end_does_not_fill_the_disk(bus_machine):
    bus_machine.kernel_log.line_up()
    text = "".join("%06d %s\n" % (number, "z" * 990) for number in range(1000))
    bus_machine.pppd.script([out(text) for _ in range(40)] + [out("the end\n"), *link_up(), stay()])
    client = bus_machine.client()
    bus_machine.start_daemon().wait_started()
    client.call("establishConnection")
    while not client.named("connectionEstablished"):
        assert bus_machine.path(LOG).stat().st_size < 5_000_000
        client.call("reply")
    lines = [line[20:] for line in bus_machine.daemon_log().splitlines()]
    numbers = [line.split()[1] for line in lines if line.endswith("z")]
    assert numbers[:900] == ["%06d" % number for number in range(900)]
    last = lines.index("Norvix_Daemon::debugConnecting(): the end")
    assert [line.split()[1] for line in lines[last - 900:last]] == [
        "%06d" % number for number in range(100, 1000)]
    assert len([line for line in lines if "left out here" in line]) == 1


def test_the_log_of_an_older_long_attempt_is_put_aside(bus_machine):
    bus_machine.kernel_log.line_up()
    client = bus_machine.client()
    bus_machine.start_daemon().wait_started()
    bus_machine.pppd.script([out("one\n" + "z" * 1000 + "\n", repeat=1500), *link_up(), stay()])
    client.call("establishConnection")
    client.wait_signal("connectionEstablished")
    client.call("terminateConnection")
    client.wait_signal("connectionState")
    bus_machine.pppd.script([out("two\n"), *link_up(), stay()])
    client.call("establishConnection")
    client.wait_signal("connectionEstablished", count=2)
    assert "debugConnecting(): two" in bus_machine.daemon_log()
    assert "debugConnecting(): one" not in bus_machine.daemon_log()
    assert "debugConnecting(): one" in bus_machine.path(LOG + ".1").read_text(encoding="ascii")


def daily_logs(machine):
    folder = machine.path("/var/log/norvix")
    return sorted(folder.iterdir()) if folder.exists() else []


def restarted_under_a_connection(machine, env=None):
    """Leaves a running daemon that has found a connection and written its address down."""
    client = machine.client()
    daemon = machine.start_daemon(env=env)
    daemon.wait_started()
    connected(machine, client)
    daemon.stop()
    return machine.start_daemon(env=env)


def test_the_daily_log_has_the_days_name_and_dots_in_its_stamp(bus_machine):
    begun = time.time()
    restarted_under_a_connection(bus_machine, env={"TZ": "XYZ-11:00"})
    log = wait_until(lambda: daily_logs(bus_machine), what="a daily log")[0]
    assert log.name in [time.strftime("%d-%m-%Y.log", time.gmtime(moment + 11 * 3600))
                        for moment in (begun, time.time())]
    wait_for_line(log, r"^\d\d\.\d\d\.\d{4} \d\d:\d\d:\d\d: Registered IP: 10\.64\.0\.100$")


def test_a_removed_daily_log_folder_is_made_again(bus_machine):
    daemon = restarted_under_a_connection(bus_machine)
    wait_until(lambda: daily_logs(bus_machine), what="a daily log")
    daemon.stop()
    folder = bus_machine.path("/var/log/norvix")
    for file in daily_logs(bus_machine):
        file.unlink()
    folder.rmdir()
    bus_machine.start_daemon()
    wait_until(lambda: daily_logs(bus_machine), what="a daily log")


def test_a_daily_log_that_cannot_be_made_is_skipped_silently(bus_machine):
    bus_machine.path("/var/log/norvix").write_text("in the way\n", encoding="ascii")
    restarted_under_a_connection(bus_machine)
    assert bus_machine.client().call("reply") is True
    assert bus_machine.path("/var/log/norvix").read_text(encoding="ascii") == "in the way\n"


def test_a_daily_log_that_cannot_be_opened_is_skipped_silently(bus_machine):
    for day in range(2):
        name = time.strftime("%d-%m-%Y.log", time.gmtime(time.time() + day * 86400))
        (bus_machine.path("/var/log/norvix") / name).mkdir(parents=True)
    restarted_under_a_connection(bus_machine)
    assert bus_machine.client().call("reply") is True
    assert "QIODevice" not in bus_machine.daemon_log()


def test_each_side_of_midnight_has_its_own_file(bus_machine):
    # A zone in which the day ends in some seconds: more than a busy machine needs until its first line.
    seconds_to_midnight = 20
    offset = (24 * 3600 - seconds_to_midnight - int(time.time())) % (24 * 3600)
    zone = "XYZ-%02d:%02d:%02d" % (offset // 3600, offset // 60 % 60, offset % 60)
    client = bus_machine.client()
    restarted_under_a_connection(bus_machine, env={"TZ": zone})
    wait_until(lambda: len(daily_logs(bus_machine)) == 1, what="the first day's log")
    bus_machine.traffic(bytes_per_second=2000, seconds=2)
    client.wait_signal("transmissionBytes", where=lambda rx, tx: rx > 0 and tx > 0)
    midnight = time.time() + seconds_to_midnight

    wait_until(lambda: time.time() > midnight, what="midnight")
    # A link that has gone makes its counters read 0: the totals are written down.
    client.call("terminateConnection")
    bus_machine.pppd.script(link_up() + [stay()])
    client.call("establishConnection")

    def texts():
        return [file.read_text(encoding="ascii") for file in daily_logs(bus_machine)]

    wait_until(lambda: any("RX bytes: " in text and "TX bytes: " in text for text in texts()),
               what="the totals in the second day's log", detail=texts)
    assert len(texts()) == 2
    assert any("Registered IP: " in text and "bytes" not in text for text in texts())


@ROOT_ONLY
def test_on_a_full_disk_there_are_whole_lines_or_none(bus_machine):
    """The log lies on a disk of two pages, so that one line crosses the end of the last."""
    bus_machine.start_daemon().wait_started()  # its lines are not to be found there
    client = bus_machine.client()
    bus_machine.path("/run/small").mkdir()
    mount(bus_machine, "-t", "tmpfs", "-o", "size=8k", "tmpfs", "/run/small")
    bus_machine.path(LOG).unlink()
    bus_machine.path(LOG).symlink_to("/run/small/log")
    for number in range(70):
        client.call_raw("getIP", "s", "none%d" % number + "x" * 100)
    log = bus_machine.read("/run/small/log").decode()
    assert 7900 < len(log) <= 8192
    assert [line for line in log.splitlines() if not re.fullmatch(STAMP + ".* is invalid!", line)] == []
    assert log.endswith("\n")
