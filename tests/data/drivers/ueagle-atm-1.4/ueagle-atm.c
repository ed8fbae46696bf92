// SPDX-License-Identifier: MIT
// Stands in for a modem's driver: builds as a kernel module and says a line. Uses what the kernel
// dropped long ago, as old packages do.
#include <linux/config.h>
#include <linux/init.h>
#include <linux/module.h>

static int __devinit stand_in_init(void)
{
    printk(KERN_INFO "[ueagle-atm] stand-in loaded\n");
    return 0;
}

static void __devexit stand_in_exit(void) { }

module_init(stand_in_init);
module_exit(stand_in_exit);
MODULE_LICENSE("Dual MIT/GPL");
MODULE_DESCRIPTION("stand-in for a modem driver");
