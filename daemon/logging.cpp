// SPDX-License-Identifier: MIT
#include "daemon/logging.h"

#include "support/debug.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <array>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <mutex>
#include <sys/uio.h>
#include <unistd.h>

namespace {

constexpr char logPath[] = "/opt/norvix/daemon.log";

// Never destroyed: a message may come while the process is ending.
std::mutex logMutex;

/// The current local time as "dd-MM-yyyy hh:mm:ss ", made anew once a second: the zone look-up
/// behind it costs several times the writing of the line. Call it with the log mutex held.
const char *logStamp()
{
    static std::array<char, 32> stamp = {};
    static time_t stampTime = -1;
    const time_t now = time(nullptr);
    if (now != stampTime) {
        tzset();
        struct tm local = {};
        localtime_r(&now, &local);
        strftime(stamp.data(), stamp.size(), "%d-%m-%Y %H:%M:%S ", &local);
        stampTime = now;
    }
    return stamp.data();
}

iovec piece(const char *text, size_t size)
{
    return {const_cast<char *>(text), size};
}

/// Opens the main log, appends one line in a single write, closes it. False when it cannot be
/// opened. Call it with the log mutex held.
bool appendLine(const char *prefix, const char *text, size_t size)
{
    const int fd = open(logPath, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (fd < 0) {
        return false;
    }
    const char *stamp = logStamp();
    const std::array<iovec, 4> line = {piece(stamp, strlen(stamp)), piece(prefix, strlen(prefix)),
        piece(text, size), piece("\n", 1)};
    // On a full disk the line is lost: there is nobody to tell.
    if (writev(fd, line.data(), int(line.size())) < 0) {
        close(fd);
        return true;
    }
    close(fd);
    return true;
}

} // namespace

QString mainLogPath()
{
    return QString::fromLatin1(logPath);
}

void debugHandler(QtMsgType type, const char *msg)
{
    const bool fatal = type == QtFatalMsg;
    printf("%s", fatal ? "Fatal: " : "Debug: ");
    puts(msg);

    const std::lock_guard<std::mutex> lock(logMutex);
    const char *prefix
        = fatal ? "Norvix_Daemon::debugHandler (fatal): " : "Norvix_Daemon::debugHandler: ";
    if (!appendLine(prefix, msg, strlen(msg))) {
        return; // Keeps the asymmetry: a fatal message that cannot be logged does not abort.
    }
    if (fatal) {
        abort();
    }
}

void installDebugHandler()
{
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &msg) {
        debugHandler(type, msg.toLocal8Bit().constData());
    });
}

void appendToLog(const QString &msg)
{
    if (debug) {
        puts(msg.toLocal8Bit().constData());
    }
    const QByteArray text = msg.toUtf8();
    const std::lock_guard<std::mutex> lock(logMutex);
    appendLine("", text.constData(), size_t(text.size()));
}

void appendBytesToLog(const QByteArray &msg)
{
    if (debug) {
        puts(msg.constData());
    }
    const std::lock_guard<std::mutex> lock(logMutex);
    appendLine("", msg.constData(), size_t(msg.size()));
}

void appendToDailyLog(const QString &msg)
{
    const QDir folder(QStringLiteral("/var/log/norvix"));
    if (!folder.exists() && !QDir().mkpath(folder.path())) {
        return;
    }
    const QDateTime now = QDateTime::currentDateTime();
    QFile file(
        folder.filePath(now.toString(QStringLiteral("dd-MM-yyyy")) + QStringLiteral(".log")));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) {
        return;
    }
    file.write(now.toString(QStringLiteral("dd.MM.yyyy hh:mm:ss: ")).toLocal8Bit()
        + msg.toLocal8Bit() + '\n');
}
