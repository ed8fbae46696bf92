# SPDX-License-Identifier: MIT
"""Installing on a clean Debian, both ways; what is there then, and what removal leaves."""
import re
import subprocess

import pytest
from conftest import BUILD_SECONDS, REPOSITORY, USER

OURS = ("norvix-daemon", "norvix-hald", "norvix-keeper", "norvix-desktop", "norvixctl",
        "libnorvix-support")
PLACES = ("/opt", "/etc/ppp", "/etc/dbus-1", "/etc/logrotate.d", "/var/log/norvix",
          "/usr/share/dbus-1", "/usr/share/norvix", "/usr/lib/sysusers.d", "/usr/lib/tmpfiles.d",
          "/usr/lib/modules-load.d", "/usr/lib/udev/rules.d", "/etc/systemd/system", "/usr/bin/norvixctl")
# What package tools keep for themselves.
BOOKS = ("/var/lib/dpkg", "/var/lib/apt", "/var/cache", "/var/log/apt", "/var/log/dpkg.log",
         "/var/log/alternatives.log", "/etc/ld.so.cache", "/proc", "/sys", "/dev", "/run", "/tmp",
         "/root", "/home", "/var/lib/systemd", "/etc/.pwd.lock", "/var/log/journal",
         "/var/log/faillog", "/var/log/lastlog")
# What packages that ours need make when they are installed, and leave when they are purged.
BOOKS += ("/etc/sgml", "/etc/xml", "/usr/share/mime", "/usr/local/share/sgml",
          "/usr/local/share/xml")
PAP, CHAP = "/etc/ppp/pap-secrets", "/etc/ppp/chap-secrets"
VERSION = re.search(r"project\(norvix VERSION ([0-9.]+)",
                    (REPOSITORY / "CMakeLists.txt").read_text(encoding="ascii"))[1]
SETTINGS, POLICY = "/opt/norvix/.daemon_ng.ini", "/etc/dbus-1/system.d/norvix.conf"


def apt(system, *words, **options):
    return system.run("apt-get", "-q", "-y", "-o", "Dpkg::Options::=--force-confdef", "-o",
                      "Dpkg::Options::=--force-confold", *words, **options).output


def install(system, give, folder=None):
    apt(system, "update")
    names = give(system, folder) if folder else give(system)
    return apt(system, "install", *names, cwd="/root")


def ids(system):
    """Names of groups by their ids, which differ from one installation to the next."""
    lines = system.path("/etc/group").read_text(encoding="ascii").splitlines()
    return {line.split(":")[2]: line.split(":")[0] for line in lines}


def result(system):
    """All that an installation has made, with owners by name. What is needed for building only, or
    recommended by what ours need, brings files of its own to systemd and the bus."""
    names = ids(system)
    return {path: (mode, owner, names[group], *rest)
            for path, (mode, owner, group, *rest) in system.files(*PLACES).items()
            if not path.startswith(("/etc/systemd/", "/usr/lib/", "/usr/share/dbus-1/"))
            or re.search("norvix|freedesktop.Hal", path)}


def test_what_is_installed_has_the_owners_and_modes_it_needs(from_clone):
    found = result(from_clone)
    facts = {path: found[path][:3] for path in (
        "/opt/norvix", "/opt/norvix/drivers", "/opt/norvix/bin/norvix-daemon", SETTINGS,
        "/var/log/norvix", PAP, CHAP, "/etc/ppp/peers/norvix", "/etc/ppp/peers/norvix_unicorn")}
    assert facts == {
        "/opt/norvix": ("drwxr-sr-x", "0", "norvix"),
        "/opt/norvix/drivers": ("drwxr-xr-x", "0", "root"),
        "/opt/norvix/bin/norvix-daemon": ("-rwxr-xr-x", "0", "root"),
        SETTINGS: ("-rw-r-----", "0", "norvix"),
        "/var/log/norvix": ("drwxr-s---", "0", "norvix"),
        PAP: ("-rw-------", "0", "root"), CHAP: ("-rw-------", "0", "root"),
        "/etc/ppp/peers/norvix": ("-rw-r-----", "0", "dip"),
        "/etc/ppp/peers/norvix_unicorn": ("-rw-r-----", "0", "dip")}
    for name in ("br2684ctl_amd64", "br2684ctl_i386"):
        assert found["/opt/norvix/bin/" + name][-1] == "/usr/sbin/br2684ctl"
    for name in (PAP, CHAP):
        text = from_clone.path(name).read_text(encoding="ascii")
        backup = from_clone.path(name + ".norvix-backup").read_text(encoding="ascii")
        assert text.startswith('"login" * "password" *\n') and text.endswith(backup)
    assert from_clone.run("norvixctl", "--version", user=USER).output.startswith("norvixctl ")
    assert "norvix" in from_clone.run("id", "-nG", USER).output.split()


def test_units_start_at_boot_and_are_sound(from_clone):
    for name in ("norvix-daemon", "norvix-hald", "norvix-keeper"):
        assert from_clone.run("systemctl", "is-enabled", name + ".service").output == "enabled\n"
        said = from_clone.run("systemd-analyze", "verify", name + ".service").output
        assert name not in said, said
    for name, most in (("norvix-daemon", 6.5), ("norvix-hald", 1.5), ("norvix-keeper", 1.5)):
        said = from_clone.run("systemd-analyze", "security", "--offline=true", "--no-pager",
                              name + ".service").output
        assert float(re.search(r"exposure level.*: ([0-9.]+)", said)[1]) <= most


def test_the_rule_of_udevs_is_sound(from_clone):
    said = from_clone.run("udevadm", "verify", "/usr/lib/udev/rules.d/60-norvix-daemon.rules", check=False)
    assert said.status == 0 or "Unknown command verb" in said.output  # Debian 12's cannot tell


def test_manual_pages_and_completion_are_found(from_clone):
    for page in ("norvixctl", "norvix-daemon", "norvix-hald", "norvix-daemon.ini",
                 "com.norvix.Daemon", "com.norvix.Setup1", "norvix-keeper", "norvix-keeper.conf",
                 "com.norvix.Keeper1", "norvix-desktop"):
        assert "NAME" in from_clone.run("man", page).output
    assert from_clone.path("/usr/share/bash-completion/completions/norvixctl").exists()


def test_a_second_installation_is_harmless(from_clone):
    before = result(from_clone)
    clone = "/home/%s/norvix" % USER
    told = from_clone.run("sudo", "./install", "--yes", user=USER, cwd=clone, timeout=BUILD_SECONDS).output
    assert "Installed." in told
    assert result(from_clone) == before


def test_wrong_options_and_users_are_refused_before_anything_is_done(from_clone):
    clone = "/home/%s/norvix" % USER
    assert from_clone.run("./install", "--frobnicate", cwd=clone, check=False).status == 2
    refused = from_clone.run("./install", "--user", "nobody-there", cwd=clone, check=False)
    assert refused.status == 1 and "there is no user nobody-there" in refused.output
    refused = from_clone.run("./install", user=USER, cwd=clone, check=False)
    assert refused.status == 1 and "sudo ./install" in refused.output


def test_the_packages_are_sound(packages):
    files = sorted(packages.glob("*.deb"))
    assert len(files) == len(OURS)
    said = subprocess.run(["lintian", "--allow-root", "--display-info", "--pedantic", *files],
                          stdout=subprocess.PIPE, check=False, stderr=subprocess.STDOUT, text=True,
                          timeout=300).stdout
    assert said == "" or said == "running with root privileges is not recommended!\n"


def test_apt_gives_the_same_as_the_clone(from_clone, system, give):
    install(system, give)
    assert result(system) == result(from_clone)
    assert system.run("dpkg", "-V", *OURS).output == ""


def test_a_purge_takes_everything_back(system, give):
    before = system.files("/", without=BOOKS)
    install(system, give)
    told = apt(system, "purge", *OURS)
    assert "left" not in told
    names = {line.split(":")[0] for name in ("/etc/group", "/etc/passwd")
             for line in system.path(name).read_text(encoding="ascii").splitlines()}
    assert not names & {"norvix", "norvix-hal", "norvix-keeper"}
    apt(system, "autoremove", "--purge")
    after = system.files("/", without=BOOKS)
    assert {path for path in after if path not in before and "norvix" in path} == set()
    # Dependencies that something else recommends may stay; they own their files.
    owned = {line for name in system.path("/var/lib/dpkg/info").glob("*.list")
             for line in name.read_text(encoding="utf-8").splitlines()}
    left = {path for path in after if path not in before} - owned
    assert {path for path in left if not path.startswith("/var/")
            and path.replace("/usr/lib", "/lib") not in owned} == set()


def test_removal_by_the_clone_says_what_it_leaves(system, give):
    install(system, give)
    for name in (PAP, CHAP):
        text = system.path(name).read_text(encoding="ascii")
        system.write(name, text.replace('"login" * "password"', '"me@isp" * "mine"'), 0o600)
    system.path("/opt/norvix/drivers/unicorn-neo.tar").write_bytes(b"mine")
    told = system.run("sudo", "/run/repository/install", "--remove", user=USER).output
    for name in (PAP, CHAP, PAP + ".norvix-backup", "/opt/norvix/drivers"):
        assert name in told, told
    assert system.path(PAP).read_text(encoding="ascii").startswith('"me@isp" * "mine" *\n')
    assert system.path("/opt/norvix/drivers/unicorn-neo.tar").exists()
    assert not system.path("/opt/norvix/bin").exists() and not system.path(SETTINGS).exists()
    again = system.run("sudo", "/run/repository/install", "--remove", user=USER).output
    assert "Nothing of norvix is installed" in again


def test_removal_without_purge_keeps_the_configuration(system, give):
    install(system, give)
    system.path(SETTINGS).write_text("[General]\nvpi=8\n", encoding="ascii")
    history = system.path("/var/lib/norvix-keeper/history.sqlite")
    history.parent.mkdir(exist_ok=True)
    history.touch()
    apt(system, "remove", *OURS)
    assert history.exists()
    assert system.path(SETTINGS).read_text(encoding="ascii") == "[General]\nvpi=8\n"
    assert system.path(PAP).read_text(encoding="ascii").startswith('"login"')
    install(system, give)
    assert system.path(SETTINGS).read_text(encoding="ascii") == "[General]\nvpi=8\n"
    assert system.path(PAP).read_text(encoding="ascii").count('"login"') == 1


@pytest.fixture
def earlier(packages, tmp_path):
    """The same packages as an earlier version, with another bus policy."""
    folder = tmp_path / "earlier"
    folder.mkdir()
    for file in packages.glob("*.deb"):
        tree = tmp_path / file.stem
        subprocess.run(["dpkg-deb", "-R", file, tree], check=True)
        control = tree / "DEBIAN/control"
        text = control.read_text(encoding="utf-8")
        control.write_text(text.replace(VERSION, "0.1.0"), encoding="utf-8")
        policy = tree / POLICY[1:]
        if policy.exists():
            policy.write_text(policy.read_text(encoding="utf-8") + "<!-- earlier -->\n",
                              encoding="utf-8")
        subprocess.run(["dpkg-deb", "-b", tree, folder], check=True, stdout=subprocess.DEVNULL)
    return folder


HISTORY, PLAN = "/var/lib/norvix-keeper/history.sqlite", "/var/lib/norvix-keeper/memory.json"
KEEPER_SETTINGS = "/etc/norvix-keeper.conf"


def keep_something(system):
    """A history as the keeper has left it, and settings of the administrator's; what they hold."""
    system.run("install", "-d", "-o", "norvix-keeper", "-g", "norvix-keeper", "-m", "0700",
               "/var/lib/norvix-keeper")
    for name in (HISTORY, PLAN):
        system.path(name).write_text("mine\n", encoding="ascii")
        system.run("chown", "norvix-keeper:", name)
    system.path(KEEPER_SETTINGS).write_text("pause_unanswered = 7\n", encoding="ascii")
    return kept(system)


def kept(system):
    """Content and owner's name of what is the user's own."""
    return {name: (system.path(name).read_bytes(), system.run("stat", "-c", "%U", name).output)
            for name in (HISTORY, PLAN, KEEPER_SETTINGS)}


def norvix_names(system):
    return {line.split(":")[0] for name in ("/etc/group", "/etc/passwd")
            for line in system.path(name).read_text(encoding="ascii").splitlines()
            if line.startswith("norvix")}


def test_an_upgrade_keeps_the_history_and_the_keepers_settings(system, give, earlier):
    install(system, give, earlier)
    mine = keep_something(system)
    install(system, give)
    assert VERSION in system.run("dpkg-query", "-W", "norvix-keeper").output
    assert kept(system) == mine


def test_the_history_stays_when_the_keeper_is_removed_and_goes_when_it_is_purged(system, give):
    install(system, give)
    mine = keep_something(system)
    apt(system, "remove", "norvix-keeper")
    assert not system.path("/opt/norvix/bin/norvix-keeper").exists()
    assert kept(system) == mine
    install(system, give)
    assert kept(system) == mine
    apt(system, "purge", "norvix-keeper")
    assert not system.path("/var/lib/norvix-keeper").exists()
    assert not system.path(KEEPER_SETTINGS).exists()
    assert norvix_names(system) == {"norvix", "norvix-hal"}  # the daemon is still there
    apt(system, "purge", *(name for name in OURS if name != "norvix-keeper"))
    assert norvix_names(system) == set()


def test_a_keeper_that_stays_keeps_its_group_and_takes_it_along(system, give):
    install(system, give)
    apt(system, "purge", *(name for name in OURS if name != "norvix-keeper"))
    assert norvix_names(system) == {"norvix", "norvix-keeper"}
    assert "norvix" in system.run("id", "-nG", "norvix-keeper").output.split()
    apt(system, "purge", "norvix-keeper")
    assert norvix_names(system) == set()


@pytest.mark.parametrize("is_edited", (False, True))
def test_an_upgrade_keeps_account_settings_and_edited_policy(system, give, earlier, is_edited):
    install(system, give, earlier)
    assert "earlier" in system.path(POLICY).read_text(encoding="utf-8")
    for name in (PAP, CHAP):
        text = system.path(name).read_text(encoding="ascii")
        system.write(name, text.replace('"login" * "password"', '"me@isp" * "mine"'), 0o600)
    system.path(SETTINGS).write_text("[General]\nvpi=8\nvci=35\n", encoding="ascii")
    system.run("chmod", "0600" if is_edited else "0660", SETTINGS)  # 0660: as it was made once
    peer = system.path("/etc/ppp/peers/norvix")
    peer.write_text(peer.read_text(encoding="ascii") + "mtu 1400\n", encoding="ascii")
    if is_edited:
        policy = system.path(POLICY)
        policy.write_text(policy.read_text(encoding="utf-8") + "<!-- mine -->\n", encoding="utf-8")
    kept = {name: system.path(name).read_bytes() for name in (PAP, CHAP, SETTINGS,
                                                              "/etc/ppp/peers/norvix")}
    install(system, give)
    assert VERSION in system.run("dpkg-query", "-W", "norvix-daemon").output
    mode = system.files(SETTINGS)[SETTINGS][0]
    assert mode == ("-rw-------" if is_edited else "-rw-r-----")
    assert {name: system.path(name).read_bytes() for name in kept} == kept
    text = system.path(POLICY).read_text(encoding="utf-8")
    assert ("mine" in text) == is_edited and ("earlier" in text) == is_edited
