// SPDX-License-Identifier: MIT
// The resolver check after each connection.
#include "daemon/norvix_daemon.h"

void Norvix_Daemon::verifyDNS() { }

void Norvix_Daemon::setOpenDNS() { }
