// SPDX-License-Identifier: MIT
// Line parameters that providers have commonly used.
#pragma once

#include <vector>

struct Provider
{
    const char *country;
    const char *name;
    int vpi;
    int vci;
    const char *protocol; ///< "PPPoE" or "PPPoA"
};

const std::vector<Provider> &commonProviders();
