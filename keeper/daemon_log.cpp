// SPDX-License-Identifier: MIT
#include "keeper/daemon_log.h"

#include "client/pppd_explain.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace keeper {

namespace {

constexpr qint64 mostBytes = 1 << 20;

Cause causeOf(PppdCause cause)
{
    switch (cause) {
    case PppdCause::NoPeerFile:
        return Cause::PeerFileMissing;
    case PppdCause::NoBridge:
        return Cause::BridgeMissing;
    case PppdCause::BadOption:
        return Cause::BadOption;
    case PppdCause::NoConcentrator:
        return Cause::NoConcentrator;
    case PppdCause::NoDevice:
        return Cause::DeviceMissing;
    case PppdCause::Refused:
        return Cause::AccountRefused;
    case PppdCause::MustAuthenticate:
        return Cause::PeerMustAuthenticate;
    case PppdCause::NoPassword:
        return Cause::PasswordMissing;
    case PppdCause::NoNegotiation:
    case PppdCause::Silent:
        return Cause::NoNegotiation;
    case PppdCause::PeerTerminated:
        return Cause::PeerTerminated;
    case PppdCause::HungUp:
    case PppdCause::Up: // and gone again
        return Cause::HungUp;
    case PppdCause::Unknown:
    case PppdCause::Ended:
        break;
    }
    return Cause::Unknown;
}

/// Whether the bridge was made for a circuit that nobody has set: its number is 0 then.
bool isCircuitMissing(const QByteArray &log)
{
    static const QRegularExpression circuit(
        QStringLiteral("VPI\\.VCI: [^\\n.]{0,10}\\.(?:0|error)?$"),
        QRegularExpression::MultilineOption);
    return circuit.match(QString::fromLatin1(log)).hasMatch();
}

/// When a line was written, seconds since 1970; the log has local time.
qint64 timeOf(const QByteArray &line)
{
    return QDateTime::fromString(
        QString::fromLatin1(line.left(19)), QStringLiteral("dd-MM-yyyy hh:mm:ss"))
        .toSecsSinceEpoch();
}

} // namespace

Cause causeInLog(const QByteArray &log)
{
    const Cause cause = causeOf(explainPppd(pppdLinesOfLog(log)).cause);
    return cause == Cause::BridgeMissing && isCircuitMissing(log) ? Cause::CircuitMissing : cause;
}

Unheard unheardInLog(
    const QByteArray &log, qint64 heardUntil, const QByteArray &modem, bool wasPlugged)
{
    // The daemon counts the steps of a disconnect; at the third it tells everybody.
    constexpr int toldAt = 3;
    const QByteArray begin = "debugHandler: ";
    const QByteArray plugging = "device added: \"" + modem + '"';
    bool isPlugged = wasPlugged;
    bool isOpen = false; // a disconnect that may turn out to be an unplugging
    int step = 0;
    for (const QByteArray &line : log.split('\n')) {
        const int place = line.indexOf(begin);
        if (place < 0 || timeOf(line) <= heardUntil) {
            continue;
        }
        const QByteArray text = line.mid(place + begin.size()).trimmed();
        if (text == plugging) {
            isPlugged = true;
            isOpen = false;
        }
        bool isNumber = false;
        const int number = text.toInt(&isNumber);
        if (!isNumber) {
            continue;
        }
        step = number == 1 || number == step + 1 ? number : 0;
        if (step == toldAt) {
            if (isOpen || !isPlugged) {
                return Unheard::Disconnect;
            }
            isOpen = true;
        }
    }
    return isOpen ? Unheard::DisconnectOrUnplugged : Unheard::Nothing;
}

bool wasRequestDropped(const QByteArray &log)
{
    return log.lastIndexOf("Can not establish connection, thread is still running!")
        > log.lastIndexOf("debugHandler: 3 \n"); // the step of a disconnect that is told to all
}

qint64 DaemonLog::end() const
{
    return QFileInfo(m_path).size();
}

QByteArray DaemonLog::since(qint64 place) const
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) {
        return QByteArray();
    }
    const qint64 size = file.size();
    const qint64 from = place > size ? 0 : place;
    file.seek(qMax(from, size - mostBytes));
    return file.read(mostBytes);
}

} // namespace keeper
