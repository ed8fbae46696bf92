// SPDX-License-Identifier: MIT
// Empty /opt and /var/log for tests of code with fixed paths, without touching the host's.
#pragma once

/// Moves the program into a mount namespace of its own, with empty folders in place of /opt and
/// /var/log and an empty /opt/norvix, and begins anew there. Call it first in main(). Ends the
/// program with status 1 where namespaces are not to be had. As an ordinary user it makes a user
/// namespace as well, in which the program is root.
void enterPrivateRoot(char **argv);

/// True when other users exist beside this one, so that files can be given to them.
bool canChangeOwners();
