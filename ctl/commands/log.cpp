// SPDX-License-Identifier: MIT
// norvixctl log
#include "client/say.h"
#include "client/stop_signals.h"
#include "client/text_format.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/report.h"

#include <QDate>
#include <QEventLoop>
#include <QFile>
#include <QLocale>
#include <QTimer>
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int lookMs = 200;
constexpr int stampLength = 19; // "dd-MM-yyyy hh:mm:ss"
constexpr int pieceSize = 1 << 16;
constexpr int longestLine = 1 << 20;
constexpr int mostReread = 1 << 22; // more than the daemon ever puts in its log's place at once
constexpr int mostRemembered = 1 << 14;

/// Where the last @p count lines of a file begin; looks at it from its end.
off_t startOfLastLines(int file, off_t size, int count, bool withRest)
{
    if (count == 0 && withRest) {
        return size;
    }
    QByteArray piece(pieceSize, '\0');
    int left = count;
    bool isFirst = true;
    for (off_t end = size; end > 0;) {
        const off_t begin = std::max<off_t>(0, end - pieceSize);
        const ssize_t got = pread(file, piece.data(), size_t(end - begin), begin);
        if (got != end - begin) {
            return size; // it has become shorter meanwhile
        }
        for (off_t place = end - 1; place >= begin; --place) {
            const bool isEnd = piece.at(int(place - begin)) == '\n';
            // The line feed at the very end, or before a rest that does not count, ends a line.
            if (isFirst && (isEnd || withRest)) {
                isFirst = false;
                left += isEnd ? 1 : 0;
            }
            if (isEnd && --left == 0) {
                return place + 1;
            }
        }
        end = begin;
    }
    return 0;
}

void printLine(const Terminal &terminal, const QByteArray &bytes)
{
    const QString line = QString::fromUtf8(bytes);
    if (terminal.form == Form::Json) {
        printJson(terminal,
            {{QStringLiteral("time"), line.left(stampLength)},
                {QStringLiteral("text"), line.mid(stampLength + 1)}},
            true);
    } else {
        terminal.line(printable(line));
    }
}

/// Where to go on reading in @p file, which took the place of one that ended in @p end: behind the
/// same bytes, when it holds them near its end (a log whose middle was taken out), else at its
/// beginning.
off_t placeBehind(int file, const QByteArray &end)
{
    struct stat info = {};
    if (end.isEmpty() || fstat(file, &info) != 0) {
        return 0;
    }
    const off_t begin = std::max<off_t>(0, info.st_size - mostReread);
    QByteArray bytes(int(info.st_size - begin), '\0');
    const ssize_t got = pread(file, bytes.data(), size_t(bytes.size()), begin);
    bytes.truncate(int(std::max<ssize_t>(got, 0)));
    const int found = bytes.lastIndexOf(end);
    return found < 0 ? 0 : begin + found + end.size();
}

/// Reads a growing file by lines; notices when another file takes its place.
class LogReader
{
public:
    explicit LogReader(const QString &path)
        : m_path(QFile::encodeName(path))
    {
    }
    ~LogReader() { shut(); }
    LogReader(const LogReader &) = delete;
    LogReader &operator=(const LogReader &) = delete;

    /// 0, or why the file can not be opened (an errno value).
    int open()
    {
        shut();
        m_fd = ::open(m_path.constData(), O_RDONLY | O_CLOEXEC);
        return m_fd < 0 ? errno : 0;
    }

    /// Goes on from where the last @p count lines begin. @p withRest: an unfinished last line is
    /// one of them.
    void skipToLast(int count, bool withRest)
    {
        struct stat info = {};
        if (m_fd < 0 || fstat(m_fd, &info) != 0) {
            return;
        }
        const off_t place = startOfLastLines(m_fd, info.st_size, count, withRest);
        const off_t begin = std::max<off_t>(0, place - mostRemembered);
        m_end.resize(int(place - begin));
        m_end.truncate(
            int(std::max<ssize_t>(pread(m_fd, m_end.data(), size_t(m_end.size()), begin), 0)));
        lseek(m_fd, place, SEEK_SET);
    }

    /// Gives each complete line that was added since the last call to @p take. A line that has no
    /// end is cut, so that memory stays bounded.
    template <typename Take> void takeNewLines(Take take)
    {
        const bool isOver = isReplaced();
        readOn(take); // what came into the old one to its end
        if (isOver && goOnInNewFile()) {
            readOn(take);
        }
    }

    QByteArray takeRest() { return std::exchange(m_rest, QByteArray()); }

private:
    template <typename Take> void readOn(Take take)
    {
        QByteArray piece(pieceSize, '\0');
        ssize_t size = 0;
        while (m_fd >= 0 && (size = ::read(m_fd, piece.data(), size_t(piece.size()))) > 0) {
            m_rest.append(piece.constData(), int(size));
            m_end = (m_end + piece.left(int(size))).right(mostRemembered);
            int begin = 0;
            for (int end = m_rest.indexOf('\n'); end >= 0; end = m_rest.indexOf('\n', begin)) {
                take(m_rest.mid(begin, end - begin));
                begin = end + 1;
            }
            m_rest.remove(0, begin);
            if (m_rest.size() > longestLine) {
                take(takeRest());
            }
        }
    }

    bool goOnInNewFile()
    {
        const QByteArray rest = m_rest;
        if (open() != 0) {
            return false;
        }
        const off_t place = placeBehind(m_fd, m_end);
        lseek(m_fd, place, SEEK_SET);
        if (place > 0) {
            m_rest = rest;
        } else {
            m_end.clear();
        }
        return true;
    }

    /// Each start of the daemon begins a new file under the same name.
    bool isReplaced() const
    {
        struct stat named = {};
        struct stat opened = {};
        if (stat(m_path.constData(), &named) != 0) {
            return false;
        }
        return m_fd < 0 || fstat(m_fd, &opened) != 0 || named.st_ino != opened.st_ino
            || named.st_size < lseek(m_fd, 0, SEEK_CUR);
    }

    void shut()
    {
        if (m_fd >= 0) {
            close(m_fd);
        }
        m_fd = -1;
        m_rest.clear();
    }

    QByteArray m_path;
    QByteArray m_rest;
    QByteArray m_end; ///< the last that was read
    int m_fd = -1;
};

int follow(LogReader &reader, const Terminal &terminal)
{
    StopSignals stop;
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop,
        [&] { reader.takeNewLines([&](const QByteArray &line) { printLine(terminal, line); }); });
    QObject::connect(&stop, &StopSignals::stopped, &loop, &QEventLoop::quit);
    look.start(lookMs);
    loop.exec();
    return Ok;
}

} // namespace

int runLog(const Invocation &invocation, const Terminal &terminal)
{
    std::optional<int> most;
    if (invocation.has("lines")) {
        most = wholeNumber(invocation.value("lines"), 0, 10000000);
        if (!most) {
            return terminal.fail(BadUsage, Say::tr("--lines takes a whole number."));
        }
    }
    const QString path = invocation.has("daily")
        ? QStringLiteral("/var/log/norvix/%1.log")
              .arg(QLocale::c().toString(QDate::currentDate(), QStringLiteral("dd-MM-yyyy")))
        : QStringLiteral("/opt/norvix/daemon.log");
    LogReader reader(path);
    const int error = reader.open();
    if (error == EACCES || error == EPERM) {
        return terminal.fail(NotPermitted,
            Say::tr("%1 is not readable for you. Repeat the command with “sudo”.").arg(path));
    }
    if (error != 0 && !invocation.has("follow")) {
        return terminal.fail(Failed, Say::tr("There is no log %1 yet.").arg(path));
    }
    const bool isFollowed = invocation.has("follow");
    if (most) {
        reader.skipToLast(*most, !isFollowed);
    }
    reader.takeNewLines([&](const QByteArray &line) { printLine(terminal, line); });
    if (!isFollowed) {
        const QByteArray rest = reader.takeRest();
        if (!rest.isEmpty()) {
            printLine(terminal, rest);
        }
    }
    return isFollowed ? follow(reader, terminal) : int(Ok);
}
