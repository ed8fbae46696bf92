# SPDX-License-Identifier: MIT
"""The PPP account over the bus: what is read from and written to the secrets and peer files."""
import fcntl
import os
import shutil
import socket
import struct

import pytest

from lab.private_machine import BUILD, REPOSITORY

DATA = REPOSITORY / "tests" / "data" / "ppp"
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
ROOT_ONLY = pytest.mark.skipif(os.geteuid() != 0, reason="needs a file system operation of root")


class Account:
    """A running daemon with its four files, each of which holds something to be edited."""

    def __init__(self, machine, **daemon_options):
        self.machine = machine
        self.before = {PAP: COMMENT, CHAP: COMMENT, PEER: b'user "old"\n' + OPTIONS, UNICORN: OPTIONS}
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
        lines = (line[len("dd-MM-yyyy hh:mm:ss "):] for line in self.machine.daemon_log().splitlines())
        return [line for line in lines if line.startswith((WRITER, READER))]

    def set(self, login="x", password="y"):
        """Sets the account; the outcome and the lines that were logged about it. There must be one
        signal and one only."""
        start, known = self.client.mark(), len(self.log())
        self.client.call("setAccountData", login, password)
        self.client.mark()
        outcomes = [signal.args[0] for signal in self.client.named("accountDataChanged", after=start)]
        assert len(outcomes) == 1
        return outcomes[0], self.log()[known:]

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


@pytest.fixture
def account(bus_machine):
    return Account(bus_machine)


def others(path):
    return [other for other in FILES if other != path]


def test_setting_the_account_edits_all_four_files(account):
    assert account.set() == (True, [])
    account.check_written(*FILES)
    assert account.get() == ["x", "y"]


def test_the_first_entry_is_read_and_later_ones_are_appended(account):
    account.write(PAP, COMMENT + b'"a" * "b" *\n')
    assert account.get() == ["a", "b"]
    assert account.set() == (True, [])
    assert account.content(PAP) == COMMENT + b'"a" * "b" *\n"x" * "y" *\n'
    assert account.get() == ["a", "b"]


def test_an_entry_at_the_very_beginning_is_replaced_in_place(account):
    rest = b' 10.0.0.1\n# a comment that is longer than what the pattern takes for a value\n'
    account.write(PAP, b'"login@provider" * "password" *' + rest)
    account.write(CHAP, b'"login@provider"\t*\t"password"\t*' + rest)
    assert account.set() == (True, [])
    assert account.content(PAP) == b'"x" * "y" *' + rest
    assert account.content(CHAP) == b'"x" * "y" *' + rest
    assert account.get() == ["x", "y"]


def test_every_login_line_is_replaced_and_a_missing_one_appended(account):
    account.write(PEER, (b'user "a"\n' + OPTIONS) * 2)
    account.write(UNICORN, OPTIONS)
    assert account.set() == (True, [])
    assert account.content(PEER) == (b'user "x"\n' + OPTIONS) * 2
    assert account.content(UNICORN) == OPTIONS + b'user "x"\n'


def test_empty_files_get_the_entry_and_the_login_line(account):
    for path in FILES:
        account.write(path, b"")
    assert account.get() == []
    assert account.set() == (True, [])
    assert [account.content(path) for path in FILES] == [b'"x" * "y" *\n'] * 2 + [b'user "x"\n'] * 2


@pytest.mark.parametrize("path", FILES)
def test_a_missing_file_is_reported_and_the_others_are_written(account, path):
    account.machine.path(path).unlink()
    assert account.set() == (False, [NOT_READABLE[path in SECRETS]])
    assert not account.machine.path(path).exists()
    account.check_written(*others(path))


def test_without_any_file_each_is_reported_once(account):
    shutil.rmtree(account.machine.path("/etc/ppp"))
    lines = [NOT_READABLE[True]] * 2 + [NOT_READABLE[False]] * 2
    assert account.set() == (False, lines)
    assert account.get() == []
    assert account.log()[-1] == NOT_READ


def test_a_login_of_more_than_fifty_characters_is_written_but_not_recognised(account):
    assert account.set("l" * 50, "p") == (True, [])
    assert account.get() == ["l" * 50, "p"]
    account.write(PAP, COMMENT)
    assert account.set("l" * 51, "p") == (True, [])
    assert account.content(PAP) == COMMENT + b'"%s" * "p" *\n' % (b"l" * 51)
    assert account.get() == []


def test_an_unrecognised_file_gives_an_empty_list_and_no_log_line(account):
    for content in (b"", COMMENT, b'"a" isp "b" *\n', b'"a" *\n"b" *\n', b"\0" + b'"a" * "b" *\n'):
        account.write(PAP, content)
        assert account.get() == []
    assert account.log() == []


def test_a_missing_secrets_file_gives_an_empty_list_and_a_log_line(account):
    account.machine.path(PAP).unlink()
    assert account.get() == []
    assert account.log() == [NOT_READ]


def make_folder(account, path):
    path.mkdir()


def make_link(account, path):
    target = account.machine.path("/etc/ppp/target")
    target.write_bytes(COMMENT)
    path.symlink_to("target" if path.parent == target.parent else "../target")


def make_dangling_link(account, path):
    path.symlink_to("nowhere")


def make_link_to_itself(account, path):
    path.symlink_to(path.name)


def make_pipe(account, path):
    os.mkfifo(path)


def make_socket(account, path):
    with socket.socket(socket.AF_UNIX) as listener:
        listener.bind(str(path))


KINDS = {"folder": make_folder, "link": make_link, "dangling link": make_dangling_link,
         "link to itself": make_link_to_itself, "pipe without a writer": make_pipe,
         "socket": make_socket}


@pytest.mark.parametrize("kind", KINDS)
@pytest.mark.parametrize("path", (PAP, UNICORN))
def test_what_is_no_plain_file_is_refused_and_the_others_are_written(account, path, kind):
    place = account.machine.path(path)
    place.unlink()
    KINDS[kind](account, place)
    before = os.lstat(place)
    assert account.set() == (False, [NOT_READABLE[path in SECRETS]])
    after = os.lstat(place)
    assert (after.st_ino, after.st_mode) == (before.st_ino, before.st_mode)
    account.check_written(*others(path))
    assert account.client.call("reply") is True
    if kind == "link":
        assert account.machine.path("/etc/ppp/target").read_bytes() == COMMENT


def test_the_account_is_never_awaited_from_a_pipe(account):
    place = account.machine.path(PAP)
    place.unlink()
    os.mkfifo(place)
    assert account.get() == []
    assert account.log() == [NOT_READ]


def test_the_account_is_read_through_a_link(account):
    place = account.machine.path(PAP)
    place.unlink()
    account.machine.path("/etc/ppp/target").write_bytes(b'"a" * "b" *\n')
    place.symlink_to("target")
    assert account.get() == ["a", "b"]


def mount(machine, *arguments):
    done = machine.run(["/usr/bin/mount", *arguments])
    assert done.status == 0, done.stderr


def test_a_read_only_file_system_is_reported_for_each_file(account):
    mount(account.machine, "--bind", "/etc/ppp", "/etc/ppp")
    mount(account.machine, "-o", "remount,bind,ro", "/etc/ppp")
    lines = [NOT_WRITABLE[True]] * 2 + [NOT_WRITABLE[False]] * 2
    assert account.set() == (False, lines)
    account.check_unchanged(*FILES)


@pytest.mark.parametrize("path", FILES)
def test_one_read_only_file_does_not_keep_the_others_from_being_written(account, path):
    mount(account.machine, "--bind", path, path)
    mount(account.machine, "-o", "remount,bind,ro", path)
    assert account.set() == (False, [NOT_WRITABLE[path in SECRETS]])
    account.check_unchanged(path)
    account.check_written(*others(path))


FS_IOC_SETFLAGS, IMMUTABLE = 0x40086602, 0x10


def set_file_flags(path, flags):
    with open(path, "rb") as file:
        fcntl.ioctl(file, FS_IOC_SETFLAGS, struct.pack("l", flags))


@ROOT_ONLY
def test_an_immutable_file_is_reported_and_the_others_are_written(account):
    place = account.machine.path(CHAP)
    set_file_flags(place, IMMUTABLE)
    try:
        assert account.set() == (False, [NOT_WRITABLE[True]])
        account.check_unchanged(CHAP)
    finally:
        set_file_flags(place, 0)
    account.check_written(PAP, PEER, UNICORN)


def test_a_full_disk_is_reported_and_costs_no_old_byte(account):
    """On a file system with room for four pages, the secrets files fill theirs to the last bytes."""
    full = b"#" * 4090 + b"\n"
    machine = account.machine
    mount(machine, "-t", "tmpfs", "-o", "size=16k", "tmpfs", "/etc/ppp")
    machine.run(["/usr/bin/mkdir", "/etc/ppp/peers"])
    account.before.update({PAP: full, CHAP: full})
    for path in FILES:
        machine.write(path, account.before[path])
    outcome, lines = account.set()
    assert outcome is False
    assert lines == [NOT_WRITTEN[True] + "No space left on device"] * 2
    account.check_unchanged(*SECRETS)
    account.check_written(PEER, UNICORN)


@pytest.mark.parametrize("path", (PAP, PEER))
def test_a_file_that_vanishes_between_read_and_write_is_reported_and_not_made_anew(
        bus_machine, path):
    shutil.copy(BUILD / "tests/libvanishing-file.so", bus_machine.path("/opt/norvix/lib"))
    preloaded = "/mnt/lab/lib/libklogctl-standin.so:/opt/norvix/lib/libvanishing-file.so"
    account = Account(bus_machine, env={"LD_PRELOAD": preloaded, "NORVIX_VANISHING": path})
    assert account.set() == (False, [NOT_WRITABLE[path in SECRETS]])
    assert not bus_machine.path(path).exists()
    account.check_written(*others(path))


@ROOT_ONLY
def test_owner_group_mode_and_inode_survive(account):
    def facts():
        states = [os.stat(account.machine.path(path)) for path in FILES]
        return [(s.st_ino, s.st_uid, s.st_gid, s.st_mode) for s in states]

    for number, path in enumerate(FILES):
        os.chown(account.machine.path(path), 1000 + number, 2000 + number)
        os.chmod(account.machine.path(path), (0o600, 0o640, 0o664, 0o400)[number])
    before = facts()
    assert account.set() == (True, [])
    account.check_written(*FILES)
    assert facts() == before


def test_foreign_bytes_come_back_unchanged(account):
    foreign = bytes(range(255, 0, -1)) + "# café, caf\xe9\r\n".encode("latin-1") + b"\xff\xfe no end"
    account.write(CHAP, b"#" + foreign)
    account.write(PEER, b'user "a"\r\n' + b"-" * 60 + foreign)
    assert account.set("café", "\u20ac") == (True, [])
    assert account.content(CHAP) == b"#" + foreign + '"café" * "\u20ac" *\n'.encode()
    assert account.content(PEER) == 'user "café"\r\n'.encode() + b"-" * 60 + foreign
    assert account.get() == ["café", "\u20ac"]


def test_a_file_ends_at_its_first_nul_byte(account):
    account.write(PAP, COMMENT + b'\0"a" * "b" *\n')
    account.write(PEER, b"noauth\n\0nodetach\n")
    assert account.set() == (True, [])
    assert account.content(PAP) == COMMENT + b'"x" * "y" *\n'
    assert account.content(PEER) == b'noauth\nuser "x"\n'


@pytest.mark.parametrize("login, password, entry, line", (
    ('a"b', '"', b'"a"b" * """ *', b'user "a"b"'),
    ("a b", " # ", b'"a b" * " # " *', b'user "a b"'),
    ("a\nb", "c\n", b'"a\nb" * "c\n" *', b'user "a\nb"'),
    ("\\1", "\\2", b'"\\1" * "\\2" *', b'user "\\1"'),
    ("", "", b'"" * "" *', b'user ""'),
    ("l" * 51, "p" * 51, b'"%s" * "%s" *' % (b"l" * 51, b"p" * 51), b'user "%s"' % (b"l" * 51)),
), ids=("quotes", "blanks and number signs", "line feeds", "back-references", "nothing", "51"))
def test_values_are_written_as_they_are(account, login, password, entry, line):
    assert account.set(login, password) == (True, [])
    assert account.content(PAP) == COMMENT + entry + b"\n"
    assert account.content(PEER) == line + b"\n" + OPTIONS


def test_backslash_and_digit_stand_for_the_old_values_of_a_replaced_entry(account):
    account.write(PAP, b'"old-login@provider" * "old-password" *\n')
    assert account.set("\\1.new", "\\2") == (True, [])
    assert account.content(PAP) == b'"old-login@provider.new" * "old-password" *\n'
    assert account.content(PEER) == b'user "\\1.new"\n' + OPTIONS


def secret_that_pppd_takes(content, client):
    """pppd's documented rule (its manual, "Authentication"): of the lines whose client and server
    match, the one with the fewest wildcards; it reads on only for a better one, so that the first
    of equal lines stands. Fields are words, perhaps in double quotes; "*" matches any name."""
    best, secret = -1, None
    for line in content.decode("latin-1").splitlines():
        words = [word.strip('"') for word in line.split("#")[0].split()]
        if len(words) < 3 or words[0] not in (client, "*") or words[1] != "*":
            continue
        exact = int(words[0] != "*")
        if exact > best:
            best, secret = exact, words[2]
    return secret


@pytest.mark.parametrize("name", ("pap-secrets", "chap-secrets"))
def test_on_files_as_the_distribution_ships_them_the_first_password_stays_in_use(account, name):
    """The shipped files begin with comments, so that every change appends an entry, and the first
    one for a login wins, in pppd and when the account is read. This is how the daemon is meant to
    edit; an entry of ours at the very beginning, made on installation, is what lets a changed
    password take effect."""
    shipped = (DATA / name).read_bytes()
    path = "/etc/ppp/" + name
    account.write(path, shipped)
    assert account.set("user@isp", "first") == (True, [])
    assert account.set("user@isp", "second") == (True, [])
    assert account.content(path) == (
        shipped + b'"user@isp" * "first" *\n"user@isp" * "second" *\n')
    assert secret_that_pppd_takes(account.content(path), "user@isp") == "first"
    assert account.get() == ["user@isp", "first"]


def test_with_an_entry_at_the_very_beginning_a_changed_password_takes_effect(account):
    shipped = (DATA / "pap-secrets").read_bytes()
    account.write(PAP, b'"login" * "password" *\n' + shipped)
    assert account.set("user@isp", "first") == (True, [])
    assert account.set("user@isp", "second") == (True, [])
    assert account.content(PAP) == b'"user@isp" * "second" *\n' + shipped
    assert secret_that_pppd_takes(account.content(PAP), "user@isp") == "second"
    assert account.get() == ["user@isp", "second"]


def test_ten_megabytes_are_edited_and_the_daemon_answers(account):
    content = b"# a comment of some length, again and again and again\n" * 190000
    for path in FILES:
        account.write(path, content)
    assert account.get() == []
    assert account.set() == (True, [])
    assert account.content(PAP) == content + b'"x" * "y" *\n'
    assert account.content(PEER) == content + b'user "x"\n'


def test_every_change_is_answered_by_one_signal_of_its_own(account):
    start = account.client.mark()
    account.client.call("setAccountData", "one", "1")
    account.machine.path(PEER).unlink()
    account.client.call("setAccountData", "two", "2")
    account.client.mark()
    signals = account.client.named("accountDataChanged", after=start)
    assert [(signal.args, signal.signature) for signal in signals] == [((True,), "b"), ((False,), "b")]
