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

/// How long a program that loads or unloads a module may take: the kernel waits 60 s for a modem's
/// firmware, and then the driver still has to begin.
constexpr int moduleTimeoutMs = 90000;

/// Unloads and loads @p module. Each of the two programs is ended at @p timeoutMs, or left behind.
void reloadModule(const QString &module, int timeoutMs);

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
