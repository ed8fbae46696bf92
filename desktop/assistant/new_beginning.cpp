// SPDX-License-Identifier: MIT
#include "desktop/assistant/new_beginning.h"

#include "desktop/child.h"

#include <QCoreApplication>
#include <QFile>
#include <QStandardPaths>
#include <QTimer>
#include <array>
#include <sys/mman.h>
#include <unistd.h>

namespace desktop {

namespace {

constexpr int patienceMs = 10000;
constexpr int mostBytes = 1 << 16;
const char programVariable[] = "NORVIX_DESKTOP_PROGRAM";
const char draftVariable[] = "NORVIX_DESKTOP_DRAFT";
// The shell that sg starts reads this text and nothing else as commands.
const char beginning[] = "exec \"$NORVIX_DESKTOP_PROGRAM\"";

/// A nameless file in memory: what was entered, a password perhaps, is on no disk.
int fileWith(const QByteArray &text)
{
    const int file = memfd_create("norvix-desktop", 0);
    if (file >= 0 && write(file, text.constData(), size_t(text.size())) != text.size()) {
        close(file);
        return -1;
    }
    return file;
}

/// Returns only when it has failed.
void become(const QString &sg, const HandOver &handOver)
{
    const int file = fileWith(handOverText(handOver));
    if (file < 0) {
        return;
    }
    qputenv(programVariable, QFile::encodeName(QCoreApplication::applicationFilePath()));
    qputenv(draftVariable, QByteArray::number(file));
    const QByteArray path = QFile::encodeName(sg);
    std::array<QByteArray, 4> words{"sg", "norvix", "-c", beginning};
    std::array<char *, 5> arguments{
        words[0].data(), words[1].data(), words[2].data(), words[3].data(), nullptr};
    StopSignals::release();
    execv(path.constData(), arguments.data());
    StopSignals::hold();
    close(file);
}

} // namespace

void beginAnewInGroup(
    const HandOver &handOver, QObject *receiver, const std::function<void()> &failed)
{
    const QString sg = QStandardPaths::findExecutable(QStringLiteral("sg"));
    if (sg.isEmpty()) {
        QTimer::singleShot(0, receiver, failed);
        return;
    }
    // Tried with nothing first: where sg refuses, it ends, and this program would be gone. Without
    // a terminal it can not ask for the group's password.
    auto *trial = new Child(receiver);
    trial->setStandardInputFile(QProcess::nullDevice());
    const auto end = [trial, sg, handOver, failed](bool hasWorked) {
        trial->disconnect();
        trial->deleteLater();
        if (hasWorked) {
            become(sg, handOver);
        }
        failed();
    };
    QObject::connect(trial, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), receiver,
        [end](int status, QProcess::ExitStatus how) {
            end(how == QProcess::NormalExit && status == 0);
        });
    QObject::connect(
        trial, &QProcess::errorOccurred, receiver, [end](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart) {
                end(false);
            }
        });
    QTimer::singleShot(patienceMs, trial, [trial] { trial->kill(); });
    trial->start(QStringLiteral("setsid"),
        {QStringLiteral("--wait"), sg, QStringLiteral("norvix"), QStringLiteral("-c"),
            QStringLiteral("exec true")});
}

std::optional<HandOver> handedOver()
{
    bool isNumber = false;
    const int descriptor = qEnvironmentVariableIntValue(draftVariable, &isNumber);
    qunsetenv(draftVariable);
    qunsetenv(programVariable);
    QFile file;
    if (!isNumber || descriptor <= STDERR_FILENO || lseek(descriptor, 0, SEEK_SET) != 0
        || !file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        return std::nullopt;
    }
    return handOverFrom(file.read(mostBytes));
}

} // namespace desktop
