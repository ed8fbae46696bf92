# SPDX-License-Identifier: MIT
"""The PPP account over the bus: what is read from and written to the secrets and peer files."""
import os

import pytest

from account import Account, CHAP, COMMENT, FILES, OPTIONS, PAP, PEER, UNICORN
from machine_fixtures import ROOT_ONLY


@pytest.fixture
def account(bus_machine):
    return Account(bus_machine)


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
    foreign = bytes(range(255, 0, -1)) + b"# caf\xe9, caf\xc3\xa9\r\n\xff\xfe no end"
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


def test_every_change_is_answered_by_one_signal_of_its_own(account):
    start = account.client.mark()
    account.client.call("setAccountData", "one", "1")
    account.machine.path(PEER).unlink()
    account.client.call("setAccountData", "two", "2")
    account.client.mark()
    signals = account.client.named("accountDataChanged", after=start)
    assert [signal.args for signal in signals] == [(True,), (False,)]
    assert {signal.signature for signal in signals} == {"b"}
