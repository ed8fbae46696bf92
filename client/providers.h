// SPDX-License-Identifier: MIT
// Line parameters that providers have commonly used.
#pragma once

#include <QString>
#include <QStringList>
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

/// The same in the order of the countries' names, then of their own, as the user's language sorts.
std::vector<Provider> providersByName();

/// The codes of all their countries in the order of the countries' names.
QStringList countriesByName();

/// The country's name in the user's language; any other code as it is.
QString countryName(const QString &code);
