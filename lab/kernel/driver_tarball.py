# SPDX-License-Identifier: MIT
"""A driver's source archive as the daemon builds it: small, and its module says that it is there."""

import io
import tarfile

TOP = "ueagle-atm-1.4"
LOADED = "the driver from the tarball"

MAKEFILE = """obj-m := ueagle-atm.o
KDIR = /lib/modules/$(shell uname -r)/build
all:
\t$(MAKE) -C $(KDIR) M=$(PWD) modules
install:
\t$(MAKE) -C $(KDIR) M=$(PWD) modules_install
"""

SOURCE = """#include <linux/module.h>
static int __init begin(void)
{
\tpr_info("LOADED\\n");
\treturn 0;
}
static void __exit end(void)
{
}
module_init(begin);
module_exit(end);
MODULE_LICENSE("GPL");
""".replace("LOADED", LOADED)


def write_tarball(path, source=SOURCE, makefile=MAKEFILE):
    """Writes the archive for ueagle-atm, such that the daemon trusts it when path is root's."""
    with tarfile.open(path, "w", format=tarfile.USTAR_FORMAT) as archive:
        for name, text in (("Makefile", makefile), ("ueagle-atm.c", source)):
            entry = tarfile.TarInfo(f"{TOP}/{name}")
            entry.size, entry.mode = len(text.encode()), 0o644
            archive.addfile(entry, io.BytesIO(text.encode()))
    path.chmod(0o644)
