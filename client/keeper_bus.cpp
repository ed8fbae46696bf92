// SPDX-License-Identifier: MIT
#include "client/keeper_bus.h"

#include "client/daemon_bus.h"
#include "dbus/contract.h"

#include <QDBusMessage>
#include <QFileInfo>

namespace {

QDBusMessage callOf(const char *interface, const char *method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(QLatin1String(Bus::keeperService),
        QLatin1String(Bus::keeperPath), QLatin1String(interface), QLatin1String(method));
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return message;
}

const Failure notUnderstood = {FailureKind::KeeperNotUnderstood, QString()};

} // namespace

Failure failureOfKeeper(const Failure &failure, bool isInstalled)
{
    switch (failure.kind) {
    case FailureKind::NoDaemon:
    case FailureKind::NotStarted:
        return {isInstalled ? FailureKind::KeeperStopped : FailureKind::KeeperMissing, QString()};
    case FailureKind::NoAnswer:
        return {FailureKind::KeeperNoAnswer, QString()};
    case FailureKind::DaemonError:
        return {FailureKind::KeeperError, failure.detail};
    case FailureKind::None:
    case FailureKind::NoBus:
    case FailureKind::NotPermitted:
    case FailureKind::DaemonRefused:
    case FailureKind::DaemonNotStored:
    case FailureKind::KeeperMissing:
    case FailureKind::KeeperStopped:
    case FailureKind::KeeperNoAnswer:
    case FailureKind::KeeperRefused:
    case FailureKind::KeeperNotUnderstood:
    case FailureKind::KeeperError:
    case FailureKind::ValueRefused:
    case FailureKind::FileForbidden:
    case FailureKind::FileUnreadable:
    case FailureKind::FileUnwritable:
    case FailureKind::ModeUnchangeable:
    case FailureKind::SettingsInvalid:
        break;
    }
    return failure;
}

Failure failureOfKeeper(const Failure &failure)
{
    return failureOfKeeper(
        failure, QFileInfo(QStringLiteral("/opt/norvix/bin/norvix-keeper")).isExecutable());
}

KeeperBus::KeeperBus(const DaemonBus &bus)
    : m_bus(&bus)
{
}

QVariant KeeperBus::ask(const QDBusMessage &message, Failure &failure) const
{
    const BusReply reply = m_bus->callOther(message, keeperAnswerMs);
    failure = failureOfKeeper(reply.failure);
    return reply.value;
}

QVariant KeeperBus::ask(const char *method, const QVariantList &arguments, Failure &failure) const
{
    return ask(callOf(Bus::keeperInterface, method, arguments), failure);
}

template <typename Value>
KeeperAnswer<QList<Value>> KeeperBus::list(const char *method, const QVariantList &arguments,
    QList<Value> (*read)(const QList<QVariantMap> &)) const
{
    KeeperAnswer<QList<Value>> answer;
    const QVariant value = ask(method, arguments, answer.failure);
    if (!answer.ok()) {
        return answer;
    }
    if (const auto rows = busRows(value)) {
        answer.value = read(*rows);
    } else {
        answer.failure = notUnderstood;
    }
    return answer;
}

KeeperAnswer<KeeperState> KeeperBus::state() const
{
    KeeperAnswer<KeeperState> answer;
    const QVariant value = ask(
        callOf("org.freedesktop.DBus.Properties", "GetAll", {QLatin1String(Bus::keeperInterface)}),
        answer.failure);
    if (!answer.ok()) {
        return answer;
    }
    if (const auto state = keeperState(busMap(value).value_or(QVariantMap()))) {
        answer.value = *state;
    } else {
        answer.failure = notUnderstood;
    }
    return answer;
}

KeeperAnswer<QList<KeeperSession>> KeeperBus::sessions(quint32 most) const
{
    return list(KeeperMethod::GetSessions, {most}, keeperSessions);
}

KeeperAnswer<QList<KeeperAttempts>> KeeperBus::attempts(quint32 most) const
{
    return list(KeeperMethod::GetAttempts, {most}, keeperAttempts);
}

KeeperAnswer<QList<KeeperTraffic>> KeeperBus::days(quint32 most) const
{
    return list(KeeperMethod::GetDays, {most}, keeperDays);
}

KeeperAnswer<QList<KeeperTraffic>> KeeperBus::months(quint32 most) const
{
    return list(KeeperMethod::GetMonths, {most}, keeperMonths);
}

KeeperAnswer<QList<LineSample>> KeeperBus::lineQuality(qint64 from, qint64 until) const
{
    return list(KeeperMethod::GetLineQuality, {from, until}, lineSamples);
}

KeeperAnswer<KeeperPlan> KeeperBus::plan() const
{
    KeeperAnswer<KeeperPlan> answer;
    const QVariant value = ask(KeeperMethod::GetPlan, {}, answer.failure);
    if (!answer.ok()) {
        return answer;
    }
    if (const auto plan = keeperPlan(busMap(value).value_or(QVariantMap()))) {
        answer.value = *plan;
    } else {
        answer.failure = notUnderstood;
    }
    return answer;
}

Failure KeeperBus::setKeep(bool keep) const
{
    Failure failure;
    ask(KeeperMethod::SetKeep, {keep}, failure);
    return failure;
}

Failure KeeperBus::setLimit(quint64 bytes) const
{
    Failure failure;
    ask(KeeperMethod::SetLimit, {bytes}, failure);
    return failure;
}

Failure KeeperBus::setBillingDay(int day) const
{
    Failure failure;
    ask(KeeperMethod::SetBillingDay, {quint32(day)}, failure);
    return failure;
}
