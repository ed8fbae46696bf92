// SPDX-License-Identifier: MIT
#include "daemon/setup.h"

#include "connection/pppd_command.h"
#include "daemon/settings.h"
#include "daemon/setup_rules.h"
#include "dbus/contract.h"
#include "network/account_safety.h"
#include "support/files/safe_file.h"

#include <QDBusConnection>
#include <QTimer>

namespace {

const char argumentsKey[] = "pppd_arguments";

void answerWithError(const QDBusMessage &message, const char *error, const QString &text)
{
    message.setDelayedReply(true);
    QDBusConnection::systemBus().send(message.createErrorReply(QLatin1String(error), text));
}

QVariantMap storedSettings()
{
    QVariantMap stored;
    const QStringList keys = settingsKeys();
    for (const QString &key : keys) {
        stored.insert(key, readSetting(settings(), key.toLatin1().constData()));
    }
    return stored;
}

/// Judged on what each of pppd's files would hold; one that is missing is for setAccountData() to
/// complain about.
AccountFault faultOf(const QString &login, const QString &password)
{
    for (const char *path : {"/etc/ppp/pap-secrets", "/etc/ppp/chap-secrets"}) {
        const QByteArray content = readFileBytes(QString::fromLatin1(path)).value_or(QByteArray());
        const AccountFault fault = faultInSecrets(content, login, password);
        if (fault != AccountFault::None) {
            return fault;
        }
    }
    for (const char *path : {"/etc/ppp/peers/norvix", "/etc/ppp/peers/norvix_unicorn"}) {
        const QByteArray content = readFileBytes(QString::fromLatin1(path)).value_or(QByteArray());
        const AccountFault fault = faultInPeerFile(content, login);
        if (fault != AccountFault::None) {
            return fault;
        }
    }
    return AccountFault::None;
}

} // namespace

SetupAdaptor::SetupAdaptor(QObject *object, SetupDoors daemon)
    : QDBusAbstractAdaptor(object)
    , m_daemon(std::move(daemon))
    , m_announced(GetSettings())
{
    // Several keys that are written together are announced together.
    auto *timer = new QTimer(this);
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, this, &SetupAdaptor::announceChanges);
    // Also from the threads, which read what somebody else wrote into the file.
    onSettingsTouched([timer] { QMetaObject::invokeMethod(timer, [timer] { timer->start(0); }); });
}

SetupAdaptor::~SetupAdaptor()
{
    onSettingsTouched({});
}

QVariantMap SetupAdaptor::GetSettings()
{
    return settingsForClients(storedSettings());
}

void SetupAdaptor::SetSettings(const QVariantMap &settings, const QDBusMessage &message)
{
    const CheckedSettings checked = checkedSettings(settings);
    if (!checked.refusal.isEmpty()) {
        answerWithError(message, Bus::setupRefused, checked.refusal);
        return;
    }
    store(checked.values, message);
}

QStringList SetupAdaptor::GetPppdArguments()
{
    return extraArgumentsFrom(readSetting(settings(), argumentsKey).toStringList());
}

void SetupAdaptor::SetPppdArguments(const QStringList &arguments, const QDBusMessage &message)
{
    const QString refusal = refusalOfArguments(arguments);
    if (!refusal.isEmpty()) {
        answerWithError(message, Bus::setupRefused, refusal);
        return;
    }
    store({{QLatin1String(argumentsKey), arguments.isEmpty() ? QVariant() : arguments}}, message);
}

void SetupAdaptor::SetAccount(
    const QString &login, const QString &password, const QDBusMessage &message)
{
    const AccountFault fault = faultOf(login, password);
    if (fault != AccountFault::None) {
        answerWithError(message, Bus::setupRefused, accountFaultText(fault));
        return;
    }
    if (!m_daemon.storeAccount(login, password)) {
        answerWithError(message, Bus::setupNotStored,
            QStringLiteral(
                "not all of pppd's files could be written; the daemon's log says which"));
    }
}

QString SetupAdaptor::GetAnnouncedModem(int &vendor_id, int &product_id, QString &udi)
{
    const AnnouncedModem modem = m_daemon.announcedModem();
    vendor_id = modem.vendorId;
    product_id = modem.productId;
    udi = modem.udi;
    return modem.name;
}

void SetupAdaptor::store(const QVariantMap &values, const QDBusMessage &message)
{
    QVariantMap before;
    for (auto value = values.begin(); value != values.end(); ++value) {
        const QByteArray key = value.key().toLatin1();
        before.insert(value.key(), readSetting(settings(), key.constData()));
        writeSetting(settings(), key.constData(), value.value());
    }
    if (syncSettings(settings())) {
        return;
    }
    for (auto value = before.begin(); value != before.end(); ++value) {
        writeSetting(settings(), value.key().toLatin1().constData(), value.value());
    }
    // Now, not when the main loop runs next: perhaps only reading it again has failed.
    syncSettings(settings());
    answerWithError(message, Bus::setupNotStored,
        QStringLiteral("the settings file could not be written; it is as it was"));
}

void SetupAdaptor::announceChanges()
{
    const QVariantMap now = GetSettings();
    QVariantMap changed;
    for (auto setting = now.begin(); setting != now.end(); ++setting) {
        if (m_announced.value(setting.key()) != setting.value()) {
            changed.insert(setting.key(), setting.value());
        }
    }
    m_announced = now;
    if (!changed.isEmpty()) {
        emit SettingsChanged(changed);
    }
}
