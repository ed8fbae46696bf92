// SPDX-License-Identifier: MIT
// What a line of pppd's output means for the connection.
#pragma once

#include <QByteArray>
#include <QRegExp>

/// The meaning of one line.
enum class PppdEvent
{
    None,
    Link, ///< PPP runs on the link; negotiation goes on
    LocalAddress, ///< the link is up
    AuthenticationFailed,
    DiscoveryTimeout, ///< no access concentrator answered
};

/// The text of the link pattern as it is required to stand, with its unbalanced character class.
QString linkPatternText();

/// The three patterns, ready to match. The link pattern means what its text says it means: where
/// "[0-9}{1}" stands, one character out of the digits and the closing brace.
QRegExp linkPattern();
QRegExp localAddressPattern();
QRegExp authenticationFailedPattern();

/// The meaning of @p line; the first of the three patterns that matches decides.
PppdEvent classifyPppdLine(const QByteArray &line, const QRegExp &link, const QRegExp &localAddress,
    const QRegExp &authenticationFailed);
