// SPDX-License-Identifier: MIT
// norvixctl history
#include "client/daemon_bus.h"
#include "client/keeper_bus.h"
#include "client/say.h"
#include "client/text_format.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/report.h"

#include <algorithm>

namespace {

constexpr int usualEntries = 20;
constexpr int mostEntries = 100000;

const QJsonValue null(QJsonValue::Null);

QJsonValue textOrNull(const QString &text)
{
    return text.isEmpty() ? null : QJsonValue(text);
}

/// One story in two forms: a person is told less, in words.
struct Story
{
    Table machine{QStringLiteral("history"),
        {QStringLiteral("kind"), QStringLiteral("began"), QStringLiteral("ended"),
            QStringLiteral("seconds"), QStringLiteral("count"), QStringLiteral("reason"),
            QStringLiteral("daily"), QStringLiteral("interface"), QStringLiteral("address"),
            QStringLiteral("receivedBytes"), QStringLiteral("sentBytes")},
        {}};
    Table person{QString(), {},
        {Say::tr("Began"), Say::tr("Lasted"), Say::tr("Received"), Say::tr("Sent"),
            Say::tr("What became of it")}};
};

void addSession(Story &story, const QList<KeeperSession> &sessions, int place)
{
    const KeeperSession &session = sessions.at(place);
    const bool isDaily = isDailyHangUp(sessions, place);
    const QString words = !session.ended ? Say::tr("It is still up.")
        : isDaily ? Say::tr("The provider hung up, as it does every day: nothing is wrong.")
                  : keeperReasonFact(session.reason).text;
    story.machine.add({QStringLiteral("session"), momentIso(session.began),
        session.ended ? QJsonValue(momentIso(*session.ended)) : null, session.seconds, 1,
        textOrNull(session.reason), isDaily, textOrNull(session.interface),
        textOrNull(session.address), qint64(session.received), qint64(session.sent)});
    story.person.add({momentText(session.began), clockText(session.seconds),
        bytesText(double(session.received)), bytesText(double(session.sent)), words});
}

void addAttempts(Story &story, const KeeperAttempts &attempts)
{
    const qint64 seconds = std::max<qint64>(0, attempts.last - attempts.first);
    const QString words = Say::tr("%n failed attempt(s).", nullptr, int(attempts.count))
        + QLatin1Char(' ') + keeperReasonFact(attempts.reason).text;
    story.machine.add(
        {QStringLiteral("attempts"), momentIso(attempts.first), momentIso(attempts.last), seconds,
            qint64(attempts.count), textOrNull(attempts.reason), false, null, null, null, null});
    story.person.add({momentText(attempts.first), clockText(seconds), QStringLiteral("-"),
        QStringLiteral("-"), words});
}

/// Sessions and attempts together, newest first as both are, @p most entries.
Story storyOf(const QList<KeeperSession> &sessions, const QList<KeeperAttempts> &attempts, int most)
{
    Story story;
    int session = 0;
    int attempt = 0;
    while (session + attempt < most && session + attempt < sessions.size() + attempts.size()) {
        const bool isSession = attempt == attempts.size()
            || (session < sessions.size()
                && sessions.at(session).began >= attempts.at(attempt).first);
        if (isSession) {
            addSession(story, sessions, session++);
        } else {
            addAttempts(story, attempts.at(attempt++));
        }
    }
    return story;
}

} // namespace

int runHistory(const Invocation &invocation, const Terminal &terminal)
{
    const auto most = linesWanted(invocation, usualEntries, mostEntries);
    if (!most) {
        return terminal.fail(BadUsage, Say::tr("--lines takes a whole number."));
    }
    const DaemonBus bus;
    const KeeperBus keeper(bus);
    // One more than is shown: the daily hang-up is told by the one before it.
    const auto sessions = keeper.sessions(quint32(*most) + 1);
    if (!sessions.ok()) {
        return terminal.fail(sessions.failure);
    }
    const auto attempts = keeper.attempts(quint32(*most));
    if (!attempts.ok()) {
        return terminal.fail(attempts.failure);
    }
    const Story story = storyOf(sessions.value, attempts.value, *most);
    if (terminal.form != Form::Human) {
        story.machine.print(terminal);
    } else if (story.person.isEmpty()) {
        terminal.paragraph(Say::tr("Nothing has been connected yet."));
    } else {
        story.person.print(terminal);
    }
    return Ok;
}
