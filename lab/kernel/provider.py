# SPDX-License-Identifier: MIT
"""The provider at the far end of the line, with programs of the distribution.

PPP over Ethernet: the exchange's ATM circuit is bridged to an interface that lives in a network
namespace, where pppoe-server answers. PPP over ATM: ATM sockets exist in the first network
namespace only, so the provider's pppd runs there and its interface is kept apart in a VRF.
"""

import pathlib
import re
import shutil
import subprocess
import threading

from ..waiting import wait_until

HERE = pathlib.Path(__file__).resolve().parent
ROOM = HERE / "provider-room.sh"

# Another name than pppd: the daemon ends everything of that name, wherever it runs.
PPPD = pathlib.Path("/usr/local/sbin/provider-ppp")

ADDRESS, CLIENT_ADDRESS = "10.64.0.1", "10.64.0.100"
NAMESERVERS = ("10.64.0.53", "10.64.0.54")
CONCENTRATOR = "lab-concentrator"
NAMESPACE = "provider"
VRF, VRF_TABLE, VRF_UNIT = "visp", "77", "7"

ECHO_PORT = 7007

# Seconds of rest, so that a pppd that cannot start is not started without end.
BETWEEN_SESSIONS = 0.3

LOGIN, PASSWORD = "login@lab", "secret"

# Keeps the interface of PPP over ATM apart before it comes up. pppd waits for this script.
INTO_VRF = f"#!/bin/sh\nexec ip link set \"$1\" master {VRF}\n"


def make_denying_plugin(folder):
    """Builds the plugin that makes the provider say "permission denied"; returns its option."""
    made = pathlib.Path(folder) / "denying.so"
    said = command("pppd", "--version")
    version = re.search(r"[0-9.]+", said.stdout + said.stderr).group()
    command("cc", f'-DPPPD_VERSION="{version}"', "-shared", "-fPIC", "-o", str(made), str(HERE / "denying_plugin.c"))
    return f"plugin {made}"


def command(*arguments, check=True):
    return subprocess.run(arguments, check=check, capture_output=True, text=True, timeout=60)


class Provider:
    """Base: the provider's own files. `authentication` is "chap", "pap", "mschap-v2" or None."""

    nameservers = NAMESERVERS

    def __init__(self, folder, authentication="chap", login=LOGIN, password=PASSWORD, extra=()):
        self.folder = pathlib.Path(folder)
        self.log = self.folder / "log"
        self._authentication = authentication
        self._secret = (login, password)
        self._extra = extra
        self._processes = []

    def _write_files(self, script=None):
        """What the provider's programs find as /etc/ppp."""
        etc = self.folder / "etc"
        shutil.rmtree(self.folder, ignore_errors=True)
        etc.mkdir(parents=True)
        if not PPPD.exists():
            PPPD.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy("/usr/sbin/pppd", PPPD)
        self._write_secrets()
        (etc / "options").write_text("")
        (etc / "server").write_text("\n".join(self._options()) + "\n")
        if script:
            (etc / "ip-pre-up").write_text(script)
            (etc / "ip-pre-up").chmod(0o755)

    def _write_secrets(self):
        login, password = self._secret
        for name in ("chap-secrets", "pap-secrets"):
            secrets = self.folder / "etc" / name
            secrets.write_text(f'"{login}" * "{password}" *\n')
            secrets.chmod(0o600)

    def _options(self):
        options = ["name provider", "noipv6", "nodefaultroute", "noaccomp", "nopcomp",
                   "lcp-echo-interval 10", "lcp-echo-failure 3", "debug",
                   *(f"ms-dns {server}" for server in self.nameservers), *self._extra]
        options.append(f"require-{self._authentication}" if self._authentication else "noauth")
        return options

    def _start(self, *arguments):
        with open(self.log, "ab") as log:
            process = subprocess.Popen(arguments, stdin=subprocess.DEVNULL, stdout=log,
                                       stderr=subprocess.STDOUT, start_new_session=True)
        self._processes.append(process)
        return process

    def _in_room(self, *arguments):
        return ("unshare", "--mount", "/bin/sh", str(ROOM), str(self.folder / "etc"), *arguments)

    def said(self):
        """What the provider's programs have written."""
        return self.log.read_text(errors="replace") if self.log.exists() else ""

    def hang_up(self):
        """Ends every session at once, without a word over the line; new ones are possible."""
        command("killall", "-9", PPPD.name, check=False)

    def say_goodbye(self):
        """Ends every session as PPP wants it; new ones are possible."""
        command("killall", "-TERM", PPPD.name, check=False)

    def change_password(self, password):
        """From the next session on it wants this one."""
        login, _ = self._secret
        self._secret = (login, password)
        self._write_secrets()

    def stop(self):
        for process in self._processes:
            process.terminate()
        self.hang_up()
        for process in self._processes:
            process.wait(timeout=30)
        self._processes.clear()


class PppoeProvider(Provider):
    """Answers discovery on the exchange's end of a circuit."""

    interface = "nas1"
    namespace = NAMESPACE
    address, client_address = ADDRESS, CLIENT_ADDRESS

    def __init__(self, folder, circuit="8.35", **account):
        super().__init__(folder, **account)
        self._circuit = circuit

    def start(self):
        self._write_files()
        command("ip", "netns", "add", self.namespace)
        self._make_interface()
        command("ip", "link", "set", self.interface, "netns", self.namespace)
        for name in ("lo", self.interface):
            command("ip", "-n", self.namespace, "link", "set", name, "up")
        self.serve()
        self._start("ip", "netns", "exec", self.namespace, "/usr/bin/python3",
                    str(HERE / "echo_server.py"), str(ECHO_PORT))

    def _make_interface(self):
        command("br2684ctl", "-b", "-c", "1", "-e", "0", "-a", f"1.{self._circuit}")
        wait_until(lambda: pathlib.Path("/sys/class/net/nas1").exists(), what="nas1 exists")

    def serve(self):
        """Begins to answer discovery."""
        self._server = self._start(
            "ip", "netns", "exec", self.namespace, *self._in_room(
                "pppoe-server", "-F", "-I", self.interface, "-C", CONCENTRATOR, "-L", self.address,
                "-R", self.client_address, "-N", "8", "-O", "/etc/ppp/server", "-q", str(PPPD),
                "-Q", "/usr/sbin/pppoe"))

    def is_answering(self):
        """Whether the server, started a moment ago, has got as far."""
        name = pathlib.Path(f"/proc/{self._server.pid}/comm").read_text(encoding="ascii")
        return name == "pppoe-server\n"

    def fall_silent(self):
        """Answers nobody any more; sessions that are up stay."""
        self._server.terminate()
        self._server.wait(timeout=30)
        self._processes.remove(self._server)

    def stop(self):
        super().stop()
        pid_file = pathlib.Path("/run/br2684ctl-nas1.pid")
        if pid_file.exists():
            command("kill", "-9", pid_file.read_text().strip(), check=False)
            pid_file.unlink()
        command("ip", "netns", "del", self.namespace, check=False)


class CableProvider(PppoeProvider):
    """Answers discovery at the far end of dsl0, which is there instead of a unicorn modem's."""

    interface = "dsl0-far"

    def _make_interface(self):
        command("ip", "link", "add", "dsl0", "type", "veth", "peer", "name", self.interface)


class PppoaProvider(Provider):
    """Speaks PPP on a circuit of the exchange; one session at a time."""

    def __init__(self, folder, circuit="8.35", **account):
        super().__init__(folder, **account)
        self._circuit = circuit

    def start(self):
        self._write_files(INTO_VRF)
        command("ip", "link", "add", VRF, "type", "vrf", "table", VRF_TABLE)
        command("ip", "link", "set", VRF, "up")
        # The rule of the VRF has to come before the one that knows every local address.
        command("ip", "rule", "add", "pref", "2000", "lookup", "local")
        command("ip", "rule", "del", "pref", "0")
        self.serve()
        self._start("/usr/bin/python3", str(HERE / "echo_server.py"), str(ECHO_PORT), VRF)

    def serve(self):
        """Begins to speak PPP. Each session gets a pppd of its own: one that persists keeps what it
        knew of the last peer."""
        self._stopping = threading.Event()
        self._server = threading.Thread(target=self._serve, daemon=True)
        self._server.start()

    def _serve(self):
        while not self._stopping.wait(BETWEEN_SESSIONS):
            session = self._start(*self._in_room(
                str(PPPD), "plugin", "pppoatm.so", f"1.{self._circuit}", "file",
                "/etc/ppp/server", f"{ADDRESS}:{CLIENT_ADDRESS}", "unit", VRF_UNIT, "nodetach",
                "passive"))
            session.wait()
            self._processes.remove(session)

    def fall_silent(self):
        """Ends the session without a word and answers nobody any more."""
        self._stopping.set()
        self.hang_up()
        self._server.join(timeout=30)

    def stop(self):
        self.fall_silent()
        super().stop()
        command("ip", "rule", "add", "pref", "0", "lookup", "local", check=False)
        command("ip", "rule", "del", "pref", "2000", check=False)
        command("ip", "link", "del", VRF, check=False)
