// SPDX-License-Identifier: MIT
// norvixctl status
#include "client/daemon_bus.h"
#include "client/keeper_bus.h"
#include "client/line_status.h"
#include "client/link_facts.h"
#include "client/routes.h"
#include "client/say.h"
#include "client/settings_file.h"
#include "client/signal_text.h"
#include "client/text_format.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/keeper_report.h"
#include "ctl/screen/remedy_text.h"
#include "ctl/screen/report.h"
#include "dbus/contract.h"

#include <QDateTime>

namespace {

constexpr int shortTimeoutMs = 5000;

QJsonValue textOrNull(const QString &text)
{
    return text.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

/// The daemon's placeholder for "none" as an empty text.
QString withoutDots(const QString &text)
{
    return text == QLatin1String(Bus::none) ? QString() : text;
}

void addModem(Report &report, const BusReply &plugged)
{
    const QList<UsbModem> modems = pluggedModems();
    QString name = settingText("modem");
    QString text = name.isEmpty() ? Say::tr("none taken into use") : name;
    Tone tone = Tone::Plain;
    const bool isPlugged = plugged.value.toBool();
    if (!isPlugged && !modems.isEmpty()) {
        const UsbModem &found = modems.constFirst();
        const bool isInUse = found.id.vendor == settingNumber("vendor_id")
            && found.id.product == settingNumber("product_id");
        const QString family = QString::fromLatin1(found.family->name);
        text = isInUse
            ? Say::tr("%1 is plugged in, but the daemon does not see it: “norvixctl doctor”")
                  .arg(family)
            : Say::tr("%1 is plugged in but not taken into use: “norvixctl modem adopt”")
                  .arg(family);
        tone = Tone::Doubtful;
    } else if (plugged.ok()) {
        text = Say::tr("%1, %2").arg(
            text, isPlugged ? Say::tr("plugged in") : Say::tr("not plugged in"));
        tone = isPlugged ? Tone::Good : Tone::Doubtful;
    }
    report.add(QStringLiteral("modem.name"), textOrNull(name), Say::tr("Modem"), text, tone);
    report.add(QStringLiteral("modem.plugged"),
        plugged.ok() ? QJsonValue(isPlugged) : QJsonValue(QJsonValue::Null));
}

std::optional<LineSample> newestSample(const DaemonBus &bus)
{
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    const auto samples = KeeperBus(bus).lineQuality(now - freshLineSeconds, now);
    return samples.value.isEmpty() ? std::nullopt : std::optional<LineSample>(samples.value.last());
}

/// A keeper that does not answer is not asked once more.
void addLine(Report &report, const DaemonBus &bus, bool doesKeeperAnswer)
{
    LineSources sources{lineStatus(), atmCarrier(), std::nullopt};
    LineStatus status = lineStatusOf(sources);
    const bool isUnsaid
        = status.line == Line::Unknown || (status.line == Line::Up && !status.downKbit);
    if (isUnsaid && doesKeeperAnswer) {
        sources.sample = newestSample(bus);
        status = lineStatusOf(sources);
    }
    const Tone tone = status.line == Line::Up ? Tone::Good : Tone::Doubtful;
    report.add(QStringLiteral("line.state"), lineWord(status.line), Say::tr("Line"),
        lineText(status), tone);
    const auto rate = [](const std::optional<int> &kbit) {
        return kbit ? QJsonValue(*kbit) : QJsonValue(QJsonValue::Null);
    };
    report.add(QStringLiteral("line.downKbit"), rate(status.downKbit));
    report.add(QStringLiteral("line.upKbit"), rate(status.upKbit));
}

/// A figure that may be unknown, shown by @p text.
void addFigure(Report &report, const char *key, const QString &label,
    const std::optional<double> &value, QString (*text)(double))
{
    report.add(QLatin1String(key), value.has_value() ? QJsonValue(*value) : QJsonValue(), label,
        value.has_value() ? text(*value) : QStringLiteral("-"));
}

void addFigures(Report &report, const QString &interface)
{
    std::optional<double> seconds;
    std::optional<double> received;
    std::optional<double> sent;
    if (const auto age = connectionSeconds(interface)) {
        seconds = double(*age);
    }
    if (const auto totals = interfaceTotals(interface)) {
        received = double(totals->received);
        sent = double(totals->sent);
    }
    addFigure(report, "connection.seconds", Say::tr("Time"), seconds,
        [](double value) { return clockText(qint64(value)); });
    addFigure(report, "connection.receivedBytes", Say::tr("Received"), received, bytesText);
    addFigure(report, "connection.sentBytes", Say::tr("Sent"), sent, bytesText);
}

void addConnection(Report &report, const DaemonBus &bus, int state)
{
    const auto ask = [&](const char *method) {
        return bus.call(method, {}, DaemonBus::Start::Never, shortTimeoutMs).value.toString();
    };
    const bool isUp = state == ConnectionUp;
    const QString interface = isUp ? ask(DaemonMethod::getInterface) : QString();
    const QString address = isUp ? withoutDots(ask(DaemonMethod::getIP)) : QString();
    // The daemon names the last route with a fitting name, which need not be the one that is taken.
    const RouteJudgement judgement = judgeRoutes(gatherRouteFacts(interface));
    const auto shown
        = [](const QString &text) { return text.isEmpty() ? QStringLiteral("-") : text; };

    report.add(QStringLiteral("connection.state"), connectionWord(state), Say::tr("Connection"),
        connectionText(state), isUp ? Tone::Good : Tone::Doubtful);
    report.add(QStringLiteral("connection.interface"), textOrNull(interface), Say::tr("Interface"),
        shown(interface));
    report.add(QStringLiteral("connection.address"), textOrNull(address), Say::tr("Address"),
        shown(address));
    const QString unused = routeText(judgement, interface);
    report.add(QStringLiteral("connection.route"), textOrNull(judgement.interface),
        Say::tr("Default route"), shown(judgement.interface),
        unused.isEmpty() ? Tone::Plain : Tone::Doubtful);
    report.add(QStringLiteral("connection.isUsed"),
        isUp && judgement.use != RouteUse::Unknown
            ? QJsonValue(judgement.use == RouteUse::ThroughLink)
            : QJsonValue(QJsonValue::Null));
    if (!unused.isEmpty()) {
        report.note(unused + QLatin1Char(' ') + remedyText(routeRemedy(judgement, interface)));
    }
    for (const StrayServer &server : judgement.strayServers) {
        report.note(strayServerText(server));
    }
    addFigures(report, interface);
}

/// Says that the stored idle time means nothing to the keeper.
void addIdleTime(Report &report, const DaemonBus &bus, const KeeperAnswer<KeeperState> &keeper)
{
    if (!keeper.ok() || !keeper.value.isKeeping) {
        return;
    }
    const int idle
        = bus.call(DaemonMethod::getIdlenessTime, {}, DaemonBus::Start::Never, shortTimeoutMs)
              .value.toInt();
    if (idle > 0) {
        report.note(Say::tr("The stored idle time (%1) is not honoured: the keeper keeps a "
                            "connection that is wanted, used or not.")
                        .arg(idle));
    }
}

} // namespace

int runStatus(const Invocation &, const Terminal &terminal)
{
    const DaemonBus bus;
    const bool isRunning = bus.isDaemonRunning();
    const BusReply state
        = bus.call(DaemonMethod::getConnectionState, {}, DaemonBus::Start::Never, shortTimeoutMs);
    const BusReply compiling
        = bus.call(DaemonMethod::getIsCompiling, {}, DaemonBus::Start::Never, shortTimeoutMs);

    Report report;
    report.add(QStringLiteral("daemon.running"), isRunning, Say::tr("Daemon"),
        isRunning ? Say::tr("running") : Say::tr("not running"),
        isRunning ? Tone::Good : Tone::Bad);
    addModem(report,
        bus.call(DaemonMethod::getIsModemPlugged, {}, DaemonBus::Start::Never, shortTimeoutMs));
    const KeeperAnswer<KeeperState> keeper = KeeperBus(bus).state();
    addLine(report, bus, keeper.ok());
    addConnection(report, bus, state.ok() ? state.value.toInt() : connectionUnknown);
    addKeeper(report, keeper, QStringLiteral("keeper."));
    addIdleTime(report, bus, keeper);
    report.add(QStringLiteral("driver.compiling"),
        compiling.ok() ? QJsonValue(compiling.value.toBool()) : QJsonValue(QJsonValue::Null));
    if (compiling.value.toBool()) {
        report.note(Say::tr("The modem's driver is being built."));
    }
    report.print(terminal);
    return state.ok() ? Ok : terminal.fail(state.failure);
}
