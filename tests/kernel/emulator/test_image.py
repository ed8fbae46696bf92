# SPDX-License-Identifier: MIT
"""What the guest is made from."""

import lzma

import pytest

from lab.kernel import image


def entries(archive):
    """Name, mode and content of each entry of an archive, read by the format's description."""
    found = []
    at = 0
    while True:
        assert archive[at:at + 6] == b"070701"
        fields = [int(archive[at + 6 + 8 * i:at + 14 + 8 * i], 16) for i in range(13)]
        mode, size, name_size = fields[1], fields[6], fields[11]
        name = archive[at + 110:at + 110 + name_size - 1].decode()
        at = (at + 110 + name_size + 3) // 4 * 4
        content = archive[at:at + size]
        at = (at + size + 3) // 4 * 4
        if name == "TRAILER!!!":
            assert at == len(archive)
            return found
        found.append((name, mode, content))


def test_the_archive_holds_what_was_put_in():
    archive = image.CpioArchive()
    archive.folder("bin")
    archive.file("bin/a", b"12345", 0o755)
    archive.file("empty", b"", 0o644)
    assert entries(archive.finished()) == [
        ("bin", 0o040755, b""), ("bin/a", 0o100755, b"12345"), ("empty", 0o100644, b"")]


@pytest.mark.parametrize("ending", [".ko", ".ko.xz"])
def test_modules_come_after_those_that_they_need(tmp_path, ending):
    made = image.Image(tmp_path)
    base = made.root / "usr/lib/modules/6.1"
    base.mkdir(parents=True)
    (base / "modules.builtin").write_text("kernel/drivers/virtio/virtio_pci.ko\n")
    (base / "modules.dep").write_text(
        "kernel/fs/9p.ko: kernel/net/9pnet.ko kernel/fs/netfs.ko\n"
        "kernel/net/9pnet-virtio.ko: kernel/net/9pnet.ko\n"
        "kernel/net/9pnet.ko:\nkernel/fs/netfs.ko:\n".replace(".ko", ending))
    paths = image.modules_in_order(made, ["virtio_pci", "9pnet_virtio", "9p"])
    assert [path.name for path in paths] == [
        name + ending for name in ("9pnet", "9pnet-virtio", "netfs", "9p")]


def test_a_compressed_module_is_unpacked_for_busybox(tmp_path):
    (tmp_path / "9p.ko.xz").write_bytes(lzma.compress(b"module"))
    (tmp_path / "9p.ko").write_bytes(b"module")
    assert image.module_content(tmp_path / "9p.ko.xz") == b"module"
    assert image.module_content(tmp_path / "9p.ko") == b"module"


@pytest.mark.parametrize("name, wanted", [
    ("./boot/vmlinuz-6.12.107+deb13-amd64", True),
    ("./boot/System.map-6.12.107+deb13-amd64", False),
    ("./usr/lib/modules/7.2.13+deb14-amd64/vmlinuz", True),
    ("./lib/modules/6.1.0-56-amd64/modules.builtin", True),
    ("./lib/modules/6.1.0-56-amd64/kernel/drivers/usb/atm/cxacru.ko", True),
    ("./usr/lib/modules/7.2.13+deb14-amd64/kernel/drivers/net/dummy.ko.xz", True),
    ("./usr/lib/modules/7.2.13+deb14-amd64/kernel/drivers/net/ethernet/8139too.ko.xz", False),
    ("./usr/share/doc/linux-image-6.1.0-56-amd64/copyright", False)])
def test_of_a_kernel_only_what_the_guest_needs_is_unpacked(name, wanted):
    assert image.is_wanted_of_kernel(name) is wanted


def test_the_list_names_what_the_host_and_the_guest_need():
    assert "qemu-system-x86" in image.package_names("kernel")
    assert "linux-image-amd64" in image.package_names("guest")
