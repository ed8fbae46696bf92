# SPDX-License-Identifier: MIT
"""A driver built from its tarball against the distribution's kernel headers, loaded by modprobe."""

import os
import pathlib

import pytest

from lab.kernel import system
from lab.kernel.driver_tarball import LOADED, TARBALL, source, write_tarball

RELEASE = os.uname().release
TREE = pathlib.Path("/lib/modules") / RELEASE
# Compressed or not, as the distribution does it.
[SHIPPED] = (TREE / "kernel/drivers/usb/atm").glob("ueagle-atm.ko*")

# An emulated processor compiles slowly, more so when others want the real one.
BUILD_SECONDS = 900

COMPILE_ERROR = source("ueagle-atm.c").replace("return 0;", "return nothing;")
# Writes over the installed module, as a driver's own makefile may, and comes to nothing.
RECKLESS = f"""all:
\techo half a module >{SHIPPED}
\tfalse
"""


@pytest.fixture
def shipped():
    """The distribution's driver, which is put back afterwards."""
    content = SHIPPED.read_bytes()
    yield content
    SHIPPED.write_bytes(content)
    for path in TREE.rglob("ueagle-atm.ko*"):
        if path != SHIPPED:
            path.unlink()
    TARBALL.unlink(missing_ok=True)
    system.run("depmod", "-a")


@pytest.mark.quick
def test_a_missing_driver_is_built_installed_and_loaded(chain, shipped):
    SHIPPED.unlink()
    system.run("depmod", "-a")
    write_tarball()
    chain.configure("eagle-e4")
    client = chain.start_daemon()
    client.wait_signal("compilingDriver")
    assert client.call("getIsCompiling") is True
    assert client.wait_signal("compilationFinished", timeout=BUILD_SECONDS).args == (True,)
    assert client.call("getIsCompiling") is False
    chain.wait_kernel_log(LOADED)
    assert pathlib.Path("/sys/module/ueagle_atm").exists()
    found = pathlib.Path(system.run("modinfo", "-n", "ueagle-atm").stdout.strip())
    assert found.read_bytes() != shipped


@pytest.mark.parametrize("changed", [
    pytest.param({"ueagle-atm.c": COMPILE_ERROR}, id="compile-error"),
    pytest.param({"Makefile": RECKLESS}, id="overwritten")])
def test_a_broken_build_leaves_the_driver_that_was_there(chain, shipped, changed):
    old = b"a module that does not load"
    SHIPPED.write_bytes(old)
    write_tarball(changed=changed)
    chain.configure("eagle-e4")
    client = chain.start_daemon()
    assert client.wait_signal("compilationFinished", timeout=BUILD_SECONDS).args == (False,)
    assert SHIPPED.read_bytes() == old
    assert not pathlib.Path("/sys/module/ueagle_atm").exists()
    assert "driver compilation failed!" in chain.daemon_log()
