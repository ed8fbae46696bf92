// SPDX-License-Identifier: MIT
#include "client/providers.h"

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
