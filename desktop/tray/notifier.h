// SPDX-License-Identifier: MIT
// Tells the person something through the desktop's own service. One bubble, used again and again.
#pragma once

#include "desktop/bus/async_bus.h"

#include <optional>

namespace desktop {

class Notifier : public QObject
{
    Q_OBJECT

public:
    explicit Notifier(AsyncBus &sessionBus, QObject *parent = nullptr);

    /// Shows it in place of what is shown. @p then learns whether the service has taken it.
    void tell(
        const QString &title, const QString &text,
        const std::function<void(bool)> &then = [](bool) {});

signals:
    /// The person has clicked on it; the token lets the window take the focus where there is one.
    void activated(const QString &token);

private slots:
    void takeAction(uint id, const QString &action);
    void takeToken(uint id, const QString &token);
    void takeEnd(uint id, uint reason);

private:
    struct Message
    {
        QString title;
        QString text;
        std::function<void(bool)> then;
    };

    void send(const Message &message);

    AsyncBus &m_bus;
    uint m_id = 0; ///< of the bubble; 0 for none
    QString m_token;
    bool m_isSending = false;
    std::optional<Message> m_waiting; ///< until the bubble's number is known
};

} // namespace desktop
