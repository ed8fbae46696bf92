// SPDX-License-Identifier: MIT
#include "daemon/hal_silence.h"

#include "daemon/hal_proxy.h"

#include <QDBusError>
#include <QDBusPendingCallWatcher>

namespace {

/// Whether somebody answered, if only that there is no such device. Where nobody owns HAL's name, a
/// new HAL may be on its way.
bool isAnswer(const QDBusPendingCall &call)
{
    switch (call.error().type()) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
    case QDBusError::ServiceUnknown:
    case QDBusError::Disconnected:
        return false;
    default:
        return true;
    }
}

} // namespace

HalSilence::HalSilence(const QDBusConnection &bus)
    : m_bus(bus)
{
    m_again.setInterval(halTimeoutMs);
    connect(&m_again, &QTimer::timeout, this, &HalSilence::ask);
}

void HalSilence::begin(const QDBusMessage &question)
{
    m_isOn = true;
    m_question = question;
    m_again.start();
    ask();
}

void HalSilence::ask()
{
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(m_question, halTimeoutMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        if (m_isOn && isAnswer(*watcher)) {
            m_isOn = false;
            m_again.stop();
            emit ended();
        }
    });
}
