// SPDX-License-Identifier: MIT
#include "ctl/screen/watch_view.h"

#include "ctl/screen/quality_view.h"
#include "ctl/screen/remedy_text.h"

#include "client/say.h"
#include "client/text_format.h"
#include "dbus/contract.h"

#include <algorithm>

namespace {

constexpr int mostHistory = 600;

// A counter that began anew shows for one second as a difference that wrapped around 32 bits.
constexpr double wrappedRate = 2147483648.0;

std::optional<double> plausibleRate(const QVariant &value)
{
    const double rate = value.toDouble();
    return rate < wrappedRate ? std::optional<double>(rate) : std::nullopt;
}

void remember(QList<double> &history, std::optional<double> rate)
{
    history.append(rate.value_or(0));
    while (history.size() > mostHistory) {
        history.removeFirst();
    }
}

QString known(const std::optional<double> &value, QString (*text)(double))
{
    return value ? text(*value) : QStringLiteral("-");
}

QJsonValue jsonNumber(const std::optional<double> &value)
{
    return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null);
}

QString orDash(const QString &text)
{
    return text.isEmpty() ? QStringLiteral("-") : text;
}

QString connectionLine(const WatchState &state)
{
    if (!state.isDaemonThere) {
        return Say::tr("the daemon is not running");
    }
    QStringList parts = {connectionText(state.connection)};
    if (state.connection == ConnectionUp) {
        parts.append({orDash(state.interface), orDash(state.address)});
    }
    if (state.seconds) {
        parts.append(clockText(*state.seconds));
    }
    return parts.join(QStringLiteral("  "));
}

/// One direction: a head with rate and total, and the graph below it.
QStringList direction(const QString &name, const std::optional<double> &rate,
    const std::optional<double> &total, const QList<double> &history, int width, int rows,
    bool hasGlyphs)
{
    const QList<double> shown = history.mid(std::max(0, history.size() - width));
    const double peak
        = shown.isEmpty() ? 0 : *std::max_element(shown.constBegin(), shown.constEnd());
    QStringList lines
        = {Say::tr("%1 %2  total %3  peak %4")
                .arg(name, known(rate, rateText), known(total, bytesText), rateText(peak))};
    lines.append(rateGraph(history, width, rows, hasGlyphs));
    return lines;
}

} // namespace

void forgetConnection(WatchState &state)
{
    state.seconds.reset();
    state.receiveRate.reset();
    state.sendRate.reset();
    state.address.clear();
    state.route.clear();
}

bool takeSignal(WatchState &state, const QString &signal, const QVariantList &arguments)
{
    const QVariant first = arguments.value(0);
    const QVariant second = arguments.value(1);
    if (signal == QLatin1String(DaemonSignal::transmissionSpeed)) {
        state.receiveRate = plausibleRate(first);
        state.sendRate = plausibleRate(second);
        remember(state.receiveHistory, state.receiveRate);
        remember(state.sendHistory, state.sendRate);
        return false;
    }
    if (signal == QLatin1String(DaemonSignal::transmissionErrors)) {
        state.receiveErrors = first.toDouble();
        state.sendErrors = second.toDouble();
        return false;
    }
    if (signal == QLatin1String(DaemonSignal::transmissionBytes)) {
        state.received = first.toDouble();
        state.sent = second.toDouble();
        return true;
    }
    if (signal == QLatin1String(DaemonSignal::connectionTime)) {
        state.seconds = first.toLongLong() * 3600 + second.toLongLong() * 60
            + arguments.value(2).toLongLong();
        return false;
    }
    if (signal == QLatin1String(DaemonSignal::IP)) {
        state.address = first.toString();
    } else if (signal == QLatin1String(DaemonSignal::defaultRoute)) {
        state.route = first.toString();
    } else if (signal == QLatin1String(DaemonSignal::connectionEstablished)) {
        state.connection = ConnectionUp;
    } else if (signal == QLatin1String(DaemonSignal::connectionState)) {
        state.connection = first.toInt();
    } else if (signal == QLatin1String(DaemonSignal::establishingConnection)) {
        state.connection = ConnectionConnecting;
    } else if (signal == QLatin1String(DaemonSignal::connectionTerminated)) {
        state.connection = ConnectionDown;
    }
    if (state.connection == ConnectionDown) {
        forgetConnection(state);
    }
    state.event = signalWithRemedy(signal, arguments);
    return false;
}

QStringList rateGraph(const QList<double> &values, int width, int rows, bool hasGlyphs)
{
    const QList<double> shown = values.mid(std::max(0, values.size() - width));
    const double peak
        = shown.isEmpty() ? 0 : *std::max_element(shown.constBegin(), shown.constEnd());
    // Something that flows is never drawn as nothing, and nothing is not drawn.
    Curve curve;
    for (int column = shown.size(); column < width; ++column) {
        curve.append(std::nullopt);
    }
    for (const double value : shown) {
        curve.append(value > 0 ? std::optional<double>(value) : std::nullopt);
    }
    return bars(curve, peak, rows, hasGlyphs);
}

QStringList watchScreen(const WatchState &state, int width, int height, bool hasGlyphs)
{
    // Four lines of words and two heads; what remains is shared by the two graphs.
    const int rows = std::clamp((height - 7) / 2, 1, 8);
    QStringList lines = {connectionLine(state)};
    lines += direction(Say::tr("down"), state.receiveRate, state.received, state.receiveHistory,
        width, rows, hasGlyphs);
    lines += direction(
        Say::tr("up"), state.sendRate, state.sent, state.sendHistory, width, rows, hasGlyphs);
    lines.append(
        Say::tr("errors: %1 receiving, %2 sending").arg(state.receiveErrors).arg(state.sendErrors));
    lines.append(state.event);
    lines.append(Say::tr("Ctrl-C ends the view, not the connection."));
    for (QString &line : lines) {
        line = printable(line).left(width);
    }
    return lines.mid(0, height - 1);
}

QString watchLine(const WatchState &state)
{
    return Say::tr("%1  down %2  up %3  received %4  sent %5")
        .arg(connectionLine(state), known(state.receiveRate, rateText),
            known(state.sendRate, rateText), known(state.received, bytesText),
            known(state.sent, bytesText));
}

QJsonObject watchObject(const WatchState &state)
{
    const auto textOrNull = [](const QString &text) {
        return text.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
    };
    return {
        {QStringLiteral("daemon"), state.isDaemonThere},
        {QStringLiteral("state"), connectionWord(state.connection)},
        {QStringLiteral("interface"), textOrNull(state.interface)},
        {QStringLiteral("address"), textOrNull(state.address)},
        {QStringLiteral("route"), textOrNull(state.route)},
        {QStringLiteral("seconds"),
            state.seconds ? QJsonValue(*state.seconds) : QJsonValue(QJsonValue::Null)},
        {QStringLiteral("receiveRate"), jsonNumber(state.receiveRate)},
        {QStringLiteral("sendRate"), jsonNumber(state.sendRate)},
        {QStringLiteral("receivedBytes"), jsonNumber(state.received)},
        {QStringLiteral("sentBytes"), jsonNumber(state.sent)},
        {QStringLiteral("receiveErrors"), state.receiveErrors},
        {QStringLiteral("sendErrors"), state.sendErrors},
    };
}
