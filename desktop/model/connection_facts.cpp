// SPDX-License-Identifier: MIT
#include "desktop/model/connection_facts.h"

#include "client/ppp_files.h"
#include "client/say.h"
#include "client/text_format.h"
#include "dbus/contract.h"
#include "desktop/model/headline.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>

namespace desktop {

namespace {

constexpr double fairMargin = 6;
constexpr double goodMargin = 10;

QString routeText(const ConnectionModel &model, const Surroundings &surroundings)
{
    const QString route = surroundings.routeInterface.value_or(model.route);
    if (route.isEmpty()) {
        return surroundings.routeInterface ? Say::tr("nothing: there is no default route")
                                           : Say::tr("not known");
    }
    const QString own = model.interface.isEmpty() ? QStringLiteral("ppp0") : model.interface;
    return route == own ? Say::tr("this line (%1)").arg(printable(route))
                        : Say::tr("another connection (%1)").arg(printable(route));
}

QString nameServerText(const Surroundings &surroundings)
{
    if (surroundings.nameServers.isEmpty()) {
        return Say::tr("none");
    }
    QString servers = printable(surroundings.nameServers.join(QStringLiteral(", ")));
    if (!surroundings.isNameAnswered) {
        return servers;
    }
    return *surroundings.isNameAnswered ? Say::tr("answer (%1)").arg(servers)
                                        : Say::tr("do not answer (%1)").arg(servers);
}

QString bothWays(const QString &down, const QString &up, const QString &unit)
{
    return Say::tr("%1 down, %2 up, %3").arg(down, up, unit);
}

QString rateFact(const LineStatus &line)
{
    const QLocale locale;
    if (!line.downKbit) {
        return lineText({line.line, {}, {}, {}});
    }
    return line.upKbit ? bothWays(
               locale.toString(*line.downKbit), locale.toString(*line.upKbit), Say::tr("kbit/s"))
                       : Say::tr("%1 kbit/s down").arg(locale.toString(*line.downKbit));
}

QString marginFact(const event::LineSeen &line)
{
    const auto number = [](double value) { return QLocale().toString(value, 'f', 1); };
    const double least = std::min(*line.downMargin, line.upMargin.value_or(*line.downMargin));
    const QString values = line.upMargin
        ? bothWays(number(*line.downMargin), number(*line.upMargin), Say::tr("dB"))
        : Say::tr("%1 dB down").arg(number(*line.downMargin));
    return Say::tr("%1 (%2)").arg(marginWord(least), values);
}

QString trafficFact(const Surroundings &surroundings)
{
    const quint64 today = surroundings.today ? surroundings.today->total() : 0;
    return Say::tr("%1, %2").arg(bytesText(double(today)),
        trafficText(surroundings.month->total(), surroundings.plan.limit));
}

QString modemText(const ConnectionModel &model)
{
    if (model.isBuilding) {
        return Say::tr("its driver is being built");
    }
    if (!model.isModemPlugged) {
        return Say::tr("not known");
    }
    if (!*model.isModemPlugged) {
        return model.announcedModem.isEmpty()
            ? Say::tr("none in use")
            : Say::tr("%1, not set up yet").arg(printable(model.announcedModem));
    }
    return model.modemName.isEmpty() ? Say::tr("ready")
                                     : Say::tr("%1, ready").arg(printable(model.modemName));
}

QString lastConnectionText(const KeeperSession &session, qint64 now)
{
    return Say::tr("%1, for %2").arg(momentText(session.began, now), durationText(session.seconds));
}

} // namespace

QString marginWord(double decibels)
{
    return decibels >= goodMargin ? Say::tr("good")
        : decibels >= fairMargin  ? Say::tr("fair")
                                  : Say::tr("poor");
}

QString trafficText(quint64 bytes, quint64 limit)
{
    return limit == 0 ? bytesText(double(bytes))
                      : Say::tr("%1 of %2").arg(bytesText(double(bytes)), bytesText(double(limit)));
}

QString momentText(qint64 seconds, qint64 now)
{
    const QLocale locale;
    const QDateTime moment = QDateTime::fromSecsSinceEpoch(seconds);
    const QDate today = QDateTime::fromMSecsSinceEpoch(now).date();
    const QString clock = locale.toString(moment.time(), QLocale::ShortFormat);
    if (moment.date() == today) {
        return Say::tr("today, %1").arg(clock);
    }
    if (moment.date() == today.addDays(-1)) {
        return Say::tr("yesterday, %1").arg(clock);
    }
    return Say::tr("%1, %2").arg(locale.toString(moment.date(), QLocale::ShortFormat), clock);
}

QVector<ShownFact> connectionFacts(
    const ConnectionModel &model, const Surroundings &surroundings, qint64 now)
{
    const bool isThere = model.daemon == DaemonPresence::There;
    const bool isUp = isThere && model.state == ConnectionUp;
    QVector<ShownFact> facts;
    if (isUp) {
        facts.append({Say::tr("Address"),
            model.address.isEmpty() ? Say::tr("not known") : printable(model.address)});
        facts.append({Say::tr("Internet goes through"), routeText(model, surroundings)});
        facts.append({Say::tr("Name servers"), nameServerText(surroundings)});
    }
    facts.append({Say::tr("Modem"), isThere ? modemText(model) : Say::tr("not known")});
    if (model.line && model.line->line.line != Line::Unknown) {
        facts.append({Say::tr("Line"), rateFact(model.line->line)});
    }
    if (model.line && model.line->downMargin) {
        facts.append({Say::tr("Noise margin"), marginFact(*model.line)});
    }
    if (!isUp && !surroundings.login.isEmpty()) {
        // What the packages put into pppd's files is nobody's account.
        const bool isOnes = surroundings.login.toUtf8() != placeholderLogin();
        facts.append({Say::tr("Account"),
            isOnes ? printable(surroundings.login) : Say::tr("not entered yet")});
    }
    if (!isUp && surroundings.lastSession) {
        facts.append(
            {Say::tr("Last connected"), lastConnectionText(*surroundings.lastSession, now)});
    }
    if (surroundings.month) {
        facts.append({Say::tr("Today, this month"), trafficFact(surroundings)});
    }
    return facts;
}

} // namespace desktop
