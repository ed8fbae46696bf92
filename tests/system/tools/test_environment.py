# SPDX-License-Identifier: MIT
"""What the two commands of the README keep of the shell that they are called from, and where they stop."""
import os
import re
import shutil
import stat
import subprocess

import pytest

from lab.machine.private_machine import REPOSITORY

USUAL = {"PATH": "/usr/bin:/bin"}


def sourced(commands, cwd=REPOSITORY, umask=0o022, **env):
    """Runs commands as they would run in demo or check."""
    return subprocess.run(["/bin/sh", "-c", ". tools/environment.sh\n" + commands], cwd=cwd, umask=umask,
                          env={**USUAL, **env}, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, check=False)


@pytest.mark.parametrize("name", [
    "CC", "CXX", "CFLAGS", "CXXFLAGS", "LDFLAGS", "MAKEFLAGS", "PYTHONPATH", "PYTHONHOME",
    "PYTEST_ADDOPTS", "CDPATH", "LANG", "LANGUAGE", "LC_TIME", "TZ", "QT_LOGGING_RULES",
    "NORVIX_BUILD_DIR", "NORVIX_SANITIZER", "CMAKE_GENERATOR", "KBUILD_OUTPUT", "POSIXLY_CORRECT"])
def test_a_variable_that_changes_results_is_not_kept(name):
    assert name + "=" not in sourced("env", **{name: "an odd\nTERM=one"}).stdout


@pytest.mark.parametrize("name", ["TERM", "NO_COLOR", "CI", "https_proxy", "CCACHE_DIR",
                                  "CMAKE_CXX_COMPILER_LAUNCHER", "NORVIX_LAB_CACHE"])
def test_what_a_developer_has_chosen_is_kept(name):
    assert name + "=chosen\n" in sourced("env", **{name: "chosen"}).stdout


def test_locale_mask_home_and_path_are_the_same_for_everybody():
    asked = 'umask; echo "$LC_ALL"; cd "$HOME" && command -v ip'
    assert sourced(asked, umask=0o077, LC_ALL="tr_TR.UTF-8").stdout.split() == [
        "0022", "C.UTF-8", shutil.which("ip", path="/usr/bin:/usr/local/sbin:/usr/sbin:/sbin")]
    assert sourced('[ -d "$HOME" ] && echo there', HOME="/nonexistent").stdout == "there\n"


def below(mounts):
    """Sources the file where these are mounted over the host's folders."""
    users = [] if os.geteuid() == 0 else ["--user", "--map-root-user"]
    script = mounts + '\n. tools/environment.sh\necho "$TMPDIR"'
    return subprocess.run(["unshare", *users, "--mount", "/bin/sh", "-ec", script], cwd=REPOSITORY,
                          env={**USUAL, "PATH": "/usr/sbin:/usr/bin:/sbin:/bin"}, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)


@pytest.mark.parametrize("options", ["noexec", "size=8m", "ro"])
def test_temporary_files_go_where_there_is_room_and_programs_start(options):
    spare = "mount -t tmpfs tmpfs /var/tmp\n"
    assert below(spare + "mount -t tmpfs tmpfs /tmp").stdout == "/tmp\n"
    assert below(spare + "mount -t tmpfs -o %s tmpfs /tmp" % options).stdout == "/var/tmp\n"


def test_without_room_for_temporary_files_one_line_says_so():
    result = below("mount -t tmpfs -o size=8m tmpfs /tmp\nmount -t tmpfs -o noexec tmpfs /var/tmp")
    assert result.returncode == 1
    assert result.stdout == ("Neither /tmp nor /var/tmp has 500 MB and lets programs be started from "
                             "it.\n")


@pytest.fixture(name="clone")
def clone_fixture(tmp_path):
    (tmp_path / "tools").mkdir()
    shutil.copy(REPOSITORY / "tools/environment.sh", tmp_path / "tools")
    return tmp_path


def test_a_second_build_waits_for_the_first_and_says_so(clone):
    step = ('may_build_in build/release && one_at_a_time sh -c "echo %s begins >>order'
            ' && mkdir -p build/%s && while [ ! -e go ]; do sleep 0.01; done; echo %s ends >>order"')
    command = ["/bin/sh", "-c", ". tools/environment.sh\n" + step % (("first",) * 3)]
    first = subprocess.Popen(command, cwd=clone, env=USUAL, stdout=subprocess.PIPE, text=True)
    while not (clone / "build/first").exists():
        assert first.poll() is None
    command[-1] = ". tools/environment.sh\n" + step % (("second",) * 3)
    second = subprocess.Popen(command, cwd=clone, env=USUAL, stdout=subprocess.PIPE, text=True)
    assert second.stdout.readline() == "Waiting for another build in this folder to end...\n"
    (clone / "go").touch()
    assert (first.communicate()[0], second.communicate()[0]) == ("", "")
    assert (clone / "order").read_text(encoding="ascii").split() == [
        "first", "begins", "first", "ends", "second", "begins", "second", "ends"]


@pytest.mark.parametrize("name", ["check", "demo", "install", "tools/lint.sh", "tools/judge-packages.sh"])
def test_what_a_command_calls_is_there(name):
    text = (REPOSITORY / name).read_text(encoding="utf-8")
    called = re.findall(r"\b(?:tools|packaging|tests)/[\w./-]+[\w]", text)
    called += [module.replace(".", "/") + ".py" for module in re.findall(r"-m ((?:lab|tools)[\w.]+)", text)]
    assert called and [path for path in called if not (REPOSITORY / path).exists()] == []


@pytest.mark.skipif(os.geteuid() != 0, reason="a build tree of another user's needs root to be made")
def test_a_build_tree_that_belongs_to_somebody_else_is_not_built_in(clone):
    (clone / "build/release").mkdir(parents=True)
    clone.chmod(0o755)
    assert stat.S_IMODE((clone / "build").stat().st_mode) == 0o755
    words = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", "/bin/sh", "-c",
             ". %s/tools/environment.sh; may_build_in build/release || echo no" % clone]
    for parent in clone.parents:
        if parent.name.startswith("pytest"):
            parent.chmod(0o755)
    asked = subprocess.run(words, cwd=clone, env=USUAL, stdout=subprocess.PIPE, text=True, check=False)
    assert asked.stdout == "no\n"


@pytest.mark.skipif(os.geteuid() != 0, reason="only root can change the root")
def test_where_no_namespaces_can_be_made_one_line_says_so(tmp_path):
    # A root that is no mount point: the kernel makes no mount namespace private there.
    script = "mkdir -p $1/usr && mount --bind /usr $1/usr && mkdir $1/tmp $1/var $1/repository"
    script += " && for name in bin sbin lib lib64; do ln -s usr/$name $1/$name; done"
    script += " && mkdir $1/proc $1/dev && mount --bind /dev $1/dev && mount -t proc proc $1/proc"
    script += " && mount --bind $PWD $1/repository"
    script += " && chroot $1 sh -c 'cd /repository; . tools/environment.sh; need_namespaces'"
    result = subprocess.run(["unshare", "--mount", "/bin/sh", "-ec", script, "sh", str(tmp_path)],
                            cwd=REPOSITORY, env={**USUAL, "PATH": "/usr/sbin:/usr/bin:/sbin:/bin"},
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    assert result.returncode == 1
    assert result.stdout.startswith("No private machine can be made here (unshare: ")
    assert len(result.stdout.splitlines()) == 1
