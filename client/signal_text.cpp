// SPDX-License-Identifier: MIT
#include "client/signal_text.h"

#include "client/say.h"
#include "client/text_format.h"

#include <QStringList>
#include <vector>

namespace {

struct SignalRow
{
    const char *name;
    const char *arguments; ///< names, separated by blanks
    const char *text; ///< %1 and %2 take the values
};

// In the order of the interface description.
const std::vector<SignalRow> &signalTable()
{
    static const std::vector<SignalRow> table = {
        {"transmissionSpeed", "rx tx", QT_TRANSLATE_NOOP("Say", "speed: %1 down, %2 up")},
        {"transmissionErrors", "rx tx",
            QT_TRANSLATE_NOOP("Say", "errors: %1 receiving, %2 sending")},
        {"transmissionBytes", "rx tx", QT_TRANSLATE_NOOP("Say", "totals: %1 received, %2 sent")},
        {"IP", "ip", QT_TRANSLATE_NOOP("Say", "address: %1")},
        {"defaultRoute", "iface", QT_TRANSLATE_NOOP("Say", "default route: through %1")},
        {"connectionTime", "h m s", QT_TRANSLATE_NOOP("Say", "connected for %1")},
        {"modemPlugged", "name", QT_TRANSLATE_NOOP("Say", "modem plugged: %1")},
        {"newModemPlugged", "name",
            QT_TRANSLATE_NOOP(
                "Say", "new modem plugged: %1 – “norvixctl modem adopt” takes it into use")},
        {"modemUnplugged", "", QT_TRANSLATE_NOOP("Say", "modem unplugged")},
        {"newModemUnplugged", "", QT_TRANSLATE_NOOP("Say", "new modem unplugged")},
        {"incorrectDNS", "", QT_TRANSLATE_NOOP("Say", "resolver configuration is wrong")},
        {"settingOpenDNS", "success",
            QT_TRANSLATE_NOOP("Say", "writing the OpenDNS resolvers: %1")},
        {"connectionEstablished", "", QT_TRANSLATE_NOOP("Say", "connection established")},
        {"connectionTerminated", "", QT_TRANSLATE_NOOP("Say", "connection terminated")},
        {"establishingConnection", "", QT_TRANSLATE_NOOP("Say", "connecting")},
        {"setEnabledConnect", "enable",
            QT_TRANSLATE_NOOP("Say", "a new connection can be started: %1")},
        {"connectionState", "state", QT_TRANSLATE_NOOP("Say", "connection state: %1")},
        {"connectionTimeout", "",
            QT_TRANSLATE_NOOP("Say", "time-out: the provider does not answer")},
        {"restartModemStarted", "", QT_TRANSLATE_NOOP("Say", "restarting the modem")},
        {"restartModemFinished", "", QT_TRANSLATE_NOOP("Say", "modem driver reloaded")},
        {"accountDataChanged", "success", QT_TRANSLATE_NOOP("Say", "account written: %1")},
        {"compilingDriver", "", QT_TRANSLATE_NOOP("Say", "building the modem's driver")},
        {"compilationFinished", "success", QT_TRANSLATE_NOOP("Say", "driver build finished: %1")},
        {"synchronizing", "", QT_TRANSLATE_NOOP("Say", "waiting for the line to synchronise")},
        {"synchronizationFailed", "", QT_TRANSLATE_NOOP("Say", "the line did not synchronise")},
        {"invalidAccountData", "",
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
    if (signal == QLatin1String("transmissionSpeed")) {
        return {rateText(number(0)), rateText(number(1))};
    }
    if (signal == QLatin1String("transmissionBytes")) {
        return {bytesText(number(0)), bytesText(number(1))};
    }
    if (signal == QLatin1String("connectionTime")) {
        return {clockText(qint64(number(0)) * 3600 + qint64(number(1)) * 60 + qint64(number(2)))};
    }
    if (signal == QLatin1String("connectionState")) {
        return {connectionText(values.value(0).toInt())};
    }
    if (signal == QLatin1String("setEnabledConnect")) {
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
    // Both at once: a value may itself contain a percent sign.
    return values.size() > 1 ? text.arg(values.at(0), values.at(1))
        : values.size() == 1 ? text.arg(values.at(0))
                             : text;
}

QJsonObject signalArguments(const QString &signal, const QVariantList &arguments)
{
    const SignalRow *row = findRow(signal);
    const QStringList names = row == nullptr
        ? QStringList()
        : QString::fromLatin1(row->arguments).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QJsonObject object;
    for (int position = 0; position < arguments.size(); ++position) {
        const QString name = names.value(position, QString::number(position));
        object[name] = QJsonValue::fromVariant(arguments.at(position));
    }
    return object;
}

QString connectionWord(int state)
{
    switch (state) {
    case 0:
        return QStringLiteral("connected");
    case 1:
        return QStringLiteral("connecting");
    case 2:
        return QStringLiteral("disconnected");
    default:
        return QStringLiteral("unknown");
    }
}

QString connectionText(int state)
{
    switch (state) {
    case 0:
        return Say::tr("connected");
    case 1:
        return Say::tr("connecting");
    case 2:
        return Say::tr("not connected");
    default:
        return Say::tr("unknown");
    }
}
