// SPDX-License-Identifier: MIT
// The keeper's face on the bus.
#pragma once

#include "keeper/history/database.h"
#include "keeper_introspection.h" // made from com.norvix.Keeper1.xml

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>

namespace keeper {

class Keeper;

/// Main thread only. Who may call what is the bus policy's to say. Values that are refused are
/// answered by com.norvix.Keeper1.Error.InvalidValue.
class BusFace : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.norvix.Keeper1")
    Q_CLASSINFO("D-Bus Introspection", NORVIX_KEEPER_INTROSPECTION)
    Q_PROPERTY(QString State READ state)
    Q_PROPERTY(bool Wanted READ isWanted)
    Q_PROPERTY(bool Keep READ keep)
    Q_PROPERTY(QString Reason READ reason)
    Q_PROPERTY(qlonglong Since READ since)
    Q_PROPERTY(qlonglong NextAttempt READ nextAttempt)
    Q_PROPERTY(uint Attempts READ attempts)
    Q_PROPERTY(QStringList ForeignLinks READ foreignLinks)
    Q_PROPERTY(QString History READ history)
    Q_PROPERTY(bool LimitReached READ isLimitReached)

public:
    /// @p keeper is what gets registered at the path.
    explicit BusFace(Keeper *keeper, const QDBusConnection &bus);

    QString state() const { return told("State").toString(); }
    bool isWanted() const { return told("Wanted").toBool(); }
    bool keep() const { return told("Keep").toBool(); }
    QString reason() const { return told("Reason").toString(); }
    qlonglong since() const { return told("Since").toLongLong(); }
    qlonglong nextAttempt() const { return told("NextAttempt").toLongLong(); }
    uint attempts() const { return told("Attempts").toUInt(); }
    QStringList foreignLinks() const { return told("ForeignLinks").toStringList(); }
    QString history() const { return told("History").toString(); }
    bool isLimitReached() const { return told("LimitReached").toBool(); }

public slots:
    void SetKeep(bool keep);
    /// Says that the connection is wanted: as the daemon's establishConnection, and heard also
    /// while an attempt is running.
    void Connect();
    keeper::Rows GetSessions(uint most);
    keeper::Rows GetAttempts(uint most);
    keeper::Rows GetDays(uint most);
    /// Traffic by billing month, newest first, the running one included.
    keeper::Rows GetMonths(uint most);
    keeper::Rows GetLineQuality(qlonglong from, qlonglong until);
    /// The limit and the billing day.
    QVariantMap GetPlan();
    void SetLimit(qulonglong bytes);
    void SetBillingDay(uint day, const QDBusMessage &message);

signals:
    void LinkLost(const QString &reason);

private:
    QVariant told(const char *property) const;
    void announce(const QVariantMap &properties);

    Keeper *m_keeper;
    QDBusConnection m_bus;
};

} // namespace keeper
