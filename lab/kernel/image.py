# SPDX-License-Identifier: MIT
"""The guest's own files: Debian packages unpacked into a cache, and an initramfs made from them."""

import fcntl
import gzip
import hashlib
import os
import pathlib
import re
import shutil
import subprocess
import time

HERE = pathlib.Path(__file__).resolve().parent
PACKAGE_LIST = HERE.parent.parent / "debian-packages"

DOWNLOAD_SECONDS = 600
KEPT_SECONDS = 7 * 24 * 3600

# A kernel package unpacks to 400 MB. A machine without hardware but with a modem needs this much.
KERNEL_FOLDERS = [
    "arch/x86/crypto", "crypto", "drivers/atm", "drivers/char/hw_random", "drivers/input",
    "drivers/net/dummy.ko", "drivers/net/ppp", "drivers/net/slip", "drivers/net/tun.ko",
    "drivers/net/veth.ko", "drivers/net/vrf.ko", "drivers/usb/atm", "drivers/usb/common",
    "drivers/usb/core", "drivers/usb/usbip", "drivers/virtio", "fs/9p", "fs/fscache", "fs/netfs",
    "fs/overlayfs", "lib", "net",
]

# Loaded before the root file system is there.
BOOT_MODULES = ["virtio_pci", "9pnet_virtio", "9p", "overlay"]


def package_names(kind):
    """The packages of one kind ("kernel", on the host, or "guest") in the list; of several names
    the first that the package lists know."""
    lines = PACKAGE_LIST.read_text().splitlines()
    entries = [words[1].split("|") for words in map(str.split, lines) if words[:1] == [kind]]
    return [names[0] if len(names) == 1 else next(filter(is_known, names)) for names in entries]


def is_known(package):
    """Whether the package lists have it."""
    return run("apt-cache", "madison", package, capture_output=True).stdout != b""


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


def dependencies(package):
    """What a package depends on, by name."""
    text = run("apt-cache", "depends", package, capture_output=True, text=True).stdout
    return re.findall(r"(?m)^  Depends: ([^\s<]+)$", text)


def guest_packages():
    """The packages to unpack. Those of the kernel stand for others that change with its version."""
    packages = []
    for name in package_names("guest"):
        if name == "linux-image-amd64":
            packages.append(dependencies(name)[0])
        elif name == "linux-headers-amd64":
            headers = dependencies(name)[0]
            packages += [headers, *dependencies(headers)]
        else:
            packages.append(name)
    return packages


class Image:
    """The unpacked guest: `root` holds the packages' files, `kernel` and `initramfs` boot it."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.root = self.folder / "root"
        self.kernel = self.folder / "vmlinuz"
        self.initramfs = self.folder / "initramfs.gz"

    @property
    def kernel_release(self):
        return next((self.root / "usr/lib/modules").iterdir()).name


def prepare():
    """Returns the image: the one that there is, unless it is a week old or its recipe has changed.
    Asking the package lists what is newest takes long on a busy machine. Whoever comes while it is
    being made waits for it."""
    recipe = [HERE / "boot.sh", pathlib.Path(__file__)]
    key = hashlib.sha256(b"".join([" ".join(package_names("guest")).encode(),
                                   *(path.read_bytes() for path in recipe)])).hexdigest()[:16]
    image = Image(cache_folder() / f"guest-{key}")
    cache_folder().mkdir(parents=True, exist_ok=True)
    with open(cache_folder() / "being-made", "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        install_host_packages()
        remove_old_images()
        if not image.initramfs.exists():
            make(image)
    return image


def make(image):
    shutil.rmtree(image.folder, ignore_errors=True)
    image.root.mkdir(parents=True)
    for archive in download(guest_packages()):
        unpack(archive, image)
    run("depmod", "-b", str(image.root / "usr"), image.kernel_release)
    write_initramfs(image)


def remove_old_images():
    """Removes images that were made more than a week ago."""
    for folder in cache_folder().glob("guest-*"):
        if time.time() - folder.stat().st_mtime > KEPT_SECONDS:
            shutil.rmtree(folder, ignore_errors=True)


def download(packages):
    """The packages' archives, fetched through apt when they are not in the cache yet."""
    store = cache_folder() / "packages"
    store.mkdir(parents=True, exist_ok=True)
    archives = []
    for package in packages:
        if not list(store.glob(f"{package}_*.deb")):
            run("apt-get", "download", "-q", "-o", "APT::Sandbox::User=root", package, cwd=store)
        archives.append(max(store.glob(f"{package}_*.deb"), key=lambda path: path.stat().st_mtime))
    return archives


def unpack(archive, image):
    """Unpacks one archive; of the kernel only what the guest needs, and /lib as usr/lib."""
    target = image.folder / "unpacking"
    target.mkdir()
    if archive.name.startswith("linux-image-"):
        patterns = ["./boot/vmlinuz-*", "./lib/modules/*/modules.*"]
        patterns += [f"./lib/modules/*/kernel/{folder}*" for folder in KERNEL_FOLDERS]
        with subprocess.Popen(["dpkg-deb", "--fsys-tarfile", str(archive)],
                              stdout=subprocess.PIPE) as files:
            run("tar", "-x", "-C", str(target), "--wildcards", *patterns, stdin=files.stdout)
        shutil.move(next((target / "boot").glob("vmlinuz-*")), image.kernel)
        shutil.rmtree(target / "boot")
    else:
        run("dpkg-deb", "-x", str(archive), str(target))
    # Debian's / has links in these places, which a folder of an upper layer would hide.
    for name in ("bin", "sbin", "lib", "lib64"):
        if (target / name).is_dir():
            shutil.copytree(target / name, target / "usr" / name, symlinks=True, dirs_exist_ok=True)
            shutil.rmtree(target / name)
    shutil.copytree(target, image.root, symlinks=True, dirs_exist_ok=True)
    shutil.rmtree(target)


def modules_in_order(image, names):
    """Paths of the modules and of all they need, dependencies first."""
    base = image.root / "usr/lib/modules" / image.kernel_release
    needs = {}
    for line in (base / "modules.dep").read_text().splitlines():
        path, _, rest = line.partition(":")
        needs[pathlib.Path(path).stem.replace("-", "_")] = [path] + rest.split()
    paths = []
    for name in names:
        for path in reversed(needs[name.replace("-", "_")]):
            if path not in paths:
                paths.append(path)
    return [base / path for path in paths]


def write_initramfs(image):
    """busybox, the boot script and the modules that reach the host's files."""
    modules = modules_in_order(image, BOOT_MODULES)
    archive = CpioArchive()
    for folder in ("bin", "dev", "proc", "sys", "modules", "host", "memory", "packages", "root"):
        archive.folder(folder)
    archive.file("bin/busybox", (image.root / "usr/bin/busybox").read_bytes(), 0o755)
    archive.file("init", (HERE / "boot.sh").read_bytes(), 0o755)
    for number, module in enumerate(modules):
        archive.file(f"modules/{number:02}-{module.name}", module.read_bytes(), 0o644)
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
