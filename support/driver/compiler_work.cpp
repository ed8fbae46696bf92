// SPDX-License-Identifier: MIT
#include "support/driver/compiler_work.h"

#include "support/driver/source_patch.h"
#include "support/files/safe_file.h"
#include "support/process/debug.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace {

constexpr char buildLogPath[] = "/opt/norvix/driver_build.log";
constexpr char backupRoot[] = "/opt/norvix/driver_backup";
// Beside the backups, so that it too is out of everybody's reach.
constexpr char stagingPath[] = "/opt/norvix/driver_backup/staging";
constexpr char lockPath[] = "/opt/norvix/driver_backup/lock";

constexpr int makeTimeoutMs = 600000; // a slow machine needs minutes for a driver
constexpr int toolTimeoutMs = 120000;
constexpr int lockPollMs = 200;

QStringList daemonEnvironment()
{
    QStringList environment = QProcess::systemEnvironment();
    if (environment.filter(QRegExp(QStringLiteral("^PATH="))).isEmpty()) {
        environment.append(
            QStringLiteral("PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"));
    }
    return environment;
}

/// For tools whose work no variable of the daemon's environment shall change.
QStringList plainEnvironment()
{
    return daemonEnvironment().filter(QRegExp(QStringLiteral("^PATH=")))
        + QStringList(QStringLiteral("LC_ALL=C"));
}

int codeOf(const ToolResult &result)
{
    switch (result.end) {
    case ToolResult::Exited:
        return result.exitCode;
    case ToolResult::NotFound:
        return Compiler::MakeMissing;
    case ToolResult::Crashed:
        return Compiler::ToolCrashed;
    case ToolResult::TimedOut:
        return Compiler::ToolTimedOut;
    }
    return Compiler::ToolCrashed;
}

QString describe(const ToolResult &result)
{
    switch (result.end) {
    case ToolResult::Exited:
        return QStringLiteral("ended with exit code %1").arg(result.exitCode);
    case ToolResult::NotFound:
        return QStringLiteral("cannot be started; is its package installed?");
    case ToolResult::Crashed:
        return QStringLiteral("crashed");
    case ToolResult::TimedOut:
        return QStringLiteral("took too long and was killed");
    }
    return QString();
}

/// The folder that only root can enter. Gives the reason why there is none.
QString makeBackupRoot()
{
    QString refusal = refusalOfParent(QFileInfo(QLatin1String(backupRoot)).path());
    if (!refusal.isEmpty()) {
        return refusal;
    }
    const std::optional<FileAttributes> facts = attributesOf(QLatin1String(backupRoot));
    if (facts && (!S_ISDIR(facts->mode) || facts->owner != geteuid())) {
        return QStringLiteral("%1 is not root's folder").arg(QLatin1String(backupRoot));
    }
    if (!makeFolders(QLatin1String(backupRoot), 0700) || chmod(backupRoot, 0700) != 0) {
        return QStringLiteral("%1 cannot be made").arg(QLatin1String(backupRoot));
    }
    return QString();
}

} // namespace

Compiler::Work::Work(Compiler::ModemDriver modemDriver)
    : driver(std::move(modemDriver))
    , plan(buildPlan(driver, daemonEnvironment(), QLatin1String(stagingPath)))
    , tree(ModuleTree::runningKernelsRoot())
    , staging(QLatin1String(stagingPath))
    , backup(QLatin1String(backupRoot) + QLatin1Char('/') + QFileInfo(tree.root()).fileName()
              + QLatin1Char('/') + driver.moduleFile,
          tree, driver.moduleFile)
{
}

QString Compiler::Work::begin()
{
    QString refusal = makeBackupRoot();
    if (!refusal.isEmpty()) {
        return refusal;
    }
    if (!takeLock()) {
        return QStringLiteral("another build is still under way");
    }
    m_log.begin(QLatin1String(buildLogPath));
    return QString();
}

/// Every tool inherits the lock, so it tells of those that outlived a killed daemon.
bool Compiler::Work::takeLock()
{
    m_lock = FileDescriptor(open(
        QFile::encodeName(lockPath).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    const QDeadlineTimer deadline(makeTimeoutMs);
    bool waiting = false;
    while (m_lock.isOpen() && flock(m_lock.get(), LOCK_EX | LOCK_NB) != 0) {
        if (deadline.hasExpired()) {
            return false;
        }
        if (!std::exchange(waiting, true)) {
            note("backupDriver", QStringLiteral("waiting for what an earlier build left running"));
        }
        poll(nullptr, 0, lockPollMs);
    }
    return m_lock.isOpen();
}

void Compiler::Work::note(const char *step, const QString &text)
{
    m_log.line(text);
    if (debug) {
        qDebug("Compiler::%s(): %s", step, text.toLocal8Bit().constData());
    }
}

void Compiler::Work::complain(const char *step, const QString &text)
{
    m_log.line(text);
    qWarning("Compiler::%s(): %s", step, text.toLocal8Bit().constData());
}

FileDescriptor Compiler::Work::openTrusted(const char *step, const QString &path)
{
    TrustedFile trusted = openTrustedFile(path);
    if (!trusted.refusal.isEmpty()) {
        complain(step, QStringLiteral("%1 is refused: %2").arg(path, trusted.refusal));
    }
    return std::move(trusted.file);
}

ToolResult Compiler::Work::run(const char *step, const QString &program,
    const QStringList &arguments, int input, int maxOutput)
{
    note(step, program + QLatin1Char(' ') + arguments.join(QLatin1Char(' ')));
    ToolCall call;
    call.program = program;
    call.arguments = arguments;
    call.environment = plainEnvironment();
    call.timeoutMs = toolTimeoutMs;
    call.input = input;
    call.maxOutput = maxOutput;
    ToolResult result = runTool(call, m_log.descriptor(), m_lock.get());
    if (!result.ok()) {
        complain(step, program + QLatin1Char(' ') + describe(result));
    }
    return result;
}

int Compiler::Work::make(const char *step, const MakeCommand &command)
{
    note(step, QStringLiteral("make ") + command.arguments.join(QLatin1Char(' ')));
    ToolCall call;
    call.program = QStringLiteral("make");
    call.arguments = command.arguments;
    call.environment = command.environment;
    call.folder = driver.sourceDir;
    call.timeoutMs = makeTimeoutMs;
    const ToolResult result = runTool(call, m_log.descriptor(), m_lock.get());
    if (!result.ok()) {
        complain(step,
            QStringLiteral("make %1 %2; see %3")
                .arg(command.arguments.join(QLatin1Char(' ')), describe(result),
                    QLatin1String(buildLogPath)));
    }
    return codeOf(result);
}

int Compiler::Work::depmod(const char *step)
{
    return codeOf(run(step, QStringLiteral("depmod"), {QStringLiteral("-a")}));
}

bool Compiler::Work::adaptSources(const char *step)
{
    const std::optional<TreeContents> contents = contentsBelow(driver.sourceDir);
    if (!contents) {
        complain(step, QStringLiteral("%1 cannot be read").arg(driver.sourceDir));
        return false;
    }
    for (const QString &name : contents->files) {
        const QString path = driver.sourceDir + QLatin1Char('/') + name;
        const QString fileName = QFileInfo(path).fileName();
        const std::optional<FileAttributes> facts = attributesOf(path);
        if (!facts || !S_ISREG(facts->mode) || !(isMakefile(fileName) || isSource(fileName))) {
            continue;
        }
        QFile file(path);
        if (!file.open(QIODevice::ReadWrite)) {
            complain(step, QStringLiteral("%1 cannot be adapted").arg(path));
            return false;
        }
        const QByteArray before = file.readAll();
        const AdaptedText adapted = isMakefile(fileName) ? adaptMakefile(before, tree.buildFolder())
                                                         : adaptSource(before);
        for (const QString &change : adapted.changes) {
            note(step, name + QStringLiteral(": ") + change);
        }
        if (!adapted.changes.isEmpty()
            && !(file.resize(0) && file.seek(0) && file.write(adapted.text) == adapted.text.size()
                && file.flush())) {
            complain(step, QStringLiteral("%1 cannot be adapted").arg(path));
            return false;
        }
    }
    return true;
}
