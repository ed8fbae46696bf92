// SPDX-License-Identifier: MIT
#include "daemon/logging.h"

#include "daemon/log_limit.h"
#include "support/files/file_descriptor.h"
#include "support/process/debug.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QVector>
#include <array>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

constexpr char logPath[] = "/opt/norvix/daemon.log";
constexpr char thinnedPath[] = "/opt/norvix/daemon.log.new";
constexpr char olderPath[] = "/opt/norvix/daemon.log.1";
constexpr char oldestPath[] = "/opt/norvix/daemon.log.2";

constexpr int mostForeignCharacters = 256;

// Never destroyed: a message may come while the process is ending.
std::mutex logMutex;
LogLimit logLimit; // used with the mutex held

/// The current local time as "dd-MM-yyyy hh:mm:ss ", made anew once a second: the zone look-up
/// behind it costs several times the writing of the line. Call it with the log mutex held.
const char *logStamp()
{
    static std::array<char, 80> stamp = {};
    static time_t stampTime = -1;
    const time_t now = time(nullptr);
    if (now != stampTime) {
        tzset();
        struct tm local = {};
        localtime_r(&now, &local);
        snprintf(stamp.data(), stamp.size(), "%02d-%02d-%04d %02d:%02d:%02d ", local.tm_mday,
            local.tm_mon + 1, local.tm_year + 1900, local.tm_hour, local.tm_min, local.tm_sec);
        stampTime = now;
    }
    return stamp.data();
}

iovec piece(const char *text, size_t size)
{
    return {const_cast<char *>(text), size};
}

ssize_t lengthOf(const std::array<iovec, 4> &line)
{
    size_t length = 0;
    for (const iovec &part : line) {
        length += part.iov_len;
    }
    return ssize_t(length);
}

QByteArray contentOf(int fd, qint64 size)
{
    QByteArray content(int(size), '\0');
    const ssize_t got = pread(fd, content.data(), size_t(size), 0);
    content.truncate(got < 0 ? 0 : int(got));
    return content;
}

/// Puts @p content in the log's place, whole or not at all.
bool replaceLog(const QByteArray &content, const struct stat &like)
{
    unlink(thinnedPath);
    const FileDescriptor file(
        open(thinnedPath, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, like.st_mode & 0777));
    const bool isWritten = file.isOpen() && fchown(file.get(), like.st_uid, like.st_gid) == 0
        && fchmod(file.get(), like.st_mode & 0777) == 0
        && write(file.get(), content.constData(), size_t(content.size())) == content.size();
    if (isWritten && rename(thinnedPath, logPath) == 0) {
        return true;
    }
    unlink(thinnedPath);
    return false;
}

/// Takes the middle of a long attempt out of the log, which has @p size bytes. Call it with the log
/// mutex held.
void thinLog(qint64 size)
{
    const FileDescriptor file(open(logPath, O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat info = {};
    if (file.isOpen() && fstat(file.get(), &info) == 0 && S_ISREG(info.st_mode)) {
        const QByteArray log = contentOf(file.get(), info.st_size);
        LogLimit after = logLimit;
        if (log.size() == size && replaceLog(after.thinned(log, logStamp()), info)) {
            logLimit = after;
            return;
        }
    }
    logLimit.postpone(size);
}

/// For a line more. A pipe in the log's place must not hold us up until somebody reads it.
FileDescriptor openLog(const char *path)
{
    return FileDescriptor(open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, 0666));
}

/// Takes the beginning of a line that had no room out again: the next one would be glued to it.
bool takeBack(int log, ssize_t written)
{
    return ftruncate(log, lseek(log, 0, SEEK_CUR) - written) == 0;
}

/// Opens the main log, appends one line in a single write, closes it. False when it cannot be
/// opened. Call it with the log mutex held.
bool appendLine(const char *prefix, const char *text, size_t size)
{
    const FileDescriptor file = openLog(logPath);
    if (!file.isOpen()) {
        return false;
    }
    const char *stamp = logStamp();
    const std::array<iovec, 4> line = {piece(stamp, strlen(stamp)), piece(prefix, strlen(prefix)),
        piece(text, size), piece("\n", 1)};
    // On a full disk the line is lost: there is nobody to tell.
    const ssize_t written = writev(file.get(), line.data(), int(line.size()));
    if (written < 0) {
        return true;
    }
    const qint64 logSize = lseek(file.get(), 0, SEEK_CUR);
    if (written < lengthOf(line) && takeBack(file.get(), written)) {
        return true;
    }
    if (logLimit.isExceeded(logSize)) {
        thinLog(logSize);
    }
    return true;
}

} // namespace

QString mainLogPath()
{
    return QString::fromLatin1(logPath);
}

void removeMainLog()
{
    const std::lock_guard<std::mutex> lock(logMutex);
    unlink(logPath);
    unlink(thinnedPath); // of a process that was killed
    logLimit.begin(0);
}

void beginLogAttempt()
{
    const std::lock_guard<std::mutex> lock(logMutex);
    struct stat info = {};
    qint64 size = lstat(logPath, &info) == 0 && S_ISREG(info.st_mode) ? info.st_size : 0;
    if (size > LogLimit::keptBytes) {
        rename(olderPath, oldestPath);
        if (rename(logPath, olderPath) == 0) {
            size = 0;
        }
    }
    logLimit.begin(size);
}

QString loggable(const QString &foreign)
{
    QString text;
    // A character outside the basic plane counts as one, though it takes two of the string's units.
    const QVector<uint> characters = foreign.left(2 * mostForeignCharacters).toUcs4();
    for (const uint character : characters.mid(0, mostForeignCharacters)) {
        switch (QChar::category(character)) {
        case QChar::Other_Control:
        case QChar::Other_Format: // turns the direction of what follows, or is invisible
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            text += QStringLiteral("\\u%1").arg(character, 4, 16, QLatin1Char('0'));
            break;
        default:
            text += QString::fromUcs4(&character, 1);
        }
    }
    return text;
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
        // Keeps the asymmetry: a fatal message that cannot be logged does not abort. An
        // administrator would find a dead daemon and no word why.
        return;
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
    // Dots in the lines, dashes in the name as in the main log: who sums up the daily logs splits
    // at these, and sorts files by those.
    // Not QDateTime's own text: its digits are those of the system's language.
    const QLocale plain = QLocale::c();
    const QDateTime now = QDateTime::currentDateTime();
    const QString name = plain.toString(now, QStringLiteral("dd-MM-yyyy")) + QStringLiteral(".log");
    const FileDescriptor file = openLog(QFile::encodeName(folder.filePath(name)).constData());
    const QByteArray line
        = plain.toString(now, QStringLiteral("dd.MM.yyyy hh:mm:ss: ")).toLocal8Bit()
        + msg.toLocal8Bit() + '\n';
    const ssize_t written
        = file.isOpen() ? write(file.get(), line.constData(), size_t(line.size())) : 0;
    if (written > 0 && written < line.size()) {
        takeBack(file.get(), written);
    }
}
