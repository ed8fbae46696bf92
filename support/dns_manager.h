// SPDX-License-Identifier: MIT
// The system's resolver configuration.
#pragma once

/// Checks and rewrites /etc/resolv.conf.
class DNS_Manager
{
};
