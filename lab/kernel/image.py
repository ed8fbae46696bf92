# SPDX-License-Identifier: MIT
"""The guest's own files: Debian packages unpacked into a cache, and an initramfs made from them."""

import fcntl
import gzip
import hashlib
import lzma
import os
import pathlib
import shutil
import subprocess
import tarfile
import time

from . import suites

HERE = pathlib.Path(__file__).resolve().parent
PACKAGE_LIST = HERE.parent.parent / "tools/debian-packages"

DOWNLOAD_SECONDS = 600
KEPT_SECONDS = 7 * 24 * 3600

# Where a kernel is: in one package with its modules, or in newer suites in one of its own.
KERNEL_PACKAGES = ("linux-image-", "linux-binary-", "linux-modules-")

# A kernel unpacks to 400 MB. A machine without hardware but with a modem needs this much; depmod
# unpacks each of the compressed modules anew, which an emulated processor does slowly.
KERNEL_FOLDERS = (
    "arch/x86/crypto", "crypto", "drivers/char/hw_random", "drivers/net/dummy.ko",
    "drivers/net/ppp", "drivers/net/slip", "drivers/net/tun.ko", "drivers/net/veth.ko",
    "drivers/net/vrf.ko", "drivers/usb/atm", "drivers/usb/class/cdc-acm.ko", "drivers/usb/common",
    "drivers/usb/core", "drivers/usb/usbip", "drivers/virtio", "fs/9p", "fs/fscache", "fs/netfs",
    "fs/overlayfs", "lib", "net/9p", "net/atm", "net/core", "net/ipv4/gre.ko", "net/packet",
    "net/unix",
)

# Loaded before the root file system is there.
BOOT_MODULES = ["virtio_pci", "9pnet_virtio", "9p", "overlay"]


def package_names(kind):
    """The packages of one kind in the list: "kernel", on the host, or "guest"."""
    lines = PACKAGE_LIST.read_text(encoding="ascii").splitlines()
    return [words[1] for words in map(str.split, lines) if words[:1] == [kind]]


def cache_folder():
    """Where the guest's files are kept between runs; outside the source tree."""
    chosen = os.environ.get("NORVIX_LAB_CACHE")
    if chosen:
        return pathlib.Path(chosen)
    if os.geteuid() == 0:
        return pathlib.Path("/var/cache/norvix-lab")
    base = os.environ.get("XDG_CACHE_HOME") or os.path.expanduser("~/.cache")
    return pathlib.Path(base) / "norvix-lab"


def run(*command, **options):
    return subprocess.run(command, check=True, timeout=DOWNLOAD_SECONDS, **options)


def install_host_packages():
    """Installs what runs on the host itself, when it is missing."""
    missing = [name for name in package_names("kernel") if not is_installed(name)]
    if missing:
        run("apt-get", "install", "-y", "--no-install-recommends", *missing,
            env=dict(os.environ, DEBIAN_FRONTEND="noninteractive"))


def is_installed(package):
    status = subprocess.run(["dpkg-query", "-W", "-f", "${db:Status-Status}", package],
                            capture_output=True, text=True, timeout=60)
    return status.stdout == "installed"


class Image:
    """The unpacked guest: `root` holds the packages' files, `kernel` and `initramfs` boot it."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.root = self.folder / "root"
        self.kernel = self.folder / "vmlinuz"
        self.initramfs = self.folder / "initramfs.gz"

    @property
    def kernel_release(self):
        [folder] = (self.root / "usr/lib/modules").iterdir()
        return folder.name


def prepare(system=None):
    """Returns the image with the kernel of a system ("12", "13", "newest"; without one that which
    this runs on): the image that there is, unless it is a week old or its recipe has changed. Asking
    the package lists what is newest takes long on a busy machine. Whoever comes while it is being
    made waits for it."""
    suite = suites.codename(system)
    recipe = [HERE / "boot.sh", HERE / "suites.py", pathlib.Path(__file__)]
    key = hashlib.sha256(b"".join([" ".join(package_names("guest")).encode(),
                                   *(path.read_bytes() for path in recipe)])).hexdigest()[:16]
    image = Image(cache_folder() / f"guest-{suite}-{key}")
    cache_folder().mkdir(parents=True, exist_ok=True)
    with open(cache_folder() / f"being-made-{suite}", "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        install_host_packages()
        remove_old_images()
        if not image.initramfs.exists():
            make(image, suite)
    return image


def make(image, suite):
    shutil.rmtree(image.folder, ignore_errors=True)
    image.root.mkdir(parents=True)
    # Where the kernel's modules are looked for depends on who looks.
    (image.root / "lib").symlink_to("usr/lib")
    apt = suites.Apt(cache_folder() / f"packages-{suite}", suite)
    for archive in apt.fetch(package_names("guest")):
        unpack(archive, image)
    run("depmod", "-b", str(image.root), image.kernel_release)
    write_initramfs(image)


def remove_old_images():
    """Removes images that were made more than a week ago."""
    for folder in cache_folder().glob("guest-*"):
        if time.time() - folder.stat().st_mtime > KEPT_SECONDS:
            shutil.rmtree(folder, ignore_errors=True)


def is_wanted_of_kernel(name):
    """Whether the guest needs this file of a kernel's package."""
    parts = pathlib.PurePosixPath(name).parts
    if "modules" not in parts:
        return parts[:1] == ("boot",) and parts[-1].startswith("vmlinuz-")
    inside = "/".join(parts[parts.index("modules") + 2:])
    return (inside == "vmlinuz" or inside.startswith("modules.")
            or inside.startswith(tuple(f"kernel/{folder}" for folder in KERNEL_FOLDERS)))


def unpack(archive, image):
    """Unpacks one archive; of the kernel only what the guest needs, and /lib as usr/lib."""
    target = image.folder / "unpacking"
    target.mkdir()
    if archive.name.startswith(KERNEL_PACKAGES):
        with subprocess.Popen(["dpkg-deb", "--fsys-tarfile", str(archive)],
                              stdout=subprocess.PIPE) as files:
            with tarfile.open(fileobj=files.stdout, mode="r|") as content:
                for entry in content:
                    if entry.isfile() and is_wanted_of_kernel(entry.name):
                        content.extract(entry, target)
        for found in target.rglob("vmlinuz*"):
            shutil.move(found, image.kernel)
        shutil.rmtree(target / "boot", ignore_errors=True)
    else:
        run("dpkg-deb", "-x", str(archive), str(target))
    # Debian's / has links in these places, which a folder of an upper layer would hide.
    for name in ("bin", "sbin", "lib", "lib64"):
        if (target / name).is_symlink():
            (target / name).unlink()
        elif (target / name).is_dir():
            shutil.copytree(target / name, target / "usr" / name, symlinks=True, dirs_exist_ok=True)
            shutil.rmtree(target / name)
    for name in ("var/run", "var/lock"):
        if (target / name).is_dir() and not (target / name).is_symlink():
            (target / name).rmdir()  # the links to /run come with the system below
    shutil.copytree(target, image.root, symlinks=True, dirs_exist_ok=True)
    shutil.rmtree(target)


def module_name(path):
    """How the kernel calls the module in a file, compressed or not."""
    return pathlib.PurePath(path).name.partition(".")[0].replace("-", "_")


def modules_in_order(image, names):
    """Paths of the modules and of all they need, dependencies first. What is built into the kernel
    needs nothing."""
    base = image.root / "usr/lib/modules" / image.kernel_release
    needs = {module_name(path): [] for path in (base / "modules.builtin").read_text().split()}
    for line in (base / "modules.dep").read_text().splitlines():
        path, _, rest = line.partition(":")
        needs[module_name(path)] = [path] + rest.split()
    paths = []
    for name in names:
        for path in reversed(needs[module_name(name)]):
            if path not in paths:
                paths.append(path)
    return [base / path for path in paths]


def module_content(path):
    """A module as busybox loads it, which knows no compression."""
    return lzma.decompress(path.read_bytes()) if path.suffix == ".xz" else path.read_bytes()


def write_initramfs(image):
    """busybox, the boot script and the modules that reach the host's files."""
    modules = modules_in_order(image, BOOT_MODULES)
    archive = CpioArchive()
    for folder in ("bin", "dev", "proc", "sys", "modules", "host", "memory", "packages", "root"):
        archive.folder(folder)
    archive.file("bin/busybox", (image.root / "usr/bin/busybox").read_bytes(), 0o755)
    archive.file("init", (HERE / "boot.sh").read_bytes(), 0o755)
    for number, module in enumerate(modules):
        archive.file(f"modules/{number:02}-{module_name(module)}.ko", module_content(module), 0o644)
    with gzip.open(image.initramfs.with_suffix(".new"), "wb", compresslevel=6) as out:
        out.write(archive.finished())
    image.initramfs.with_suffix(".new").rename(image.initramfs)


class CpioArchive:
    """The one archive format that the kernel unpacks ("newc"), without the cpio program."""

    def __init__(self):
        self.parts = []
        self.count = 0

    def folder(self, name):
        self._entry(name, b"", 0o040755)

    def file(self, name, content, mode):
        self._entry(name, content, 0o100000 | mode)

    def finished(self):
        self._entry("TRAILER!!!", b"", 0)
        return b"".join(self.parts)

    def _entry(self, name, content, mode):
        self.count += 1
        path = name.encode() + b"\0"
        fields = [self.count, mode, 0, 0, 1, 0, len(content), 0, 0, 0, 0, len(path), 0]
        header = b"070701" + b"".join(b"%08X" % field for field in fields)
        self.parts.append(self._padded(header + path) + self._padded(content))

    @staticmethod
    def _padded(data):
        return data + b"\0" * (-len(data) % 4)
