// SPDX-License-Identifier: MIT
// norvixctl line show, set, providers, quality
#include "client/daemon_bus.h"
#include "client/keeper_bus.h"
#include "client/providers.h"
#include "client/say.h"
#include "client/settings_file.h"
#include "client/text_format.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/failure_text.h"
#include "ctl/screen/quality_view.h"
#include "ctl/screen/report.h"
#include "dbus/contract.h"

#include <QDateTime>
#include <algorithm>
#include <unistd.h>

namespace {

struct LineKey
{
    const char *key;
    const char *getter;
    const char *label;
};

const QList<LineKey> &lineKeys()
{
    static const QList<LineKey> keys = {
        {"protocol", DaemonMethod::getProtocol, QT_TRANSLATE_NOOP("Say", "Protocol")},
        {"vpi", DaemonMethod::getVPI, QT_TRANSLATE_NOOP("Say", "VPI")},
        {"vci", DaemonMethod::getVCI, QT_TRANSLATE_NOOP("Say", "VCI")},
        {"service", DaemonMethod::getService, QT_TRANSLATE_NOOP("Say", "Service")},
    };
    return keys;
}

struct LineValues
{
    Failure failure; ///< why they can not be stored
    QMap<QString, QVariant> values; ///< by the keys of the settings; none when none was given
};

LineValues takenValues(const Invocation &invocation)
{
    LineValues line;
    const auto refuse = [&line](const QString &why) {
        line.failure = {FailureKind::ValueRefused, why};
        return line;
    };
    struct Range
    {
        const char *key;
        int most;
    };
    for (const Range &range : {Range{"vpi", 255}, Range{"vci", 65535}}) {
        if (!invocation.has(range.key)) {
            continue;
        }
        const auto number = wholeNumber(invocation.value(range.key), 0, range.most);
        if (!number) {
            return refuse(Say::tr("--%1 takes a whole number from 0 to %2.")
                              .arg(QLatin1String(range.key))
                              .arg(range.most));
        }
        line.values.insert(QLatin1String(range.key), *number);
    }
    if (invocation.has("protocol")) {
        line.values.insert(QStringLiteral("protocol"), invocation.value("protocol"));
    }
    if (invocation.has("service")) {
        const QString service = invocation.value("service");
        if (printable(service) != service) {
            return refuse(Say::tr("--service takes text without control characters."));
        }
        line.values.insert(QStringLiteral("service"), service);
    }
    return line;
}

/// The daemon is the one writer of its settings. Without one, root writes the file.
Failure store(const QMap<QString, QVariant> &values)
{
    const BusReply reply
        = DaemonBus().callSetup(SetupMethod::SetSettings, {values}, DaemonBus::Start::IfNeeded);
    return exitCodeOf(reply.failure) == NoDaemon && geteuid() == 0 ? writeSettings(values)
                                                                   : reply.failure;
}

constexpr int mostDays = 36500;

Table tableOf(const QList<LineSample> &samples)
{
    struct Column
    {
        const char *key;
        std::optional<double> LineSample::*figure;
    };
    static const QList<Column> columns
        = {{"carrier", &LineSample::carrier}, {"downKbit", &LineSample::downRate},
            {"upKbit", &LineSample::upRate}, {"downMargin", &LineSample::downMargin},
            {"upMargin", &LineSample::upMargin}, {"downAttenuation", &LineSample::downAttenuation},
            {"upAttenuation", &LineSample::upAttenuation}, {"downErrors", &LineSample::downErrors},
            {"upErrors", &LineSample::upErrors}};
    QStringList keys = {QStringLiteral("time"), QStringLiteral("seconds")};
    for (const Column &column : columns) {
        keys.append(QLatin1String(column.key));
    }
    Table table(QStringLiteral("samples"), keys, {});
    for (const LineSample &sample : samples) {
        QList<QJsonValue> values = {momentIso(sample.time), sample.span};
        for (const Column &column : columns) {
            const std::optional<double> figure = sample.*column.figure;
            values.append(figure ? QJsonValue(*figure) : QJsonValue(QJsonValue::Null));
        }
        table.add(values);
    }
    return table;
}

} // namespace

int runLineQuality(const Invocation &invocation, const Terminal &terminal)
{
    int days = 1;
    if (invocation.has("days")) {
        const auto number = wholeNumber(invocation.value("days"), 1, mostDays);
        if (!number) {
            return terminal.fail(BadUsage,
                Say::tr("--days takes a whole number of days from 1 to %1.").arg(mostDays));
        }
        days = *number;
    }
    constexpr qint64 daySeconds = 86400;
    const qint64 until = QDateTime::currentSecsSinceEpoch();
    const qint64 from = std::max<qint64>(0, until - days * daySeconds);
    const DaemonBus bus;
    const auto samples = KeeperBus(bus).lineQuality(from, until);
    if (!samples.ok()) {
        return terminal.fail(samples.failure);
    }
    if (terminal.form != Form::Human) {
        tableOf(samples.value).print(terminal);
        return Ok;
    }
    const QStringList lines
        = qualityView(samples.value, from, until, terminal.width(), terminal.hasGlyphs);
    if (lines.isEmpty()) {
        terminal.paragraph(Say::tr("Nothing is known of the line in this time. It is looked at "
                                   "once a minute while a connection is up."));
    }
    for (const QString &line : lines) {
        terminal.line(line);
    }
    return Ok;
}

int runLineShow(const Invocation &, const Terminal &terminal)
{
    const DaemonBus bus;
    const bool isFileReadable = canReadSettings();
    BusReply last;
    Report report;
    for (const LineKey &key : lineKeys()) {
        QString value;
        if (isFileReadable) {
            value = settingText(key.key);
        } else {
            last = bus.call(key.getter);
            value = last.value.toString();
            value = value == QLatin1String(Bus::unset) ? QString() : value;
        }
        const bool isSet = !value.isEmpty();
        report.add(QLatin1String(key.key), isSet ? QJsonValue(value) : QJsonValue(QJsonValue::Null),
            Say::tr(key.label), isSet ? value : Say::tr("not set"));
    }
    if (!last.ok()) {
        return terminal.fail(last.failure);
    }
    report.print(terminal);
    return Ok;
}

int runLineSet(const Invocation &invocation, const Terminal &terminal)
{
    const LineValues line = takenValues(invocation);
    if (line.failure) {
        return terminal.fail(line.failure);
    }
    if (line.values.isEmpty()) {
        return terminal.fail(
            BadUsage, Say::tr("Give at least one of --vpi, --vci, --protocol and --service."));
    }
    if (const Failure failure = store(line.values)) {
        return terminal.fail(failure);
    }
    terminal.paragraph(Say::tr("Stored. The next connection uses it."));
    const QString protocol = settingText("protocol");
    if (protocol != QLatin1String("PPPoE")) {
        terminal.paragraph(Say::tr("With PPPoA the circuit that counts stands in "
                                   "/etc/ppp/peers/norvix: the line “%1.%2” behind “plugin "
                                   "pppoatm.so”. “sudo norvixctl doctor --fix” puts it there.")
                               .arg(settingText("vpi", QStringLiteral("0")),
                                   settingText("vci", QStringLiteral("0"))));
    }
    return Ok;
}

int runLineProviders(const Invocation &, const Terminal &terminal)
{
    Table table(QStringLiteral("providers"),
        {QStringLiteral("country"), QStringLiteral("name"), QStringLiteral("vpi"),
            QStringLiteral("vci"), QStringLiteral("protocol")},
        {Say::tr("Country"), Say::tr("Provider"), Say::tr("VPI"), Say::tr("VCI"),
            Say::tr("Protocol")});
    for (const Provider &provider : commonProviders()) {
        table.add({QString::fromLatin1(provider.country), QString::fromLatin1(provider.name),
            provider.vpi, provider.vci, QString::fromLatin1(provider.protocol)});
    }
    table.print(terminal);
    if (terminal.form == Form::Human) {
        terminal.line();
        terminal.paragraph(Say::tr("Values that were common; the provider's own letter decides."));
    }
    return Ok;
}
