# SPDX-License-Identifier: MIT
"""The private machine itself: what it gives the tests, and that it leaves the host alone."""
import os
import signal
import subprocess
import sys
import textwrap
from pathlib import Path

import pytest
from machine_fixtures import ROOT_ONLY

from lab.machine import pppd_script as scenario
from lab.machine.bus_client import BusError
from lab.machine.kernel_log import RealKernelLog
from lab.machine.private_machine import REPOSITORY, processes_inside
from lab.waiting import wait_until

RECORDINGS = sorted(path.name[:-len(".txt.timed")] for path in scenario.RECORDINGS.glob("*.timed"))


def host_state(*folders):
    """Everything of the host that a machine could disturb."""
    listing = subprocess.run(["find", *folders, "-xdev", "-maxdepth", "2", "-printf", "%p %T@\n"],
                             stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    return {"files": sorted(listing.stdout.splitlines()),
            "interfaces": sorted(os.listdir("/sys/class/net")),
            "routes": Path("/proc/net/route").read_text(encoding="ascii"),
            "mounts": Path("/proc/self/mountinfo").read_text(encoding="utf-8")}


def connect(machine, **play):
    """Runs the pppd stand-in alone until its interface has its address."""
    machine.pppd.play(speed=100, **play)
    pppd = machine.spawn(["/usr/local/sbin/pppd", "debug", "linkname", "norvix", "call", "norvix"])
    wait_until(lambda: "10.64.0.100" in machine.run(["/usr/sbin/ip", "-br", "addr"]).stdout,
               what="ppp0 has its address")
    return pppd


def counter(machine, name):
    return int(machine.read("/sys/class/net/ppp0/statistics/" + name))


def traces_of(state):
    """What is left of a machine on the host."""
    left = [str(state)] if state.exists() else []
    return left + processes_inside(state.name)


def test_the_readmes_example_runs_as_it_stands():
    readme = (REPOSITORY / "lab/machine/README.md").read_text(encoding="utf-8")
    example = readme.partition("```python\n")[2].partition("```")[0]
    subprocess.run([sys.executable, "-B", "-"], cwd=REPOSITORY, input=example, check=True, text=True)


def test_the_host_is_untouched_by_files_interfaces_and_mounts(new_machine):
    def is_untouched():
        folders = ("/run", "/opt", "/etc", "/var/log", "/usr/local/sbin")
        before = host_state(*folders)
        machine = new_machine()
        machine.start_bus()
        connect(machine)
        machine.path("/etc/resolv.conf").write_text("nameserver 192.0.2.1\n", encoding="ascii")
        machine.run(["/bin/sh", "-c", "date > /run/x; date > /opt/x; date > /var/log/x; date > /etc/x"])
        assert machine.path("/run/x").exists() and machine.path("/opt/x").exists()
        assert machine.path("/var/log/x").exists() and machine.path("/etc/x").exists()
        return host_state(*folders) == before

    # The host has a life of its own; what a machine disturbs, each one does.
    assert any(is_untouched() for _ in range(5))


def test_what_is_not_private_is_read_only(machine):
    for folder in ("/usr", "/var/lib", "/root", "/mnt/host-etc"):
        refused = machine.run(["/usr/bin/touch", folder + "/written-by-norvix-lab"])
        assert refused.status != 0
        assert not os.path.exists(folder + "/written-by-norvix-lab")


def printed(machine, *argv, **options):
    """What a program inside prints; it has to end well."""
    result = machine.run(argv, **options)
    assert result.status == 0, result.stderr
    return result.stdout


def test_no_account_of_the_host_is_known_inside(machine):
    users = [line.split(":")[0] for line in printed(machine, "getent", "passwd").splitlines()]
    groups = [line.split(":")[0] for line in printed(machine, "getent", "group").splitlines()]
    assert users == ["root", "user", "nobody"]
    assert groups == ["root", "tty", "dip", "user", "norvix", "nogroup"]
    assert printed(machine, "id", "-un", "1000") == "user\n"


def test_the_hosts_name_and_identity_are_not_known_inside(machine):
    assert printed(machine, "uname", "-n") == "norvix-lab\n"
    assert printed(machine, "cat", "/etc/hostname") == "norvix-lab\n"
    assert printed(machine, "getent", "hosts", "norvix-lab").startswith("127.0.0.1 ")
    own = printed(machine, "cat", "/etc/machine-id", "/var/lib/dbus/machine-id").split()
    assert own[0] == own[1] and len(own[0]) == 32
    hosts = [Path(name) for name in ("/etc/machine-id", "/var/lib/dbus/machine-id")]
    assert own[0] not in [file.read_text(encoding="ascii").strip() for file in hosts if file.exists()]


def test_a_machine_takes_no_file_of_etc_but_what_programs_are_found_by(machine):
    links = printed(machine, "find", "/etc", "-type", "l", "-lname", "/mnt/*").split()
    assert sorted(links) == ["/etc/alternatives", "/etc/ld.so.cache", "/etc/ld.so.conf",
                             "/etc/ld.so.conf.d"]
    shown = printed(machine, "ls", "/mnt/host-etc").split()
    assert set(shown) <= {os.path.basename(link) for link in links}


def test_it_is_utc_inside_whatever_the_zone_of_the_host(new_machine, monkeypatch):
    monkeypatch.setenv("TZ", "Asia/Kathmandu")
    assert printed(new_machine(), "date", "+%Z %z") == "UTC +0000\n"


def test_no_locale_but_that_of_c_is_there_until_it_is_added(new_machine, monkeypatch):
    monkeypatch.setenv("LC_ALL", "de_DE.UTF-8")
    machine = new_machine()
    assert set(printed(machine, "locale", "-a").split()) <= {"C", "C.utf8", "C.UTF-8", "POSIX"}
    assert "LC_ALL=\n" in printed(machine, "locale")


@pytest.mark.parametrize("name", ["de_DE", "tr_TR", "fa_IR"])
def test_an_added_locale_is_accepted(machine, name):
    machine.add_locale(name)
    code = "import locale; print(locale.setlocale(locale.LC_ALL, '%s.UTF-8'))" % name
    assert printed(machine, "/usr/bin/python3", "-c", code) == name + ".UTF-8\n"


def test_no_firmware_of_the_host_is_there(machine):
    assert printed(machine, "ls", "-A", "/lib/firmware/") == ""
    machine.path("/usr/lib/firmware/cxacru-fw.bin").write_bytes(b"firmware")
    assert printed(machine, "cat", "/lib/firmware/cxacru-fw.bin") == "firmware"


def test_a_folder_that_the_host_lacks_can_be_private(new_machine):
    missing = ["/usr/lib/norvix-lab-missing/deep", "/usr/lib/norvix-lab-missing/deeper",
               "/var/lib/norvix-lab-missing"]
    machine = new_machine(private_folders=missing)
    for folder in missing:
        machine.run(["/bin/sh", "-c", "echo inside > %s/file" % folder])
        assert machine.path(folder + "/file").read_text(encoding="ascii") == "inside\n"
        assert not os.path.exists(folder)
    assert machine.run(["/usr/bin/touch", "/usr/lib/written-by-norvix-lab"]).status != 0


def test_only_a_few_devices_are_there(machine):
    nodes = printed(machine, "sh", "-c", "cd /dev && for name in * */*; do"
                    " { [ -b $name ] || [ -c $name ]; } && [ ! -L $name ] && echo $name; done; true")
    allowed = {"null", "zero", "full", "random", "urandom", "tty", "net/tun", "pts/ptmx"}
    assert allowed - {"net/tun"} <= set(nodes.split()) <= allowed


def test_devices_can_be_used_by_everyone(machine):
    uid = 1000 if machine.rooted else 0
    assert printed(machine, "sh", "-c", "head -c 3 /dev/zero > /dev/null; echo $?", uid=uid) == "0\n"
    code = "import os, pty; print(os.ttyname(pty.openpty()[1]))"
    assert printed(machine, "/usr/bin/python3", "-c", code, uid=uid).startswith("/dev/pts/")
    assert machine.run(["sh", "-c", "echo x > /dev/full"], uid=uid).status != 0
    assert printed(machine, "sh", "-c", "touch /dev/shm/x && ls /dev/shm", uid=uid) == "x\n"
    assert not os.path.exists("/dev/shm/x")


def test_a_replaced_device_is_replaced_inside_only(machine):
    before = [os.stat("/dev/" + name) for name in ("zero", "null")]
    machine.run(["sh", "-c", "echo no device > /dev/new && mv -f /dev/new /dev/zero; rm -f /dev/null"])
    if machine.rooted:
        assert machine.read("/dev/zero") == b"no device\n"
    after = [os.stat("/dev/" + name) for name in ("zero", "null")]
    assert [(one.st_ino, one.st_rdev) for one in after] == [(one.st_ino, one.st_rdev) for one in before]
    assert not os.path.exists("/dev/new")


def test_of_the_kernels_settings_only_those_of_the_own_network_can_be_written(machine):
    for file in ("/sys/class/net/lo/mtu", "/proc/sys/kernel/printk", "/proc/sysrq-trigger"):
        assert machine.run(["sh", "-c", ": >> " + file]).status != 0, file
    machine.write("/proc/sys/net/ipv4/ip_forward", b"1\n")
    assert machine.read("/proc/sys/net/ipv4/ip_forward") == b"1\n"


def test_a_pppd_of_the_host_survives_what_the_daemon_kills(bus_machine):
    code = "open('/proc/self/comm', 'w').write('pppd'); print('named', flush=True); input()"
    with subprocess.Popen(["/usr/bin/python3", "-c", code], stdin=subprocess.PIPE,
                          stdout=subprocess.PIPE) as namesake:
        assert namesake.stdout.readline() == b"named\n"
        assert Path("/proc/%d/comm" % namesake.pid).read_text(encoding="ascii") == "pppd\n"
        bus_machine.start_daemon()
        bus_machine.client().call("terminateConnection")
        bus_machine.wait_call("killall")
        assert bus_machine.calls("killall")[0].argv[:2] == ["-9", "pppd"]
        wait_until(lambda: not bus_machine.processes("killall"), what="killall has ended")
        assert namesake.poll() is None
        namesake.stdin.write(b"\n")


def test_files_written_inside_are_seen_outside_and_the_other_way_round(machine):
    machine.run(["/bin/sh", "-c", "echo inside > /var/run/one"])
    assert machine.path("/run/one").read_text(encoding="ascii") == "inside\n"
    machine.path("/var/lock/two").write_text("outside", encoding="ascii")
    assert machine.run(["/usr/bin/cat", "/run/lock/two"]).stdout == "outside"


def test_the_resolver_configuration_can_be_replaced_by_renaming(machine):
    machine.run(["/bin/sh", "-c", "echo fresh > /etc/r.new && mv /etc/r.new /etc/resolv.conf"])
    assert machine.path("/etc/resolv.conf").read_text(encoding="ascii") == "fresh\n"


def test_the_status_of_an_orphan_is_recorded(machine):
    machine.run(["/bin/sh", "-c", "(sleep 0.1; exit 42) & echo gone"])
    record = wait_until(lambda: [r for r in machine.exits() if r["status"] == 42], what="the orphan")
    assert record[0]["comm"] == "sh"


def test_a_killed_process_has_its_signal_as_negative_status(machine):
    process = machine.spawn(["/usr/bin/sleep", "1000"])
    process.signal(signal.SIGKILL)
    assert process.wait() == -9


def test_a_program_that_is_not_there_cannot_be_started(machine):
    with pytest.raises(FileNotFoundError):
        machine.run(["/usr/bin/no-such-program"])


def test_the_counters_are_the_kernels_own(machine):
    connect(machine)
    received, sent = counter(machine, "rx_bytes"), counter(machine, "tx_bytes")
    traffic = machine.traffic(200000, 0.5)
    assert traffic.wait() == 0, traffic.errors()
    told = int(traffic.output())
    assert told > 0
    # They are counted when the far end takes them.
    wait_until(lambda: counter(machine, "tx_bytes") - sent >= told, what="all of it has gone out")
    wait_until(lambda: counter(machine, "rx_bytes") - received >= told, what="the answers arrived")
    assert not Path("/sys/class/net/ppp0").exists()


def test_the_far_end_can_send_more_than_it_gets(machine):
    connect(machine, answers=5)
    traffic = machine.traffic(50000, 0.4)
    traffic.wait()
    wait_until(lambda: counter(machine, "rx_bytes") >= 5 * int(traffic.output()), what="answers")


def test_the_far_end_answers_an_echo_request(machine):
    connect(machine)
    probe = textwrap.dedent("""
        import socket
        s = socket.socket(socket.AF_INET, socket.SOCK_RAW, socket.IPPROTO_ICMP)
        s.settimeout(10)
        s.sendto(bytes.fromhex("0800f7ff00000000"), ("10.64.0.1", 0))
        while True:
            packet, sender = s.recvfrom(1000)
            if packet[20] == 0:
                print(sender[0])
                break
        """)
    assert machine.run(["/usr/bin/python3", "-c", probe]).stdout == "10.64.0.1\n"


def test_the_interface_and_pid_files_go_with_a_terminated_pppd(machine):
    pppd = connect(machine)
    assert machine.path("/run/ppp-norvix.pid").read_text(encoding="ascii") == "%d\nppp0\n" % pppd.pid
    assert machine.path("/run/ppp0.pid").read_text(encoding="ascii") == "%d\n" % pppd.pid
    pppd.signal()
    assert pppd.wait() == 5
    assert pppd.output().endswith("status = 0x0\n")
    assert not list(machine.path("/run").glob("ppp*.pid"))


def test_a_killed_pppd_leaves_its_pid_files_but_no_interface(machine):
    pppd = connect(machine)
    pppd.signal(signal.SIGKILL)
    assert pppd.wait() == -9
    assert len(list(machine.path("/run").glob("ppp*.pid"))) == 2
    wait_until(lambda: "ppp0" not in machine.run(["/usr/sbin/ip", "-br", "addr"]).stdout,
               what="ppp0 is gone")


def test_a_detaching_pppd_ends_well_and_leaves_a_child_with_the_interface(machine):
    parent = connect(machine, mode="updetach")
    assert parent.wait() == 0
    assert parent.output().endswith("updetach is set. Now detaching.\n")
    [child] = machine.processes("pppd")
    wait_until(lambda: machine.path("/run/ppp0.pid").read_text(encoding="ascii")
               == "%d\n" % child["pid"], what="the pid file names the child")
    assert "10.64.0.100" in machine.run(["/usr/sbin/ip", "-br", "addr"]).stdout
    machine.run(["/usr/bin/killall", "pppd"])
    wait_until(lambda: not machine.processes("pppd"), what="the child has ended")
    assert not list(machine.path("/run").glob("ppp*.pid"))


@pytest.mark.parametrize("name", RECORDINGS)
def test_a_recording_is_played_byte_for_byte(machine, name):
    if name == "g1-persist-peer-hangs-up" or name.startswith("j"):
        speed = 1000
    else:
        speed = 200
    machine.pppd.play(name, speed=speed)
    pppd = machine.spawn(["/usr/local/sbin/pppd", "linkname", "norvix"])
    expected = (scenario.RECORDINGS / (name + ".txt")).read_text(encoding="utf-8")
    stays = scenario.recorded(name)[0][-1].get("stay")
    if stays:
        written = expected[:expected.rfind("Terminating on signal")] if (
            "Terminating on signal" in expected) else expected
        wait_until(lambda: len(pppd.output()) >= len(written), what="all is written",
                   detail=pppd.output)
        pppd.signal()
    pppd.wait()
    assert pppd.output().startswith(expected)


def test_scripted_steps_wait_for_their_trigger(machine):
    machine.pppd.script([scenario.out("one\n"), scenario.wait_for("more"),
                         scenario.out(b"\0\xff", repeat=3), scenario.err("bad\n"), scenario.end(7)])
    pppd = machine.spawn(["/usr/local/sbin/pppd"])
    wait_until(lambda: pppd.output() == "one\n", what="the first line")
    machine.pppd.trigger("more")
    assert pppd.wait() == 7
    assert pppd.stdout_path.read_bytes() == b"one\n" + b"\0\xff" * 3
    assert pppd.errors() == "bad\n"


def test_calls_are_recorded_with_arguments_environment_and_descriptors(machine):
    machine.run(["/usr/local/sbin/modprobe", "br2684"], env={"MARK": "1"})
    call = machine.wait_call("modprobe")
    assert call.argv == ["br2684"] and call.env["MARK"] == "1"
    assert sorted(call.fds) == ["0", "1", "2"]


def test_calls_are_recorded_whatever_their_arguments_hold(machine):
    arguments = ["", 'a"b\\c', "line\nline\t\x01", "gr\u00fc\u00dfe", "\udcff\udcc3"]
    machine.run(["/usr/local/sbin/modprobe", *arguments], env={"MARK": "\udcff=\""})
    call = machine.wait_call("modprobe")
    assert call.argv == arguments and call.env["MARK"] == "\udcff=\""


def test_a_stand_in_does_as_scripted_and_then_as_usual(machine):
    modprobe = machine.standin("modprobe")
    modprobe.set(stdout="out\n", stderr="err\n", exit=3)
    assert machine.run(["/usr/local/sbin/modprobe", "x"]) == (3, "out\n", "err\n")
    modprobe.set()
    assert machine.run(["/usr/local/sbin/modprobe", "x"]) == (0, "", "")


def test_a_missing_program_is_nowhere_on_the_path_and_comes_back(machine):
    env = {"PATH": "/usr/local/sbin:/usr/bin:/usr/sbin"}
    machine.standin("ifconfig").set(missing=True)
    assert machine.run(["/bin/sh", "-c", "ifconfig lo"], env=env).status != 0
    machine.standin("ifconfig").set()
    assert "127.0.0.1" in machine.run(["/bin/sh", "-c", "ifconfig lo"], env=env).stdout


def test_the_bridge_makes_nas0_and_killing_it_takes_nas0_away(machine):
    bridge = ["/opt/norvix/bin/br2684ctl_amd64", "-b", "-c", "0", "-e", "0", "-a", "8.35"]
    assert machine.run(bridge).status == 0
    assert "nas0" in machine.run(["/usr/sbin/ip", "-br", "link"]).stdout
    assert machine.run(bridge).status == 254
    machine.run(["/usr/bin/killall", "-9", "br2684ctl_amd64"])
    wait_until(lambda: "nas0" not in machine.run(["/usr/sbin/ip", "-br", "link"]).stdout,
               what="nas0 is gone")
    assert machine.run(bridge[:-1] + ["0.0"]).status == 254


def test_the_bus_denies_owning_names_and_calls_by_default(bus_machine):
    client = bus_machine.client()
    with pytest.raises(BusError) as refused:
        client.call_bus("RequestName", "su", "org.example.Thing", 0)
    assert refused.value.name == "org.freedesktop.DBus.Error.AccessDenied"


@ROOT_ONLY
def test_a_client_can_be_any_user(bus_machine):
    watcher, other = bus_machine.client(), bus_machine.client(uid=65534)
    assert watcher.call_bus("GetConnectionUnixUser", "s", other.unique_name) == 65534


def test_the_daemon_starts_answers_and_ends_with_its_status(bus_machine):
    daemon = bus_machine.start_daemon()
    assert daemon.parent_status() == 0
    assert bus_machine.client().call("reply") is True
    assert daemon.stop() == 255


def test_the_daemon_reads_the_kernel_log_of_the_test(bus_machine):
    bus_machine.kernel_log.line_up()
    daemon = bus_machine.start_daemon("-v")
    daemon.wait_for_output("getModemState(): synchronized.")


def test_the_daemon_can_fail_to_fork(bus_machine):
    daemon = bus_machine.start_daemon(env={"NORVIX_LAB_FORK_FAILS": "1"}, wait=False)
    assert daemon.parent_status() == 255


@pytest.mark.skipif(RealKernelLog.reason_to_skip() != "", reason=RealKernelLog.reason_to_skip())
def test_the_daemon_reads_the_real_kernel_log(new_machine):
    machine = new_machine(real_kernel_log=True)
    machine.start_bus()
    machine.kernel_log.line_up()
    daemon = machine.start_daemon("-v")
    daemon.wait_for_output("getModemState(): synchronized.")


def test_several_machines_run_at_once(new_machine):
    machines = [new_machine() for _ in range(3)]
    for machine in machines:
        machine.start_bus()
        machine.start_daemon()
    assert len({machine.client().call_bus("GetId") for machine in machines}) == 3


def test_nothing_is_left_when_a_machine_is_left(new_machine):
    machine = new_machine()
    machine.start_bus()
    machine.start_daemon()
    connect(machine)
    machine.__exit__(None, None, None)
    assert traces_of(machine.state) == []


@pytest.mark.parametrize("number", [signal.SIGKILL, signal.SIGTERM])
def test_nothing_is_left_when_the_maker_is_killed(number):
    code = textwrap.dedent("""
        import sys
        sys.path.insert(0, %r)
        from lab.machine.private_machine import PrivateMachine
        with PrivateMachine() as machine:
            machine.start_bus()
            machine.start_daemon()
            print(machine.state, flush=True)
            machine.run(["/usr/bin/sleep", "1000"], timeout=1000)
        """ % str(REPOSITORY))
    maker = subprocess.Popen([sys.executable, "-c", code], stdout=subprocess.PIPE, text=True)
    state = Path(maker.stdout.readline().strip())
    assert state.exists() and traces_of(state)
    maker.send_signal(number)
    maker.wait()
    maker.stdout.close()
    wait_until(lambda: not traces_of(state), what="all is gone", detail=lambda: traces_of(state))
