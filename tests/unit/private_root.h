// SPDX-License-Identifier: MIT
// Empty /opt and /var/log, and a network of its own, for tests of code with fixed paths and names.
#pragma once

/// Moves the program into a mount namespace of its own, with empty folders in place of /opt and
/// /var/log, an empty /opt/norvix and a /dev in which no node can be replaced, and a network
/// namespace of its own, in which only "lo" is, down; begins anew there. Call it first in main().
/// Ends the program with status 1 where namespaces are not to be had. As an ordinary user it makes
/// a user namespace as well, in which the program is root.
void enterPrivateRoot(char **argv);

/// True when other users exist beside this one, so that files can be given to them.
bool canChangeOwners();
