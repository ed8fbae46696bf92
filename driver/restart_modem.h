// SPDX-License-Identifier: MIT
// The thread that reloads the modem's driver.
#pragma once

#include <QString>
#include <QThread>
#include <memory>

class QProcess;
class QSettings;

/// The kernel module that is reloaded for a modem of vendor @p vendorId; empty for 0, no modem.
QString moduleToReload(int vendorId);

/// Unloads and loads the driver of the configured modem. Whether that worked is not reported.
class RestartModem : public QThread
{
    Q_OBJECT

public:
    /// Reads the modem's vendor from @p settings, which is not owned.
    RestartModem(QSettings *settings, QObject *parent);
    ~RestartModem() override;

protected:
    void run() override;

private:
    QSettings *m_settings;
    std::unique_ptr<QProcess> m_process; ///< not used by run()
};
