# SPDX-License-Identifier: MIT
"""What the distribution's real pppd makes of the account that was set: it authenticates itself to a
far end that tells which login and password came."""
import json
import shutil
from pathlib import Path

import pytest

from account import Account, CHAP, PAP
from norvixctl import Ctl
from lab.machine.private_machine import BUILD, REPOSITORY
from machine_fixtures import ROOT_ONLY
from obstacles import run

DATA = REPOSITORY / "tests" / "data" / "ppp"
PRELOADED, PEER_PROGRAM = "/opt/norvix/lib/libppp-channel.so", "/opt/norvix/ppp_peer.py"
FILE_OF = {"pap": PAP, "chap": CHAP}
pytestmark = ROOT_ONLY  # pppd may be run by root only


@pytest.fixture
def account(bus_machine):
    shutil.copy(BUILD / "tests/libppp-channel.so", bus_machine.path(PRELOADED))
    shutil.copy(Path(__file__).parents[1].joinpath("ppp_peer.py"), bus_machine.path(PEER_PROGRAM))
    return Account(bus_machine)


def used_by_pppd(account, protocol, *passwords):
    """Login and password with which pppd authenticates itself; chap tells these passwords apart."""
    output = run(account.machine, "/usr/bin/python3", PEER_PROGRAM, PRELOADED, protocol, *passwords)
    return json.loads(output.splitlines()[-1])


@pytest.mark.parametrize("protocol", ("pap", "chap"))
def test_on_files_as_the_distribution_ships_them_the_first_password_stays_in_use(account, protocol):
    """The shipped files begin with comments, so that every change appends an entry, and of equal
    entries pppd takes the first, as the reading of the account does. The daemon is meant to edit
    so; an entry at the very beginning, made on installation, lets a changed password work."""
    path = FILE_OF[protocol]
    shipped = (DATA / Path(path).name).read_bytes()
    account.write(path, shipped)
    assert account.set("user@isp", "first") == (True, [])
    assert account.set("user@isp", "second") == (True, [])
    assert account.content(path) == (
        shipped + b'"user@isp" * "first" *\n"user@isp" * "second" *\n')
    assert used_by_pppd(account, protocol, "first", "second") == ["user@isp", "first"]
    if protocol == "pap":
        assert account.get() == ["user@isp", "first"]


@pytest.mark.parametrize("protocol", ("pap", "chap"))
def test_with_an_entry_at_the_very_beginning_a_changed_password_takes_effect(account, protocol):
    path = FILE_OF[protocol]
    shipped = (DATA / Path(path).name).read_bytes()
    account.write(path, b'"login" * "password" *\n' + shipped)
    assert account.set("user@isp", "first") == (True, [])
    assert used_by_pppd(account, protocol, "first", "second") == ["user@isp", "first"]
    assert account.set("user@isp", "second") == (True, [])
    assert account.content(path) == b'"user@isp" * "second" *\n' + shipped
    assert used_by_pppd(account, protocol, "first", "second") == ["user@isp", "second"]
    if protocol == "pap":
        assert account.get() == ["user@isp", "second"]


def test_a_changed_login_takes_effect_also_on_shipped_files(account):
    assert account.set("one@isp", "first") == (True, [])
    assert account.set("two@isp", "second") == (True, [])
    assert used_by_pppd(account, "pap") == ["two@isp", "second"]


@pytest.mark.parametrize("login, password", (
    ("user@isp", "secret"), ("a b", " c "), ("a#b", "#"), ("caf\u00e9", "\u20ac"), ("*", "it's"),
    ("l" * 50, "p" * 50), ("l" * 51, "p" * 51)))
def test_values_reach_the_provider_as_they_were_set(account, login, password):
    assert account.set(login, password) == (True, [])
    assert used_by_pppd(account, "pap") == [login, password]


@pytest.mark.parametrize("protocol", ("pap", "chap"))
@pytest.mark.parametrize("login, password", (
    ("user@isp", "\\1"), ("user@isp", "\\2\\12"), ("user@isp", 'a"b'), ("user@isp", '"'),
    ("user@isp", "\\"), ("user@isp", '" * "'), ("user@isp", '\\" * \\'), ('us"er\\1', 'x\\"y'),
    ("user@isp", "\\x22\\042\\n"), ("user@isp", "caf\u00e9\u20ac #'")))
def test_what_the_client_stores_reaches_the_provider_as_it_was_given(account, protocol, login,
                                                                      password):
    """Also in place of an entry, where the daemon takes a backslash and a digit for a part of it."""
    for path in FILE_OF.values():
        account.write(path, b'"old" * "gone" *\n# comment\n')
    for _ in range(2):
        set_now = Ctl(account.machine)("account", "set", "--", login, stdin=password)
        assert (set_now.status, set_now.stderr) == (0, "")
    assert used_by_pppd(account, protocol, password) == [login, password]


@pytest.mark.parametrize("password", ("@/etc/word", "\\@/etc/word", "@\\/etc/word", "\\x40/etc/word",
                                      "\\100/etc/word", "\\500/etc/word", "@\\x2fetc/word",
                                      "@\\057etc/word", "@\\457etc/word"))
def test_a_password_that_begins_like_a_path_is_taken_from_a_file(account, password):
    """That is why the client refuses such a one, and for members the daemon: the file may be root's."""
    account.machine.path("/etc/word").write_text("from-the-file\n", encoding="ascii")
    assert account.set("user@isp", password) == (True, [])
    assert used_by_pppd(account, "pap") == ["user@isp", "from-the-file"]


@pytest.mark.parametrize("password, arrives", (
    ("@x/etc/word", "@x/etc/word"), (" @/etc/word", " @/etc/word"), ("@\\\\/x", "@\\/x"),
    ("\\\\@/etc/word", "\\@/etc/word"), ("\\0@/etc/word", "")))
def test_another_password_is_not(account, password, arrives):
    account.machine.path("/etc/word").write_text("from-the-file\n", encoding="ascii")
    assert account.set("user@isp", password) == (True, [])
    assert used_by_pppd(account, "pap") == ["user@isp", arrives]


@pytest.mark.parametrize("password, arrives", (("a\\_b", "a_b"), ('a"b', "ab *\n")))
def test_backslashes_and_quotes_in_a_password_do_not_reach_the_provider(account, password, arrives):
    """They are not escaped in the file, where pppd gives them a meaning."""
    assert account.set("user@isp", password) == (True, [])
    assert used_by_pppd(account, "pap") == ["user@isp", arrives]
