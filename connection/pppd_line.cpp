// SPDX-License-Identifier: MIT
#include "connection/pppd_line.h"

#include <QString>

QString linkPatternText()
{
    return QStringLiteral(R"(^Connect:\s+[a-z]{2,4}[0-9}{1}\s+<-->\s+[a-z]{2,4}[0-9}{1})");
}

QRegExp linkPattern()
{
    // As it stands the class never closes and nothing would ever match.
    return QRegExp(
        linkPatternText().replace(QStringLiteral("[0-9}{1}"), QStringLiteral("[0-9}]{1}")));
}

QRegExp localAddressPattern()
{
    return QRegExp(QStringLiteral(
        R"(^local\s+IP\s+address\s+[0-9]{1,4}\.[0-9]{1,4}\.[0-9]{1,4}\.[0-9]{1,4})"));
}

QRegExp authenticationFailedPattern()
{
    return QRegExp(QStringLiteral(R"(^(rcvd \[CHAP Failure id=.{1,5} "permission denied"\]))"
                                  R"(|(CHAP authentication failed: permission denied))"
                                  R"(|(sent \[LCP TermReq id=.{1,5} )"
                                  R"("Failed to authenticate ourselves to peer"\]))"));
}

PppdEvent classifyPppdLine(const QByteArray &line, const QRegExp &link, const QRegExp &localAddress,
    const QRegExp &authenticationFailed)
{
    // One character per byte, zero bytes too: nothing that the far end sends hides the rest.
    const QString text = QString::fromLatin1(line.constData(), line.size());
    if (text.contains(link)) {
        return PppdEvent::Link;
    }
    if (text.contains(localAddress)) {
        return PppdEvent::LocalAddress;
    }
    if (text.contains(authenticationFailed)) {
        return PppdEvent::AuthenticationFailed;
    }
    if (line.contains("Timeout waiting for PADO packets")) {
        return PppdEvent::DiscoveryTimeout;
    }
    return PppdEvent::None;
}
