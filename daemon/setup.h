// SPDX-License-Identifier: MIT
// The bus object through which clients set things up: settings with checked values, the account in
// a form that can do no harm, the modem that was announced. Other than com.norvix.Daemon it answers
// with bus errors.
#pragma once

#include "daemon/modem_catalogue.h"
#include "setup_introspection.h" // made from com.norvix.Setup1.xml

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>
#include <functional>

/// What the setup object asks of the daemon's central object. Main thread only.
struct SetupDoors
{
    /// The modem that useNewModem() would take into use; without a name when there is none.
    std::function<AnnouncedModem()> announcedModem;
    /// setAccountData(); whether all of pppd's files were written.
    std::function<bool(const QString &login, const QString &password)> storeAccount;
};

/// Main thread only, like the central object behind it. Errors are
/// com.norvix.Setup1.Error.InvalidValue (nothing was changed, the text says what is expected) and
/// com.norvix.Setup1.Error.NotStored (the text says why).
class SetupAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.norvix.Setup1")
    Q_CLASSINFO("D-Bus Introspection", NORVIX_SETUP_INTROSPECTION)

public:
    /// @p object is what gets registered at the path.
    SetupAdaptor(QObject *object, SetupDoors daemon);
    ~SetupAdaptor() override;
    Q_DISABLE_COPY_MOVE(SetupAdaptor)

public slots:
    /// The stored settings with their types; what was never set is missing.
    QVariantMap GetSettings();
    /// Stores all of @p settings, on the disk when the call returns, or none.
    void SetSettings(const QVariantMap &settings, const QDBusMessage &message);
    QStringList GetPppdArguments();
    /// For root: what stands here becomes options of a pppd that runs as root.
    void SetPppdArguments(const QStringList &arguments, const QDBusMessage &message);
    /// The daemon's setAccountData() for values that pppd takes for values and nothing else.
    void SetAccount(const QString &login, const QString &password, const QDBusMessage &message);
    /// The modem that useNewModem() would take into use now; an empty name when there is none.
    QString GetAnnouncedModem(int &vendor_id, int &product_id, QString &udi);

signals:
    /// Settings changed, by whatever way through the bus or found in the file: those that did, as
    /// GetSettings.
    void SettingsChanged(const QVariantMap &settings);

private:
    void store(const QVariantMap &values, const QDBusMessage &message);
    void announceChanges();

    SetupDoors m_daemon;
    QVariantMap m_announced; ///< the settings as clients know them
};
