// SPDX-License-Identifier: MIT
#include "client/providers.h"

#include "client/say.h"
#include "client/translation.h"

#include <QCollator>
#include <algorithm>

namespace {

struct Country
{
    const char *code;
    const char *name;
};

constexpr Country countries[] = {
    {"AT", QT_TRANSLATE_NOOP("Say", "Austria")},
    {"AU", QT_TRANSLATE_NOOP("Say", "Australia")},
    {"BE", QT_TRANSLATE_NOOP("Say", "Belgium")},
    {"BR", QT_TRANSLATE_NOOP("Say", "Brazil")},
    {"CH", QT_TRANSLATE_NOOP("Say", "Switzerland")},
    {"CZ", QT_TRANSLATE_NOOP("Say", "Czechia")},
    {"DE", QT_TRANSLATE_NOOP("Say", "Germany")},
    {"DK", QT_TRANSLATE_NOOP("Say", "Denmark")},
    {"ES", QT_TRANSLATE_NOOP("Say", "Spain")},
    {"FR", QT_TRANSLATE_NOOP("Say", "France")},
    {"GB", QT_TRANSLATE_NOOP("Say", "United Kingdom")},
    {"IT", QT_TRANSLATE_NOOP("Say", "Italy")},
    {"NL", QT_TRANSLATE_NOOP("Say", "Netherlands")},
    {"PL", QT_TRANSLATE_NOOP("Say", "Poland")},
    {"PT", QT_TRANSLATE_NOOP("Say", "Portugal")},
    {"RU", QT_TRANSLATE_NOOP("Say", "Russia")},
    {"UA", QT_TRANSLATE_NOOP("Say", "Ukraine")},
    {"US", QT_TRANSLATE_NOOP("Say", "United States")},
};

} // namespace

const std::vector<Provider> &commonProviders()
{
    // A starting point only: the provider's own letter decides.
    static const std::vector<Provider> table = {
        {"AT", "A1 Telekom Austria", 8, 48, "PPPoA"},
        {"AU", "Telstra", 8, 35, "PPPoE"},
        {"BE", "Proximus (Belgacom)", 8, 35, "PPPoE"},
        {"BR", "Vivo (Telefonica)", 8, 35, "PPPoE"},
        {"CH", "Swisscom", 8, 35, "PPPoE"},
        {"CZ", "O2", 8, 48, "PPPoE"},
        {"DE", "Deutsche Telekom", 1, 32, "PPPoE"},
        {"DK", "TDC", 0, 101, "PPPoE"},
        {"ES", "Movistar (Telefonica)", 8, 32, "PPPoE"},
        {"FR", "Free", 8, 36, "PPPoA"},
        {"FR", "Orange", 8, 35, "PPPoE"},
        {"GB", "BT and resellers", 0, 38, "PPPoA"},
        {"IT", "TIM (Alice)", 8, 35, "PPPoE"},
        {"NL", "KPN", 8, 48, "PPPoA"},
        {"PL", "Orange (Neostrada)", 0, 35, "PPPoA"},
        {"PT", "MEO (Telepac)", 0, 35, "PPPoE"},
        {"RU", "Rostelecom", 0, 35, "PPPoE"},
        {"UA", "Ukrtelecom", 1, 32, "PPPoE"},
        {"US", "AT&T", 0, 35, "PPPoE"},
        {"US", "Verizon", 0, 35, "PPPoE"},
    };
    return table;
}

std::vector<Provider> providersByName()
{
    std::vector<Provider> providers = commonProviders();
    const QCollator order{QLocale(usersLanguage())};
    std::sort(
        providers.begin(), providers.end(), [&order](const Provider &one, const Provider &other) {
            const int countries = order.compare(
                countryName(QLatin1String(one.country)), countryName(QLatin1String(other.country)));
            return countries == 0
                ? order.compare(QString::fromUtf8(one.name), QString::fromUtf8(other.name)) < 0
                : countries < 0;
        });
    return providers;
}

QStringList countriesByName()
{
    QStringList codes;
    for (const Provider &provider : providersByName()) {
        codes.append(QLatin1String(provider.country));
    }
    codes.removeDuplicates();
    return codes;
}

QString countryName(const QString &code)
{
    const auto *found = std::find_if(std::begin(countries), std::end(countries),
        [&code](const Country &country) { return code == QLatin1String(country.code); });
    return found == std::end(countries) ? code : Say::tr(found->name);
}
