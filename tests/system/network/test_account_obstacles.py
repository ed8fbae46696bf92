# SPDX-License-Identifier: MIT
"""The PPP account over the bus when its files are not what they should be: each obstacle is
reported once, and the other files are written."""
import os
import shutil
import socket

import pytest

from account import (Account, CHAP, COMMENT, FILES, NOT_READ, NOT_READABLE, NOT_WRITABLE,
                     NOT_WRITTEN, PAP, PEER, SECRETS, UNICORN, others)
from lab.machine.private_machine import BUILD
from machine_fixtures import ROOT_ONLY
from obstacles import immutable, make_read_only, mount, run


@pytest.fixture
def account(bus_machine):
    return Account(bus_machine)


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


def test_a_missing_secrets_file_gives_an_empty_list_and_a_log_line(account):
    account.machine.path(PAP).unlink()
    assert account.get() == []
    assert account.log() == [NOT_READ]


def make_folder(account, path):
    path.mkdir()


def make_link(account, path):
    """A link to a file that others can write."""
    target = account.machine.path("/etc/ppp/target")
    target.write_bytes(COMMENT)
    target.chmod(0o666)
    path.symlink_to("target" if path.parent == target.parent else "../target")


def make_link_through_a_folder_of_all(account, path):
    """A link to a file of root's own, by way of another link, in whose place all can put theirs."""
    target = account.machine.path("/etc/ppp/target")
    target.write_bytes(COMMENT)
    target.chmod(0o600)
    folder = account.machine.path("/opt/everybody")
    folder.mkdir()
    folder.chmod(0o1777)
    (folder / "link").symlink_to("/etc/ppp/target")
    path.symlink_to("/opt/everybody/link")


def make_dangling_link(account, path):
    path.symlink_to("nowhere")


def make_link_to_itself(account, path):
    path.symlink_to(path.name)


def make_pipe(account, path):
    os.mkfifo(path)


def make_socket(account, path):
    with socket.socket(socket.AF_UNIX) as listener:
        listener.bind(str(path))


KINDS = {"folder": make_folder, "link": make_link,
         "link through a folder of all": make_link_through_a_folder_of_all,
         "dangling link": make_dangling_link,
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
    if kind.startswith("link") and kind != "link to itself":
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


@pytest.mark.parametrize("path", (PAP, UNICORN))
def test_a_link_to_a_file_that_is_roots_alone_is_followed_and_stays(account, path):
    place = account.machine.path(path)
    target = account.machine.path("/opt/secrets")
    shutil.move(place, target)
    target.chmod(0o600)
    place.symlink_to("/opt/secrets")
    before = target.stat()
    assert account.set() == (True, [])
    account.check_written(*FILES)
    assert place.is_symlink()
    after = target.stat()
    assert (after.st_ino, after.st_mode) == (before.st_ino, before.st_mode)


def test_a_read_only_file_system_is_reported_for_each_file(account):
    make_read_only(account.machine, "/etc/ppp")
    lines = [NOT_WRITABLE[True]] * 2 + [NOT_WRITABLE[False]] * 2
    assert account.set() == (False, lines)
    account.check_unchanged(*FILES)


@pytest.mark.parametrize("path", FILES)
def test_one_read_only_file_does_not_keep_the_others_from_being_written(account, path):
    make_read_only(account.machine, path)
    assert account.set() == (False, [NOT_WRITABLE[path in SECRETS]])
    account.check_unchanged(path)
    account.check_written(*others(path))


@ROOT_ONLY
def test_an_immutable_file_is_reported_and_the_others_are_written(account):
    with immutable(account.machine.path(CHAP)):
        assert account.set() == (False, [NOT_WRITABLE[True]])
        account.check_unchanged(CHAP)
    account.check_written(PAP, PEER, UNICORN)


def test_a_full_disk_is_reported_and_costs_no_old_byte(account):
    """On a file system with room for four pages, the secrets files fill theirs but for a few bytes.
    """
    full = b"#" * 4090 + b"\n"
    machine = account.machine
    mount(machine, "-t", "tmpfs", "-o", "size=16k", "tmpfs", "/etc/ppp")
    run(machine, "/usr/bin/mkdir", "/etc/ppp/peers")
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


def test_ten_megabytes_are_edited_and_the_daemon_answers(account):
    content = b"# a comment of some length, again and again and again\n" * 190000
    for path in FILES:
        account.write(path, content)
    assert account.get() == []
    assert account.set() == (True, [])
    assert account.content(PAP) == content + b'"x" * "y" *\n'
    assert account.content(PEER) == content + b'user "x"\n'
