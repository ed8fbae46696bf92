// SPDX-License-Identifier: MIT
// Stands in for a modem's driver: builds as a kernel module and says a line.
#include <linux/init.h>
#include <linux/module.h>

static int __init stand_in_init(void)
{
    pr_info("unicorn_msw: stand-in loaded\n");
    return 0;
}

static void __exit stand_in_exit(void) { }

module_init(stand_in_init);
module_exit(stand_in_exit);
MODULE_LICENSE("Dual MIT/GPL");
MODULE_DESCRIPTION("stand-in for a modem driver");
