// SPDX-License-Identifier: MIT
#include "support/driver/build_log.h"

#include <QFile>
#include <fcntl.h>
#include <sys/stat.h>

void BuildLog::begin(const QString &path)
{
    // Appended to, because several tools may write at the same time.
    m_file = FileDescriptor(open(QFile::encodeName(path).constData(),
        O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0644));
    struct stat facts = {};
    if (!m_file.isOpen() || fstat(m_file.get(), &facts) != 0 || !S_ISREG(facts.st_mode)) {
        m_file = FileDescriptor(open("/dev/null", O_WRONLY | O_CLOEXEC));
        return;
    }
    fchmod(m_file.get(), 0644); // meant for users, whatever the daemon's umask
    if (ftruncate(m_file.get(), 0) != 0) {
        line(QStringLiteral("what stands above is of an earlier build"));
    }
}

void BuildLog::line(const QString &text)
{
    const QByteArray bytes = "## " + text.toLocal8Bit() + '\n';
    const ssize_t ignored = write(m_file.get(), bytes.constData(), size_t(bytes.size()));
    Q_UNUSED(ignored) // a full disk must not end the build here
}
