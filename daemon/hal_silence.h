// SPDX-License-Identifier: MIT
// Waiting for a HAL that does not answer, without holding anybody up.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QTimer>

/// The time in which HAL leaves a question without an answer. The question is repeated in the
/// background until any answer comes; nobody should wait for HAL meanwhile. Main thread.
class HalSilence : public QObject
{
    Q_OBJECT

public:
    explicit HalSilence(const QDBusConnection &bus);

    bool isOn() const { return m_isOn; }

    /// HAL did not answer @p question.
    void begin(const QDBusMessage &question);

signals:
    /// HAL has answered.
    void ended();

private:
    void ask();

    QDBusConnection m_bus;
    QDBusMessage m_question;
    QTimer m_again;
    bool m_isOn = false;
};
