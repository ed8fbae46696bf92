// SPDX-License-Identifier: MIT
#include "driver/restart_modem.h"

#include <QProcess>

RestartModem::RestartModem(QSettings *settings, QObject *parent)
    : QThread(parent)
    , m_settings(settings)
    , m_process(new QProcess)
{
    m_process->moveToThread(this);
}

void RestartModem::run() { }
