/* SPDX-License-Identifier: MIT */
#define _GNU_SOURCE
#include "bench/floor_line_state.h"

#include <string.h>

/* Texts are matched as they stand but for '0', any digit, and '?', any character. */
struct state
{
    const char *text;
    int value;
};

struct family
{
    const char *markers[2];
    struct state states[8];
};

static const struct family eagle = {{"[ueagle-atm]"},
    {{"[ueagle-atm] modem operational", 0}, {"[ueagle-atm] (re)booting started", 3},
        {"[ueagle-atm] Modem started, waiting synchronization", 3}}};
static const struct family unicorn = {{"unicorn_msw:"},
    {{"unicorn_msw: Current Modem State (0): SHOWTIME_L0", 0},
        {"unicorn_msw: Event Reported (0): Showtime", 0},
        {"unicorn_msw: Current Modem State (0): ACTIVATING", 3},
        {"unicorn_msw: Event Reported (0): Initializing", 3},
        {"unicorn_msw: Current Modem State (0): INITIALIZING", 3},
        {"unicorn_msw: Current Modem State (0): Ghs_HANDSHAKING", 3}}};
static const struct family speedtouch = {{"ATM dev 0:", "speedtch 0-0:0?0:"},
    {{"ATM dev 0: ADSL line is up (", 0}, {"ATM dev 0: ADSL line is synchronising", 1},
        {"speedtch 0-0:0?0: speedtch_heavy_init: firmware upload failed", 4}}};
static const struct family generic = {{"ATM dev 0:"},
    {{"ATM dev 0: ADSL line: up", 0}, {"ATM dev 0: ADSL line: attempting to activate", 1},
        {"ATM dev 0: ADSL line: initializing", 3}}};

static int starts_with(const char *log, const char *end, const char *text)
{
    for (; *text; ++text, ++log) {
        if (log == end)
            return 0;
        if (*text == '0' ? *log < '0' || *log > '9' : *text != '?' && *text != *log)
            return 0;
    }
    return 1;
}

/* "down" must follow the first rate. */
static int rate_follows(const char *line, const char *end)
{
    const char *rate = line + strlen("ATM dev 0: ADSL line is up (");
    const char *after = rate;

    while (after < end && *after >= '0' && *after <= '9')
        ++after;
    return after > rate && after - rate <= 5 && starts_with(after, end, " kb/s down ");
}

static int state_of(const char *line, const char *end, const struct family *family)
{
    const struct state *state;

    for (state = family->states; state->text; ++state) {
        if (starts_with(line, end, state->text)
            && (family != &speedtouch || state->value != 0 || rate_follows(line, end)))
            return state->value;
    }
    return 5;
}

int floor_line_state(const char *log, size_t size, int vendor_id)
{
    const struct family *family = vendor_id == 0x1110 ? &eagle
        : vendor_id == 0x0483                         ? &unicorn
        : vendor_id == 0x06b9                         ? &speedtouch
                                                      : &generic;
    const char *end = log + strnlen(log, size);
    const char *line = end;

    while (line > log) {
        --line;
        if ((*line == family->markers[0][0] && starts_with(line, end, family->markers[0]))
            || (family->markers[1] && *line == family->markers[1][0]
                && starts_with(line, end, family->markers[1])))
            return state_of(line, end, family);
    }
    return 5;
}
