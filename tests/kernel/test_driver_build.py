# SPDX-License-Identifier: MIT
"""A driver built from its tarball against the distribution's kernel headers, loaded by modprobe."""

import os
import pathlib

import pytest

from lab.kernel import system
from lab.kernel.driver_tarball import LOADED, MAKEFILE, SOURCE, write_tarball

RELEASE = os.uname().release
TREE = pathlib.Path("/lib/modules") / RELEASE
SHIPPED = TREE / "kernel/drivers/usb/atm/ueagle-atm.ko"
TARBALL = pathlib.Path("/opt/norvix/drivers/ueagle-atm-1.4.tar")

# An emulated processor compiles slowly.
BUILD_SECONDS = 420

# Writes over the installed module, as some drivers' own makefiles do, and comes to nothing.
RECKLESS_MAKEFILE = f"""all:
\techo half a module >{SHIPPED}
\tfalse
"""


@pytest.fixture
def shipped():
    """The distribution's driver, which is put back afterwards."""
    content = SHIPPED.read_bytes()
    yield content
    SHIPPED.write_bytes(content)
    for path in TREE.rglob("ueagle-atm.ko"):
        if path != SHIPPED:
            path.unlink()
    TARBALL.unlink(missing_ok=True)
    system.run("depmod", "-a")


@pytest.mark.quick
def test_a_missing_driver_is_built_installed_and_loaded(chain, shipped):
    SHIPPED.unlink()
    system.run("depmod", "-a")
    write_tarball(TARBALL)
    chain.configure("eagle-e4")
    client = chain.start_daemon()
    client.wait_signal("compilingDriver")
    assert client.call("getIsCompiling") is True
    assert client.wait_signal("compilationFinished", timeout=BUILD_SECONDS).args == (True,)
    assert client.call("getIsCompiling") is False
    chain.wait_kernel_log(LOADED)
    assert pathlib.Path("/sys/module/ueagle_atm").exists()
    assert system.run("modinfo", "-n", "ueagle-atm").stdout.strip() != str(SHIPPED)


@pytest.mark.parametrize("source, makefile", [
    pytest.param(SOURCE.replace("return 0;", "return nothing;"), MAKEFILE, id="compile-error"),
    pytest.param(SOURCE, RECKLESS_MAKEFILE, id="overwritten")])
def test_a_broken_build_leaves_the_driver_that_was_there(chain, shipped, source, makefile):
    old = b"a module that does not load"
    SHIPPED.write_bytes(old)
    write_tarball(TARBALL, source, makefile)
    chain.configure("eagle-e4")
    client = chain.start_daemon()
    assert client.wait_signal("compilationFinished", timeout=BUILD_SECONDS).args == (False,)
    assert SHIPPED.read_bytes() == old
    assert not pathlib.Path("/sys/module/ueagle_atm").exists()
    assert "driver compilation failed!" in chain.daemon_log()
