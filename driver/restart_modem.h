// SPDX-License-Identifier: MIT
// The thread that reloads the modem's driver.
#pragma once

#include <QThread>

class QProcess;
class QSettings;

class RestartModem : public QThread
{
    Q_OBJECT

public:
    RestartModem(QSettings *settings, QObject *parent);

protected:
    void run() override;

private:
    QSettings *m_settings;
    QProcess *m_process;
};
