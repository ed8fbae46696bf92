# SPDX-License-Identifier: MIT
"""Being asked for an administrator's password, and what the person does then."""
import json
import socket
import threading
from pathlib import Path

from ..machine.standin_control import install
from ..waiting import PATIENCE, wait_until

STANDIN = Path(__file__).with_name("pkexec")
OF_THE_HOST = "/usr/bin/pkexec"
# What the real one answers. 126: the dialog was closed; 127: not authorised, or it went wrong.
CANCELLED = (126, "Error executing command as another user: Request dismissed\n")
REFUSED = (127, "Error executing command as another user: Not authorized\n\n"
                "This incident has been reported.\n")
OPTIONS = ("--disable-internal-agent", "--keep-cwd")


class Pkexec:
    """The pkexec of one session. Set .behaviour: "run" (the password was right: the program runs as
    root in the machine), "refuse", "cancel", or "hang" (the dialog stays open until the behaviour
    changes). calls: the arguments of each call, oldest first."""

    def __init__(self, session):
        self._session = session
        self._changed = threading.Condition()
        self._behaviour = "run"
        self.calls = []
        self._file = session.machine.path(session.programs) / "pkexec"
        install(STANDIN, self._file)
        self._listener = socket.socket(socket.AF_UNIX)
        place = session.machine.path(session.runtime_folder) / "pkexec"
        self._listener.bind(str(place))
        place.chmod(0o666)
        self._listener.listen()
        threading.Thread(target=self._listen, daemon=True).start()

    @property
    def behaviour(self):
        return self._behaviour

    @behaviour.setter
    def behaviour(self, behaviour):
        assert behaviour in ("run", "refuse", "cancel", "hang")
        with self._changed:
            self._behaviour = behaviour
            self._changed.notify_all()

    def remove(self):
        """There is no pkexec on this system."""
        self._file.unlink()
        if Path(OF_THE_HOST).exists():
            self._session.machine.request("hide", path=OF_THE_HOST)

    def stand_aside(self):
        """The system's own is found instead, for a machine in which polkit runs: see polkit.py."""
        self._file.unlink()

    def wait_call(self, count=1, timeout=PATIENCE):
        """Waits for the count-th call and returns its arguments."""
        return wait_until(lambda: self.calls[count - 1:count], timeout, "call %d of pkexec" % count,
                          lambda: self.calls)[0]

    def close(self):
        self.behaviour = "refuse"
        self._listener.close()

    def _listen(self):
        while True:
            try:
                connection, _ = self._listener.accept()
            except OSError:
                return
            threading.Thread(target=self._serve, args=(connection,), daemon=True).start()

    def _serve(self, connection):
        with connection:
            line = connection.makefile().readline()
            if not line:
                return
            argv = json.loads(line)
            self.calls.append(argv)
            with self._changed:
                self._changed.wait_for(lambda: self._behaviour != "hang")
                behaviour = self._behaviour
            status, stdout, stderr = self._answer(behaviour, argv)
            try:
                connection.sendall(json.dumps({"status": status, "stdout": stdout,
                                               "stderr": stderr}).encode() + b"\n")
            except OSError:  # it did not wait
                pass

    def _answer(self, behaviour, argv):
        if behaviour != "run":
            status, text = CANCELLED if behaviour == "cancel" else REFUSED
            return status, "", text
        while argv and argv[0] in OPTIONS:
            argv = argv[1:]
        try:
            # The real one, too, hands over nothing of the caller's environment but who it is.
            return self._session.machine.run(argv, label="pkexec",
                                             env={"HOME": "/root", "USER": "root", "LOGNAME": "root",
                                                  "PKEXEC_UID": str(self._session.uid)})
        except OSError as error:
            return 127, "", "Error executing %s: %s\n" % (argv, error)
