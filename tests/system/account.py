# SPDX-License-Identifier: MIT
"""The account of a running daemon, and its four files."""

PAP, CHAP = "/etc/ppp/pap-secrets", "/etc/ppp/chap-secrets"
PEER, UNICORN = "/etc/ppp/peers/norvix", "/etc/ppp/peers/norvix_unicorn"
FILES = (PAP, CHAP, PEER, UNICORN)
SECRETS = (PAP, CHAP)
WRITER = "Norvix_Daemon::setAccountData(): "
READER = "Norvix_Daemon::getLoginAndPassword(): "
NOT_READABLE = {True: WRITER + "could not opensecret file in read only mode!",
                False: WRITER + "could not open peer file in read only mode!"}
NOT_WRITABLE = {True: WRITER + "could not opensecret file in write only mode!",
                False: WRITER + "could not open peer file in write only mode!"}
NOT_WRITTEN = {True: WRITER + "could not write secret file: ",
               False: WRITER + "could not write peer file: "}
NOT_READ = READER + "could not open pap-secrets file!"
COMMENT = b"# client\tserver\tsecret\n"
OPTIONS = b"noauth\nnoipdefault\ndefaultroute\nusepeerdns\nhide-password\nupdetach\n"


class Account:
    """A running daemon with its four files, each of which holds something to be edited."""

    def __init__(self, machine, **daemon_options):
        self.machine = machine
        self.before = {PAP: COMMENT, CHAP: COMMENT,
                       PEER: b'user "old"\n' + OPTIONS, UNICORN: OPTIONS}
        for path, content in self.before.items():
            self.write(path, content)
        self.daemon = machine.start_daemon(**daemon_options)
        self.client = machine.client()

    def write(self, path, content):
        self.machine.path(path).write_bytes(content)
        self.before[path] = content

    def content(self, path):
        """A file's bytes as the daemon sees it, whatever is mounted there."""
        return self.machine.read(path)

    def log(self):
        """What the daemon has logged about the account, without the times."""
        stamped = self.machine.daemon_log().splitlines()
        lines = (line[len("dd-MM-yyyy hh:mm:ss "):] for line in stamped)
        return [line for line in lines if line.startswith((WRITER, READER))]

    def set(self, login="x", password="y"):
        """Sets the account; the outcome and the lines that were logged about it. There must be one
        signal and one only."""
        start, known = self.client.mark(), len(self.log())
        self.client.call("setAccountData", login, password)
        self.client.mark()
        signals = self.client.named("accountDataChanged", after=start)
        assert len(signals) == 1
        return signals[0].args[0], self.log()[known:]

    def get(self):
        return self.client.call("getLoginAndPassword")

    def expected(self, path, login="x", password="y"):
        """What a file that can be written holds after set(); for the contents made above."""
        if path in SECRETS:
            return self.before[path] + b'"%s" * "%s" *\n' % (login.encode(), password.encode())
        line = b'user "%s"' % login.encode()
        if b'user "old"' in self.before[path]:
            return self.before[path].replace(b'user "old"', line)
        return self.before[path] + line + b"\n"

    def check_written(self, *paths):
        for path in paths:
            assert self.content(path) == self.expected(path), path

    def check_unchanged(self, *paths):
        for path in paths:
            assert self.content(path) == self.before[path], path


def others(path):
    return [other for other in FILES if other != path]
