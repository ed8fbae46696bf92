// SPDX-License-Identifier: MIT
// The line's state by the plain search, which the daemon's fast one has to equal.
#pragma once

#include "connection/line_state.h"

#include <QRegExp>
#include <array>

/// The marker is looked for backwards from the end, each state forwards from there, five times
/// over.
struct PlainLineState
{
    QRegExp marker{QStringLiteral("####")};
    std::array<QRegExp, 5> states;

    explicit PlainLineState(int vendorId)
    {
        states.fill(QRegExp(QStringLiteral("#####")));
        if (vendorId == 0x1110) {
            marker = QRegExp(QStringLiteral(R"(\[ueagle-atm\])"));
            states[0] = QRegExp(QStringLiteral(R"(\[ueagle-atm\] modem operational)"));
            states[3] = QRegExp(QStringLiteral(
                R"((\[ueagle-atm\] \(re\)booting started)|(\[ueagle-atm\] Modem started, waiting synchronization))"));
        } else if (vendorId == 0x0483) {
            marker = QRegExp(QStringLiteral("unicorn_msw:"));
            states[0] = QRegExp(QStringLiteral(
                R"((unicorn_msw: Current Modem State \(\d\): SHOWTIME_L\d)|(unicorn_msw: Event Reported \(\d\): Showtime))"));
            states[3] = QRegExp(QStringLiteral(
                R"((unicorn_msw: Current Modem State \(\d\): ACTIVATING)|(unicorn_msw: Event Reported \(\d\): Initializing)|(unicorn_msw: Current Modem State \(\d\): INITIALIZING)|(unicorn_msw: Current Modem State \(\d\): Ghs_HANDSHAKING))"));
        } else if (vendorId == 0x06b9) {
            marker = QRegExp(QStringLiteral(R"((ATM dev \d:)|(speedtch \d-\d:\d.\d:))"));
            states[0] = QRegExp(QStringLiteral(
                R"(ATM dev \d: ADSL line is up \(([0-9]{1,5}) kb/s down | ([0-9]{1,5}) kb/s up\))"));
            states[1] = QRegExp(QStringLiteral(R"(ATM dev \d: ADSL line is synchronising)"));
            states[4] = QRegExp(QStringLiteral(
                R"(speedtch \d-\d:\d.\d: speedtch_heavy_init: firmware upload failed)"));
        } else {
            marker = QRegExp(QStringLiteral(R"(ATM dev \d:)"));
            states[0] = QRegExp(QStringLiteral(R"(ATM dev \d: ADSL line: up)"));
            states[1] = QRegExp(QStringLiteral(R"(ATM dev \d: ADSL line: attempting to activate)"));
            states[3] = QRegExp(QStringLiteral(R"(ATM dev \d: ADSL line: initializing)"));
        }
    }

    LineReport operator()(const QByteArray &log) const
    {
        const QString text = QString::fromLatin1(log.constData());
        int start = text.size();
        for (int pass = 0; pass < 5; ++pass) {
            const int index = marker.lastIndexIn(text, start);
            if (index < 0) {
                return {LineUnknown, false};
            }
            for (const int state : {0, 1, 3, 2, 4}) {
                if (states[size_t(state)].indexIn(text, index) == index) {
                    return {LineState(state), true};
                }
            }
            start = index;
        }
        return {LineUnknown, true};
    }
};

inline bool sameReport(const LineReport &a, const LineReport &b)
{
    return a.state == b.state && a.driverLineFound == b.driverLineFound;
}
