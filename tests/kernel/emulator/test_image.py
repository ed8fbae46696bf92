# SPDX-License-Identifier: MIT
"""What the guest is made from."""

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


def test_modules_come_after_those_that_they_need(tmp_path):
    made = image.Image(tmp_path)
    base = made.root / "usr/lib/modules/6.1"
    base.mkdir(parents=True)
    (base / "modules.dep").write_text(
        "kernel/fs/9p.ko: kernel/net/9pnet.ko kernel/fs/netfs.ko\n"
        "kernel/net/9pnet-virtio.ko: kernel/net/9pnet.ko\n"
        "kernel/net/9pnet.ko:\nkernel/fs/netfs.ko:\n")
    names = [path.name for path in image.modules_in_order(made, ["9pnet_virtio", "9p"])]
    assert names == ["9pnet.ko", "9pnet-virtio.ko", "netfs.ko", "9p.ko"]


def test_the_list_names_what_the_host_and_the_guest_need():
    assert "qemu-system-x86" in image.package_names("kernel")
    assert "linux-image-amd64" in image.package_names("guest")


def test_of_several_names_the_one_that_the_release_has_is_taken(tmp_path, monkeypatch):
    (tmp_path / "list").write_text("# guest no\nguest one\nguest new|old\nkernel two\n")
    monkeypatch.setattr(image, "PACKAGE_LIST", tmp_path / "list")
    monkeypatch.setattr(image, "is_known", lambda name: name == "old")
    assert image.package_names("guest") == ["one", "old"]
