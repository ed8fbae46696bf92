// SPDX-License-Identifier: MIT
// One program a session: it owns a name on the session bus, and a second start only wakes the
// first.
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace desktop {

class Instance : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    enum class Outcome
    {
        First, ///< this one shall go on
        Handed, ///< another one runs and has taken the request
        Unanswered, ///< another one runs and does not answer
    };

    explicit Instance(const QDBusConnection &sessionBus, QObject *parent = nullptr);

    /// Takes the name, or asks its owner to show itself unless @p isBackground. Without a session
    /// bus every start is the first.
    Outcome claim(bool isBackground);

public slots:
    // org.freedesktop.Application; what the launcher and the bus call.
    // NOLINTBEGIN(readability-identifier-naming)
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &uris, const QVariantMap &platformData);
    void ActivateAction(
        const QString &name, const QVariantList &parameter, const QVariantMap &platformData);
    // NOLINTEND(readability-identifier-naming)

signals:
    /// Somebody wants to see the window; the token lets it take the focus where there is one.
    void activated(const QString &token);

private:
    QDBusConnection m_bus;
};

} // namespace desktop
