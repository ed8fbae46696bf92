# SPDX-License-Identifier: MIT
"""The distribution's own polkit in a private machine: polkitd on the system bus, pkexec, PAM; and the
program of the session that asks for the password, played by the test."""
import threading
from pathlib import Path

from jeepney import HeaderFields, new_error, new_method_return

from .bus_service import BusService
from ..machine.private_machine import REPOSITORY
from ..waiting import PATIENCE, wait_until

ACTIONS = "/usr/share/polkit-1"  # private to the machine: PrivateMachine(private_folders=FOLDERS)
FOLDERS = [ACTIONS]
DAEMON, HELPER = "/usr/lib/polkit-1/polkitd", "/usr/lib/polkit-1/polkit-agent-helper-1"
BUS_POLICY = Path("/usr/share/dbus-1/system.d/org.freedesktop.PolicyKit1.conf")
OUR_POLICY = REPOSITORY / "packaging/com.norvix.desktop.policy"
AUTHORITY = {"service": "org.freedesktop.PolicyKit1", "path": "/org/freedesktop/PolicyKit1/Authority",
             "interface": "org.freedesktop.PolicyKit1.Authority"}
# As on a Debian system, whose rule is that administrators are the members of the group sudo.
RULE = 'polkit.addAdminRule(function(action, subject) { return ["unix-group:sudo"]; });\n'
ADMINISTRATOR, NUMBER, PASSWORD = "boss", 1990, "right horse"
# That password as crypt(3) keeps it.
HASH = ("$6$norvixlab$bcaYpTukwevQvjZQfTfGRXUc5NXKj84uXmsq"
        "F4DazCmJm5uEUSzmR6QFF82qn06ZM14T71UUqGM4ghEn6Terh/")
PAM = {"common-auth": "auth required pam_unix.so\n", "common-account": "account required pam_unix.so\n",
       "common-password": "", "common-session-noninteractive": "session required pam_permit.so\n"}


class Polkit:
    """One administrator, who is in the group sudo. For the machine's system bus, which must run."""

    def __init__(self, machine):
        self.machine = machine
        self._furnish()
        self._root = machine.client()
        self._root.call_bus("ReloadConfig")
        self._start()

    def _start(self):
        self._daemon = self.machine.spawn([DAEMON, "--no-debug"], label="polkitd")
        wait_until(lambda: self._root.owner_of(AUTHORITY["service"]), what="polkit is on the bus",
                   detail=self._daemon.errors)

    def restart(self):
        """Reads rules anew, and has forgotten who asks for passwords."""
        self._daemon.signal()
        self._daemon.wait()
        wait_until(lambda: not self._root.owner_of(AUTHORITY["service"]), what="polkit has left the bus")
        self._start()

    def agent(self, session):
        """What asks for passwords in that session, once it watches a program."""
        return session.machine.client(session.uid, kind=Agent)

    def _furnish(self):
        path = self.machine.path
        for folder in (ACTIONS + "/actions", ACTIONS + "/rules.d", "/etc/polkit-1/rules.d", "/etc/pam.d"):
            path(folder).mkdir(parents=True)
        (path(ACTIONS) / "rules.d/50-default.rules").write_text(RULE, encoding="ascii")
        (path(ACTIONS) / "actions" / OUR_POLICY.name).write_bytes(OUR_POLICY.read_bytes())
        for name, text in PAM.items():
            (path("/etc/pam.d") / name).write_text(text, encoding="ascii")
        own = next(line for line in Path("/etc/passwd").read_text(encoding="utf-8").splitlines()
                   if line.startswith("polkitd:"))
        append(path("/etc/passwd"), own, "%s:x:%d:%d::/:/bin/sh" % (ADMINISTRATOR, NUMBER, NUMBER))
        append(path("/etc/group"), "sudo:x:27:" + ADMINISTRATOR, "polkitd:x:%s:" % own.split(":")[3])
        shadow = path("/etc/shadow")
        shadow.write_text("%s:%s:20000:0:99999:7:::\n" % (ADMINISTRATOR, HASH), encoding="ascii")
        shadow.chmod(0o600)
        bus = path("/etc/dbus-1/system.d") / BUS_POLICY.name
        bus.write_bytes(BUS_POLICY.read_bytes())


def append(file, *lines):
    text = file.read_text(encoding="ascii")
    file.write_text(text + "".join(line + "\n" for line in lines), encoding="ascii")


class Agent(BusService):
    """Asks for the password on behalf of one program, whose number is told with watch(). answers: what
    the person does with one question after another: a password, or None to close the dialog; who has
    nothing left to say leaves it open. asked: (action, message, user names) of each question."""

    PATH, INTERFACE = "/agent", "org.freedesktop.PolicyKit1.AuthenticationAgent"
    TRIES = 3  # as the agents of desktops

    def __init__(self, sock, uid):
        self.machine = None
        self.uid = uid
        self.answers, self.asked = [], []
        super().__init__(sock, uid)

    def watch(self, process):
        """From now on this agent is asked when that program wants rights."""
        machine = self.machine = process.machine
        stat = machine.read("/proc/%d/stat" % process.pid).decode()
        subject = {"pid": ("u", process.pid), "start-time": ("t", int(stat.rsplit(")", 1)[1].split()[19])),
                   "uid": ("i", self.uid)}
        self.call_raw("RegisterAuthenticationAgent", "(sa{sv})ss", ("unix-process", subject), "en_US.UTF-8",
                      self.PATH, **AUTHORITY)

    def wait_asked(self, count=1):
        """Waits for the count-th question."""
        return wait_until(lambda: self.asked[count - 1:count], PATIENCE, "question %d" % count)[0]

    def _answer(self, message):
        method = message.header.fields[HeaderFields.member]
        if method == "BeginAuthentication":
            threading.Thread(target=self._ask, args=(message,), daemon=True).start()
        else:
            self.send(new_method_return(message))

    def _ask(self, message):
        action, text, _icon, _details, cookie, identities = message.body
        self.asked.append((action, text, [identity[1]["uid"][1] for identity in identities]))
        for _ in range(self.TRIES):
            wait_until(lambda: self.answers, PATIENCE, "the person does something")
            said = self.answers.pop(0)
            if said is None:
                self.send(new_error(message, "org.freedesktop.PolicyKit1.Error.Cancelled", "s", ("",)))
                return
            if self._is_right(cookie, said):
                break
        self.send(new_method_return(message))

    def _is_right(self, cookie, password):
        """As the libraries of such agents do: the helper, which is root, asks PAM and tells polkitd."""
        script = "printf '%%s\\n' '%s' '%s' | %s %s" % (cookie, password, HELPER, ADMINISTRATOR)
        status, output, _ = self.machine.run(["/bin/sh", "-c", script], uid=self.uid, label="agent")
        return status == 0 and "SUCCESS" in output
