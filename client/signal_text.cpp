// SPDX-License-Identifier: MIT
#include "client/signal_text.h"

#include "client/say.h"
#include "client/text_format.h"
#include "dbus/contract.h"

#include <QStringList>
#include <vector>

namespace {

struct SignalRow
{
    const char *name;
    const char *text; ///< %1 and %2 take the values
};

const std::vector<SignalRow> &signalTable()
{
    static const std::vector<SignalRow> table = {
        {DaemonSignal::transmissionSpeed, QT_TRANSLATE_NOOP("Say", "speed: %1 down, %2 up")},
        {DaemonSignal::transmissionErrors,
            QT_TRANSLATE_NOOP("Say", "errors: %1 receiving, %2 sending")},
        {DaemonSignal::transmissionBytes, QT_TRANSLATE_NOOP("Say", "totals: %1 received, %2 sent")},
        {DaemonSignal::IP, QT_TRANSLATE_NOOP("Say", "address: %1")},
        {DaemonSignal::defaultRoute, QT_TRANSLATE_NOOP("Say", "default route: through %1")},
        {DaemonSignal::connectionTime, QT_TRANSLATE_NOOP("Say", "connected for %1")},
        {DaemonSignal::modemPlugged, QT_TRANSLATE_NOOP("Say", "modem plugged: %1")},
        {DaemonSignal::newModemPlugged, QT_TRANSLATE_NOOP("Say", "new modem plugged: %1")},
        {DaemonSignal::modemUnplugged, QT_TRANSLATE_NOOP("Say", "modem unplugged")},
        {DaemonSignal::newModemUnplugged, QT_TRANSLATE_NOOP("Say", "new modem unplugged")},
        {DaemonSignal::incorrectDNS, QT_TRANSLATE_NOOP("Say", "resolver configuration is wrong")},
        {DaemonSignal::settingOpenDNS,
            QT_TRANSLATE_NOOP("Say", "writing the OpenDNS resolvers: %1")},
        {DaemonSignal::connectionEstablished, QT_TRANSLATE_NOOP("Say", "connection established")},
        {DaemonSignal::connectionTerminated, QT_TRANSLATE_NOOP("Say", "connection terminated")},
        {DaemonSignal::establishingConnection, QT_TRANSLATE_NOOP("Say", "connecting")},
        {DaemonSignal::setEnabledConnect,
            QT_TRANSLATE_NOOP("Say", "a new connection can be started: %1")},
        {DaemonSignal::connectionState, QT_TRANSLATE_NOOP("Say", "connection state: %1")},
        {DaemonSignal::connectionTimeout,
            QT_TRANSLATE_NOOP("Say", "time-out: the provider does not answer")},
        {DaemonSignal::restartModemStarted, QT_TRANSLATE_NOOP("Say", "restarting the modem")},
        {DaemonSignal::restartModemFinished, QT_TRANSLATE_NOOP("Say", "modem driver reloaded")},
        {DaemonSignal::accountDataChanged, QT_TRANSLATE_NOOP("Say", "account written: %1")},
        {DaemonSignal::compilingDriver, QT_TRANSLATE_NOOP("Say", "building the modem's driver")},
        {DaemonSignal::compilationFinished, QT_TRANSLATE_NOOP("Say", "driver build finished: %1")},
        {DaemonSignal::synchronizing,
            QT_TRANSLATE_NOOP("Say", "waiting for the line to synchronise")},
        {DaemonSignal::synchronizationFailed,
            QT_TRANSLATE_NOOP("Say", "the line did not synchronise")},
        {DaemonSignal::invalidAccountData,
            QT_TRANSLATE_NOOP("Say", "the provider refused login or password")},
    };
    return table;
}

const SignalRow *findRow(const QString &signal)
{
    for (const SignalRow &row : signalTable()) {
        if (signal == QLatin1String(row.name)) {
            return &row;
        }
    }
    return nullptr;
}

QString yesNo(bool yes)
{
    return yes ? Say::tr("yes") : Say::tr("no");
}

QString successText(bool success)
{
    return success ? Say::tr("success") : Say::tr("failed");
}

/// The values as the sentence of @p signal takes them.
QStringList readableValues(const QString &signal, const QVariantList &values)
{
    const auto number = [&](int position) { return values.value(position).toDouble(); };
    if (signal == QLatin1String(DaemonSignal::transmissionSpeed)) {
        return {rateText(number(0)), rateText(number(1))};
    }
    if (signal == QLatin1String(DaemonSignal::transmissionBytes)) {
        return {bytesText(number(0)), bytesText(number(1))};
    }
    if (signal == QLatin1String(DaemonSignal::connectionTime)) {
        const auto whole = [&](int position) {
            const QVariant value = values.value(position);
            return qint64(value.userType() == QMetaType::Int ? value.toInt() : 0);
        };
        return {clockText(whole(0) * 3600 + whole(1) * 60 + whole(2))};
    }
    if (signal == QLatin1String(DaemonSignal::connectionState)) {
        return {connectionText(values.value(0).toInt())};
    }
    if (signal == QLatin1String(DaemonSignal::setEnabledConnect)) {
        return {yesNo(values.value(0).toBool())};
    }
    QStringList texts;
    for (const QVariant &value : values) {
        texts.append(value.type() == QVariant::Bool ? successText(value.toBool())
                                                    : printable(value.toString()));
    }
    return texts;
}

} // namespace

QString signalText(const QString &signal, const QVariantList &arguments)
{
    const QStringList values = readableValues(signal, arguments);
    const SignalRow *row = findRow(signal);
    if (row == nullptr) {
        return printable(signal) + QLatin1Char(' ') + values.join(QLatin1Char(' '));
    }
    QString text = Say::tr(row->text);
    const auto places = text.count(QLatin1Char('%'));
    if (places == 0) {
        return text;
    }
    // Both at once: a value may itself contain a percent sign.
    return places == 1 ? text.arg(values.value(0)) : text.arg(values.value(0), values.value(1));
}

QJsonObject signalArguments(const QString &signal, const QVariantList &arguments)
{
    QStringList names;
    for (const BusSignal &known : daemonSignals) {
        if (signal == QLatin1String(known.name)) {
            names = QString::fromLatin1(known.arguments).split(QLatin1Char(','));
        }
    }
    QJsonObject object;
    for (int position = 0; position < arguments.size(); ++position) {
        const QString name = names.value(position, QString::number(position));
        object[name] = QJsonValue::fromVariant(arguments.at(position));
    }
    return object;
}

QString connectionWord(int state)
{
    switch (ConnectionState(state)) {
    case ConnectionUp:
        return QStringLiteral("connected");
    case ConnectionConnecting:
        return QStringLiteral("connecting");
    case ConnectionDown:
        return QStringLiteral("disconnected");
    }
    return QStringLiteral("unknown");
}

QString connectionText(int state)
{
    switch (ConnectionState(state)) {
    case ConnectionUp:
        return Say::tr("connected");
    case ConnectionConnecting:
        return Say::tr("connecting");
    case ConnectionDown:
        return Say::tr("not connected");
    }
    return Say::tr("unknown");
}
